// Buttons, hot tracking and tool tips: where each button stands, what the pointer
// is over, the press that sends a command, and the tip that shows after a pause.
#include "bars/dock_bar.h"

#include <windowsx.h>

#include <algorithm>
#include <cstdlib>

#include "bars/bar_paint.h"
#include "bars/dock_bar_parts.h"
#include "base/app_state.h"
#include "base/frame_gdi.h"

namespace qb {

using namespace bar_detail;

namespace {

constexpr UINT kTipTimerId = 1;
constexpr DWORD kTipDelayMs = 600;
constexpr UINT kTipPollMs = 100;
constexpr int kTipPadX = 4;
constexpr int kTipPadY = 2;
constexpr int kTipGap = 2;
constexpr UINT kDragStartMs = USER_TIMER_MINIMUM;

HWND g_tip = nullptr;
std::string g_tipText;  // a white-rectangle static keeps no text of its own
DWORD g_hotSince = 0;

int HitButton(const DockBar& bar, POINT p) {
  const std::vector<RECT> rects = BarButtonRects(bar);
  for (int i = 0; i < static_cast<int>(rects.size()); ++i)
    if (!IsSeparator(bar, i) && PtInRect(&rects[i], p)) return i;
  return -1;
}

RECT ButtonRect(const DockBar& bar, int i) {
  const std::vector<RECT> rects = BarButtonRects(bar);
  return i >= 0 && i < static_cast<int>(rects.size()) ? rects[i] : RECT{};
}

void InvalidateButton(const DockBar& bar, int i) {
  if (i < 0 || !bar.window) return;
  const RECT r = ButtonRect(bar, i);
  InvalidateRect(bar.window, &r, FALSE);
}

void DrawTip() {
  if (!g_tip) return;
  RECT r;
  GetClientRect(g_tip, &r);
  HDC dc = GetDC(g_tip);
  HBRUSH back = Gdi().lightYellowBrush ? Gdi().lightYellowBrush : GetSysColorBrush(COLOR_INFOBK);
  FillRect(dc, &r, back);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, GetSysColor(COLOR_INFOTEXT));
  HGDIOBJ oldFont = SelectObject(dc, BarFont());
  DrawTextA(dc, g_tipText.c_str(), static_cast<int>(g_tipText.size()), &r,
            DT_SINGLELINE | DT_CENTER | DT_VCENTER | DT_NOPREFIX);
  SelectObject(dc, oldFont);
  ReleaseDC(g_tip, dc);
}

void ShowTip(DockBar& bar, int i) {
  if (!g_tip) return;
  g_tipText = bar.kind->tipText ? bar.kind->tipText(i) : std::string(bar.kind->buttons[i].tip);
  const std::string& text = g_tipText;
  HDC dc = GetDC(g_tip);
  HGDIOBJ oldFont = SelectObject(dc, BarFont());
  SIZE extent{};
  GetTextExtentPoint32A(dc, text.c_str(), static_cast<int>(text.size()), &extent);
  SelectObject(dc, oldFont);
  ReleaseDC(g_tip, dc);
  const int w = extent.cx + 2 * kTipPadX + 2 * GetSystemMetrics(SM_CXBORDER);
  const int h = extent.cy + 2 * kTipPadY + 2 * GetSystemMetrics(SM_CYBORDER);

  RECT button = ButtonRect(bar, i);
  MapWindowPoints(bar.window, nullptr, reinterpret_cast<POINT*>(&button), 2);
  POINT cursor;
  GetCursorPos(&cursor);
  const int screenW = GetSystemMetrics(SM_CXSCREEN), screenH = GetSystemMetrics(SM_CYSCREEN);
  int x = std::min<int>(cursor.x, screenW - w);
  int y = button.bottom + kTipGap;
  if (y + h > screenH) y = button.top - kTipGap - h;
  SetWindowPos(g_tip, HWND_TOPMOST, std::max(0, x), y, w, h,
               SWP_NOACTIVATE | SWP_SHOWWINDOW);
  UpdateWindow(g_tip);  // the static paints itself first; the tip goes over it
  DrawTip();
  bar.tipButton = i;
}

void SetHot(DockBar& bar, int i) {
  if (bar.hot == i) return;
  InvalidateButton(bar, bar.hot);
  bar.hot = i;
  InvalidateButton(bar, i);
  HideTip(bar);
  if (i >= 0) {
    g_hotSince = GetTickCount();
    SetTimer(bar.window, kTipTimerId, kTipPollMs, nullptr);
  } else {
    KillTimer(bar.window, kTipTimerId);
  }
}

void Disarm(DockBar& bar) {
  if (bar.dragPending) KillTimer(App().mainWindow, bar.timerId);
  bar.armed = false;
  bar.dragPending = false;
  bar.suppressPaint = false;
  if (GetCapture() == bar.window) ReleaseCapture();
}

}  // namespace

