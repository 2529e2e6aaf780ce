#include "app/options.h"

#include "app/frame.h"
#include "base/app_state.h"
#include "base/dispatch.h"
#include "base/help.h"
#include "resources/resource.h"

namespace qb {
namespace {

bool Checked(HWND dialog, int id) { return IsDlgButtonChecked(dialog, id) == BST_CHECKED; }

LRESULT OnOptionsOk(HWND dialog, WORD, WORD, LPARAM) {
  AppSettings& s = Settings();
  s.copyDescription = Checked(dialog, IDC_OPT_COPY_DESCRIPTION) ? 1 : 0;
  s.formStatistics = Checked(dialog, IDC_OPT_FORM_STATISTICS) ? 1 : 0;
  SetBrowserWindowChoiceOption(Checked(dialog, IDC_OPT_PROMPT_BROWSER) ? kPromptForBrowserWindow
                                                                       : kFirstBrowserWindow);
  // Written to the settings file at shut-down with everything else.
  EndDialog(dialog, 1);
  return 1;
}

LRESULT OnOptionsHelp(HWND, WORD, WORD, LPARAM) {
  ShowHelpTopic(kOptionsHelpContext);
  return 1;
}

const CommandRow kOptionsCommands[] = {
    {IDOK,                OnOptionsOk},
    {IDCANCEL,            EndDialogCancelled},
    {IDC_HELP_BUTTON,     OnOptionsHelp},
};

LRESULT OnOptionsInit(HWND dialog, UINT, WPARAM, LPARAM) {
  const AppSettings& s = Settings();
  CheckDlgButton(dialog, IDC_OPT_COPY_DESCRIPTION, s.copyDescription ? BST_CHECKED : BST_UNCHECKED);
  CheckRadioButton(dialog, IDC_OPT_FIRST_BROWSER, IDC_OPT_PROMPT_BROWSER,
                   IDC_OPT_FIRST_BROWSER + static_cast<int>(BrowserWindowChoiceOption()));
  CheckDlgButton(dialog, IDC_OPT_FORM_STATISTICS, s.formStatistics ? BST_CHECKED : BST_UNCHECKED);
  return 1;
}

const MessageRow kOptionsMessages[] = {
    {WM_INITDIALOG,       OnOptionsInit},
};

}  // namespace

LRESULT OnOptionsDialogCommand(HWND window, WORD, WORD, LPARAM) {
  DialogBoxParamA(App().instance, "IDD_OPTIONS", window,
                  DialogProcedure<kOptionsMessages, kOptionsCommands>, 0);
  return 0;
}

}  // namespace qb
