// The re-layout request: any part of the program that changes what the main window
// shows asks it to lay itself out again.
#pragma once

#include <windows.h>

namespace qb {

// WM_SIZE with this wParam (and lParam 0) asks the main window to lay itself out again.
constexpr WPARAM kRelayoutRequest = 26847;
// The notification code of a command sent by the program itself (no re-layout).
constexpr WORD kInternalCommand = 2;

inline void RequestRelayout(HWND main) { SendMessageA(main, WM_SIZE, kRelayoutRequest, 0); }

}  // namespace qb
