// The about box "IDD_ABOUT" (command 50902): the program's name, version and icon,
// a line of what it does, and two links to the page of useful web links (the page
// command 50306 opens).
#include "acquire/browser.h"
#include "app/frame.h"
#include "base/app_state.h"
#include "base/dispatch.h"
#include "resources/resource.h"

namespace qb {
namespace {

constexpr char kVersionText[] = "Version " QB_VERSION;

// The program's name in the system's message font, larger and bold; made once
// and kept for the run, as the box may open many times.
HFONT NameFont() {
  static HFONT font = nullptr;
  if (!font) {
    NONCLIENTMETRICSA metrics{};
    metrics.cbSize = sizeof(metrics);
    if (!SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0)) return nullptr;
    LOGFONTA lf = metrics.lfMessageFont;
    lf.lfWeight = FW_BOLD;
    lf.lfHeight = lf.lfHeight * 5 / 4;
    font = CreateFontIndirectA(&lf);
  }
  return font;
}

// The links' text: underlined, in the dialog's own font (the box keeps to its two
// message rows, so the links are told apart by the line alone); made once, like the name.
HFONT LinkFont(HWND dialog) {
  static HFONT font = nullptr;
  if (!font) {
    LOGFONTA lf{};
    HFONT dialogFont = reinterpret_cast<HFONT>(SendMessageA(dialog, WM_GETFONT, 0, 0));
    if (!dialogFont || !GetObjectA(dialogFont, sizeof(lf), &lf)) return nullptr;
    lf.lfUnderline = TRUE;
    font = CreateFontIndirectA(&lf);
  }
  return font;
}

LRESULT OnAboutOk(HWND dialog, WORD, WORD, LPARAM) {
  EndDialog(dialog, 1);
  return 1;
}

// Esc and the caption's close box (which the dialog manager turns into IDCANCEL)
// close it as OK does.
const CommandRow kAboutCommands[] = {
    {IDOK,                OnAboutOk},
    {IDCANCEL,            OnAboutOk},
    {IDC_ABOUT_LINKS,     OnLinksPageCommand},
    {IDC_ABOUT_WEB_PAGE,  OnLinksPageCommand},
};

LRESULT OnAboutInit(HWND dialog, UINT, WPARAM, LPARAM) {
  if (HFONT font = NameFont())
    SendDlgItemMessageA(dialog, IDC_ABOUT_NAME, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  SetDlgItemTextA(dialog, IDC_ABOUT_VERSION, kVersionText);
  if (HFONT font = LinkFont(dialog)) {
    SendDlgItemMessageA(dialog, IDC_ABOUT_LINKS, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    SendDlgItemMessageA(dialog, IDC_ABOUT_WEB_PAGE, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  }
  return 1;  // the focus goes to OK
}

const MessageRow kAboutMessages[] = {
    {WM_INITDIALOG,       OnAboutInit},
};

}  // namespace

// Clicks on the links arrive as STN_CLICKED; the menu command as a plain command.
LRESULT OnLinksPageCommand(HWND, WORD, WORD, LPARAM) {
  OpenLinksPage();
  return 0;
}

LRESULT OnAboutBoxCommand(HWND window, WORD, WORD, LPARAM) {
  DialogBoxParamA(App().instance, "IDD_ABOUT", window,
                  DialogProcedure<kAboutMessages, kAboutCommands>, 0);
  return 0;
}

}  // namespace qb
