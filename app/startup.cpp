// Start-up: program directory, settings, the main window class, the main window
// itself and the message loop.
#include <array>

#include "app/frame.h"
#include "bars/dock_bar.h"
#include "base/app_state.h"
#include "base/user_message.h"
#include "links/links_view.h"
#include "keys/database_slots.h"
#include "keys/key_list.h"

namespace qb {

std::string FindProgramDirectory() {
  HKEY key;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kAppPathsKey, 0, KEY_READ, &key) == ERROR_SUCCESS) {
    std::array<char, kRegistryPathMax + 1> value{};
    DWORD size = kRegistryPathMax;
    DWORD type = 0;
    LONG rc = RegQueryValueExA(key, "Path", nullptr, &type,
                               reinterpret_cast<BYTE*>(value.data()), &size);
    RegCloseKey(key);
    if (rc == ERROR_SUCCESS) return std::string(value.data());
  }
  std::array<char, kProgramDirMax + 1> dir{};
  DWORD n = GetCurrentDirectoryA(kProgramDirMax, dir.data());
  if (n == 0 || n > kProgramDirMax) return std::string();
  return std::string(dir.data());
}

bool RegisterMainClass(HINSTANCE instance) {
  WNDCLASSA wc{};
  wc.style = CS_HREDRAW | CS_VREDRAW;
  wc.lpfnWndProc = MainWindowProc;
  wc.hInstance = instance;
  wc.hIcon = LoadIconA(instance, "APPICON");
  wc.hCursor = LoadCursor(nullptr, IDC_ARROW);
  wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
  wc.lpszMenuName = kMainClassName;  // the menu resource "QUELLBARROW"
  wc.lpszClassName = kMainClassName;
  return RegisterClassA(&wc) != 0;
}

bool RegisterBarClasses(HINSTANCE instance) {
  if (!RegisterToolBarClass(instance)) {
    ShowMessage("Could not register a tool bar window", nullptr, MB_OK);
    return false;
  }
  if (!RegisterDatabaseBarClass(instance)) {
    ShowMessage("Could not register a Database bar window", nullptr, MB_OK);
    return false;
  }
  return true;
}

HWND CreateMainWindow(HINSTANCE instance, int showCommand) {
  AppState& app = App();
  app.instance = instance;
  AppSettings& s = Settings();
  app.screenWidth = GetSystemMetrics(SM_CXFULLSCREEN);
  app.screenHeight = GetSystemMetrics(SM_CYFULLSCREEN);
  s.windowRect = ClampWindowRect(s.windowRect, app.screenWidth, app.screenHeight);
  const WindowRect& r = s.windowRect;

  SetCurrentSlot(0);
  const std::string title =
      FormatText("%s - %.*s", kAppName, static_cast<int>(kSlotNameSize), s.slotNames[0].data());
  HWND window = CreateWindowExA(0, kMainClassName, title.c_str(), WS_OVERLAPPEDWINDOW, r.left,
                                r.top, r.right - r.left, r.bottom - r.top, nullptr, nullptr,
                                instance, nullptr);
  if (!window) {
    ShowMessage("Could not crate a window", nullptr, MB_OK);
    return nullptr;
  }
  ShowWindow(window, s.maximized == 1 ? SW_SHOWMAXIMIZED : showCommand);
  UpdateWindow(window);
  SetForegroundWindow(window);
  // The columns take their widths from the client area the window was shown with.
  if (App().linksView) CreateLinksColumns(window);
  return window;
}

bool IsEditControl(HWND window) {
  char name[16] = {};
  return window && GetClassNameA(window, name, sizeof(name)) && lstrcmpiA(name, "Edit") == 0;
}

int RunMessageLoop(HACCEL accelerators) {
  MSG msg;
  while (GetMessageA(&msg, nullptr, 0, 0) > 0) {
    // The accelerator goes to the window the message is addressed to, so a key
    // pressed in a list view is translated for the list view. Keys typed into an
    // edit (a Name renamed in place) stay the edit's: Del and Insert edit text there.
    if (IsEditControl(msg.hwnd) || !TranslateAcceleratorA(msg.hwnd, accelerators, &msg)) {
      TranslateMessage(&msg);
      DispatchMessageA(&msg);
    }
  }
  return static_cast<int>(msg.wParam);
}

int QuellbarrowMain(HINSTANCE instance, HINSTANCE previous, int showCommand) {
  App().instance = instance;
  UseMessageBoxes();
  SetProgramDirectory(FindProgramDirectory());
  LoadOrSaveSettings(kLoadSettings);
  if (!previous) RegisterMainClass(instance);
  if (!RegisterBarClasses(instance)) return 0;
  if (!CreateMainWindow(instance, showCommand)) return 0;
  HACCEL accelerators = LoadAcceleratorsA(instance, kMainClassName);
  CreateKeyListColumn(App().keysView);
  return RunMessageLoop(accelerators);
}

}  // namespace qb
