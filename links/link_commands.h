// The Links menu's commands and "&Link info", rows of the main window's command
// table: new folder, rename, delete, move a saved page, the page's address and
// site, and the scans of a saved page.
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
LRESULT OnGotoSiteCommand(HWND window, WORD id, WORD code, LPARAM control);
// 50501 "&Scan File HTML" and 50502 "&Scan Prompt HTML" (every field asked).
LRESULT OnScanLinkCommand(HWND window, WORD id, WORD code, LPARAM control);

// The view's label edit ended with `name`: renamed as "&Rename Folder" renames,
// after the same checks (a refused name is told to the user, owner `owner`).
void RenameSelectedLink(HWND owner, const std::string& name);

// Empties and removes `folder` depth first, at most kDeleteLevelsMax levels deep;
// sub-folders are entered only with `subfolders`, so without it a folder that
// holds one stays. A folder link (symbolic link, junction) is never entered: the
// link itself is removed where the system can tell it from its target, otherwise
// it stays. Failures are not reported.
void DeleteFolderTree(const std::string& folder, bool subfolders);

}  // namespace qb
