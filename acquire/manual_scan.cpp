#include "acquire/manual_scan.h"

#include <commdlg.h>

#include <array>
#include <optional>

#include "acquire/browser.h"
#include "acquire/manual_site.h"
#include "base/app_state.h"
#include "base/dispatch.h"
#include "resources/resource.h"

namespace qb {
namespace {

SiteScan g_siteScan = nullptr;

std::string Capped(std::string text) {
  if (text.size() >= kManualUrlMax) text.resize(kManualUrlMax - 1);
  return text;
}

struct ChosenDocument {
  std::string path;
  std::string title;  // name with extension
};

std::optional<ChosenDocument> ChooseDocument(HWND owner) {
  std::array<char, kManualPathMax> path{};
  std::array<char, kManualTitleMax> title{};
  constexpr std::string_view kStartName = "*.htm";
  kStartName.copy(path.data(), kStartName.size());
  static const char kFilter[] = "Quellbarrow(*.htm) \0*.htm\0";
  const std::string folder = App().programDir;
  OPENFILENAMEA ofn{};
  ofn.lStructSize = sizeof(ofn);
  ofn.hwndOwner = owner;
  ofn.lpstrFilter = kFilter;
  ofn.lpstrFile = path.data();
  ofn.nMaxFile = static_cast<DWORD>(path.size());
  ofn.lpstrFileTitle = title.data();
  ofn.nMaxFileTitle = static_cast<DWORD>(title.size());
  ofn.lpstrInitialDir = folder.c_str();
  ofn.lpstrTitle = kAddDocumentTitle;
  ofn.lpstrDefExt = "htm";
  ofn.Flags = OFN_HIDEREADONLY | OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST;
  if (!GetOpenFileNameA(&ofn)) return std::nullopt;
  return ChosenDocument{path.data(), title.data()};
}

LRESULT OnManualUrlInit(HWND dialog, UINT, WPARAM, LPARAM) {
  SendDlgItemMessageA(dialog, IDC_MANUAL_URL, EM_LIMITTEXT, kManualUrlMax - 1, 0);
  SetDlgItemTextA(dialog, IDC_MANUAL_URL, ManualUrlText().c_str());
  return TRUE;
}

LRESULT OnManualUrlOk(HWND dialog, WORD, WORD, LPARAM) {
  std::array<char, kManualUrlMax> text{};
  GetDlgItemTextA(dialog, IDC_MANUAL_URL, text.data(), static_cast<int>(text.size()));
  ManualUrlText() = text.data();
  EndDialog(dialog, ManualUrlText().empty() ? 0 : 1);
  return 0;
}

const CommandRow kManualUrlCommands[] = {
    {IDOK,     OnManualUrlOk},
    {IDCANCEL, EndDialogCancelled},
};

const MessageRow kManualUrlMessages[] = {
    {WM_INITDIALOG, OnManualUrlInit},
};

}  // namespace

void SetSiteScan(SiteScan scan) { g_siteScan = scan; }

std::string& ManualUrlText() {
  static std::string text;
  return text;
}

void RunManualScan(HWND owner) {
  std::optional<std::string> captured = CaptureBrowserUrl();
  if (!captured) {
    ManualUrlText() = kManualUrlStart;
    HINSTANCE instance = App().instance ? App().instance : GetModuleHandleA(nullptr);
    DialogBoxParamA(instance, kManualUrlDialogName, owner,
                    DialogProcedure<kManualUrlMessages, kManualUrlCommands>, 0);
    return;
  }
  ManualUrlText() = Capped(std::move(*captured));
  if (ManualUrlText().empty()) return;
  const std::string site = TrimToSiteFolder(ManualUrlText());
  if (ShowMessage(FormatText(kSiteQuestionFormat, site.c_str()), "Confirmation", MB_YESNO | MB_ICONQUESTION) !=
      IDYES)
    return;
  std::optional<ChosenDocument> chosen = ChooseDocument(owner);
  if (!chosen) return;
  std::string text = ManualSiteLine(site, chosen->title);
  const std::string dataHtml = App().programDir + kDataHtmlFolder;
  if (!LiesInFolder(chosen->path, dataHtml)) {
    const std::string target = dataHtml + chosen->title;
    if (!CopyFileA(chosen->path.c_str(), target.c_str(), FALSE)) return;
    chosen->path = target;
  }
  text += chosen->path;
  if (g_siteScan) g_siteScan(text);
}

}  // namespace qb
