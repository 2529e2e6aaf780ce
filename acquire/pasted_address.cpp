#include "acquire/pasted_address.h"

#include <algorithm>

#include "acquire/http_request.h"
#include "acquire/no_case.h"

namespace qb {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool IsLineEnd(char c) { return c == '\r' || c == '\n'; }

bool IsAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = AsciiLower(c);
  if (lower >= 'a' && lower <= 'f') return lower - 'a' + 10;
  return -1;
}

// "C:\...", "C:/..." or "\\server\...": a path that names a file wherever the
// program runs. Anything relative would depend on the working folder.
bool IsAbsoluteWindowsPath(std::string_view text) {
  if (text.size() >= 3 && IsAsciiLetter(text[0]) && text[1] == ':' &&
      (text[2] == '\\' || text[2] == '/'))
    return true;
  return text.size() >= 2 && text[0] == '\\' && text[1] == '\\';
}

std::string_view FirstLineTrimmed(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  std::size_t start = 0;
  while (start < text.size() && IsBlank(text[start])) ++start;
  std::size_t end = start;
  while (end < text.size() && !IsLineEnd(text[end])) ++end;
  while (end > start && IsBlank(text[end - 1])) --end;
  return text.substr(start, end - start);
}

}  // namespace

bool IsFileUrl(std::string_view text) { return StartsWithNoCase(text, kFileUrlPrefix); }

std::string FileUrlPath(std::string_view fileUrl) {
  std::string_view rest = fileUrl.substr(std::min(fileUrl.size(), kFileUrlPrefix.size()));
  rest = rest.substr(0, rest.find_first_of("?#"));
  std::string path;
  path.reserve(rest.size());
  for (std::size_t pos = 0; pos < rest.size(); ++pos) {
    const char c = rest[pos];
    if (c == '%' && pos + 2 < rest.size()) {
      const int high = HexValue(rest[pos + 1]);
      const int low = HexValue(rest[pos + 2]);
      if (high >= 0 && low >= 0 && (high | low) != 0) {
        path += static_cast<char>(high * 16 + low);
        pos += 2;
        continue;
      }
    }
    path += c == '/' ? '\\' : c;
  }
  return path;
}

PastedAddress ParsePastedAddress(std::string_view clipboardText) {
  PastedAddress pasted;
  const std::string_view line = FirstLineTrimmed(clipboardText);
  pasted.line = std::string(line);
  const bool web = StripScheme(line).has_value();
  const bool fileUrl = IsFileUrl(line);
  if (!web && !fileUrl && !IsAbsoluteWindowsPath(line)) return pasted;
  if (line.size() > kUrlTextMax) {
    pasted.kind = PastedKind::kTooLong;
    return pasted;
  }
  pasted.kind = web ? PastedKind::kWeb : PastedKind::kLocalFile;
  pasted.text = fileUrl ? FileUrlPath(line) : pasted.line;
  return pasted;
}

}  // namespace qb
