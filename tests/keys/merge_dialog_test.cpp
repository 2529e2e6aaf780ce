// The Add / Compare dialog opened through the main window's command table and
// driven through its real controls: the common file dialog, the two list views,
// the option buttons, the preview, and the safety copy on disk.
#include "keys/merge_dialog.h"

#include <gtest/gtest.h>
#include <commctrl.h>

#include "keys/key_file.h"
#include "resources/resource.h"
#include "tests/keys/key_test_util.h"
#include "tests/keys/dialog_util.h"
#include "tests/support/main_window.h"
#include "tests/support/temp_dir.h"

namespace qb::test {
namespace {

// Clicks a radio button as the mouse does, so its group follows.
void ChooseMode(HWND dialog, DuplicateMode mode) {
  SendMessageA(GetDlgItem(dialog, IDC_MERGE_MODE_FIRST + mode), BM_CLICK, 0, 0);
}

// A double click on a row; returns at once, as the preview it opens is modal.
void DoubleClickRow(HWND dialog, int listId, int row) {
  HWND list = GetDlgItem(dialog, listId);
  RECT r{};
  ListView_GetItemRect(list, row, &r, LVIR_LABEL);
  const LPARAM at = MAKELPARAM((r.left + r.right) / 2, (r.top + r.bottom) / 2);
  PostMessageA(list, WM_LBUTTONDOWN, MK_LBUTTON, at);
  PostMessageA(list, WM_LBUTTONUP, 0, at);
  PostMessageA(list, WM_LBUTTONDBLCLK, MK_LBUTTON, at);
  PostMessageA(list, WM_LBUTTONUP, 0, at);
}

std::array<std::string, kKeyFieldCount> PreviewTexts(const WindowSnapshot& preview) {
  std::array<std::string, kKeyFieldCount> texts;
  for (int f = 0; f < kKeyFieldCount; ++f) {
    const ControlInfo* edit = preview.Control(IDC_KEYVALUES_FIRST + f);
    texts[f] = edit ? edit->text : "<none>";
  }
  return texts;
}

class MergeDialogTest : public KeyDialogTest {
 protected:
  void SetUp() override {
    KeyDialogTest::SetUp();
    SetProgramDirectory(dir_.path());
    MergeMemory() = MergeDialogMemory{};
  }

  std::string WriteDatabase(const std::string& name, const std::vector<KeyTexts>& keys) {
    const std::string path = dir_.File(name);
    EXPECT_TRUE(SaveDatabase(path, *OwnedTable(keys)));
    return path;
  }

  // The table as its database file holds it.
  std::vector<std::uint8_t> TableFile(const std::string& name) {
    EXPECT_TRUE(SaveDatabase(dir_.File(name), Keys()));
    return ReadBytes(dir_.File(name));
  }

  std::string SafetyCopy() const { return dir_.File(kSafetyCopyName); }

  static ModalResult Open(std::vector<ModalStep> steps) {
    return Answered([] { LookupCommand(kMainCommandMap, nullptr, MAKEWPARAM(IDM_ADD_COMPARE, 0), 0); },
                    std::move(steps));
  }

