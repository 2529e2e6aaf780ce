#include "links/link_scan.h"

#include "scan/scan_driver.h"

namespace qb {

void ScanSavedLink(const std::string& path, bool promptAll) { ScanSavedDocument(path, promptAll); }

}  // namespace qb
