// The two docking bars (window classes "ToolBar" and "DatabaseBar"). A bar is
// docked at one side of the main window or floats in a small captioned window of
// its own; it is dragged from one to the other by its grip, shows a tool tip for
// each button and sends each button's command id to the main window as WM_COMMAND.
//
// A bar is one window. Docking and floating recreate it with the style each needs
// (a child of the main window, or a captioned pop-up owned by it); everything that
// must survive lives in its descriptor.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "bars/dock_side.h"

namespace qb {

constexpr int kBarThickness = 30;
constexpr int kBarButtonRows = 24;
constexpr int kButtonGroupSize = 8;
constexpr UINT kToolBarTimerId = 100;      // 'd'
constexpr UINT kDatabaseBarTimerId = 101;  // 'e'
// Distance outside the main window's client area within which a dropped bar still docks.
constexpr int kToolBarLayoutValue = 20;
constexpr int kDatabaseBarLayoutValue = 12;
constexpr char kToolBarClass[] = "ToolBar";
constexpr char kDatabaseBarClass[] = "DatabaseBar";

// One row of a bar's button state. A pressed button stays down (the databases bar's
// current slot); pressing one releases the buttons its row lists (0 ends the list).
struct ButtonRow {
  bool pressed = false;
  std::array<std::uint8_t, kButtonGroupSize> releases{};
};

// The state row of button `button`; row 0 stays unused, as slot numbers start at 1.
constexpr int RowOfButton(int button) { return button + 1; }

// A button: its picture in the bar's bitmap, its command and its tool tip.
// A row with command 0 is a separator.
struct BarButton {
  int image;
  WORD command;
  const char* tip;
};

// What differs between the two bars.
struct BarKind {
  const BarButton* buttons;
  int count;
  WORD menuCommand;         // the View menu item that shows and hides the bar
  const char* caption;      // of the floating window
  // Databases bar: horizontal buttons carry the slot's database name.
  std::string (*label)(int button);  // null: pictures only
  std::string (*tipText)(int button);
  bool (*looksEmpty)(int button);    // drawn greyed although it can be pressed
};

struct DockBar {
  int thickness = kBarThickness;
  const char* className = nullptr;
  UINT timerId = 0;
  int layoutValue = 0;
  int side = kSideTop;
  int previousSide = kSideTop;
  int state = kBarDocked;
  HWND window = nullptr;
  std::array<ButtonRow, kBarButtonRows> rows{};
  const BarKind* kind = nullptr;

  // Run-time state of the bar code.
  HBITMAP images = nullptr;   // the colour pictures, transparent parts black
  HBITMAP mask = nullptr;     // monochrome: 1 where transparent
  HBITMAP emboss = nullptr;   // monochrome: 0 where a greyed picture shows its outline
  int imageCount = 0;
  std::array<int, kBarButtonRows> labelWidths{};  // caption room of each databases button
  POINT floatPos{};           // top-left of the floating window, screen
  bool floatPosKnown = false;
  int hot = -1;               // button under the pointer
  int held = -1;              // button the left button went down on
  bool heldInside = false;
  bool armed = false;         // pressed on the grip: a drag may start
  bool dragPending = false;   // the main window's drag timer is running
  bool suppressPaint = false; // no hover look while a press is being decided
  POINT pressScreen{};
  POINT grab{};               // pressed point within the bar window
  int tipButton = -1;
  HWND dragFrame = nullptr;
  RECT frameRect{};
  int frameWidth = 0;
};

// What the bars ask of the frame above them: whether a command can be given now (a
// greyed button ignores presses) and the menu state to apply before the tool bar's
// pop-up menu opens. The main window hands them over when it creates the bars;
// until then every command counts as available.
struct BarFrameHooks {
  bool (*commandAvailable)(WORD id) = nullptr;
  void (*applyMenuState)(HMENU menu) = nullptr;
};
void SetBarFrameHooks(const BarFrameHooks& hooks);
bool BarCommandAvailable(WORD id);
void ApplyFrameMenuState(HMENU menu);

DockBar& ToolBarDescriptor();
DockBar& DatabaseBarDescriptor();
// 0 the tool bar, 1 the databases bar.
DockBar& BarByIndex(int index);
DockBar* BarOfWindow(HWND window);

// Descriptors as at start-up: the side from the settings byte, docked.
void ResetBarDescriptor(DockBar& bar, const char* className, UINT timerId, int layoutValue,
                        std::uint8_t side, const BarKind* kind);
void InitToolBarDescriptor(std::uint8_t side);
void InitDatabaseBarDescriptor(std::uint8_t side);

// A bar class: no background of its own (the bar paints all of it), arrow cursor.
bool RegisterBarClass(HINSTANCE instance, const char* className, WNDPROC procedure);
bool RegisterToolBarClass(HINSTANCE instance);
bool RegisterDatabaseBarClass(HINSTANCE instance);

// Loads the bar's pictures and creates its window, docked; false on failure.
bool CreateBar(DockBar& bar, HWND main, int imagesId, int maskId);
// Destroys the window and frees the pictures (the main window is going away).
void DestroyBar(DockBar& bar);

// The hidden static window that shows a bar button's tool tip.
void SetBarTipWindow(HWND tip);
HWND BarTipWindow();
// The text the tip window shows (or last showed).
const std::string& BarTipText();

// Shows or hides a bar by its state (0<->1, 2<->3), checks its menu item, and
// re-lays out the main window unless `code` is 2.
void ToggleBar(DockBar& bar, HWND main, WORD menuId, WORD code);

bool IsHorizontal(const DockBar& bar);
bool IsDocked(const DockBar& bar);  // docked, shown or not
bool IsSeparator(const DockBar& bar, int button);
// Long side of the bar's buttons with grip and margins.
int LongSideLength(const DockBar& bar);

// Caption heights of the floating windows, from the system metrics.
struct CaptionMetrics {
  int fullCaption = 0;   // SM_CYCAPTION
  int smallCaption = 0;  // SM_CYSMCAPTION + SM_CXFRAME
  int frameX = 0, frameY = 0;
  int floatingCaption = 0;
};
const CaptionMetrics& BarCaptions();
void UpdateCaptionMetrics(DWORD windowsVersion);
// Size of a floating bar's window: width t + 4 by long side + caption when
// vertical, long side + 8 by t + caption otherwise.
SIZE FloatingWindowSize(const DockBar& bar);
// Sizes every floating bar's window again (no move), keeping hidden ones hidden.
void ResizeFloatingBars();

// The main window's part of a drag (it holds the capture meanwhile); points are
// on the screen.
void BeginBarDrag(DockBar& bar, POINT point);
void MoveBarDrag(DockBar& bar, POINT point);
// Docks the bar at the side the point is near, or floats it there.
void EndBarDrag(DockBar& bar, POINT point);

// Button rectangles in the bar window's client coordinates, in table order
// (a separator's is the gap it stands in).
std::vector<RECT> BarButtonRects(const DockBar& bar);
// The grip, in client coordinates.
RECT BarGripRect(const DockBar& bar);

// Databases bar: presses the button of slot `number` (1..9), releasing the others.
void PressDatabaseButton(int number);
// Takes the slots' database names again.
void RefreshDatabaseCaptions();

// Message handlers shared by both classes.
LRESULT OnBarCreate(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnBarPaint(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnBarMouseMove(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnBarLButtonDown(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnBarLButtonUp(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnBarMove(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnBarClose(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnBarTimer(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace qb
