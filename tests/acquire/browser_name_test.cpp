// Finding the browser by its windows' captions and its address bar by its text.
#include "acquire/browser_name.h"

#include <gtest/gtest.h>

#include "base/settings.h"

namespace qb {
namespace {

TEST(BrowserName, CaptionCountsEveryPlaceTheNameStarts) {
  const struct {
    std::uint32_t kind;
    const char* other;
    const char* caption;
    std::size_t count;
  } rows[] = {
      {kBrowserExplorer, "", "Order - Microsoft Internet Explorer", 1},
      {kBrowserExplorer, "", "order - MICROSOFT INTERNET EXPLORER", 1},
      {kBrowserExplorer, "", "Microsoft Internet Explore", 0},  // one letter short
      {kBrowserNetscape, "", "Netscape - netscape", 2},
      {kBrowserNetscape, "", "Microsoft Internet Explorer", 0},
      {kBrowserOther, "Opera", "Page - opera", 1},
      {kBrowserOther, "Opera", "Opera - Opera", 2},
      {kBrowserOther, "Opera", "Operetta", 0},
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
  EXPECT_TRUE(LooksLikeUrl("https://a"));
  EXPECT_TRUE(LooksLikeUrl("Www.a.com"));
  EXPECT_FALSE(LooksLikeUrl("about:blank"));
  EXPECT_FALSE(LooksLikeUrl("C:\\page.htm"));
  EXPECT_EQ(WithoutHttp("http://www.a.com/x"), "www.a.com/x");
  EXPECT_EQ(WithoutHttp("https://www.a.com/x"), "https://www.a.com/x");  // only "http://" is dropped
}

// Read back as the run-time library splits a command line, each stays one argument.
TEST(BrowserName, ArgumentArrivesWhole) {
  const struct {
    const char *text, *argument;
  } rows[] = {
      {"C:\\App\\page.htm", "C:\\App\\page.htm"},
      {"C:\\Program Files\\Q\\page.htm", "\"C:\\Program Files\\Q\\page.htm\""},
      {"C:\\My Pages\\", "\"C:\\My Pages\\\\\""},  // a lone backslash would escape the quote
      {"http://x.com/a\"b", "http://x.com/a%22b"},
      {"http://x.com/a b\"c", "\"http://x.com/a b%22c\""},
  };
  for (const auto& row : rows) EXPECT_EQ(BrowserArgument(row.text), row.argument) << row.text;
}

}  // namespace
}  // namespace qb
