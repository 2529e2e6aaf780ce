// The key editor opened through the main window's command table (or as the
// no-match prompt opens it) and driven through its real controls, beside a real
// list view standing for the main window's Keys view.
#include "keys/key_editor.h"

#include <gtest/gtest.h>
#include <commctrl.h>

#include "keys/key_clipboard.h"
#include "keys/key_rows.h"
#include "keys/merge_dialog.h"
#include "resources/resource.h"
#include "tests/keys/key_test_util.h"
#include "tests/keys/dialog_util.h"
#include "tests/support/main_window.h"

namespace qb::test {
namespace {

KeyTexts Edits(HWND d) {
  KeyTexts texts;
  for (int f = 0; f < kKeyFieldCount; ++f) texts[f] = WindowText(GetDlgItem(d, IDC_KEYEDIT_NAME + f));
  return texts;
}

class KeyEditorTest : public KeyDialogTest {
 protected:
  void SetUp() override {
    KeyDialogTest::SetUp();
    App().instance = GetModuleHandleA(nullptr);
  }
  void TearDown() override {
    if (App().keysView) DestroyWindow(App().keysView);
    App().keysView = nullptr;
    KeyDialogTest::TearDown();
  }

  // The table, and the Keys view listing it with `selected` (-1: none) selected.
  void Load(const KeyRows& keys, int selected = -1) {
    FillTable(Keys(), keys);
    if (App().keysView) DestroyWindow(App().keysView);
    HWND view = CreateWindowExA(0, WC_LISTVIEWA, "", WS_POPUP | LVS_REPORT | LVS_SINGLESEL, 0, 0, 200, 300,
                                nullptr, nullptr, nullptr, nullptr);
    AddFullWidthColumn(view);
    for (std::size_t i = 0; i < keys.size(); ++i) AddKeyRow(view, static_cast<int>(i), keys[i][kName]);
    if (selected >= 0) SelectRow(view, selected, true);
    App().keysView = view;
  }

