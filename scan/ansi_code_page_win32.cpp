#include <windows.h>

#include "scan/page_encoding.h"

namespace qb {
namespace {

// Both conversions are asked for their length first; 0 means the text can't be
// converted, and it then goes as Windows-1252.
std::wstring AnsiToWide(std::string_view text) {
  const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(length > 0 ? length : 0), L'\0');
  if (length > 0) {
    MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), wide.data(), length);
  }
  return wide;
}

}  // namespace

std::string AnsiToUtf8(std::string_view text) {
  if (text.empty()) return {};
  const std::wstring wide = AnsiToWide(text);
  const int wideLength = static_cast<int>(wide.size());
  const int length = WideCharToMultiByte(CP_UTF8, 0, wide.data(), wideLength, nullptr, 0, nullptr, nullptr);
  if (wide.empty() || length <= 0) return Windows1252ToUtf8(text);
  std::string utf8(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), wideLength, utf8.data(), length, nullptr, nullptr);
  return utf8;
}

}  // namespace qb
