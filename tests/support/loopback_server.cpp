#include "tests/support/loopback_server.h"

#include <chrono>

namespace qb::test {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kBindPatience = std::chrono::seconds(30);
constexpr auto kBindRetry = std::chrono::milliseconds(250);
constexpr auto kContinuePatience = std::chrono::seconds(10);
constexpr long kPollMicroseconds = 50 * 1000;  // how soon a stop is noticed
constexpr std::size_t kRequestHeadMax = 64 * 1024;
constexpr auto kResetDelay = std::chrono::milliseconds(300);
constexpr std::size_t kStreamBlock = 64 * 1024;
constexpr auto kSilencePatience = std::chrono::seconds(60);

// Waits until `s` is readable or the poll interval passes.
bool Readable(SOCKET s) {
  fd_set set;
  FD_ZERO(&set);
  FD_SET(s, &set);
  timeval wait{0, kPollMicroseconds};
  return select(0, &set, nullptr, nullptr, &wait) > 0;
}

}  // namespace

LoopbackServer::LoopbackServer(LoopbackReply reply, std::uint16_t port) : reply_(std::move(reply)) {
  WSADATA data;
  WSAStartup(0x0101, &data);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = inet_addr("127.0.0.1");
  const auto deadline = Clock::now() + kBindPatience;
  for (;;) {
    listener_ = socket(AF_INET, SOCK_STREAM, 0);
    if (listener_ != INVALID_SOCKET &&
        bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
        listen(listener_, 8) == 0) {
      listening_ = true;
      break;
    }
    const int code = WSAGetLastError();
    if (listener_ != INVALID_SOCKET) closesocket(listener_);
    listener_ = INVALID_SOCKET;
    if (Clock::now() >= deadline) {
      error_ = "127.0.0.1:" + std::to_string(port) + " stayed taken (Winsock error " +
               std::to_string(code) + ")";
      return;
    }
    std::this_thread::sleep_for(kBindRetry);
  }
  thread_ = std::thread([this] { Serve(); });
}

LoopbackServer::~LoopbackServer() {
  stop_ = true;
  continued_.notify_all();
  if (thread_.joinable()) thread_.join();
  if (listener_ != INVALID_SOCKET) closesocket(listener_);
  WSACleanup();
}

void LoopbackServer::Continue() {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    ++continues_;
  }
  continued_.notify_all();
}

std::vector<std::string> LoopbackServer::Requests() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return requests_;
}

void LoopbackServer::Serve() {
  while (!stop_) {
    if (!Readable(listener_)) continue;
    SOCKET client = accept(listener_, nullptr, nullptr);
    if (client == INVALID_SOCKET) continue;
    Answer(client);
  }
}

bool LoopbackServer::WaitForContinue(std::size_t step) {
  std::unique_lock<std::mutex> lock(mutex_);
  // A missing Continue() makes the test fail on what it sees, never hang.
  continued_.wait_for(lock, kContinuePatience, [&] { return stop_ || continues_ >= step; });
  return !stop_;
}

void LoopbackServer::Answer(SOCKET client) {
  std::string head;
  char buffer[4096];
  while (!stop_ && head.find("\r\n\r\n") == std::string::npos && head.size() < kRequestHeadMax) {
    if (!Readable(client)) continue;
    const int n = recv(client, buffer, sizeof(buffer), 0);
    if (n <= 0) break;
    head.append(buffer, static_cast<std::size_t>(n));
  }
  std::size_t stepsWaited;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    requests_.push_back(head);
    stepsWaited = continues_;
  }
  if (reply_.silent) {
    // Bounded, so that a client that cannot give up fails its test instead of hanging it.
    const auto deadline = Clock::now() + kSilencePatience;
    while (!stop_ && Clock::now() < deadline) {
      if (Readable(client) && recv(client, buffer, sizeof(buffer), 0) <= 0) break;
    }
  }
  for (std::size_t i = 0; i < reply_.chunks.size(); ++i) {
    if (reply_.paced && i > 0 && !WaitForContinue(stepsWaited + i)) break;
    const std::string& chunk = reply_.chunks[i];
    if (send(client, chunk.data(), static_cast<int>(chunk.size()), 0) == SOCKET_ERROR) break;
  }
  const std::string filler(kStreamBlock, 'x');
  for (std::size_t sent = 0; sent < reply_.streamBytes && !stop_; sent += filler.size()) {
    if (send(client, filler.data(), static_cast<int>(filler.size()), 0) == SOCKET_ERROR) break;
  }
  if (reply_.paced && !reply_.chunks.empty()) WaitForContinue(stepsWaited + reply_.chunks.size());
  if (reply_.reset) {
    // Wine reports a reset that arrives before the client's next recv as an
    // orderly end; the client's fwrite and recv after its status change take
    // microseconds, so after this pause the reset meets a pending recv.
    std::this_thread::sleep_for(kResetDelay);
    linger abort{1, 0};
    setsockopt(client, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&abort), sizeof(abort));
  }
  closesocket(client);
}

}  // namespace qb::test
