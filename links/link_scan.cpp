#include "links/link_scan.h"

namespace qb {

// The scan driver of saved pages is not part of the program yet; until it is,
// opening a document row only selects it.
void ScanSavedLink(const std::string&) {}

}  // namespace qb
