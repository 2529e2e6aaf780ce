// The main window's layout, through the real windows: where the status bar, the
// docked bars and the two views go for each arrangement of bars and views.
#include "tests/support/main_window_fixture.h"

namespace qb::test {
namespace {

struct Box {
  int x, y, w, h;
};

enum Shown { kTool = 1, kDatabases = 2, kKeys = 4, kLinks = 8, kAll = 15 };

struct LayoutCase {
  const char* name;
  std::uint8_t toolSide, databaseSide;
  int shown;
  WORD arrangement;
  Box boxes[4];  // tool bar, databases bar, Keys view, Links view (when shown)
};

// The arithmetic is checked row by row in layout_math_test; these rows show the
// window feeding it: saved sides, bars and views hidden from the menu, the
// arrangement, and a saved side out of range read as the top.
const LayoutCase kCases[] = {
    {"tool bar left, databases bar top", kSideLeft, kSideTop, kAll, IDM_WINDOW_HORIZONTAL,
     {{0, 30, 30, 340}, {-4, 0, 706, 30}, {30, 30, 335, 340}, {365, 30, 335, 340}}},
    {"the hidden tool bar's room and the Keys view's go to the Links view", kSideTop, kSideBottom,
     kDatabases | kLinks, IDM_WINDOW_VERTICAL, {{}, {-4, 340, 706, 30}, {}, {0, 0, 700, 340}}},
    {"Keys view alone fills the room", kSideRight, 9, kAll & ~kLinks, IDM_WINDOW_HORIZONTAL,
     {{670, 30, 30, 340}, {-4, 0, 706, 30}, {0, 30, 670, 340}, {}}},
};

void ExpectAt(const RECT& r, const Box& b, const char* what) {
  EXPECT_EQ(Describe(r), Describe(RECT{b.x, b.y, b.x + b.w, b.y + b.h})) << what;
}

using Layouts = OpenMainWindowTest;

TEST_F(Layouts, PlacesBarsAndViewsForEachArrangement) {
  for (const LayoutCase& c : kCases) {
    SCOPED_TRACE(c.name);
    Settings().toolBarSide = c.toolSide;
    Settings().databaseBarSide = c.databaseSide;
    ASSERT_NE(Open(), nullptr);
    const int s = StatusBar().height;
    ASSERT_GT(s, 0);
    SetClientSize(700, 370 + s);  // 370 above the status bar
    RECT client;
    GetClientRect(window_, &client);
    ASSERT_EQ(Describe(client), Describe(RECT{0, 0, 700, 370 + s}));
    // "&Key window" hides the Links view, "&Link window" the Keys view.
    const WORD hide[] = {IDM_TOOL_BAR, IDM_DATABASES_BAR, IDM_LINK_WINDOW, IDM_KEY_WINDOW};
    for (int i = 0; i < 4; ++i)
      if (!(c.shown & 1 << i)) Command(hide[i]);
    Command(c.arrangement);

    ExpectAt(ChildRect(StatusBar().window), Box{0, 370, 700, s}, "status bar");
    const HWND windows[] = {ToolBarDescriptor().window, DatabaseBarDescriptor().window,
                            App().keysView, App().linksView};
    const char* names[] = {"tool bar", "databases bar", "Keys view", "Links view"};
    for (int i = 0; i < 4; ++i) {
      const bool shown = c.shown & 1 << i;
      EXPECT_EQ(Visible(windows[i]), shown) << names[i];
      if (shown) ExpectAt(ChildRect(windows[i]), c.boxes[i], names[i]);
    }
  }
}

TEST_F(Layouts, HiddenStatusBarGivesItsRoomToTheViews) {
  Command(IDM_STATUS_BAR);
  EXPECT_FALSE(Visible(StatusBar().window));
  EXPECT_EQ(ChildRect(App().keysView).bottom, 400);
  // Status texts wait while the bar is hidden.
  SetStatusText("while hidden");
  Command(IDM_STATUS_BAR);
  EXPECT_TRUE(Visible(StatusBar().window));
  EXPECT_EQ(StatusText(), "Quellbarrow");
  EXPECT_EQ(ChildRect(App().keysView).bottom, 400 - StatusBar().height);
}

TEST_F(Layouts, MinimizingLeavesTheLayoutAndTheSavedRectangleAlone) {
  const RECT keys = ChildRect(App().keysView);
  const WindowRect saved = Settings().windowRect;
  // Changes the next layout would show; minimizing must not show them.
  Settings().arrangement = kVertical;
  SetWindowPos(window_, nullptr, 33, 44, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  EXPECT_EQ(SendMessageA(window_, WM_SIZE, SIZE_MINIMIZED, 0), 0);
  EXPECT_EQ(Describe(ChildRect(App().keysView)), Describe(keys));
  EXPECT_EQ(Settings().windowRect.left, saved.left);

  SendMessageA(window_, WM_SIZE, kRelayoutRequest, 0);
  EXPECT_EQ(ChildRect(App().keysView).right, 700);  // vertical now
  EXPECT_EQ(Settings().windowRect.left, 33);
}

TEST_F(Layouts, SizeMessagesWaitWhileABarIsDragged) {
  ASSERT_TRUE(StartDrag(ToolBarDescriptor()));
  const RECT keys = ChildRect(App().keysView);
  SetClientSize(500, 300);
  EXPECT_EQ(Describe(ChildRect(App().keysView)), Describe(keys));

  // Dropped back at the top, and laid out for the new size.
  DropAt(POINT{200, 5});
  EXPECT_EQ(ChildRect(App().keysView).right, 250);
}

TEST_F(Layouts, OnTopCommandsOrderTheMainWindowAndKeepHiddenViewsHidden) {
  Command(IDM_KEY_WINDOW);  // Links view hidden
  Command(IDM_WINDOW_ONTOP);
  EXPECT_EQ(Settings().onTop, 1);
  EXPECT_TRUE(Topmost(window_));
  EXPECT_FALSE(Visible(App().linksView));
  EXPECT_TRUE(Visible(App().keysView));
  Command(IDM_WINDOW_NORMAL);
  EXPECT_EQ(Settings().onTop, 0);
  EXPECT_FALSE(Topmost(window_));
  EXPECT_FALSE(Visible(App().linksView));
}

}  // namespace
}  // namespace qb::test
