// The about box "IDD_ABOUT" (command 50902): the program's name, version and icon
// and a line of what it does.
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

LRESULT OnAboutOk(HWND dialog, WORD, WORD, LPARAM) {
  EndDialog(dialog, 1);
  return 1;
}

const CommandRow kAboutCommands[] = {
    {IDOK,                OnAboutOk},
};
const CommandMap kAboutCommandMap = MakeCommandMap(kAboutCommands, kDefaultNone);

LRESULT OnAboutCommand(HWND dialog, UINT, WPARAM wParam, LPARAM lParam) {
  return LookupCommand(kAboutCommandMap, dialog, wParam, lParam);
}

LRESULT OnAboutInit(HWND dialog, UINT, WPARAM, LPARAM) {
  if (HFONT font = NameFont())
    SendDlgItemMessageA(dialog, IDC_ABOUT_NAME, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  SetDlgItemTextA(dialog, IDC_ABOUT_VERSION, kVersionText);
  return 1;  // the focus goes to OK
}

const MessageRow kAboutMessages[] = {
    {WM_COMMAND,          OnAboutCommand},
    {WM_INITDIALOG,       OnAboutInit},
};
const MessageMap kAboutMessageMap = MakeMessageMap(kAboutMessages, kDefaultNone);

INT_PTR CALLBACK AboutDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  return LookupMessage(kAboutMessageMap, dialog, message, wParam, lParam);
}

}  // namespace

LRESULT OnAboutBoxCommand(HWND window, WORD, WORD, LPARAM) {
  DialogBoxParamA(App().instance, "IDD_ABOUT", window, AboutDialogProc, 0);
  return 0;
}

}  // namespace qb
