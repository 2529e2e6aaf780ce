// The no-match prompt as a scan of a saved page shows it: its texts for each field
// kind, the radio group offered again from the next button, OK with and without
// learning, UnMatch, Cancel and Cancel All, and the filled page that results.
#include "scan/no_match_dialog.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scan/scan_driver.h"
#include "scan/scan_options.h"
#include "tests/keys/dialog_util.h"
#include "tests/scan/scan_fixture.h"

namespace qb::test {
namespace {

const std::string kFormPage =
    "<html><body><form method=post action=/p>\n"
    "Colour <input type=radio name=colour value=red><input type=radio name=colour value=green>"
    "<input type=radio name=colour value=blue> after\n"
    "Agree <input type=checkbox name=agree value=yes>\n"
    "Size <select name=size multiple><option>Small<option>Large</select>\n"
    "Nick <input type=text name=Nick>\n"
    "<input type=submit>\n"
    "<textarea name=about></textarea></form></body></html>\n";  // the last field has nothing below

// Notes the key list's rows and its selected row, then answers with `then`.
ModalStep ReadKeyRows(std::vector<std::string>& rows, int& selected, ModalStep then) {
  return Custom([&rows, &selected, then](HWND dialog, const WindowSnapshot& snapshot) {
    rows = ListTexts(dialog, IDC_NOMATCH_KEYS);
    selected = static_cast<int>(SendDlgItemMessageA(dialog, IDC_NOMATCH_KEYS, LVM_GETNEXTITEM,
                                                    static_cast<WPARAM>(-1), LVNI_SELECTED));
    then.act(dialog, snapshot);
  });
}

// Picks a key row and a value row (-1: leave as it is), sets the learning box, presses OK.
ModalStep Choose(int keyRow, int valueRow, bool learn) {
  return Custom([=](HWND dialog, const WindowSnapshot&) {
    if (keyRow >= 0) SelectKeyRow(GetDlgItem(dialog, IDC_NOMATCH_KEYS), keyRow);
    if (valueRow >= 0) SendDlgItemMessageA(dialog, IDC_NOMATCH_VALUES, LB_SETCURSEL, valueRow, 0);
    SetCheck(dialog, IDC_NOMATCH_LEARN, learn);
    ClickButton(dialog, IDOK);
  });
}

// Double-clicks a key row, which chooses it as OK would. A prompt the double click
// left open is cancelled, so that the scan ends.
ModalStep DoubleClickKey(int keyRow) {
  return Custom([keyRow](HWND dialog, const WindowSnapshot&) {
    HWND list = GetDlgItem(dialog, IDC_NOMATCH_KEYS);
    RECT row{LVIR_BOUNDS, 0, 0, 0};
    SendMessageA(list, LVM_GETITEMRECT, keyRow, reinterpret_cast<LPARAM>(&row));
    PostMessageA(list, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(row.left + 10, (row.top + row.bottom) / 2));
    if (!PumpUntil([dialog] { return !IsWindow(dialog); })) PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
  });
}

class NoMatchPrompt : public ScanTest {
 protected:
  void SetUp() override {
    ScanTest::SetUp();
    me_ = AddKey("Me", "", "", "hello");  // the current key: text fields are filled
    SelectKeyRow(App().keysView, me_);
    page_ = SavePage("form.htm", kFormPage, "www.example.com/form.htm");
  }

  void Ask(std::uint32_t choice, std::uint32_t addKeys = kAddKeysNever) {
    Settings().askForSelect.fill(choice);
    Settings().addKeys.fill(addKeys);
  }

  bool Scan(std::vector<ModalStep> steps) { return Run([&] { ScanSavedDocument(page_, false); }, std::move(steps)); }

