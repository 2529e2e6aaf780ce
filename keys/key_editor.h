// The key editor, the modal dialog "IDD_DEFAULT_KEYS" ("Quellbarrow - Keys").
#pragma once

#include <windows.h>

#include <string>

namespace qb {

// Opens the editor owned by `owner` in `mode` (0 add, 1 modify the key list's
// selected key, 5 add with the prepared `name` and `description`); the dialog's
// result (1 after OK, 0 after Cancel).
int OpenKeyEditor(HWND owner, int mode, const std::string& name = "", const std::string& description = "");

}  // namespace qb
