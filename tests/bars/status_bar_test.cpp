// The status bar in the real main window: its text and the progress strip painted
// into it. The strip's arithmetic is the progress test's; here the window paints it.
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
  OpenWithStatusWidth(700);
  ProgressBegin(3);  // 183.33 columns a step
  EXPECT_EQ(CurrentProgressPlan().extent, 550);
  EXPECT_EQ(StatusText(), "");
  for (int i = 0; i < 2; ++i) ProgressStep();
  EXPECT_EQ(ProgressNextColumn(), 183);
  EXPECT_TRUE(Blue(182));
  EXPECT_FALSE(Blue(183));
  // 549 columns, then the strip starts over.
  for (int i = 0; i < 2; ++i) ProgressStep();
  EXPECT_EQ(ProgressNextColumn(), 1);
  EXPECT_TRUE(Blue(0));
  ProgressEnd();
  EXPECT_EQ(StatusText(), "Quellbarrow");
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
