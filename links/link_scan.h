// Scanning a saved page from the Links view: a double click or Enter on a
// document row. The one place the view hands a saved page to the scan driver.
#pragma once

#include <string>

namespace qb {

// `path`: current Links folder + name + "." + extension.
void ScanSavedLink(const std::string& path);

}  // namespace qb
