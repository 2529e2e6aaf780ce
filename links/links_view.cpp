#include "links/links_view.h"

#include <shellapi.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "acquire/no_case.h"
#include "base/app_state.h"
#include "base/frame_gdi.h"
#include "links/link_commands.h"
#include "links/link_paths.h"
#include "links/link_scan.h"
#include "resources/resource.h"

namespace qb {
namespace {

constexpr char kNoImageList[] = "No Image List";
constexpr char kPopupMenu[] = "POPLIST_MENU";
constexpr char kColumnTitles[kLinkColumns][5] = {"Name", "Ext", "Size", "Date"};
// Built-in images: a page (the fallback for documents) and the folder one level up.
constexpr int kDocumentImage = 0;
constexpr int kParentImage = 1;
constexpr int kIconSize = 16;
constexpr int kIconLeft = 2;
constexpr int kNameLeft = 20;
constexpr int kTextGap = 4;
constexpr COLORREF kMarkedText = RGB(255, 0, 0);

// What going back up to a depth restores.
struct DepthMemory {
  int row = 0;
  int horizontal = 0;  // scroll position in pixels
  int vertical = 0;    // scroll position times kLinksRowHeight
};
std::array<DepthMemory, kLinksDepthMax + 1> g_memory;

HWND View() { return App().linksView; }

int RowCount() { return static_cast<int>(SendMessageA(View(), LVM_GETITEMCOUNT, 0, 0)); }

void ForgetIcons(std::vector<LinkEntry>& entries) {
  for (LinkEntry& e : entries)
    if (e.icon) DestroyIcon(reinterpret_cast<HICON>(e.icon));
}

HIMAGELIST MakeImageList(HICON first, HICON second) {
  HIMAGELIST images = ImageList_Create(kIconSize, kIconSize, ILC_MASK | ILC_COLOR32, 2, 16);
  if (!images) {
    ShowMessage(kNoImageList, nullptr, MB_OK);
    return nullptr;
  }
  ImageList_AddIcon(images, first);
  ImageList_AddIcon(images, second);
  return images;
}

void ReplaceImageList(HIMAGELIST images) {
  auto old = reinterpret_cast<HIMAGELIST>(
      SendMessageA(View(), LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images)));
  if (old && old != images) ImageList_Destroy(old);
  LinksView().images = images;
}

FoundFile FromFindData(const WIN32_FIND_DATAA& data) {
  FoundFile f;
  f.name = data.cFileName;
  f.attributes = data.dwFileAttributes;
  f.sizeLow = data.nFileSizeLow;
  f.sizeHigh = data.nFileSizeHigh;
  f.lastWrite = (static_cast<std::uint64_t>(data.ftLastWriteTime.dwHighDateTime) << 32) |
                data.ftLastWriteTime.dwLowDateTime;
  return f;
}

int ItemHeight() {
  RECT r{LVIR_BOUNDS, 0, 0, 0};
  if (SendMessageA(View(), LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&r)) && r.bottom > r.top)
    return r.bottom - r.top;
  return kLinksRowHeight;
}