  TempDir dir_;
};

TEST_F(MergeDialogTest, DoNotAddLeavesDuplicatesAndHeldNamesAndPreviewShowsEachListsKey) {
  FillTable(Keys(), {{"Zip", "zip", "a", "old"}, {"City", "city", "", ""}});
  const std::string other =
      WriteDatabase("Other.dat", {{"ZIP", "zip,town", "1", "z"}, {"Town", "city,town2", "x", "t"}});
  const auto result = Open({
      Press("Load new DK"),
      ChooseFile(other),
      Again(Custom([&](HWND d, const WindowSnapshot&) {
        EXPECT_EQ(TabOrder(d, IDC_MERGE_CURRENT_LIST),
                  (std::vector<int>{IDC_MERGE_CURRENT_LIST, IDC_MERGE_LOADED_LIST, IDC_MERGE_LOAD, IDC_MERGE_TAKE_SEARCH,
                                    IDC_MERGE_TAKE_SELECTION, IDC_MERGE_TAKE_DESCRIPTION, IDC_MERGE_MODE_FIRST,
                                    IDC_MERGE_ADD, IDC_MERGE_SELECT_ALL, IDC_MERGE_UNDO, IDOK, IDCANCEL,
                                    IDC_HELP_BUTTON}));
        EXPECT_EQ(WindowText(GetDlgItem(d, IDC_MERGE_FILE_NAME)), other);
        EXPECT_EQ(ListTexts(d, IDC_MERGE_LOADED_LIST), (Names{"ZIP", "Town"}));
        ChooseMode(d, kSkipDuplicated);
        PressNow(d, IDC_MERGE_SELECT_ALL);
        EXPECT_EQ(SelectedRows(d, IDC_MERGE_LOADED_LIST), (std::vector<int>{0, 1}));
        PressNow(d, IDC_MERGE_ADD);
        EXPECT_EQ(ListTexts(d, IDC_MERGE_CURRENT_LIST), (Names{"Zip", "City", "Town"}));
        EXPECT_EQ(SelectedRows(d, IDC_MERGE_CURRENT_LIST), (std::vector<int>{2}));
        // Select all inverts a selection: row 1 off, row 0 on.
        SelectOnly(d, IDC_MERGE_LOADED_LIST, {1});
        PressNow(d, IDC_MERGE_SELECT_ALL);
        EXPECT_EQ(SelectedRows(d, IDC_MERGE_LOADED_LIST), (std::vector<int>{0}));
        DoubleClickRow(d, IDC_MERGE_LOADED_LIST, 0);
      })),
      Press("OK"),
      Again(Custom([](HWND d, const WindowSnapshot&) { DoubleClickRow(d, IDC_MERGE_CURRENT_LIST, 0); })),
      Press("Cancel"),
      Again(Press("OK")),
  });
  // Row 0 of each list: the loaded "ZIP", then the table's "Zip".
  EXPECT_EQ(PreviewTexts(result.seen[3]), (KeyTexts{"ZIP", "zip,town", "1", "z"}));
  EXPECT_EQ(PreviewTexts(result.seen[5]), (KeyTexts{"Zip", "zip", "a", "old"}));

  // "Zip" is left alone; "city" belongs to City, so Town gets only "town2".
  EXPECT_EQ(TableTexts(Keys()),
            (KeyRows{{"Zip", "zip", "a", "old"}, {"City", "city", "", ""}, {"Town", "town2,", "x\r\n", "t"}}));
  EXPECT_TRUE(DatabaseChanged());
  EXPECT_EQ(refills, 1);
  EXPECT_FALSE(FileExists(SafetyCopy()));
}

// Esc is Cancel wherever the focus is.
TEST_F(MergeDialogTest, CancelAfterSeveralRoundsRestoresTheTableExactly) {
  FillTable(Keys(), {{"Zip", "zip,plz", "a\r\nb", "old"}, {"", "nameless", "", ""}, {"City", "", "", "Bonn"}});
  const std::vector<std::uint8_t> before = TableFile("before.dat");
  MergeMemory().loadedPath =
      WriteDatabase("Other.dat", {{"zip", "plz,post", "B\r\nc", "new"}, {"Town", "town", "x", "t"}});
  Open({Custom([&](HWND d, const WindowSnapshot&) {
    PressNow(d, IDC_MERGE_SELECT_ALL);
    for (DuplicateMode mode : {kCompareDuplicated, kOverwriteDuplicated, kCompareDuplicated}) {
      ChooseMode(d, mode);
      PressNow(d, IDC_MERGE_ADD);
    }
    SetCheck(d, IDC_MERGE_TAKE_SELECTION, false);
    ChooseMode(d, kSkipDuplicated);
    PressNow(d, IDC_MERGE_ADD);
    EXPECT_EQ(TableTexts(Keys()).size(), 4u);
    PostMessageA(GetDlgItem(d, IDC_MERGE_CURRENT_LIST), WM_KEYDOWN, VK_ESCAPE, 0);
  })});
  EXPECT_EQ(TableFile("after.dat"), before);
  EXPECT_FALSE(DatabaseChanged());
  EXPECT_FALSE(FileExists(SafetyCopy()));
  EXPECT_EQ(refills, 0);

  // Opened again: the same file is loaded and the choices are as they were left;
  // a bad file chosen next keeps those keys. A safety copy that has gone is
  // reported at Cancel, and the table keeps its keys.
  const std::string bad = dir_.File("Bad.dat");
  WriteText(bad, "not a database at all");
  const auto again = Open({
      Press("Load new DK"),
      ChooseFile(bad),
      Press("OK"),
      Again(Custom([&](HWND d, const WindowSnapshot&) {
        EXPECT_EQ(WindowText(GetDlgItem(d, IDC_MERGE_FILE_NAME)), MergeMemory().loadedPath);
        EXPECT_EQ(ListTexts(d, IDC_MERGE_LOADED_LIST), (Names{"zip", "Town"}));
        SelectOnly(d, IDC_MERGE_LOADED_LIST, {1});
        PressNow(d, IDC_MERGE_ADD);
        DeleteFileA(SafetyCopy().c_str());
        ClickButton(d, IDCANCEL);
      })),
      Press("OK"),
  });
  EXPECT_EQ(again.seen[2].MessageText(), kNotADatabaseText);
  EXPECT_EQ(MergeMemory().loadedPath, dir_.File("Other.dat"));
  const WindowSnapshot& reopened = again.seen[0];
  const std::pair<int, int> checks[] = {
      {IDC_MERGE_TAKE_SEARCH, BST_CHECKED},        {IDC_MERGE_TAKE_SELECTION, BST_UNCHECKED},
      {IDC_MERGE_TAKE_DESCRIPTION, BST_CHECKED},   {IDC_MERGE_MODE_FIRST + 0, BST_UNCHECKED},
      {IDC_MERGE_MODE_FIRST + 1, BST_UNCHECKED},   {IDC_MERGE_MODE_FIRST + 2, BST_CHECKED}};
  for (const auto& [id, checked] : checks) EXPECT_EQ(reopened.Control(id)->checked, checked) << id;
  EXPECT_EQ(again.seen[4].MessageText(), kCantOpenDatabaseText);
  EXPECT_EQ(TableTexts(Keys()).size(), 4u);
}

// Undo takes back what the mode chosen merged (Compare: only the value the key
// lacked; Overwrite: every value found, so none left); without the safety copy
// the user is told, and the keys added since the dialog opened go all the same.
TEST_F(MergeDialogTest, UndoRestoresTheKeysEvenWithoutTheSafetyCopy) {
  FillTable(Keys(), {{"Sex", "", "Male\r\nfemale", ""}});
  MergeMemory().loadedPath = WriteDatabase("Other.dat", {{"sex", "", "FEMALE\r\ndiverse", ""}, {"Town", "", "", ""}});
  const auto addRow = [](HWND d, int row, DuplicateMode mode) {
    SelectOnly(d, IDC_MERGE_LOADED_LIST, {row});
    ChooseMode(d, mode);
    PressNow(d, IDC_MERGE_ADD);
  };
  Open({Custom([&](HWND d, const WindowSnapshot&) {
    addRow(d, 0, kCompareDuplicated);
    EXPECT_EQ(TableTexts(Keys()), (KeyRows{{"Sex", "", "diverse\r\n", ""}}));
    PressNow(d, IDC_MERGE_UNDO);
    EXPECT_EQ(TableTexts(Keys()), (KeyRows{{"Sex", "", "Male\r\nfemale", ""}}));
    addRow(d, 0, kOverwriteDuplicated);
    PostMessageA(GetDlgItem(d, IDC_MERGE_LOADED_LIST), WM_KEYDOWN, VK_RETURN, 0);  // Enter is OK
  })});
  EXPECT_EQ(TableTexts(Keys()), (KeyRows{{"Sex", "", "", ""}}));
  EXPECT_EQ(refills, 1);

  const auto result = Open({
      Custom([&](HWND d, const WindowSnapshot&) {
        addRow(d, 1, kCompareDuplicated);
        DeleteFileA(SafetyCopy().c_str());
        ClickButton(d, IDC_MERGE_UNDO);
      }),
      Press("OK"),
      Again(Custom([&](HWND d, const WindowSnapshot&) {
        EXPECT_EQ(TableTexts(Keys()), (KeyRows{{"Sex", "", "", ""}}));
        EXPECT_EQ(ListTexts(d, IDC_MERGE_CURRENT_LIST), (Names{"Sex"}));
        ClickButton(d, IDOK);
      })),
  });
  EXPECT_EQ(result.seen[1].MessageText(), kCantOpenDatabaseText);
}

}  // namespace
}  // namespace qb::test
