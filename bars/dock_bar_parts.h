// What the three files of the docking bars share among themselves: the measures
// of a bar's content and the helpers each part calls in another. Not for outside use.
#pragma once

#include <windows.h>

#include "bars/dock_bar.h"

namespace qb {
namespace bar_detail {

constexpr int kSeparatorLength = 8;
constexpr int kGripOffset = 3;  // from the visible start of the bar to its grip
constexpr int kGripInset = 4;   // across: grip ends this far from the bar's edges
constexpr int kGripRoom = 13;   // from the visible start to the first button
constexpr int kTailRoom = 8;
constexpr int kLabelMin = 24;  // caption room of a databases button, pixels
constexpr int kLabelMax = 72;

inline bool IsDockedState(int state) { return state == kBarDockedHidden || state == kBarDocked; }
inline bool IsShownState(int state) { return state == kBarDocked || state == kBarFloating; }
inline WORD CommandOf(const DockBar& bar, int i) { return bar.kind->buttons[i].command; }
inline HINSTANCE InstanceOf(HWND window) {
  return reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(window, GWLP_HINSTANCE));
}

// Buttons, hot tracking and tips (bar_buttons.cpp).
int VisibleStart(const DockBar& bar);
int ButtonLength(const DockBar& bar, int i);
void HideTip(DockBar& bar);

// The bar's window (dock_bar.cpp): made again when the bar docks or floats.
bool MakeBarWindow(DockBar& bar, HWND main);
void RemakeBarWindow(DockBar& bar);

// Dragging (bar_drag.cpp).
void HideDragFrame(DockBar& bar);

}  // namespace bar_detail
}  // namespace qb
