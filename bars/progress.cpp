#include "bars/progress.h"

#include <cassert>

namespace qb {

int ProgressExtent(int clientRight) {
  return clientRight < kProgressNarrowBelow ? clientRight - kProgressNarrowRoom
                                            : clientRight - kProgressTextRoom;
}

ProgressPlan PlanProgress(int extent, int steps) {
  assert(steps > 0);
  ProgressPlan plan;
  plan.extent = extent;
  if (extent <= 0 || steps <= 0) return plan;
  plan.perStep = extent / steps;
  long long rest = extent % steps;  // 10 * rest must not overflow for large N
  for (int& digit : plan.digits) {
    digit = static_cast<int>((10 * rest) / steps);
    rest = (10 * rest) % steps;
  }
  return plan;
}

int ProgressCounter::Step(const ProgressPlan& plan) {
  for (int i = kProgressDigits; i >= 1; --i) {
    acc_[i] += plan.digits[i - 1];
    if (acc_[i] >= 10) {
      acc_[i - 1] += 1;
      acc_[i] -= 10;
    }
  }
  int columns = 0;
  if (plan.perStep != 0) {
    columns = acc_[0] >= 1 ? acc_[0] : 0;
    acc_[0] = plan.perStep;
  } else if (acc_[0] > 0) {
    columns = 1;
    acc_[0] -= 1;
  }
  return columns;
}

bool ProgressColumn::Advance(int extent) {
  const int right = left_ + 1;
  if (extent - 1 > right) {
    ++left_;
    return false;
  }
  left_ = 0;
  return true;
}

}  // namespace qb
