// The status bar in the real main window: its text and the progress strip painted
// into it.
#include "tests/app/main_window_fixture.h"

#include "resources/resource.h"

namespace qb::test {
namespace {

class Status : public MainWindowTest {
 protected:
  // Sizes the main window so that the status bar's client area is `width` wide.
  void StatusClientWidth(int width) {
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

TEST_F(Status, StartsWithTheProgramNameAndShowsTexts) {
  ASSERT_NE(Open(), nullptr);
  EXPECT_EQ(GetDlgCtrlID(StatusBar().window), IDC_STATUS_BAR);
  EXPECT_EQ(StatusText(), "Quellbarrow");
  SetStatusText("Scanning");
  EXPECT_EQ(StatusText(), "Scanning");
  SetStatusText(nullptr);
  EXPECT_EQ(StatusText(), "");
}

TEST_F(Status, HalfAPixelPerStepPaintsEverySecondStep) {
  ASSERT_NE(Open(), nullptr);
  StatusClientWidth(700);
  ProgressBegin(1100);
  EXPECT_EQ(CurrentProgressPlan().extent, 550);
  EXPECT_EQ(CurrentProgressPlan().perStep, 0);
  EXPECT_EQ(CurrentProgressPlan().digits[0], 5);
  EXPECT_EQ(StatusText(), "");
  ProgressStep();
  EXPECT_EQ(ProgressNextColumn(), 0);
  ProgressStep();
  EXPECT_EQ(ProgressNextColumn(), 1);
  EXPECT_TRUE(Blue(0));
  EXPECT_FALSE(Blue(1));
  for (int i = 0; i < 10; ++i) ProgressStep();
  EXPECT_EQ(ProgressNextColumn(), 6);
  EXPECT_TRUE(Blue(5));
  ProgressEnd();
  EXPECT_EQ(StatusText(), "Quellbarrow");
}

TEST_F(Status, WholePixelsPaintFromTheSecondStepWithTheCarryAtTheFourth) {
  ASSERT_NE(Open(), nullptr);
  StatusClientWidth(700);
  ProgressBegin(3);
  EXPECT_EQ(CurrentProgressPlan().perStep, 183);
  EXPECT_EQ(CurrentProgressPlan().digits, (std::array<int, 4>{3, 3, 3, 3}));
  ProgressStep();
  EXPECT_EQ(ProgressNextColumn(), 0);
  ProgressStep();
  EXPECT_EQ(ProgressNextColumn(), 183);
  EXPECT_TRUE(Blue(182));
  EXPECT_FALSE(Blue(183));
  ProgressStep();
  EXPECT_EQ(ProgressNextColumn(), 366);
  // 184 more: 549 columns fit (0..548), then the strip starts over at 0.
  ProgressStep();
  EXPECT_EQ(ProgressNextColumn(), 1);
  ProgressEnd();
}

TEST_F(Status, NarrowBarKeepsSixteenPixelsFree) {
  ASSERT_NE(Open(), nullptr);
  StatusClientWidth(160);
  ProgressBegin(10);
  EXPECT_EQ(CurrentProgressPlan().extent, 144);
  ProgressEnd();
}

TEST_F(Status, HiddenBarTakesNoProgress) {
  ASSERT_NE(Open(), nullptr);
  StatusClientWidth(700);
  ProgressBegin(7);
  ProgressStep();
  ProgressStep();
  ProgressEnd();
  const int column = ProgressNextColumn();
  Command(IDM_STATUS_BAR);
  ProgressBegin(3);
  ProgressStep();
  ProgressStep();
  EXPECT_EQ(CurrentProgressPlan().perStep, 78);  // still the plan of 550 / 7
  EXPECT_EQ(ProgressNextColumn(), column);
  ProgressEnd();
  Command(IDM_STATUS_BAR);
  EXPECT_EQ(StatusText(), "Quellbarrow");
}

}  // namespace
}  // namespace qb::test
