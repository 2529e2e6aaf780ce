#include "scan/scan_driver.h"

#include <windows.h>
#include <commctrl.h>

#include <cstdio>
#include <optional>
#include <string>

#include "acquire/acquire_state.h"
#include "acquire/browser.h"
#include "acquire/download_dialog.h"
#include "base/app_state.h"
#include "keys/key_table.h"
#include "scan/form_parser.h"
#include "scan/form_statistics.h"
#include "scan/no_match_dialog.h"
#include "scan/page_writer.h"
#include "scan/scan_session.h"

namespace qb {
namespace {

constexpr UINT kErrorBox = MB_OK | MB_ICONSTOP;

bool CanOpen(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "r");
  if (!file) return false;
  std::fclose(file);
  return true;
}

void TellCantOpen(const std::string& path) {
  ShowMessage(FormatText(kCantOpenLocationFormat, path.c_str()), nullptr, kErrorBox);
}

// Where the page comes from, once the scan knows.
struct ScanPage {
  std::string url;   // without scheme; empty for a saved document not in the registry
  std::string file;  // what is read
  bool web = false;  // a web address: recorded in the registry after the scan
  bool downloaded = false;  // this scan wrote `file`
};

// The browser's address (or the caller's) as a page to read; nothing after a
// message or when the user stopped.
std::optional<ScanPage> WebPage(std::string_view location, bool fromFileOrUrl, bool& localPath,
                                std::string& path) {
  std::string address;
  ScanPage page;
  if (fromFileOrUrl) {
    const std::size_t lf = location.find('\n');
    address = std::string(location.substr(0, lf));
    if (lf != std::string_view::npos) page.file = std::string(location.substr(lf + 1));
  } else {
    std::optional<std::string> captured = CaptureBrowserUrl();
    if (!captured) return std::nullopt;
    if (captured->empty()) {
      ShowMessage(kNoLinkText, nullptr, kErrorBox);
      return std::nullopt;
    }
    address = std::move(*captured);
  }
  const std::optional<std::string_view> schemeless = StripScheme(address);
  if (!schemeless) {
    // The browser shows a file of this computer: it is scanned as a saved document.
    if (!CanOpen(address)) {
      TellCantOpen(address);
      return std::nullopt;
    }
    localPath = true;
    path = address;
    return std::nullopt;
  }
  page.url = std::string(*schemeless);
  page.web = true;
  if (fromFileOrUrl) return page;
  const PrepareStatus status = PreparePageDownload(address);
  if (status != PrepareStatus::kReady) {
    ShowMessage(DescribePrepareStatus(status), nullptr, kErrorBox);
    return std::nullopt;
  }
  // A failed or stalled transfer ends with 0, so it shows up as a page without
  // forms. Cancel and the size limit remove the file and end the scan here.
  const INT_PTR ended = DownloadPage();
  if (ended == 1) {
    ShowMessage(kCantDownloadText, nullptr, kErrorBox);
    return std::nullopt;
  }
  if (ended == kDownloadCancelled || ended == kDownloadTooLarge) return std::nullopt;
  page.file = SharedDownloadRequest().localFile;
  page.downloaded = true;
  return page;
}

// A saved document and the address the registry holds for it. Only a document the
// caller named may be scanned without one.
std::optional<ScanPage> SavedPage(const std::string& path, bool namedByCaller) {
  ScanPage page;
  page.file = path;
  if (std::optional<std::string> url = ProgramRegistry().FindUrlForFile(path)) {
    page.url = std::move(*url);
  } else if (!namedByCaller) {
    ShowMessage(kNotSavedByProgramText, nullptr, kErrorBox);
    return std::nullopt;
  }
  return page;
}

void FillAndOpen(const ScanPage& page, bool promptAll, bool directPost) {
  FormScan scan;
  switch (LoadScanDocument(page.file, scan.document)) {
    case DocumentLoadStatus::kLoaded: break;
    case DocumentLoadStatus::kCannotOpen: TellCantOpen(page.file); return;
    case DocumentLoadStatus::kOutOfMemory: return;
  }
  ScanSession session(Keys(), ScanOptionsOf(Settings()), promptAll, directPost);
  session.currentKey = SelectedKeyInView();
  session.host = SplitUrl(page.url).host;
  ParseFormPage(scan, session.host);
  if (Settings().formStatistics) ShowMessage(FormStatisticsText(scan), kAppName, MB_OK);
  if (scan.forms.empty()) {
    if (page.downloaded) DeleteFileA(page.file.c_str());
    ShowMessage(kNoFormText, nullptr, kErrorBox);
    return;
  }
  NoMatchDialog prompt;
  session.prompt = &prompt;
  CheckRadioGroups(scan, session);
  const std::string filledPage = App().programDir + kFilledPageName;
  // A page that could not be written was reported; the browser is opened all the same.
  WriteFilledPage(filledPage, scan, session);
  FreeFormScan(scan);

  if (!directPost) {
    if (page.web) ProgramRegistry().AddEntry(page.file, page.url);
    OpenInBrowser(filledPage);
    return;
  }
  SharedRequestText() = std::move(session.requestText);
  SharedDownloadRequest().host = session.host;
  if (PostRequest() == 1) ShowMessage(kCantDownloadText, nullptr, kErrorBox);
}

}  // namespace

int ScanHtml(int source, std::string_view location, bool fromFileOrUrl, bool promptAll, bool directPost) {
  SharedRequestText().clear();
  std::optional<ScanPage> page;
  if (source == kScanWebPage) {
    bool localPath = false;
    std::string path;
    page = WebPage(location, fromFileOrUrl, localPath, path);
    if (localPath) page = SavedPage(path, fromFileOrUrl);
  } else {
    page = SavedPage(std::string(location), fromFileOrUrl);
  }
  if (page) FillAndOpen(*page, promptAll, directPost);
  return 0;
}

int ScanSavedDocument(std::string_view path, bool promptAll) {
  return ScanHtml(kScanSavedDocument, path, true, promptAll, false);
}

int SelectedKeyInView() {
  HWND view = App().keysView;
  if (!view) return kNoKey;
  const LRESULT row = SendMessageA(view, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
  return row >= 0 && row < KeysInUse(Keys()) ? static_cast<int>(row) : kNoKey;
}

}  // namespace qb
