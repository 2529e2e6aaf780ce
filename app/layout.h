// View state of the main window shared with the parts that change what it shows:
// which list views are shown, the bar drag in progress, and the re-layout request.
#pragma once

#include <windows.h>

#include "app/layout_math.h"
#include "base/relayout.h"

namespace qb {

struct LayoutState {
  bool keysShown = true;   // not persisted: both views are shown at every start
  bool linksShown = true;
  bool dragging = false;   // a bar drag holds the main window's capture
  int draggedBar = 0;      // 0 the tool bar, 1 the databases bar
};

LayoutState& Layout();

}  // namespace qb
