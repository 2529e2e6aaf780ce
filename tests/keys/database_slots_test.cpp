// The database slots through the main window: switching with the databases bar's
// buttons, the save prompt's answers, Open and Save As through the common file
// dialog, Save and Delete database, New database's two dialogs, closing, and the
// key editor's changes in the Keys view.
#include <cstring>

#include "keys/key_editor.h"
#include "keys/key_view_rules.h"
#include "tests/keys/keys_window.h"

namespace qb::test {
namespace {

constexpr char kDataPrompt[] = "Database Data.dat.dat was changed\nDo you want to save it?";

class DatabaseSlotsTest : public KeysWindowTest {};

TEST_F(DatabaseSlotsTest, StartListsSlotZeroAndSwitchingLoadsEachSlot) {
  WriteDatabase("Other.dat", NamedKeys({"X", "Y"}));
  std::strcpy(Settings().slotNames[2].data(), "Other.dat");
  std::strcpy(Settings().slotNames[3].data(), "Gone.dat");
  OpenWith({"A", "B"});
  EXPECT_EQ(Rows(), (Names{"A", "B"}));
  EXPECT_TRUE(Pressed(1));

  const struct {
    int slot;
    const char* title;
    Names rows;
  } steps[] = {
      {2, "Quellbarrow - Other.dat", {"X", "Y"}},
      {1, "Quellbarrow - Not Loaded", {}},
      {3, "Quellbarrow - Not Loaded", {}},  // its file is missing
      {0, "Quellbarrow - Data.dat", {"A", "B"}},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(step.slot);
    Command(IDM_DATABASE_FIRST + step.slot);
    EXPECT_EQ(CurrentSlot(), step.slot);
    EXPECT_EQ(Title(), step.title);
    EXPECT_EQ(Rows(), step.rows);
    for (int button = 1; button <= kSlotCount; ++button) EXPECT_EQ(Pressed(button), button == step.slot + 1);
  }
  EXPECT_EQ(Settings().slotNames[3][0], '\0');  // a missing file empties its slot
}

// Yes saves then switches, No switches and drops the edit, Cancel stays with the
// bar's buttons as they were. The slot already current is loaded again from disk.
TEST_F(DatabaseSlotsTest, SavePromptAnswers) {
  const struct {
    const char* answer;
    int target, slot;
    Names file, rows;
  } cases[] = {
      {"Yes", 1, 1, {"Edited", "B"}, {}},
      {"No", 1, 1, {"A", "B"}, {}},
      {"No", 0, 0, {"A", "B"}, {"A", "B"}},
      {"Cancel", 1, 0, {"A", "B"}, {"Edited", "B"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.answer);
    OpenWith({"A", "B"});
    SetKeyField(Keys(), 0, kName, "Edited");
    const auto result = CommandAnswered(IDM_DATABASE_FIRST + c.target, {Press(c.answer)});
    EXPECT_EQ(result.seen[0].caption, "Question");
    EXPECT_EQ(result.seen[0].MessageText(), kDataPrompt);
    EXPECT_EQ(FileNames("Data.dat"), c.file);
    EXPECT_EQ(CurrentSlot(), c.slot);
    EXPECT_EQ(Rows(), c.rows);
    EXPECT_EQ(DatabaseChanged(), std::string(c.answer) == "Cancel");
    for (int button = 1; button <= 2; ++button) EXPECT_EQ(Pressed(button), button == c.slot + 1);
  }
}

// Save As names the slot after the file chosen; in a slot that had no name the
// keys come back into view (found by the careless-user run: a fill, here a sort
// change, hid them and they stayed out of the view).
TEST_F(DatabaseSlotsTest, SaveAsAndOpenGoThroughTheFileDialog) {
  WriteDatabase("Other.dat", NamedKeys({"X"}));
  OpenWith({"A", "B"});
  SetKeyField(Keys(), 1, kName, "Bee");
  CurrentSlotName().fill('\0');
  FillKeyList();
  ASSERT_EQ(Rows(), Names{});
  CommandAnswered(IDM_SAVEAS_DATABASE, {ChooseFile(DatabaseFile("Copy.dat"))});
  EXPECT_EQ(FileNames("Copy.dat"), (Names{"A", "Bee"}));
  EXPECT_EQ(Rows(), (Names{"A", "Bee"}));
  EXPECT_EQ(FileNames("Data.dat"), (Names{"A", "B"}));
  EXPECT_STREQ(Settings().slotNames[0].data(), "Copy.dat");
  EXPECT_FALSE(DatabaseChanged());

  CommandAnswered(IDM_OPEN_DATABASE, {ChooseFile(DatabaseFile("Other.dat"))});
  EXPECT_EQ(Title(), "Quellbarrow - Other.dat");
  EXPECT_EQ(Rows(), (Names{"X"}));

  // With changes, the prompt already names the chosen file, and Yes writes there.
  WriteDatabase("Third.dat", NamedKeys({"T"}));
  SetKeyField(Keys(), 0, kName, "Changed");
  const auto result = CommandAnswered(IDM_OPEN_DATABASE, {ChooseFile(DatabaseFile("Third.dat")), Press("Yes")});
  EXPECT_EQ(result.seen[1].MessageText(), "Database Third.dat.dat was changed\nDo you want to save it?");
  EXPECT_EQ(FileNames("Third.dat"), (Names{"Changed"}));
  EXPECT_EQ(FileNames("Other.dat"), (Names{"X"}));
  EXPECT_EQ(Rows(), (Names{"Changed"}));

  // A cancelled dialog changes nothing.
  CommandAnswered(IDM_OPEN_DATABASE, {Press("Cancel")});
  EXPECT_STREQ(Settings().slotNames[0].data(), "Third.dat");
}

TEST_F(DatabaseSlotsTest, SaveNeedsANameOfFiveCharactersAndDeleteDatabaseLeavesTheFile) {
  OpenWith({"A", "B"});
  SetKeyField(Keys(), 0, kName, "Saved");
  Command(IDM_SAVE_DATABASE);
  EXPECT_EQ(FileNames("Data.dat"), (Names{"Saved", "B"}));
  EXPECT_FALSE(DatabaseChanged());

  std::strcpy(Settings().slotNames[0].data(), "a.da");
  WriteDatabase("a.da", NamedKeys({"Short"}));
  SetKeyField(Keys(), 0, kName, "Unsaved");
  Command(IDM_SAVE_DATABASE);
  EXPECT_EQ(FileNames("a.da"), (Names{"Short"}));
  EXPECT_TRUE(DatabaseChanged());

  std::strcpy(Settings().slotNames[0].data(), "Data.dat");
  Command(IDM_DELETE_DATABASE);
  EXPECT_EQ(Rows(), Names{});
  EXPECT_EQ(Settings().slotNames[0][0], '\0');
  EXPECT_EQ(Title(), "Quellbarrow - Data.dat");
  EXPECT_TRUE(DatabaseChanged());
  Command(IDM_SAVE_DATABASE);
  EXPECT_EQ(FileNames("Data.dat"), (Names{"Saved", "B"}));
}

// Selected rows of the one list move to the end of the other.
ModalStep MoveRows(int fromList, std::vector<int> rows, int button) {
  return Custom([=](HWND dialog, const WindowSnapshot&) {
    SelectOnly(dialog, fromList, rows);
    ClickButton(dialog, button);
  });
}

TEST_F(DatabaseSlotsTest, NewDatabaseFromChosenKeysIsWrittenOnlyBySave) {
  WriteDatabase("Other.dat", NamedKeys({"X", "Y"}));
  OpenWith({"A", "B", "C"});
  CommandAnswered(IDM_NEW_DATABASE, {
      Custom([&](HWND dialog, const WindowSnapshot& snap) {
        EXPECT_EQ(WindowText(GetDlgItem(dialog, IDC_MAKEDIR_GROUP)), "Type a new Database name");
        EXPECT_EQ(snap.Control(IDC_MAKEDIR_NAME)->text, "Data.dat");
        SetControlText(dialog, IDC_MAKEDIR_NAME, "Fresh.dat");
        ClickButton(dialog, IDOK);
      }),
      MoveRows(IDC_NAMEKEY_LOADED, {0, 2}, IDC_NAMEKEY_ADD),
      Again(MoveRows(IDC_NAMEKEY_NEW, {0}, IDC_NAMEKEY_REMOVE)),
      Again(Custom([&](HWND dialog, const WindowSnapshot&) {
        EXPECT_EQ(ListTexts(dialog, IDC_NAMEKEY_LOADED), (Names{"B", "A"}));
        EXPECT_EQ(ListTexts(dialog, IDC_NAMEKEY_NEW), (Names{"C"}));
        ClickButton(dialog, IDC_NAMEKEY_LOAD);
      })),
      ChooseFile(DatabaseFile("Other.dat")),
      Again(MoveRows(IDC_NAMEKEY_LOADED, {1}, IDC_NAMEKEY_ADD)),
      Again(Custom([&](HWND dialog, const WindowSnapshot&) {
        EXPECT_EQ(ListTexts(dialog, IDC_NAMEKEY_LOADED), (Names{"X"}));
        ClickButton(dialog, IDOK);
      })),
  });

  EXPECT_EQ(Rows(), (Names{"C", "Y"}));
  EXPECT_EQ(Title(), "Quellbarrow - Fresh.dat");
  EXPECT_TRUE(DatabaseChanged());
  EXPECT_FALSE(FileExists(DatabaseFile("Fresh.dat")));
  EXPECT_EQ(FileNames("Data.dat"), (Names{"A", "B", "C"}));
  Command(IDM_SAVE_DATABASE);
  EXPECT_EQ(FileNames("Fresh.dat"), (Names{"C", "Y"}));
}

// Cancel in either dialog, Esc in the second (reached with Enter in the first,
// its controls in Tab order) or an empty name leave with nothing made; the empty
// name leaves the slot empty.
TEST_F(DatabaseSlotsTest, NewDatabaseLeftWithoutOkKeepsTheDatabase) {
  const auto key = [](HWND dialog, int id, WPARAM vk) {
    PostMessageA(GetDlgItem(dialog, id), WM_KEYDOWN, vk, 0);
    PostMessageA(GetDlgItem(dialog, id), WM_KEYUP, vk, 0);
  };
  const struct {
    const char* what;
    std::vector<ModalStep> steps;
    const char* slotName;
  } cases[] = {
      {"Cancel", {Press("Cancel")}, "Data.dat"},
      {"Enter, then Esc",
       {Custom([&](HWND dialog, const WindowSnapshot&) { key(dialog, IDC_MAKEDIR_NAME, VK_RETURN); }),
        Custom([&](HWND dialog, const WindowSnapshot&) {
          EXPECT_EQ(TabOrder(dialog, IDC_NAMEKEY_LOADED),
                    (std::vector<int>{IDC_NAMEKEY_LOADED, IDC_NAMEKEY_ADD, IDC_NAMEKEY_REMOVE, IDC_NAMEKEY_LOAD,
                                      IDC_NAMEKEY_NEW, IDOK, IDCANCEL, IDC_HELP_BUTTON}));
          key(dialog, IDC_NAMEKEY_LOADED, VK_ESCAPE);
        })},
       "Data.dat"},
      {"an empty name", {TypeAndOk("", IDC_MAKEDIR_NAME)}, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    OpenWith({"A", "B"});
    CommandAnswered(IDM_NEW_DATABASE, c.steps);
    EXPECT_STREQ(Settings().slotNames[0].data(), c.slotName);
    EXPECT_EQ(Rows(), (Names{"A", "B"}));
    EXPECT_FALSE(DatabaseChanged());
  }
}

// Closing with changes asks (the prompt's answers are the switch's), and only
// Cancel keeps the window (and the settings unwritten). After Delete database Yes
// closes (nothing is left to save). Keys in a slot without a name are saved under
// a name chosen first; a save that fails keeps the window open after telling so.
TEST_F(DatabaseSlotsTest, ClosingAsksAndStaysOpenOnCancelOrAFailedSave) {
  enum Before { kEdited, kDeleteDatabase, kKeyWithoutName, kUnwritableFile };
  const struct {
    const char* what;
    Before before;
    std::vector<ModalStep> answers;
    bool closed;
  } cases[] = {
      {"Cancel", kEdited, {Press("Cancel")}, false},
      {"Yes after Delete database", kDeleteDatabase, {Press("Yes")}, true},
      {"Yes, a name chosen", kKeyWithoutName, {Press("Yes"), ChooseFile(DatabaseFile("Named.dat"))}, true},
      {"Yes, no name chosen", kKeyWithoutName, {Press("Yes"), Press("Cancel")}, false},
      {"Yes, the save fails", kUnwritableFile, {Press("Yes"), Press("OK")}, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    OpenWith({"A"});
    DeleteFileA(dir_.File("pellwick.cfg").c_str());
    SetKeyField(Keys(), 0, kName, "Edited");  // the changed flag outlives Delete database
    if (c.before == kUnwritableFile) {
      // A folder where the file was cannot be replaced by a file.
      ASSERT_TRUE(DeleteFileA(DatabaseFile("Data.dat").c_str()));
      ASSERT_TRUE(CreateDirectoryA(DatabaseFile("Data.dat").c_str(), nullptr));
    } else if (c.before != kEdited) {
      Command(IDM_DELETE_DATABASE);
      if (c.before == kKeyWithoutName) {
        SetKeyField(Keys(), 0, kName, "Kept");
        Keys().count = 1;
      }
    }
    Answered([this] { SendMessageA(window_, WM_CLOSE, 0, 0); }, c.answers);
    EXPECT_EQ(IsWindow(window_) == FALSE, c.closed);
    EXPECT_EQ(FileExists(dir_.File("pellwick.cfg")), c.closed);
    if (c.before == kKeyWithoutName && c.closed) {
      EXPECT_EQ(FileNames("Named.dat"), (Names{"Kept"}));
    }
    RemoveDirectoryA(DatabaseFile("Data.dat").c_str());
  }
}

// A box a dialog raises is the dialog's: while it is up, the dialog's buttons
// clicked with the mouse do nothing (they reached the dialog under the box and
// crashed it), and the dialog carries on once the box is answered.
TEST_F(DatabaseSlotsTest, ButtonsBehindADialogsBoxDoNothing) {
  OpenWith({"A"});
  HWND dialog = nullptr;
  HWND owner = nullptr;
  const auto result = CommandAnswered(IDM_ADD_KEY, {
      Custom([&](HWND d, const WindowSnapshot&) {
        dialog = d;
        SetControlText(d, IDC_KEYEDIT_NAME, "");
        SetControlText(d, IDC_KEYEDIT_SEARCH, "typed");
        ClickButton(d, IDOK);
      }),
      Custom([&](HWND box, const WindowSnapshot&) {
        owner = GetWindow(box, GW_OWNER);
        // Side by side, so that each click lands where it aims.
        SetWindowPos(dialog, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        RECT d;
        GetWindowRect(dialog, &d);
        SetWindowPos(box, nullptr, d.right + 10, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        ClickWithMouse(GetDlgItem(dialog, IDCANCEL));
        ClickWithMouse(GetDlgItem(dialog, IDOK));
        ClickWithMouse(GetDlgItem(box, IDOK));
        // Should the pointer have missed, the box is answered all the same.
        if (!WaitFor([box] { return !IsWindow(box); })) ClickButton(box, IDOK);
      }),
      Again(Custom([&](HWND d, const WindowSnapshot&) {
        EXPECT_EQ(d, dialog);
        EXPECT_EQ(WindowText(GetDlgItem(d, IDC_KEYEDIT_SEARCH)), "typed");  // what was typed is kept
        ClickButton(d, IDCANCEL);
      })),
  });
  EXPECT_EQ(result.seen[1].MessageText(), kEmptyNameText);
  EXPECT_EQ(owner, dialog);
  EXPECT_EQ(NamesOf(Keys()), (Names{"A"}));
}

// Ctrl+2 reaches the slot from the key list, as the message loop translates it.
TEST_F(DatabaseSlotsTest, AcceleratorFromTheKeyListSwitchesSlots) {
  OpenWith({"A"});
  HACCEL accelerators = LoadAcceleratorsA(Instance(), kMainClassName);
  BYTE keys[256] = {};
  GetKeyboardState(keys);
  keys[VK_CONTROL] = 0x80;
  SetKeyboardState(keys);
  MSG msg{List(), WM_KEYDOWN, '2', 0, 0, {}};
  EXPECT_TRUE(TranslateAcceleratorA(msg.hwnd, accelerators, &msg));
  keys[VK_CONTROL] = 0;
  SetKeyboardState(keys);
  EXPECT_EQ(CurrentSlot(), 1);
}

// OK in the key editor shows the key at once and leaves the Keys view as it was
// but for that key's row: a key added to a slot without a name stays listed, the
// selected row (the scan's current key) stays selected, and a sorted order is not
// applied in between. Modify changes the selected row's key.
TEST_F(DatabaseSlotsTest, EditorOkShowsTheKeyAndKeepsTheKeysViewItsSelectionAndOrder) {
  const struct {
    const char* what;
    WORD command;
    bool deleteDatabase;
    int sortOrder;
    int selected;  // -1: no row
    Names rows;
  } cases[] = {
      {"added to a slot without a name", IDM_ADD_KEY, true, kSortUser, -1, {"a"}},
      {"added beside a selected row", IDM_ADD_KEY, false, kSortUser, 1, {"b", "c", "a"}},
      {"added in ascending order", IDM_ADD_KEY, false, kSortAscending, 1, {"b", "c", "a"}},
      {"the selected key modified", IDM_MODIFY_KEY, false, kSortUser, 1, {"b", "a"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    OpenWith({"b", "c"});
    SetKeySortOrder(c.sortOrder);
    FillKeyList();
    if (c.deleteDatabase) Command(IDM_DELETE_DATABASE);
    if (c.selected >= 0) SelectRow(c.selected);
    CommandAnswered(c.command, {TypeAndOk("a")});
    Drain();
    ExpectListed(c.rows);
    EXPECT_EQ(ListView_GetNextItem(List(), -1, LVNI_SELECTED), c.selected);
    EXPECT_EQ(SelectedKey(), c.selected >= 0 ? c.selected : kNoKey);
  }
  SetKeySortOrder(kSortUser);
}

}  // namespace
}  // namespace qb::test
