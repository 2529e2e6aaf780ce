// The status bar along the bottom of the main window: one part showing menu help
// and other one-line messages, which doubles as a progress strip.
#pragma once

#include <windows.h>

#include "bars/progress.h"

namespace qb {

constexpr char kStatusIdleText[] = "Quellbarrow";
constexpr COLORREF kProgressColour = 0xFF0000;  // pure blue
constexpr int kProgressInset = 2;               // pixels kept free above and below the band

struct StatusBarState {
  HWND window = nullptr;
  bool shown = true;  // not persisted: shown at every start
  int height = 0;     // taken from the window at creation
};

StatusBarState& StatusBar();

// Creates the status window (id 12888) showing "Quellbarrow"; false when it fails.
bool CreateStatusBar(HWND parent);
// Shows `text` (null clears it) in the bar; nothing while the bar is hidden.
void SetStatusText(const char* text, int part = 0, int type = 0);

// Command 50104 "&Status bar". A code of 2 marks an internal call: no re-layout.
LRESULT OnStatusBarCommand(HWND window, WORD id, WORD code, LPARAM control);

// The progress strip: Begin(N) once, Step() N times, End(). All three do nothing
// while the bar is hidden.
void ProgressBegin(int steps);
void ProgressStep();
void ProgressEnd();
// The running strip's plan and the left edge of the next column.
const ProgressPlan& CurrentProgressPlan();
int ProgressNextColumn();

}  // namespace qb
