// Rules of the key list and the database slots that need no window: the sort
// orders and their cycle, where a dropped key lands, the window title of a slot,
// which names Save accepts, and moving keys from one table to another (New
// database puts its table together that way).
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "keys/key_table.h"

namespace qb {

// The key list's sort order: 0 "User", 1 "Ascending", 2 "User", 3 "Descending".
// It starts at 0 on every run and is not saved.
enum SortOrder : int { kSortUser = 0, kSortAscending = 1, kSortUserAfterAscending = 2, kSortDescending = 3 };
constexpr int kSortOrderCount = 4;
constexpr std::size_t kSortNameSize = 20;  // characters of an order's name, its NUL included

// The column header's text for `order` (any value outside 0..3 counts as 0).
const char* SortOrderName(int order);
// The order the next column click gives: 0 -> 1 -> 2 -> 3 -> 0.
int NextSortOrder(int order);
// Leaving a User order sorts the stored order away, so the user is asked first.
bool SortChangeAsks(int order);
// The sort every fill applies in `order`; none in a User order.
std::optional<SortDirection> FillSort(int order);

// A drop on a row within this many pixels of the list's top puts the key first.
constexpr int kTopDropZone = 20;
// Where the key at `dragged` lands when it is dropped on row `hit` at `yInList`
// (the drop's y in the list's client area), with `count` keys: just before a row
// below it, just after a row above it (or itself), first in the top zone. Never
// past the last key, so the last key dropped on itself stays where it is.
int DropTarget(int dragged, int hit, int yInList, int count);

constexpr char kNotLoadedText[] = "Not Loaded";
// "Quellbarrow - " and the slot's name from its last backslash on, or "Not
// Loaded" for an empty slot or a database that did not load.
std::string SlotTitle(std::string_view slotName, bool loaded);
// The slot's name as text (up to its first NUL).
std::string SlotNameText(const SlotName& name);
// Copies `text` into a slot name, cut to the 255 characters the field holds.
void SetSlotNameText(SlotName& name, std::string_view text);

// Save writes only a database whose name has at least this many characters
// ("x.dat"); an empty slot's Save does nothing.
constexpr std::size_t kShortestSavedName = 5;
bool SaveAccepts(std::string_view slotName);

// Moves key `index` of `from` to the end of `to`, its four blocks with it; the
// keys after it in `from` move up. False, and nothing moved, when `to` is full or
// `index` is not a key of `from`.
bool TransferKey(KeyTable& from, int index, KeyTable& to);

}  // namespace qb
