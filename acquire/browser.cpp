#include "acquire/browser.h"

#include <commdlg.h>
#include <shellapi.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "acquire/acquire_state.h"
#include "acquire/browser_name.h"
#include "acquire/no_case.h"
#include "base/app_state.h"
#include "base/dispatch.h"
#include "base/help.h"
#include "resources/resource.h"

namespace qb {
namespace {

std::uint32_t g_browserWindowChoice = kPromptForBrowserWindow;
// How long a browser's address bar may take to give its text.
constexpr UINT kAddressBarTimeoutMs = 2000;

// The browser windows of one capture, in the order the walk met them, and the
// address bar text of each.
struct BrowserWindows {
  std::array<HWND, kBrowserSlots> handles{};
  std::array<std::string, kBrowserSlots> urls;
  std::size_t count = 0;
  std::size_t selected = 0;
};

// The capture whose child windows are being walked; the walk's parameter carries
// only the slot.
BrowserWindows* g_walked = nullptr;

std::string_view TextOf(const std::array<char, kBrowserTextSize>& text) {
  return std::string_view(text.data(), strnlen(text.data(), text.size()));
}

void ListIfBrowser(BrowserWindows& found, HWND window, std::string_view name) {
  if (GetParent(window) == App().mainWindow || !IsWindowVisible(window)) return;
  std::array<char, kCaptionTextMax + 1> caption{};
  GetWindowTextA(window, caption.data(), static_cast<int>(caption.size()));
  if (caption[0] == '\0') return;  // a window without a title is never a browser
  for (std::size_t n = CaptionNameCount(caption.data(), name); n > 0; --n) {
    found.handles[found.count] = window;
    if (found.count == kBrowserListMax) break;
    ++found.count;
  }
}

BOOL CALLBACK ReadAddressBar(HWND child, LPARAM slotParam) {
  std::string& slot = g_walked->urls[LOWORD(slotParam)];
  slot.clear();
  std::array<char, kClassNameMax + 1> className{};
  GetClassNameA(child, className.data(), static_cast<int>(className.size()));
  if (!EqualNoCase(className.data(), "edit")) return TRUE;
  std::array<char, kEditTextMax + 1> text{};
  DWORD_PTR copied = 0;
  // A browser that does not answer has no address to give; its other children
  // would keep the scan waiting as long again.
  if (!SendMessageTimeoutA(child, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                           SMTO_ABORTIFHUNG | SMTO_BLOCK, kAddressBarTimeoutMs, &copied))
    return FALSE;
  slot = text.data();
  return LooksLikeUrl(slot) ? FALSE : TRUE;
}

// Windows above the main window come first, nearest first, then those below it.
void FindBrowserWindows(BrowserWindows& found) {
  const AppSettings& settings = Settings();
  const std::string_view name = BrowserCaptionName(settings.browserKind, TextOf(settings.otherBrowserCaption));
  HWND main = App().mainWindow;
  for (HWND w = GetWindow(main, GW_HWNDPREV); w && main; w = GetWindow(w, GW_HWNDPREV))
    ListIfBrowser(found, w, name);
  for (HWND w = GetWindow(main, GW_HWNDNEXT); w && main; w = GetWindow(w, GW_HWNDNEXT))
    ListIfBrowser(found, w, name);
  g_walked = &found;
  for (std::size_t i = 0; i < found.count; ++i) {
    const WORD slot = static_cast<WORD>(i);
    EnumChildWindows(found.handles[i], ReadAddressBar, MAKELPARAM(slot, slot));
  }
  g_walked = nullptr;
}

BrowserWindows& WindowsOf(HWND dialog) {
  return *reinterpret_cast<BrowserWindows*>(GetWindowLongPtrA(dialog, DWLP_USER));
}

LRESULT OnSelectBrowserInit(HWND dialog, UINT, WPARAM, LPARAM lParam) {
  SetWindowLongPtrA(dialog, DWLP_USER, lParam);
  const BrowserWindows& found = *reinterpret_cast<const BrowserWindows*>(lParam);
  HWND list = GetDlgItem(dialog, IDC_SELECT_BROWSER_LIST);
  for (std::size_t i = 0; i < found.count; ++i) {
    const LRESULT row = SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(found.urls[i].c_str()));
    SendMessageA(list, LB_SETITEMDATA, row, static_cast<LPARAM>(i));
  }
  SendMessageA(list, LB_SETCURSEL, 0, 0);
  return TRUE;
}

LRESULT OnSelectBrowserOk(HWND dialog, WORD, WORD, LPARAM) {
  HWND list = GetDlgItem(dialog, IDC_SELECT_BROWSER_LIST);
  const LRESULT row = SendMessageA(list, LB_GETCURSEL, 0, 0);
  if (row == LB_ERR) {
    ShowMessage(kSelectLinkText, nullptr, MB_OK | MB_ICONSTOP);
    return 0;
  }
  WindowsOf(dialog).selected = static_cast<std::size_t>(SendMessageA(list, LB_GETITEMDATA, row, 0));
  EndDialog(dialog, 1);
  return 0;
}

// Help has no topic here: the button does nothing.
const CommandRow kSelectBrowserCommands[] = {
    {IDOK,     OnSelectBrowserOk},
    {IDCANCEL, EndDialogCancelled},
};

const MessageRow kSelectBrowserMessages[] = {
    {WM_INITDIALOG, OnSelectBrowserInit},
};

// The default-browser dialog.

void EnableOtherBrowserControls(HWND dialog, bool other) {
  EnableWindow(GetDlgItem(dialog, IDC_BROWSER_CAPTION), other);
  EnableWindow(GetDlgItem(dialog, IDC_BROWSER_BROWSE), other);
}

LRESULT OnDefaultBrowserInit(HWND dialog, UINT, WPARAM, LPARAM) {
  const AppSettings& settings = Settings();
  CheckRadioButton(dialog, IDC_BROWSER_EXPLORER, IDC_BROWSER_OTHER, static_cast<int>(settings.browserKind));
  SetDlgItemTextA(dialog, IDC_BROWSER_CAPTION, std::string(TextOf(settings.otherBrowserCaption)).c_str());
  SetDlgItemTextA(dialog, IDC_BROWSER_PROGRAM, std::string(TextOf(settings.browserProgram)).c_str());
  EnableOtherBrowserControls(dialog, settings.browserKind == kBrowserOther);
  return TRUE;
}

// The kind changes at the click, not at OK: Cancel keeps it.
LRESULT OnBrowserKindClicked(HWND dialog, WORD id, WORD, LPARAM) {
  Settings().browserKind = id;
  EnableOtherBrowserControls(dialog, id == kBrowserOther);
  return 0;
}

// Keeps at most size - 1 characters and always ends the text.
void StoreText(std::array<char, kBrowserTextSize>& field, std::string_view text) {
  field.fill('\0');
  text.copy(field.data(), std::min(text.size(), field.size() - 1));
}

// The path is taken at once; the box below shows it when the dialog opens again.
LRESULT OnBrowseForProgram(HWND dialog, WORD, WORD, LPARAM) {
  std::array<char, MAX_PATH> file{};
  std::string_view("*.exe").copy(file.data(), file.size() - 1);
  // A description with no pattern of its own, as the program has always offered it.
  static const char kFilter[] = "Executable files(*.exe)\0\0";
  OPENFILENAMEA ofn{};
  ofn.lStructSize = sizeof(ofn);
  ofn.hwndOwner = dialog;
  ofn.lpstrFilter = kFilter;
  ofn.lpstrFile = file.data();
  ofn.nMaxFile = static_cast<DWORD>(file.size());
  ofn.lpstrTitle = "Select program file";
  ofn.lpstrDefExt = "exe";
  ofn.Flags = OFN_HIDEREADONLY | OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST | OFN_NODEREFERENCELINKS;
  if (GetOpenFileNameA(&ofn)) StoreText(Settings().browserProgram, file.data());
  return 0;
}

LRESULT OnDefaultBrowserOk(HWND dialog, WORD, WORD, LPARAM) {
  AppSettings& settings = Settings();
  if (settings.browserKind == kBrowserOther) {
    std::array<char, kBrowserTextSize> caption{};
    GetDlgItemTextA(dialog, IDC_BROWSER_CAPTION, caption.data(), static_cast<int>(caption.size()));
    StoreText(settings.otherBrowserCaption, caption.data());
    if (caption[0] == '\0') {
      ShowMessage(kTypeTitleText, nullptr, MB_OK | MB_ICONSTOP);
      SetFocus(GetDlgItem(dialog, IDC_BROWSER_CAPTION));
      return 0;
    }
    if (TextOf(settings.browserProgram).size() < kMinProgramPathLength) {
      ShowMessage(kSelectProgramText, nullptr, MB_OK | MB_ICONSTOP);
      SetFocus(GetDlgItem(dialog, IDC_BROWSER_BROWSE));
      return 0;
    }
  }
  EndDialog(dialog, 1);
  return 0;
}

LRESULT OnDefaultBrowserHelp(HWND, WORD, WORD, LPARAM) {
  ShowHelpTopic(kDefaultBrowserHelpContext);
  return 0;
}

const CommandRow kDefaultBrowserCommands[] = {
    {IDC_BROWSER_EXPLORER, OnBrowserKindClicked},
    {IDC_BROWSER_NETSCAPE, OnBrowserKindClicked},
    {IDC_BROWSER_OTHER,    OnBrowserKindClicked},
    {IDC_BROWSER_BROWSE,   OnBrowseForProgram},
    {IDOK,                 OnDefaultBrowserOk},
    {IDCANCEL,             EndDialogCancelled},
    {IDC_HELP_BUTTON,      OnDefaultBrowserHelp},
};

const MessageRow kDefaultBrowserMessages[] = {
    {WM_INITDIALOG, OnDefaultBrowserInit},
};

HINSTANCE Instance() { return App().instance ? App().instance : GetModuleHandleA(nullptr); }

bool Launched(const char* program, std::string_view text) {
  const std::string parameters = BrowserArgument(text);
  const HINSTANCE result = ShellExecuteA(App().mainWindow, "open", program, parameters.c_str(),
                                         App().programDir.c_str(), SW_SHOWMAXIMIZED);
  return reinterpret_cast<INT_PTR>(result) > 32;
}

}  // namespace

