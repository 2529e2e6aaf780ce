#include "keys/key_editor.h"

#include <commctrl.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include "base/app_state.h"
#include "base/dispatch.h"
#include "base/help.h"
#include "base/user_message.h"
#include "keys/key_clipboard.h"
#include "keys/key_list.h"
#include "keys/key_rows.h"
#include "keys/key_table.h"
#include "resources/resource.h"

namespace qb {
namespace {

// Edits 120..123 hold the fields in table order.
static_assert(IDC_KEYEDIT_SEARCH == IDC_KEYEDIT_NAME + kSearchNames &&
                  IDC_KEYEDIT_SELECTION == IDC_KEYEDIT_NAME + kSelection &&
                  IDC_KEYEDIT_DESCRIPTION == IDC_KEYEDIT_NAME + kDescription,
              "one edit per field, in field order");
constexpr int kKeyButtons[] = {IDC_KEYEDIT_CREATE, IDC_KEYEDIT_SAVE, IDC_KEYEDIT_DELETE};

struct OpenRequest {
  int mode = kEditorAdd;
  int keyIndex = kNoKey;
  std::string name;         // mode 5
  std::string description;  // mode 5
};

// The one open editor. Its list is virtual: row r shows key rowKeys[r], so a
// table of 2000 keys opens as fast as an empty one.
struct EditorRun {
  int mode = kEditorAdd;
  int editing = -1;  // the key Save key and OK act on; -1 for none
  std::vector<int> rowKeys;
  // The Name block of the key added last: found again after deletes moved it.
  TextBlock newKeyName = kNoBlock;
  // Set while the editor selects rows itself, which must not load their keys.
  bool selecting = false;
};
EditorRun g_run;
int g_newKey = kNoKey;

HWND Item(HWND dialog, int id) { return GetDlgItem(dialog, id); }
HWND KeyList(HWND dialog) { return Item(dialog, IDC_KEYEDIT_LIST); }

int KeyOfRow(int row) {
  return row >= 0 && row < static_cast<int>(g_run.rowKeys.size()) ? g_run.rowKeys[row] : -1;
}

int RowOfKey(int key) {
  const auto& rows = g_run.rowKeys;
  const auto at = std::find(rows.begin(), rows.end(), key);
  return at == rows.end() ? -1 : static_cast<int>(at - rows.begin());
}

void ShowRowCount(HWND list) {
  ListView_SetItemCountEx(list, static_cast<int>(g_run.rowKeys.size()), LVSICF_NOSCROLL);
}

template <std::size_t N>
std::string_view ReadEdit(HWND dialog, int id, std::array<char, N>& buffer) {
  buffer[0] = '\0';
  GetDlgItemTextA(dialog, id, buffer.data(), static_cast<int>(N));
  return BufferText(buffer);
}

void ShowKey(HWND dialog, int key) {
  for (int f = 0; f < kKeyFieldCount; ++f) {
    SetDlgItemTextA(dialog, IDC_KEYEDIT_NAME + f, KeyFieldText(Keys(), key, static_cast<KeyField>(f)).c_str());
  }
}

void SelectOwnRow(HWND list, int row) {
  g_run.selecting = true;
  SelectRow(list, row, true);
  ListView_SetItemState(list, row, LVIS_FOCUSED, LVIS_FOCUSED);
  ListView_EnsureVisible(list, row, FALSE);
  g_run.selecting = false;
}

// The main window's Keys view: its row r shows key r.
int SelectedMainKey() {
  HWND view = App().keysView;
  const int row = view ? SelectedRow(view) : -1;
  return row >= 0 ? row : kNoKey;
}

std::vector<int> MainRowsNamed(std::string_view name) {
  std::vector<int> rows;
  HWND view = App().keysView;
  if (!view) return rows;
  // One character more than the name, so a longer text cannot read as equal.
  std::string text(name.size() + 2, '\0');
  const int count = ListView_GetItemCount(view);
  for (int row = 0; row < count; ++row) {
    LVITEMA item{};
    item.pszText = text.data();
    item.cchTextMax = static_cast<int>(text.size());
    const auto length = static_cast<std::size_t>(
        SendMessageA(view, LVM_GETITEMTEXTA, row, reinterpret_cast<LPARAM>(&item)));
    if (std::string_view(text.data(), length) == name) rows.push_back(row);
  }
  return rows;
}

// A Name that differs only in letter case is no new Name: the key keeps its own.
void RenameKey(HWND list, int key, const std::string& name) {
  KeyTable& keys = Keys();
  const std::string old = KeyFieldText(keys, key, kName);
  if (CompareNoCase(name, old) == 0) return;
  // Rows showing the old Name take the new one; with no old Name only the key's own
  // row, as every nameless key's row would match.
  const std::vector<int> mainRows = old.empty() ? std::vector<int>{key} : MainRowsNamed(old);
  const bool newKey = g_run.newKeyName != kNoBlock && KeyFieldBlock(keys, key, kName) == g_run.newKeyName;
  SetKeyField(keys, key, kName, name);
  if (newKey) g_run.newKeyName = KeyFieldBlock(keys, key, kName);
  const int row = RowOfKey(key);
  if (row >= 0) ListView_RedrawItems(list, row, row);
  if (HWND view = App().keysView) {
    for (int mainRow : mainRows) SetRowText(view, mainRow, name);
  }
}

// The new key's index, or kNoKey when there was no room or no memory.
int AddKey(HWND list, const std::string& name) {
  KeyTable& keys = Keys();
  const int key = KeysInUse(keys);
  if (key >= kMaxKeys) {
    TellUser(kNoRoomText, nullptr, MessageIcon::kError);
    return kNoKey;
  }
  if (!SetKeyField(keys, key, kName, name)) return kNoKey;
  g_run.rowKeys.push_back(key);
  ShowRowCount(list);
  const int row = static_cast<int>(g_run.rowKeys.size()) - 1;
  g_run.editing = key;
  SelectOwnRow(list, row);
  InsertKeyRow(key);
  keys.count = key + 1;
  g_run.newKeyName = KeyFieldBlock(keys, key, kName);
  return key;
}

// Stores the edits as key `index`: a key of the table is changed, any other
// index adds a key. False (nothing stored) for an empty Name or a full table.
bool StoreKey(HWND dialog, int index) {
  const std::string name(ReadEdit(dialog, IDC_KEYEDIT_NAME, KeyNameBuffer()));
  if (name.empty()) {
    TellUser(kEmptyNameText, nullptr, MessageIcon::kError);
    SendMessageA(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(dialog, IDC_KEYEDIT_NAME)), TRUE);
    return false;
  }
  HWND list = KeyList(dialog);
  int key = index;
  if (index >= 0 && index < KeysInUse(Keys())) {
    RenameKey(list, index, name);
  } else {
    key = AddKey(list, name);
    if (key == kNoKey) return false;
  }
  // The shared buffer keeps the last field read, the Description, for Paste key.
  for (KeyField f : {kSearchNames, kSelection, kDescription}) {
    SetKeyField(Keys(), key, f, ReadEdit(dialog, IDC_KEYEDIT_NAME + f, KeyFieldBuffer()));
  }
  return true;
}

void FillEditorList(HWND list) {
  ListView_DeleteAllItems(list);
  if (!AttachKeyPictures(list)) return;
  // A row for each key whose Name can be read.
  const KeyTable& keys = Keys();
  const int count = KeysInUse(keys);
  for (int i = 0; i < count; ++i) {
    if (!LockKeyField(keys, i, kName).text().empty()) g_run.rowKeys.push_back(i);
  }
  ShowRowCount(list);
}

LRESULT OnKeyEditorInit(HWND dialog, UINT, WPARAM, LPARAM lParam) {
  const OpenRequest& request = *reinterpret_cast<const OpenRequest*>(lParam);
  g_run = EditorRun{};
  g_run.mode = request.mode;
  SendDlgItemMessageA(dialog, IDC_KEYEDIT_NAME, EM_LIMITTEXT, kNameBufferSize - 1, 0);
  for (int id : {IDC_KEYEDIT_SEARCH, IDC_KEYEDIT_SELECTION, IDC_KEYEDIT_DESCRIPTION})
    SendDlgItemMessageA(dialog, id, EM_LIMITTEXT, kMaxFieldLength, 0);

  HWND list = KeyList(dialog);
  AddFullWidthColumn(list);
  FillEditorList(list);
  if (request.keyIndex >= 0 && request.keyIndex < kMaxKeys) {
    g_run.editing = request.keyIndex;
    ShowKey(dialog, request.keyIndex);
    const int row = RowOfKey(request.keyIndex);
    if (row >= 0) SelectOwnRow(list, row);
    return TRUE;
  }
  if (request.mode != kEditorModify) {
    EnableWindow(list, FALSE);
    for (int id : kKeyButtons) EnableWindow(Item(dialog, id), FALSE);
  }
  if (request.mode == kEditorAddPrepared) {
    SetDlgItemTextA(dialog, IDC_KEYEDIT_NAME, request.name.c_str());
    SetDlgItemTextA(dialog, IDC_KEYEDIT_DESCRIPTION, request.description.c_str());
  }
  return TRUE;
}

LRESULT OnSaveKey(HWND dialog, WORD, WORD, LPARAM) {
  StoreKey(dialog, g_run.editing);
  return 1;
}

LRESULT OnCreateKey(HWND dialog, WORD, WORD, LPARAM) {
  StoreKey(dialog, -1);
  return 1;
}

// Leaves marking the database changed to the OK that follows, as the program
// always has. The Keys view is not filled again, but loses the key's row (its row
// r shows key r), so it never lists a key that is gone.
LRESULT OnDeleteKey(HWND dialog, WORD, WORD, LPARAM) {
  KeyTable& keys = Keys();
  if (KeysInUse(keys) <= 0) return 1;
  HWND list = KeyList(dialog);
  const int row = SelectedRow(list);
  const int key = KeyOfRow(row);
  if (key < 0 || key >= KeysInUse(keys)) return 1;
  if (KeyFieldBlock(keys, key, kName) == g_run.newKeyName) g_run.newKeyName = kNoBlock;
  DeleteKey(keys, key);
  if (HWND view = App().keysView; view && key < ListView_GetItemCount(view)) ListView_DeleteItem(view, key);
  // The keys after it moved up one place, and their rows follow them. No row stays
  // selected: the selection would pass to the next key.
  g_run.selecting = true;
  ListView_SetItemState(list, -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
  g_run.selecting = false;
  auto& rows = g_run.rowKeys;
  rows.erase(rows.begin() + row);
  for (int& k : rows) {
    if (k > key) --k;
  }
  ShowRowCount(list);
  InvalidateRect(list, nullptr, TRUE);
  if (g_run.editing == key) {
    g_run.editing = -1;
  } else if (g_run.editing > key) {
    --g_run.editing;
  }
  return 1;
}

// A failed store (an empty Name, a full table) keeps the dialog open with what the
// user typed.
LRESULT OnKeyEditorOk(HWND dialog, WORD, WORD, LPARAM) {
  HWND list = KeyList(dialog);
  const int row = SelectedRow(list);
  g_run.editing = KeyOfRow(row);
  if (row >= 0) {
    if (!StoreKey(dialog, g_run.editing)) return 1;
  } else if (g_run.mode != kEditorModify) {
    if (!StoreKey(dialog, KeysInUse(Keys()))) return 1;
  }
  // A key added has its row in the Keys view already; nothing there is rebuilt,
  // so its selection (the scan's current key) and the table's order stay.
  SetDatabaseChanged(true);
  EndDialog(dialog, 1);
  return 1;
}

LRESULT OnKeyEditorCancel(HWND dialog, WORD, WORD, LPARAM) {
  g_run.editing = -1;
  EndDialog(dialog, 0);
  return 1;
}

LRESULT OnKeyEditorHelp(HWND, WORD, WORD, LPARAM) {
  ShowHelpTopic(kKeyEditorHelpContext);
  return 1;
}

const CommandRow kKeyEditorCommands[] = {
    {IDC_KEYEDIT_SAVE,    OnSaveKey},
    {IDC_KEYEDIT_CREATE,  OnCreateKey},
    {IDC_KEYEDIT_DELETE,  OnDeleteKey},
    {IDOK,                OnKeyEditorOk},
    {IDCANCEL,            OnKeyEditorCancel},
    {IDC_HELP_BUTTON,     OnKeyEditorHelp},
};

// The row's key becomes the one edited; its fields replace whatever the edits held.
void LoadRow(HWND list, int row) {
  const int key = KeyOfRow(row);
  if (key < 0) return;
  g_run.editing = key;
  ShowKey(GetParent(list), key);
}

LRESULT OnListClick(const NMHDR& header) {
  const int row = reinterpret_cast<const NMITEMACTIVATE&>(header).iItem;
  if (row >= 0) LoadRow(header.hwndFrom, row);
  return 0;
}

// A row chosen from the keyboard loads its key as a click does, so OK never stores
// the edits into a key other than the one they show.
LRESULT OnListItemChanged(const NMHDR& header) {
  const auto& change = reinterpret_cast<const NMLISTVIEW&>(header);
  const bool nowSelected = (change.uChanged & LVIF_STATE) && (change.uNewState & LVIS_SELECTED) &&
                           !(change.uOldState & LVIS_SELECTED);
  if (nowSelected && change.iItem >= 0 && !g_run.selecting) LoadRow(header.hwndFrom, change.iItem);
  return 0;
}

// The virtual list's rows: the Name as text (as much as the control takes) and the key.
LRESULT OnListDisplayInfo(const NMHDR& header) {
  LVITEMA& item = const_cast<NMLVDISPINFOA&>(reinterpret_cast<const NMLVDISPINFOA&>(header)).item;
  if (item.mask & LVIF_IMAGE) item.iImage = kKeyPicture;
  if ((item.mask & LVIF_TEXT) && item.pszText && item.cchTextMax > 0) {
    const TextLock name = LockKeyField(Keys(), KeyOfRow(item.iItem), kName);
    const std::size_t n = std::min(name.text().size(), static_cast<std::size_t>(item.cchTextMax - 1));
    name.text().copy(item.pszText, n);
    item.pszText[n] = '\0';
  }
  return 0;
}

// Typing in the list goes to the next row, from `start` on and round again, whose
// Name begins with what was typed.
int FindRowByTyping(std::string_view typed, int start) {
  const int rows = static_cast<int>(g_run.rowKeys.size());
  for (int i = 0; i < rows && !typed.empty(); ++i) {
    const int row = (std::max(start, 0) + i) % rows;
    const TextLock name = LockKeyField(Keys(), g_run.rowKeys[row], kName);
    if (CompareNoCase(name.text().substr(0, typed.size()), typed) == 0) return row;
  }
  return -1;
}

LRESULT OnListFindItemA(const NMHDR& header) {
  const auto& find = reinterpret_cast<const NMLVFINDITEMA&>(header);
  if (!(find.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) || !find.lvfi.psz) return -1;
  return FindRowByTyping(find.lvfi.psz, find.iStart);
}

// Some list controls ask in UTF-16 whatever the dialog's character set.
LRESULT OnListFindItemW(const NMHDR& header) {
  const auto& find = reinterpret_cast<const NMLVFINDITEMW&>(header);
  if (!(find.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) || !find.lvfi.psz) return -1;
  std::array<char, kNameBufferSize> typed{};
  WideCharToMultiByte(CP_ACP, 0, find.lvfi.psz, -1, typed.data(), static_cast<int>(typed.size()) - 1, nullptr,
                      nullptr);
  return FindRowByTyping(BufferText(typed), find.iStart);
}

const NotifyRow kKeyEditorNotifications[] = {
    {IDC_KEYEDIT_LIST,  NM_CLICK,          OnListClick},
    {IDC_KEYEDIT_LIST,  LVN_ITEMCHANGED,   OnListItemChanged},
    {IDC_KEYEDIT_LIST,  LVN_GETDISPINFOA,  OnListDisplayInfo},
    {IDC_KEYEDIT_LIST,  LVN_ODFINDITEMA,   OnListFindItemA},
    {IDC_KEYEDIT_LIST,  LVN_ODFINDITEMW,   OnListFindItemW},
};

const MessageRow kKeyEditorMessages[] = {
    {WM_INITDIALOG,  OnKeyEditorInit},
};

int KeyWithName(TextBlock name) {
  const KeyTable& keys = Keys();
  const int count = KeysInUse(keys);
  for (int i = 0; name != kNoBlock && i < count; ++i) {
    if (keys.fields[kName][i] == name) return i;
  }
  return kNoKey;
}

}  // namespace

int OpenKeyEditor(HWND owner, int mode, const std::string& name, const std::string& description) {
  OpenRequest request;
  request.mode = mode;
  request.keyIndex = mode == kEditorModify ? SelectedMainKey() : kNoKey;
  request.name = name;
  request.description = description;
  const INT_PTR result = DialogBoxParamA(
      App().instance, kKeyEditorDialogName, owner,
      DialogProcedure<kKeyEditorMessages, kKeyEditorCommands, kKeyEditorNotifications>,
      reinterpret_cast<LPARAM>(&request));
  g_newKey = KeyWithName(g_run.newKeyName);
  g_run = EditorRun{};
  return static_cast<int>(result);
}

int KeyEditorNewKey() { return g_newKey; }

LRESULT OnAddKeyCommand(HWND window, WORD, WORD, LPARAM) {
  OpenKeyEditor(window, kEditorAdd);
  return 0;
}

LRESULT OnModifyKeyCommand(HWND window, WORD, WORD, LPARAM) {
  OpenKeyEditor(window, kEditorModify);
  return 0;
}

}  // namespace qb
