// The application frame: start-up, the main window's tables and its life cycle.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "app/settings_file.h"
#include "base/dispatch.h"

namespace qb {

enum SettingsFlag { kLoadSettings = 0, kSaveSettings = 1 };

// Loads (flag 0) or saves (flag 1) "pellwick.cfg" in the program directory;
// tells the user when the file cannot be opened.
void LoadOrSaveSettings(int flag);

// The registry's App Paths value "Path", else the current directory.
std::string FindProgramDirectory();


bool RegisterMainClass(HINSTANCE instance);
// Registers "ToolBar" and "DatabaseBar"; tells the user which one failed.
bool RegisterBarClasses(HINSTANCE instance);
// Clamps the saved rectangle, creates, shows and activates the main window.
HWND CreateMainWindow(HINSTANCE instance, int showCommand);
int RunMessageLoop(HACCEL accelerators);
// Whether `window` is an edit control (accelerators leave its keys alone).
bool IsEditControl(HWND window);
int QuellbarrowMain(HINSTANCE instance, HINSTANCE previous, int showCommand);

extern const WNDPROC MainWindowProc;
extern const CommandMap kMainCommandMap;

// Sets the on-top option and orders the main window by it; with `withViews` the
// two list views are ordered the same way.
void SetOnTop(HWND main, bool onTop, bool withViews);

// Main window message handlers.
LRESULT OnMainCreate(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainCommand(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainSize(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainInitMenu(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainMenuSelect(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainTimer(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainMouseMove(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainLButtonUp(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainRecapture(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainCaptureChanged(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainRButtonDown(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainClose(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainDestroy(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnSysColorChange(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnDisplayChange(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// Gives the keyboard back to the control that had it when the window was left.
LRESULT OnMainActivate(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// WM_NOTIFY and WM_DRAWITEM of the two list views, passed on by control id.
LRESULT OnMainNotify(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainDrawItem(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// The manual scan's way into the scan driver, handed to it at start-up.
void ScanSiteDocument(std::string_view urlAndFile);

// Command handlers.
LRESULT OnFileCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnOptionsDialogCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnBarToggleCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnViewToggleCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnToolsCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnWindowCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnHelpCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnAboutBoxCommand(HWND window, WORD id, WORD code, LPARAM control);
// 50306 "Useful &web links", and the about box's two links.
LRESULT OnLinksPageCommand(HWND window, WORD id, WORD code, LPARAM control);

}  // namespace qb
