#include <gtest/gtest.h>

#include <cstring>

#include "app/app_state.h"
#include "app/frame.h"
#include "app/frame_gdi.h"
#include "resources/resource.h"
#include "tests/app/main_window_fixture.h"
#include "tests/support/gui_helper.h"
#include "tests/support/temp_dir.h"

namespace qb {
namespace {

using test::Press;
using test::RunModal;

class Frame : public ::testing::Test {
 protected:
  void SetUp() override {
    Settings() = AppSettings{};
    SetProgramDirectory(dir_.path());
    App().mainWindow = nullptr;
  }
  test::TempDir dir_;
};

TEST_F(Frame, MissingSettingsFileIsReportedAndDefaultsStay) {
  auto result = RunModal([] { LoadOrSaveSettings(kLoadSettings); }, {Press("OK")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  ASSERT_EQ(result.seen.size(), 1u);
  EXPECT_EQ(result.seen[0].MessageText(), "Can't open config file");
  EXPECT_EQ(result.seen[0].ButtonTexts(), std::vector<std::string>{"OK"});
  EXPECT_EQ(Settings().browserKind, 500u);
}

TEST_F(Frame, UnwritableSettingsFileIsReported) {
  SetProgramDirectory(dir_.File("no-such-folder"));
  auto result = RunModal([] { LoadOrSaveSettings(kSaveSettings); }, {Press("OK")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen[0].MessageText(), "Can't save config file");
}

TEST_F(Frame, ProgramDirectoryIsTheCurrentFolderWithoutAnAppPathsEntry) {
  char cwd[MAX_PATH] = {};
  GetCurrentDirectoryA(MAX_PATH, cwd);
  EXPECT_EQ(FindProgramDirectory(), cwd);
  EXPECT_EQ(App().helpPath, dir_.path() + "\\QBHELP.HLP");
}

std::string MenuText(HMENU menu, UINT position) {
  char text[64] = {};
  GetMenuStringA(menu, position, text, sizeof(text), MF_BYPOSITION);
  return text;
}

TEST(Resources, MenusCarryEveryCommandWithItsText) {
  HINSTANCE inst = GetModuleHandleA(nullptr);
  HMENU menu = LoadMenuA(inst, "QUELLBARROW");
  ASSERT_NE(menu, nullptr);
  const char* tops[] = {"&File", "&View", "&Keys", "&Links", "&Tools", "&Window", "&Help"};
  ASSERT_EQ(GetMenuItemCount(menu), 7);
  for (UINT i = 0; i < 7; ++i) EXPECT_EQ(MenuText(menu, i), tops[i]);

  struct Item {
    UINT id;
    const char* text;
  } items[] = {
      {50000, "&New database"}, {50001, "&Open database"}, {50002, "&Save database"},
      {50003, "Save &As database"}, {50008, "Global options"},
      {50009, "&Select Internet Browser"}, {50010, "E&xit"}, {50100, "&Tool bar"},
      {50101, "&Databases bar"}, {50102, "&Key window"}, {50103, "&Link window"},
      {50104, "&Status bar"}, {50105, "&Link info"}, {50200, "&Add"},
      {50201, "&Add / Compare"}, {50202, "&Modify"}, {50203, "&Copy key"},
      {50204, "&Paste key"}, {50205, "&Delete Key"}, {50206, "&Database 1"},
      {50214, "&Database 9"}, {50215, "&Delete database"}, {50300, "&New Folder"},
      {50301, "&Rename Folder"}, {50302, "&Delete Folder"}, {50303, "&Goto Site"},
      {50304, "&Rename Link"}, {50305, "&Move Link"}, {50306, nullptr},
      {50500, "&Scan HTML"}, {50501, "&Scan File HTML"}, {50502, "&Scan Prompt HTML"},
      {50503, "Scan Manual"}, {50504, "&Scan HTML options"}, {50505, "&Compact ConfigHtml"},
      {50800, "&Normal"}, {50801, "&On The Top"}, {50802, "Horizontal"},
      {50803, "Vertical"}, {50900, "&Help Topics"}, {50902, "&About"},
  };
  for (const auto& item : items) {
    char text[64] = {};
    ASSERT_GT(GetMenuStringA(menu, item.id, text, sizeof(text), MF_BYCOMMAND), 0) << item.id;
    if (item.text) {
      EXPECT_STREQ(text, item.text) << item.id;
    }
    // Every command has its help line.
    char help[257] = {};
    EXPECT_GT(LoadStringA(inst, item.id, help, sizeof(help)), 0) << item.id;
  }
  DestroyMenu(menu);

  HMENU keys = LoadMenuA(inst, "IPOPMENU");
  ASSERT_NE(keys, nullptr);
  HMENU keysPopup = GetSubMenu(keys, 0);
  EXPECT_EQ(GetMenuItemCount(keysPopup), 7);  // five commands, two separators
  EXPECT_EQ(MenuText(keysPopup, 0), "&Add key");
  EXPECT_EQ(MenuText(keysPopup, 6), "&Delete key");
  DestroyMenu(keys);
  HMENU links = LoadMenuA(inst, "POPLIST_MENU");
  ASSERT_NE(links, nullptr);
  HMENU linksPopup = GetSubMenu(links, 0);
  char text[64] = {};
  GetMenuStringA(linksPopup, 0, text, sizeof(text), MF_BYPOSITION);
  EXPECT_STREQ(text, "&Goto site URL");
  GetMenuStringA(linksPopup, IDM_LINK_INFO, text, sizeof(text), MF_BYCOMMAND);
  EXPECT_STREQ(text, "&Info Link");
  DestroyMenu(links);

  EXPECT_NE(LoadAcceleratorsA(inst, "Quellbarrow"), nullptr);
  EXPECT_NE(LoadIconA(inst, "APPICON"), nullptr);
}

TEST(Resources, HelpLinesQuotedByTheProgramAreWordForWord) {
  struct Line {
    UINT id;
    const char* text;
  } lines[] = {
      {50000, "Create a new Quellbarrow database"},
      {50010, "Exit this program"},
      {50102, "Show or hide list window"},
      {50103, "Show or hide tree window"},
      {50505, "Remove deleted links from a file ConfigHtml.cfg"},
  };
  for (const auto& line : lines) {
    char text[257] = {};
    LoadStringA(GetModuleHandleA(nullptr), line.id, text, sizeof(text));
    EXPECT_STREQ(text, line.text);
  }
}

using MainWindow = test::MainWindowTest;

TEST_F(Frame, BarClassesThatCannotBeRegisteredAreReported) {
  HINSTANCE inst = GetModuleHandleA(nullptr);
  ASSERT_TRUE(test::MainWindowTest::EnsureClasses());
  // Both classes exist already, so registering fails at the tool bar...
  auto result = RunModal([&] { EXPECT_FALSE(RegisterBarClasses(inst)); }, {Press("OK")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen[0].MessageText(), "Could not register a tool bar window");
  EXPECT_EQ(result.seen[0].caption, "Error");
  // ...and, with the tool bar's class gone, at the databases bar.
  ASSERT_TRUE(UnregisterClassA("ToolBar", inst));
  result = RunModal([&] { EXPECT_FALSE(RegisterBarClasses(inst)); }, {Press("OK")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen[0].MessageText(), "Could not register a Database bar window");
}

TEST_F(MainWindow, ZeroRectangleGivesASmallWindowAtTheTopLeft) {
  window_ = CreateMainWindow(GetModuleHandleA(nullptr), SW_SHOWNORMAL);
  ASSERT_NE(window_, nullptr);
  EXPECT_EQ(App().mainWindow, window_);
  RECT r;
  GetWindowRect(window_, &r);
  EXPECT_EQ(r.left, 0);
  EXPECT_EQ(r.top, 0);
  EXPECT_EQ(r.right - r.left, 300);
  EXPECT_EQ(r.bottom - r.top, 100);
  EXPECT_EQ(test::WindowText(window_), "Quellbarrow - Data.dat");
  EXPECT_EQ(GetMenuItemCount(GetMenu(window_)), 7);
  EXPECT_EQ(App().dataHtmlDir, dir_.path() + "\\DataHtml\\");
  EXPECT_EQ(App().databaseDir, dir_.path() + "\\Databases\\");
}

TEST_F(MainWindow, SavedMaximizedFlagShowsItMaximized) {
  Settings().maximized = 1;
  window_ = CreateMainWindow(GetModuleHandleA(nullptr), SW_SHOWNORMAL);
  ASSERT_NE(window_, nullptr);
  EXPECT_TRUE(IsZoomed(window_));
}

TEST_F(MainWindow, ExitCommandDoesNothing) {
  window_ = CreateMainWindow(GetModuleHandleA(nullptr), SW_SHOWNORMAL);
  ASSERT_NE(window_, nullptr);
  auto result = RunModal(
      [&] { EXPECT_EQ(SendMessageA(window_, WM_COMMAND, MAKEWPARAM(IDM_EXIT, 0), 0), 0); }, {});
  EXPECT_TRUE(result.ok()) << result.Describe();
  EXPECT_TRUE(IsWindow(window_));
  EXPECT_FALSE(test::FileExists(dir_.File("pellwick.cfg")));
}

TEST_F(MainWindow, CreationBuildsTheWholeInterior) {
  ASSERT_NE(Open(), nullptr);
  for (int id : {IDC_LINKS_VIEW, IDC_KEYS_VIEW}) {
    HWND view = GetDlgItem(window_, id);
    ASSERT_NE(view, nullptr) << id;
    char name[32] = {};
    GetClassNameA(view, name, sizeof(name));
    EXPECT_STREQ(name, "SysListView32");
    // The list view shows its scroll bar only when the rows need it.
    EXPECT_EQ(GetWindowLongA(view, GWL_STYLE) & ~(WS_VISIBLE | WS_VSCROLL),
              0x40A0060D & ~WS_VSCROLL) << id;
    EXPECT_TRUE(GetWindowLongA(view, GWL_EXSTYLE) & WS_EX_CLIENTEDGE);
    EXPECT_TRUE(IsWindowVisible(view));
  }
  EXPECT_EQ(GetDlgItem(window_, IDC_LINKS_VIEW), App().linksView);
  EXPECT_EQ(GetDlgItem(window_, IDC_KEYS_VIEW), App().keysView);

  HWND tip = BarTipWindow();
  ASSERT_NE(tip, nullptr);
  // The system adds WS_CLIPSIBLINGS to every top-level window.
  EXPECT_EQ(static_cast<DWORD>(GetWindowLongA(tip, GWL_STYLE)) & ~WS_CLIPSIBLINGS, 0x80800006u);
  EXPECT_TRUE(GetWindowLongA(tip, GWL_EXSTYLE) & WS_EX_TOPMOST);
  EXPECT_EQ(GetWindow(tip, GW_OWNER), window_);

  const FrameGdi& g = Gdi();
  const std::pair<HFONT, LONG> fonts[] = {{g.smallFont, 11}, {g.font, 13}};
  for (const auto& [font, height] : fonts) {
    LOGFONTA lf{};
    ASSERT_TRUE(GetObjectA(font, sizeof(lf), &lf));
    EXPECT_EQ(lf.lfHeight, height);
    EXPECT_EQ(lf.lfWidth, 5);
    EXPECT_EQ(lf.lfPitchAndFamily, FF_SWISS);
  }
  for (HICON icon : {g.hiddenIcon, g.rootFolderIcon, g.openFolderIcon}) EXPECT_NE(icon, nullptr);
}

TEST_F(MainWindow, ABarThatCannotBeCreatedEndsTheProgram) {
  ASSERT_TRUE(UnregisterClassA("DatabaseBar", Instance()));
  auto result = RunModal([&] { Open(); }, {Press("OK")});
  ASSERT_TRUE(EnsureClasses());
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen[0].MessageText(), "Unable to Create Tool bar window");
  MSG msg;
  EXPECT_TRUE(PeekMessageA(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
}

TEST_F(MainWindow, HelpTopicsLeavesTheOnTopStateAndOpensTheHelpFile) {
  Settings().onTop = 1;
  ASSERT_NE(Open(), nullptr);
  ASSERT_TRUE(GetWindowLongA(window_, GWL_EXSTYLE) & WS_EX_TOPMOST);
  auto result = RunModal([&] { Command(IDM_HELP_TOPICS); }, {Press("No")},
                         test::ModalOptions{.anyProcess = true});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen[0].MessageText(),
            "Cannot find '" + App().helpPath + "'. Do you want to find this file yourself?");
  EXPECT_EQ(Settings().onTop, 0);
  EXPECT_FALSE(GetWindowLongA(window_, GWL_EXSTYLE) & WS_EX_TOPMOST);
}

TEST_F(MainWindow, DisplayChangeRecordsTheNewScreenSize) {
  window_ = CreateMainWindow(GetModuleHandleA(nullptr), SW_SHOWNORMAL);
  ASSERT_NE(window_, nullptr);
  EXPECT_EQ(SendMessageA(window_, WM_DISPLAYCHANGE, 32, MAKELPARAM(1600, 900)), 0);
  EXPECT_EQ(App().screenWidth, 1600);
  EXPECT_EQ(App().screenHeight, 900);
}

TEST_F(MainWindow, CloseSavesTheSettingsWithTheWindowRectangleAndQuits) {
  Settings().windowRect = {40, 50, 540, 450};
  window_ = CreateMainWindow(GetModuleHandleA(nullptr), SW_SHOWNORMAL);
  ASSERT_NE(window_, nullptr);
  SetWindowPos(window_, nullptr, 60, 70, 400, 300, SWP_NOZORDER);
  SendMessageA(window_, WM_CLOSE, 0, 0);
  EXPECT_FALSE(IsWindow(window_));
  MSG msg;
  EXPECT_TRUE(PeekMessageA(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));

  AppSettings saved;
  ASSERT_TRUE(ReadSettingsFile(dir_.File("pellwick.cfg"), saved));
  EXPECT_EQ(test::ReadBytes(dir_.File("pellwick.cfg")).size(), 3419u);
  EXPECT_EQ(saved.windowRect.left, 60);
  EXPECT_EQ(saved.windowRect.top, 70);
  EXPECT_EQ(saved.windowRect.right, 460);
  EXPECT_EQ(saved.windowRect.bottom, 370);
  EXPECT_EQ(saved.maximized, 0u);
  EXPECT_STREQ(saved.slotNames[0].data(), "Data.dat");
}

}  // namespace
}  // namespace qb
