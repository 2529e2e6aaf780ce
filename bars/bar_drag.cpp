// Docking and dragging: the main window holds the capture while a bar is dragged by
// its grip; a frame shows where it would dock or float, and the drop docks or floats it.
#include "bars/dock_bar.h"

#include <algorithm>

#include "bars/dock_bar_parts.h"
#include "bars/status_bar.h"
#include "base/app_state.h"

namespace qb {

using namespace bar_detail;

namespace {

constexpr int kDockFrameWidth = 2;
constexpr int kFloatFrameWidth = 4;

RECT DockArea() {
  HWND main = App().mainWindow;
  RECT a;
  GetClientRect(main, &a);
  const StatusBarState& status = StatusBar();
  if (status.shown && status.window) a.bottom -= status.height;
  MapWindowPoints(main, nullptr, reinterpret_cast<POINT*>(&a), 2);
  return a;
}

// The side a bar dropped at `p` docks at: the nearest edge of the client area
// within the bar's thickness inside it or its layout value outside; -1 to float.
int DockTarget(const DockBar& bar, POINT p) {
  const RECT a = DockArea();
  const int snap = bar.layoutValue;
  if (p.x < a.left - snap || p.x >= a.right + snap || p.y < a.top - snap ||
      p.y >= a.bottom + snap)
    return -1;
  const int distance[4] = {p.y - a.top, a.bottom - 1 - p.y, p.x - a.left, a.right - 1 - p.x};
  int best = -1, bestDistance = bar.thickness;
  for (int side = kSideTop; side <= kSideRight; ++side) {
    if (distance[side] < bestDistance) {
      best = side;
      bestDistance = distance[side];
    }
  }
  return best;
}

RECT DockedFrame(int side, int thickness) {
  RECT a = DockArea();
  switch (side) {
    case kSideTop: a.bottom = a.top + thickness; break;
    case kSideBottom: a.top = a.bottom - thickness; break;
    case kSideLeft: a.right = a.left + thickness; break;
    default: a.left = a.right - thickness; break;
  }
  return a;
}

RECT FloatingFrame(const DockBar& bar, POINT p) {
  const SIZE s = FloatingWindowSize(bar);
  const int gx = std::min<int>(bar.grab.x, s.cx - 1);
  const int gy = std::min<int>(bar.grab.y, s.cy - 1);
  return RECT{p.x - gx, p.y - gy, p.x - gx + s.cx, p.y - gy + s.cy};
}

// The drag frame is a pop-up shaped as a hollow rectangle: drawing on the screen
// itself does not show over other windows everywhere.
void ShowDragFrame(DockBar& bar, const RECT& r, int width) {
  if (!bar.dragFrame) {
    HWND main = App().mainWindow;
    bar.dragFrame = CreateWindowExA(WS_EX_TOPMOST | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE,
                                    "static", "", WS_POPUP | SS_BLACKRECT, 0, 0, 0, 0, main,
                                    nullptr, InstanceOf(main), nullptr);
    if (!bar.dragFrame) return;
    bar.frameRect = RECT{};
    bar.frameWidth = 0;
  }
  if (EqualRect(&r, &bar.frameRect) && width == bar.frameWidth) return;
  const int w = r.right - r.left, h = r.bottom - r.top;
  HRGN outline = CreateRectRgn(0, 0, w, h);
  HRGN hole = CreateRectRgn(width, width, w - width, h - width);
  CombineRgn(outline, outline, hole, RGN_DIFF);
  DeleteObject(hole);
  SetWindowRgn(bar.dragFrame, outline, FALSE);  // the window owns the region now
  SetWindowPos(bar.dragFrame, HWND_TOPMOST, r.left, r.top, w, h,
               SWP_NOACTIVATE | SWP_SHOWWINDOW);
  bar.frameRect = r;
  bar.frameWidth = width;
}

}  // namespace

namespace bar_detail {

void HideDragFrame(DockBar& bar) {
  if (bar.dragFrame) DestroyWindow(bar.dragFrame);
  bar.dragFrame = nullptr;
}

}  // namespace bar_detail

void BeginBarDrag(DockBar& bar, POINT point) {
  bar.armed = false;
  bar.dragPending = false;
  HideTip(bar);
  MoveBarDrag(bar, point);
}

void MoveBarDrag(DockBar& bar, POINT point) {
  // Over a side the frame shows the docked bar; elsewhere the floating window,
  // which keeps the orientation of the side the bar was docked at.
  const int target = DockTarget(bar, point);
  if (target >= 0) ShowDragFrame(bar, DockedFrame(target, bar.thickness), kDockFrameWidth);
  else ShowDragFrame(bar, FloatingFrame(bar, point), kFloatFrameWidth);
}

void EndBarDrag(DockBar& bar, POINT point) {
  HideDragFrame(bar);
  bar.suppressPaint = false;
  const int target = DockTarget(bar, point);
  const bool wasDocked = IsDockedState(bar.state);
  if (target >= 0) {
    bar.previousSide = bar.side;
    bar.side = target;
    bar.state = kBarDocked;
    if (!wasDocked) RemakeBarWindow(bar);
  } else {
    const RECT f = FloatingFrame(bar, point);
    bar.floatPos = POINT{f.left, f.top};
    bar.floatPosKnown = true;
    bar.state = kBarFloating;
    if (wasDocked) {
      RemakeBarWindow(bar);
    } else {
      SetWindowPos(bar.window, nullptr, f.left, f.top, f.right - f.left, f.bottom - f.top,
                   SWP_NOZORDER | SWP_NOACTIVATE);
    }
  }
  if (bar.window) InvalidateRect(bar.window, nullptr, FALSE);
}

LRESULT OnBarMove(HWND window, UINT, WPARAM, LPARAM) {
  DockBar* bar = BarOfWindow(window);
  if (!bar || IsDockedState(bar->state)) return 0;
  RECT r;
  GetWindowRect(window, &r);
  bar->floatPos = POINT{r.left, r.top};
  bar->floatPosKnown = true;
  return 0;
}

}  // namespace qb
