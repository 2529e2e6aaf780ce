// The main window's own life cycle: creation, close and destruction.
#include "app/app_state.h"
#include "app/frame.h"

namespace qb {

LRESULT OnMainCreate(HWND window, UINT, WPARAM, LPARAM) {
  AppState& app = App();
  app.mainWindow = window;
  HDC dc = GetDC(window);
  app.screenWidth = GetDeviceCaps(dc, HORZRES);
  app.screenHeight = GetDeviceCaps(dc, VERTRES);
  ReleaseDC(window, dc);
  app.windowsVersion = GetVersion();
  app.dataHtmlDir = app.programDir + kDataHtmlFolder;
  app.databaseDir = app.programDir + kDatabaseFolder;
  return 1;
}

LRESULT OnMainClose(HWND window, UINT, WPARAM, LPARAM) {
  LoadOrSaveSettings(kSaveSettings);
  DestroyWindow(window);
  return 0;
}

LRESULT OnMainDestroy(HWND window, UINT, WPARAM, LPARAM) {
  if (App().mainWindow == window) App().mainWindow = nullptr;
  PostQuitMessage(0);
  return 0;
}

LRESULT OnDisplayChange(HWND, UINT, WPARAM, LPARAM lParam) {
  App().screenWidth = LOWORD(lParam);
  App().screenHeight = HIWORD(lParam);
  return 0;
}

// The File menu. It has no branch for E&xit: choosing it does nothing, and the
// program is closed through the window's close command.
LRESULT OnFileCommand(HWND, WORD, WORD, LPARAM) { return 0; }

}  // namespace qb
