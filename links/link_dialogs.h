// The dialogs of the Links view's folder commands: a name (IDD_MAKEDIR), deleting
// a folder (IDD_DELETEDIR) and choosing a destination folder (IDD_DESTINATION_DIR).
#pragma once

#include <windows.h>

#include <string>

namespace qb {

// What the name dialog asks. `accept` runs on OK with a non-empty name; false
// keeps the dialog open. The dialog ends with 1 when a name was accepted, 0 on
// Cancel or an empty name.
struct NameRequest {
  const char* groupText = nullptr;  // null: the template's own text
  std::string name;                 // the edit's first text; the name typed on OK
  bool (*accept)(HWND dialog, const std::string& name) = nullptr;
};
INT_PTR RunNameDialog(HWND owner, NameRequest& request);

// Whether Delete also empties and removes the subfolders; asked each time, kept
// while the program runs.
bool& DeleteSubfoldersOption();
// Asks before deleting `folder`; 1 on Delete (the option then holds the check box).
INT_PTR RunDeleteFolderDialog(HWND owner, const std::string& folder);

// Lets the user walk the folders under `root`, starting there; on OK `chosen` is
// the folder listed (ending with a backslash) and the result is 1.
INT_PTR RunDestinationDialog(HWND owner, const std::string& root, std::string& chosen);

}  // namespace qb
