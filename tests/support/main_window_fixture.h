// A real main window in a fresh program folder, for the frame's and the bars' tests.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>
#include <commctrl.h>

#include <cstring>
#include <string>

#include "app/frame.h"
#include "app/layout.h"
#include "app/menu_state.h"
#include "app/options.h"
#include "bars/dock_bar.h"
#include "bars/status_bar.h"
#include "base/app_state.h"
#include "keys/key_table.h"
#include "resources/resource.h"
#include "tests/support/gui_helper.h"
#include "tests/support/temp_dir.h"

namespace qb::test {

class MainWindowTest : public ::testing::Test {
 public:
  static HINSTANCE Instance() { return GetModuleHandleA(nullptr); }

  // The three window classes, registered once per process (a test may have taken
  // one away to see a failure).
  static bool EnsureClasses() {
    WNDCLASSA wc;
    HINSTANCE i = Instance();
    return (GetClassInfoA(i, kMainClassName, &wc) || RegisterMainClass(i)) &&
           (GetClassInfoA(i, kToolBarClass, &wc) || RegisterToolBarClass(i)) &&
           (GetClassInfoA(i, kDatabaseBarClass, &wc) || RegisterDatabaseBarClass(i));
  }

 protected:
  void SetUp() override {
    Settings() = AppSettings{};
    SetProgramDirectory(dir_.path());
    App().mainWindow = nullptr;
    ClearAllKeys(Keys());
    SetDatabaseChanged(false);
    SetCopiedKeyIndex(kNoCopiedKey);
    SetBrowserWindowChoiceOption(kPromptForBrowserWindow);
    ASSERT_TRUE(EnsureClasses());
    std::strcpy(Settings().slotNames[0].data(), "Data.dat");
  }

  void TearDown() override {
    if (window_ && IsWindow(window_)) DestroyWindow(window_);
    Drain();
    ClearAllKeys(Keys());
    SetDatabaseChanged(false);
  }

  // Creates the main window (a window left open before goes first); with a size,
  // sized to a client area of `width` x `height`.
  HWND Open(int width = 700, int height = 400) {
    if (window_ && IsWindow(window_)) DestroyWindow(window_);
    Drain();
    window_ = CreateMainWindow(Instance(), SW_SHOWNORMAL);
    if (window_ && width) SetClientSize(width, height);
    return window_;
  }

  void SetClientSize(int width, int height) {
    // The menu bar may wrap at a new width: adjust until the client area fits.
    for (int i = 0; i < 3; ++i) {
      RECT c, w;
      GetClientRect(window_, &c);
      GetWindowRect(window_, &w);
      if (c.right == width && c.bottom == height) return;
      SetWindowPos(window_, nullptr, 0, 0, (w.right - w.left) + width - c.right,
                   (w.bottom - w.top) + height - c.bottom, SWP_NOMOVE | SWP_NOZORDER);
    }
  }

  // A child's rectangle in the main window's client coordinates.
  RECT ChildRect(HWND child) const {
    RECT r;
    GetWindowRect(child, &r);
    MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(&r), 2);
    return r;
  }

  LRESULT Command(WORD id, WORD code = 0) {
    return SendMessageA(window_, WM_COMMAND, MAKEWPARAM(id, code), 0);
  }

  LRESULT InitMenu(HMENU menu = nullptr) {
    return SendMessageA(window_, WM_INITMENU,
                        reinterpret_cast<WPARAM>(menu ? menu : GetMenu(window_)), 0);
  }

  bool Checked(UINT id) const { return MenuState(id) & MF_CHECKED; }
  bool Greyed(UINT id) const { return MenuState(id) & MF_GRAYED; }
  UINT MenuState(UINT id) const { return GetMenuState(GetMenu(window_), id, MF_BYCOMMAND); }
  static bool Visible(HWND w) { return IsWindowVisible(w) != FALSE; }
  static bool Topmost(HWND w) { return (GetWindowLongA(w, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0; }

  std::string StatusText() const {
    char text[300] = {};
    SendMessageA(StatusBar().window, SB_GETTEXTA, 0, reinterpret_cast<LPARAM>(text));
    return text;
  }

  // Closes the main window, which saves the settings, and returns the file's bytes.
  std::vector<std::uint8_t> CloseAndReadSettings() {
    SendMessageA(window_, WM_CLOSE, 0, 0);
    Drain();
    return ReadBytes(dir_.File("pellwick.cfg"));
  }

  static POINT Centre(const RECT& r) { return POINT{(r.left + r.right) / 2, (r.top + r.bottom) / 2}; }

  // Puts the real pointer at `p` in `window`'s client coordinates.
  static void PointerAt(HWND window, POINT p) {
    ClientToScreen(window, &p);
    SetCursorPos(p.x, p.y);
  }

  // Presses the bar's grip and moves on past the drag threshold; true once the
  // main window has taken the drag over. The messages are sent as the mouse would
  // send them; the real pointer is put where they say, so that anything the system
  // reports of it on its own agrees.
  bool StartDrag(DockBar& bar) {
    const POINT p = Centre(BarGripRect(bar));
    PointerAt(bar.window, POINT{p.x + 20, p.y + 20});
    SendMessageA(bar.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(p.x, p.y));
    SendMessageA(bar.window, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(p.x + 20, p.y + 20));
    return PumpUntil([] { return Layout().dragging; });
  }

  // Moves the dragged bar to `p` (main window client coordinates) and lets go.
  void DropAt(POINT p) {
    PointerAt(window_, p);
    SendMessageA(window_, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(p.x, p.y));
    SendMessageA(window_, WM_LBUTTONUP, 0, MAKELPARAM(p.x, p.y));
  }

  // Drags the bar by its grip and drops it at `p`.
  void DragTo(DockBar& bar, POINT p) {
    ASSERT_TRUE(StartDrag(bar));
    DropAt(p);
  }

  // Dispatches what is queued, a quit message included.
  static void Drain() {
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&msg);
  }

  TempDir dir_;
  HWND window_ = nullptr;
};

// The same with the main window open, its client area 700 x 400.
class OpenMainWindowTest : public MainWindowTest {
 protected:
  void SetUp() override {
    MainWindowTest::SetUp();
    ASSERT_NE(Open(), nullptr);
  }
};

// Rectangles compare as text, so that a failure shows both.
inline std::string Describe(const RECT& r) {
  return "(" + std::to_string(r.left) + "," + std::to_string(r.top) + ")-(" +
         std::to_string(r.right) + "," + std::to_string(r.bottom) + ")";
}

}  // namespace qb::test
