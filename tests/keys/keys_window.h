// The main window in a fresh program folder with key databases under Databases:
// what the slot and key list tests need to read the Keys view and answer the
// program's questions.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>
#include <commctrl.h>

#include <cstring>
#include <string>
#include <vector>

#include "base/user_message.h"
#include "keys/database_slots.h"
#include "keys/key_file.h"
#include "keys/key_clipboard.h"
#include "keys/key_list.h"
#include "tests/keys/dialog_util.h"
#include "tests/keys/key_test_util.h"
#include "tests/support/main_window_fixture.h"

namespace qb::test {

class KeysWindowTest : public MainWindowTest {
 protected:
  void SetUp() override {
    MainWindowTest::SetUp();
    UseMessageBoxes();
    CreateDirectoryA(dir_.File("Databases").c_str(), nullptr);
  }

  void TearDown() override {
    MainWindowTest::TearDown();
    SetUserMessageSink(nullptr);
  }

  std::string DatabaseFile(const std::string& name) const { return dir_.File("Databases\\" + name); }

  void WriteDatabase(const std::string& name, const std::vector<KeyTexts>& keys) {
    ASSERT_TRUE(SaveDatabase(DatabaseFile(name), *OwnedTable(keys)));
  }

  // The main window with "Data.dat" holding these keys in slot 0, started as the
  // program starts it (the column comes once the window is shown).
  void OpenWithKeys(const std::vector<KeyTexts>& keys) {
    WriteDatabase("Data.dat", keys);
    std::strcpy(Settings().slotNames[0].data(), "Data.dat");
    ASSERT_TRUE(Open());
    CreateKeyListColumn(List());
  }
  void OpenWith(const Names& names) { OpenWithKeys(NamedKeys(names)); }

  static HWND List() { return App().keysView; }
  static Names Rows() { return ListTexts(List()); }

  // The Keys view and the table both hold keys of these names.
  static void ExpectListed(const Names& names) {
    EXPECT_EQ(Rows(), names);
    EXPECT_EQ(NamesOf(Keys()), names);
  }

  Names FileNames(const std::string& name) const {
    OwnedTable table;
    LoadDatabase(DatabaseFile(name), *table);
    return NamesOf(*table);
  }

  std::string Title() const { return WindowText(window_); }

  static std::string Header() {
    char text[40] = {};
    LVCOLUMNA column{};
    column.mask = LVCF_TEXT;
    column.pszText = text;
    column.cchTextMax = sizeof(text);
    ListView_GetColumn(List(), 0, &column);
    return text;
  }

  static bool Pressed(int button) { return DatabaseBarDescriptor().rows[button].pressed; }

  static void SelectRow(int row) {
    ListView_SetItemState(List(), -1, 0, LVIS_SELECTED);
    ListView_SetItemState(List(), row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
  }

  // A command whose questions the steps answer.
  ModalResult CommandAnswered(WORD id, std::vector<ModalStep> steps) {
    return Answered([this, id] { Command(id); }, std::move(steps));
  }
};

}  // namespace qb::test
