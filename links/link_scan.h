// Scanning a saved page from the Links view: a double click or Enter on a
// document row, "&Scan File HTML" and "&Scan Prompt HTML". The one place the view
// hands a saved page to the scan driver.
#pragma once

#include <string>

namespace qb {

// `path`: current Links folder + name + "." + extension. `promptAll`: every field
// goes to the prompt.
void ScanSavedLink(const std::string& path, bool promptAll = false);

}  // namespace qb
