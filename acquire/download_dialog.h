// The modal dialog IDD_DOWNLOADING: one HTTP/1.0 transfer with its progress lines
// in edit control 400. The transfer itself runs on a worker thread (transport.h);
// the dialog stays responsive, offers Cancel, ends a transfer that stalls for
// kStallLimitSeconds as a failed one and stops one that passes kMaxDownloadBytes.
// It posts itself command 735 from WM_INITDIALOG so that it is shown before the
// work starts.
#pragma once

#include <windows.h>

#include <string>

namespace qb {

constexpr char kDownloadDialogName[] = "IDD_DOWNLOADING";
// Where a POST response lands, below the program directory.
constexpr char kPostResponseFile[] = "\\datahtml\\ReciveData.htm";

// What the dialogs end with. A completed or failed transfer ends with 0 (the
// clean-up's result overrides the 1 of a completed one), so callers go on to open
// the local file; the others mean the user was told or chose (or is told by
// the caller: kDownloadBrokenOff), and the transfer's file is gone.
constexpr INT_PTR kDownloadEnded = 0;
constexpr INT_PTR kDownloadCancelled = IDCANCEL;
constexpr INT_PTR kDownloadTooLarge = 3;
// A secure download stopped: a certificate that can't be trusted, too many
// redirects, or a redirect from HTTPS to plain HTTP.
constexpr INT_PTR kDownloadRefused = 4;
constexpr INT_PTR kDownloadNotWritten = 5;  // the file could not take what came (a full disk)
constexpr INT_PTR kDownloadBrokenOff = 6;   // the server reset or went quiet after part of the page

constexpr char kNotWrittenText[] =
    "The HTML document could not be written to the disk, which may be full.\n"
    "The part received so far has been removed.";

// GET of SharedDownloadRequest() into its local file, owned by the main window.
INT_PTR DownloadPage();
// POST of SharedRequestText() to the host of SharedDownloadRequest(); the response
// goes to kPostResponseFile.
INT_PTR PostRequest();

// The status text as last shown by a download dialog of this process.
const std::string& LastDownloadStatus();

}  // namespace qb
