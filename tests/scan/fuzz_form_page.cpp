// The page pass over any bytes: it ends, and everything it keeps lies within the
// page and within every limit.
#include <cstdlib>
#include <string_view>

#include "scan/form_json.h"
#include "scan/form_parser.h"

namespace {

void Check(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qb::FormScan scan;
  if (!scan.document.Assign(std::string_view(reinterpret_cast<const char*>(data), size))) return 0;
  qb::ParseFormPage(scan, "fuzz.example");

  const std::size_t length = scan.document.length();
  Check(scan.forms.size() <= qb::kMaxForms);
  for (const qb::HtmlForm& form : scan.forms) {
    Check(form.valid && form.action && form.method);
    Check(form.fieldCount() >= 1 && form.fieldCount() <= qb::kMaxFieldSlots);
    qb::ScanPosition previousEnd = 0;
    for (const qb::FormField& field : form.fields) {
      Check(previousEnd <= field.tagStart && field.tagStart < field.tagEnd);
      Check(field.tagEnd <= length);
      Check(qb::TextOf(field.label).size() <= qb::kMaxLabelBytes);
      Check(field.kind != qb::kFieldSelect ||
            field.selectIndex < static_cast<int>(scan.selects.size()));
      previousEnd = field.tagEnd;
    }
    Check(previousEnd <= form.end && form.end <= length);
  }
  Check(scan.selects.size() <= qb::kMaxSelects);
  for (const auto& options : scan.selects) Check(options.size() <= qb::kMaxOptions);
  Check(scan.scripts.size() <= qb::kMaxScripts);
  for (const qb::ScriptBlock& script : scan.scripts) {
    Check(script.start < script.end && script.end <= length);
  }
  Check(scan.tablePrefix.size() <= qb::kMaxTablePrefixBytes);
  Check(scan.tablePrefix.empty() || scan.tablePrefix.back() == '>');
  Check(!qb::FormScanToJson(scan).empty());
  return 0;
}
