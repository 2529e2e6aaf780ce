// The texts of "Scan Manual": the site folder cut from a captured address and the
// address line a hand-picked page is recorded under.
#include "acquire/manual_site.h"

#include <gtest/gtest.h>

#include <utility>

namespace qb {
namespace {

TEST(ManualSite, SiteFolderLooksForABackslashOnly) {
  const std::pair<const char*, const char*> rows[] = {  // captured, its site folder
      {"http://www.example.com/shop/", "http://www.example.com/shop/"},
      {"http://www.example.com/a/form.htm", "h"},     // ".htm" reads as one; slashes are no stop
      {"http://www.example.com/a/page.de", "h"},      // two-letter extension
      {"http://www.example.com/a/page.html", "http://www.example.com/a/page.html"},
      {"C:\\Pages\\form.htm", "C:\\Pages\\"},         // a local path keeps its folder
      {"http://", "http://"},                         // nothing after the scheme: kept
      {"a.b", "a.b"},                                 // the dot is second-last
      {".ab", "."},
  };
  for (const auto& [captured, site] : rows) EXPECT_EQ(TrimToSiteFolder(captured), site) << captured;
}

TEST(ManualSite, SiteLineDropsTheSchemeAndEndsWithTheFileTitle) {
  const std::pair<const char*, const char*> rows[] = {  // site, line
      {"http://www.example.com/shop/", "www.example.com/shop/form.htm\n"},
      {"www.example.com/shop", "www.example.com/shop/form.htm\n"},
      {"http:/x", "/form.htm\n"},          // six characters decide; seven go
      {"http:/", "/form.htm\n"},
      {"HTTP://www.example.com/", "HTTP://www.example.com/form.htm\n"},  // letter case counts
  };
  for (const auto& [site, line] : rows) EXPECT_EQ(ManualSiteLine(site, "form.htm"), line) << site;
}

}  // namespace
}  // namespace qb
