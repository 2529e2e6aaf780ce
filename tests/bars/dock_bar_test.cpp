// The two docking bars through their real windows: showing and hiding in each
// state, dragging between docked and floating, tool tips and button commands.
#include "tests/app/main_window_fixture.h"

#include "resources/resource.h"

namespace qb::test {
namespace {

class Bars : public MainWindowTest {
 protected:
  void SetUp() override {
    MainWindowTest::SetUp();
    ASSERT_NE(Open(), nullptr);
  }

  POINT GripGrab(DockBar& bar) { return Centre(BarGripRect(bar)); }

  bool Topmost(HWND w) { return (GetWindowLongA(w, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0; }
};

TEST_F(Bars, BarsAreChildrenOfTheirClassesAndOneSlotIsHeldDown) {
  const DockBar& tool = ToolBarDescriptor();
  const DockBar& databases = DatabaseBarDescriptor();
  char name[32] = {};
  GetClassNameA(tool.window, name, sizeof(name));
  EXPECT_STREQ(name, "ToolBar");
  GetClassNameA(databases.window, name, sizeof(name));
  EXPECT_STREQ(name, "DatabaseBar");
  EXPECT_EQ(GetParent(tool.window), window_);
  EXPECT_EQ(tool.timerId, 100u);
  EXPECT_EQ(databases.timerId, 101u);

  // Slot 1 is held down at start; pressing another releases it.
  EXPECT_TRUE(databases.rows[1].pressed);
  PressDatabaseButton(4);
  EXPECT_TRUE(databases.rows[4].pressed);
  for (int n : {1, 2, 3, 5, 6, 7, 8, 9}) EXPECT_FALSE(databases.rows[n].pressed) << n;
}

TEST_F(Bars, DraggedToASideTheBarDocksThereAndTheSideIsSaved) {
  DockBar& bar = ToolBarDescriptor();
  ASSERT_TRUE(StartDrag(bar));
  DropAt(POINT{5, 200});
  EXPECT_EQ(bar.side, kSideLeft);
  EXPECT_EQ(bar.state, kBarDocked);
  EXPECT_EQ(GetCapture(), nullptr);
  EXPECT_TRUE(SameRect(ChildRect(bar.window), RECT{0, 30, 30, 400 - StatusBar().height}));
  // Laid out vertically now: the buttons run down the bar.
  const std::vector<RECT> buttons = BarButtonRects(bar);
  EXPECT_GT(buttons[1].top, buttons[0].top);
  EXPECT_EQ(buttons[1].left, buttons[0].left);

  SendMessageA(window_, WM_CLOSE, 0, 0);
  const auto bytes = ReadBytes(dir_.File("pellwick.cfg"));
  ASSERT_EQ(bytes.size(), kSettingsFileSize);
  EXPECT_EQ(bytes[3413], kSideLeft);
  EXPECT_EQ(bytes[3414], kSideTop);
}

TEST_F(Bars, SavedSidesDockTheBarsAtStart) {
  DestroyWindow(window_);
  Drain();
  Settings().toolBarSide = kSideRight;
  Settings().databaseBarSide = 9;  // out of range: the top
  ASSERT_NE(Open(), nullptr);
  EXPECT_EQ(ChildRect(ToolBarDescriptor().window).left, 670);
  EXPECT_EQ(DatabaseBarDescriptor().side, kSideTop);
  EXPECT_EQ(ChildRect(DatabaseBarDescriptor().window).top, 0);
}

TEST_F(Bars, DroppedAwayFromTheSidesTheBarFloatsInItsOwnWindow) {
  DockBar& bar = DatabaseBarDescriptor();
  const POINT grab = GripGrab(bar);
  ASSERT_TRUE(StartDrag(bar));
  // While dragging, a frame shows where the bar would go.
  ASSERT_NE(bar.dragFrame, nullptr);
  const POINT drop{300, 200};
  DropAt(drop);
  EXPECT_EQ(bar.dragFrame, nullptr);
  EXPECT_EQ(bar.state, kBarFloating);
  EXPECT_EQ(bar.side, kSideTop);  // floats lying flat, as it was docked

  const LONG style = GetWindowLongA(bar.window, GWL_STYLE);
  EXPECT_FALSE(style & WS_CHILD);
  EXPECT_TRUE((style & WS_CAPTION) == WS_CAPTION);
  EXPECT_TRUE(IsWindowVisible(bar.window));
  EXPECT_EQ(GetWindow(bar.window, GW_OWNER), window_);
  EXPECT_EQ(WindowText(bar.window), "Databases bar");
  RECT r;
  GetWindowRect(bar.window, &r);
  POINT screenDrop = drop;
  ClientToScreen(window_, &screenDrop);
  EXPECT_EQ(r.left, screenDrop.x - grab.x);
  EXPECT_EQ(r.top, screenDrop.y - grab.y);
  const SIZE size = FloatingWindowSize(bar);
  EXPECT_EQ(r.right - r.left, size.cx);
  EXPECT_EQ(r.bottom - r.top, size.cy);
  EXPECT_EQ(size.cx, LongSideLength(bar) + 8);
  EXPECT_EQ(size.cy, 30 + BarCaptions().floatingCaption);

  // The views take the room the bar left.
  EXPECT_EQ(ChildRect(App().keysView).top, 30);

  // And dragged by its grip to the bottom it docks again, above the status bar.
  ASSERT_TRUE(StartDrag(bar));
  DropAt(POINT{300, 400 - StatusBar().height - 3});
  EXPECT_EQ(bar.state, kBarDocked);
  EXPECT_EQ(bar.side, kSideBottom);
  EXPECT_TRUE(GetWindowLongA(bar.window, GWL_STYLE) & WS_CHILD);
  EXPECT_EQ(ChildRect(bar.window).bottom, 400 - StatusBar().height);
}

TEST_F(Bars, AClickOnTheGripWithoutMovingStartsNoDrag) {
  DockBar& bar = ToolBarDescriptor();
  const POINT p = Centre(BarGripRect(bar));
  POINT screen = p;
  ClientToScreen(bar.window, &screen);
  SetCursorPos(screen.x, screen.y);
  SendMessageA(bar.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(p.x, p.y));
  SendMessageA(bar.window, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(p.x + 1, p.y));
  SendMessageA(bar.window, WM_LBUTTONUP, 0, MAKELPARAM(p.x + 1, p.y));
  PumpUntil([] { return false; }, 100);
  EXPECT_FALSE(Layout().dragging);
  EXPECT_EQ(GetCapture(), nullptr);
  EXPECT_EQ(bar.state, kBarDocked);
}

// Each show/hide transition of a bar and the check of its View menu item.
TEST_F(Bars, ViewMenuShowsAndHidesABarInEachState) {
  struct Step {
    WORD command;
    int state;
    bool visible;
    bool checked;
  };
  for (int index = 0; index < 2; ++index) {
    DockBar& bar = BarByIndex(index);
    const WORD command = index == 0 ? IDM_TOOL_BAR : IDM_DATABASES_BAR;
    SCOPED_TRACE(command);
    auto run = [&](std::initializer_list<Step> steps) {
      for (const Step& s : steps) {
        Command(s.command);
        EXPECT_EQ(bar.state, s.state);
        EXPECT_EQ(IsWindowVisible(bar.window) != FALSE, s.visible);
        EXPECT_EQ(Checked(s.command), s.checked);
      }
    };
    run({{command, kBarDockedHidden, false, false}, {command, kBarDocked, true, true}});
    ASSERT_TRUE(StartDrag(bar));
    DropAt(POINT{300, 150 + 60 * index});
    ASSERT_EQ(bar.state, kBarFloating);
    run({{command, kBarFloatingHidden, false, false}, {command, kBarFloating, true, true}});
    EXPECT_TRUE(Topmost(bar.window));  // shown again above other windows

    // The floating window's close box hides it the same way.
    SendMessageA(bar.window, WM_CLOSE, 0, 0);
    EXPECT_TRUE(IsWindow(bar.window));
    EXPECT_EQ(bar.state, kBarFloatingHidden);
    EXPECT_FALSE(Checked(command));
  }
}

TEST_F(Bars, ColourChangeResizesFloatingBarsAndKeepsHiddenOnesHidden) {
  DockBar& tool = ToolBarDescriptor();
  DockBar& databases = DatabaseBarDescriptor();
  ASSERT_TRUE(StartDrag(tool));
  DropAt(POINT{5, 200});  // docked left: floats upright later
  ASSERT_TRUE(StartDrag(tool));
  DropAt(POINT{300, 200});
  ASSERT_TRUE(StartDrag(databases));
  DropAt(POINT{300, 250});
  Command(IDM_DATABASES_BAR);  // floating but hidden
  SetWindowPos(tool.window, nullptr, 0, 0, 80, 80, SWP_NOMOVE | SWP_NOZORDER);
  SetWindowPos(databases.window, nullptr, 0, 0, 80, 80, SWP_NOMOVE | SWP_NOZORDER);

  SendMessageA(window_, WM_SYSCOLORCHANGE, 0, 0);
  RECT r;
  GetWindowRect(tool.window, &r);
  const int caption = BarCaptions().floatingCaption;
  EXPECT_EQ(r.right - r.left, 30 + 4);
  EXPECT_EQ(r.bottom - r.top, LongSideLength(tool) + caption);
  GetWindowRect(databases.window, &r);
  EXPECT_EQ(r.right - r.left, LongSideLength(databases) + 8);
  EXPECT_EQ(r.bottom - r.top, 30 + caption);
  EXPECT_FALSE(IsWindowVisible(databases.window));
}

TEST_F(Bars, ToolTipNamesTheButtonUnderThePointer) {
  DockBar& tool = ToolBarDescriptor();
  const int scan = 3;  // "Scan HTML" in the tool bar's table
  ASSERT_EQ(tool.kind->buttons[scan].command, IDM_SCAN_HTML);
  const RECT button = BarButtonRects(tool)[scan];
  POINT p = Centre(button);
  POINT screen = p;
  ClientToScreen(tool.window, &screen);
  SetForegroundWindow(window_);
  SetCursorPos(screen.x, screen.y);
  SendMessageA(tool.window, WM_MOUSEMOVE, 0, MAKELPARAM(p.x, p.y));
  HWND tip = BarTipWindow();
  ASSERT_TRUE(PumpUntil([&] { return IsWindowVisible(tip) != FALSE; }, 3000));
  EXPECT_EQ(BarTipText(), "Scan HTML");
  RECT tipRect;
  GetWindowRect(tip, &tipRect);
  RECT buttonScreen = button;
  MapWindowPoints(tool.window, nullptr, reinterpret_cast<POINT*>(&buttonScreen), 2);
  EXPECT_GT(tipRect.top, buttonScreen.bottom - 1);  // below the button

  // The databases bar names the slot and its database.
  std::strcpy(Settings().slotNames[2].data(), "Addresses.dat");
  RefreshDatabaseCaptions();
  DockBar& databases = DatabaseBarDescriptor();
  for (int slot : {2, 1}) {
    p = Centre(BarButtonRects(databases)[slot]);
    screen = p;
    ClientToScreen(databases.window, &screen);
    SetCursorPos(screen.x, screen.y);
    SendMessageA(databases.window, WM_MOUSEMOVE, 0, MAKELPARAM(p.x, p.y));
    const std::string expected = slot == 2 ? "Database 3: Addresses.dat" : "Database 2: empty";
    EXPECT_TRUE(PumpUntil([&] { return IsWindowVisible(tip) && BarTipText() == expected; }, 3000))
        << BarTipText();
  }

  // Away from the bars the tip goes.
  SetCursorPos(screen.x, screen.y + 200);
  EXPECT_TRUE(PumpUntil([&] { return !IsWindowVisible(tip); }, 3000));
}

TEST_F(Bars, AButtonSendsItsCommandToTheMainWindow) {
  DockBar& tool = ToolBarDescriptor();
  int help = -1;
  for (int i = 0; i < tool.kind->count; ++i)
    if (tool.kind->buttons[i].command == IDM_HELP_TOPICS) help = i;
  ASSERT_GE(help, 0);
  const POINT p = Centre(BarButtonRects(tool)[help]);
  // Help Topics opens the help file, which this folder lacks: the help program asks.
  auto result = RunModal(
      [&] {
        SendMessageA(tool.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(p.x, p.y));
        SendMessageA(tool.window, WM_LBUTTONUP, 0, MAKELPARAM(p.x, p.y));
      },
      {Press("No")}, ModalOptions{.anyProcess = true});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_NE(result.seen[0].MessageText().find("QBHELP.HLP"), std::string::npos);
}

TEST_F(Bars, AGreyedButtonIgnoresTheMouse) {
  DockBar& tool = ToolBarDescriptor();
  ASSERT_EQ(tool.kind->buttons[1].command, IDM_SAVE_DATABASE);
  ASSERT_FALSE(CommandAvailable(IDM_SAVE_DATABASE));  // nothing changed yet
  const POINT p = Centre(BarButtonRects(tool)[1]);
  SendMessageA(tool.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(p.x, p.y));
  EXPECT_EQ(tool.held, -1);
  EXPECT_EQ(GetCapture(), nullptr);
  SendMessageA(tool.window, WM_LBUTTONUP, 0, MAKELPARAM(p.x, p.y));

  SetDatabaseChanged(true);
  SendMessageA(tool.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(p.x, p.y));
  EXPECT_EQ(tool.held, 1);
  EXPECT_EQ(GetCapture(), tool.window);
  // Released away from the button: no command, the button comes up.
  SendMessageA(tool.window, WM_LBUTTONUP, 0, MAKELPARAM(p.x + 200, p.y));
  EXPECT_EQ(tool.held, -1);
  EXPECT_EQ(GetCapture(), nullptr);
}

}  // namespace
}  // namespace qb::test
