// The dialog "IDD_SCANHTML_OPTION" (command 50504): per field kind, when a scan
// asks about a field and whether the prompt offers to teach the key its name.
// It edits the settings record, which is written to the settings file at exit.
#pragma once

#include <windows.h>

namespace qb {

constexpr char kScanOptionsDialogName[] = "IDD_SCANHTML_OPTION";
constexpr DWORD kScanOptionsHelpContext = 1604;

// Modal, owned by `owner`: 1 after OK (the settings changed), 0 after Cancel.
INT_PTR RunScanOptionsDialog(HWND owner);

}  // namespace qb
