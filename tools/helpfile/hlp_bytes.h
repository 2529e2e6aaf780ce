// Little-endian writing shared by the pieces of the help file writer, and the
// "none" that link, block and file header fields hold when they point nowhere.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qb::help {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kNone = 0xFFFFFFFF;

inline void Put8(Bytes& b, std::uint32_t v) { b.push_back(static_cast<std::uint8_t>(v)); }
inline void Put16(Bytes& b, std::uint32_t v) {
  Put8(b, v);
  Put8(b, v >> 8);
}
inline void Put32(Bytes& b, std::uint32_t v) {
  Put16(b, v);
  Put16(b, v >> 16);
}
inline void PutText(Bytes& b, const std::string& s) { b.insert(b.end(), s.begin(), s.end()); }
inline void PutFixed(Bytes& b, const std::string& s, std::size_t width) {
  const std::size_t n = std::min(s.size(), width - 1);  // always zero-terminated
  b.insert(b.end(), s.begin(), s.begin() + n);
  b.insert(b.end(), width - n, 0);
}
inline void Set32(Bytes& b, std::size_t at, std::uint32_t v) {
  for (int i = 0; i < 4; ++i) b[at + i] = static_cast<std::uint8_t>(v >> (8 * i));
}

}  // namespace qb::help
