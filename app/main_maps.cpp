// The main window's message and command tables. Rows stand in the order the
// program has always kept them; lookup takes the first match.
#include "app/frame.h"
#include "resources/resource.h"

namespace qb {
namespace {

const MessageRow kMainMessages[] = {
    {WM_CREATE,         OnMainCreate},
    {WM_COMMAND,        OnMainCommand},
    {WM_CLOSE,          OnMainClose},
    {WM_DESTROY,        OnMainDestroy},
    {WM_DISPLAYCHANGE,  OnDisplayChange},
};

const CommandRow kMainCommands[] = {
    {IDM_EXIT,          OnFileCommand},
    {IDM_SCAN_OPTIONS,       OnToolsCommand},
    {IDM_COMPACT_CONFIGHTML, OnToolsCommand},
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
