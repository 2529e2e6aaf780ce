// The key editor's two process-wide text buffers. The editor reads the Name edit
// into the Name buffer and every other field edit, one after the other, into the
// one field buffer; Paste key reads both afterwards, so what they hold outlives
// the dialog. Platform-free.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "keys/key_table.h"

namespace qb {

// A typed Name keeps at most 259 characters; a field at most kMaxFieldLength.
constexpr std::size_t kKeyNameBufferSize = 260;
constexpr std::size_t kFieldBufferSize = kMaxFieldLength + 1;
static_assert(kFieldBufferSize == 30000, "the shared field buffer");

using KeyNameBuffer = std::array<char, kKeyNameBufferSize>;
using FieldBuffer = std::array<char, kFieldBufferSize>;

KeyNameBuffer& EditorNameBuffer();
FieldBuffer& EditorFieldBuffer();

// A buffer's text up to its first NUL (all of it when there is none).
template <std::size_t N>
std::string_view BufferText(const std::array<char, N>& buffer) {
  const std::string_view all(buffer.data(), N);
  return all.substr(0, all.find('\0'));
}

}  // namespace qb
