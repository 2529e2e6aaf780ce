// The main window's message and command tables. Rows stand in the order the
// program has always kept them; lookup takes the first match.
#include "app/frame.h"
#include "bars/status_bar.h"
#include "keys/key_editor.h"
#include "keys/merge_dialog.h"
#include "resources/resource.h"

namespace qb {
namespace {

const MessageRow kMainMessages[] = {
    {WM_CREATE,         OnMainCreate},
    {WM_COMMAND,        OnMainCommand},
    {WM_SIZE,           OnMainSize},
    {WM_INITMENU,       OnMainInitMenu},
    {WM_MENUSELECT,     OnMainMenuSelect},
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
};

const CommandRow kMainCommands[] = {
    {IDM_GLOBAL_OPTIONS,     OnOptionsDialogCommand},
    {IDM_EXIT,               OnFileCommand},
    {IDM_TOOL_BAR,           OnBarToggleCommand},
    {IDM_DATABASES_BAR,      OnBarToggleCommand},
    {IDM_LINK_WINDOW,        OnViewToggleCommand},
    {IDM_KEY_WINDOW,         OnViewToggleCommand},
    {IDM_STATUS_BAR,         OnStatusBarCommand},
    {IDM_ADD_KEY,            OnAddKeyCommand},
    {IDM_ADD_COMPARE,        OnAddCompareCommand},
    {IDM_MODIFY_KEY,         OnModifyKeyCommand},
    {IDM_SCAN_OPTIONS,       OnToolsCommand},
    {IDM_COMPACT_CONFIGHTML, OnToolsCommand},
    {IDM_WINDOW_NORMAL,      OnWindowCommand},
    {IDM_WINDOW_ONTOP,       OnWindowCommand},
    {IDM_WINDOW_HORIZONTAL,  OnWindowCommand},
    {IDM_WINDOW_VERTICAL,    OnWindowCommand},
    {IDM_HELP_TOPICS,        OnHelpCommand},
};

}  // namespace

const MessageMap kMainMessageMap = MakeMessageMap(kMainMessages, kDefaultWindowProc);
const CommandMap kMainCommandMap = MakeCommandMap(kMainCommands, kDefaultWindowProc);

LRESULT CALLBACK MainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return LookupMessage(kMainMessageMap, window, message, wParam, lParam);
}

LRESULT OnMainCommand(HWND window, UINT, WPARAM wParam, LPARAM lParam) {
  return LookupCommand(kMainCommandMap, window, wParam, lParam);
}

}  // namespace qb
