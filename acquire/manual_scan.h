// "Scan Manual" (command 50503): a page already on disk joins the saved pages under
// the site address the browser shows, and is scanned. The scan driver lies above
// this folder; the frame hands its entry in at start-up.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace qb {

// Requested under this name while the template is IDD_MANUAL: the request finds no
// template, so the address is never typed by hand.
constexpr char kManualUrlDialogName[] = "IDD_MANUAL_URL";
constexpr char kManualUrlStart[] = "http://www.";
constexpr char kSiteQuestionFormat[] = "This is a site URL to an HTML document:\n%s ?";
constexpr char kAddDocumentTitle[] = "Select a HTML document to add";
constexpr std::size_t kManualPathMax = 255;   // characters of the chosen path
constexpr std::size_t kManualTitleMax = 260;  // bytes of its file title

// Scans the page of `urlAndFile` (address, line feed, local file) in browser mode,
// recording the pair once the scan is done.
using SiteScan = void (*)(std::string_view urlAndFile);
void SetSiteScan(SiteScan scan);

// The address text shared with the hand-typed address dialog.
std::string& ManualUrlText();

// Command 50503. Only the confirmation asks anything; every other failure ends it
// without a word.
void RunManualScan(HWND owner);

}  // namespace qb
