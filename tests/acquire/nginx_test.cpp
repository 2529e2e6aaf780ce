// A download from a real web server: the private nginx the test fixture starts on
// 127.0.0.1:80 (tests/acquire/nginx.sh). The saved file must be exactly what nginx
// sends, status line and headers included, written in text mode.
#include <gtest/gtest.h>
#include <winsock.h>

#include <array>
#include <string>

#include "acquire/acquire_state.h"
#include "acquire/download_dialog.h"
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

}  // namespace
}  // namespace qb::test
