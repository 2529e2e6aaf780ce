// Help: the help file opened at a context id.
#pragma once

#include <windows.h>

namespace qb {

constexpr DWORD kHelpTopicsContext = 999;

// Opens the help file at `contextId`, then puts the main window back on top of
// other windows or not, as the on-top option says.
void ShowHelpTopic(DWORD contextId);

// Opens the help file at `contextId` for `owner`, nothing more.
void OpenHelpAt(HWND owner, DWORD contextId);

}  // namespace qb
