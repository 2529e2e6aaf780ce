// The Tools menu. Each command id has its branch; ids without one do nothing.
#include "acquire/acquire_state.h"
#include "acquire/manual_scan.h"
#include "app/frame.h"
#include "base/app_state.h"
#include "links/links_view.h"
#include "resources/resource.h"
#include "scan/scan_driver.h"
#include "scan/scan_options_dialog.h"

namespace qb {
namespace {

// A scan may have saved a page into the folder the Links view shows, or deleted
// the one it downloaded when it held no form.
void ShowSavedPages() {
  if (LinksViewShown()) RefreshLinksView();
}

}  // namespace

void ScanSiteDocument(std::string_view urlAndFile) { ScanHtml(kScanWebPage, urlAndFile, true, false, false); }

LRESULT OnToolsCommand(HWND, WORD id, WORD, LPARAM) {
  if (id == IDM_SCAN_HTML) {
    ScanHtml(kScanWebPage, {}, false, false, false);
    ShowSavedPages();
  }
  if (id == IDM_SCAN_CLIPBOARD) {
    ScanClipboardAddress();
    ShowSavedPages();
  }
  if (id == IDM_SCAN_MANUAL) {
    RunManualScan(App().mainWindow);
    ShowSavedPages();
  }
  if (id == IDM_SCAN_OPTIONS) RunScanOptionsDialog(App().mainWindow);
  if (id == IDM_COMPACT_CONFIGHTML) ProgramRegistry().Compact();
  return 0;
}

}  // namespace qb
