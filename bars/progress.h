// Arithmetic of the status bar's progress strip. The band grows one pixel column
// at a time; the pixels per step are an integer part and four decimal digits, and
// the digits are carried exactly by five accumulators, so N steps cover the extent
// up to the fifth decimal. Platform-free.
#pragma once

#include <array>

namespace qb {

constexpr int kProgressDigits = 4;
// Room kept free at the right of the strip for text, and the narrow-bar limit.
constexpr int kProgressTextRoom = 150;
constexpr int kProgressNarrowRoom = 16;
constexpr int kProgressNarrowBelow = 171;

struct ProgressPlan {
  int extent = 0;                          // E: pixels the band may cover
  int perStep = 0;                         // P: whole pixels per step
  std::array<int, kProgressDigits> digits{};  // D1..D4: tenths .. ten-thousandths
};

// E for a status bar whose client area ends at `clientRight`.
int ProgressExtent(int clientRight);
// P and D1..D4 of E / steps; all zero when E <= 0. `steps` must be positive.
ProgressPlan PlanProgress(int extent, int steps);

// The accumulators A0..A4 of a running strip.
class ProgressCounter {
 public:
  // Adds one step and returns how many columns to paint now. The first step
  // paints only carried pixels; each later one paints the P pixels prepared by the
  // step before, plus carries.
  int Step(const ProgressPlan& plan);

 private:
  std::array<int, kProgressDigits + 1> acc_{};
};

// Where the next one-pixel column goes: 0 .. E - 1, then back to 0.
class ProgressColumn {
 public:
  int left() const { return left_; }
  // Moves one column on; true when the strip was full and starts over at 0.
  bool Advance(int extent);

 private:
  int left_ = 0;
};

}  // namespace qb
