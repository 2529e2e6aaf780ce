#include "acquire/manual_site.h"

#include <algorithm>

#include "acquire/no_case.h"

namespace qb {

std::string TrimToSiteFolder(std::string text) {
  const std::size_t last = text.rfind('\\');
  const std::size_t p = last == std::string::npos ? 0 : last;
  // Whole-text comparisons: an address that is only a scheme never holds a
  // backslash, so these two cuts do not happen in practice.
  if (EqualNoCase(text, "http://") && p > 7) {
    text.resize(p + 1);
  } else if (EqualNoCase(text, "www.") && p > 4) {
    text.resize(p + 1);
  }
  const std::size_t n = text.size();
  const bool extension = (n >= 4 && text[n - 4] == '.') || (n >= 3 && text[n - 3] == '.');
  if (extension) {
    while (text.size() > 1 && text.back() != '\\') text.pop_back();
  }
  return text;
}

std::string ManualSiteLine(std::string_view siteFolder, std::string_view fileTitle) {
  // Six characters compared, as they always were: "http:/" takes off all seven of
  // "http://". Letter case counts here.
  constexpr std::string_view kScheme = "http://";
  const bool scheme = siteFolder.substr(0, kScheme.size() - 1) == kScheme.substr(0, kScheme.size() - 1);
  std::string line(scheme ? siteFolder.substr(std::min(kScheme.size(), siteFolder.size())) : siteFolder);
  if (line.empty() || line.back() != '/') line += '/';
  line.append(fileTitle);
  line += '\n';
  return line;
}

bool LiesInFolder(std::string_view path, std::string_view folder) { return StartsWithNoCase(path, folder); }

}  // namespace qb
