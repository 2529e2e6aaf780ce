// Request preparation: the address rules a scan applies before a download, and
// the limits of the request and status texts.
#include <gtest/gtest.h>

#include "acquire/http_request.h"

namespace qb {
namespace {

constexpr char kFolder[] = "C:\\App\\DataHtml\\";

TEST(PrepareDownload, SplitsAddressesAndNamesTheirFiles) {
  const struct {
    const char *url, *host, *path, *file;  // file: below kFolder
  } cases[] = {
      {"www.Example.com/order/form.asp?x=1", "www.Example.com", "/order/form.asp",
       "example.com.form.asp.htm"},
      // The doubled extension and the empty segment are the names the registry records.
      {"www.example.com/", "www.example.com", "/", "example.com.index.htm.htm"},
      {"http://example.com/?q=1", "example.com", "/", "example.com..htm"},
      {"www.example.com", "www.example.com", "", "example.com.index.htm.htm"},
      // https is fetched by plain HTTP: only the scheme goes.
      {"https://www.example.com/a/b.htm", "www.example.com", "/a/b.htm", "example.com.b.htm.htm"},
      {"HTTP://Shop.Example.com/x", "Shop.Example.com", "/x", "shop.Example.com.x.htm"},
      {"http://WWW.Example.com/a b.htm", "WWW.Example.com", "/a", "example.com.a.htm"},
      {"http://  www.x.com/p", "www.x.com", "/p", "x.com.p.htm"},
      // Whatever cannot stand in one file name becomes "_": the name stays in the folder.
      {"http://127.0.0.1/club/\\..\\..\\outside\\victim", "127.0.0.1", "/club/\\..\\..\\outside\\victim",
       "127.0.0.1._.._.._outside_victim.htm"},
      {"http://a*b|c\"d<e>/\tx", "a*b|c\"d<e>", "/\tx", "a_b_c_d_e_._x.htm"},
      // Only a device's whole name before the first "." is one.
      {"http://lpt1:80/", "lpt1:80", "/", "lpt1_80.index.htm.htm"},
      {"http://console/", "console", "/", "console.index.htm.htm"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.url);
    DownloadRequest request;
    ASSERT_EQ(PrepareDownload(c.url, kFolder, request), PrepareStatus::kReady);
    EXPECT_EQ(request.host, c.host);
    EXPECT_EQ(request.path, c.path);
    EXPECT_EQ(request.localFile, kFolder + std::string(c.file));
  }
}

TEST(PrepareDownload, RejectsWhatItCannotSaveAndLeavesTheRequestAlone) {
  const std::string folder = kFolder;
  // A host-only address is saved as folder + host + ".index.htm.htm".
  const std::size_t nameRoom = kLocalPathMax - folder.size() - std::string(".index.htm.htm").size();
  const struct {
    std::string url;
    PrepareStatus expected;
  } cases[] = {
      // Local paths and other schemes are for the caller to open.
      {"C:\\pages\\form.htm", PrepareStatus::kNotWebAddress},
      {" www.example.com", PrepareStatus::kNotWebAddress},
      // A host of 259 passes its own limit (and then makes too long a name).
      {"www." + std::string(kHostMax - 4, 'h'), PrepareStatus::kFileNameTooLong},
      {"www." + std::string(kHostMax - 3, 'h'), PrepareStatus::kHostTooLong},
      {"www.x/" + std::string(kUrlTextMax - 6, 'p'), PrepareStatus::kFileNameTooLong},
      {"www.x/" + std::string(kUrlTextMax - 5, 'p'), PrepareStatus::kUrlTooLong},
      {"http://" + std::string(nameRoom, 'n'), PrepareStatus::kReady},
      {"http://" + std::string(nameRoom + 1, 'n'), PrepareStatus::kFileNameTooLong},
      // Names Windows opens as devices, whatever follows the first ".".
      {"http://con/", PrepareStatus::kDeviceName},
      {"http://www.NUL/x", PrepareStatus::kDeviceName},
      {"http://com7.example.com/", PrepareStatus::kDeviceName},
      {"http://conout$/", PrepareStatus::kDeviceName},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.url);
    DownloadRequest request{"keep", "keep", "keep", "keep"};
    EXPECT_EQ(PrepareDownload(c.url, folder, request), c.expected);
    if (c.expected == PrepareStatus::kReady)
      EXPECT_EQ(request.localFile.size(), kLocalPathMax);
    else
      EXPECT_EQ(request.localFile, "keep");
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