namespace bar_detail {

// Where the bar's content starts along its long side: a docked horizontal bar
// hides its first pixels under the main window's left edge.
int VisibleStart(const DockBar& bar) {
  return IsDockedState(bar.state) && IsHorizontal(bar) ? kBarOverhangLeft : 0;
}

int ButtonLength(const DockBar& bar, int i) {
  if (IsSeparator(bar, i)) return kSeparatorLength;
  if (bar.kind->label && IsHorizontal(bar))
    return kButtonSize + kLabelGap + bar.labelWidths[RowOfButton(i)] + kImageInset;
  return kButtonSize;
}

void HideTip(DockBar& bar) {
  if (bar.tipButton < 0) return;
  bar.tipButton = -1;
  if (g_tip) ShowWindow(g_tip, SW_HIDE);
}

}  // namespace bar_detail

void SetBarTipWindow(HWND tip) { g_tip = tip; }
HWND BarTipWindow() { return g_tip; }
const std::string& BarTipText() { return g_tipText; }

std::vector<RECT> BarButtonRects(const DockBar& bar) {
  std::vector<RECT> rects;
  if (!bar.window || !bar.kind) return rects;
  RECT client;
  GetClientRect(bar.window, &client);
  const bool horizontal = IsHorizontal(bar);
  const int across = horizontal ? client.bottom : client.right;
  const int start = (across - kButtonSize) / 2;
  int along = VisibleStart(bar) + kGripRoom;
  for (int i = 0; i < bar.kind->count; ++i) {
    const int length = ButtonLength(bar, i);
    if (horizontal) rects.push_back(RECT{along, start, along + length, start + kButtonSize});
    else rects.push_back(RECT{start, along, start + kButtonSize, along + length});
    along += length;
  }
  return rects;
}

RECT BarGripRect(const DockBar& bar) {
  RECT client{};
  if (bar.window) GetClientRect(bar.window, &client);
  const int from = VisibleStart(bar) + kGripOffset;
  const int length = 2 * kGripBarWidth + kGripGap;
  if (IsHorizontal(bar)) return RECT{from, kGripInset, from + length, client.bottom - kGripInset};
  return RECT{kGripInset, from, client.right - kGripInset, from + length};
}

void PressDatabaseButton(int number) {
  DockBar& bar = DatabaseBarDescriptor();
  if (number < 1 || number >= kBarButtonRows) return;
  ButtonRow& row = bar.rows[number];
  row.pressed = true;
  for (std::uint8_t other : row.releases)
    if (other != 0 && other < kBarButtonRows) bar.rows[other].pressed = false;
  if (bar.window) InvalidateRect(bar.window, nullptr, FALSE);
}

