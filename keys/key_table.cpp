#include "keys/key_table.h"

#include <algorithm>
#include <vector>

#include "base/user_message.h"

namespace qb {
namespace {

bool g_changed = false;

bool InTable(int index) { return index >= 0 && index < kMaxKeys; }

void MoveEntry(KeyTable& table, int to, int from) {
  for (auto& field : table.fields) field[to] = field[from];
}

void EmptyEntry(KeyTable& table, int index) {
  for (auto& field : table.fields) field[index] = kNoBlock;
}

}  // namespace

unsigned char FoldCase(unsigned char c) {
  if (c >= 'A' && c <= 'Z') return static_cast<unsigned char>(c + ('a' - 'A'));
  // The upper halves of the Windows single-byte code pages put each capital 0x20
  // below its small letter; 0xD7 is the multiplication sign there.
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return static_cast<unsigned char>(c + 0x20);
  return c;
}

KeyTable& Keys() {
  static KeyTable table;
  return table;
}

bool DatabaseChanged() { return g_changed; }
void SetDatabaseChanged(bool changed) { g_changed = changed; }

int KeysInUse(const KeyTable& table) { return std::clamp<int>(table.count, 0, kMaxKeys); }

int CompareNoCase(std::string_view a, std::string_view b) {
  const std::size_t n = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < n; ++i) {
    const unsigned char x = FoldCase(static_cast<unsigned char>(a[i]));
    const unsigned char y = FoldCase(static_cast<unsigned char>(b[i]));
    if (x != y) return x < y ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

void ClearAllKeys(KeyTable& table, SlotName* slotName) {
  for (auto& field : table.fields) {
    for (TextBlock& block : field) {
      if (block != kNoBlock) FreeTextBlock(block);
      block = kNoBlock;
    }
  }
  table.count = 0;
  if (slotName) slotName->fill('\0');
}

void FreeKeyFields(KeyTable& table, int index) {
  if (!InTable(index)) return;
  for (auto& field : table.fields) {
    FreeTextBlock(field[index]);
    field[index] = kNoBlock;
  }
}

void DeleteKey(KeyTable& table, int index) {
  const int count = KeysInUse(table);
  if (index < 0 || index >= count) return;
  const int newCount = count - 1;
  table.count = newCount;
  FreeKeyFields(table, index);
  for (int i = index; i < newCount; ++i) MoveEntry(table, i, i + 1);
  // The last key now sits one place up; its old position would otherwise hold a
  // second copy of its handles, which a later free there would take from it.
  if (index < newCount) EmptyEntry(table, newCount);
}

void MakeRoom(KeyTable& table, int first, int last) {
  if (first < 0 || last >= kMaxKeys || first >= last) return;
  for (int i = last; i > first; --i) MoveEntry(table, i, i - 1);
  // Same reason as in DeleteKey: entry first + 1 now owns these handles.
  EmptyEntry(table, first);
}

int FindKeyByName(const KeyTable& table, std::string_view name) {
  const int count = KeysInUse(table);
  for (int i = 0; i < count; ++i) {
    TextLock lock(table.fields[kName][i]);
    if (lock.text().empty()) continue;
    if (CompareNoCase(lock.text(), name) == 0) return i;
  }
  return kNoKey;
}

bool SetDescription(KeyTable& table, std::string_view text, int index) {
  SetDatabaseChanged(true);
  if (!InTable(index)) return false;
  if (text.empty()) return true;
  TextBlock block = MakeTextBlock(text);
  if (block == kNoBlock) {
    TellUser("Not enough memory to store the data", "Information", MessageIcon::kInformation);
    return false;
  }
  table.fields[kDescription][index] = block;
  return true;
}

bool SetKeyField(KeyTable& table, int index, KeyField field, std::string_view text) {
  SetDatabaseChanged(true);
  if (!InTable(index)) return false;
  TextBlock& entry = table.fields[field][index];
  FreeTextBlock(entry);
  entry = kNoBlock;
  if (text.empty()) return true;
  entry = MakeTextBlock(text);
  return entry != kNoBlock;
}

TextBlock KeyFieldBlock(const KeyTable& table, int index, KeyField field) {
  return InTable(index) ? table.fields[field][index] : kNoBlock;
}

TextLock LockKeyField(const KeyTable& table, int index, KeyField field) {
  return TextLock(KeyFieldBlock(table, index, field));
}

std::string KeyFieldText(const KeyTable& table, int index, KeyField field) {
  return TextOf(KeyFieldBlock(table, index, field));
}

void SortKeysByName(KeyTable& table, SortDirection direction) {
  const int count = KeysInUse(table);
  // Names are read and folded once, and the sort moves key numbers; the keys
  // themselves move once at the end. Folded texts compare bytewise as
  // CompareNoCase compares the originals.
  struct Name {
    bool present;  // the entry has a block
    std::string folded;
  };
  std::vector<Name> names(count);
  for (int i = 0; i < count; ++i) {
    const TextBlock block = table.fields[kName][i];
    std::string text = TextOf(block);
    for (char& c : text) c = static_cast<char>(FoldCase(static_cast<unsigned char>(c)));
    names[i] = Name{block != kNoBlock, std::move(text)};
  }
  const int sign = direction == SortDirection::kAscending ? 1 : -1;
  // 0 whenever either Name entry is empty, so such a key is never passed.
  auto compare = [&](int a, int b) {
    if (!names[a].present || !names[b].present) return 0;
    const int c = names[a].folded.compare(names[b].folded);
    return sign * (c < 0 ? -1 : c > 0 ? 1 : 0);
  };
  std::vector<int> order(count);
  for (int i = 0; i < count; ++i) order[i] = i;
  for (int i = 1; i < count; ++i) {
    for (int j = i; j > 0 && compare(order[j], order[j - 1]) == -1; --j) std::swap(order[j], order[j - 1]);
  }
  std::vector<std::array<TextBlock, kKeyFieldCount>> sorted(count);
  for (int i = 0; i < count; ++i) {
    for (int f = 0; f < kKeyFieldCount; ++f) sorted[i][f] = table.fields[f][order[i]];
  }
  for (int i = 0; i < count; ++i) {
    for (int f = 0; f < kKeyFieldCount; ++f) table.fields[f][i] = sorted[i][f];
  }
}

void MoveKey(KeyTable& table, int from, int to) {
  const int count = KeysInUse(table);
  if (from < 0 || from >= count) return;
  // Dropping the last key on itself aims one past the end: it stays last.
  to = std::clamp(to, 0, count - 1);
  std::vector<std::array<TextBlock, kKeyFieldCount>> order(count);
  int next = 0;
  for (int i = 0; i < count; ++i) {
    if (i != to && next == from) ++next;
    const int source = i == to ? from : next++;
    for (int f = 0; f < kKeyFieldCount; ++f) order[i][f] = table.fields[f][source];
  }
  for (int i = 0; i < count; ++i) {
    for (int f = 0; f < kKeyFieldCount; ++f) table.fields[f][i] = order[i][f];
  }
}

}  // namespace qb
