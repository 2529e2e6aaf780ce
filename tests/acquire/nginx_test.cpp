// Downloads from a real web server: the private nginx the test fixture starts
// (tests/acquire/nginx.sh). The saved file must be exactly what nginx sends, status
// line and headers included, written in text mode. The system's HTTP stack fetches
// its HTTPS pages and follows its redirects; a scripted server on another port
// stalls and streams for the stack's limits.
#include <gtest/gtest.h>
#include <winsock.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <string>
#include <vector>

#include "acquire/acquire_state.h"
#include "acquire/download_dialog.h"
#include "acquire/winhttp_transfer.h"
#include "tests/acquire/transfer_helpers.h"
#include "tests/support/temp_dir.h"

namespace qb::test {
namespace {

// The same request sent by a plain client, for the bytes nginx answers with.
std::string RawFetch(const std::string& request) {
  WSADATA data;
  WSAStartup(0x0101, &data);
  std::string response;
  SOCKET s = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(80);
  address.sin_addr.s_addr = inet_addr("127.0.0.1");
  if (connect(s, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
      send(s, request.data(), static_cast<int>(request.size()), 0) != SOCKET_ERROR) {
    std::array<char, 8192> buffer;
    for (int n; (n = recv(s, buffer.data(), static_cast<int>(buffer.size()), 0)) > 0;)
      response.append(buffer.data(), n);
  }
  closesocket(s);
  WSACleanup();
  return response;
}

// The Date header is the only part that may change between two fetches.
std::string WithoutDate(std::string response) {
  const std::size_t at = response.find("\nDate: ");
  if (at != std::string::npos) response.erase(at, response.find('\n', at + 1) - at);
  return response;
}

TEST(Nginx, SavedPageIsTheServedResponseInTextMode) {
  TempDir dir;
  SetCurrentLinksFolder(dir.path() + "\\");
  ASSERT_EQ(PreparePageDownload("http://127.0.0.1/page.html"), PrepareStatus::kReady);
  const DownloadRequest& request = SharedDownloadRequest();
  const std::string served = RawFetch(BuildGetRequest(request.host, request.path));
  ASSERT_GT(served.size(), 3 * kReceiveChunkSize) << "the page should take several receives";
  EXPECT_EQ(served.compare(0, 17, "HTTP/1.1 200 OK\r\n"), 0);

  ASSERT_EQ(DownloadPage(), 0);
  const std::string saved = ReadText(request.localFile);
  EXPECT_NE(saved.find("\nDate: "), std::string::npos);
  EXPECT_EQ(WithoutDate(saved), WithoutDate(TextMode(served)));
  const std::string& status = LastDownloadStatus();
  EXPECT_EQ(status.substr(status.size() - 37), "Downloaded OK\nClosing connection.....");
}

// Records what the transfer reports; cancels once `cancelAfter` bytes came.
class RecordingLink : public WebLink {
 public:
  bool Cancelled() const override { return cancelled_; }
  void Reached(WebStep step) override { events.push_back("step " + std::to_string(static_cast<int>(step))); }
  void Redirected(const std::string& address) override { events.push_back("-> " + address); }
  bool Received(std::string_view bytes) override {
    answer.append(bytes);
    if (answer.size() >= cancelAfter) cancelled_ = true;
    return true;
  }

  std::vector<std::string> events;
  std::string answer;
  std::size_t cancelAfter = SIZE_MAX;

 private:
  std::atomic<bool> cancelled_{false};
};

constexpr WebLimits kTestLimits{10 * 1000, 1024 * 1024};

WebOutcome Fetch(const std::string& address, RecordingLink& link, WebLimits limits = kTestLimits) {
  const std::optional<WebAddress> start = ParseWebAddress(address);
  EXPECT_TRUE(start) << address;
  return start ? FetchWithWinHttp(*start, 0, link, limits) : WebOutcome{};
}

std::string Body(const std::string& answer) { return answer.substr(answer.find("\r\n\r\n") + 4); }

TEST(WinHttp, HttpsPagesAndRedirectsEndWithTheServedPage) {
  const std::string page = Body(RawFetch(BuildGetRequest("127.0.0.1", "/page.html")));
  ASSERT_GT(page.size(), 3 * kReceiveChunkSize);
  const struct {
    const char* address;
    int redirects;
  } cases[] = {
      {"https://localhost/page.html", 0},
      {"http://localhost/tls/page.html", 1},  // plain HTTP answering 301 to HTTPS
      {"https://localhost/r5/page.html", kMaxRedirectHops},
  };
  for (const auto& c : cases) {
    RecordingLink link;
    const WebOutcome outcome = Fetch(c.address, link);
    EXPECT_EQ(outcome.end, WebEnd::kCompleted) << c.address;
    EXPECT_EQ(FormatWebAddress(outcome.address), "https://localhost/page.html") << c.address;
    EXPECT_EQ(link.answer.compare(0, 17, "HTTP/1.1 200 OK\r\n"), 0) << c.address;
    EXPECT_EQ(Body(link.answer), page) << c.address;
    // Each hop sends its request (a kept connection is not connected again); a
    // redirect line stands between two hops.
    const auto count = [&](const std::string& event) { return std::count(link.events.begin(), link.events.end(), event); };
    EXPECT_EQ(count("step 2"), c.redirects + 1) << c.address;
    EXPECT_EQ(count("-> https://localhost/page.html"), c.redirects ? 1 : 0) << c.address;
    EXPECT_EQ(link.events.back(), "step 2") << c.address;
  }
}

TEST(WinHttp, StopsWithAMessageAndHandsNothingOn) {
  const struct {
    const char* address;
    WebEnd end;
    const char* message;
  } cases[] = {
      {"https://localhost/r6/page.html", WebEnd::kTooManyRedirects,
       "The page https://localhost/r6/page.html was redirected more than 5 times.\n"
       "The download stopped; nothing was saved."},
      {"http://localhost/loop", WebEnd::kTooManyRedirects,
       "The page http://localhost/loop was redirected more than 5 times.\nThe download stopped; nothing was saved."},
      {"https://localhost/down", WebEnd::kInsecureRedirect,
       "The secure page https://localhost/down redirected to a plain HTTP address:\n"
       "http://localhost/page.html\nThe download stopped; nothing was sent over plain HTTP."},
      {"https://localhost:8443/page.html", WebEnd::kCertificate,
       "The certificate of localhost can not be verified: it was issued by an unknown authority.\n"
       "The page was not downloaded and nothing was sent to the server."},
      {"https://127.0.0.1/page.html", WebEnd::kCertificate,
       "The certificate of 127.0.0.1 can not be verified: it was issued for another host name.\n"
       "The page was not downloaded and nothing was sent to the server."},
      {"https://localhost:8444/page.html", WebEnd::kCertificate,
       "The certificate of localhost can not be verified: it has expired or is not valid yet.\n"
       "The page was not downloaded and nothing was sent to the server."},
  };
  for (const auto& c : cases) {
    RecordingLink link;
    const WebOutcome outcome = Fetch(c.address, link);
    EXPECT_EQ(outcome.end, c.end) << c.address;
    EXPECT_EQ(outcome.message, c.message) << c.address;
    EXPECT_EQ(link.answer, "") << c.address;
    if (c.end == WebEnd::kCertificate) {
      EXPECT_EQ(std::count(link.events.begin(), link.events.end(), "step 2"), 0) << "request sent to " << c.address;
    }
  }
}

// A server on another port that sends a head and a first chunk, then waits until
// it is let go (or stopped).
constexpr std::uint16_t kScriptedPort = 8080;
const std::string kStalledAddress = "http://127.0.0.1:8080/slow";
const std::string kFirstChunk = "HTTP/1.0 200 OK\r\n\r\n" + std::string(3000, 'x');

TEST(WinHttp, CancelStallAndSizeLimitEndTheTransferAtOnce) {
  const struct {
    const char* what;
    std::size_t cancelAfter;
    WebLimits limits;
    WebEnd end;
    std::size_t handedOn;
  } cases[] = {
      {"cancel", 1, kTestLimits, WebEnd::kCancelled, kFirstChunk.size()},
      {"stall", SIZE_MAX, {500, kTestLimits.maxBytes}, WebEnd::kStalled, kFirstChunk.size()},
      {"size", SIZE_MAX, {kTestLimits.stallMilliseconds, 1000}, WebEnd::kTooLarge, 1000},
  };
  for (const auto& c : cases) {
    LoopbackServer server({{kFirstChunk, "end"}, /*paced=*/true}, kScriptedPort);
    ASSERT_TRUE(server.listening()) << server.error();
    RecordingLink link;
    link.cancelAfter = c.cancelAfter;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Fetch(kStalledAddress, link, c.limits).end, c.end) << c.what;
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    EXPECT_LT(took.count(), c.limits.stallMilliseconds / 1000.0 + 1.0) << c.what;
    EXPECT_EQ(link.answer, kFirstChunk.substr(0, c.handedOn)) << c.what;
  }
}

}  // namespace
}  // namespace qb::test
