// The user's web browser: which one it is (IDD_DEFAULT_BROWSER, command 50009),
// reading the address it shows, and opening a page in it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qb {

constexpr DWORD kDefaultBrowserHelpContext = 1209;
constexpr char kDefaultBrowserDialogName[] = "IDD_DEFAULT_BROWSER";
constexpr char kSelectBrowserDialogName[] = "IDD_SELECT_BROWSER";
constexpr char kExplorerProgram[] = "Iexplore.exe";
constexpr char kNetscapeProgram[] = "Netscape.exe";
// Shorter than this, the program path cannot name an executable.
constexpr std::size_t kMinProgramPathLength = 5;

constexpr char kNoBrowserWindowText[] =
    "Your Internet browser ( Internet Explorer or Netscape ) must pointed\n"
    "to an HTML Form page and then click on \"Scan HTML\" button.";
constexpr char kSelectLinkText[] = "You must select which HTML link you want to Scan";
constexpr char kDownloadAgainFormat[] =
    "URL: %s\nFILE: %s\n\nThis site URL allready exist in ConfigHtml.cfg file.\n"
    "Do you want to download an HTML document again ?";
constexpr char kTypeTitleText[] = "You must type an Internet browser title name";
constexpr char kSelectProgramText[] = "You must select an Internet browser Executable file";
constexpr char kCantOpenBrowserText[] = "Can not open specified Internet Browser ";

// Which browser window a scan reads its address from; not kept in the settings
// file, so every run starts by asking.
enum BrowserWindowChoice : std::uint32_t {
  kFirstBrowserWindow = 0,
  kPromptForBrowserWindow = 1,
};
std::uint32_t BrowserWindowChoiceOption();
void SetBrowserWindowChoiceOption(std::uint32_t choice);

// The address shown by the browser's window, as it stands (scheme included when
// the browser shows one; empty when its address bar is). Nothing when no browser
// window is open, the user cancels the choice of window, or declines to download
// a page the registry already knows.
std::optional<std::string> CaptureBrowserUrl();

// The same capture without the message for no browser window, which the caller
// gives (TellNoBrowserWindow) when it has nothing else to offer.
struct BrowserCapture {
  std::optional<std::string> url;
  bool noBrowserWindow = false;
};
BrowserCapture CaptureBrowserAddress();
void TellNoBrowserWindow();

// Asks before a page the registry knows under `url` is downloaded again; the
// question names `shownUrl`. True when the download may go on.
bool MayDownloadAgain(std::string_view url, std::string_view shownUrl);

// Opens `text` (an address or a local file) in the browser of the settings. A bare
// Internet Explorer or Netscape that cannot be started gives way to the other one,
// which then stays the browser kind.
void OpenInBrowser(std::string_view text);

// The site of a saved page: "http://" + the address the registry holds for `file`.
// Nothing happens for a page the registry does not know.
void OpenUrlOfFile(std::string_view file);

// The page of useful links shipped beside the program, opened off line.
constexpr char kLinksPageName[] = "weblinks.htm";
void OpenLinksPage();

extern const DLGPROC DefaultBrowserDialogProc;

// Command 50009 "&Select Internet Browser".
LRESULT OnSelectBrowserCommand(HWND window, WORD id, WORD code, LPARAM control);

}  // namespace qb
