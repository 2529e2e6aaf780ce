// The Add / Compare dialog opened through the main window's command table and
// driven through its real controls: the common file dialog, the two list views,
// the option buttons, the preview, and the safety copy on disk.
#include "keys/merge_dialog.h"

#include <gtest/gtest.h>
#include <commctrl.h>
#include <dlgs.h>

#include "base/app_state.h"
#include "keys/key_file.h"
#include "resources/resource.h"
#include "tests/keys/key_test_util.h"
#include "tests/keys/list_rows_util.h"
#include "tests/support/gui_helper.h"
#include "tests/support/main_window.h"
#include "tests/support/temp_dir.h"

namespace qb::test {
namespace {

int g_refills = 0;
void CountRefill() { ++g_refills; }

std::vector<std::string> Rows(HWND dialog, int listId) { return ListTexts(GetDlgItem(dialog, listId)); }

std::vector<int> SelectedRows(HWND dialog, int listId) {
  HWND list = GetDlgItem(dialog, listId);
  std::vector<int> rows;
  for (int row = -1; (row = static_cast<int>(SendMessageA(list, LVM_GETNEXTITEM, row, LVNI_SELECTED))) >= 0;)
    rows.push_back(row);
  return rows;
}

void SelectOnly(HWND dialog, int listId, const std::vector<int>& rows) {
  HWND list = GetDlgItem(dialog, listId);
  LVITEMA none{};
  none.stateMask = LVIS_SELECTED;
  SendMessageA(list, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&none));
  for (int row : rows) {
    LVITEMA item{};
    item.stateMask = LVIS_SELECTED;
    item.state = LVIS_SELECTED;
    SendMessageA(list, LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
  }
}

// A button pressed and its work done before this returns.
void PressNow(HWND dialog, int id) {
  SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

// Clicks a radio button as the mouse does, so its group follows.
void ChooseMode(HWND dialog, DuplicateMode mode) {
  SendMessageA(GetDlgItem(dialog, IDC_MERGE_MODE_FIRST + mode), BM_CLICK, 0, 0);
}

// A double click on a row; returns at once, as the preview it opens is modal.
void DoubleClickRow(HWND dialog, int listId, int row) {
  HWND list = GetDlgItem(dialog, listId);
  RECT r{};
  r.left = LVIR_LABEL;
  SendMessageA(list, LVM_GETITEMRECT, row, reinterpret_cast<LPARAM>(&r));
  const LPARAM at = MAKELPARAM((r.left + r.right) / 2, (r.top + r.bottom) / 2);
  PostMessageA(list, WM_LBUTTONDOWN, MK_LBUTTON, at);
  PostMessageA(list, WM_LBUTTONUP, 0, at);
  PostMessageA(list, WM_LBUTTONDBLCLK, MK_LBUTTON, at);
  PostMessageA(list, WM_LBUTTONUP, 0, at);
}

ModalStep LoadNewDk() {
  return Custom([](HWND dialog, const WindowSnapshot&) { ClickButton(dialog, IDC_MERGE_LOAD); });
}

std::array<std::string, kKeyFieldCount> PreviewTexts(const WindowSnapshot& preview) {
  std::array<std::string, kKeyFieldCount> texts;
  for (int f = 0; f < kKeyFieldCount; ++f) {
    const ControlInfo* edit = preview.Control(IDC_KEYVALUES_FIRST + f);
    texts[f] = edit ? edit->text : "<none>";
  }
  return texts;
}

class MergeDialogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    SetProgramDirectory(dir_.path());
    App().mainWindow = nullptr;
    UseMessageBoxes();
    MergeMemory() = MergeDialogMemory{};
    SetDatabaseChanged(false);
    SetKeyListRefill(CountRefill);
    g_refills = 0;
  }
  void TearDown() override {
    ClearAllKeys(Keys());
    SetDatabaseChanged(false);
    SetUserMessageSink(nullptr);
    SetKeyListRefill(nullptr);
  }

