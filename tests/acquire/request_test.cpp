// Request preparation: the address rules a scan applies before a download, and
// the limits of the request and status texts.
#include <gtest/gtest.h>

#include "acquire/http_request.h"

namespace qb {
namespace {

constexpr char kFolder[] = "C:\\App\\DataHtml\\";

// A refused address leaves the request as it was.
TEST(PrepareDownload, SplitsAddressesNamesTheirFilesOrRefusesWhatItCannotSave) {
  using S = PrepareStatus;
  const std::string folder = kFolder;
  // A host-only address is saved as folder + host + ".index.htm.htm".
  const std::size_t nameRoom = kLocalPathMax - folder.size() - std::string(".index.htm.htm").size();
  const struct {
    std::string url;
    PrepareStatus status;
    std::string host = "keep", path = "keep", file = "keep";  // file: below kFolder
  } cases[] = {
      {"www.Example.com/order/form.asp?x=1", S::kReady, "www.Example.com", "/order/form.asp",
       "example.com.form.asp.htm"},
      // The doubled extension and the empty segment are the names the registry records.
      {"www.example.com/", S::kReady, "www.example.com", "/", "example.com.index.htm.htm"},
      {"http://example.com/?q=1", S::kReady, "example.com", "/", "example.com..htm"},
      {"www.example.com", S::kReady, "www.example.com", "", "example.com.index.htm.htm"},
      // https is fetched by plain HTTP: only the scheme goes.
      {"https://www.example.com/a/b.htm", S::kReady, "www.example.com", "/a/b.htm", "example.com.b.htm.htm"},
      {"HTTP://Shop.Example.com/x", S::kReady, "Shop.Example.com", "/x", "shop.Example.com.x.htm"},
      {"http://WWW.Example.com/a b.htm", S::kReady, "WWW.Example.com", "/a", "example.com.a.htm"},
      {"http://  www.x.com/p", S::kReady, "www.x.com", "/p", "x.com.p.htm"},
      // Whatever cannot stand in one file name becomes "_": the name stays in the folder.
      {"http://127.0.0.1/club/\\..\\..\\outside\\victim", S::kReady, "127.0.0.1", "/club/\\..\\..\\outside\\victim",
       "127.0.0.1._.._.._outside_victim.htm"},
      {"http://a*b|c\"d<e>/\tx", S::kReady, "a*b|c\"d<e>", "/\tx", "a_b_c_d_e_._x.htm"},
      // Only a device's whole name before the first "." is one.
      {"http://lpt1:80/", S::kReady, "lpt1:80", "/", "lpt1_80.index.htm.htm"},
      {"http://console/", S::kReady, "console", "/", "console.index.htm.htm"},
      {"http://" + std::string(nameRoom, 'n'), S::kReady, std::string(nameRoom, 'n'), "",
       std::string(nameRoom, 'n') + ".index.htm.htm"},
      // Local paths and other schemes are for the caller to open.
      {"C:\\pages\\form.htm", S::kNotWebAddress},
      {" www.example.com", S::kNotWebAddress},
      // A host of 259 passes its own limit (and then makes too long a name).
      {"www." + std::string(kHostMax - 4, 'h'), S::kFileNameTooLong},
      {"www." + std::string(kHostMax - 3, 'h'), S::kHostTooLong},
      {"www.x/" + std::string(kUrlTextMax - 6, 'p'), S::kFileNameTooLong},
      {"www.x/" + std::string(kUrlTextMax - 5, 'p'), S::kUrlTooLong},
      {"http://" + std::string(nameRoom + 1, 'n'), S::kFileNameTooLong},
      // Names Windows opens as devices, whatever follows the first ".".
      {"http://con/", S::kDeviceName},
      {"http://www.NUL/x", S::kDeviceName},
      {"http://com7.example.com/", S::kDeviceName},
      {"http://conout$/", S::kDeviceName},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.url.substr(0, 60));
    DownloadRequest request{"keep", "keep", "keep", "keep"};
    EXPECT_EQ(PrepareDownload(c.url, folder, request), c.status);
    EXPECT_EQ(request.host, c.host);
    EXPECT_EQ(request.path, c.path);
    EXPECT_EQ(request.localFile, c.status == S::kReady ? folder + c.file : c.file);
  }
}

TEST(RequestText, PostLengthCountsTheRequestLineAndStopsAtTheLimit) {
  // 29963 + 27 counted = 29990, five digits and the blank line: exactly 29999.
  std::string fits(29963, 'q');
  ASSERT_TRUE(AppendPostHeader(fits));
  EXPECT_EQ(fits, std::string(29963, 'q') + " HTTP/1.0\r\nCONTENT-LENGTH: 29990\r\n\r\n");
  EXPECT_EQ(fits.size(), kRequestTextMax);
  std::string full(29964, 'q');
  EXPECT_FALSE(AppendPostHeader(full));
  EXPECT_EQ(full, std::string(29964, 'q'));
}

TEST(TransferStatus, StaysWithinItsBuffer) {
  TransferStatus status;
  status.Append(std::string(kStatusTextMax - 2, 'a'));
  status.MarkCountLine();
  status.AppendByteCount(5000);
  EXPECT_EQ(status.text(), std::string(kStatusTextMax - 2, 'a') + "50");
  status.CutToMark();
  EXPECT_EQ(status.text().size(), kStatusTextMax - 2);
}

}  // namespace
}  // namespace qb
