#include "bars/dock_bar.h"

#include "bars/bar_paint.h"

#include <windowsx.h>

#include <algorithm>
#include <cstdlib>

#include "app/app_state.h"
#include "app/dispatch.h"
#include "app/frame_gdi.h"
#include "app/layout.h"
#include "app/menu_state.h"
#include "bars/status_bar.h"

namespace qb {
namespace {

constexpr int kSeparatorLength = 8;
constexpr int kGripOffset = 3;  // from the visible start of the bar to its grip
constexpr int kGripInset = 4;   // across: grip ends this far from the bar's edges
constexpr int kGripRoom = 13;   // from the visible start to the first button
constexpr int kTailRoom = 8;
constexpr int kLabelMin = 24;  // caption room of a databases button, pixels
constexpr int kLabelMax = 72;

constexpr UINT kTipTimerId = 1;
constexpr DWORD kTipDelayMs = 600;
constexpr UINT kTipPollMs = 100;
constexpr int kTipPadX = 4;
constexpr int kTipPadY = 2;
constexpr int kTipGap = 2;
constexpr UINT kDragStartMs = USER_TIMER_MINIMUM;
constexpr int kDockFrameWidth = 2;
constexpr int kFloatFrameWidth = 4;

const CommandRow kBarCommands[] = {
    {0, nullptr},  // a bar has no commands of its own
};
const CommandMap kBarCommandMap = MakeCommandMap(kBarCommands, kDefaultWindowProc);

HWND g_tip = nullptr;
std::string g_tipText;  // a white-rectangle static keeps no text of its own
DWORD g_hotSince = 0;
CaptionMetrics g_captions;

bool IsDockedState(int state) { return state == kBarDockedHidden || state == kBarDocked; }
bool IsShownState(int state) { return state == kBarDocked || state == kBarFloating; }
WORD CommandOf(const DockBar& bar, int i) { return bar.kind->buttons[i].command; }

HINSTANCE InstanceOf(HWND window) {
  return reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(window, GWLP_HINSTANCE));
}

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

// ---- tool tips ----

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

void HideTip(DockBar& bar) {
  if (bar.tipButton < 0) return;
  bar.tipButton = -1;
  if (g_tip) ShowWindow(g_tip, SW_HIDE);
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

// ---- windows ----

bool MakeBarWindow(DockBar& bar, HWND main) {
  HINSTANCE instance = InstanceOf(main);
  bar.hot = bar.held = bar.tipButton = -1;
  bar.armed = bar.dragPending = bar.suppressPaint = false;
  if (IsDockedState(bar.state)) {
    const DWORD style = WS_CHILD | WS_CLIPSIBLINGS | (bar.state == kBarDocked ? WS_VISIBLE : 0);
    bar.window = CreateWindowExA(0, bar.className, "", style, 0, 0, 0, 0, main, nullptr,
                                 instance, nullptr);
    return bar.window != nullptr;
  }
  const SIZE size = FloatingWindowSize(bar);
  if (!bar.floatPosKnown) {
    RECT r;
    GetWindowRect(main, &r);
    bar.floatPos = POINT{r.left + 40, r.top + 80};
    bar.floatPosKnown = true;
  }
  // A small caption without an icon, and no button on the task bar.
  bar.window = CreateWindowExA(WS_EX_TOOLWINDOW, bar.className, bar.kind->caption,
                               WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPSIBLINGS,
                               bar.floatPos.x, bar.floatPos.y, size.cx, size.cy, main, nullptr,
                               instance, nullptr);
  if (bar.window && bar.state == kBarFloating) ShowWindow(bar.window, SW_SHOWNOACTIVATE);
  return bar.window != nullptr;
}

void RemakeBarWindow(DockBar& bar) {
  HideTip(bar);
  HWND old = bar.window;
  bar.window = nullptr;
  if (old) DestroyWindow(old);
  MakeBarWindow(bar, App().mainWindow);
}

// ---- drag ----

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

void HideDragFrame(DockBar& bar) {
  if (bar.dragFrame) DestroyWindow(bar.dragFrame);
  bar.dragFrame = nullptr;
}

}  // namespace

DockBar& ToolBarDescriptor() {
  static DockBar bar;
  return bar;
}

DockBar& DatabaseBarDescriptor() {
  static DockBar bar;
  return bar;
}

void ResetBarDescriptor(DockBar& bar, const char* className, UINT timerId, int layoutValue,
                        std::uint8_t side, const BarKind* kind) {
  bar = DockBar{};
  bar.thickness = kBarThickness;
  bar.className = className;
  bar.timerId = timerId;
  bar.layoutValue = layoutValue;
  // A side byte out of range (a foreign settings file) docks at the top.
  bar.side = bar.previousSide = side <= kSideRight ? static_cast<int>(side) : kSideTop;
  bar.state = kBarDocked;
  bar.kind = kind;
}

bool RegisterBarClass(HINSTANCE instance, const char* className, WNDPROC procedure) {
  WNDCLASSA wc{};
  wc.lpfnWndProc = procedure;
  wc.hInstance = instance;
  wc.hCursor = LoadCursor(nullptr, IDC_ARROW);
  wc.lpszClassName = className;
  return RegisterClassA(&wc) != 0;
}

DockBar& BarByIndex(int index) { return index == 0 ? ToolBarDescriptor() : DatabaseBarDescriptor(); }

DockBar* BarOfWindow(HWND window) {
  if (!window) return nullptr;
  if (ToolBarDescriptor().window == window) return &ToolBarDescriptor();
  if (DatabaseBarDescriptor().window == window) return &DatabaseBarDescriptor();
  return nullptr;
}

bool CreateBar(DockBar& bar, HWND main, int imagesId, int maskId) {
  BarPictures p = LoadBarPictures(InstanceOf(main), imagesId, maskId);
  if (!p.colour) return false;
  bar.images = p.colour;
  bar.mask = p.mask;
  bar.emboss = p.emboss;
  bar.imageCount = p.count;
  if (!MakeBarWindow(bar, main)) {
    DestroyBar(bar);
    return false;
  }
  return true;
}

void DestroyBar(DockBar& bar) {
  HideTip(bar);
  HideDragFrame(bar);
  if (bar.window && IsWindow(bar.window)) DestroyWindow(bar.window);
  bar.window = nullptr;
  for (HBITMAP* b : {&bar.images, &bar.mask, &bar.emboss}) {
    if (*b) DeleteObject(*b);
    *b = nullptr;
  }
  bar.imageCount = 0;
}

void SetBarTipWindow(HWND tip) { g_tip = tip; }
HWND BarTipWindow() { return g_tip; }
const std::string& BarTipText() { return g_tipText; }

void ToggleBar(DockBar& bar, HWND main, WORD menuId, WORD code) {
  const UINT keep = SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE;
  switch (bar.state) {
    case kBarDockedHidden:
      bar.state = kBarDocked;
      SetWindowPos(bar.window, nullptr, 0, 0, 0, 0, keep | SWP_NOZORDER | SWP_SHOWWINDOW);
      break;
    case kBarDocked:
      bar.state = kBarDockedHidden;
      SetWindowPos(bar.window, nullptr, 0, 0, 0, 0, keep | SWP_NOZORDER | SWP_HIDEWINDOW);
      break;
    case kBarFloatingHidden:
      bar.state = kBarFloating;
      SetWindowPos(bar.window, HWND_TOPMOST, 0, 0, 0, 0, keep | SWP_SHOWWINDOW);
      break;
    case kBarFloating:
      bar.state = kBarFloatingHidden;
      SetWindowPos(bar.window, nullptr, 0, 0, 0, 0, keep | SWP_NOZORDER | SWP_HIDEWINDOW);
      break;
    default:
      break;
  }
  HideTip(bar);
  CheckMenuItem(GetMenu(main), menuId,
                MF_BYCOMMAND | (IsShownState(bar.state) ? MF_CHECKED : MF_UNCHECKED));
  if (code != kInternalCommand) RequestRelayout(main);
}

bool IsHorizontal(const DockBar& bar) { return bar.side == kSideTop || bar.side == kSideBottom; }
bool IsDocked(const DockBar& bar) { return IsDockedState(bar.state); }
bool IsSeparator(const DockBar& bar, int i) { return bar.kind->buttons[i].command == 0; }

int LongSideLength(const DockBar& bar) {
  int length = kGripRoom + kTailRoom;
  for (int i = 0; i < bar.kind->count; ++i) length += ButtonLength(bar, i);
  return length;
}

const CaptionMetrics& BarCaptions() { return g_captions; }

void UpdateCaptionMetrics(DWORD windowsVersion) {
  CaptionMetrics& c = g_captions;
  c.fullCaption = GetSystemMetrics(SM_CYCAPTION);
  c.smallCaption = GetSystemMetrics(SM_CYSMCAPTION) + GetSystemMetrics(SM_CXFRAME);
  c.frameX = GetSystemMetrics(SM_CXFRAME);
  c.frameY = GetSystemMetrics(SM_CYFRAME);
  const bool nt = (windowsVersion & 0x80000000u) == 0;
  const int major = LOBYTE(LOWORD(windowsVersion));
  c.floatingCaption = nt || major < 4 ? c.fullCaption : c.smallCaption;
}

SIZE FloatingWindowSize(const DockBar& bar) {
  const int t = bar.thickness, length = LongSideLength(bar), caption = g_captions.floatingCaption;
  if (!IsHorizontal(bar)) return SIZE{t + 4, length + caption};
  return SIZE{length + 8, t + caption};
}

void ResizeFloatingBars() {
  for (int i = 0; i < 2; ++i) {
    DockBar& bar = BarByIndex(i);
    if (IsDockedState(bar.state) || !bar.window) continue;
    const SIZE s = FloatingWindowSize(bar);
    SetWindowPos(bar.window, nullptr, 0, 0, s.cx, s.cy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    if (bar.state == kBarFloatingHidden) ShowWindow(bar.window, SW_HIDE);
  }
}

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

LRESULT OnBarCommandMessage(HWND window, UINT, WPARAM wParam, LPARAM lParam) {
  return LookupCommand(kBarCommandMap, window, wParam, lParam);
}

LRESULT OnBarCreate(HWND, UINT, WPARAM, LPARAM) { return 0; }

LRESULT OnBarPaint(HWND window, UINT, WPARAM, LPARAM) {
  PAINTSTRUCT ps;
  HDC dc = BeginPaint(window, &ps);
  DockBar* bar = BarOfWindow(window);
  RECT client;
  GetClientRect(window, &client);
  if (bar && bar->kind && client.right > 0 && client.bottom > 0) {
    // Drawn off screen and copied in one go: no flicker while hovering.
    HDC mem = CreateCompatibleDC(dc);
    HBITMAP canvas = CreateCompatibleBitmap(dc, client.right, client.bottom);
    HGDIOBJ old = SelectObject(mem, canvas);
    PaintBar(*bar, mem, client);
    BitBlt(dc, 0, 0, client.right, client.bottom, mem, 0, 0, SRCCOPY);
    SelectObject(mem, old);
    DeleteObject(canvas);
    DeleteDC(mem);
  }
  EndPaint(window, &ps);
  return 0;
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
    if (!CommandAvailable(CommandOf(*bar, hit))) return 0;
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
  if (inside && CommandAvailable(command))
    SendMessageA(App().mainWindow, WM_COMMAND, MAKEWPARAM(command, 0),
                 reinterpret_cast<LPARAM>(window));
  return 0;
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

LRESULT OnBarClose(HWND window, UINT, WPARAM, LPARAM) {
  // The close box of a floating bar hides it, as its View menu item does.
  DockBar* bar = BarOfWindow(window);
  if (bar && bar->state == kBarFloating)
    ToggleBar(*bar, App().mainWindow, bar->kind->menuCommand, 0);
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