  int me_ = 0;
  std::string page_;
};

// Every kind in page order with its texts, answered in turn: the three radio
// prompts offer the group from the next button on; OK takes the chosen value, the
// check box's state is the answer, a double-clicked key gives its Description as it
// stands (and nothing else opens), and Cancel leaves the field as the page has it.
TEST_F(NoMatchPrompt, EachFieldKindShowsItsTextsAndOkTakesTheChoice) {
  Ask(kAskAllways);
  const int nick = AddKey("Nick key", "", "", "Neo\r\nline");
  std::vector<std::vector<std::string>> values, keys;
  const auto noteListsThen = [&](ModalStep answer) {
    return Custom([&values, &keys, answer](HWND dialog, const WindowSnapshot& snapshot) {
      values.push_back(ListBoxRows(dialog, IDC_NOMATCH_VALUES));
      keys.push_back(ListTexts(dialog, IDC_NOMATCH_KEYS));
      answer.act(dialog, snapshot);
    });
  };
  struct Row {
    const char* name;
    const char* type;
    std::vector<std::string> values;
    ModalStep answer;
  } rows[] = {
      {"colour", "RADIO BUTTON", {"red", "green", "blue"}, Choose(-1, 1, false)},
      {"colour", "RADIO BUTTON", {"green", "blue"}, Press("Cancel")},
      {"colour", "RADIO BUTTON", {"blue"}, Press("Cancel")},
      {"agree", "CHECK BOX BUTTON", {}, Choose(-1, -1, false)},
      {"size", "LIST BOX [ MULTIPLE SELECTION ]", {"Small", "Large"}, Choose(-1, 1, false)},
      {"nick", "TEXT EDIT BOX", {}, DoubleClickKey(nick)},
      {"about", "TEXT AREA EDIT BOX", {}, Press("Cancel")},
  };
  std::vector<ModalStep> steps;
  for (const Row& row : rows) steps.push_back(noteListsThen(row.answer));
  ASSERT_TRUE(Scan(steps));
  ASSERT_EQ(result_.seen.size(), 7u);
  for (std::size_t i = 0; i < 7; ++i) {
    SCOPED_TRACE(rows[i].name);
    const WindowSnapshot& dialog = result_.seen[i];
    EXPECT_EQ(dialog.caption, "Quellbarrow - UnMatched Form field name");
    EXPECT_EQ(dialog.Control(IDC_NOMATCH_NAME)->text, rows[i].name);
    EXPECT_EQ(dialog.Control(IDC_NOMATCH_TYPE)->text, rows[i].type);
    EXPECT_EQ(values.at(i), rows[i].values);
    EXPECT_EQ(dialog.Control(IDC_NOMATCH_VALUES)->enabled, !rows[i].values.empty());
    EXPECT_EQ(keys.at(i), (std::vector<std::string>{"Me", "Nick key"}));
    EXPECT_TRUE(dialog.Control(IDC_NOMATCH_KEYS)->enabled);
    EXPECT_FALSE(dialog.Control(IDC_NOMATCH_UNMATCH)->enabled);
  }
  EXPECT_EQ(result_.seen[0].Control(IDC_NOMATCH_ABOVE)->text, "TEXT ABOVE:Colour  ");
  EXPECT_EQ(result_.seen[2].Control(IDC_NOMATCH_BELOW)->text, "TEXT BELLOW:after Agree  ");
  EXPECT_EQ(result_.seen[6].Control(IDC_NOMATCH_ABOVE)->text, "TEXT ABOVE: No description");
  EXPECT_EQ(result_.seen[6].Control(IDC_NOMATCH_BELOW)->text, "TEXT BELLOW: No description");
  const std::string page = FilledPage();
  for (const char* filled : {"<input type=\"radio\" checked name=\"colour\" value=\"green\" >",
                             "<input type=\"checkbox\" checked name=\"agree\"", "<option selected>Large</option>",
                             "name=\"Nick\" value=\"Neo\r\nline\" >", "<textarea name=\"about\" ></textarea>"}) {
    EXPECT_NE(page.find(filled), std::string::npos) << filled << "\n" << page;
  }
  EXPECT_EQ(page.find("checked name=\"colour\" value=\"red\""), std::string::npos) << page;
  EXPECT_EQ(Keys().count, 2);
  EXPECT_FALSE(DatabaseChanged());
}

// With the learning box ticked the key learns the name (and a radio's value).
TEST_F(NoMatchPrompt, LearningTeachesTheKeyItsNameAndValue) {
  Ask(kAskNever, kAddKeysUnMatched);
  Settings().askForSelect[kPromptRadio] = kAskUnMatched;
  Settings().askForSelect[kPromptText] = kAskUnMatched;
  const int colours = AddKey("Colours", "", "", "c");
  const int nick = AddKey("Nick key", "alias, ", "", "Neo");
  // The group from its first button: green learned; the second button's run then
  // matches, the third's ([blue]) does not and is cancelled.
  ASSERT_TRUE(Scan({Choose(colours, 1, true), Press("Cancel"), Choose(nick, -1, true)}));
  EXPECT_EQ(KeyFieldText(Keys(), colours, kSearchNames), "COLOUR");
  EXPECT_EQ(KeyFieldText(Keys(), colours, kSelection), "green");
  EXPECT_EQ(KeyFieldText(Keys(), nick, kSearchNames), "alias,NICK");
  EXPECT_NE(FilledPage().find("checked name=\"colour\" value=\"green\""), std::string::npos) << FilledPage();
}

// Each row: the options, the answer the user tries first, and the message that
// keeps the dialog open.
TEST_F(NoMatchPrompt, OkWithoutWhatItNeedsKeepsTheDialogOpen) {
  struct Row {
    const char* what;
    ModalStep first;
    std::string message;
  } rows[] = {
      {"no key while unmatched fields add keys", Choose(-1, 0, false), kSelectKeyFirstText},
      {"learning a radio value without a value", Choose(0, -1, true), kSelectValueToLearnText},
  };
  Ask(kAskAllways, kAddKeysUnMatched);
  for (Row& row : rows) {
    SCOPED_TRACE(row.what);
    ASSERT_TRUE(Scan({row.first, Press("OK"), Again(Press("Cancel All"))}));
    EXPECT_EQ(Message(1), row.message);
    EXPECT_EQ(KeyFieldText(Keys(), me_, kSearchNames), "");
  }
}

// A field its key answers: the key is shown chosen, the list and Create New are
// off, and UnMatch makes the key forget the name while the dialog stays open.
TEST_F(NoMatchPrompt, UnMatchMakesTheKeyForgetTheName) {
  Ask(kAskNever);
  Settings().askForSelect[kPromptText] = kAskAllways;
  const int nick = AddKey("Nick key", "nick,alias", "", "Neo");
  std::vector<std::string> rows;
  int selected = -1;
  ASSERT_TRUE(Scan({ReadKeyRows(rows, selected, qb::test::Command(IDC_NOMATCH_UNMATCH)), Again(Press("Cancel"))}));
  EXPECT_EQ(selected, nick);
  const WindowSnapshot& dialog = result_.seen.at(0);
  EXPECT_FALSE(dialog.Control(IDC_NOMATCH_KEYS)->enabled);
  EXPECT_FALSE(dialog.Control(IDC_NOMATCH_CREATE)->enabled);
  EXPECT_TRUE(dialog.Control(IDC_NOMATCH_UNMATCH)->enabled);
  EXPECT_EQ(KeyFieldText(Keys(), nick, kSearchNames), "alias");
  // Cancel leaves the page's value; the key that still matched fills nothing more.
  EXPECT_NE(FilledPage().find("name=\"Nick\" value=\"Neo\" >"), std::string::npos) << FilledPage();
}

// "Create New" opens the key editor with the field's name and the chosen value; the
// key it creates is listed and selected, so OK takes it. An editor closed with
// Cancel adds nothing and leaves the list without a selection.
TEST_F(NoMatchPrompt, CreateNewMakesAKeyAndSelectsIt) {
  Ask(kAskNever);
  Settings().askForSelect[kPromptRadio] = kAskUnMatched;
  AddKey("Zed", "", "", "z");
  std::string editorName, editorDescription;
  std::vector<std::string> rowsAfterCancel, rows;
  int selectedAfterCancel = 0, selected = -1;
  const auto createNew = Custom([](HWND dialog, const WindowSnapshot&) {
    SendDlgItemMessageA(dialog, IDC_NOMATCH_VALUES, LB_SETCURSEL, 1, 0);
    PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDC_NOMATCH_CREATE, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDC_NOMATCH_CREATE)));
  });
  const auto nameTheKey = [&](HWND editor, const WindowSnapshot&) {
    editorName = WindowText(GetDlgItem(editor, IDC_KEYEDIT_NAME));
    editorDescription = WindowText(GetDlgItem(editor, IDC_KEYEDIT_DESCRIPTION));
    SetControlText(editor, IDC_KEYEDIT_NAME, "Colour");
    ClickButton(editor, IDOK);
  };
  ASSERT_TRUE(Scan({createNew, Press("Cancel"), Again(ReadKeyRows(rowsAfterCancel, selectedAfterCancel, createNew)),
                    Custom(nameTheKey), Again(ReadKeyRows(rows, selected, Press("OK"))), Press("Cancel"),
                    Press("Cancel")}));
  EXPECT_EQ(rowsAfterCancel, (std::vector<std::string>{"Me", "Zed"}));
  EXPECT_EQ(selectedAfterCancel, -1);
  EXPECT_EQ(editorName, "COLOUR");
  EXPECT_EQ(editorDescription, "green");
  ASSERT_EQ(KeysInUse(Keys()), 3);
  EXPECT_EQ(KeyFieldText(Keys(), 2, kDescription), "green");
  EXPECT_EQ(rows, (std::vector<std::string>{"Me", "Zed", "Colour"}));
  EXPECT_EQ(selected, 2);
  // The prompt's value choice stands, with the new key as the chosen one.
  EXPECT_NE(FilledPage().find("<input type=\"radio\" checked name=\"colour\" value=\"green\" >"), std::string::npos)
      << FilledPage();
}

}  // namespace
}  // namespace qb::test
