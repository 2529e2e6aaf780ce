// The two docking bars through their real windows: showing and hiding in each
// state, dragging between docked and floating, tool tips and button commands.
#include "tests/support/main_window_fixture.h"

namespace qb::test {
namespace {

class Bars : public OpenMainWindowTest {
 protected:
  static int ButtonOf(const DockBar& bar, WORD command) {
    for (int i = 0; i < bar.kind->count; ++i)
      if (bar.kind->buttons[i].command == command) return i;
    ADD_FAILURE() << "no button for " << command;
    return -1;
  }
  static POINT ButtonCentre(const DockBar& bar, int button) {
    return Centre(BarButtonRects(bar).at(button));
  }

  // Puts the pointer over `p` (bar client coordinates) and tells the bar.
  static void Hover(const DockBar& bar, POINT p) {
    PointerAt(bar.window, p);
    SendMessageA(bar.window, WM_MOUSEMOVE, 0, MAKELPARAM(p.x, p.y));
  }
  static void Mouse(const DockBar& bar, UINT message, POINT p) {
    SendMessageA(bar.window, message, message == WM_LBUTTONDOWN ? MK_LBUTTON : 0, MAKELPARAM(p.x, p.y));
  }
  static std::pair<int, int> SizeOf(HWND window) {
    RECT r;
    GetWindowRect(window, &r);
    return {r.right - r.left, r.bottom - r.top};
  }
};

TEST_F(Bars, OneDatabaseSlotIsHeldDown) {
  const DockBar& databases = DatabaseBarDescriptor();
  // Slot 1 at start; pressing another releases it.
  EXPECT_TRUE(databases.rows[1].pressed);
  PressDatabaseButton(4);
  for (int n = 1; n <= 9; ++n) EXPECT_EQ(databases.rows[n].pressed, n == 4) << n;
}

TEST_F(Bars, DraggedToASideTheBarDocksThereAndTheSideIsSaved) {
  DockBar& bar = ToolBarDescriptor();
  DragTo(bar, POINT{5, 200});
  EXPECT_EQ(GetCapture(), nullptr);
  // Docked at the left (the settings below say so too).
  EXPECT_EQ(Describe(ChildRect(bar.window)), Describe(RECT{0, 30, 30, 400 - StatusBar().height}));
  // Laid out vertically now: the buttons run down the bar.
  const std::vector<RECT> buttons = BarButtonRects(bar);
  EXPECT_GT(buttons[1].top, buttons[0].top);
  EXPECT_EQ(buttons[1].left, buttons[0].left);

  const auto bytes = CloseAndReadSettings();
  ASSERT_EQ(bytes.size(), kSettingsFileSize);
  EXPECT_EQ(bytes[3413], kSideLeft);
  EXPECT_EQ(bytes[3414], kSideTop);
}

TEST_F(Bars, DroppedAwayFromTheSidesTheBarFloatsInItsOwnWindow) {
  DockBar& bar = DatabaseBarDescriptor();
  const POINT grab = Centre(BarGripRect(bar));
  ASSERT_TRUE(StartDrag(bar));
  // While dragging, a frame shows where the bar would go.
  ASSERT_NE(bar.dragFrame, nullptr);
  POINT drop{300, 200};
  DropAt(drop);
  EXPECT_EQ(bar.dragFrame, nullptr);
  EXPECT_EQ(bar.state, kBarFloating);
  EXPECT_EQ(bar.side, kSideTop);  // floats lying flat, as it was docked

  const LONG style = GetWindowLongA(bar.window, GWL_STYLE);
  EXPECT_FALSE(style & WS_CHILD);
  EXPECT_EQ(style & WS_CAPTION, WS_CAPTION);
  EXPECT_TRUE(Visible(bar.window));
  EXPECT_EQ(GetWindow(bar.window, GW_OWNER), window_);
  EXPECT_EQ(WindowText(bar.window), "Databases bar");
  RECT r;
  GetWindowRect(bar.window, &r);
  ClientToScreen(window_, &drop);
  EXPECT_EQ((std::pair{r.left, r.top}), (std::pair{drop.x - grab.x, drop.y - grab.y}));
  EXPECT_EQ(SizeOf(bar.window), (std::pair{LongSideLength(bar) + 8, 30 + BarCaptions().floatingCaption}));
  // The views take the room the bar left.
  EXPECT_EQ(ChildRect(App().keysView).top, 30);

  // And dragged by its grip to the bottom it docks again, above the status bar.
  DragTo(bar, POINT{300, 400 - StatusBar().height - 3});
  EXPECT_EQ(bar.state, kBarDocked);
  EXPECT_EQ(bar.side, kSideBottom);
  EXPECT_TRUE(GetWindowLongA(bar.window, GWL_STYLE) & WS_CHILD);
  EXPECT_EQ(ChildRect(bar.window).bottom, 400 - StatusBar().height);
}

TEST_F(Bars, AClickOnTheGripWithoutMovingStartsNoDrag) {
  DockBar& bar = ToolBarDescriptor();
  const POINT p = Centre(BarGripRect(bar));
  Hover(bar, p);
  Mouse(bar, WM_LBUTTONDOWN, p);
  SendMessageA(bar.window, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(p.x + 1, p.y));
  Mouse(bar, WM_LBUTTONUP, POINT{p.x + 1, p.y});
  PumpUntil([] { return false; }, 100);
  EXPECT_FALSE(Layout().dragging);
  EXPECT_EQ(GetCapture(), nullptr);
  EXPECT_EQ(bar.state, kBarDocked);
}

// Each show/hide transition of a bar and the check of its View menu item.
TEST_F(Bars, ViewMenuShowsAndHidesABarInEachState) {
  for (int index = 0; index < 2; ++index) {
    DockBar& bar = BarByIndex(index);
    const WORD command = index == 0 ? IDM_TOOL_BAR : IDM_DATABASES_BAR;
    SCOPED_TRACE(command);
    // Toggles twice: hidden in `hidden`, then shown again in `shown`.
    auto toggleTwice = [&](int hidden, int shown) {
      for (int state : {hidden, shown}) {
        Command(command);
        EXPECT_EQ(bar.state, state);
        EXPECT_EQ(Visible(bar.window), state == shown);
        EXPECT_EQ(Checked(command), state == shown);
      }
    };
    toggleTwice(kBarDockedHidden, kBarDocked);
    DragTo(bar, POINT{300, 150 + 60 * index});
    ASSERT_EQ(bar.state, kBarFloating);
    toggleTwice(kBarFloatingHidden, kBarFloating);
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
  DragTo(tool, POINT{5, 200});  // docked left: floats upright later
  DragTo(tool, POINT{300, 200});
  DragTo(databases, POINT{300, 250});
  Command(IDM_DATABASES_BAR);  // floating but hidden
  for (HWND w : {tool.window, databases.window})
    SetWindowPos(w, nullptr, 0, 0, 80, 80, SWP_NOMOVE | SWP_NOZORDER);

  SendMessageA(window_, WM_SYSCOLORCHANGE, 0, 0);
  const int caption = BarCaptions().floatingCaption;
  EXPECT_EQ(SizeOf(tool.window), (std::pair{30 + 4, LongSideLength(tool) + caption}));
  EXPECT_EQ(SizeOf(databases.window), (std::pair{LongSideLength(databases) + 8, 30 + caption}));
  EXPECT_FALSE(Visible(databases.window));
}

TEST_F(Bars, ToolTipNamesTheButtonUnderThePointer) {
  DockBar& tool = ToolBarDescriptor();
  const int scan = ButtonOf(tool, IDM_SCAN_HTML);
  HWND tip = BarTipWindow();
  SetForegroundWindow(window_);
  Hover(tool, ButtonCentre(tool, scan));
  ASSERT_TRUE(PumpUntil([&] { return Visible(tip); }, 3000));
  EXPECT_EQ(BarTipText(), "Scan HTML");

  // The databases bar names the slot and its database.
  std::strcpy(Settings().slotNames[2].data(), "Addresses.dat");
  RefreshDatabaseCaptions();
  DockBar& databases = DatabaseBarDescriptor();
  for (const auto& [slot, text] : {std::pair{2, "Database 3: Addresses.dat"}, std::pair{1, "Database 2: empty"}}) {
    Hover(databases, ButtonCentre(databases, slot));
    EXPECT_TRUE(PumpUntil([&, text = text] { return Visible(tip) && BarTipText() == text; }, 3000)) << BarTipText();
  }

  // Away from the bars the tip goes.
  const POINT below = ButtonCentre(databases, 1);
  PointerAt(databases.window, POINT{below.x, below.y + 200});
  EXPECT_TRUE(PumpUntil([&] { return !Visible(tip); }, 3000));
}

TEST_F(Bars, AButtonSendsItsCommandUnlessItIsGreyed) {
  DockBar& tool = ToolBarDescriptor();
  const int save = ButtonOf(tool, IDM_SAVE_DATABASE), help = ButtonOf(tool, IDM_HELP_TOPICS);
  ASSERT_FALSE(CommandAvailable(IDM_SAVE_DATABASE));  // nothing changed yet
  POINT p = ButtonCentre(tool, save);
  Mouse(tool, WM_LBUTTONDOWN, p);
  EXPECT_EQ(tool.held, -1);
  EXPECT_EQ(GetCapture(), nullptr);
  Mouse(tool, WM_LBUTTONUP, p);

  SetDatabaseChanged(true);
  Mouse(tool, WM_LBUTTONDOWN, p);
  EXPECT_EQ(tool.held, save);
  EXPECT_EQ(GetCapture(), tool.window);
  // Released away from the button: no command, the button comes up.
  Mouse(tool, WM_LBUTTONUP, POINT{p.x + 200, p.y});
  EXPECT_EQ(tool.held, -1);
  EXPECT_EQ(GetCapture(), nullptr);

  // Help Topics opens the help file, which this folder lacks: the help program (another
  // process) asks.
  p = ButtonCentre(tool, help);
  const auto click = [&] {
    Mouse(tool, WM_LBUTTONDOWN, p);
    Mouse(tool, WM_LBUTTONUP, p);
  };
  auto result = RunAnswered(click, {Press("No")}, ModalOptions{10000, true, {}});
  EXPECT_NE(result.seen[0].MessageText().find("QBHELP.HLP"), std::string::npos);
}

}  // namespace
}  // namespace qb::test
