// The main window's layout arithmetic: where the status bar, the docked bars and
// the two list views go in a client rectangle. Platform-free.
#pragma once

#include <array>
#include <optional>

#include "bars/dock_side.h"

namespace qb {

enum Arrangement : int { kHorizontal = 0, kVertical = 1 };

struct Box {
  int x = 0, y = 0, width = 0, height = 0;
  bool operator==(const Box& o) const {
    return x == o.x && y == o.y && width == o.width && height == o.height;
  }
};

struct BarPlacementInput {
  int side = kSideTop;
  int state = kBarDocked;
  int thickness = 0;
};

struct LayoutInput {
  int clientRight = 0;  // the client rectangle; left and top are 0
  int clientBottom = 0;
  bool statusShown = true;
  int statusHeight = 0;
  std::array<BarPlacementInput, 2> bars;  // the tool bar first, then the databases bar
  bool keysShown = true;
  bool linksShown = true;
  int arrangement = kHorizontal;
};

struct LayoutResult {
  std::optional<Box> status;
  std::array<std::optional<Box>, 2> bars;  // docked bars only
  std::optional<Box> keys;
  std::optional<Box> links;
};

// Where docked bar `index` (0 first, 1 second) goes, given the other bar.
Box PlaceDockedBar(const LayoutInput& in, int index);
LayoutResult ComputeLayout(const LayoutInput& in);

}  // namespace qb
