// The page pass over any bytes: it ends, and what it keeps holds.
#include <cstdlib>
#include <string_view>

#include "scan/form_json.h"
#include "tests/scan/scan_limits.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qb::FormScan scan;
  if (!scan.document.Assign(std::string_view(reinterpret_cast<const char*>(data), size))) return 0;
  qb::ParseFormPage(scan, "fuzz.example");
  if (qb::BrokenLimit(scan) || qb::FormScanToJson(scan).empty()) std::abort();
  return 0;
}
