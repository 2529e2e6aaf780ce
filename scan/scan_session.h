// What one scan carries from its start to its filled page: the keys it matches
// against, its options and mode, the prompt (if any), the current key and, in
// direct-post mode, the request text. One session serves one scan; while it runs
// the keys change only through its prompt.
#pragma once

#include <string>

#include "keys/key_table.h"
#include "scan/form_parser.h"
#include "scan/no_match_prompt.h"
#include "scan/scan_options.h"

namespace qb {

class ScanSession {
 public:
  ScanSession(KeyTable& keyTable, const ScanOptions& scanOptions, bool askEveryField, bool postDirectly)
      : keys(keyTable), options(scanOptions), promptAll(askEveryField), directPost(postDirectly),
        promptsSuppressed(postDirectly) {}

  KeyTable& keys;
  ScanOptions options;
  bool promptAll;
  bool directPost;  // prompts are suppressed and the first form's pairs collected
  NoMatchPrompt* prompt = nullptr;
  // Starts as the key selected in the key list; every confirmed prompt replaces
  // it. While it has no Description, text fields keep the page's values.
  int currentKey = kNoKey;
  std::string host;  // of the page address; relative form actions resolve against it
  std::string_view scheme = kPlainScheme;  // of the address the page finally came from
  bool promptsSuppressed;  // direct post, or "Cancel All" was chosen
  std::string requestText;  // "POST " + action + "?" + pairs (direct post only)

  // FindKeyBySearchName answered from an index of the keys: built at the first
  // look-up and again after a prompt, the only thing that changes the keys
  // during a scan.
  std::uint32_t FindKey(TextBlock fieldName);
  // A key's text as it meets the page's texts: in UTF-8 on a UTF-8 page.
  std::string KeyTextForPage(const FormScan& scan, std::uint32_t key, KeyField field) const;
  bool MayPrompt() const { return prompt != nullptr && !promptsSuppressed; }
  bool CurrentKeyHasDescription() const;
  // Asks the prompt; "Cancel All" suppresses every later prompt, and a confirmed
  // key becomes the current key.
  PromptAnswer Ask(const FormScan& scan, const PromptRequest& request);

 private:
  SearchNameIndex searchNames_;
  bool searchNamesCurrent_ = false;
};

// For each named radio button, the run of radio buttons after it with the same
// name: when the key its name matches lists none of their values, the prompt
// offers them, and the button chosen is checked whatever the keys say. Runs only
// when the radio option is not Never or the scan asks for every field; a group of
// n buttons can be offered n times, each time from the next button on.
void CheckRadioGroups(FormScan& scan, ScanSession& session);

}  // namespace qb
