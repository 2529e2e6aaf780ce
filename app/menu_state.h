// Menu state: which commands are greyed and which items are checked, worked out
// from the program's state just before a menu opens; and the one-line help of the
// highlighted item in the status bar. The tool bar greys its buttons by the same rules.
#pragma once

#include <windows.h>

#include <cstdint>

#include "keys/key_clipboard.h"

namespace qb {

constexpr std::size_t kMenuHelpMax = 256;  // characters of a menu help line
constexpr char kMenuClosedText[] = "Separator";

// Whether command `id` is available now (the menu's greying rules, in order).
bool CommandAvailable(WORD id);
// Greys and checks the items of the main menu `menu`.
void ApplyMenuState(HMENU menu);

}  // namespace qb
