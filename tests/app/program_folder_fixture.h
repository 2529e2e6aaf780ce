// The main window over a program folder of its own, as the user has it: Databases
// with Data.dat, DataHtml, the page registry, message boxes that show, and the
// scan tests' stand-in browser as the chosen one.
#pragma once

#include "acquire/document_registry.h"
#include "keys/database_slots.h"
#include "keys/key_file.h"
#include "keys/key_list.h"
#include "links/links_view.h"
#include "tests/keys/key_test_util.h"
#include "tests/scan/scan_fixture.h"

namespace qb::test {

class ProgramFolderTest : public MainWindowTest {
 protected:
  // Makes `folder` the program folder, with `keys` in Data.dat and no page recorded.
  void MakeProgramFolder(const std::string& folder, const std::vector<KeyTexts>& keys) {
    UseMessageBoxes();
    UseStandInBrowser();
    SetBrowserWindowChoiceOption(kFirstBrowserWindow);
    program_ = folder;
    for (const char* f : {"", "\\Databases", "\\DataHtml", "\\DataHtml\\Shop"})
      ASSERT_TRUE(CreateDirectoryA((program_ + f).c_str(), nullptr) || GetLastError() == ERROR_ALREADY_EXISTS);
    SetProgramDirectory(program_);
    SetCurrentLinksFolder("");
    ASSERT_TRUE(SaveDatabase(Database("Data.dat"), *OwnedTable(keys)));
    WriteText(program_ + "\\" + kRegistryFileName, std::string(kRegistryHeader) + "\r\n");
  }

  void TearDown() override {
    if (browser_) DestroyWindow(browser_);
    MainWindowTest::TearDown();
    SetUserMessageSink(nullptr);
  }

  std::string Database(const std::string& name) const { return program_ + "\\Databases\\" + name; }

  bool OpenProgram() {
    if (!Open()) return false;
    CreateKeyListColumn(App().keysView);
    return true;
  }

  void ShowBrowser() { browser_ = ShowStandInBrowserWindow(kTestBrowserName, "http://127.0.0.1/form.htm"); }

  std::string program_;
  HWND browser_ = nullptr;
};

}  // namespace qb::test
