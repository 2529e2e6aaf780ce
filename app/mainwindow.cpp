// The main window's own life cycle: creation of its whole interior, close and
// destruction.
#include <windows.h>
#include <commctrl.h>

#include "acquire/manual_scan.h"
#include "app/frame.h"
#include "app/layout.h"
#include "app/menu_state.h"
#include "bars/dock_bar.h"
#include "bars/status_bar.h"
#include "keys/database_slots.h"
#include "keys/key_list.h"
#include "keys/merge_dialog.h"
#include "base/app_state.h"
#include "base/frame_gdi.h"
#include "links/links_view.h"
#include "resources/resource.h"

namespace qb {
namespace {

// The two list views: report style, one selection shown always, editable labels,
// rows drawn by the program.
constexpr DWORD kListViewStyle = WS_CHILD | WS_BORDER | WS_VSCROLL | LVS_REPORT | LVS_SINGLESEL |
                                 LVS_SHOWSELALWAYS | LVS_EDITLABELS | LVS_OWNERDRAWFIXED;
static_assert(kListViewStyle == 0x40A0060D, "the views' style");
// The tool tips' window: a bordered white rectangle on top of everything.
constexpr DWORD kTipStyle = WS_POPUP | WS_BORDER | SS_WHITERECT;
static_assert(kTipStyle == 0x80800006, "the tool tip window's style");

constexpr char kToolBarFailed[] = "Unable to Create Tool bar window";
constexpr char kListViewFailed[] = "Unable to Create ListView window";

// A failure while the interior is built: tell the user and end the program.
LRESULT Quit(const char* text) {
  ShowMessage(text, nullptr, MB_OK);
  PostQuitMessage(0);
  return 0;
}

HWND CreateListView(HWND parent, HINSTANCE instance, int id, bool shown, DWORD add = 0,
                    DWORD without = 0) {
  return CreateWindowExA(WS_EX_CLIENTEDGE, WC_LISTVIEWA, "",
                         ((kListViewStyle | add) & ~without) | (shown ? WS_VISIBLE : 0), 0, 0, 0, 0, parent,
                         reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), instance, nullptr);
}

}  // namespace

LRESULT OnMainCreate(HWND window, UINT, WPARAM, LPARAM lParam) {
  AppState& app = App();
  const auto* create = reinterpret_cast<const CREATESTRUCTA*>(lParam);
  HINSTANCE instance = create->hInstance;
  app.mainWindow = window;
  HDC dc = GetDC(window);
  app.screenWidth = GetDeviceCaps(dc, HORZRES);
  app.screenHeight = GetDeviceCaps(dc, VERTRES);
  ReleaseDC(window, dc);
  app.windowsVersion = GetVersion();

  INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES};
  InitCommonControlsEx(&controls);
  CreateFrameGdi(instance);
  UpdateCaptionMetrics(app.windowsVersion);
  Layout() = LayoutState{};

  SetBarTipWindow(CreateWindowExA(WS_EX_TOPMOST, "static", "", kTipStyle, 0, 0, 0, 0, window,
                                  nullptr, instance, nullptr));

  SetBarFrameHooks(BarFrameHooks{CommandAvailable, ApplyMenuState});
  SetSiteScan(ScanSiteDocument);
  InitToolBarDescriptor(Settings().toolBarSide);
  if (!CreateBar(ToolBarDescriptor(), window, IDB_TOOLBAR, IDB_TOOLBAR_MASK))
    return Quit(kToolBarFailed);
  InitDatabaseBarDescriptor(Settings().databaseBarSide);
  if (!CreateBar(DatabaseBarDescriptor(), window, IDB_DATABASEBAR, IDB_DATABASEBAR_MASK))
    return Quit(kToolBarFailed);

  CreateStatusBar(window);

  app.dataHtmlDir = app.programDir + kDataHtmlFolder;
  app.linksView = CreateListView(window, instance, IDC_LINKS_VIEW, Layout().linksShown,
                                 kLinksViewExtraStyle);
  if (!app.linksView) return Quit(kListViewFailed);
  ForwardCommandsToParent(app.linksView);
  ResetLinksView();
  RefreshLinksView();
  // The Keys view leaves drawing its rows (key icon and Name) to the control.
  app.keysView =
      CreateListView(window, instance, IDC_KEYS_VIEW, Layout().keysShown, 0,
                     LVS_OWNERDRAWFIXED);
  if (!app.keysView) return Quit(kListViewFailed);

  ResetKeyList();
  PrepareKeyList(app.keysView);
  SetKeyListRefill(FillKeyList);
  LoadFirstDatabase();
  PressDatabaseButton(CurrentSlot() + 1);
  RefreshDatabaseCaptions();

  if (Settings().onTop == 1) OrderMainWindow(window, true);
  app.databaseDir = app.programDir + kDatabaseFolder;
  return 1;
}

LRESULT OnMainClose(HWND window, UINT, WPARAM, LPARAM) {
  if (!AskToSaveChanges()) return 1;  // Cancel: the window stays, the settings unwritten
  LoadOrSaveSettings(kSaveSettings);
  DestroyWindow(window);
  return 0;
}

LRESULT OnMainDestroy(HWND window, UINT, WPARAM, LPARAM) {
  AppState& app = App();
  if (app.mainWindow == window) {
    DestroyBar(ToolBarDescriptor());
    DestroyBar(DatabaseBarDescriptor());
    SetBarTipWindow(nullptr);
    StatusBar().window = nullptr;
    app.keysView = app.linksView = nullptr;
    ReleaseFrameGdi();
    app.mainWindow = nullptr;
  }
  PostQuitMessage(0);
  return 0;
}

LRESULT OnDisplayChange(HWND, UINT, WPARAM, LPARAM lParam) {
  App().screenWidth = LOWORD(lParam);
  App().screenHeight = HIWORD(lParam);
  return 0;
}

// The control that had the keyboard when a modal window or another program took
// over; the system's own handling would give the focus to the frame, where keys
// reach neither list.
namespace {
HWND g_focusBeforeLeaving = nullptr;
}  // namespace

LRESULT OnMainActivate(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (LOWORD(wParam) == WA_INACTIVE) {
    // Kept when the focus is already gone: a window being disabled loses it first.
    HWND focus = GetFocus();
    if (focus && IsChild(window, focus)) g_focusBeforeLeaving = focus;
    return 0;
  }
  HWND back = g_focusBeforeLeaving;
  if (!HIWORD(wParam) && back && IsChild(window, back) && IsWindowVisible(back) && IsWindowEnabled(back)) {
    SetFocus(back);
    return 0;
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

// The File menu. It has no branch for E&xit: choosing it does nothing, and the
// program is closed through the window's close command.
LRESULT OnFileCommand(HWND, WORD, WORD, LPARAM) { return 0; }

}  // namespace qb
