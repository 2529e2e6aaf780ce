// What holds after any page pass: everything kept lies within the page, in page
// order, and within every limit.
#pragma once

#include <cstddef>

#include "scan/form_parser.h"

namespace qb {

// nullptr when everything holds, else what does not.
inline const char* BrokenLimit(const FormScan& scan) {
  const std::size_t length = scan.document.length();
  if (scan.forms.size() > kMaxForms) return "too many forms";
  ScanPosition previousEnd = 0;
  for (const HtmlForm& form : scan.forms) {
    // The parser treats "http" in any letter case as already absolute.
    if (!form.valid || !form.method || !StartsNoCase(TextOf(form.action), "http")) {
      return "a kept form without a POST method or an absolute action";
    }
    if (form.fieldCount() < 1 || form.fieldCount() > kMaxFieldSlots) return "slot count";
    if (form.fields[0].kind != kFieldForm) return "slot 0 is not the form";
    for (const FormField& field : form.fields) {
      if (field.tagStart < previousEnd || field.tagEnd <= field.tagStart) return "slot order";
      if (TextOf(field.label).size() > kMaxLabelBytes) return "label too long";
      if (field.kind == kFieldSelect && field.selectIndex >= static_cast<int>(scan.selects.size())) {
        return "select row";
      }
      previousEnd = field.tagEnd;
    }
    if (form.end < previousEnd || form.end > length) return "form end";
    previousEnd = form.end;
  }
  if (scan.selects.size() > kMaxSelects) return "too many selects";
  for (const auto& options : scan.selects) {
    if (options.size() > kMaxOptions) return "too many options";
  }
  if (scan.scripts.size() > kMaxScripts) return "too many scripts";
  for (const ScriptBlock& script : scan.scripts) {
    if (script.end <= script.start || script.end > length) return "script range";
  }
  if (scan.tablePrefix.size() > kMaxTablePrefixBytes) return "table prefix too long";
  if (!scan.tablePrefix.empty() && scan.tablePrefix.back() != '>') return "table prefix end";
  return nullptr;
}

}  // namespace qb
