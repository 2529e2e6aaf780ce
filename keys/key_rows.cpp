#include "keys/key_rows.h"

#include <commctrl.h>

#include <string>

namespace qb {

void AddFullWidthColumn(HWND list) {
  ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT);
  RECT client;
  GetClientRect(list, &client);
  LVCOLUMNA column{};
  column.mask = LVCF_WIDTH;
  column.cx = client.right - GetSystemMetrics(SM_CXVSCROLL);
  SendMessageA(list, LVM_INSERTCOLUMNA, 0, reinterpret_cast<LPARAM>(&column));
}

int AddKeyRow(HWND list, int index, std::string_view name) {
  std::string text(name);
  LVITEMA item{};
  item.mask = LVIF_TEXT | LVIF_PARAM;
  item.iItem = ListView_GetItemCount(list);
  item.pszText = text.data();
  item.lParam = index;
  return static_cast<int>(SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item)));
}

void FillKeyRows(HWND list, const KeyTable& table) {
  SendMessageA(list, WM_SETREDRAW, FALSE, 0);
  ListView_DeleteAllItems(list);
  const int count = KeysInUse(table);
  for (int i = 0; i < count; ++i) {
    TextLock name(table.fields[kName][i]);
    if (!name.text().empty()) AddKeyRow(list, i, name.text());
  }
  SendMessageA(list, WM_SETREDRAW, TRUE, 0);
}

int RowKey(HWND list, int row) {
  LVITEMA item{};
  item.mask = LVIF_PARAM;
  item.iItem = row;
  if (!SendMessageA(list, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item))) return -1;
  return static_cast<int>(item.lParam);
}

void SetRowText(HWND list, int row, std::string_view text) {
  std::string copy(text);
  LVITEMA item{};
  item.pszText = copy.data();
  SendMessageA(list, LVM_SETITEMTEXTA, row, reinterpret_cast<LPARAM>(&item));
}

void SelectRow(HWND list, int row, bool selected) {
  ListView_SetItemState(list, row, selected ? LVIS_SELECTED : 0, LVIS_SELECTED);
}

int SelectedRow(HWND list) { return ListView_GetNextItem(list, -1, LVNI_SELECTED); }

}  // namespace qb
