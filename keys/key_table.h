// The key table: the keys of the database loaded in the current slot, as four
// parallel arrays of text blocks (Name, Search Names, Selection, Description) and a
// key count. Keys are addressed by index; kNoKey (2000) stands for "no key".
// Platform-free; one user-interface thread, no locking.
//
// The table keeps two rules that make stale handles harmless:
//  - a live block is held by exactly one entry;
//  - every entry at or past the count is empty, unless a caller put something there.
// Every operation bounds its work by the capacity, whatever the count says.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/settings.h"
#include "base/textblock.h"

namespace qb {

constexpr int kMaxKeys = 2000;
constexpr int kNoKey = kMaxKeys;
// The longest field text the database file carries; the key editor reads at most
// this many characters into a field.
constexpr std::size_t kMaxFieldLength = 29999;
// What a user who adds a key to a full table is told. It names half the real
// capacity; users know the program by this text, so it stays as it is.
constexpr char kNoRoomText[] = "Ther is no room for a new key.\nEach database can hold maximum 1000 keys";

enum KeyField : int { kName = 0, kSearchNames = 1, kSelection = 2, kDescription = 3 };
constexpr int kKeyFieldCount = 4;

struct KeyTable {
  // fields[f][i] is field f of key i; kNoBlock for an empty field.
  std::array<std::array<TextBlock, kMaxKeys>, kKeyFieldCount> fields{};
  std::int32_t count = 0;
};

using SlotName = std::array<char, kSlotNameSize>;

// The process's one table (the current slot's keys).
KeyTable& Keys();

// The database-changed flag: the table differs from its file. The operations that
// store a key's text set it; the structural ones (clear, delete, reorder) leave it
// to their callers, which know whether the user changed something (the key list
// sorts again at every fill, which must not mark the database changed).
bool DatabaseChanged();
void SetDatabaseChanged(bool changed);

// The count limited to 0..kMaxKeys.
int KeysInUse(const KeyTable& table);

// Frees every block of all kMaxKeys positions and sets the count to 0; with
// `slotName` also fills that name with zero bytes.
void ClearAllKeys(KeyTable& table, SlotName* slotName = nullptr);
// Frees the four blocks of key `index` and empties its entries; the count stays.
void FreeKeyFields(KeyTable& table, int index);
// Removes key `index` (0..count-1): frees its fields, moves every later key up one
// place and empties the position the last key left.
void DeleteKey(KeyTable& table, int index);
// For first < last: moves entries first..last-1 one place down (entry last is
// overwritten, nothing is freed) and leaves entry `first` empty, ready for a key.
void MakeRoom(KeyTable& table, int first, int last);
// The first key whose Name equals `name` without regard to letter case (keys with
// an empty Name are skipped); kNoKey when none matches.
int FindKeyByName(const KeyTable& table, std::string_view name);

// Sets the changed flag, then stores `text` as key `index`'s Description. An empty
// text stores nothing. A Description already there is replaced without being freed.
// When memory is exhausted the user is told and the result is false.
bool SetDescription(KeyTable& table, std::string_view text, int index);
// Replaces field `field` of key `index` with `text` (freed first; an empty text
// leaves the field empty) and sets the changed flag. False when `index` is outside
// the table or the block could not be allocated (the field is then empty).
bool SetKeyField(KeyTable& table, int index, KeyField field, std::string_view text);

// The block of a field; kNoBlock outside the table.
TextBlock KeyFieldBlock(const KeyTable& table, int index, KeyField field);
// Read access to a field until the lock goes out of scope; an empty entry, an
// index outside the table or a block that cannot be locked reads as "".
TextLock LockKeyField(const KeyTable& table, int index, KeyField field);
std::string KeyFieldText(const KeyTable& table, int index, KeyField field);

enum class SortDirection { kAscending, kDescending };
// An insertion sort on the Names in place (the stored order is lost): equal Names
// keep their order, and a key with an empty Name stays where it is and ends the
// pass of any key moving past it.
void SortKeysByName(KeyTable& table, SortDirection direction);
// Moves key `from` to position `to`, the others keeping their order. A target past
// the last key means the last position.
void MoveKey(KeyTable& table, int from, int to);

// Case-insensitive comparison of single-byte texts: -1, 0 or 1. Letters fold as in
// the Windows single-byte code pages: A-Z, and 0xC0-0xDE except 0xD7.
int CompareNoCase(std::string_view a, std::string_view b);
// The letter CompareNoCase compares `c` as: two texts compare equal exactly when
// their folded forms are the same bytes.
unsigned char FoldCase(unsigned char c);

}  // namespace qb
