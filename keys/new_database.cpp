// New database's two dialogs: "IDD_MAKEDIR" asks for the name, "IDD_NAMEKEY" puts
// the new database together from the keys of the loaded one (or of any database
// file loaded with "Load DK"). Keys move between the two lists; OK makes the right
// list the table. Nothing is written until the user saves.
#include <windows.h>
#include <commctrl.h>

#include <memory>
#include <vector>

#include "base/app_state.h"
#include "base/dispatch.h"
#include "base/help.h"
#include "base/user_message.h"
#include "keys/database_slots.h"
#include "keys/key_file.h"
#include "keys/key_merge.h"
#include "keys/key_rows.h"
#include "keys/key_view_rules.h"
#include "resources/resource.h"

namespace qb {
namespace {

constexpr char kMakeDirDialogName[] = "IDD_MAKEDIR";
constexpr char kNameKeyDialogName[] = "IDD_NAMEKEY";
constexpr char kNoRoomText[] = "The new database can hold no more keys";

// ---- IDD_MAKEDIR ----

LRESULT OnNewNameInit(HWND dialog, UINT, WPARAM, LPARAM) {
  SetWindowTextA(dialog, kNewNameTitle);
  SetDlgItemTextA(dialog, IDC_MAKEDIR_GROUP, kNewDatabaseGroupText);
  HWND edit = GetDlgItem(dialog, IDC_MAKEDIR_NAME);
  SendMessageA(edit, EM_LIMITTEXT, kSlotNameSize - 1, 0);
  SetWindowTextA(edit, kNewDatabaseStartName);
  SendMessageA(edit, EM_SETSEL, 0, -1);
  SetFocus(edit);
  return 0;  // the focus is set
}

// The name goes straight into the current slot: an empty one leaves the slot empty.
LRESULT OnNewNameOk(HWND dialog, WORD, WORD, LPARAM) {
  SlotName& name = CurrentSlotName();
  name.fill('\0');
  GetDlgItemTextA(dialog, IDC_MAKEDIR_NAME, name.data(), static_cast<int>(name.size()));
  if (name[0] == '\0') {
    EndDialog(dialog, 0);
    return 1;
  }
  SetDatabaseChanged(true);
  EndDialog(dialog, 1);
  return 1;
}

const CommandRow kNewNameCommands[] = {
    {IDOK,     OnNewNameOk},
    {IDCANCEL, EndDialogCancelled},
};

const MessageRow kNewNameMessages[] = {
    {WM_INITDIALOG, OnNewNameInit},
};

// ---- IDD_NAMEKEY ----

// The two tables while the dialog is open: the keys to choose from (a copy of the
// loaded database's, or a file's) and the new database's.
struct NewDatabase {
  std::unique_ptr<KeyTable> source = std::make_unique<KeyTable>();
  std::unique_ptr<KeyTable> chosen = std::make_unique<KeyTable>();
  ~NewDatabase() {
    ClearAllKeys(*source);
    ClearAllKeys(*chosen);
  }
};
std::unique_ptr<NewDatabase> g_new;

void CopyTable(const KeyTable& from, KeyTable& to) {
  ClearAllKeys(to);
  const int count = KeysInUse(from);
  for (int i = 0; i < count; ++i) {
    for (int f = 0; f < kKeyFieldCount; ++f) to.fields[f][i] = MakeTextBlock(TextOf(from.fields[f][i]));
  }
  to.count = count;
}

// One row per key, in the table's order, so a row's index is its key's.
void ShowKeys(HWND dialog, int listId, const KeyTable& table) {
  HWND list = GetDlgItem(dialog, listId);
  SendMessageA(list, WM_SETREDRAW, FALSE, 0);
  ListView_DeleteAllItems(list);
  const int count = KeysInUse(table);
  for (int i = 0; i < count; ++i) {
    AddKeyRow(list, i, KeyFieldText(table, i, kName));
  }
  SendMessageA(list, WM_SETREDRAW, TRUE, 0);
}

void ShowBoth(HWND dialog) {
  ShowKeys(dialog, IDC_NAMEKEY_LOADED, *g_new->source);
  ShowKeys(dialog, IDC_NAMEKEY_NEW, *g_new->chosen);
}

void PrepareList(HWND list) {
  AddFullWidthColumn(list);
  AttachKeyPictures(list);
}

LRESULT OnNewDatabaseInit(HWND dialog, UINT, WPARAM, LPARAM) {
  g_new = std::make_unique<NewDatabase>();
  CopyTable(Keys(), *g_new->source);
  PrepareList(GetDlgItem(dialog, IDC_NAMEKEY_LOADED));
  PrepareList(GetDlgItem(dialog, IDC_NAMEKEY_NEW));
  ShowBoth(dialog);
  return 1;
}

// Moves the keys of the selected rows of one list to the end of the other, in the
// order they stood, and selects them there.
void MoveSelected(HWND dialog, int fromId, KeyTable& from, int toId, KeyTable& to) {
  HWND list = GetDlgItem(dialog, fromId);
  std::vector<int> rows;
  for (int row = ListView_GetNextItem(list, -1, LVNI_SELECTED); row >= 0;
       row = ListView_GetNextItem(list, row, LVNI_SELECTED)) {
    rows.push_back(row);
  }
  const int firstNew = KeysInUse(to);
  const std::size_t room = static_cast<std::size_t>(kMaxKeys - firstNew);
  const bool full = rows.size() > room;
  if (full) rows.resize(room);
  // Each move shifts the rows below it up by one.
  for (std::size_t k = 0; k < rows.size(); ++k) TransferKey(from, rows[k] - static_cast<int>(k), to);
  ShowBoth(dialog);
  HWND target = GetDlgItem(dialog, toId);
  const int last = KeysInUse(to);
  for (int row = firstNew; row < last; ++row) ListView_SetItemState(target, row, LVIS_SELECTED, LVIS_SELECTED);
  if (last > firstNew) ListView_EnsureVisible(target, last - 1, FALSE);
  if (full) TellUser(kNoRoomText, nullptr, MessageIcon::kError);
}

LRESULT OnAddKeys(HWND dialog, WORD, WORD, LPARAM) {
  MoveSelected(dialog, IDC_NAMEKEY_LOADED, *g_new->source, IDC_NAMEKEY_NEW, *g_new->chosen);
  return 1;
}

LRESULT OnRemoveKeys(HWND dialog, WORD, WORD, LPARAM) {
  MoveSelected(dialog, IDC_NAMEKEY_NEW, *g_new->chosen, IDC_NAMEKEY_LOADED, *g_new->source);
  return 1;
}

// "Load DK": another database's keys to choose from, in place of the list's.
LRESULT OnLoadKeys(HWND dialog, WORD, WORD, LPARAM) {
  // The file dialog names the current slot's file; the name is put back after it.
  const SlotName kept = CurrentSlotName();
  const bool chosen = ChooseDatabaseFile(dialog, false);
  const std::string path = App().programDir + kDatabaseFolder + SlotNameText(CurrentSlotName());
  CurrentSlotName() = kept;
  if (!chosen) return 1;
  auto keys = std::make_unique<KeyTable>();
  const LoadResult result = LoadDatabase(path, *keys);
  if (result.status == DatabaseLoadStatus::kMissing) TellUser(kCantOpenDatabaseText);
  if (!result.loaded()) {
    ClearAllKeys(*keys);
    return 1;
  }
  std::swap(keys, g_new->source);
  ClearAllKeys(*keys);
  ShowBoth(dialog);
  return 1;
}

void CloseNewDatabase(HWND dialog, INT_PTR result) {
  g_new.reset();
  EndDialog(dialog, result);
}

// The chosen keys become the table, in their order.
LRESULT OnNewDatabaseOk(HWND dialog, WORD, WORD, LPARAM) {
  KeyTable& table = Keys();
  ClearAllKeys(table);
  KeyTable& chosen = *g_new->chosen;
  const int count = KeysInUse(chosen);
  for (int i = 0; i < count; ++i) {
    for (int f = 0; f < kKeyFieldCount; ++f) {
      table.fields[f][i] = chosen.fields[f][i];
      chosen.fields[f][i] = kNoBlock;
    }
  }
  table.count = count;
  chosen.count = 0;
  SetDatabaseChanged(true);
  CloseNewDatabase(dialog, 1);
  return 1;
}

LRESULT OnNewDatabaseCancel(HWND dialog, WORD, WORD, LPARAM) {
  CloseNewDatabase(dialog, 0);
  return 1;
}

LRESULT OnNewDatabaseHelp(HWND, WORD, WORD, LPARAM) {
  ShowHelpTopic(kNewDatabaseHelpContext);
  return 1;
}

const CommandRow kNewDatabaseCommands[] = {
    {IDC_NAMEKEY_ADD,    OnAddKeys},
    {IDC_NAMEKEY_REMOVE, OnRemoveKeys},
    {IDC_NAMEKEY_LOAD,   OnLoadKeys},
    {IDOK,               OnNewDatabaseOk},
    {IDCANCEL,           OnNewDatabaseCancel},
    {IDC_HELP_BUTTON,    OnNewDatabaseHelp},
};

// A double click moves the key across, as its button would.
LRESULT OnNewDatabaseNotify(HWND dialog, UINT, WPARAM, LPARAM lParam) {
  const NMHDR& header = *reinterpret_cast<const NMHDR*>(lParam);
  if (header.code != NM_DBLCLK) return 0;
  if (header.idFrom == IDC_NAMEKEY_LOADED) OnAddKeys(dialog, 0, 0, 0);
  if (header.idFrom == IDC_NAMEKEY_NEW) OnRemoveKeys(dialog, 0, 0, 0);
  return 0;
}

const MessageRow kNewDatabaseMessages[] = {
    {WM_INITDIALOG, OnNewDatabaseInit},
    {WM_NOTIFY,     OnNewDatabaseNotify},
};

}  // namespace

INT_PTR RunNewNameDialog(HWND owner) {
  return DialogBoxParamA(App().instance, kMakeDirDialogName, owner,
                         DialogProcedure<kNewNameMessages, kNewNameCommands>, 0);
}

INT_PTR RunNewDatabaseDialog(HWND owner) {
  return DialogBoxParamA(App().instance, kNameKeyDialogName, owner,
                         DialogProcedure<kNewDatabaseMessages, kNewDatabaseCommands>, 0);
}

}  // namespace qb
