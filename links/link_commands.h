// The Links menu's commands and "&Link info", rows of the main window's command
// table: new folder, rename, delete, move a saved page, and the page's address.
#pragma once

#include <windows.h>

#include <string>

namespace qb {

LRESULT OnNewFolderCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnRenameFolderCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnDeleteLinkCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnRenameLinkCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnMoveLinkCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnLinkInfoCommand(HWND window, WORD id, WORD code, LPARAM control);

// Empties and removes `folder` depth first, at most kDeleteLevelsMax levels deep;
// sub-folders are entered only with `subfolders`, so without it a folder that
// holds one stays. Failures are not reported.
void DeleteFolderTree(const std::string& folder, bool subfolders);

}  // namespace qb
