#include "keys/merge_dialog.h"

#include <commctrl.h>
#include <commdlg.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "base/app_state.h"
#include "base/dispatch.h"
#include "base/help.h"
#include "base/user_message.h"
#include "keys/key_file.h"
#include "keys/key_rows.h"
#include "resources/resource.h"

namespace qb {
namespace {

constexpr std::size_t kPathBufferSize = 260;  // the file dialog's path buffer
constexpr char kOpenTitle[] = "Open - Database";
constexpr char kOpenFilter[] = "Quellbarrow databases(*.dat)\0*.dat\0";
constexpr char kDefaultExtension[] = "dat";

constexpr int kTakeButtons[] = {IDC_MERGE_TAKE_SEARCH, IDC_MERGE_TAKE_SELECTION, IDC_MERGE_TAKE_DESCRIPTION};
constexpr int kModeCount = 3;
constexpr int kKeyValueEdits = kKeyFieldCount;  // 400..403: Name, Search Names, Selection, Description

KeyListRefill g_refill = nullptr;

// While the dialog is open: the keys of the loaded file and the safety copy.
struct OpenMerge {
  std::unique_ptr<KeyTable> loaded = std::make_unique<KeyTable>();
  MergeSession session;
  ~OpenMerge() { ClearAllKeys(*loaded); }
};
std::unique_ptr<OpenMerge> g_open;

HWND List(HWND dialog, int id) { return GetDlgItem(dialog, id); }

// The loaded list, and the file's name above it when it has rows.
void ShowLoaded(HWND dialog) {
  HWND list = List(dialog, IDC_MERGE_LOADED_LIST);
  FillKeyRows(list, *g_open->loaded);
  const bool rows = ListView_GetItemCount(list) > 0;
  SetDlgItemTextA(dialog, IDC_MERGE_FILE_NAME, rows ? MergeMemory().loadedPath.c_str() : "");
}

void ShowOptions(HWND dialog, const MergeOptions& o) {
  const bool take[] = {o.takeSearchNames, o.takeSelection, o.takeDescription};
  for (int i = 0; i < 3; ++i) CheckDlgButton(dialog, kTakeButtons[i], take[i] ? BST_CHECKED : BST_UNCHECKED);
  CheckRadioButton(dialog, IDC_MERGE_MODE_FIRST, IDC_MERGE_MODE_FIRST + kModeCount - 1, IDC_MERGE_MODE_FIRST + o.mode);
}

MergeOptions ReadOptions(HWND dialog) {
  const auto checked = [dialog](int id) { return IsDlgButtonChecked(dialog, id) == BST_CHECKED; };
  MergeOptions o;
  o.takeSearchNames = checked(IDC_MERGE_TAKE_SEARCH);
  o.takeSelection = checked(IDC_MERGE_TAKE_SELECTION);
  o.takeDescription = checked(IDC_MERGE_TAKE_DESCRIPTION);
  o.mode = kCompareDuplicated;
  for (int mode = 0; mode < kModeCount; ++mode) {
    if (checked(IDC_MERGE_MODE_FIRST + mode)) o.mode = static_cast<DuplicateMode>(mode);
  }
  return o;
}

// Closing keeps the choices and lets the loaded keys and the safety copy go.
void CloseMerge(HWND dialog, INT_PTR result) {
  MergeMemory().options = ReadOptions(dialog);
  g_open->session.End();
  g_open.reset();
  EndDialog(dialog, result);
}

LRESULT OnMergeInit(HWND dialog, UINT, WPARAM, LPARAM) {
  g_open = std::make_unique<OpenMerge>();
  if (!g_open->session.Begin(App().programDir + "\\" + kSafetyCopyName, Keys())) {
    // Without the copy neither Undo nor Cancel could give the table back.
    g_open->session.End();
    g_open.reset();
    EndDialog(dialog, 0);
    return 1;
  }
  for (int id : {IDC_MERGE_CURRENT_LIST, IDC_MERGE_LOADED_LIST}) {
    AddFullWidthColumn(List(dialog, id));
    AttachKeyPictures(List(dialog, id));
  }
  FillKeyRows(List(dialog, IDC_MERGE_CURRENT_LIST), Keys());
  const std::string& path = MergeMemory().loadedPath;
  if (!path.empty()) {
    LoadDatabase(path, *g_open->loaded);
    ShowLoaded(dialog);
  }
  ShowOptions(dialog, MergeMemory().options);
  return 1;
}

LRESULT OnLoadNewDatabase(HWND dialog, WORD, WORD, LPARAM) {
  std::array<char, kPathBufferSize> file{};
  OPENFILENAMEA ofn{};
  ofn.lStructSize = sizeof(ofn);
  ofn.hwndOwner = dialog;
  ofn.lpstrFilter = kOpenFilter;
  ofn.lpstrFile = file.data();
  ofn.nMaxFile = static_cast<DWORD>(file.size());
  ofn.lpstrInitialDir = App().databaseDir.c_str();
  ofn.lpstrTitle = kOpenTitle;
  ofn.lpstrDefExt = kDefaultExtension;
  ofn.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
  if (!GetOpenFileNameA(&ofn)) return 1;

  // Read into a table of its own: a file that is no database leaves the keys
  // loaded before, and their list, as they were.
  auto keys = std::make_unique<KeyTable>();
  const LoadResult result = LoadDatabase(file.data(), *keys);
  if (result.status == DatabaseLoadStatus::kMissing) TellUser(kCantOpenDatabaseText);
  if (!result.loaded()) {
    ClearAllKeys(*keys);
    return 1;
  }
  std::swap(keys, g_open->loaded);
  ClearAllKeys(*keys);
  MergeMemory().loadedPath = file.data();
  ShowLoaded(dialog);
  return 1;
}

LRESULT OnSelectDeselectAll(HWND dialog, WORD, WORD, LPARAM) {
  HWND list = List(dialog, IDC_MERGE_LOADED_LIST);
  const int rows = ListView_GetItemCount(list);
  for (int row = 0; row < rows; ++row) {
    SelectRow(list, row, ListView_GetItemState(list, row, LVIS_SELECTED) == 0);
  }
  return 1;
}

LRESULT OnAddCompare(HWND dialog, WORD, WORD, LPARAM) {
  const MergeOptions options = ReadOptions(dialog);
  MergeMemory().options = options;
  HWND loadedList = List(dialog, IDC_MERGE_LOADED_LIST);
  std::vector<int> selected;
  for (int row = ListView_GetNextItem(loadedList, -1, LVNI_SELECTED); row >= 0;
       row = ListView_GetNextItem(loadedList, row, LVNI_SELECTED)) {
    selected.push_back(RowKey(loadedList, row));
  }
  HWND current = List(dialog, IDC_MERGE_CURRENT_LIST);
  const auto showNewKey = [current](int index, std::string_view name) {
    const int row = AddKeyRow(current, index, name);
    if (row < 0) return false;
    SelectRow(current, row, true);
    ListView_EnsureVisible(current, row, FALSE);
    return true;
  };
  const HCURSOR before = SetCursor(LoadCursor(nullptr, IDC_WAIT));
  const MergeOutcome outcome = MergeKeys(Keys(), *g_open->loaded, selected, options, showNewKey);
  SetCursor(before);
  if (outcome.noRoom > 0) TellUser(kNoRoomText, nullptr, MessageIcon::kError);
  return 1;
}

LRESULT OnUndoChanges(HWND dialog, WORD, WORD, LPARAM) {
  g_open->session.DropAdded();
  g_open->session.Restore();
  FillKeyRows(List(dialog, IDC_MERGE_CURRENT_LIST), Keys());
  return 1;
}

LRESULT OnMergeOk(HWND dialog, WORD, WORD, LPARAM) {
  CloseMerge(dialog, 1);
  RefillKeyList();
  return 1;
}

LRESULT OnMergeCancel(HWND dialog, WORD, WORD, LPARAM) {
  g_open->session.Restore();
  CloseMerge(dialog, 0);
  return 1;
}

LRESULT OnMergeHelp(HWND, WORD, WORD, LPARAM) {
  ShowHelpTopic(kMergeHelpContext);
  return 1;
}

const CommandRow kMergeCommands[] = {
    {IDC_MERGE_LOAD,        OnLoadNewDatabase},
    {IDC_MERGE_ADD,         OnAddCompare},
    {IDC_MERGE_SELECT_ALL,  OnSelectDeselectAll},
    {IDC_MERGE_UNDO,        OnUndoChanges},
    {IDOK,                  OnMergeOk},
    {IDCANCEL,              OnMergeCancel},
    {IDC_HELP_BUTTON,       OnMergeHelp},
};

// A double click on a row previews its key.
LRESULT PreviewRow(const NMHDR& header, WORD source) {
  const int row = reinterpret_cast<const NMITEMACTIVATE&>(header).iItem;
  const int key = row >= 0 ? RowKey(header.hwndFrom, row) : -1;
  if (key >= 0) RunKeyValuesDialog(GetParent(header.hwndFrom), MAKELPARAM(key, source));
  return 0;
}
LRESULT OnCurrentListDoubleClick(const NMHDR& header) { return PreviewRow(header, kPreviewTable); }
LRESULT OnLoadedListDoubleClick(const NMHDR& header) { return PreviewRow(header, kPreviewLoaded); }

const NotifyRow kMergeNotifications[] = {
    {IDC_MERGE_CURRENT_LIST,  NM_DBLCLK,  OnCurrentListDoubleClick},
    {IDC_MERGE_LOADED_LIST,   NM_DBLCLK,  OnLoadedListDoubleClick},
};

const MessageRow kMergeMessages[] = {
    {WM_INITDIALOG,  OnMergeInit},
};

LRESULT OnKeyValuesInit(HWND dialog, UINT, WPARAM, LPARAM packedKey) {
  const int index = LOWORD(packedKey);
  const WORD source = HIWORD(packedKey);
  const KeyTable& table = source == kPreviewLoaded && g_open ? *g_open->loaded : Keys();
  if (index < kMaxKeys) {
    for (int f = 0; f < kKeyValueEdits; ++f) {
      TextLock text(table.fields[f][index]);
      SetDlgItemTextA(dialog, IDC_KEYVALUES_FIRST + f, std::string(text.text()).c_str());
    }
  }
  return 1;
}

LRESULT OnKeyValuesHelp(HWND, WORD, WORD, LPARAM) {
  ShowHelpTopic(kKeyValuesHelpContext);
  return 1;
}

const CommandRow kKeyValuesCommands[] = {
    {IDOK,              EndDialogCancelled},
    {IDCANCEL,          EndDialogCancelled},
    {IDC_HELP_BUTTON,   OnKeyValuesHelp},
};

const MessageRow kKeyValuesMessages[] = {
    {WM_INITDIALOG,  OnKeyValuesInit},
};

}  // namespace

void SetKeyListRefill(KeyListRefill refill) { g_refill = refill; }

void RefillKeyList() {
  if (g_refill) g_refill();
}

MergeDialogMemory& MergeMemory() {
  static MergeDialogMemory memory;
  return memory;
}

INT_PTR RunMergeDialog(HWND owner) {
  return DialogBoxParamA(App().instance, kMergeDialogName, owner,
                         DialogProcedure<kMergeMessages, kMergeCommands, kMergeNotifications>, 0);
}

INT_PTR RunKeyValuesDialog(HWND owner, LPARAM packedKey) {
  return DialogBoxParamA(App().instance, kKeyValuesDialogName, owner,
                         DialogProcedure<kKeyValuesMessages, kKeyValuesCommands>, packedKey);
}

LRESULT OnAddCompareCommand(HWND window, WORD, WORD, LPARAM) {
  RunMergeDialog(window);
  return 0;
}

}  // namespace qb
