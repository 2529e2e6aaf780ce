// The key editor "IDD_DEFAULT_KEYS": creates, changes and deletes keys of the
// current table. The main window opens it to add a key (50200) or to change the
// Keys view's selected key (50202); the no-match prompt opens it to add a key with
// a Name and Description it prepared.
#pragma once

#include <windows.h>

#include <string>

namespace qb {

constexpr char kKeyEditorDialogName[] = "IDD_DEFAULT_KEYS";
constexpr DWORD kKeyEditorHelpContext = 1900;

enum KeyEditorMode : int {
  kEditorAdd = 0,
  kEditorModify = 1,       // the key selected in the Keys view, or none
  kEditorAddPrepared = 5,  // `name` and `description` start in their edits
};

constexpr char kEmptyNameText[] =
    "You must select at least Name for a new key\nor an key which you want to modify";

// Modal, owned by `owner`: 1 after OK, 0 after Cancel.
int OpenKeyEditor(HWND owner, int mode, const std::string& name = "", const std::string& description = "");

// Where the key the editor's last run added last now stands; kNoKey when that run
// added none or deleted it again.
int KeyEditorNewKey();

// The main window's command rows for IDM_ADD_KEY and IDM_MODIFY_KEY.
LRESULT OnAddKeyCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnModifyKeyCommand(HWND window, WORD id, WORD code, LPARAM control);

}  // namespace qb