  std::string WriteDatabase(const std::string& name, const std::vector<KeyTexts>& keys) {
    OwnedTable table(keys);
    const std::string path = dir_.File(name);
    EXPECT_TRUE(SaveDatabase(path, *table));
    return path;
  }

  // The table as its database file holds it.
  std::vector<std::uint8_t> TableFile(const std::string& name) {
    EXPECT_TRUE(SaveDatabase(dir_.File(name), Keys()));
    return ReadBytes(dir_.File(name));
  }

  std::string SafetyCopy() const { return dir_.File(kSafetyCopyName); }

  static ModalResult Open(std::vector<ModalStep> steps) {
    return RunModal([] { LookupCommand(kMainCommandMap, nullptr, MAKEWPARAM(IDM_ADD_COMPARE, 0), 0); },
                    std::move(steps));
  }

  TempDir dir_;
};

TEST_F(MergeDialogTest, DoNotAddLeavesDuplicatesAndHeldNamesAndPreviewShowsEachListsKey) {
  FillTable(Keys(), {{"Zip", "zip", "a", "old"}, {"City", "city", "", ""}});
  const std::string other = WriteDatabase("Other.dat", {{"ZIP", "zip,town", "1", "z"}, {"Town", "city,town2", "x", "t"}});
  std::string fileName;
  std::vector<std::string> loadedRows, currentRows;
  std::vector<int> allSelected, noneSelected, newKeySelected;
  std::vector<KeyTexts> afterAdd;
  bool copyWhileOpen = false;
  const auto result = Open({
      LoadNewDk(),
      ChooseFile(other),
      Again(Custom([&](HWND d, const WindowSnapshot&) {
        copyWhileOpen = FileExists(SafetyCopy());
        fileName = WindowText(GetDlgItem(d, IDC_MERGE_FILE_NAME));
        loadedRows = Rows(d, IDC_MERGE_LOADED_LIST);
        ChooseMode(d, kSkipDuplicated);
        PressNow(d, IDC_MERGE_SELECT_ALL);
        allSelected = SelectedRows(d, IDC_MERGE_LOADED_LIST);
        PressNow(d, IDC_MERGE_ADD);
        afterAdd = TableTexts(Keys());
        currentRows = Rows(d, IDC_MERGE_CURRENT_LIST);
        newKeySelected = SelectedRows(d, IDC_MERGE_CURRENT_LIST);
        SelectOnly(d, IDC_MERGE_LOADED_LIST, {1});
        PressNow(d, IDC_MERGE_SELECT_ALL);
        noneSelected = SelectedRows(d, IDC_MERGE_LOADED_LIST);
        DoubleClickRow(d, IDC_MERGE_LOADED_LIST, 0);
      })),
      test::Press("OK"),
      Again(Custom([](HWND d, const WindowSnapshot&) { DoubleClickRow(d, IDC_MERGE_CURRENT_LIST, 0); })),
      test::Press("Cancel"),
      Again(test::Press("OK")),
  });
  ASSERT_TRUE(result.ok()) << result.Describe();
  ASSERT_EQ(result.seen.size(), 7u);
  EXPECT_EQ(result.seen[0].caption, "Quellbarrow - Load / compare keys");
  EXPECT_EQ(result.seen[1].caption, "Open - Database");
  const ControlInfo* fileTypes = result.seen[1].Control(cmb1);
  ASSERT_NE(fileTypes, nullptr);
  EXPECT_EQ(fileTypes->text, "Quellbarrow databases(*.dat)");
  EXPECT_TRUE(copyWhileOpen);
  EXPECT_EQ(fileName, other);
  EXPECT_EQ(loadedRows, (std::vector<std::string>{"ZIP", "Town"}));
  EXPECT_EQ(allSelected, (std::vector<int>{0, 1}));
  EXPECT_EQ(noneSelected, (std::vector<int>{0}));  // inverted: row 1 off, row 0 on
  // "Zip" is left alone; "city" belongs to City, so Town gets only "town2".
  const std::vector<KeyTexts> expected = {
      {"Zip", "zip", "a", "old"}, {"City", "city", "", ""}, {"Town", "town2,", "x\r\n", "t"}};
  EXPECT_EQ(afterAdd, expected);
  EXPECT_EQ(currentRows, (std::vector<std::string>{"Zip", "City", "Town"}));
  EXPECT_EQ(newKeySelected, (std::vector<int>{2}));
  // Row 0 of each list: the loaded "ZIP", then the table's "Zip".
  EXPECT_EQ(result.seen[3].caption, "Quellbarrow - Preview key values");
  EXPECT_EQ(PreviewTexts(result.seen[3]), (KeyTexts{"ZIP", "zip,town", "1", "z"}));
  EXPECT_EQ(PreviewTexts(result.seen[5]), (KeyTexts{"Zip", "zip", "a", "old"}));

  EXPECT_EQ(TableTexts(Keys()), expected);
  EXPECT_TRUE(DatabaseChanged());
  EXPECT_EQ(g_refills, 1);
  EXPECT_FALSE(FileExists(SafetyCopy()));
}

TEST_F(MergeDialogTest, CancelAfterSeveralRoundsRestoresTheTableExactly) {
  FillTable(Keys(), {{"Zip", "zip,plz", "a\r\nb", "old"}, {"", "nameless", "", ""}, {"City", "", "", "Bonn"}});
  const std::vector<std::uint8_t> before = TableFile("before.dat");
  const std::string other = WriteDatabase("Other.dat", {{"zip", "plz,post", "B\r\nc", "new"}, {"Town", "town", "x", "t"}});
  std::size_t keysAfterRounds = 0;
  const auto result = Open({
      LoadNewDk(),
      ChooseFile(other),
      Again(Custom([&](HWND d, const WindowSnapshot&) {
        PressNow(d, IDC_MERGE_SELECT_ALL);
        for (DuplicateMode mode : {kCompareDuplicated, kOverwriteDuplicated, kCompareDuplicated}) {
          ChooseMode(d, mode);
          PressNow(d, IDC_MERGE_ADD);
        }
        SetCheck(d, IDC_MERGE_TAKE_SELECTION, false);
        ChooseMode(d, kSkipDuplicated);
        PressNow(d, IDC_MERGE_ADD);
        keysAfterRounds = TableTexts(Keys()).size();
        ClickButton(d, IDCANCEL);
      })),
  });
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(keysAfterRounds, 4u);
  EXPECT_EQ(TableFile("after.dat"), before);
  EXPECT_FALSE(DatabaseChanged());
  EXPECT_FALSE(FileExists(SafetyCopy()));
  EXPECT_EQ(g_refills, 0);

  // Opened again: the same file is loaded and the choices are as they were left.
  // A safety copy that has gone is reported at Cancel, and the table keeps its keys.
  std::vector<std::string> loadedRows;
  const auto again = Open({Custom([&](HWND d, const WindowSnapshot&) {
                             loadedRows = Rows(d, IDC_MERGE_LOADED_LIST);
                             SelectOnly(d, IDC_MERGE_LOADED_LIST, {1});
                             PressNow(d, IDC_MERGE_ADD);
                             DeleteFileA(SafetyCopy().c_str());
                             ClickButton(d, IDCANCEL);
                           }),
                           test::Press("OK")});
  ASSERT_TRUE(again.ok()) << again.Describe();
  EXPECT_EQ(loadedRows, (std::vector<std::string>{"zip", "Town"}));
  const WindowSnapshot& reopened = again.seen[0];
  EXPECT_EQ(reopened.Control(IDC_MERGE_FILE_NAME)->text, other);
  const int checks[] = {BST_CHECKED, BST_UNCHECKED, BST_CHECKED, BST_UNCHECKED, BST_UNCHECKED, BST_CHECKED};
  const int ids[] = {IDC_MERGE_TAKE_SEARCH,    IDC_MERGE_TAKE_SELECTION, IDC_MERGE_TAKE_DESCRIPTION,
                     IDC_MERGE_MODE_FIRST + 0, IDC_MERGE_MODE_FIRST + 1, IDC_MERGE_MODE_FIRST + 2};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(reopened.Control(ids[i])->checked, checks[i]) << ids[i];
  EXPECT_EQ(again.seen[1].MessageText(), kCantOpenDatabaseText);
  EXPECT_EQ(TableTexts(Keys()).size(), 4u);
}

TEST_F(MergeDialogTest, SelectionMergeThenUndoThenOverwrite) {
  FillTable(Keys(), {{"Sex", "", "Male\r\nfemale", ""}});
  const std::string other = WriteDatabase("Other.dat", {{"sex", "", "FEMALE\r\ndiverse", ""}});
  std::vector<KeyTexts> compared, undone;
  std::vector<std::string> rowsAfterUndo;
  const auto result = Open({
      LoadNewDk(),
      ChooseFile(other),
      Again(Custom([&](HWND d, const WindowSnapshot&) {
        SelectOnly(d, IDC_MERGE_LOADED_LIST, {0});
        ChooseMode(d, kCompareDuplicated);
        PressNow(d, IDC_MERGE_ADD);
        compared = TableTexts(Keys());
        PressNow(d, IDC_MERGE_UNDO);
        undone = TableTexts(Keys());
        rowsAfterUndo = Rows(d, IDC_MERGE_CURRENT_LIST);
        ChooseMode(d, kOverwriteDuplicated);
        PressNow(d, IDC_MERGE_ADD);
        ClickButton(d, IDOK);
      })),
  });
  ASSERT_TRUE(result.ok()) << result.Describe();
  // Compare: only the value the key lacked. Overwrite: every value found, none left.
  EXPECT_EQ(compared, (std::vector<KeyTexts>{{"Sex", "", "diverse\r\n", ""}}));
  EXPECT_EQ(undone, (std::vector<KeyTexts>{{"Sex", "", "Male\r\nfemale", ""}}));
  EXPECT_EQ(rowsAfterUndo, (std::vector<std::string>{"Sex"}));
  EXPECT_EQ(TableTexts(Keys()), (std::vector<KeyTexts>{{"Sex", "", "", ""}}));
  EXPECT_EQ(g_refills, 1);
  EXPECT_FALSE(FileExists(SafetyCopy()));
}

// Undo when the safety copy can't be read: the user is told, and the keys added
// since the dialog opened go all the same.
TEST_F(MergeDialogTest, UndoWithoutTheSafetyCopyStillDropsTheAddedKeys) {
  FillTable(Keys(), {{"Zip", "zip", "", ""}});
  MergeMemory().loadedPath = WriteDatabase("Other.dat", {{"Town", "town", "", ""}});
  std::vector<KeyTexts> undone;
  std::vector<std::string> currentRows;
  const auto result = Open({
      Custom([&](HWND d, const WindowSnapshot&) {
        SelectOnly(d, IDC_MERGE_LOADED_LIST, {0});
        PressNow(d, IDC_MERGE_ADD);
        DeleteFileA(SafetyCopy().c_str());
        ClickButton(d, IDC_MERGE_UNDO);
      }),
      test::Press("OK"),
      Again(Custom([&](HWND d, const WindowSnapshot&) {
        undone = TableTexts(Keys());
        currentRows = Rows(d, IDC_MERGE_CURRENT_LIST);
        ClickButton(d, IDOK);
      })),
  });
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen[1].MessageText(), kCantOpenDatabaseText);
  EXPECT_EQ(undone, (std::vector<KeyTexts>{{"Zip", "zip", "", ""}}));
  EXPECT_EQ(currentRows, (std::vector<std::string>{"Zip"}));
}

