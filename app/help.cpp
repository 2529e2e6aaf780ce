#include "app/help.h"

#include "app/app_state.h"
#include "app/frame.h"

namespace qb {

void ShowHelpTopic(DWORD contextId) {
  HWND main = App().mainWindow;
  WinHelpA(main, App().helpPath.c_str(), HELP_CONTEXT, contextId);
  OrderMainWindow(main, Settings().onTop == 1);
}

// "&Help Topics": the main window stops being on top first, so the help window
// can come to the front, and stays so.
LRESULT OnHelpCommand(HWND window, WORD, WORD, LPARAM) {
  SetOnTop(window, false, /*withViews=*/false);
  WinHelpA(window, App().helpPath.c_str(), HELP_CONTEXT, kHelpTopicsContext);
  return 0;
}

}  // namespace qb
