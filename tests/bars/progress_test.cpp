// The progress strip's arithmetic: pixels per step carried exactly in decimal digits.
#include <gtest/gtest.h>

#include <vector>

#include "bars/progress.h"

namespace qb {
namespace {

struct PlanCase {
  int extent, steps;
  int perStep;
  std::array<int, 4> digits;
  std::vector<int> columns;  // painted by the first steps
};

const PlanCase kPlans[] = {
    // Half a pixel per step: a column every second step.
    {550, 1100, 0, {5, 0, 0, 0}, {0, 1, 0, 1, 0, 1}},
    // 183.3333 per step: the first step paints nothing, the carry shows at the fourth.
    {550, 3, 183, {3, 3, 3, 3}, {0, 183, 183, 184}},
    {10, 4, 2, {5, 0, 0, 0}, {0, 3, 2, 3, 2}},
    // A fifth decimal is lost: 1/7 = 0.142857...
    {1, 7, 0, {1, 4, 2, 8}, {0, 0, 0, 0, 0, 0, 0, 1}},
    {0, 5, 0, {0, 0, 0, 0}, {0, 0, 0}},
    {-6, 5, 0, {0, 0, 0, 0}, {0, 0}},
    // Large step counts do not overflow.
    {550, 2000000000, 0, {0, 0, 0, 0}, {0, 0}},
};

TEST(Progress, PlansAndStepsCarryEveryDigit) {
  // Room for text at the right, but only 16 pixels on a bar narrower than 171.
  EXPECT_EQ(ProgressExtent(171), 21);
  EXPECT_EQ(ProgressExtent(170), 154);
  for (const PlanCase& c : kPlans) {
    SCOPED_TRACE(std::to_string(c.extent) + " / " + std::to_string(c.steps));
    const ProgressPlan plan = PlanProgress(c.extent, c.steps);
    EXPECT_EQ(plan.perStep, c.perStep);
    EXPECT_EQ(plan.digits, c.digits);
    ProgressCounter counter;
    std::vector<int> columns;
    for (std::size_t i = 0; i < c.columns.size(); ++i) columns.push_back(counter.Step(plan));
    EXPECT_EQ(columns, c.columns);
  }
}

TEST(Progress, NPlusOneStepsCoverTheExtentWhenFourDecimalsAreExact) {
  for (const auto& [extent, steps] : {std::pair{550, 1100}, {550, 3}, {1234, 16}, {500, 20000}}) {
    const ProgressPlan plan = PlanProgress(extent, steps);
    ProgressCounter counter;
    int total = 0;
    for (int i = 0; i <= steps; ++i) total += counter.Step(plan);
    EXPECT_EQ(total, extent) << extent << " / " << steps;
  }
}

TEST(Progress, ColumnsRunToTheExtentAndStartOver) {
  ProgressColumn column;
  std::vector<int> painted;
  std::vector<bool> wrapped;
  for (int i = 0; i < 6; ++i) {
    painted.push_back(column.left());
    wrapped.push_back(column.Advance(5));
  }
  // E - 1 columns (0..E-2), then back to the start.
  EXPECT_EQ(painted, (std::vector<int>{0, 1, 2, 3, 0, 1}));
  EXPECT_EQ(wrapped, (std::vector<bool>{false, false, false, true, false, false}));
}

}  // namespace
}  // namespace qb
