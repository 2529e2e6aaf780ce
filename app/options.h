// The options dialog "IDD_OPTIONS" (command 50008) and the one option it edits that
// lives only for the run.
#pragma once

#include <windows.h>

#include <cstdint>

namespace qb {

constexpr DWORD kOptionsHelpContext = 1208;

enum BrowserWindowChoice : std::uint32_t {
  kFirstBrowserWindow = 0,
  kPromptForBrowserWindow = 1,  // at every start
};

// Which browser window a scan reads its address from; not kept in the settings file.
std::uint32_t BrowserWindowChoiceOption();
void SetBrowserWindowChoiceOption(std::uint32_t choice);

INT_PTR CALLBACK OptionsDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace qb
