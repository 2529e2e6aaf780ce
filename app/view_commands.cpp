// The View and Window menus: showing and hiding the bars and views, staying on
// top of other windows, and the arrangement of the two views.
#include <vector>

#include "app/frame.h"
#include "app/layout.h"
#include "bars/dock_bar.h"
#include "base/app_state.h"
#include "base/help.h"
#include "links/links_view.h"
#include "resources/resource.h"

namespace qb {

void SetOnTop(HWND main, bool onTop, bool withViews) {
  Settings().onTop = onTop ? 1 : 0;
  OrderMainWindow(main, onTop, SWP_SHOWWINDOW);
  HWND order = onTop ? HWND_TOPMOST : HWND_NOTOPMOST;
  if (withViews) {
    // A hidden view stays hidden: the layout no longer gives it a place.
    const LayoutState& layout = Layout();
    const AppState& app = App();
    const std::pair<HWND, bool> views[] = {{app.linksView, layout.linksShown},
                                           {app.keysView, layout.keysShown}};
    for (const auto& [view, shown] : views)
      if (view)
        SetWindowPos(view, order, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | (shown ? SWP_SHOWWINDOW : 0));
  }
  SetForegroundWindow(main);
}

LRESULT OnBarToggleCommand(HWND window, WORD id, WORD code, LPARAM) {
  ToggleBar(id == IDM_TOOL_BAR ? ToolBarDescriptor() : DatabaseBarDescriptor(), window, id, code);
  return 0;
}

// "&Key window" shows and hides the Links view, "&Link window" the Keys view; the
// menu has always had them crossed, and its checks follow the same crossing.
LRESULT OnViewToggleCommand(HWND window, WORD id, WORD, LPARAM) {
  LayoutState& layout = Layout();
  const bool links = id == IDM_KEY_WINDOW;
  bool& shown = links ? layout.linksShown : layout.keysShown;
  shown = !shown;
  HWND view = links ? App().linksView : App().keysView;
  if (view) ShowWindow(view, shown ? SW_SHOW : SW_HIDE);
  if (links && shown && view) RefreshLinksView();  // the folder may have changed meanwhile
  SendMessageA(window, WM_SIZE, 0, 0);
  return 0;
}

LRESULT OnWindowCommand(HWND window, WORD id, WORD, LPARAM) {
  switch (id) {
    case IDM_WINDOW_NORMAL:
      SetOnTop(window, false, true);
      break;
    case IDM_WINDOW_ONTOP:
      SetOnTop(window, true, true);
      break;
    case IDM_WINDOW_HORIZONTAL:
    case IDM_WINDOW_VERTICAL:
      Settings().arrangement = id == IDM_WINDOW_VERTICAL ? kVertical : kHorizontal;
      RequestRelayout(window);
      break;
    default:
      break;
  }
  return 0;
}

// "&Help Topics": the main window stops being on top first, so the help window
// can come to the front, and stays so.
LRESULT OnHelpCommand(HWND window, WORD, WORD, LPARAM) {
  SetOnTop(window, false, /*withViews=*/false);
  OpenHelpAt(window, kHelpTopicsContext);
  return 0;
}

}  // namespace qb
