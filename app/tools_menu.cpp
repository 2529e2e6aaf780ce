// The Tools menu. Each command id has its branch; ids without one do nothing.
#include "acquire/acquire_state.h"
#include "app/frame.h"
#include "base/app_state.h"
#include "resources/resource.h"
#include "scan/scan_driver.h"
#include "scan/scan_options_dialog.h"

namespace qb {

LRESULT OnToolsCommand(HWND, WORD id, WORD, LPARAM) {
  if (id == IDM_SCAN_HTML) ScanHtml(kScanWebPage, {}, false, false, false);
  if (id == IDM_SCAN_OPTIONS) RunScanOptionsDialog(App().mainWindow);
  if (id == IDM_COMPACT_CONFIGHTML) ProgramRegistry().Compact();
  return 0;
}

}  // namespace qb
