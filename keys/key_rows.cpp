#include "keys/key_rows.h"

#include <commctrl.h>

#include <string>

#include "base/app_state.h"
#include "base/user_message.h"

namespace qb {
namespace {

constexpr char kKeyBitmapName[] = "KEY_OFF";
constexpr int kKeyImageWidth = 16;
constexpr int kKeyImageHeight = 12;
constexpr int kKeyImageGrowth = 4;
constexpr COLORREF kKeyMaskColour = RGB(255, 255, 255);

}  // namespace

bool AttachKeyPictures(HWND list) {
  HIMAGELIST images =
      ImageList_Create(kKeyImageWidth, kKeyImageHeight, ILC_COLOR24 | ILC_MASK, 1, kKeyImageGrowth);
  if (!images) {
    TellUser(kNoImageListText, nullptr, MessageIcon::kError);
    return false;
  }
  HBITMAP picture = LoadBitmapA(App().instance, kKeyBitmapName);
  ImageList_AddMasked(images, picture, kKeyMaskColour);
  DeleteObject(picture);
  ListView_SetImageList(list, images, LVSIL_SMALL);  // the list destroys it with itself
  return true;
}

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
  item.mask = LVIF_TEXT | LVIF_PARAM | LVIF_IMAGE;
  item.iItem = ListView_GetItemCount(list);
  item.iImage = kKeyPicture;
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
