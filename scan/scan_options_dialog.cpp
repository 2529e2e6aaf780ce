#include "scan/scan_options_dialog.h"

#include "base/app_state.h"
#include "base/dispatch.h"
#include "base/help.h"
#include "resources/resource.h"
#include "scan/scan_options.h"

namespace qb {
namespace {

// Each kind has an ask group of three buttons (Never, Allways, UnMatched) from
// IDC_SCANOPT_ASK_FIRST and an add-keys group of two (Never, UnMatched) from
// IDC_SCANOPT_ADD_FIRST, in prompt-kind order.
constexpr int kAskButtons = 3;
constexpr int kAddButtons = 2;
static_assert(IDC_SCANOPT_ASK_FIRST + kAskButtons * static_cast<int>(kScanKindCount) == IDC_SCANOPT_ADD_FIRST,
              "the add-keys groups follow the ask groups");

int AskButton(int kind, std::uint32_t choice) {
  return IDC_SCANOPT_ASK_FIRST + kind * kAskButtons + static_cast<int>(choice);
}
int AddButton(int kind, std::uint32_t choice) {
  return IDC_SCANOPT_ADD_FIRST + kind * kAddButtons + static_cast<int>(choice);
}

bool Checked(HWND dialog, int id) { return IsDlgButtonChecked(dialog, id) == BST_CHECKED; }

void Check(HWND dialog, int first, int count, int chosen) {
  for (int id = first; id < first + count; ++id) {
    CheckDlgButton(dialog, id, id == chosen ? BST_CHECKED : BST_UNCHECKED);
  }
}

LRESULT OnScanOptionsInit(HWND dialog, UINT, WPARAM, LPARAM) {
  const ScanOptions options = ScanOptionsOf(Settings());
  for (int kind = 0; kind < static_cast<int>(kScanKindCount); ++kind) {
    const auto prompt = static_cast<PromptKind>(kind);
    Check(dialog, AskButton(kind, kAskNever), kAskButtons, AskButton(kind, AskFor(options, prompt)));
    Check(dialog, AddButton(kind, kAddKeysNever), kAddButtons,
          AddButton(kind, AddKeysFor(options, prompt) ? kAddKeysUnMatched : kAddKeysNever));
  }
  return 1;
}

LRESULT OnScanOptionsOk(HWND dialog, WORD, WORD, LPARAM) {
  ScanOptions options;
  for (int kind = 0; kind < static_cast<int>(kScanKindCount); ++kind) {
    options.askForSelect[kind] = Checked(dialog, AskButton(kind, kAskNever))     ? kAskNever
                                 : Checked(dialog, AskButton(kind, kAskAllways)) ? kAskAllways
                                                                                 : kAskUnMatched;
    options.addKeys[kind] = Checked(dialog, AddButton(kind, kAddKeysUnMatched)) ? kAddKeysUnMatched : kAddKeysNever;
  }
  StoreScanOptions(options, Settings());
  EndDialog(dialog, 1);
  return 1;
}

LRESULT OnScanOptionsHelp(HWND, WORD, WORD, LPARAM) {
  ShowHelpTopic(kScanOptionsHelpContext);
  return 1;
}

const CommandRow kScanOptionsCommands[] = {
    {IDOK,                OnScanOptionsOk},
    {IDCANCEL,            EndDialogCancelled},
    {IDC_HELP_BUTTON,     OnScanOptionsHelp},
};

const MessageRow kScanOptionsMessages[] = {
    {WM_INITDIALOG,       OnScanOptionsInit},
};

}  // namespace

INT_PTR RunScanOptionsDialog(HWND owner) {
  return DialogBoxParamA(App().instance, kScanOptionsDialogName, owner,
                         DialogProcedure<kScanOptionsMessages, kScanOptionsCommands>, 0);
}

}  // namespace qb
