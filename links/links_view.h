// The Links view: the folder tree of saved pages under DataHtml, one folder at a
// time, in the main window's list view IDC_LINKS_VIEW. The folder it shows is
// App().linksFolder, where new downloads are saved too.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <string>

#include "links/link_list.h"

namespace qb {

// The view's rows are the listing's records themselves (a virtual list): inserting
// 32,000 rows one by one costs the list control more than the directory search
// that found them, and deleting them as much again.
// A folder that is a link may lead out of DataHtml: pages saved, folders made and
// deletions done in it would land there, and renaming it can move the place it
// leads to, so the view neither goes into it nor renames it.
constexpr char kFolderLinkText[] =
    "This folder is a link to another place on the disk.\n"
    "Quellbarrow keeps its pages inside DataHtml and leaves it alone.";
constexpr DWORD kLinksViewExtraStyle = LVS_OWNERDATA;

// The row height the vertical scroll memory counts in.
constexpr int kLinksRowHeight = 17;

struct LinksViewState {
  int depth = 0;         // 0 at the DataHtml root
  int sortColumn = kSortName;
  std::string selectedName;  // the last row hit: "name.ext" for a document
  LinkListing listing;
  HIMAGELIST images = nullptr;
};

LinksViewState& LinksView();

// Lists `folder` (ending with a backslash) into the view; false when the text is
// empty or the folder cannot be searched.
bool RefreshLinks(const std::string& folder);
// Lists the current folder again.
bool RefreshLinksView();
// Starts the view at the DataHtml root: depth 0, first rows remembered.
void ResetLinksView();

// The four columns, sized for the main window's client width.
void CreateLinksColumns(HWND main);

// The main window's WM_NOTIFY and WM_DRAWITEM for the Links view's control.
LRESULT LinksViewNotify(HWND main, const NMHDR& header);
LRESULT DrawLinksRow(const DRAWITEMSTRUCT& item);

// Enter in a list: opens the selected row as a double click would.
void LinksEnter();
// The same, as a command row: the key list passes its Enter on with IDM_LINKS_ENTER.
LRESULT OnLinksEnterCommand(HWND window, WORD id, WORD code, LPARAM control);

// The selected row's record, or null when no row is selected.
const LinkEntry* SelectedLinkEntry();
// Whether the view is shown (its own visible style, whatever its parent's).
bool LinksViewShown();

}  // namespace qb
