#include "keys/key_clipboard.h"

#include <algorithm>
#include <cstring>

namespace qb {
namespace {

std::uint32_t g_copiedKey = kNoCopiedKey;

}  // namespace

std::array<char, kNameBufferSize>& KeyNameBuffer() {
  static std::array<char, kNameBufferSize> buffer{};
  return buffer;
}

std::array<char, kFieldBufferSize>& KeyFieldBuffer() {
  static std::array<char, kFieldBufferSize> buffer{};
  return buffer;
}

std::uint32_t CopiedKeyIndex() { return g_copiedKey; }
void SetCopiedKeyIndex(std::uint32_t index) { g_copiedKey = index; }

int PasteKey(KeyTable& table) {
  if (g_copiedKey >= static_cast<std::uint32_t>(kMaxKeys)) return -1;
  const int copied = static_cast<int>(g_copiedKey);
  if (KeyFieldBlock(table, copied, kName) == kNoBlock) return -1;

  auto& name = KeyNameBuffer();
  name.fill('\0');
  const std::string text = KeyFieldText(table, copied, kName);
  std::memcpy(name.data(), text.data(), std::min(text.size(), name.size() - 1));

  const auto& field = KeyFieldBuffer();
  SetDescription(table, std::string_view(field.data(), strnlen(field.data(), field.size())), copied);

  const int index = KeysInUse(table);
  if (index >= kMaxKeys) return -1;
  table.count = index + 1;
  SetDatabaseChanged(true);
  return index;
}

}  // namespace qb
