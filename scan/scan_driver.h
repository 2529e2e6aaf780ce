// One whole scan: the page from the browser's address, from an address with its
// already downloaded file, or from a saved document; its forms parsed, matched and
// prompted; the filled page written and opened in the browser (or, in direct-post
// mode, posted). Every failure is one message box and an early return; whatever
// the scan allocated is freed on every path.
#pragma once

#include <string_view>

namespace qb {

enum ScanSource : int {
  kScanSavedDocument = 0,  // `location` is the document's path
  kScanWebPage = 1,        // the browser's address, or `location` = address LF file,
                           // or an address alone (downloaded first; a path is a saved page)
};

constexpr char kNoLinkText[] = "Can't get HTTP link from your Internet Browser";
constexpr char kCantOpenLocationFormat[] = "Can not open a file from the location:\n%s";
constexpr char kCantDownloadText[] = "Can't download HMTL file from the Internet connection";
constexpr char kNotSavedByProgramText[] =
    "This file was not downloaded and saved by this program\n"
    "You can only open a files which was previously saved by this program.";
constexpr char kNoFormText[] =
    "This Form can not be filled becouse there is no FORM or\n"
    "page has a frame window which point to another page or\n"
    "HTML page can not be downloaded. Try it manualy if you are sure there is a FORM.";

constexpr char kNoClipboardAddressText[] =
    "In your browser, click the address bar and copy the address (Ctrl+L, then Ctrl+C); "
    "then choose Scan Address from Clipboard.";
constexpr char kOfferClipboardText[] =
    "Quellbarrow could not read your browser's address. Scan the address on the clipboard?";

// `fromFileOrUrl`: the caller supplies `location`. `promptAll`: every field goes to
// the prompt. `directPost`: no prompt, and the fields are posted instead of the
// filled page being opened (no command sets it). Always 0.
int ScanHtml(int source, std::string_view location, bool fromFileOrUrl, bool promptAll, bool directPost);

// "Scan Address from Clipboard": the clipboard's first line, scanned as "Scan HTML"
// scans the browser's address (a web address is downloaded, a "file:///" address
// or a path is read as a saved page). Always 0.
int ScanClipboardAddress();

// What "Scan File HTML", "Scan Prompt HTML" and the Links view run on a saved page.
int ScanSavedDocument(std::string_view path, bool promptAll);

// The key the Keys view has selected (its rows stand in key order); kNoKey for none.
int SelectedKeyInView();

}  // namespace qb