void SelectRow(int row) {
  LVITEMA item{};
  item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  item.state = LVIS_SELECTED | LVIS_FOCUSED;
  SendMessageA(View(), LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
}

void RestoreRememberedRow() {
  DepthMemory& memory = g_memory[LinksView().depth];
  if (memory.row < 0 || memory.row >= RowCount()) memory.row = 0;
  if (RowCount() > 0) SelectRow(memory.row);
  // From wherever focusing the row scrolled the list to.
  const int rows = memory.vertical / kLinksRowHeight - GetScrollPos(View(), SB_VERT);
  SendMessageA(View(), LVM_SCROLL, memory.horizontal - GetScrollPos(View(), SB_HORZ),
               rows * ItemHeight());
}

const LinkEntry* EntryOfRow(int row) {
  const auto& entries = LinksView().listing.entries();
  if (row < 0 || static_cast<std::size_t>(row) >= entries.size()) return nullptr;
  return &entries[static_cast<std::size_t>(row)];
}

int HitRow(POINT client) {
  LVHITTESTINFO hit{};
  hit.pt = client;
  return static_cast<int>(SendMessageA(View(), LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
}

// The first step of opening a row: remember it for this depth and name it.
void RememberRow(int row, const LinkEntry& entry) {
  DepthMemory& memory = g_memory[LinksView().depth];
  memory.row = entry.kind == kLinkParent ? 0 : row;
  memory.horizontal = GetScrollPos(View(), SB_HORZ);
  memory.vertical = GetScrollPos(View(), SB_VERT) * kLinksRowHeight;
  LinksView().selectedName = LinkFileName(entry);
}

void OpenRow(int row) {
  const LinkEntry* entry = EntryOfRow(row);
  if (!entry) return;
  RememberRow(row, *entry);
  LinksViewState& view = LinksView();
  std::string& folder = App().linksFolder;
  switch (entry->kind) {
    case kLinkParent:
      view.depth = std::max(view.depth - 1, 0);
      folder = ParentFolder(folder);
      RefreshLinksView();
      break;
    case kLinkFolder:
      if (entry->attributes & FILE_ATTRIBUTE_REPARSE_POINT) {
        ShowMessage(kFolderLinkText, kAppName, MB_OK | MB_ICONINFORMATION);
        break;
      }
      view.depth = std::min(view.depth + 1, kLinksDepthMax);
      folder += entry->name + "\\";
      RefreshLinksView();
      break;
    case kLinkDocument:
      ScanSavedLink(folder + LinkFileName(*entry));
      break;
  }
}

LRESULT OnLinksClick(HWND, const NMHDR& header) {
  const auto& activate = reinterpret_cast<const NMITEMACTIVATE&>(header);
  const int row = HitRow(activate.ptAction);
  if (const LinkEntry* entry = EntryOfRow(row)) RememberRow(row, *entry);
  return 0;
}

LRESULT OnLinksDoubleClick(HWND, const NMHDR& header) {
  const auto& activate = reinterpret_cast<const NMITEMACTIVATE&>(header);
  OpenRow(HitRow(activate.ptAction));
  return 0;
}

LRESULT OnLinksRightClick(HWND main, const NMHDR& header) {
  const auto& activate = reinterpret_cast<const NMITEMACTIVATE&>(header);
  const int row = HitRow(activate.ptAction);
  const LinkEntry* entry = EntryOfRow(row);
  if (!entry) return 0;
  RememberRow(row, *entry);
  // Where the button went down: the pointer may have moved on since.
  RECT client;
  GetClientRect(View(), &client);
  if (!PtInRect(&client, activate.ptAction)) return 0;
  POINT cursor = activate.ptAction;
  ClientToScreen(View(), &cursor);
  HMENU menu = LoadMenuA(App().instance, kPopupMenu);
  if (!menu) return 0;
  TrackPopupMenu(GetSubMenu(menu, 0), TPM_RIGHTBUTTON, cursor.x, cursor.y, 0, main, nullptr);
  DestroyMenu(menu);
  return 0;
}

LRESULT OnLinksKeyDown(HWND, const NMHDR& header) {
  if (reinterpret_cast<const NMLVKEYDOWN&>(header).wVKey == VK_RETURN) LinksEnter();
  return 0;
}

// Names are edited in place as "&Rename Folder" asks for them; the row one level
// up has no name to edit.
LRESULT OnLinksBeginLabelEdit(HWND, const NMHDR& header) {
  const LinkEntry* entry = EntryOfRow(reinterpret_cast<const NMLVDISPINFOA&>(header).item.iItem);
  return !entry || entry->kind == kLinkParent;
}

LRESULT OnLinksEndLabelEdit(HWND main, const NMHDR& header) {
  const LVITEMA& item = reinterpret_cast<const NMLVDISPINFOA&>(header).item;
  // Cancelled, unchanged or emptied: nothing to rename.
  const LinkEntry* entry = EntryOfRow(item.iItem);
  if (!entry || !item.pszText || item.pszText[0] == '\0' || LinkFileName(*entry) == item.pszText) return FALSE;
  RenameSelectedLink(main, item.pszText);
  return FALSE;  // the listing shows the name the folder now has
}

LRESULT OnLinksColumnClick(HWND, const NMHDR& header) {
  LinksView().sortColumn = reinterpret_cast<const NMLISTVIEW&>(header).iSubItem;
  RefreshLinksView();
  return 0;
}

LRESULT OnLinksDisplayInfo(HWND, const NMHDR& header) {
  auto& item = const_cast<NMLVDISPINFOA&>(reinterpret_cast<const NMLVDISPINFOA&>(header)).item;
  const LinkEntry* entry = EntryOfRow(item.iItem);
  if (!entry || !(item.mask & LVIF_TEXT) || !item.pszText || item.cchTextMax <= 0) return 0;
  const std::string text = LinkCellText(*entry, item.iSubItem);
  const std::size_t n = std::min(text.size(), static_cast<std::size_t>(item.cchTextMax - 1));
  std::memcpy(item.pszText, text.data(), n);
  item.pszText[n] = '\0';
  return 0;
}

// Typing in the list: the next row whose name begins with (or is) the typed text,
// after `start` and round to the top; -1 for none.
int FindRow(std::string_view text, int start, UINT flags) {
  if (!(flags & (LVFI_STRING | LVFI_PARTIAL))) return -1;
  const auto& entries = LinksView().listing.entries();
  const int count = static_cast<int>(entries.size());
  for (int k = 0; k < count; ++k) {
    const int row = (start + 1 + k) % count;
    const std::string name = LinkCellText(entries[static_cast<std::size_t>(row)], 0);
    if ((flags & LVFI_PARTIAL) ? StartsWithNoCase(name, text)
                                                  : EqualNoCase(name, text))
      return row;
  }
  return -1;
}

LRESULT OnLinksFindItem(HWND, const NMHDR& header) {
  const auto& find = reinterpret_cast<const NMLVFINDITEMA&>(header);
  return FindRow(find.lvfi.psz ? find.lvfi.psz : "", find.iStart, find.lvfi.flags);
}

LRESULT OnLinksFindItemW(HWND, const NMHDR& header) {
  const auto& find = reinterpret_cast<const NMLVFINDITEMW&>(header);
  std::array<char, kLinkPathSize> text{};
  if (find.lvfi.psz)
    WideCharToMultiByte(CP_ACP, 0, find.lvfi.psz, -1, text.data(), static_cast<int>(text.size()) - 1,
                        nullptr, nullptr);
  return FindRow(text.data(), find.iStart, find.lvfi.flags);
}

struct NotifyRow {
  UINT code;
  LRESULT (*handler)(HWND main, const NMHDR& header);
};

const NotifyRow kLinksNotifications[] = {
    {NM_CLICK,         OnLinksClick},
    {NM_DBLCLK,        OnLinksDoubleClick},
    {NM_RCLICK,        OnLinksRightClick},
    {LVN_KEYDOWN,      OnLinksKeyDown},
    {LVN_BEGINLABELEDITA, OnLinksBeginLabelEdit},
    {LVN_ENDLABELEDITA, OnLinksEndLabelEdit},
    {LVN_COLUMNCLICK,  OnLinksColumnClick},
    {LVN_GETDISPINFOA, OnLinksDisplayInfo},
    {LVN_ODFINDITEMA,  OnLinksFindItem},
    {LVN_ODFINDITEMW,  OnLinksFindItemW},
};

// The entry's small shell icon, fetched once and added to the image list.
int ImageOf(LinkEntry& entry) {
  if (entry.kind == kLinkParent) return kParentImage;
  if (!entry.iconFetched) {
    entry.iconFetched = true;
    entry.image = kDocumentImage;
    const std::string path = App().linksFolder + LinkFileName(entry);
    SHFILEINFOA info{};
    if (SHGetFileInfoA(path.c_str(), 0, &info, sizeof info, SHGFI_ICON | SHGFI_SMALLICON) &&
        info.hIcon) {
      entry.icon = reinterpret_cast<std::uintptr_t>(info.hIcon);
      const int image = LinksView().images ? ImageList_AddIcon(LinksView().images, info.hIcon) : -1;
      if (image >= 0) entry.image = image;
    }
  }
  return entry.image;
}

void DrawCell(HDC dc, const std::string& text, int left, int width, const RECT& row) {
  RECT cell{left, row.top, left + std::max(width, 0), row.bottom};
  DrawTextA(dc, text.c_str(), static_cast<int>(text.size()), &cell,
            DT_LEFT | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
}

int ColumnWidth(int column) {
  return static_cast<int>(SendMessageA(View(), LVM_GETCOLUMNWIDTH, column, 0));
}

}  // namespace

LinksViewState& LinksView() {
  static LinksViewState state;
  return state;
}

void ResetLinksView() {
  LinksViewState& view = LinksView();
  view.depth = 0;
  view.sortColumn = kSortName;
  view.selectedName.clear();
  g_memory.fill(DepthMemory{});
  App().linksFolder = App().dataHtmlDir;
}

bool RefreshLinks(const std::string& folder) {
  if (folder.empty()) return false;
  HWND view = View();
  LinksViewState& state = LinksView();
  const std::string pattern = folder + "*.*";
  SendMessageA(view, WM_SETREDRAW, FALSE, 0);
  ReplaceImageList(nullptr);
  SendMessageA(view, LVM_DELETEALLITEMS, 0, 0);
  ReplaceImageList(MakeImageList(Gdi().hiddenIcon, Gdi().rootFolderIcon));

  LinkListing& listing = state.listing;
  ForgetIcons(listing.entries());
  listing.Begin(folder != App().dataHtmlDir);

  WIN32_FIND_DATAA data;
  HANDLE find = FindFirstFileA(pattern.c_str(), &data);
  if (find == INVALID_HANDLE_VALUE) {
    listing.Begin(false);
    SendMessageA(view, WM_SETREDRAW, TRUE, 0);
    return false;
  }
  SetCursor(LoadCursor(nullptr, IDC_WAIT));
  do {
    if (!listing.Add(FromFindData(data))) break;
  } while (FindNextFileA(find, &data));
  FindClose(find);
  listing.Sort(state.sortColumn);

  // Row i is record i; its texts come from the display-text request.
  for (LinkEntry& e : listing.entries()) e.marked = 0;
  SendMessageA(view, LVM_SETITEMCOUNT, listing.entries().size(), 0);
  SendMessageA(view, WM_SETREDRAW, TRUE, 0);

  RestoreRememberedRow();
  UpdateWindow(view);
  SetFocus(view);
  SetCursor(LoadCursor(nullptr, IDC_ARROW));
  return true;
}

bool RefreshLinksView() {
  LinksViewState& view = LinksView();
  std::string& folder = App().linksFolder;
  const std::string& root = App().dataHtmlDir;
  // A folder removed, renamed or grown past the path limit behind the program's
  // back: the nearest folder above it that can be listed, with its way up.
  while (!RefreshLinks(folder)) {
    if (folder.size() <= root.size() || !IsUnderRoot(folder, root)) return false;
    folder = ParentFolder(folder);
    view.depth = std::max(view.depth - 1, 0);
  }
  return true;
}

void CreateLinksColumns(HWND main) {
  RECT client;
  GetClientRect(main, &client);
  const LinkColumnWidths widths = LinksColumnWidths(client.right);
  LVCOLUMNA column{};
  column.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT | LVCF_SUBITEM;
  column.fmt = LVCFMT_LEFT;
  for (int i = 0; i < kLinkColumns; ++i) {
    column.cx = widths[i];
    column.pszText = const_cast<char*>(kColumnTitles[i]);
    column.iSubItem = i;
    SendMessageA(View(), LVM_INSERTCOLUMNA, i, reinterpret_cast<LPARAM>(&column));
  }
  // Rows listed before there were columns were drawn with no width at all.
  InvalidateRect(View(), nullptr, TRUE);
}

LRESULT LinksViewNotify(HWND main, const NMHDR& header) {
  for (const NotifyRow& row : kLinksNotifications)
    if (row.code == header.code) return row.handler(main, header);
  return 0;
}

LRESULT DrawLinksRow(const DRAWITEMSTRUCT& item) {
  auto& entries = LinksView().listing.entries();
  if (item.itemID >= entries.size()) return TRUE;
  LinkEntry& entry = entries[item.itemID];
  const bool selected = (item.itemState & ODS_SELECTED) != 0;
  HDC dc = item.hDC;
  const RECT& row = item.rcItem;
  FillRect(dc, &row, GetSysColorBrush(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
  COLORREF text = GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT);
  if (entry.marked) text = kMarkedText;
  const COLORREF oldText = SetTextColor(dc, text);
  const int oldMode = SetBkMode(dc, TRANSPARENT);

  const int image = ImageOf(entry);
  const int iconTop = row.top + (row.bottom - row.top - kIconSize) / 2;
  if (LinksView().images)
    ImageList_Draw(LinksView().images, image, dc, row.left + kIconLeft, iconTop, ILD_TRANSPARENT);

  int left = row.left;
  for (int column = 0; column < kLinkColumns; ++column) {
    const int width = ColumnWidth(column);
    const int inset = column == 0 ? kNameLeft : kTextGap;
    DrawCell(dc, LinkCellText(entry, column), left + inset, width - inset, row);
    left += width;
  }
  SetBkMode(dc, oldMode);
  SetTextColor(dc, oldText);
  return TRUE;
}

LRESULT OnLinksEnterCommand(HWND, WORD, WORD, LPARAM) {
  LinksEnter();
  return 0;
}

void LinksEnter() {
  const int row = static_cast<int>(SendMessageA(View(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1),
                                                LVNI_SELECTED));
  OpenRow(row);
}

const LinkEntry* SelectedLinkEntry() {
  const int row = static_cast<int>(SendMessageA(View(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1),
                                                LVNI_SELECTED));
  return EntryOfRow(row);
}

bool LinksViewShown() {
  return View() && (GetWindowLongA(View(), GWL_STYLE) & WS_VISIBLE) != 0;
}

}  // namespace qb
