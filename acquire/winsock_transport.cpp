// The plain-HTTP transport over Winsock 1.1. The dialog never waits for it: after
// Cancel it only has to end soon, which the bounded receive below sees to.
#include <winsock.h>

#include <array>
#include <cstring>

#include "acquire/http_request.h"
#include "acquire/transport.h"

namespace qb {
namespace {

constexpr WORD kWinsockVersion = 0x0101;

class WinsockTransport : public Transport {
 public:
  WinsockTransport(std::string host, std::string request)
      : host_(std::move(host)), request_(std::move(request)) {}

  bool Run(TransferLink& link) override {
    WSADATA data;
    if (WSAStartup(kWinsockVersion, &data) != 0) return false;
    const bool ended = Exchange(link);
    if (socket_ != INVALID_SOCKET) closesocket(socket_);
    WSACleanup();
    return ended;
  }

 private:
  bool Exchange(TransferLink& link) {
    socket_ = socket(AF_INET, SOCK_STREAM, 0);
    if (socket_ == INVALID_SOCKET) return false;
    const hostent* entry = gethostbyname(host_.c_str());
    if (!entry || entry->h_addrtype != AF_INET || !entry->h_addr_list || !entry->h_addr_list[0])
      return false;
    if (link.Cancelled()) return false;
    link.Reached(TransferStep::kResolved);

    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(kHttpPort);
    std::memcpy(&address.sin_addr, entry->h_addr_list[0], sizeof(address.sin_addr));
    if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) return false;
    if (link.Cancelled()) return false;
    link.Reached(TransferStep::kConnected);

    if (send(socket_, request_.data(), static_cast<int>(request_.size()), 0) == SOCKET_ERROR) return false;
    link.Reached(TransferStep::kSent);

    // A receive that waits at most this long, so that Cancel is seen between
    // waits; the wait stays a pending recv, which is where a reset is reported.
    const DWORD wait = kCancelPollMilliseconds;
    if (setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&wait), sizeof(wait)) != 0)
      return false;
    std::array<char, kReceiveChunkSize> buffer;
    for (;;) {
      const int n = recv(socket_, buffer.data(), static_cast<int>(buffer.size()), 0);
      if (n == SOCKET_ERROR) {
        if (WSAGetLastError() == WSAETIMEDOUT && !link.Cancelled()) continue;
        return false;  // what came so far stays in the file
      }
      if (n == 0) return true;
      if (!link.Received(std::string_view(buffer.data(), static_cast<std::size_t>(n)))) return false;
    }
  }

  std::string host_;
  std::string request_;
  SOCKET socket_ = INVALID_SOCKET;
};

}  // namespace

std::unique_ptr<Transport> MakeWinsockTransport(std::string host, std::string request) {
  return std::make_unique<WinsockTransport>(std::move(host), std::move(request));
}

}  // namespace qb