const DLGPROC DefaultBrowserDialogProc =
    DialogProcedure<kDefaultBrowserMessages, kDefaultBrowserCommands>;

std::uint32_t BrowserWindowChoiceOption() { return g_browserWindowChoice; }

void SetBrowserWindowChoiceOption(std::uint32_t choice) {
  g_browserWindowChoice = choice == kFirstBrowserWindow ? kFirstBrowserWindow : kPromptForBrowserWindow;
}

BrowserCapture CaptureBrowserAddress() {
  BrowserCapture capture;
  BrowserWindows found;
  FindBrowserWindows(found);
  if (found.count == 0) {
    capture.noBrowserWindow = true;
    return capture;
  }
  if (g_browserWindowChoice == kPromptForBrowserWindow && found.count > 1 &&
      DialogBoxParamA(Instance(), kSelectBrowserDialogName, App().mainWindow,
                      DialogProcedure<kSelectBrowserMessages, kSelectBrowserCommands>,
                      reinterpret_cast<LPARAM>(&found)) != 1) {
    return capture;
  }
  const std::string& url = found.urls[found.selected];
  // An empty address bar is the scan's to report; every saved page would match it.
  // The question names the first window's address whichever window was chosen.
  if (url.empty() || MayDownloadAgain(url, found.urls[0])) capture.url = url;
  return capture;
}

