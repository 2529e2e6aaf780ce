#include "keys/key_list.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "bars/status_bar.h"
#include "base/app_state.h"
#include "base/frame_gdi.h"
#include "base/relayout.h"
#include "keys/database_slots.h"
#include "keys/key_clipboard.h"
#include "keys/key_table.h"
#include "keys/key_view_rules.h"
#include "resources/resource.h"

namespace qb {
namespace {

constexpr char kListCaption[] = "Quellbarrow";
constexpr int kIconSize = 16;
constexpr int kColumnMargin = 8;  // the column is half the list's width less this
constexpr std::size_t kNameLimit = kNameBufferSize - 1;

struct KeyListState {
  int sortOrder = kSortUser;
  int selected = kNoKey;
  bool dragging = false;
  int dragged = -1;
};
KeyListState g_list;

HWND List() { return App().keysView; }

// The row under `point` (the list's client coordinates), or -1.
int RowAt(HWND list, POINT point) {
  LVHITTESTINFO hit{};
  hit.pt = point;
  return static_cast<int>(SendMessageA(list, LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
}

void SetHeaderText(HWND list) {
  LVCOLUMNA column{};
  column.mask = LVCF_TEXT;
  column.pszText = const_cast<char*>(SortOrderName(g_list.sortOrder));
  SendMessageA(list, LVM_SETCOLUMNA, 0, reinterpret_cast<LPARAM>(&column));
}

void Redraw(HWND list) {
  SendMessageA(list, WM_SETREDRAW, TRUE, 0);
  InvalidateRect(list, nullptr, TRUE);
}

// With the option on, a clicked key's Description goes onto the system clipboard
// as text. The clipboard owns the block once it took it and frees it when it is
// emptied next: freed here as well, its handle would be reused by a key's text and
// that text freed by the next copy.
void CopyDescriptionToClipboard(int key) {
  if (Settings().copyDescription != 1) return;
  TextLock description(KeyFieldBlock(Keys(), key, kDescription));
  const std::string_view text = description.text();
  if (text.empty()) return;
  HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE | GMEM_DDESHARE, text.size() + 2);
  if (!block) return;
  if (char* data = static_cast<char*>(GlobalLock(block))) {
    std::memcpy(data, text.data(), text.size());
    data[text.size()] = '\0';
    GlobalUnlock(block);
  }
  bool handedOver = false;
  if (OpenClipboard(App().mainWindow)) {
    EmptyClipboard();
    handedOver = SetClipboardData(CF_TEXT, block) != nullptr;
    CloseClipboard();
  }
  if (!handedOver) GlobalFree(block);
}

LRESULT OnGetDispInfo(const NMHDR& header) {
  auto& item = const_cast<NMLVDISPINFOA&>(reinterpret_cast<const NMLVDISPINFOA&>(header)).item;
  if (item.mask & LVIF_IMAGE) item.iImage = 0;
  if ((item.mask & LVIF_TEXT) && item.pszText && item.cchTextMax > 0) {
    TextLock name(KeyFieldBlock(Keys(), item.iItem, kName));
    const std::string_view text = item.iSubItem == 0 ? name.text() : std::string_view();
    const std::size_t n = std::min(text.size(), static_cast<std::size_t>(item.cchTextMax - 1));
    std::memcpy(item.pszText, text.data(), n);
    item.pszText[n] = '\0';
  }
  return 0;
}

LRESULT OnColumnClick(const NMHDR& header) {
  if (SortChangeAsks(g_list.sortOrder)) {
    if (ShowMessage(kSortQuestion, kListCaption, MB_YESNO | MB_ICONQUESTION) != IDYES) return 0;
    SetDatabaseChanged(true);  // the stored order is about to change
  }
  g_list.sortOrder = NextSortOrder(g_list.sortOrder);
  SetHeaderText(header.hwndFrom);
  FillKeyList();
  return 0;
}

LRESULT OnClick(const NMHDR& header) {
  const auto& click = reinterpret_cast<const NMITEMACTIVATE&>(header);
  const int row = RowAt(header.hwndFrom, click.ptAction);
  if (row < 0) return 0;
  g_list.selected = row;
  CopyDescriptionToClipboard(row);
  return 0;
}

LRESULT OnDoubleClick(const NMHDR& header) {
  const auto& click = reinterpret_cast<const NMITEMACTIVATE&>(header);
  const int row = RowAt(header.hwndFrom, click.ptAction);
  if (row < 0) return 0;
  g_list.selected = row;
  SendMessageA(App().mainWindow, WM_COMMAND, MAKEWPARAM(IDM_MODIFY_KEY, 0), 0);
  return 0;
}

LRESULT OnRightClick(const NMHDR& header) {
  if (g_list.dragging) return 0;
  const auto& click = reinterpret_cast<const NMITEMACTIVATE&>(header);
  const int row = RowAt(header.hwndFrom, click.ptAction);
  if (row < 0) return 0;
  g_list.selected = row;
  RECT client;
  GetClientRect(header.hwndFrom, &client);
  if (!PtInRect(&client, click.ptAction)) return 0;
  HMENU menu = LoadMenuA(App().instance, kKeyPopupMenuName);
  if (!menu) return 0;
  POINT screen = click.ptAction;
  ClientToScreen(header.hwndFrom, &screen);
  // A pop-up menu stays open only for the window in the foreground.
  SetForegroundWindow(App().mainWindow);
  TrackPopupMenu(GetSubMenu(menu, 0), TPM_RIGHTBUTTON, screen.x, screen.y, 0, App().mainWindow, nullptr);
  DestroyMenu(menu);
  return 0;
}

// Rename in place: a non-empty new text becomes the key's Name (cut to the Name's
// limit); an empty or cancelled edit changes nothing.
LRESULT OnEndLabelEdit(const NMHDR& header) {
  if (g_list.dragging) return FALSE;
  const auto& edit = reinterpret_cast<const NMLVDISPINFOA&>(header);
  const int row = edit.item.iItem;
  if (!edit.item.pszText || edit.item.pszText[0] == '\0') return FALSE;
  if (row < 0 || row >= KeysInUse(Keys())) return FALSE;
  g_list.selected = row;
  const std::string_view text(edit.item.pszText);
  SetKeyField(Keys(), row, kName, text.substr(0, kNameLimit));
  SendMessageA(header.hwndFrom, LVM_REDRAWITEMS, row, row);
  SetDatabaseChanged(true);
  return FALSE;  // the row asks for its text again
}

// Enter in the list is the Links view's: it opens that view's selected row. Esc
// ends a drag without a drop.
LRESULT OnKeyDown(const NMHDR& header) {
  const auto& key = reinterpret_cast<const NMLVKEYDOWN&>(header);
  if (key.wVKey == VK_ESCAPE) CancelKeyDrag();
  if (key.wVKey == VK_RETURN)
    SendMessageA(App().mainWindow, WM_COMMAND, MAKEWPARAM(IDM_LINKS_ENTER, kInternalCommand), 0);
  return 0;
}

// A row chosen from the keyboard is the selected key as a clicked one is.
LRESULT OnItemChanged(const NMHDR& header) {
  const auto& change = reinterpret_cast<const NMLISTVIEW&>(header);
  if (change.iItem >= 0 && (change.uNewState & LVIS_SELECTED) && !(change.uOldState & LVIS_SELECTED))
    g_list.selected = change.iItem;
  return 0;
}

LRESULT OnBeginDrag(const NMHDR& header) {
  if (g_list.dragging) return 0;
  const auto& drag = reinterpret_cast<const NMLISTVIEW&>(header);
  HWND list = header.hwndFrom;
  const int row = RowAt(list, drag.ptAction);
  if (row < 0) return 0;
  g_list.dragged = row;
  SetCapture(App().mainWindow);
  SendMessageA(list, LVM_REDRAWITEMS, row, row);
  RECT bounds{};
  bounds.left = LVIR_BOUNDS;
  SendMessageA(list, LVM_GETITEMRECT, row, reinterpret_cast<LPARAM>(&bounds));
  HIMAGELIST icons = ListView_GetImageList(list, LVSIL_SMALL);
  ImageList_BeginDrag(icons, 0, drag.ptAction.x - bounds.left, drag.ptAction.y - bounds.top);
  POINT screen = drag.ptAction;
  ClientToScreen(list, &screen);
  ImageList_DragEnter(nullptr, screen.x, screen.y);
  g_list.dragging = true;
  return 0;
}

// Accelerators are translated for the window that has the keyboard; the list view
// keeps a command without a control to itself, so it goes on to the main window.
LRESULT CALLBACK ForwardCommands(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                 DWORD_PTR) {
  if (message == WM_COMMAND && lParam == 0) return SendMessageA(GetParent(list), message, wParam, 0);
  return DefSubclassProc(list, message, wParam, lParam);
}
constexpr UINT_PTR kForwardSubclassId = 1;

// The rows hold nothing of their own: no word is needed of each one deleted.
LRESULT OnDeleteAllItems(const NMHDR&) { return TRUE; }

struct NotifyRow {
  UINT code;
  LRESULT (*handler)(const NMHDR& header);
};
const NotifyRow kKeyListNotifications[] = {
    {NM_RCLICK,          OnRightClick},
    {NM_CLICK,           OnClick},
    {NM_DBLCLK,          OnDoubleClick},
    {LVN_ENDLABELEDITA,  OnEndLabelEdit},
    {LVN_KEYDOWN,        OnKeyDown},
    {LVN_GETDISPINFOA,   OnGetDispInfo},
    {LVN_BEGINDRAG,      OnBeginDrag},
    {LVN_COLUMNCLICK,    OnColumnClick},
    {LVN_ITEMCHANGED,    OnItemChanged},
    {LVN_DELETEALLITEMS, OnDeleteAllItems},
};

}  // namespace

void PrepareKeyList(HWND list) {
  ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT);
  ForwardCommandsToParent(list);
}

void ForwardCommandsToParent(HWND list) { SetWindowSubclass(list, ForwardCommands, kForwardSubclassId, 0); }

void CreateKeyListColumn(HWND list) {
  if (!list || Header_GetItemCount(ListView_GetHeader(list)) > 0) return;
  RECT r;
  GetWindowRect(list, &r);
  LVCOLUMNA column{};
  column.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT;
  column.fmt = LVCFMT_LEFT;
  column.cx = (r.right - r.left - kColumnMargin) / 2;
  column.pszText = const_cast<char*>(SortOrderName(g_list.sortOrder));
  SendMessageA(list, LVM_INSERTCOLUMNA, 0, reinterpret_cast<LPARAM>(&column));
  // Rows listed before the column had no width to be drawn in.
  InvalidateRect(list, nullptr, TRUE);
}

void FillKeyList() {
  HWND list = List();
  if (!list) return;
  SendMessageA(list, WM_SETREDRAW, FALSE, 0);
  if (HIMAGELIST old = ListView_SetImageList(list, nullptr, LVSIL_SMALL)) ImageList_Destroy(old);
  ListView_DeleteAllItems(list);
  KeyTable& table = Keys();
  const int count = KeysInUse(table);
  if (count == 0 || CurrentSlotName()[0] == '\0') {
    Redraw(list);
    return;
  }
  ListView_SetItemCount(list, count);
  HIMAGELIST icons = ImageList_Create(kIconSize, kIconSize, ILC_MASK | ILC_COLOR32, 1, 1);
  if (icons) {
    ImageList_AddIcon(icons, Gdi().keyIcon);
    ListView_SetImageList(list, icons, LVSIL_SMALL);
  }
  if (const auto direction = FillSort(g_list.sortOrder)) SortKeysByName(table, *direction);
  for (int i = 0; i < count; ++i) InsertKeyRow(i);
  Redraw(list);
  SetFocus(list);
}

void InsertKeyRow(int index) {
  LVITEMA item{};
  item.mask = LVIF_TEXT | LVIF_IMAGE;
  item.iItem = index;
  item.pszText = LPSTR_TEXTCALLBACKA;
  item.iImage = I_IMAGECALLBACK;
  SendMessageA(List(), LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
}

int SelectedKey() { return g_list.selected; }
int KeySortOrder() { return g_list.sortOrder; }

void SetKeySortOrder(int order) {
  g_list.sortOrder = order >= 0 && order < kSortOrderCount ? order : kSortUser;
  if (List()) SetHeaderText(List());
}
void ResetKeyList() { g_list = KeyListState{}; }

bool KeyDragInProgress() { return g_list.dragging; }

void MoveKeyDrag(POINT screen) {
  ImageList_DragMove(screen.x, screen.y);
  SetStatusText(FormatText(kDragStatusFormat, static_cast<int>(screen.x), static_cast<int>(screen.y)).c_str());
}

void CancelKeyDrag() {
  if (!g_list.dragging) return;
  // The flag goes first: letting the mouse go reports the capture's loss, which
  // comes back here.
  g_list.dragging = false;
  ImageList_DragLeave(nullptr);
  ImageList_EndDrag();
  if (GetCapture() == App().mainWindow) ReleaseCapture();
}

void DropKey(POINT screen) {
  HWND list = List();
  POINT point = screen;
  ScreenToClient(list, &point);
  const int row = RowAt(list, point);
  CancelKeyDrag();
  if (row < 0) return;
  const int target = DropTarget(g_list.dragged, row, point.y, KeysInUse(Keys()));
  if (target == g_list.dragged) return;
  MoveKey(Keys(), g_list.dragged, target);
  g_list.selected = target;
  FillKeyList();
  SetDatabaseChanged(true);
  InvalidateRect(list, nullptr, TRUE);
}

LRESULT OnKeyListNotify(HWND, const NMHDR& header) {
  for (const NotifyRow& row : kKeyListNotifications) {
    if (row.code == header.code) return row.handler(header);
  }
  return 0;
}

LRESULT OnDeleteKeyCommand(HWND, WORD, WORD, LPARAM) {
  HWND list = List();
  const int row = ListView_GetNextItem(list, -1, LVNI_SELECTED);
  if (row < 0) return 0;
  if (ShowMessage(kDeleteKeyQuestion, kListCaption, MB_YESNO | MB_ICONQUESTION) != IDYES) return 0;
  DeleteKey(Keys(), row);
  ListView_DeleteItem(list, row);
  SetDatabaseChanged(true);
  return 0;
}

LRESULT OnCopyKeyCommand(HWND, WORD, WORD, LPARAM) {
  const int row = ListView_GetNextItem(List(), -1, LVNI_SELECTED);
  SetCopiedKeyIndex(row < 0 ? kNoCopiedKey : static_cast<std::uint32_t>(row));
  return 0;
}

LRESULT OnRenameKeyCommand(HWND, WORD, WORD, LPARAM) {
  HWND list = List();
  const int row = ListView_GetNextItem(list, -1, LVNI_SELECTED);
  if (row < 0) return 0;
  SetFocus(list);
  ListView_EditLabel(list, row);
  return 0;
}

LRESULT OnPasteKeyCommand(HWND, WORD, WORD, LPARAM) {
  const int index = PasteKey(Keys());
  if (index < 0) return 0;
  InsertKeyRow(index);
  Redraw(List());
  return 0;
}

}  // namespace qb
