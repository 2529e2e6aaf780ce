// The dialog IDD_NOMATCH behind the scan's prompt: the user picks the key that
// fills a field and, for a radio group or a select, the value to choose; the key
// may learn the field's name (and value) or forget it.
#pragma once

#include <windows.h>

#include "scan/no_match_prompt.h"

namespace qb {

constexpr char kNoMatchDialogName[] = "IDD_NOMATCH";
constexpr DWORD kNoMatchHelpContext = 1606;
constexpr std::size_t kPromptTextMax = 260;  // the field name shown, a value learned
constexpr std::size_t kCreateNewTextMax = 2000;  // the texts "Create New" hands the key editor

constexpr char kSelectKeyFirstText[] = "First, you must select a key";
constexpr char kSelectValueToLearnText[] =
    "You must Select an item from the ListView box.\nJust click on the item which you want to Select";
constexpr char kSelectValueToForgetText[] =
    "You must Select an item from the ListView box.\nto select an value which you want to remove";
constexpr char kNoKeyListText[] = "Unable to create Key list window";

class NoMatchDialog : public NoMatchPrompt {
 public:
  // Runs the dialog over the main window, on the keys of the current database.
  PromptAnswer Ask(const FormScan& scan, const PromptRequest& request) override;
};

}  // namespace qb