void TellNoBrowserWindow() { ShowMessage(kNoBrowserWindowText, kAppName, MB_OK | MB_ICONSTOP); }

std::optional<std::string> CaptureBrowserUrl() {
  BrowserCapture capture = CaptureBrowserAddress();
  if (capture.noBrowserWindow) TellNoBrowserWindow();
  return std::move(capture.url);
}

bool MayDownloadAgain(std::string_view url, std::string_view shownUrl) {
  const std::optional<std::string> file = ProgramRegistry().FindFileForUrl(WithoutHttp(url));
  if (!file) return true;
  const std::string question =
      FormatText(kDownloadAgainFormat, std::string(shownUrl).c_str(), file->c_str());
  return ShowMessage(question, kAppName, MB_YESNO | MB_ICONQUESTION) == IDYES;
}

void OpenInBrowser(std::string_view text) {
  AppSettings& settings = Settings();
  bool opened = false;
  if (settings.browserKind == kBrowserExplorer) {
    opened = Launched(kExplorerProgram, text);
    if (!opened) {
      opened = Launched(kNetscapeProgram, text);
      settings.browserKind = kBrowserNetscape;
    }
  } else if (settings.browserKind == kBrowserNetscape) {
    opened = Launched(kNetscapeProgram, text);
    if (!opened) {
      opened = Launched(kExplorerProgram, text);
      settings.browserKind = kBrowserExplorer;
    }
  } else {
    opened = Launched(std::string(TextOf(settings.browserProgram)).c_str(), text);
  }
  if (!opened) ShowMessage(kCantOpenBrowserText, nullptr, MB_OK);
}

void OpenUrlOfFile(std::string_view file) {
  if (const std::optional<std::string> url = ProgramRegistry().FindUrlForFile(file)) OpenInBrowser("http://" + *url);
}

void OpenLinksPage() { OpenInBrowser(App().programDir + "\\" + kLinksPageName); }

LRESULT OnSelectBrowserCommand(HWND window, WORD, WORD, LPARAM) {
  DialogBoxParamA(Instance(), kDefaultBrowserDialogName, window, DefaultBrowserDialogProc, 0);
  return 0;
}

}  // namespace qb
