#include "scan/form_statistics.h"

namespace qb {

std::string FormStatisticsText(const FormScan& scan) {
  // The first form's line stands even on a page that kept none.
  const int firstSlots = scan.forms.empty() ? 0 : scan.forms[0].fieldCount();
  std::string text = "Total Forms:                     " + std::to_string(scan.forms.size()) +
                     "\nTotal fields in Form1:        " + std::to_string(firstSlots);
  for (std::size_t f = 1; f < scan.forms.size(); ++f) {
    text += "\nTotal fields in Form" + std::to_string(f + 1) + ":        " +
            std::to_string(scan.forms[f].fieldCount());
  }
  if (!scan.scripts.empty()) text += "\nTotal Scripts(VB, Java):    " + std::to_string(scan.scripts.size());
  return text;
}

}  // namespace qb
