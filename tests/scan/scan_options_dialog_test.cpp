// The scan options dialog, opened through the main window's command table as the
// Tools menu opens it, and answered through its real buttons.
#include "scan/scan_options_dialog.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "app/app_state.h"
#include "app/frame.h"
#include "resources/resource.h"
#include "scan/scan_options.h"
#include "tests/support/gui_helper.h"

namespace qb {
namespace {

using test::Custom;
using test::Press;
using test::RunModal;

const char* const kGroups[] = {
    "Radio buttons - Ask for select",         "Check boxes - Ask for select",
    "Combo and Select list boxes - Ask for select", "One line Text fields - Ask for select",
    "Text area fields - Ask for select",       "Radio buttons - Add keys",
    "Check boxes - Add keys",                  "Combo and Select list boxes - Add keys",
    "One line Text fields - Add keys",         "Text area fields - Add keys",
};

void OpenFromTheToolsMenu() {
  LookupCommand(kMainCommandMap, App().mainWindow, MAKEWPARAM(IDM_SCAN_OPTIONS, 0), 0);
}

class ScanOptionsDialog : public ::testing::Test {
 protected:
  void SetUp() override {
    App().mainWindow = nullptr;
    Settings() = AppSettings{};
  }
};

TEST_F(ScanOptionsDialog, ShowsTheStoredChoicesAndCancelKeepsThem) {
  Settings().askForSelect = {kAskNever, kAskAllways, kAskUnMatched, kAskAllways, 9};
  Settings().addKeys = {0, 1, 0, 1, 3};
  const AppSettings before = Settings();
  const auto result = RunModal(OpenFromTheToolsMenu, {Press("Cancel")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  const test::WindowSnapshot& dialog = result.seen.at(0);
  EXPECT_EQ(dialog.caption, "Quellbarrow - Scan HTML propertis");
  for (const char* group : kGroups) EXPECT_NE(dialog.ControlByText(group), nullptr) << group;

  // A value no dialog stores (9, 3) shows as the scan reads it: UnMatched.
  const char* const askTexts[] = {"Never", "Allways", "UnMatched"};
  const char* const addTexts[] = {"Never", "UnMatched"};
  const std::array<int, 5> ask = {0, 1, 2, 1, 2};
  const std::array<int, 5> add = {0, 1, 0, 1, 1};
  for (int kind = 0; kind < 5; ++kind) {
    for (int choice = 0; choice < 3; ++choice) {
      const test::ControlInfo* button = dialog.Control(IDC_SCANOPT_ASK_FIRST + 3 * kind + choice);
      ASSERT_NE(button, nullptr);
      EXPECT_EQ(button->text, askTexts[choice]);
      EXPECT_EQ(button->checked, choice == ask[kind] ? BST_CHECKED : BST_UNCHECKED) << kind << choice;
    }
    for (int choice = 0; choice < 2; ++choice) {
      const test::ControlInfo* button = dialog.Control(IDC_SCANOPT_ADD_FIRST + 2 * kind + choice);
      ASSERT_NE(button, nullptr);
      EXPECT_EQ(button->text, addTexts[choice]);
      EXPECT_EQ(button->checked, choice == add[kind] ? BST_CHECKED : BST_UNCHECKED) << kind << choice;
    }
  }
  EXPECT_EQ(Settings().askForSelect, before.askForSelect);
  EXPECT_EQ(Settings().addKeys, before.addKeys);
}

TEST_F(ScanOptionsDialog, OkStoresTheButtonsClickedInEachGroup) {
  INT_PTR ended = -1;
  const int clicks[] = {202, 204, 208, 210, 214, 216, 220, 224, 222};
  const auto result = RunModal([&] { ended = RunScanOptionsDialog(nullptr); },
                               {Custom([&](HWND dialog, const test::WindowSnapshot&) {
                                 // Clicked as a user would: each auto radio button
                                 // clears the others of its group.
                                 for (int id : clicks) PostMessageA(GetDlgItem(dialog, id), BM_CLICK, 0, 0);
                                 PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
                               })});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(ended, 1);
  EXPECT_EQ(Settings().askForSelect, (std::array<std::uint32_t, 5>{2, 1, 2, 1, 2}));
  EXPECT_EQ(Settings().addKeys, (std::array<std::uint32_t, 5>{1, 0, 1, 1, 1}));
}

}  // namespace
}  // namespace qb
