// The key clipboard: "&Copy key" remembers a key of the table and "&Paste key"
// appends a row for a further key, through the key editor's two process-wide
// buffers (the Name it last held and the field it last read). Neither touches the
// system clipboard; a click's Description copy lives with the key list.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "keys/key_table.h"

namespace qb {

// The key editor's buffers, shared with Paste key.
constexpr std::size_t kNameBufferSize = 260;     // a Name of up to 259 characters
constexpr std::size_t kFieldBufferSize = 30000;  // a field of up to kMaxFieldLength
static_assert(kFieldBufferSize == kMaxFieldLength + 1, "the field buffer holds the longest field");
std::array<char, kNameBufferSize>& KeyNameBuffer();
std::array<char, kFieldBufferSize>& KeyFieldBuffer();

// A buffer's text up to its first NUL (all of it when there is none).
template <std::size_t N>
std::string_view BufferText(const std::array<char, N>& buffer) {
  const std::string_view all(buffer.data(), N);
  return all.substr(0, all.find('\0'));
}

// The copied key: an index into the table, or all bits set when nothing was copied
// (the value at start).
constexpr std::uint32_t kNoCopiedKey = 0xFFFFFFFF;
std::uint32_t CopiedKeyIndex();
void SetCopiedKeyIndex(std::uint32_t index);

// Paste key's work on the table, in its order: nothing without a copied key that
// has a Name; the Name into the Name buffer; the field buffer's text as the copied
// key's Description (an empty buffer stores nothing); then one key more, whatever
// its position holds, and the database changed. The new key's index, or -1 when
// nothing was pasted (also when the table is full: the count never passes it).
int PasteKey(KeyTable& table);

}  // namespace qb
