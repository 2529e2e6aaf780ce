// The dialog "IDD_LOAD_COMPARE" (command 50201 "&Add / Compare"): the keys of
// another database file merged into the current table, with a safety copy of the
// table ("qbdkdTemp.tmp" in the program folder) behind "Undo changes" and Cancel;
// and "IDD_KEY_VALUES", the preview of one key's four fields on a double click in
// either list.
#pragma once

#include <windows.h>

#include "keys/key_merge.h"

namespace qb {

constexpr char kMergeDialogName[] = "IDD_LOAD_COMPARE";
constexpr char kKeyValuesDialogName[] = "IDD_KEY_VALUES";
constexpr DWORD kMergeHelpContext = 1205;
constexpr DWORD kKeyValuesHelpContext = 1206;

// The preview's parameter: a key index in the low word and, in the high word,
// which keys it indexes (a value above kPreviewLoaded counts as the table).
constexpr WORD kPreviewTable = 0;
constexpr WORD kPreviewLoaded = 1;

// OK leaves the table changed, so the main window's key list must be filled
// again; the frame names the function that does it at start-up (none: nothing).
using KeyListRefill = void (*)();
void SetKeyListRefill(KeyListRefill refill);
void RefillKeyList();

// What the dialog remembers for the rest of the process: the field choices, the
// duplicate mode and the file last loaded (loaded again at the next opening).
struct MergeDialogMemory {
  MergeOptions options;
  std::string loadedPath;
};
MergeDialogMemory& MergeMemory();

// Modal, owned by `owner`: 1 after OK (the table keeps the merge), 0 after Cancel
// (the table as it was) or when the safety copy could not be written.
INT_PTR RunMergeDialog(HWND owner);
INT_PTR RunKeyValuesDialog(HWND owner, LPARAM packedKey);

// The main window's command row for IDM_ADD_COMPARE.
LRESULT OnAddCompareCommand(HWND window, WORD id, WORD code, LPARAM control);

}  // namespace qb