TEST_F(MergeDialogTest, ABadFileKeepsTheKeysLoadedBefore) {
  const std::string good = WriteDatabase("Good.dat", {{"One", "", "", ""}, {"Two", "", "", ""}});
  const std::string bad = dir_.File("Bad.dat");
  WriteText(bad, "not a database at all");
  std::string fileName;
  std::vector<std::string> rows;
  const auto result = Open({
      LoadNewDk(),
      ChooseFile(good),
      Again(LoadNewDk()),
      ChooseFile(bad),
      test::Press("OK"),
      Again(Custom([&](HWND d, const WindowSnapshot&) {
        fileName = WindowText(GetDlgItem(d, IDC_MERGE_FILE_NAME));
        rows = Rows(d, IDC_MERGE_LOADED_LIST);
        ClickButton(d, IDCANCEL);
      })),
  });
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen[4].MessageText(), kNotADatabaseText);
  EXPECT_EQ(fileName, good);
  EXPECT_EQ(rows, (std::vector<std::string>{"One", "Two"}));
  EXPECT_EQ(MergeMemory().loadedPath, good);
}

// Tab walks the controls in reading order; Esc is Cancel (the table comes back)
// and Enter is OK, wherever the focus is.
TEST_F(MergeDialogTest, KeyboardTabEscapeAndEnter) {
  FillTable(Keys(), {{"Zip", "zip", "", ""}});
  const std::string other = WriteDatabase("Other.dat", {{"Town", "town", "", ""}});
  MergeMemory().loadedPath = other;
  std::vector<int> tabOrder;
  std::size_t keysBeforeEscape = 0;
  const auto key = [](HWND d, int id, WPARAM vk) { PostMessageA(GetDlgItem(d, id), WM_KEYDOWN, vk, 0); };
  const auto escaped = Open({Custom([&](HWND d, const WindowSnapshot&) {
    HWND first = GetDlgItem(d, IDC_MERGE_CURRENT_LIST);
    HWND at = first;
    do {
      tabOrder.push_back(GetDlgCtrlID(at));
      at = GetNextDlgTabItem(d, at, FALSE);
    } while (at && at != first && tabOrder.size() < 20);
    SelectOnly(d, IDC_MERGE_LOADED_LIST, {0});
    PressNow(d, IDC_MERGE_ADD);
    keysBeforeEscape = TableTexts(Keys()).size();
    key(d, IDC_MERGE_CURRENT_LIST, VK_ESCAPE);
  })});
  ASSERT_TRUE(escaped.ok()) << escaped.Describe();
  EXPECT_EQ(tabOrder, (std::vector<int>{IDC_MERGE_CURRENT_LIST, IDC_MERGE_LOADED_LIST, IDC_MERGE_LOAD,
                                        IDC_MERGE_TAKE_SEARCH, IDC_MERGE_TAKE_SELECTION, IDC_MERGE_TAKE_DESCRIPTION,
                                        IDC_MERGE_MODE_FIRST, IDC_MERGE_ADD, IDC_MERGE_SELECT_ALL, IDC_MERGE_UNDO,
                                        IDOK, IDCANCEL, IDC_HELP_BUTTON}));
  EXPECT_EQ(keysBeforeEscape, 2u);
  EXPECT_EQ(TableTexts(Keys()), (std::vector<KeyTexts>{{"Zip", "zip", "", ""}}));

  const auto entered = Open({Custom([&](HWND d, const WindowSnapshot&) {
    SelectOnly(d, IDC_MERGE_LOADED_LIST, {0});
    PressNow(d, IDC_MERGE_ADD);
    key(d, IDC_MERGE_LOADED_LIST, VK_RETURN);
  })});
  ASSERT_TRUE(entered.ok()) << entered.Describe();
  EXPECT_EQ(TableTexts(Keys()).size(), 2u);
  EXPECT_EQ(g_refills, 1);
}

}  // namespace
}  // namespace qb::test
