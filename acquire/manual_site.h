// The texts of "Scan Manual": the site folder cut from the browser's address, the
// address a hand-picked page is recorded under, and whether that page already lies
// in DataHtml. Platform-free.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qb {

// Characters of the address the manual scan keeps (the hand-typed address edit
// reads as many).
constexpr std::size_t kManualUrlMax = 2048;

// The site folder of a captured address. The rules look for a backslash, never a
// slash, so an address ending in a file name with a three- or two-letter extension
// is cut down to its first character, while one ending in "/" stays whole. Users
// have long relied on confirming or declining exactly these texts.
std::string TrimToSiteFolder(std::string text);

// The address line a hand-picked page is recorded under: the site folder without
// "http://", a closing "/", the page's file title, and a line feed.
std::string ManualSiteLine(std::string_view siteFolder, std::string_view fileTitle);

// Whether `path` begins with `folder`, without regard to case.
bool LiesInFolder(std::string_view path, std::string_view folder);

}  // namespace qb
