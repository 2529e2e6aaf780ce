// Process-wide paths and handles of the running program, set at start-up and read
// everywhere. One user-interface thread; no locking.
#pragma once

#include <windows.h>

#include <string>

#include "base/settings.h"

namespace qb {

constexpr std::size_t kProgramDirMax = 512;     // characters of the program directory
constexpr std::size_t kRegistryPathMax = 1000;  // bytes of the registry value "Path"
constexpr std::size_t kScratchTextSize = 512;   // composed message texts
constexpr char kAppName[] = "Quellbarrow";
constexpr char kMainClassName[] = "Quellbarrow";
constexpr char kHelpFileName[] = "\\QBHELP.HLP";
constexpr char kDatabaseFolder[] = "\\Databases\\";
constexpr char kDataHtmlFolder[] = "\\DataHtml\\";
constexpr char kAppPathsKey[] =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\Quellbarrow";

struct AppState {
  HINSTANCE instance = nullptr;
  HWND mainWindow = nullptr;
  HWND keysView = nullptr;
  HWND linksView = nullptr;
  std::string programDir;   // no trailing backslash
  std::string helpPath;     // programDir + "\QBHELP.HLP"
  std::string databaseDir;  // programDir + "\Databases\"
  std::string dataHtmlDir;  // programDir + "\DataHtml\"
  // The folder the Links view lists and new downloads are saved in; ends with a
  // backslash. Empty until the main window is created.
  std::string linksFolder;
  int screenWidth = 0;
  int screenHeight = 0;
  DWORD windowsVersion = 0;
};

AppState& App();
AppSettings& Settings();

// Sets the program directory and the paths derived from it.
void SetProgramDirectory(const std::string& dir);

// printf-style composition bounded to the shared scratch size (511 characters).
std::string FormatText(const char* format, ...);

// The window a message box raised now belongs to: the dialog whose handler runs
// innermost, so that nothing behind the box can be pressed meanwhile; outside
// every dialog the main window (which may not exist yet).
HWND MessageOwner();

// While it lives, boxes raised on this thread belong to `dialog` (the dispatch
// of a dialog's messages holds one around each handler).
class MessageOwnerScope {
 public:
  explicit MessageOwnerScope(HWND dialog);
  ~MessageOwnerScope();
  MessageOwnerScope(const MessageOwnerScope&) = delete;
  MessageOwnerScope& operator=(const MessageOwnerScope&) = delete;
};

// A message box owned by MessageOwner().
int ShowMessage(const std::string& text, const char* caption, UINT flags);

// Orders the main window above all windows that are not topmost, or among them.
void OrderMainWindow(HWND main, bool onTop, UINT flags = 0);

}  // namespace qb
