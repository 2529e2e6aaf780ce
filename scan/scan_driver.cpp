#include "scan/scan_driver.h"

#include <windows.h>
#include <commctrl.h>

#include <cstdio>
#include <optional>
#include <string>

#include "acquire/acquire_state.h"
#include "acquire/browser.h"
#include "acquire/clipboard_address.h"
#include "acquire/download_dialog.h"
#include "acquire/web_address.h"
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

// An address to scan and whether the user named it (a saved page named so is
// scanned even when the registry does not know it).
struct StartAddress {
  std::string text;
  bool named = false;
};

// Where the page comes from, once the scan knows.
struct ScanPage {
  std::string url;   // without scheme; empty for a saved document not in the registry
  std::string source;  // the address the page finally came from, scheme included, when known
  std::string file;  // what is read
  bool web = false;  // a web address: recorded in the registry after the scan
  bool downloaded = false;  // this scan wrote `file`
};

// The clipboard's address where the browser showed none, when the user takes it.
std::optional<PastedAddress> OfferedClipboardAddress() {
  PastedAddress pasted = ClipboardAddress();
  if (pasted.kind != PastedKind::kWeb && pasted.kind != PastedKind::kLocalFile) return std::nullopt;
  const std::string question = std::string(kOfferClipboardText) + "\n\n" + pasted.line;
  if (ShowMessage(question, kAppName, MB_YESNO | MB_ICONQUESTION) != IDYES) return std::nullopt;
  return pasted;
}

// Where a scan's address comes from when no caller gave one: the browser, or the
// clipboard when the browser showed none. Nothing after a message or when the user
// stopped.
std::optional<StartAddress> BrowserOrClipboardAddress() {
  BrowserCapture capture = CaptureBrowserAddress();
  if (capture.url && !capture.url->empty()) return StartAddress{std::move(*capture.url), false};
  if (!capture.url && !capture.noBrowserWindow) return std::nullopt;
  if (std::optional<PastedAddress> pasted = OfferedClipboardAddress()) {
    if (pasted->kind == PastedKind::kWeb && !MayDownloadAgain(pasted->text, pasted->text))
      return std::nullopt;
    return StartAddress{std::move(pasted->text), true};
  }
  if (capture.noBrowserWindow) {
    TellNoBrowserWindow();
  } else {
    ShowMessage(kNoLinkText, nullptr, kErrorBox);
  }
  return std::nullopt;
}

// The browser's address (or the caller's) as a page to read; nothing after a
// message, when the user stopped, or when the address names a file of this
// computer (`local` then holds it).
std::optional<ScanPage> WebPage(std::string_view location, bool fromFileOrUrl,
                                StartAddress& local) {
  StartAddress start{std::string(), fromFileOrUrl};
  ScanPage page;
  bool fileGiven = false;
  if (fromFileOrUrl) {
    const std::size_t lf = location.find('\n');
    start.text = std::string(location.substr(0, lf));
    fileGiven = lf != std::string_view::npos;
    if (fileGiven) page.file = std::string(location.substr(lf + 1));
  } else {
    std::optional<StartAddress> chosen = BrowserOrClipboardAddress();
    if (!chosen) return std::nullopt;
    start = std::move(*chosen);
  }
  // A file:/// address names its page as plainly as the user could: it is scanned
  // even when this program did not save it (a page saved from a logged-in browser).
  if (IsFileUrl(start.text)) {
    start.text = LocalPathOfFileUrl(start.text);
    start.named = true;
  }
  const std::string& address = start.text;
  const std::optional<std::string_view> schemeless = StripScheme(address);
  if (!schemeless) {
    // A file of this computer: it is scanned as a saved document.
    if (!CanOpen(address)) {
      TellCantOpen(address);
      return std::nullopt;
    }
    local = std::move(start);
    return std::nullopt;
  }
  page.url = std::string(*schemeless);
  page.source = address;
  page.web = true;
  if (fileGiven) return page;
  const PrepareStatus status = PreparePageDownload(address);
  if (status != PrepareStatus::kReady) {
    ShowMessage(DescribePrepareStatus(status), nullptr, kErrorBox);
    return std::nullopt;
  }
  // A transfer that failed or stalled before any byte came ends with 0, so it
  // shows up as a page without forms. One broken off after part of the page, Cancel,
  // the size limit and a file that could not be written remove the file and end
  // the scan here.
  const INT_PTR ended = DownloadPage();
  if (ended == 1 || ended == kDownloadBrokenOff) {
    ShowMessage(kCantDownloadText, nullptr, kErrorBox);
    return std::nullopt;
  }
  if (ended == kDownloadCancelled || ended == kDownloadTooLarge || ended == kDownloadRefused ||
      ended == kDownloadNotWritten)
    return std::nullopt;
  page.file = SharedDownloadRequest().localFile;
  page.source = SharedDownloadRequest().address;
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
  // Relative form actions go where the page came from: after redirects, perhaps
  // another host, and over HTTPS when it came that way.
  const std::optional<std::string_view> source = StripScheme(page.source);
  session.host = SplitUrl(source ? *source : page.url).host;
  if (const std::optional<WebAddress> secure = ParseWebAddress(page.source); secure && secure->secure)
    session.scheme = kSecureScheme;
  ParseFormPage(scan, session.host, session.scheme);
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
  if (const INT_PTR ended = PostRequest(); ended == 1 || ended == kDownloadBrokenOff)
    ShowMessage(kCantDownloadText, nullptr, kErrorBox);
}

}  // namespace

int ScanHtml(int source, std::string_view location, bool fromFileOrUrl, bool promptAll, bool directPost) {
  SharedRequestText().clear();
  std::optional<ScanPage> page;
  if (source == kScanWebPage) {
    StartAddress local;
    page = WebPage(location, fromFileOrUrl, local);
    if (!local.text.empty()) page = SavedPage(local.text, local.named);
  } else {
    page = SavedPage(std::string(location), fromFileOrUrl);
  }
  if (page) FillAndOpen(*page, promptAll, directPost);
  return 0;
}

int ScanClipboardAddress() {
  const PastedAddress pasted = ClipboardAddress();
  switch (pasted.kind) {
    case PastedKind::kNone:
      ShowMessage(kNoClipboardAddressText, kAppName, MB_OK | MB_ICONINFORMATION);
      return 0;
    case PastedKind::kTooLong:
      ShowMessage(DescribePrepareStatus(PrepareStatus::kUrlTooLong), nullptr, kErrorBox);
      return 0;
    case PastedKind::kWeb:
      if (!MayDownloadAgain(pasted.text, pasted.text)) return 0;
      break;
    case PastedKind::kLocalFile:
      break;
  }
  return ScanHtml(kScanWebPage, pasted.text, true, false, false);
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
