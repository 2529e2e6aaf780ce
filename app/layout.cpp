// The main window's layout (WM_SIZE), its part of a bar drag, and the reaction to
// changed system colours.
#include "app/layout.h"

#include <windowsx.h>

#include "app/frame.h"
#include "bars/dock_bar.h"
#include "bars/status_bar.h"
#include "base/app_state.h"
#include "base/frame_gdi.h"
#include "keys/key_list.h"

namespace qb {
namespace {

void MoveChild(HWND child, const Box& box, UINT flags = 0) {
  SetWindowPos(child, nullptr, box.x, box.y, box.width, box.height, SWP_NOZORDER | flags);
}

POINT ScreenPoint(HWND window, LPARAM lParam) {
  POINT p{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
  ClientToScreen(window, &p);
  return p;
}

}  // namespace

LayoutState& Layout() {
  static LayoutState state;
  return state;
}

LRESULT OnMainSize(HWND window, UINT, WPARAM sizeType, LPARAM) {
  LayoutState& layout = Layout();
  if (layout.dragging || sizeType == SIZE_MINIMIZED) return 0;

  RECT client;
  GetClientRect(window, &client);
  if (!IsZoomed(window)) {
    RECT r;
    GetWindowRect(window, &r);
    Settings().windowRect = WindowRect{r.left, r.top, r.right, r.bottom};
  }

  StatusBarState& status = StatusBar();
  if (status.shown && status.window) {
    RECT r;
    GetWindowRect(status.window, &r);
    status.height = r.bottom - r.top;
  }

  LayoutInput in;
  in.clientRight = client.right;
  in.clientBottom = client.bottom;
  in.statusShown = status.shown && status.window;
  in.statusHeight = status.height;
  for (int i = 0; i < 2; ++i) {
    const DockBar& bar = BarByIndex(i);
    in.bars[i] = BarPlacementInput{bar.side, bar.window ? bar.state : kBarDockedHidden,
                                   bar.thickness};
  }
  in.keysShown = layout.keysShown;
  in.linksShown = layout.linksShown;
  in.arrangement = static_cast<int>(Settings().arrangement);
  const LayoutResult out = ComputeLayout(in);

  if (out.status) MoveChild(status.window, *out.status, SWP_SHOWWINDOW);
  for (int i = 0; i < 2; ++i) {
    if (!out.bars[i]) continue;
    HWND bar = BarByIndex(i).window;
    MoveChild(bar, *out.bars[i], SWP_SHOWWINDOW);
    // Its buttons grey by the program's state, which may have changed meanwhile.
    InvalidateRect(bar, nullptr, FALSE);
  }
  const AppState& app = App();
  if (out.keys && app.keysView) MoveChild(app.keysView, *out.keys);
  if (out.links && app.linksView) MoveChild(app.linksView, *out.links);
  return 0;
}

LRESULT OnMainTimer(HWND window, UINT, WPARAM id, LPARAM) {
  if (id != kToolBarTimerId && id != kDatabaseBarTimerId) return 0;
  // The bar asked for the drag; the main window holds the mouse from here on.
  KillTimer(window, id);
  ReleaseCapture();
  SetCapture(window);
  LayoutState& layout = Layout();
  layout.dragging = true;
  layout.draggedBar = static_cast<int>(id - kToolBarTimerId);
  DockBar& bar = BarByIndex(layout.draggedBar);
  bar.suppressPaint = false;
  POINT cursor;
  GetCursorPos(&cursor);
  BeginBarDrag(bar, cursor);
  return 0;
}

LRESULT OnMainMouseMove(HWND window, UINT, WPARAM, LPARAM lParam) {
  const LayoutState& layout = Layout();
  if (layout.dragging) {
    MoveBarDrag(BarByIndex(layout.draggedBar), ScreenPoint(window, lParam));
  } else if (KeyDragInProgress()) {
    MoveKeyDrag(ScreenPoint(window, lParam));
  }
  return 0;
}

LRESULT OnMainLButtonUp(HWND window, UINT, WPARAM, LPARAM lParam) {
  LayoutState& layout = Layout();
  if (!layout.dragging) {
    if (KeyDragInProgress()) DropKey(ScreenPoint(window, lParam));
    return 0;
  }
  EndBarDrag(BarByIndex(layout.draggedBar), ScreenPoint(window, lParam));
  ReleaseCapture();
  layout.dragging = false;
  RequestRelayout(window);
  return 0;
}

// A drag keeps the mouse even if something took the capture meanwhile.
LRESULT OnMainRecapture(HWND window, UINT, WPARAM, LPARAM) {
  if (Layout().dragging) SetCapture(window);
  return 0;
}

// A key drag that loses the mouse other than by its drop (Esc, another window
// taking it) ends without moving anything.
LRESULT OnMainCaptureChanged(HWND window, UINT, WPARAM, LPARAM newCapture) {
  if (reinterpret_cast<HWND>(newCapture) != window) CancelKeyDrag();
  return 0;
}

LRESULT OnMainRButtonDown(HWND, UINT, WPARAM, LPARAM) { return 0; }

LRESULT OnSysColorChange(HWND window, UINT, WPARAM, LPARAM) {
  UpdateCaptionMetrics(App().windowsVersion);
  ResizeFloatingBars();
  RefreshFrameColours();
  // Child windows hear of the change only from their parent.
  for (HWND child : {StatusBar().window, App().keysView, App().linksView})
    if (child) SendMessageA(child, WM_SYSCOLORCHANGE, 0, 0);
  RefreshDatabaseCaptions();
  RequestRelayout(window);
  return 0;
}

}  // namespace qb
