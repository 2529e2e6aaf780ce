// Process-wide state of document acquisition, shared with the scan and the Links
// view: the folder new downloads go to, the pending download and POST request, and
// the program's own document registry.
#pragma once

#include <string>
#include <string_view>

#include "acquire/document_registry.h"
#include "acquire/http_request.h"

namespace qb {

// The folder the Links view shows (App().linksFolder), ending with a backslash.
// Until the main window sets it, it is the DataHtml root of the program directory.
const std::string& CurrentLinksFolder();
void SetCurrentLinksFolder(std::string folder);

// Filled before a download dialog runs; outlives it, overwritten by the next scan.
DownloadRequest& SharedDownloadRequest();
// The POST request text ("POST " + target); the POST dialog appends its header.
// At most kRequestTextMax characters.
std::string& SharedRequestText();

// "ConfigHtml.cfg" in the program directory.
DocumentRegistry ProgramRegistry();

// Prepares SharedDownloadRequest() for `url`, saving into the current Links folder
// (or the DataHtml root when that text is too short to be a folder).
PrepareStatus PreparePageDownload(std::string_view url);

}  // namespace qb
