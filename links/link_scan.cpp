#include "links/link_scan.h"

#include "scan/scan_driver.h"

namespace qb {

void ScanSavedLink(const std::string& path) { ScanSavedDocument(path, false); }

}  // namespace qb
