#include "base/help.h"

#include "base/app_state.h"

namespace qb {

void ShowHelpTopic(DWORD contextId) {
  HWND main = App().mainWindow;
  WinHelpA(main, App().helpPath.c_str(), HELP_CONTEXT, contextId);
  OrderMainWindow(main, Settings().onTop == 1);
}

}  // namespace qb
