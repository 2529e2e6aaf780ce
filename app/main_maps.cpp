// The main window's message and command tables. Rows stand in the order the
// program has always kept them; lookup takes the first match.
#include "acquire/browser.h"
#include "app/frame.h"
#include "app/menu_state.h"
#include "base/app_state.h"
#include "bars/status_bar.h"
#include "keys/key_editor.h"
#include "keys/database_slots.h"
#include "keys/key_list.h"
#include "keys/merge_dialog.h"
#include "links/link_commands.h"
#include "links/links_view.h"
#include "resources/resource.h"

namespace qb {
namespace {

const MessageRow kMainMessages[] = {
    {WM_CREATE,         OnMainCreate},
    {WM_COMMAND,        OnMainCommand},
    {WM_SIZE,           OnMainSize},
    {WM_INITMENU,       OnMainInitMenu},
    {WM_MENUSELECT,     OnMainMenuSelect},
    {WM_NOTIFY,         OnMainNotify},
    {WM_DRAWITEM,       OnMainDrawItem},
    {WM_TIMER,          OnMainTimer},
    {WM_LBUTTONDOWN,    OnMainRecapture},
    {WM_MOUSEMOVE,      OnMainMouseMove},
    {WM_LBUTTONUP,      OnMainLButtonUp},
    {WM_RBUTTONDOWN,    OnMainRButtonDown},
    {WM_RBUTTONUP,      OnMainRecapture},
    {WM_CLOSE,          OnMainClose},
    {WM_DESTROY,        OnMainDestroy},
    {WM_SYSCOLORCHANGE, OnSysColorChange},
    {WM_DISPLAYCHANGE,  OnDisplayChange},
    {WM_CAPTURECHANGED, OnMainCaptureChanged},
    {WM_ACTIVATE,       OnMainActivate},
};

const CommandRow kMainCommands[] = {
    {IDM_NEW_DATABASE,        OnNewDatabaseCommand},
    {IDM_OPEN_DATABASE,       OnDatabaseFileCommand},
    {IDM_SAVE_DATABASE,       OnSaveDatabaseCommand},
    {IDM_SAVEAS_DATABASE,     OnDatabaseFileCommand},
    {IDM_GLOBAL_OPTIONS,      OnOptionsDialogCommand},
    {IDM_SELECT_BROWSER,      OnSelectBrowserCommand},
    {IDM_EXIT,                OnFileCommand},
    {IDM_TOOL_BAR,            OnBarToggleCommand},
    {IDM_DATABASES_BAR,       OnBarToggleCommand},
    {IDM_LINK_WINDOW,         OnViewToggleCommand},
    {IDM_KEY_WINDOW,          OnViewToggleCommand},
    {IDM_STATUS_BAR,          OnStatusBarCommand},
    {IDM_LINK_INFO,           OnLinkInfoCommand},
    {IDM_DATABASE_FIRST + 0,  OnSelectDatabaseCommand},
    {IDM_DATABASE_FIRST + 1,  OnSelectDatabaseCommand},
    {IDM_DATABASE_FIRST + 2,  OnSelectDatabaseCommand},
    {IDM_DATABASE_FIRST + 3,  OnSelectDatabaseCommand},
    {IDM_DATABASE_FIRST + 4,  OnSelectDatabaseCommand},
    {IDM_DATABASE_FIRST + 5,  OnSelectDatabaseCommand},
    {IDM_DATABASE_FIRST + 6,  OnSelectDatabaseCommand},
    {IDM_DATABASE_FIRST + 7,  OnSelectDatabaseCommand},
    {IDM_DATABASE_FIRST + 8,  OnSelectDatabaseCommand},
    {IDM_ADD_KEY,             OnAddKeyCommand},
    {IDM_ADD_COMPARE,         OnAddCompareCommand},
    {IDM_MODIFY_KEY,          OnModifyKeyCommand},
    {IDM_COPY_KEY,            OnCopyKeyCommand},
    {IDM_PASTE_KEY,           OnPasteKeyCommand},
    {IDM_DELETE_KEY,          OnDeleteKeyCommand},
    {IDM_RENAME_KEY,          OnRenameKeyCommand},
    {IDM_DELETE_DATABASE,     OnDeleteDatabaseCommand},
    {IDM_NEW_FOLDER,          OnNewFolderCommand},
    {IDM_RENAME_FOLDER,       OnRenameFolderCommand},
    {IDM_DELETE_LINK,         OnDeleteLinkCommand},
    {IDM_GOTO_SITE,           OnGotoSiteCommand},
    {IDM_MOVE_LINK,           OnMoveLinkCommand},
    {IDM_RENAME_LINK,         OnRenameLinkCommand},
    {IDM_DELETE_LINK,         OnDeleteLinkCommand},
    {IDM_LINKS_PAGE,          OnLinksPageCommand},
    {IDM_SCAN_HTML,           OnToolsCommand},
    {IDM_SCAN_FILE_HTML,      OnScanLinkCommand},
    {IDM_SCAN_PROMPT_HTML,    OnScanLinkCommand},
    {IDM_SCAN_MANUAL,         OnToolsCommand},
    {IDM_SCAN_OPTIONS,        OnToolsCommand},
    {IDM_COMPACT_CONFIGHTML,  OnToolsCommand},
    {IDM_SCAN_CLIPBOARD,      OnToolsCommand},
    {IDM_WINDOW_NORMAL,       OnWindowCommand},
    {IDM_WINDOW_ONTOP,        OnWindowCommand},
    {IDM_WINDOW_HORIZONTAL,   OnWindowCommand},
    {IDM_WINDOW_VERTICAL,     OnWindowCommand},
    {IDM_HELP_TOPICS,         OnHelpCommand},
    {IDM_ABOUT,               OnAboutBoxCommand},
    // The key list's Enter, passed on to the Links view (not a menu command).
    {IDM_LINKS_ENTER,         OnLinksEnterCommand},
};

// A key of the accelerator table acts on the view that has the keyboard: where
// the table names one view's command, the other view has its own.
enum FocusedView { kKeysFocused, kLinksFocused };

struct FocusedCommandRow {
  WORD pressed;
  FocusedView view;
  WORD command;
};

const FocusedCommandRow kFocusedCommands[] = {
    {IDM_DELETE_KEY,    kLinksFocused, IDM_DELETE_LINK},
    {IDM_RENAME_FOLDER, kKeysFocused,  IDM_RENAME_KEY},
};

WORD CommandForFocus(WORD pressed, HWND focus) {
  const HWND views[] = {App().keysView, App().linksView};
  for (const FocusedCommandRow& row : kFocusedCommands)
    if (row.pressed == pressed && focus && focus == views[row.view]) return row.command;
  return pressed;
}

// List-view notifications by the sending control.
struct ViewNotifyRow {
  UINT_PTR control;
  LRESULT (*handler)(HWND main, const NMHDR& header);
};

const ViewNotifyRow kViewNotifications[] = {
    {IDC_KEYS_VIEW,  OnKeyListNotify},
    {IDC_LINKS_VIEW, LinksViewNotify},
};

}  // namespace

LRESULT OnMainNotify(HWND window, UINT, WPARAM, LPARAM lParam) {
  const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
  for (const ViewNotifyRow& row : kViewNotifications)
    if (row.control == header.idFrom) return row.handler(window, header);
  return 0;
}

LRESULT OnMainDrawItem(HWND, UINT, WPARAM wParam, LPARAM lParam) {
  const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
  if (wParam == IDC_LINKS_VIEW) return DrawLinksRow(item);
  return FALSE;
}

const WNDPROC MainWindowProc = WindowProcedure<kMainMessages>;
const CommandMap kMainCommandMap = MakeCommandMap(kMainCommands, kDefaultWindowProc);

// A row of its own rather than the command table alone: a key pressed in a view may
// stand for another command.
LRESULT OnMainCommand(HWND window, UINT, WPARAM wParam, LPARAM lParam) {
  constexpr WORD kFromAccelerator = 1;
  if (HIWORD(wParam) == kFromAccelerator && lParam == 0) {
    const WORD id = CommandForFocus(LOWORD(wParam), GetFocus());
    // A key does nothing where the menu shows its command greyed.
    if (!CommandAvailable(id)) return 0;
    wParam = MAKEWPARAM(id, kFromAccelerator);
  }
  return LookupCommand(kMainCommandMap, window, wParam, lParam);
}

}  // namespace qb
