// The tool bar: the commands a user reaches for most, as picture buttons.
#include "bars/dock_bar.h"
#include "base/app_state.h"
#include "base/dispatch.h"
#include "resources/resource.h"

namespace qb {
namespace {

// Pictures in bitmap 500, left to right.
enum ToolPicture : int {
  kPicOpenDatabase,
  kPicSaveDatabase,
  kPicScanHtml,
  kPicScanFile,
  kPicAddKey,
  kPicModifyKey,
  kPicDeleteKey,
  kPicNewFolder,
  kPicHelp,
  kPicScanClipboard,
};

const BarButton kToolButtons[] = {
    {kPicOpenDatabase, IDM_OPEN_DATABASE,  "Open database"},
    {kPicSaveDatabase, IDM_SAVE_DATABASE,  "Save database"},
    {0,                0,                  nullptr},
    {kPicScanHtml,     IDM_SCAN_HTML,      "Scan HTML"},
    {kPicScanFile,     IDM_SCAN_FILE_HTML, "Scan File HTML"},
    {kPicScanClipboard, IDM_SCAN_CLIPBOARD, "Scan Address from Clipboard"},
    {0,                0,                  nullptr},
    {kPicAddKey,       IDM_ADD_KEY,        "Add key"},
    {kPicModifyKey,    IDM_MODIFY_KEY,     "Modify key"},
    {kPicDeleteKey,    IDM_DELETE_KEY,     "Delete key"},
    {0,                0,                  nullptr},
    {kPicNewFolder,    IDM_NEW_FOLDER,     "New Folder"},
    {0,                0,                  nullptr},
    {kPicHelp,         IDM_HELP_TOPICS,    "Help Topics"},
};
constexpr int kToolButtonCount = static_cast<int>(sizeof(kToolButtons) / sizeof(kToolButtons[0]));
static_assert(kToolButtonCount < kBarButtonRows, "each button has its state row");

const BarKind kToolBarKind = {
    kToolButtons, kToolButtonCount, IDM_TOOL_BAR, "Tool bar", nullptr, nullptr, nullptr,
};

// The View menu's pop-up, found by its tool bar item.
HMENU ViewMenu(HMENU bar) {
  for (int i = 0; i < GetMenuItemCount(bar); ++i) {
    HMENU popup = GetSubMenu(bar, i);
    if (popup && GetMenuState(popup, IDM_TOOL_BAR, MF_BYCOMMAND) != static_cast<UINT>(-1))
      return popup;
  }
  return nullptr;
}

// A right click offers the View menu, to show or hide bars and views.
LRESULT OnToolBarRButtonDown(HWND window, UINT, WPARAM, LPARAM lParam) {
  HWND main = App().mainWindow;
  HMENU menu = GetMenu(main);
  HMENU view = ViewMenu(menu);
  if (!view) return 0;
  ApplyFrameMenuState(menu);
  POINT p{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
  ClientToScreen(window, &p);
  TrackPopupMenu(view, TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON, p.x, p.y, 0, main, nullptr);
  return 0;
}

const MessageRow kToolBarMessages[] = {
    {WM_CREATE,      OnBarCreate},
    {WM_PAINT,       OnBarPaint},
    {WM_MOUSEMOVE,   OnBarMouseMove},
    {WM_LBUTTONDOWN, OnBarLButtonDown},
    {WM_LBUTTONUP,   OnBarLButtonUp},
    {WM_RBUTTONDOWN, OnToolBarRButtonDown},
    {WM_MOVE,        OnBarMove},
    {WM_CLOSE,       OnBarClose},
    {WM_TIMER,       OnBarTimer},
};

}  // namespace

void InitToolBarDescriptor(std::uint8_t side) {
  ResetBarDescriptor(ToolBarDescriptor(), kToolBarClass, kToolBarTimerId, kToolBarLayoutValue,
                     side, &kToolBarKind);
}

bool RegisterToolBarClass(HINSTANCE instance) {
  return RegisterBarClass(instance, kToolBarClass, WindowProcedure<kToolBarMessages>);
}

}  // namespace qb
