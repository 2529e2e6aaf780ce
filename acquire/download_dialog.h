// The modal dialog IDD_DOWNLOADING: one HTTP/1.0 transfer over Winsock 1.1 on the
// user-interface thread, with its progress lines in edit control 400. It posts
// itself command 735 from WM_INITDIALOG so that it is shown before the blocking
// calls start. No failure is reported inside it; the status simply stops at the
// last line shown and the dialog closes.
#pragma once

#include <windows.h>

#include <string>

namespace qb {

constexpr char kDownloadDialogName[] = "IDD_DOWNLOADING";
// Where a POST response lands, below the program directory.
constexpr char kPostResponseFile[] = "\\datahtml\\ReciveData.htm";

// GET of SharedDownloadRequest() into its local file, owned by the main window.
// Always returns 0: the clean-up ends the dialog with 0 after a completed transfer
// ended it with 1, and the later result is the one returned.
INT_PTR DownloadPage();
// POST of SharedRequestText() to the host of SharedDownloadRequest(); the response
// goes to kPostResponseFile. Always returns 0, as DownloadPage does.
INT_PTR PostRequest();

INT_PTR CALLBACK DownloadGetProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
INT_PTR CALLBACK DownloadPostProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

// The status text as last shown by a download dialog of this process.
const std::string& LastDownloadStatus();

}  // namespace qb
