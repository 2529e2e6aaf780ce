#include "app/frame.h"
#include "bars/dock_bar.h"
#include "base/app_state.h"

namespace qb {

void LoadOrSaveSettings(int flag) {
  const std::string path = App().programDir + kSettingsFileName;
  AppSettings& s = Settings();
  if (flag == kLoadSettings) {
    if (!ReadSettingsFile(path, s)) ShowMessage("Can't open config file", nullptr, MB_OK);
    return;
  }
  // The rectangle is kept as last recorded while maximized (the layout records it
  // at every size change of a normal window).
  HWND main = App().mainWindow;
  if (main && IsZoomed(main)) {
    s.maximized = 1;
  } else {
    s.maximized = 0;
    RECT r;
    if (main && !IsIconic(main) && GetWindowRect(main, &r))
      s.windowRect = WindowRect{r.left, r.top, r.right, r.bottom};
  }
  s.toolBarSide = static_cast<std::uint8_t>(ToolBarDescriptor().side);
  s.databaseBarSide = static_cast<std::uint8_t>(DatabaseBarDescriptor().side);
  if (!WriteSettingsFile(path, s)) ShowMessage("Can't save config file", nullptr, MB_OK);
}

}  // namespace qb
