// Rows of the dialogs' key lists: one full-width column, one row per key with its
// Name as text and its key index as the row's data.
#pragma once

#include <windows.h>

#include <string_view>

#include "keys/key_table.h"

namespace qb {

// The picture every key row shows: index 0 of the list's small images.
constexpr int kKeyPicture = 0;
constexpr char kNoImageListText[] = "Can't create image list";
// Gives the list the key picture "KEY_OFF" as its small images; tells the user
// "Can't create image list" and gives false when the list can't be made.
bool AttachKeyPictures(HWND list);
// A report list without a header: one column as wide as the list less a scroll bar.
void AddFullWidthColumn(HWND list);
// Appends a row; the new row's number, or -1.
int AddKeyRow(HWND list, int index, std::string_view name);
// Replaces the rows with one per key of `table` that has a Name, in table order.
void FillKeyRows(HWND list, const KeyTable& table);
// The key index a row carries; -1 for no such row.
int RowKey(HWND list, int row);
void SetRowText(HWND list, int row, std::string_view text);
void SelectRow(HWND list, int row, bool selected);
// The first selected row, or -1.
int SelectedRow(HWND list);

}  // namespace qb
