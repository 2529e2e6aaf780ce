#include "base/help.h"

#include "base/app_state.h"

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

}  // namespace

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

void ShowHelpTopic(DWORD contextId) {
  HWND main = App().mainWindow;
  OpenHelpAt(main, contextId);
  OrderMainWindow(main, Settings().onTop == 1);
}

}  // namespace qb
