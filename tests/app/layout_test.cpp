// The main window's layout, through the real windows: where the status bar, the
// docked bars and the two views go for each arrangement of bars and views.
#include "tests/app/main_window_fixture.h"

#include "resources/resource.h"

namespace qb::test {
namespace {

struct Expect {
  int x, y, w, h;
};

RECT ToRect(const Expect& e) { return RECT{e.x, e.y, e.x + e.w, e.y + e.h}; }

class Layouts : public MainWindowTest {
 protected:
  void ExpectAt(HWND child, const Expect& e, const char* what) {
    const RECT r = ChildRect(child);
    EXPECT_TRUE(SameRect(r, ToRect(e))) << what << " at " << Describe(r) << ", expected "
                                        << Describe(ToRect(e));
  }
};

struct LayoutCase {
  const char* name;
  std::uint8_t toolSide, databaseSide;
  bool toolShown, databaseShown, keysShown, linksShown;
  WORD arrangement;
  int width, height;
  // Expected rectangles, given the status bar's height s.
  Expect (*tool)(int s);
  Expect (*database)(int s);
  Expect (*keys)(int s);
  Expect (*links)(int s);
};

const LayoutCase kCases[] = {
    {"both bars at the top", kSideTop, kSideTop, true, true, true, true, IDM_WINDOW_HORIZONTAL,
     700, 400,
     [](int) { return Expect{-4, 0, 706, 30}; },
     [](int) { return Expect{-4, 30, 706, 30}; },
     [](int s) { return Expect{0, 60, 350, 340 - s}; },
     [](int s) { return Expect{350, 60, 350, 340 - s}; }},
    {"tool bar left, databases bar top", kSideLeft, kSideTop, true, true, true, true,
     IDM_WINDOW_HORIZONTAL, 700, 400,
     [](int s) { return Expect{0, 30, 30, 400 - s - 30}; },
     [](int) { return Expect{-4, 0, 706, 30}; },
     [](int s) { return Expect{30, 30, 335, 370 - s}; },
     [](int s) { return Expect{365, 30, 335, 370 - s}; }},
    {"databases bar left yields to the tool bar at the top", kSideTop, kSideLeft, true, true,
     true, true, IDM_WINDOW_HORIZONTAL, 700, 400,
     [](int) { return Expect{-4, 0, 706, 30}; },
     [](int s) { return Expect{0, 30, 30, 400 - s - 30}; },
     [](int s) { return Expect{30, 30, 335, 370 - s}; },
     [](int s) { return Expect{365, 30, 335, 370 - s}; }},
    {"both at the bottom, the second above the first", kSideBottom, kSideBottom, true, true,
     true, true, IDM_WINDOW_VERTICAL, 700, 401,
     [](int s) { return Expect{-4, 401 - 30 - s, 706, 30}; },
     [](int s) { return Expect{-4, 401 - 60 - s, 706, 30}; },
     [](int s) { return Expect{0, 0, 700, (341 - s) / 2}; },
     [](int s) { return Expect{0, (341 - s) / 2, 700, (341 - s) / 2}; }},
    {"both at the right, the second inside the first", kSideRight, kSideRight, true, true, true,
     true, IDM_WINDOW_HORIZONTAL, 700, 400,
     [](int s) { return Expect{670, 0, 30, 400 - s}; },
     [](int s) { return Expect{640, 0, 30, 400 - s}; },
     [](int s) { return Expect{0, 0, 320, 400 - s}; },
     [](int s) { return Expect{320, 0, 320, 400 - s}; }},
    {"both at the left", kSideLeft, kSideLeft, true, true, true, true, IDM_WINDOW_HORIZONTAL,
     700, 400,
     [](int s) { return Expect{0, 0, 30, 400 - s}; },
     [](int s) { return Expect{30, 0, 30, 400 - s}; },
     [](int s) { return Expect{60, 0, 320, 400 - s}; },
     [](int s) { return Expect{380, 0, 320, 400 - s}; }},
    // An odd width leaves the last column uncovered.
    {"odd width, bars hidden", kSideTop, kSideTop, false, false, true, true,
     IDM_WINDOW_HORIZONTAL, 601, 400, nullptr, nullptr,
     [](int s) { return Expect{0, 0, 300, 400 - s}; },
     [](int s) { return Expect{300, 0, 300, 400 - s}; }},
    {"a hidden bar gives its room back", kSideTop, kSideTop, false, true, true, true,
     IDM_WINDOW_HORIZONTAL, 700, 400, nullptr,
     [](int) { return Expect{-4, 0, 706, 30}; },
     [](int s) { return Expect{0, 30, 350, 370 - s}; },
     [](int s) { return Expect{350, 30, 350, 370 - s}; }},
    {"Links view alone fills the room", kSideTop, kSideBottom, true, true, false, true,
     IDM_WINDOW_VERTICAL, 700, 400,
     [](int) { return Expect{-4, 0, 706, 30}; },
     [](int s) { return Expect{-4, 400 - 30 - s, 706, 30}; }, nullptr,
     [](int s) { return Expect{0, 30, 700, 340 - s}; }},
    {"Keys view alone fills the room", kSideRight, kSideTop, true, true, true, false,
     IDM_WINDOW_HORIZONTAL, 700, 400,
     [](int s) { return Expect{670, 30, 30, 370 - s}; },
     [](int) { return Expect{-4, 0, 706, 30}; },
     [](int s) { return Expect{0, 30, 670, 370 - s}; }, nullptr},
};

TEST_F(Layouts, PlacesBarsAndViewsForEachArrangement) {
  for (const LayoutCase& c : kCases) {
    SCOPED_TRACE(c.name);
    Settings().toolBarSide = c.toolSide;
    Settings().databaseBarSide = c.databaseSide;
    ASSERT_NE(Open(c.width, c.height), nullptr);
    if (!c.toolShown) Command(IDM_TOOL_BAR);
    if (!c.databaseShown) Command(IDM_DATABASES_BAR);
    if (!c.keysShown) Command(IDM_LINK_WINDOW);  // the items act on the other view
    if (!c.linksShown) Command(IDM_KEY_WINDOW);
    Command(c.arrangement);

    const int s = StatusBar().height;
    ASSERT_GT(s, 0);
    RECT client;
    GetClientRect(window_, &client);
    ASSERT_EQ(client.right, c.width);
    ASSERT_EQ(client.bottom, c.height);
    ExpectAt(StatusBar().window, Expect{0, c.height - s, c.width, s}, "status bar");
    if (c.tool) ExpectAt(ToolBarDescriptor().window, c.tool(s), "tool bar");
    EXPECT_EQ(IsWindowVisible(ToolBarDescriptor().window) != FALSE, c.toolShown);
    if (c.database) ExpectAt(DatabaseBarDescriptor().window, c.database(s), "databases bar");
    if (c.keys) ExpectAt(App().keysView, c.keys(s), "Keys view");
    EXPECT_EQ(IsWindowVisible(App().keysView) != FALSE, c.keysShown);
    if (c.links) ExpectAt(App().linksView, c.links(s), "Links view");
    EXPECT_EQ(IsWindowVisible(App().linksView) != FALSE, c.linksShown);
    DestroyWindow(window_);
    Drain();
  }
}

TEST_F(Layouts, HiddenStatusBarGivesItsRoomToTheViews) {
  ASSERT_NE(Open(), nullptr);
  Command(IDM_STATUS_BAR);
  EXPECT_FALSE(IsWindowVisible(StatusBar().window));
  EXPECT_FALSE(Checked(IDM_STATUS_BAR));
  EXPECT_EQ(ChildRect(App().keysView).bottom, 400);
  // Status texts wait while the bar is hidden.
  SetStatusText("while hidden");
  Command(IDM_STATUS_BAR);
  EXPECT_TRUE(IsWindowVisible(StatusBar().window));
  EXPECT_TRUE(Checked(IDM_STATUS_BAR));
  EXPECT_EQ(StatusText(), "Quellbarrow");
  EXPECT_EQ(ChildRect(StatusBar().window).top, 400 - StatusBar().height);
  EXPECT_EQ(ChildRect(App().keysView).bottom, 400 - StatusBar().height);
}

TEST_F(Layouts, MinimizingLeavesTheLayoutAndTheSavedRectangleAlone) {
  ASSERT_NE(Open(), nullptr);
  const RECT keys = ChildRect(App().keysView);
  const WindowRect saved = Settings().windowRect;
  // Changes the next layout would show; minimizing must not show them.
  Settings().arrangement = kVertical;
  SetWindowPos(window_, nullptr, 33, 44, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  EXPECT_EQ(SendMessageA(window_, WM_SIZE, SIZE_MINIMIZED, 0), 0);
  EXPECT_TRUE(SameRect(ChildRect(App().keysView), keys));
  EXPECT_EQ(Settings().windowRect.left, saved.left);

  SendMessageA(window_, WM_SIZE, kRelayoutRequest, 0);
  EXPECT_EQ(ChildRect(App().keysView).right, 700);  // vertical now
  EXPECT_EQ(Settings().windowRect.left, 33);
}

TEST_F(Layouts, SizeMessagesWaitWhileABarIsDragged) {
  ASSERT_NE(Open(), nullptr);
  DockBar& bar = ToolBarDescriptor();
  ASSERT_TRUE(StartDrag(bar));
  EXPECT_EQ(GetCapture(), window_);

  const RECT keys = ChildRect(App().keysView);
  SetClientSize(500, 300);
  EXPECT_TRUE(SameRect(ChildRect(App().keysView), keys));

  // Dropped back at the top: docked there again, and laid out for the new size.
  DropAt(POINT{200, 5});
  EXPECT_FALSE(Layout().dragging);
  EXPECT_EQ(GetCapture(), nullptr);
  EXPECT_EQ(bar.side, kSideTop);
  EXPECT_EQ(bar.state, kBarDocked);
  EXPECT_EQ(ChildRect(App().keysView).right, 250);
}

TEST_F(Layouts, ViewCommandsAreCrossedAndChecked) {
  ASSERT_NE(Open(), nullptr);
  SendMessageA(window_, WM_INITMENU, reinterpret_cast<WPARAM>(GetMenu(window_)), 0);
  EXPECT_TRUE(Checked(IDM_KEY_WINDOW));
  EXPECT_TRUE(Checked(IDM_LINK_WINDOW));

  Command(IDM_KEY_WINDOW);  // "&Key window" hides the Links view
  EXPECT_FALSE(Layout().linksShown);
  EXPECT_FALSE(IsWindowVisible(App().linksView));
  EXPECT_TRUE(IsWindowVisible(App().keysView));
  EXPECT_EQ(ChildRect(App().keysView).right, 700);
  SendMessageA(window_, WM_INITMENU, reinterpret_cast<WPARAM>(GetMenu(window_)), 0);
  EXPECT_FALSE(Checked(IDM_KEY_WINDOW));
  EXPECT_TRUE(Checked(IDM_LINK_WINDOW));

  Command(IDM_LINK_WINDOW);  // and "&Link window" the Keys view
  EXPECT_FALSE(IsWindowVisible(App().keysView));
  Command(IDM_KEY_WINDOW);
  EXPECT_TRUE(IsWindowVisible(App().linksView));
  EXPECT_TRUE(SameRect(ChildRect(App().linksView), RECT{0, 60, 700, 400 - StatusBar().height}));
}

TEST_F(Layouts, OnTopCommandsOrderTheMainWindowAndKeepHiddenViewsHidden) {
  ASSERT_NE(Open(), nullptr);
  Command(IDM_KEY_WINDOW);  // Links view hidden
  Command(IDM_WINDOW_ONTOP);
  EXPECT_EQ(Settings().onTop, 1);
  EXPECT_TRUE(GetWindowLongA(window_, GWL_EXSTYLE) & WS_EX_TOPMOST);
  EXPECT_FALSE(IsWindowVisible(App().linksView));
  EXPECT_TRUE(IsWindowVisible(App().keysView));
  SendMessageA(window_, WM_INITMENU, reinterpret_cast<WPARAM>(GetMenu(window_)), 0);
  EXPECT_TRUE(Checked(IDM_WINDOW_ONTOP));
  EXPECT_FALSE(Checked(IDM_WINDOW_NORMAL));

  Command(IDM_WINDOW_NORMAL);
  EXPECT_EQ(Settings().onTop, 0);
  EXPECT_FALSE(GetWindowLongA(window_, GWL_EXSTYLE) & WS_EX_TOPMOST);
  EXPECT_FALSE(IsWindowVisible(App().linksView));
}

}  // namespace
}  // namespace qb::test
