// The status bar in the real main window: its text and the progress strip painted
// into it.
#include "tests/support/main_window_fixture.h"

namespace qb::test {
namespace {

class Status : public MainWindowTest {
 protected:
  // Opens the main window sized so that the status bar's client area is `width` wide.
  void OpenWithStatusWidth(int width) {
    ASSERT_NE(Open(), nullptr);
    RECT outer, inner;
    GetWindowRect(StatusBar().window, &outer);
    GetClientRect(StatusBar().window, &inner);
    SetClientSize(width + (outer.right - outer.left) - inner.right, 400);
    GetClientRect(StatusBar().window, &inner);
    ASSERT_EQ(inner.right, width);
  }

  bool Blue(int x) {
    HDC dc = GetDC(StatusBar().window);
    const COLORREF c = GetPixel(dc, x, StatusBar().height / 2);
    ReleaseDC(StatusBar().window, dc);
    return c == RGB(0, 0, 255);
  }
};

TEST_F(Status, StripIsPaintedColumnByColumnWithinItsExtent) {
  const struct {
    const char* name;
    int width, steps, extent;
    int taken, next;  // after `taken` steps the next column is `next`
    bool edge;        // columns from `next` on are still unpainted
  } cases[] = {
      {"half a pixel per step", 700, 1100, 550, 12, 6, true},
      {"whole pixels from the second step", 700, 3, 550, 2, 183, true},
      {"549 columns, then the strip starts over", 700, 3, 550, 4, 1, false},
      {"a narrow bar keeps sixteen pixels free", 160, 10, 144, 0, 0, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    OpenWithStatusWidth(c.width);
    ProgressBegin(c.steps);
    EXPECT_EQ(CurrentProgressPlan().extent, c.extent);
    EXPECT_EQ(StatusText(), "");
    for (int i = 0; i < c.taken; ++i) ProgressStep();
    EXPECT_EQ(ProgressNextColumn(), c.next);
    if (c.next > 0) {
      EXPECT_TRUE(Blue(c.next - 1));
    }
    if (c.edge) {
      EXPECT_FALSE(Blue(c.next));
    }
    ProgressEnd();
    EXPECT_EQ(StatusText(), "Quellbarrow");
  }
}

TEST_F(Status, HiddenBarTakesNoProgress) {
  OpenWithStatusWidth(700);
  ProgressBegin(7);
  for (int i = 0; i < 2; ++i) ProgressStep();
  ProgressEnd();
  const int column = ProgressNextColumn();
  Command(IDM_STATUS_BAR);
  ProgressBegin(3);
  for (int i = 0; i < 2; ++i) ProgressStep();
  EXPECT_EQ(CurrentProgressPlan().perStep, 78);  // still the plan of 550 / 7
  EXPECT_EQ(ProgressNextColumn(), column);
  ProgressEnd();
  Command(IDM_STATUS_BAR);
  EXPECT_EQ(StatusText(), "Quellbarrow");
}

}  // namespace
}  // namespace qb::test
