// Downloads from a real web server: the private nginx the test fixture starts
// (tests/acquire/nginx.sh). The system's HTTP stack fetches its HTTPS pages and
// follows its redirects; a scripted server on another port stalls and streams for
// the stack's limits.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <vector>

#include "acquire/acquire_state.h"
#include "acquire/download_dialog.h"
#include "acquire/winhttp_transfer.h"
#include "tests/acquire/transfer_helpers.h"
#include "tests/support/loopback_server.h"
#include "tests/support/temp_dir.h"

namespace qb::test {
namespace {

// The page nginx serves, as nginx.sh wrote it.
const std::string kPage = ReadText(QB_NGINX_PAGE);
const std::string kSecurePage = "https://localhost/page.html";

std::string Untrusted(const std::string& host, const std::string& reason) {
  return "The certificate of " + host + " can not be verified:\n" + reason +
         ".\nThe page was not downloaded and nothing was sent to the server.";
}

// Through the download dialog, a plain address that redirects to an HTTPS page:
// the page is saved in text mode under the address scanned (as the registry finds
// it), and the request records where it ended.
TEST(Nginx, RedirectedPageIsSavedAsTheAnswerItEndedWith) {
  TempDir dir;
  SetCurrentLinksFolder(dir.path() + "\\");
  ASSERT_EQ(PreparePageDownload("http://localhost/tls/page.html"), PrepareStatus::kReady);
  ASSERT_EQ(DownloadPage(), 0);
  const std::string saved = ReadText(dir.File("localhost.page.html.htm"));
  EXPECT_EQ(saved.compare(0, 18, "HTTP/1.1 200 OK\r\r\n"), 0);
  EXPECT_EQ(saved.substr(saved.find("\r\r\n\r\r\n") + 6), TextMode(kPage));
  EXPECT_EQ(SharedDownloadRequest().address, kSecurePage);
  EXPECT_EQ(LastDownloadStatus(), "Connecting to: localhost/tls/page.html\r\n" + kSent + "Redirected to: " +
                                      kSecurePage + "\r\n" + kSent + kDone);
}

// Records what the transfer reports; cancels once `cancelAfter` bytes came, and
// wants no more than `stopAfter`, as the dialog's size limit does.
class RecordingLink : public TransferLink {
 public:
  bool Cancelled() const override { return cancelled_; }
  void Reached(TransferStep step) override { events.push_back("step " + std::to_string(static_cast<int>(step))); }
  void Redirected(const std::string& address) override { events.push_back("-> " + address); }
  void Refused(const std::string& message) override { events.push_back("refused " + message); }
  bool Received(std::string_view bytes) override {
    answer.append(bytes.substr(0, stopAfter - answer.size()));
    if (answer.size() >= cancelAfter) cancelled_ = true;
    return answer.size() < stopAfter;
  }

  std::vector<std::string> events;
  std::string answer;
  std::size_t cancelAfter = SIZE_MAX;
  std::size_t stopAfter = SIZE_MAX;

