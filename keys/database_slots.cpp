#include "keys/database_slots.h"

#include <commdlg.h>

#include "bars/dock_bar.h"
#include "base/app_state.h"
#include "keys/key_file.h"
#include "keys/key_list.h"
#include "keys/key_view_rules.h"
#include "resources/resource.h"

namespace qb {
namespace {

static_assert(IDM_DATABASE_LAST - IDM_DATABASE_FIRST + 1 == kSlotCount, "one command per slot");

// The description ends in a blank, as the program has always shown it.
constexpr char kDatabaseFilter[] = "Quellbarrow(*.dat) \0*.dat\0";
constexpr char kDatabasePattern[] = "*.dat";
constexpr char kDatabaseExtension[] = "dat";

int g_currentSlot = 0;

void SetMainTitle(const std::string& title) {
  if (App().mainWindow) SetWindowTextA(App().mainWindow, title.c_str());
}

// Yes to the save prompt. A database without a name has no file to go to: with no
// keys (Delete database) there is nothing to keep; with keys the user names a file
// first, and cancelling that is Cancel.
bool SaveForPrompt() {
  if (CurrentSlotName()[0] == '\0') {
    if (KeysInUse(Keys()) == 0) return true;
    if (!ChooseDatabaseFile(MessageOwner(), true)) return false;
  }
  return SaveDatabase(CurrentDatabasePath(), Keys());
}

}  // namespace

int CurrentSlot() { return g_currentSlot; }

void SetCurrentSlot(int slot) {
  if (slot >= 0 && slot < kSlotCount) g_currentSlot = slot;
}

SlotName& CurrentSlotName() { return Settings().slotNames[static_cast<std::size_t>(g_currentSlot)]; }

std::string CurrentDatabasePath() {
  return App().programDir + kDatabaseFolder + SlotNameText(CurrentSlotName());
}

bool AskToSaveChanges() {
  if (!DatabaseChanged()) return true;
  const std::string text = FormatText(kSaveQuestionFormat, SlotNameText(CurrentSlotName()).c_str());
  switch (ShowMessage(text, kQuestionCaption, MB_YESNOCANCEL | MB_ICONQUESTION)) {
    case IDYES:
      return SaveForPrompt();
    case IDNO:
      return true;
    default:
      return false;
  }
}

void SwitchToSlot(int slot) {
  if (slot < 0 || slot >= kSlotCount) return;
  if (!AskToSaveChanges()) {
    PressDatabaseButton(g_currentSlot + 1);
    return;
  }
  ClearAllKeys(Keys());
  g_currentSlot = slot;
  SetDatabaseChanged(false);
  SlotName& name = CurrentSlotName();
  bool loaded = false;
  if (name[0] != '\0') loaded = LoadDatabase(CurrentDatabasePath(), Keys(), &name).loaded();
  SetMainTitle(SlotTitle(SlotNameText(name), loaded));
  FillKeyList();
  // A database that is no longer there empties its slot, which its button shows.
  RefreshDatabaseCaptions();
}

void LoadFirstDatabase() {
  g_currentSlot = 0;
  SetDatabaseChanged(false);
  SlotName& name = CurrentSlotName();
  if (name[0] != '\0' && LoadDatabase(CurrentDatabasePath(), Keys(), &name).loaded()) FillKeyList();
}

bool ChooseDatabaseFile(HWND owner, bool save) {
  SlotName file{};
  SetSlotNameText(file, kDatabasePattern);
  SlotName chosen = CurrentSlotName();
  OPENFILENAMEA ofn{};
  ofn.lStructSize = sizeof(ofn);
  ofn.hwndOwner = owner;
  ofn.lpstrFilter = kDatabaseFilter;
  ofn.lpstrFile = file.data();
  ofn.nMaxFile = static_cast<DWORD>(file.size() - 1);  // 255 characters
  ofn.lpstrFileTitle = chosen.data();
  ofn.nMaxFileTitle = static_cast<DWORD>(chosen.size());
  ofn.lpstrInitialDir = App().databaseDir.c_str();
  ofn.lpstrTitle = kDatabaseDialogTitle;
  ofn.lpstrDefExt = kDatabaseExtension;
  ofn.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_PATHMUSTEXIST | OFN_NOCHANGEDIR;
  if (save) ofn.Flags |= OFN_OVERWRITEPROMPT;
  const BOOL ok = save ? GetSaveFileNameA(&ofn) : GetOpenFileNameA(&ofn);
  if (!ok) return false;
  SetSlotNameText(CurrentSlotName(), SlotNameText(chosen));
  return true;
}

LRESULT OnNewDatabaseCommand(HWND window, WORD, WORD, LPARAM) {
  if (!AskToSaveChanges()) return 0;
  const SlotName kept = CurrentSlotName();
  const bool keptChanged = DatabaseChanged();
  if (RunNewNameDialog(window) != 1) return 0;
  ListView_DeleteAllItems(App().keysView);
  if (RunNewDatabaseDialog(window) == 1) {
    SetMainTitle(SlotTitle(SlotNameText(CurrentSlotName()), true));
  } else {
    // Nothing was made: the old database stays, as it was before the name dialog.
    CurrentSlotName() = kept;
    SetDatabaseChanged(keptChanged);
  }
  FillKeyList();
  RefreshDatabaseCaptions();
  return 0;
}

// Open names the chosen file before the switch, so the save prompt names it and
// Yes writes the table there; the program has always done so.
LRESULT OnDatabaseFileCommand(HWND window, WORD id, WORD, LPARAM) {
  const bool save = id == IDM_SAVEAS_DATABASE;
  if (!ChooseDatabaseFile(window, save)) return 0;
  if (!save) {
    SwitchToSlot(g_currentSlot);
    return 0;
  }
  if (SaveDatabase(CurrentDatabasePath(), Keys())) SetDatabaseChanged(false);
  SetMainTitle(SlotTitle(SlotNameText(CurrentSlotName()), true));
  RefreshDatabaseCaptions();
  // Keys of a slot without a name may be out of the view (a fill shows none); now
  // that the slot has one, they show.
  if (ListView_GetItemCount(App().keysView) != KeysInUse(Keys())) FillKeyList();
  return 0;
}

LRESULT OnSaveDatabaseCommand(HWND, WORD, WORD, LPARAM) {
  if (!SaveAccepts(SlotNameText(CurrentSlotName()))) return 0;
  if (SaveDatabase(CurrentDatabasePath(), Keys())) SetDatabaseChanged(false);
  return 0;
}

LRESULT OnSelectDatabaseCommand(HWND, WORD id, WORD, LPARAM) {
  const int slot = id - IDM_DATABASE_FIRST;
  PressDatabaseButton(slot + 1);
  SwitchToSlot(slot);
  return 0;
}

// The file stays on disk; no prompt, the title and the changed flag as they were.
LRESULT OnDeleteDatabaseCommand(HWND, WORD, WORD, LPARAM) {
  ClearAllKeys(Keys(), &CurrentSlotName());
  FillKeyList();
  RefreshDatabaseCaptions();
  return 0;
}

}  // namespace qb
