// The texts of "Scan Manual": the site folder cut from a captured address and the
// address line a hand-picked page is recorded under.
#include "acquire/manual_site.h"

#include <gtest/gtest.h>

namespace qb {
namespace {

TEST(ManualSite, SiteFolderLooksForABackslashOnly) {
  const struct {
    const char* captured;
    const char* site;
  } rows[] = {
      {"http://www.example.com/shop/", "http://www.example.com/shop/"},
      {"www.example.com/shop/", "www.example.com/shop/"},
      {"www.example.com", "w"},                       // ".com" reads as an extension
      {"http://www.example.com/a/form.htm", "h"},     // slashes are no stop
      {"http://www.example.com/a/page.de", "h"},      // two-letter extension
      {"http://www.example.com/a/page.html", "http://www.example.com/a/page.html"},
      {"C:\\Pages\\form.htm", "C:\\Pages\\"},         // a local path keeps its folder
      {"C:\\form.htm", "C:\\"},
      {"http://", "http://"},                         // nothing after the scheme: kept
      {"a.b", "a.b"},                                 // the dot is second-last
      {".ab", "."},
      {"ab", "ab"},
      {"x", "x"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.captured);
    EXPECT_EQ(TrimToSiteFolder(row.captured), row.site);
  }
}

TEST(ManualSite, SiteLineDropsTheSchemeAndEndsWithTheFileTitle) {
  const struct {
    const char* site;
    const char* line;
  } rows[] = {
      {"http://www.example.com/shop/", "www.example.com/shop/form.htm\n"},
      {"www.example.com/shop", "www.example.com/shop/form.htm\n"},
      {"http:/x", "/form.htm\n"},          // six characters decide; seven go
      {"http:/", "/form.htm\n"},
      {"HTTP://www.example.com/", "HTTP://www.example.com/form.htm\n"},  // letter case counts
      {"h", "h/form.htm\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.site);
    EXPECT_EQ(ManualSiteLine(row.site, "form.htm"), row.line);
  }
}

}  // namespace
}  // namespace qb