 private:
  std::atomic<bool> cancelled_{false};
};

constexpr std::uint32_t kTestStallMilliseconds = 10 * 1000;

WebOutcome Fetch(const std::string& address, RecordingLink& link, std::uint32_t stall = kTestStallMilliseconds) {
  return FetchWithWinHttp(ParseWebAddress(address).value(), 0, link, stall);
}

// Each hop sends its request (a kept connection is not connected again); a
// redirect line stands between two hops. A stop hands nothing on, and a
// certificate that can't be trusted stops it before the request.
TEST(WinHttp, HttpsPagesAndRedirectsEndWithTheServedPageOrAMessage) {
  ASSERT_GT(kPage.size(), 3 * kReceiveChunkSize);
  const struct {
    std::string address;
    WebEnd end;
    int redirects;
    std::string message;
  } cases[] = {
      {kSecurePage, WebEnd::kCompleted, 0, ""},
      {"http://localhost/tls/page.html", WebEnd::kCompleted, 1, ""},  // plain HTTP answering 301 to HTTPS
      {"https://localhost/r5/page.html", WebEnd::kCompleted, kMaxRedirectHops, ""},
      {"https://localhost/r6/page.html", WebEnd::kTooManyRedirects, 0,
       "The page https://localhost/r6/page.html was redirected more than 5 times.\n"
       "The download stopped; nothing was saved."},
      {"https://localhost/down", WebEnd::kInsecureRedirect, 0,
       "The secure page https://localhost/down redirected to a plain HTTP address:\n"
       "http://localhost/page.html\nThe download stopped; nothing was sent over plain HTTP."},
      {"https://localhost:8443/page.html", WebEnd::kCertificate, 0,
       Untrusted("localhost", "it was issued by an unknown authority")},
      {"https://127.0.0.1/page.html", WebEnd::kCertificate, 0,
       Untrusted("127.0.0.1", "it was issued for another host name")},
      {"https://localhost:8444/page.html", WebEnd::kCertificate, 0,
       Untrusted("localhost", "it has expired or is not valid yet")},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.address);
    RecordingLink link;
    const WebOutcome outcome = Fetch(c.address, link);
    EXPECT_EQ(outcome.end, c.end);
    EXPECT_EQ(outcome.message, c.message);
    const auto count = [&](const std::string& event) {
      return std::count(link.events.begin(), link.events.end(), event);
    };
    if (c.end != WebEnd::kCompleted) {
      EXPECT_EQ(link.answer, "");
      EXPECT_TRUE(c.end != WebEnd::kCertificate || count("step 2") == 0) << "a request was sent";
      continue;
    }
    EXPECT_EQ(FormatWebAddress(outcome.address), kSecurePage);
    EXPECT_EQ(link.answer.compare(0, 17, "HTTP/1.1 200 OK\r\n"), 0);
    EXPECT_EQ(link.answer.substr(link.answer.find("\r\n\r\n") + 4), kPage);
    EXPECT_EQ(count("step 2"), c.redirects + 1);
    EXPECT_EQ(count("-> " + kSecurePage), c.redirects ? 1 : 0);
    EXPECT_EQ(link.events.back(), "step 2");
  }
}

// A server on another port that sends a head and a first chunk, then waits until
// it is let go (or stopped).
constexpr std::uint16_t kScriptedPort = 8080;
const std::string kStalledAddress = "http://127.0.0.1:8080/slow";
const std::string kFirstChunk = "HTTP/1.0 200 OK\r\n\r\n" + std::string(3000, 'x');

TEST(WinHttp, CancelStallAndALinkThatWantsNoMoreEndTheTransferAtOnce) {
  const struct {
    const char* what;
    std::size_t cancelAfter, stopAfter;
    std::uint32_t stall;
    WebEnd end;
    std::size_t handedOn;
  } cases[] = {
      {"cancel", 1, SIZE_MAX, kTestStallMilliseconds, WebEnd::kCancelled, kFirstChunk.size()},
      {"stall", SIZE_MAX, SIZE_MAX, 500, WebEnd::kStalled, kFirstChunk.size()},
      {"no more", SIZE_MAX, 1000, kTestStallMilliseconds, WebEnd::kStopped, 1000},
  };
  for (const auto& c : cases) {
    LoopbackServer server({{kFirstChunk, "end"}, /*paced=*/true}, kScriptedPort);
    ASSERT_TRUE(server.listening()) << server.error();
    RecordingLink link;
    link.cancelAfter = c.cancelAfter;
    link.stopAfter = c.stopAfter;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Fetch(kStalledAddress, link, c.stall).end, c.end) << c.what;
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    EXPECT_LT(took.count(), std::min(c.stall / 1000.0 + 1.0, 2.0)) << c.what;
    EXPECT_EQ(link.answer, kFirstChunk.substr(0, c.handedOn)) << c.what;
  }
}

}  // namespace
}  // namespace qb::test