  // Opens the editor as the no-match prompt does; `result` gets what it returned.
  static ModalResult Open(int mode, std::vector<ModalStep> steps, int* result = nullptr,
                          const std::string& name = "", const std::string& description = "") {
    return Answered(
        [&] {
          const int r = OpenKeyEditor(nullptr, mode, name, description);
          if (result) *result = r;
        },
        std::move(steps));
  }
  // Opens it as the main window's commands do.
  static ModalResult OpenByCommand(WORD id, std::vector<ModalStep> steps) {
    return Answered([id] { LookupCommand(kMainCommandMap, nullptr, MAKEWPARAM(id, 0), 0); }, std::move(steps));
  }
};

const KeyRows kThree = {
    {"Zip", "zip,postcode", "", "12345"}, {"", "nameless", "", ""}, {"City", "city", "Berlin\r\nParis", ""}};

// What each mode shows at opening. The key with no Name has no row; rows carry
// their key's index, so modifying key 2 selects row 1.
TEST_F(KeyEditorTest, EachModeOpensWithItsKeyAndControls) {
  struct Row {
    int mode;
    int selected;  // in the Keys view
    std::string name, description;
    KeyTexts edits;
    bool keyControls;  // the list and Create, Save, Delete key enabled
    std::vector<int> listRows;  // selected
  };
  const Row rows[] = {
      {kEditorAdd, 2, "", "", {}, false, {}},
      {kEditorModify, 2, "", "", kThree[2], true, {1}},
      {kEditorModify, -1, "", "", {}, true, {}},
      {kEditorAddPrepared, 0, "email", "me@example.org", {"email", "", "", "me@example.org"}, false, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.mode * 10 + row.selected);
    Load(kThree, row.selected);
    int result = -1;
    const ModalStep look = Custom([&](HWND d, const WindowSnapshot&) {
      EXPECT_EQ(Edits(d), row.edits);
      EXPECT_EQ(ListTexts(d, IDC_KEYEDIT_LIST), (Names{"Zip", "City"}));
      EXPECT_EQ(SelectedRows(d, IDC_KEYEDIT_LIST), row.listRows);
      ClickButton(d, IDCANCEL);
    });
    const auto opened = row.mode == kEditorAddPrepared
                            ? Open(row.mode, {look}, &result, row.name, row.description)
                            : OpenByCommand(row.mode == kEditorAdd ? IDM_ADD_KEY : IDM_MODIFY_KEY, {look});
    for (int id : {IDC_KEYEDIT_LIST, IDC_KEYEDIT_CREATE, IDC_KEYEDIT_SAVE, IDC_KEYEDIT_DELETE})
      EXPECT_EQ(opened.seen[0].Control(id)->enabled, row.keyControls) << id;
    if (row.mode == kEditorAddPrepared) {
      EXPECT_EQ(result, 0);
    }
    EXPECT_EQ(TableTexts(Keys()), kThree);
    EXPECT_FALSE(DatabaseChanged());
  }
}

// A click on the row of the key shown (row 0 here, selected already, so no
// selection change reloads it) puts the key's texts back over the edits.
TEST_F(KeyEditorTest, ClickOnTheShownKeysRowPutsItsTextsBack) {
  Load(kThree, 0);
  OpenByCommand(IDM_MODIFY_KEY, {Custom([](HWND d, const WindowSnapshot&) {
                  SetDlgItemTextA(d, IDC_KEYEDIT_NAME, "Typed");
                  NMITEMACTIVATE click{};
                  click.hdr = {GetDlgItem(d, IDC_KEYEDIT_LIST), IDC_KEYEDIT_LIST, static_cast<UINT>(NM_CLICK)};
                  click.iItem = 0;
                  SendMessageA(d, WM_NOTIFY, IDC_KEYEDIT_LIST, reinterpret_cast<LPARAM>(&click));
                  EXPECT_EQ(Edits(d), kThree[0]);
                  ClickButton(d, IDCANCEL);
                })});
  EXPECT_EQ(TableTexts(Keys()), kThree);
}

// Modify mode with no key chosen closes at OK storing nothing, even with an empty
// Name, yet marks the database changed. (An empty Name is refused otherwise: see
// the slots' test of the box over the editor.)
TEST_F(KeyEditorTest, OkWithNoKeyChosenStoresNothing) {
  Load(kThree);
  int result = -1;
  Open(kEditorModify, {TypeAndOk("")}, &result);
  EXPECT_EQ(result, 1);
  EXPECT_EQ(TableTexts(Keys()), kThree);
  EXPECT_TRUE(DatabaseChanged());
  EXPECT_EQ(refills, 0);
}

// Save key on a key: a Name that differs only in letter case is not taken; a new
// Name renames the key, its row, and the Keys view's rows that showed the old
// Name exactly. A cleared field loses its text altogether.
TEST_F(KeyEditorTest, SaveKeyRenamesOnlyForANewNameAndClearsEmptiedFields) {
  struct Row {
    std::string typedName, typedDescription;
    KeyTexts stored;
    Names viewRows;
  };
  const Row rows[] = {
      {"ZIP", "", {"Zip", "zip,code", "a\r\nb", ""}, {"Zip", "zip", "Zip"}},
      {"Postcode", "new", {"Postcode", "zip,code", "a\r\nb", "new"}, {"Postcode", "zip", "Postcode"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.typedName);
    Load({{"Zip", "zip", "", "old"}, {"zip", "", "", ""}, {"Zip", "", "", ""}}, 0);
    Open(kEditorModify, {Custom([&](HWND d, const WindowSnapshot&) {
      SetControlText(d, IDC_KEYEDIT_NAME, row.typedName);
      SetControlText(d, IDC_KEYEDIT_SEARCH, "zip,code");
      SetControlText(d, IDC_KEYEDIT_SELECTION, "a\r\nb");
      SetControlText(d, IDC_KEYEDIT_DESCRIPTION, row.typedDescription);
      PressNow(d, IDC_KEYEDIT_SAVE);
      EXPECT_EQ(ListTexts(d, IDC_KEYEDIT_LIST)[0], row.stored[kName]);
      EXPECT_EQ(ListTexts(App().keysView), row.viewRows);
      ClickButton(d, IDCANCEL);
    })});
    EXPECT_EQ(TableTexts(Keys())[0], row.stored);
    EXPECT_EQ(KeyFieldBlock(Keys(), 0, kDescription) == kNoBlock, row.typedDescription.empty());
    // Paste key reads the last field the editor read, the Description.
    EXPECT_EQ(BufferText(KeyFieldBuffer()), row.typedDescription);
    EXPECT_EQ(BufferText(KeyNameBuffer()), row.typedName);
  }
}

TEST_F(KeyEditorTest, TheTwoThousandthKeyIsAcceptedAndTheNextRefused) {
  KeyRows keys;
  for (int i = 0; i < kMaxKeys - 1; ++i) keys.push_back({"Key " + std::to_string(i), "", "", ""});
  Load(keys);
  int result = -1;
  Open(kEditorAdd, {TypeAndOk("Last")}, &result);
  EXPECT_EQ(result, 1);
  EXPECT_EQ(Keys().count, kMaxKeys);
  EXPECT_EQ(KeyFieldText(Keys(), kMaxKeys - 1, kName), "Last");
  EXPECT_EQ(KeyEditorNewKey(), kMaxKeys - 1);
  EXPECT_EQ(ListTexts(App().keysView).size(), static_cast<std::size_t>(kMaxKeys));

  const auto refused = Open(kEditorAdd, {TypeAndOk("Extra"), Press("OK"), Again(Press("Cancel"))}, &result);
  EXPECT_EQ(refused.seen[1].MessageText(), kNoRoomText);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(Keys().count, kMaxKeys);
  EXPECT_EQ(KeyEditorNewKey(), kNoKey);
}

// Delete key leaves the changed flag alone and takes the key's row from the Keys
// view; the rows after the deleted one still open their own keys.
TEST_F(KeyEditorTest, DeleteKeyKeepsTheChangedFlagAndRowsFollowTheirKeys) {
  Load({{"A", "", "", "a"}, {"B", "", "", "b"}, {"C", "", "", "c"}}, 0);
  Open(kEditorModify, {Custom([&](HWND d, const WindowSnapshot&) {
    HWND list = GetDlgItem(d, IDC_KEYEDIT_LIST);
    SelectRow(list, 1, true);
    EXPECT_EQ(Edits(d), (KeyTexts{"B", "", "", "b"}));
    PressNow(d, IDC_KEYEDIT_DELETE);
    EXPECT_EQ(ListTexts(list), (Names{"A", "C"}));
    SelectRow(list, 1, true);
    EXPECT_EQ(Edits(d), (KeyTexts{"C", "", "", "c"}));
    ClickButton(d, IDCANCEL);
  })});
  EXPECT_EQ(TableTexts(Keys()), (KeyRows{{"A", "", "", "a"}, {"C", "", "", "c"}}));
  EXPECT_FALSE(DatabaseChanged());
  EXPECT_EQ(ListTexts(App().keysView), (Names{"A", "C"}));
  EXPECT_EQ(refills, 0);
}

// Tab walks the controls in reading order; a letter typed in the list chooses the
// next key whose Name begins with it; Alt + a letter presses its button; Enter in
// a field of several lines is a new line, elsewhere OK.
TEST_F(KeyEditorTest, Keyboard) {
  Load({{"Zip", "", "", ""}, {"City", "", "", ""}}, 0);
  const auto key = [](HWND d, int id, UINT message, WPARAM vk) {
    // A repeat count of 1, and for WM_SYSCHAR the Alt key down, as typing gives them.
    PostMessageA(GetDlgItem(d, id), message, vk, message == WM_SYSCHAR ? (1 | 1 << 29) : 1);
  };
  int result = -1;
  Open(kEditorModify, {Custom([&](HWND d, const WindowSnapshot&) {
    EXPECT_EQ(TabOrder(d, IDC_KEYEDIT_LIST),
              (std::vector<int>{IDC_KEYEDIT_LIST, IDC_KEYEDIT_NAME, IDC_KEYEDIT_SEARCH, IDC_KEYEDIT_SELECTION,
                                IDC_KEYEDIT_DESCRIPTION, IDC_KEYEDIT_CREATE, IDC_KEYEDIT_SAVE, IDC_KEYEDIT_DELETE,
                                IDOK, IDCANCEL, IDC_HELP_BUTTON}));
    key(d, IDC_KEYEDIT_LIST, WM_CHAR, 'c');
    EXPECT_TRUE(WaitFor([&] { return WindowText(GetDlgItem(d, IDC_KEYEDIT_NAME)) == "City"; }));
    SetControlText(d, IDC_KEYEDIT_NAME, "Town");
    key(d, IDC_KEYEDIT_NAME, WM_SYSCHAR, 'c');
    EXPECT_TRUE(WaitFor([] { return Keys().count == 3; }));
    key(d, IDC_KEYEDIT_DESCRIPTION, WM_KEYDOWN, VK_RETURN);
    EXPECT_TRUE(WaitFor([&] { return WindowText(GetDlgItem(d, IDC_KEYEDIT_DESCRIPTION)) == "\r\n"; }));
    key(d, IDC_KEYEDIT_NAME, WM_KEYDOWN, VK_RETURN);
  })}, &result);
  EXPECT_EQ(result, 1);
  // OK stored the edits once more into the key Create key had made and selected.
  EXPECT_EQ(TableTexts(Keys()),
            (KeyRows{{"Zip", "", "", ""}, {"City", "", "", ""}, {"Town", "", "", "\r\n"}}));
}

}  // namespace
}  // namespace qb::test
