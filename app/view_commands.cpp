// The View and Window menus: showing and hiding the bars and views, staying on
// top of other windows, and the arrangement of the two views.
#include <vector>

#include "app/app_state.h"
#include "app/frame.h"
#include "app/layout.h"
#include "bars/dock_bar.h"
#include "links/links_view.h"
#include "resources/resource.h"

namespace qb {
namespace {

BOOL CALLBACK AddOwned(HWND window, LPARAM param) {
  auto* list = reinterpret_cast<std::pair<HWND, std::vector<HWND>>*>(param);
  if (GetWindow(window, GW_OWNER) == list->first) list->second.push_back(window);
  return TRUE;
}

}  // namespace

void OrderMainWindow(HWND main, bool onTop, UINT flags) {
  const UINT keep = SWP_NOMOVE | SWP_NOSIZE | flags;
  if (!onTop) {
    SetWindowPos(main, HWND_NOTOPMOST, 0, 0, 0, 0, keep);
    return;
  }
  // Under Wine an owner stays below the windows it owns (the tool tip, floating
  // bars) and so never becomes topmost; they let go of it for the moment.
  std::pair<HWND, std::vector<HWND>> owned{main, {}};
  EnumThreadWindows(GetCurrentThreadId(), AddOwned, reinterpret_cast<LPARAM>(&owned));
  for (HWND w : owned.second) SetWindowLongPtrA(w, GWLP_HWNDPARENT, 0);
  SetWindowPos(main, HWND_TOPMOST, 0, 0, 0, 0, keep);
  for (HWND w : owned.second) {
    SetWindowLongPtrA(w, GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(main));
    SetWindowPos(w, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  }
}

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

}  // namespace qb
