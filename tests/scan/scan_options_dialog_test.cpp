// The scan options dialog, opened through the main window's command table as the
// Tools menu opens it, and answered through its real buttons.
#include "scan/scan_options_dialog.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "base/app_state.h"
#include "resources/resource.h"
#include "scan/scan_options.h"
#include "tests/support/gui_helper.h"
#include "tests/support/main_window.h"
#include "tests/support/help_viewer.h"
#include "tests/support/temp_dir.h"

namespace qb {
namespace {

// Opened through the main window's command table as the Tools menu opens it.
test::ModalResult OpenFromTheToolsMenu(std::vector<test::ModalStep> steps) {
  return test::RunModal([] { LookupCommand(kMainCommandMap, App().mainWindow, MAKEWPARAM(IDM_SCAN_OPTIONS, 0), 0); },
                        std::move(steps));
}

// Help opens its topic and leaves the dialog open; Cancel then keeps the choices,
// OK stores the buttons clicked in each group.
TEST(ScanOptionsDialog, ShowsTheStoredChoicesCancelKeepsThemOkStoresTheClicks) {
  App().mainWindow = nullptr;
  Settings() = AppSettings{};
  Settings().askForSelect = {kAskNever, kAskAllways, kAskUnMatched, kAskAllways, 9};
  Settings().addKeys = {0, 1, 0, 1, 3};
  const AppSettings before = Settings();
  test::TempDir dir;
  SetProgramDirectory(dir.path());
  ASSERT_TRUE(test::CopyHelpFileTo(dir.path()));
  test::HelpPage page;
  bool stayedOpen = false;
  const auto result = OpenFromTheToolsMenu({test::HelpThenCancel("Scan options", page, stayedOpen)});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(page.heading, "Scan options");
  EXPECT_TRUE(stayedOpen);
  const test::WindowSnapshot& dialog = result.seen.at(0);
  EXPECT_EQ(dialog.caption, "Quellbarrow - Scan HTML propertis");
  const auto expectChecked = [&](int firstId, int choices, const std::array<int, 5>& shown) {
    for (int kind = 0; kind < 5; ++kind) {
      for (int choice = 0; choice < choices; ++choice) {
        const test::ControlInfo* button = dialog.Control(firstId + choices * kind + choice);
        ASSERT_NE(button, nullptr) << kind << choice;
        EXPECT_EQ(button->checked, choice == shown[kind] ? BST_CHECKED : BST_UNCHECKED) << kind << choice;
      }
    }
  };
  // A value no dialog stores (9, 3) shows as the scan reads it: UnMatched.
  expectChecked(IDC_SCANOPT_ASK_FIRST, 3, {0, 1, 2, 1, 2});
  expectChecked(IDC_SCANOPT_ADD_FIRST, 2, {0, 1, 0, 1, 1});
  EXPECT_EQ(Settings().askForSelect, before.askForSelect);
  EXPECT_EQ(Settings().addKeys, before.addKeys);

  // Clicked as a user would: each auto radio button clears the others of its group.
  const auto clickThenOk = [](HWND dialog, const test::WindowSnapshot&) {
    for (int id : {202, 204, 208, 210, 214, 216, 217, 220, 224, 222}) {
      PostMessageA(GetDlgItem(dialog, id), BM_CLICK, 0, 0);
    }
    PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
  };
  const auto clicked = OpenFromTheToolsMenu({test::Custom(clickThenOk)});
  ASSERT_TRUE(clicked.ok()) << clicked.Describe();
  EXPECT_EQ(Settings().askForSelect, (std::array<std::uint32_t, 5>{2, 1, 2, 1, 2}));
  EXPECT_EQ(Settings().addKeys, (std::array<std::uint32_t, 5>{1, 0, 1, 1, 1}));
}

}  // namespace
}  // namespace qb
