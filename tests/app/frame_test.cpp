#include <gtest/gtest.h>

#include <tuple>

#include "base/frame_gdi.h"
#include "links/links_view.h"
#include "tests/support/main_window_fixture.h"

namespace qb::test {
namespace {

using MainWindow = MainWindowTest;

TEST_F(MainWindow, SettingsFileProblemsAreReportedAndTheSettingsStay) {
  const struct {
    int flag;
    const char* folder;  // under the fresh folder; "" is the folder itself
    const char* message;
  } cases[] = {
      {kLoadSettings, "", "Can't open config file"},
      {kSaveSettings, "no-such-folder", "Can't save config file"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.message);
    SetProgramDirectory(*c.folder ? dir_.File(c.folder) : dir_.path());
    const auto before = SerializeSettings(Settings());
    auto result = RunAnswered([&] { LoadOrSaveSettings(c.flag); }, {Press("OK")});
    EXPECT_EQ(result.seen[0].MessageText(), c.message);
    EXPECT_EQ(result.seen[0].ButtonTexts(), std::vector<std::string>{"OK"});
    EXPECT_EQ(SerializeSettings(Settings()), before);
  }
}

// Counts the command items of `menu` and its submenus, expecting a help line for each.
int CountCommandsWithHelp(HMENU menu) {
  int commands = 0;
  for (int i = 0; i < GetMenuItemCount(menu); ++i) {
    if (HMENU sub = GetSubMenu(menu, i)) {
      commands += CountCommandsWithHelp(sub);
      continue;
    }
    const UINT id = GetMenuItemID(menu, i);
    if (id == 0) continue;  // separator
    char help[257] = {};
    EXPECT_GT(LoadStringA(GetModuleHandleA(nullptr), id, help, sizeof(help)), 0) << id;
    ++commands;
  }
  return commands;
}

TEST(Resources, MenusHoldEveryCommandWithItsHelpLine) {
  HINSTANCE inst = GetModuleHandleA(nullptr);
  HMENU menu = LoadMenuA(inst, "QUELLBARROW");
  ASSERT_NE(menu, nullptr);
  // One item per row of the command table, both 50302 items and "Scan Address
  // from Clipboard" included.
  EXPECT_EQ(CountCommandsWithHelp(menu), 50);
  DestroyMenu(menu);
  // The pop-up menus and the accelerators are used where they show.
  EXPECT_NE(LoadIconA(inst, "APPICON"), nullptr);
}

// Both classes exist already, so registering fails at the tool bar; with the tool
// bar's class gone, at the databases bar. Without that class the main window can
// make no bar, and the program ends.
TEST_F(MainWindow, BarClassesAndBarsThatCannotBeMadeAreReported) {
  for (const char* message : {"Could not register a tool bar window", "Could not register a Database bar window"}) {
    const auto result = RunAnswered([&] { EXPECT_FALSE(RegisterBarClasses(Instance())); }, {Press("OK")});
    EXPECT_EQ(result.seen[0].MessageText(), message);
    EXPECT_EQ(result.seen[0].caption, "Error");
    UnregisterClassA("ToolBar", Instance());
  }
  ASSERT_TRUE(EnsureClasses());
  ASSERT_TRUE(UnregisterClassA("DatabaseBar", Instance()));
  auto result = RunAnswered([&] { Open(); }, {Press("OK")});
  ASSERT_TRUE(EnsureClasses());
  EXPECT_EQ(result.seen[0].MessageText(), "Unable to Create Tool bar window");
  MSG msg;
  EXPECT_TRUE(PeekMessageA(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
}

// A modal window that closes gives the keyboard back to the list the user was in,
// not to the frame, where arrow keys and Delete would reach nothing.
TEST_F(MainWindow, FocusReturnsToTheListThatHadItWhenAModalWindowCloses) {
  ASSERT_NE(Open(), nullptr);
  SetForegroundWindow(window_);
  for (const int id : {IDC_KEYS_VIEW, IDC_LINKS_VIEW}) {
    SCOPED_TRACE(id);
    HWND list = GetDlgItem(window_, id);
    SetFocus(list);
    ASSERT_EQ(GetFocus(), list);
    RunAnswered([&] { Command(IDM_ABOUT); }, {Press("OK")});
    EXPECT_TRUE(PumpUntil([&] { return GetFocus() == list; })) << GetFocus();
  }
}

TEST_F(MainWindow, CreationBuildsTheWholeInterior) {
  ASSERT_NE(Open(), nullptr);
  // The Links view is a virtual list over its records.
  for (auto [id, extra] : {std::pair<int, DWORD>{IDC_LINKS_VIEW, kLinksViewExtraStyle},
                           std::pair<int, DWORD>{IDC_KEYS_VIEW, 0}}) {
    HWND view = GetDlgItem(window_, id);
    // The list view shows its scroll bar only when the rows need it; the Keys view
    // leaves drawing its rows to the control.
    const LONG drawn = id == IDC_KEYS_VIEW ? LVS_OWNERDRAWFIXED : 0;
    EXPECT_EQ(GetWindowLongA(view, GWL_STYLE) & ~(WS_VISIBLE | WS_VSCROLL),
              ((0x40A0060D | extra) & ~drawn) & ~WS_VSCROLL) << id;
    EXPECT_TRUE(GetWindowLongA(view, GWL_EXSTYLE) & WS_EX_CLIENTEDGE);
    EXPECT_TRUE(Visible(view));
  }
  HWND tip = BarTipWindow();
  ASSERT_NE(tip, nullptr);
  // The system adds WS_CLIPSIBLINGS to every top-level window.
  EXPECT_EQ(static_cast<DWORD>(GetWindowLongA(tip, GWL_STYLE)) & ~WS_CLIPSIBLINGS, 0x80800006u);
  EXPECT_TRUE(Topmost(tip));
  EXPECT_EQ(GetWindow(tip, GW_OWNER), window_);
  EXPECT_EQ(StatusText(), "Quellbarrow");

  const FrameGdi& g = Gdi();
  for (HICON icon : {g.hiddenIcon, g.rootFolderIcon, g.openFolderIcon}) EXPECT_NE(icon, nullptr);
}

// Without an App Paths entry the program folder is the current one; a zero
// rectangle gives a small window at the top left; Exit does nothing; close saves
// the settings with the window's rectangle and quits.
TEST_F(MainWindow, OpensSmallWithoutARectangleAndCloseSavesWhereItWent) {
  // An empty database, so that slot 0 keeps its name (a missing file empties it).
  CreateDirectoryA(dir_.File("Databases").c_str(), nullptr);
  WriteBytes(dir_.File("Databases\\Data.dat"), {0xC6, 0x1E, 0x27, 0x00, 0, 0, 0, 0});
  char cwd[MAX_PATH] = {};
  GetCurrentDirectoryA(MAX_PATH, cwd);
  EXPECT_EQ(FindProgramDirectory(), cwd);
  ASSERT_NE(Open(0), nullptr);
  EXPECT_EQ(App().mainWindow, window_);
  EXPECT_EQ(App().helpPath, dir_.path() + "\\QBHELP.HLP");
  RECT r;
  GetWindowRect(window_, &r);
  EXPECT_EQ(Describe(r), Describe(RECT{0, 0, 300, 100}));
  EXPECT_EQ(WindowText(window_), "Quellbarrow - Data.dat");
  RunAnswered([&] { EXPECT_EQ(Command(IDM_EXIT), 0); }, {});
  EXPECT_FALSE(FileExists(dir_.File("pellwick.cfg")));
  EXPECT_EQ(SendMessageA(window_, WM_DISPLAYCHANGE, 32, MAKELPARAM(1600, 900)), 0);
  EXPECT_EQ(std::tie(App().screenWidth, App().screenHeight), std::make_tuple(1600, 900));

  SetWindowPos(window_, nullptr, 60, 70, 400, 300, SWP_NOZORDER);
  SendMessageA(window_, WM_CLOSE, 0, 0);
  EXPECT_FALSE(IsWindow(window_));
  MSG msg;
  EXPECT_TRUE(PeekMessageA(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  AppSettings saved;
  ASSERT_TRUE(ReadSettingsFile(dir_.File("pellwick.cfg"), saved));
  const WindowRect& w = saved.windowRect;
  EXPECT_EQ(std::tie(w.left, w.top, w.right, w.bottom), std::make_tuple(60, 70, 460, 370));
  EXPECT_EQ(saved.maximized, 0u);
  EXPECT_STREQ(saved.slotNames[0].data(), "Data.dat");

  Settings().maximized = 1;
  ASSERT_NE(Open(0), nullptr);
  EXPECT_TRUE(IsZoomed(window_));
}

}  // namespace
}  // namespace qb::test
