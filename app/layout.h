// View state of the main window shared with the parts that change what it shows:
// which list views are shown, the bar drag in progress, and the re-layout request.
#pragma once

#include <windows.h>

#include "app/layout_math.h"

namespace qb {

// WM_SIZE with this wParam (and lParam 0) asks the main window to lay itself out again.
constexpr WPARAM kRelayoutRequest = 26847;
// The notification code of a command sent by the program itself (no re-layout).
constexpr WORD kInternalCommand = 2;

struct LayoutState {
  bool keysShown = true;   // not persisted: both views are shown at every start
  bool linksShown = true;
  bool dragging = false;   // a bar drag holds the main window's capture
  int draggedBar = 0;      // 0 the tool bar, 1 the databases bar
};

LayoutState& Layout();

void RequestRelayout(HWND main);

}  // namespace qb
