// The application frame: start-up, the main window's tables and its life cycle.
#pragma once

#include <windows.h>

#include <string>

#include "app/dispatch.h"

namespace qb {

enum SettingsFlag { kLoadSettings = 0, kSaveSettings = 1 };

// Loads (flag 0) or saves (flag 1) "pellwick.cfg" in the program directory;
// tells the user when the file cannot be opened.
void LoadOrSaveSettings(int flag);

// The registry's App Paths value "Path", else the current directory.
std::string FindProgramDirectory();
// Sets the program directory and the paths derived from it.
void SetProgramDirectory(const std::string& dir);

// Messages of platform-free code become message boxes owned by the main window.
void UseMessageBoxes();

bool RegisterMainClass(HINSTANCE instance);
// Clamps the saved rectangle, creates, shows and activates the main window.
HWND CreateMainWindow(HINSTANCE instance, int showCommand);
int RunMessageLoop(HACCEL accelerators);
int QuellbarrowMain(HINSTANCE instance, HINSTANCE previous, int showCommand);

LRESULT CALLBACK MainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
extern const MessageMap kMainMessageMap;
extern const CommandMap kMainCommandMap;

// Main window message handlers.
LRESULT OnMainCreate(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainCommand(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainClose(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnMainDestroy(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT OnDisplayChange(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// Command handlers.
LRESULT OnFileCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnToolsCommand(HWND window, WORD id, WORD code, LPARAM control);

}  // namespace qb
