// The Keys view: the main window's list of the current database's keys by Name,
// one row per key in the table's order. Rows take their text and icon on demand.
// It sorts by a click on its column header, reorders by drag and drop (the main
// window passes on its mouse moves and the button's release), renames in place,
// opens the key commands' pop-up menu, and copies a clicked key's Description to
// the system clipboard.
#pragma once

#include <windows.h>
#include <commctrl.h>

namespace qb {

constexpr char kKeyIconName[] = "KEY_ICON";
constexpr char kKeyPopupMenuName[] = "IPOPMENU";
constexpr char kSortQuestion[] =
    "Changing sort order to Acending or Descending order\nyou will lost current User sort order.\n"
    "Do you want to continue?";
constexpr char kDeleteKeyQuestion[] = "Are you sure you want to delete selected key?";
constexpr char kDragStatusFormat[] = "x=%d, y=%d";

// Makes the list ready at the main window's creation: whole rows selected, menu
// commands passed on to the main window.
void PrepareKeyList(HWND list);
// Menu commands that reach `list` (an accelerator pressed while it has the
// keyboard) go on to its parent, the main window.
void ForwardCommandsToParent(HWND list);
// The one column, its header naming the sort order (start-up, once the main
// window has its size).
void CreateKeyListColumn(HWND list);
// Rebuilds the rows from the table (sorting it first in a sorted order); empty
// when the table is or the current slot has no name.
void FillKeyList();
// Adds the row of key `index` at the end.
void InsertKeyRow(int index);

// The key last clicked, right-clicked, double-clicked or selected from the
// keyboard; kNoKey when none is.
int SelectedKey();
int KeySortOrder();
void SetKeySortOrder(int order);
// Back to the state of a new run (sort order "User", nothing selected or dragged).
void ResetKeyList();

// A key is being dragged; the main window passes its mouse moves and the drop on.
bool KeyDragInProgress();
void MoveKeyDrag(POINT screen);
void DropKey(POINT screen);
// Ends a drag without a drop: the drag image goes, the order stays.
void CancelKeyDrag();

// The main window's notifications from the Keys view.
LRESULT OnKeyListNotify(HWND main, const NMHDR& header);

// Command rows of the main window.
LRESULT OnDeleteKeyCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnCopyKeyCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnPasteKeyCommand(HWND window, WORD id, WORD code, LPARAM control);
// F2 in the Keys view: the selected key's Name is edited in place.
LRESULT OnRenameKeyCommand(HWND window, WORD id, WORD code, LPARAM control);

}  // namespace qb
