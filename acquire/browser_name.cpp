#include "acquire/browser_name.h"

#include <cctype>

#include "acquire/no_case.h"
#include "acquire/pasted_address.h"
#include "base/settings.h"

namespace qb {

std::string_view BrowserCaptionName(std::uint32_t kind, std::string_view otherCaption) {
  if (kind == kBrowserExplorer) return kExplorerCaption;
  if (kind == kBrowserNetscape) return kNetscapeCaption;
  return otherCaption;
}

std::size_t CaptionNameCount(std::string_view caption, std::string_view name) {
  if (name.empty()) return 0;
  // Only positions holding the name's first letter, in either case, are compared.
  const auto first = static_cast<unsigned char>(name[0]);
  const char upper = static_cast<char>(std::toupper(first));
  const char lower = static_cast<char>(std::tolower(first));
  std::size_t count = 0;
  for (std::size_t pos = 0; pos < caption.size(); ++pos) {
    if ((caption[pos] == upper || caption[pos] == lower) &&
        StartsWithNoCase(caption.substr(pos), name)) {
      ++count;
    }
  }
  return count;
}

bool LooksLikeUrl(std::string_view text) {
  return StartsWithNoCase(text, "http") || StartsWithNoCase(text, "www.") || IsFileUrl(text);
}

std::string_view WithoutHttp(std::string_view url) {
  constexpr std::string_view kHttp = "http://";
  return StartsWithNoCase(url, kHttp) ? url.substr(kHttp.size()) : url;
}

std::string BrowserArgument(std::string_view text) {
  std::string argument;
  for (char c : text) {
    if (c == '"')
      argument += "%22";
    else
      argument += c;
  }
  if (argument.find_first_of(" \t") == std::string::npos) return argument;
  const std::size_t backslashes = argument.size() - 1 - argument.find_last_not_of('\\');
  argument.append(backslashes, '\\');
  return '"' + argument + '"';
}

}  // namespace qb