void RefreshDatabaseCaptions() {
  DockBar& bar = DatabaseBarDescriptor();
  if (!bar.kind || !bar.kind->label) return;
  HDC dc = GetDC(bar.window);
  HGDIOBJ oldFont = SelectObject(dc, BarFont());
  for (int i = 0; i < bar.kind->count; ++i) {
    const std::string label = bar.kind->label(i);
    SIZE extent{};
    GetTextExtentPoint32A(dc, label.c_str(), static_cast<int>(label.size()), &extent);
    bar.labelWidths[RowOfButton(i)] = std::clamp<int>(extent.cx, kLabelMin, kLabelMax);
  }
  SelectObject(dc, oldFont);
  ReleaseDC(bar.window, dc);
  if (!IsDockedState(bar.state) && bar.window) {
    const SIZE s = FloatingWindowSize(bar);
    SetWindowPos(bar.window, nullptr, 0, 0, s.cx, s.cy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  }
  if (bar.window) InvalidateRect(bar.window, nullptr, FALSE);
}

LRESULT OnBarMouseMove(HWND window, UINT, WPARAM, LPARAM lParam) {
  DockBar* bar = BarOfWindow(window);
  if (!bar) return 0;
  const POINT p{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
  // A press lasts while the bar holds the mouse; something else may have taken it.
  const bool captured = GetCapture() == window;
  if (bar->armed) {
    if (!captured) {
      Disarm(*bar);
      return 0;
    }
    POINT s = p;
    ClientToScreen(window, &s);
    if (!bar->dragPending && (std::abs(s.x - bar->pressScreen.x) > GetSystemMetrics(SM_CXDRAG) ||
                              std::abs(s.y - bar->pressScreen.y) > GetSystemMetrics(SM_CYDRAG))) {
      // The main window takes the drag over when this timer fires.
      SetTimer(App().mainWindow, bar->timerId, kDragStartMs, nullptr);
      bar->dragPending = true;
    }
    return 0;
  }
  if (bar->held >= 0) {
    if (!captured) {
      InvalidateButton(*bar, bar->held);
      bar->held = -1;
      return 0;
    }
    const bool inside = HitButton(*bar, p) == bar->held;
    if (inside != bar->heldInside) {
      bar->heldInside = inside;
      InvalidateButton(*bar, bar->held);
    }
    return 0;
  }
  SetHot(*bar, HitButton(*bar, p));
  return 0;
}

LRESULT OnBarLButtonDown(HWND window, UINT, WPARAM, LPARAM lParam) {
  DockBar* bar = BarOfWindow(window);
  if (!bar) return 0;
  const POINT p{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
  HideTip(*bar);
  const int hit = HitButton(*bar, p);
  if (hit >= 0) {
    if (!BarCommandAvailable(CommandOf(*bar, hit))) return 0;
    bar->held = hit;
    bar->heldInside = true;
    SetCapture(window);
    InvalidateButton(*bar, hit);
    return 0;
  }
  // Pressed on the grip or between buttons: moving on starts a drag.
  SetHot(*bar, -1);
  bar->armed = true;
  bar->dragPending = false;
  bar->suppressPaint = true;
  bar->pressScreen = p;
  ClientToScreen(window, &bar->pressScreen);
  RECT wr;
  GetWindowRect(window, &wr);
  bar->grab = POINT{bar->pressScreen.x - wr.left, bar->pressScreen.y - wr.top};
  SetCapture(window);
  return 0;
}

LRESULT OnBarLButtonUp(HWND window, UINT, WPARAM, LPARAM lParam) {
  DockBar* bar = BarOfWindow(window);
  if (!bar) return 0;
  if (bar->armed) {
    Disarm(*bar);
    return 0;
  }
  if (bar->held < 0) return 0;
  const POINT p{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
  const int index = bar->held;
  const bool inside = HitButton(*bar, p) == index;
  bar->held = -1;
  if (GetCapture() == window) ReleaseCapture();
  InvalidateButton(*bar, index);
  const WORD command = CommandOf(*bar, index);
  if (inside && BarCommandAvailable(command))
    SendMessageA(App().mainWindow, WM_COMMAND, MAKEWPARAM(command, 0),
                 reinterpret_cast<LPARAM>(window));
  return 0;
}

LRESULT OnBarTimer(HWND window, UINT, WPARAM id, LPARAM) {
  DockBar* bar = BarOfWindow(window);
  if (!bar || id != kTipTimerId) return 0;
  if (bar->held >= 0 || bar->armed) return 0;
  POINT cursor;
  GetCursorPos(&cursor);
  int hit = -1;
  if (WindowFromPoint(cursor) == window) {
    POINT p = cursor;
    ScreenToClient(window, &p);
    hit = HitButton(*bar, p);
  }
  if (hit != bar->hot) {
    SetHot(*bar, hit);
  } else if (hit >= 0 && bar->tipButton != hit) {
    if (GetTickCount() - g_hotSince >= kTipDelayMs) ShowTip(*bar, hit);
  } else if (bar->tipButton >= 0) {
    DrawTip();  // anything that repainted the static wiped the text
  }
  return 0;
}

}  // namespace qb
