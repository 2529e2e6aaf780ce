// The question a scan asks about one field: which key answers it and, for a
// radio group or a select, which value to choose. The scan only sees this
// interface; the dialog behind it lives with the user interface. A scan without
// a prompt asks nothing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "scan/form_parser.h"
#include "scan/matcher.h"
#include "scan/scan_options.h"

namespace qb {

struct PromptRequest {
  PromptKind kind = kPromptText;
  int form = 0;  // the field is scan.forms[form].fields[slot]
  int slot = 0;
  int selectIndex = -1;                // select prompts: the row of scan.selects
  std::uint32_t matchedKey = kNoMatch;  // the key the field's name matched
  std::vector<std::string> radioValues;  // radio prompts: the group's values from this button on
};

struct PromptAnswer {
  int result = 0;               // 1 OK; 0 Cancel or Cancel All
  std::uint32_t key = kNoMatch;  // the key chosen
  int valueIndex = -1;          // radio and select prompts: the value chosen
  bool cancelAll = false;       // ask nothing more in this scan
};

class NoMatchPrompt {
 public:
  virtual ~NoMatchPrompt() = default;
  virtual PromptAnswer Ask(const FormScan& scan, const PromptRequest& request) = 0;
};

}  // namespace qb
