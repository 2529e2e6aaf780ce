// Case-insensitive comparison of addresses and paths, ASCII only: the run-time
// library's locale never changes what matches.
#pragma once

#include <cstddef>
#include <string_view>

namespace qb {

constexpr char AsciiLower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

inline bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  for (std::size_t i = 0; i < prefix.size(); ++i)
    if (AsciiLower(text[i]) != AsciiLower(prefix[i])) return false;
  return true;
}

inline bool EqualNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && StartsWithNoCase(a, b);
}

}  // namespace qb
