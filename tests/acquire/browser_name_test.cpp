// Finding the browser by its windows' captions and its address bar by its text,
// and the address the user copied instead.
#include "acquire/browser_name.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "acquire/http_request.h"
#include "acquire/pasted_address.h"
#include "base/settings.h"

namespace qb {
namespace {

TEST(BrowserName, CaptionCountsEveryPlaceTheNameStarts) {
  const struct {
    std::uint32_t kind;
    const char *other, *caption;
    std::size_t count;
  } rows[] = {
      {kBrowserExplorer, "", "Order - Microsoft Internet Explorer", 1},
      {kBrowserExplorer, "", "Microsoft Internet Explore", 0},  // one letter short
      {kBrowserNetscape, "", "Netscape - netscape", 2},
      {kBrowserOther, "Opera", "Page - opera", 1},
      {kBrowserOther, "", "Any window", 0},  // no caption text: nothing is a browser
      {kBrowserOther, "ab ab", "xab ab ab ab", 3},  // overlapping places count too
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.caption);
    EXPECT_EQ(CaptionNameCount(row.caption, BrowserCaptionName(row.kind, row.other)), row.count);
  }
}

TEST(BrowserName, AddressBarTextAndRegistryKey) {
  EXPECT_TRUE(LooksLikeUrl("HTTP://a"));
  EXPECT_TRUE(LooksLikeUrl("Www.a.com"));
  EXPECT_FALSE(LooksLikeUrl("about:blank"));
  EXPECT_TRUE(LooksLikeUrl("FILE:///C:/page.htm"));  // a saved page the browser shows
  EXPECT_FALSE(LooksLikeUrl("file://server/page.htm"));
  EXPECT_EQ(WithoutHttp("http://www.a.com/x"), "www.a.com/x");
  EXPECT_EQ(WithoutHttp("https://www.a.com/x"), "https://www.a.com/x");  // only "http://" is dropped
}

// Read back as the run-time library splits a command line, each stays one argument.
TEST(BrowserName, ArgumentArrivesWhole) {
  const std::pair<const char*, const char*> rows[] = {  // text, argument
      {"C:\\App\\page.htm", "C:\\App\\page.htm"},
      {"C:\\Program Files\\Q\\page.htm", "\"C:\\Program Files\\Q\\page.htm\""},
      {"C:\\My Pages\\", "\"C:\\My Pages\\\\\""},  // a lone backslash would escape the quote
      {"http://x.com/a\"b", "http://x.com/a%22b"},
      {"http://x.com/a b\"c", "\"http://x.com/a b%22c\""},
  };
  for (const auto& [text, argument] : rows) EXPECT_EQ(BrowserArgument(text), argument) << text;
}

TEST(PastedAddress, FirstLineTellsWhatToScan) {
  using K = PastedKind;
  const std::string longest = "http://a.com/" + std::string(kUrlTextMax - 13, 'x');
  const struct {
    std::string clipboard;
    K kind;
    std::string text;
  } rows[] = {
      {" \r\n\thttp://a.com/f.htm \r\nhttp://second", K::kWeb, "http://a.com/f.htm"},
      {"file:///C:/My%20Pages/form.htm", K::kLocalFile, "C:\\My Pages\\form.htm"},
      {"File:///c:/a%2fb%25.htm?x#top", K::kLocalFile, "c:\\a/b%.htm"},  // an escaped "/" stays one
      {"file:///C:/f%C3%A9.htm", K::kLocalFile, "C:\\f\xC3\xA9.htm"},  // UTF-8 bytes, converted by Windows
      {"file:///C:/50%.htm%zz%00%4", K::kLocalFile, "C:\\50%.htm%zz%00%4"},
      {"C:\\saved\\a.htm", K::kLocalFile, "C:\\saved\\a.htm"},
      {"z:/a.htm", K::kLocalFile, "z:/a.htm"},  // the first and last drive letters, in either case
      {"a:\\b.htm", K::kLocalFile, "a:\\b.htm"},
      {"1:\\a.htm", K::kNone, ""},  // a digit is no drive
      {"\\\\server\\share\\a.htm", K::kLocalFile, "\\\\server\\share\\a.htm"},
      {std::string("http://a.com\0junk", 17), K::kWeb, "http://a.com"},
      {"   \r\n  ", K::kNone, ""},
      {"hello\nhttp://a.com", K::kNone, ""},  // only the first line counts
      {"file://server/share/a.htm", K::kNone, ""},
      {"saved\\a.htm", K::kNone, ""},  // relative to nothing the user sees
      {longest, K::kWeb, longest},
      {longest + "x", K::kTooLong, ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.clipboard.substr(0, 40));
    const PastedAddress pasted = ParsePastedAddress(row.clipboard);
    EXPECT_EQ(pasted.kind, row.kind);
    EXPECT_EQ(pasted.text, row.text);
  }
}

}  // namespace
}  // namespace qb
