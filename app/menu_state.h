// Menu state: which commands are greyed and which items are checked, worked out
// from the program's state just before a menu opens; and the one-line help of the
// highlighted item in the status bar. The tool bar greys its buttons by the same rules.
#pragma once

#include <windows.h>

#include <cstdint>

namespace qb {

constexpr std::size_t kMenuHelpMax = 256;  // characters of a menu help line
constexpr char kMenuClosedText[] = "Separator";

// The key clipboard's copied key: an index into the key table, or all bits set
// when nothing was copied.
constexpr std::uint32_t kNoCopiedKey = 0xFFFFFFFF;
std::uint32_t CopiedKeyIndex();
void SetCopiedKeyIndex(std::uint32_t index);

// Whether command `id` is available now (the menu's greying rules, in order).
bool CommandAvailable(WORD id);
// Greys and checks the items of the main menu `menu`.
void ApplyMenuState(HMENU menu);

}  // namespace qb
