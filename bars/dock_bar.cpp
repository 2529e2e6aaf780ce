// The bar window: the two descriptors, the window made for the docked or floating
// state, showing and hiding, sizes, and the handlers both bar classes share.
#include "bars/dock_bar.h"

#include "bars/bar_paint.h"
#include "bars/dock_bar_parts.h"
#include "base/app_state.h"
#include "base/dispatch.h"
#include "base/relayout.h"

namespace qb {

using namespace bar_detail;

namespace {

CaptionMetrics g_captions;
BarFrameHooks g_hooks;

}  // namespace

namespace bar_detail {

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

}  // namespace bar_detail

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

void SetBarFrameHooks(const BarFrameHooks& hooks) { g_hooks = hooks; }

bool BarCommandAvailable(WORD id) { return !g_hooks.commandAvailable || g_hooks.commandAvailable(id); }

void ApplyFrameMenuState(HMENU menu) {
  if (g_hooks.applyMenuState) g_hooks.applyMenuState(menu);
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

LRESULT OnBarClose(HWND window, UINT, WPARAM, LPARAM) {
  // The close box of a floating bar hides it, as its View menu item does.
  DockBar* bar = BarOfWindow(window);
  if (bar && bar->state == kBarFloating)
    ToggleBar(*bar, App().mainWindow, bar->kind->menuCommand, 0);
  return 0;
}

}  // namespace qb
