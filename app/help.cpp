#include "app/help.h"

#include "app/app_state.h"
#include "app/frame.h"

namespace qb {
namespace {

// The help viewer's window class, which WinHelp looks for.
constexpr char kHelpViewerClass[] = "MS_WINHELP";
// WinHelp starts the viewer when none runs, and may look for its window before
// the viewer has made it (Wine's gives up at once): the request then fails
// although the viewer comes up. Once its window is there, the request is sent
// again; the wait is bounded, for a viewer that never appears.
constexpr DWORD kViewerStartMs = 2000;
constexpr DWORD kViewerPollMs = 20;

void OpenHelpAt(HWND owner, DWORD contextId) {
  const char* path = App().helpPath.c_str();
  if (WinHelpA(owner, path, HELP_CONTEXT, contextId)) return;
  for (DWORD waited = 0; waited < kViewerStartMs; waited += kViewerPollMs) {
    if (FindWindowA(kHelpViewerClass, nullptr)) {
      WinHelpA(owner, path, HELP_CONTEXT, contextId);
      return;
    }
    Sleep(kViewerPollMs);
  }
}

}  // namespace

void ShowHelpTopic(DWORD contextId) {
  HWND main = App().mainWindow;
  OpenHelpAt(main, contextId);
  OrderMainWindow(main, Settings().onTop == 1);
}

// "&Help Topics": the main window stops being on top first, so the help window
// can come to the front, and stays so.
LRESULT OnHelpCommand(HWND window, WORD, WORD, LPARAM) {
  SetOnTop(window, false, /*withViews=*/false);
  OpenHelpAt(window, kHelpTopicsContext);
  return 0;
}

}  // namespace qb
