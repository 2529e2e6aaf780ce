#include "app/layout_math.h"

namespace qb {

Box PlaceDockedBar(const LayoutInput& in, int index) {
  const BarPlacementInput& b = in.bars[index];
  const BarPlacementInput& o = in.bars[1 - index];
  const bool second = index == 1;
  const bool otherDocked = o.state == kBarDocked;
  const int s = in.statusShown ? in.statusHeight : 0;
  const int t = b.thickness;
  Box box;
  switch (b.side) {
    case kSideTop:
      box = {-kBarOverhangLeft, 0, in.clientRight + kBarOverhangLeft + kBarOverhangRight, t};
      if (second && otherDocked && o.side == kSideTop) box.y += o.thickness;
      break;
    case kSideBottom:
      box = {-kBarOverhangLeft, in.clientBottom - t - s,
             in.clientRight + kBarOverhangLeft + kBarOverhangRight, t};
      if (second && otherDocked && o.side == kSideBottom) box.y -= o.thickness;
      break;
    default: {  // left or right: yields to a top or bottom bar, whichever came first
      box = {0, 0, t, in.clientBottom - s};
      if (otherDocked && (o.side == kSideTop || o.side == kSideBottom)) {
        box.height -= o.thickness;
        if (o.side == kSideTop) box.y += o.thickness;
      }
      if (b.side == kSideLeft) {
        if (second && otherDocked && o.side == kSideLeft) box.x += o.thickness;
      } else {
        box.x = in.clientRight - t;
        if (second && otherDocked && o.side == kSideRight) box.x -= o.thickness;
      }
      break;
    }
  }
  return box;
}

LayoutResult ComputeLayout(const LayoutInput& in) {
  LayoutResult out;
  int left = 0, top = 0, right = in.clientRight, bottom = in.clientBottom;
  if (in.statusShown)
    out.status = Box{0, in.clientBottom - in.statusHeight, in.clientRight, in.statusHeight};
  for (int i = 0; i < 2; ++i) {
    const BarPlacementInput& b = in.bars[i];
    if (b.state != kBarDocked) continue;
    out.bars[i] = PlaceDockedBar(in, i);
    switch (b.side) {
      case kSideTop: top += b.thickness; break;
      case kSideBottom: bottom -= b.thickness; break;
      case kSideLeft: left += b.thickness; break;
      case kSideRight: right -= b.thickness; break;
      default: break;
    }
  }
  if (in.statusShown) bottom -= in.statusHeight;

  // Halves truncate: with an odd size the last row or column stays uncovered.
  const int w = right - left, h = bottom - top;
  const Box whole{left, top, w, h};
  const bool horizontal = in.arrangement != kVertical;
  if (in.keysShown) {
    if (!in.linksShown) out.keys = whole;
    else if (horizontal) out.keys = Box{left, top, w / 2, h};
    else out.keys = Box{left, top, w, h / 2};
  }
  if (in.linksShown) {
    if (!in.keysShown) out.links = whole;
    else if (horizontal) out.links = Box{left + w / 2, top, w / 2, h};
    else out.links = Box{left, top + h / 2, w, h / 2};
  }
  return out;
}

}  // namespace qb
