#include "tests/support/help_viewer.h"

#include "resources/resource.h"

namespace qb::test {
namespace {

constexpr char kViewerClass[] = "MS_WINHELP";
constexpr int kViewerTextId = 0x701;  // the viewer's rich edit control

HWND VisibleViewer() {
  HWND w = FindWindowA(kViewerClass, nullptr);
  return w && IsWindowVisible(w) ? w : nullptr;
}

}  // namespace

bool CopyHelpFileTo(const std::string& folder) {
  std::string source = QB_HELP_FILE;
  if (!source.empty() && source[0] == '/') source = "Z:" + source;  // the build tree under Wine
  return CopyFileA(source.c_str(), (folder + "\\QBHELP.HLP").c_str(), FALSE) != FALSE;
}

HelpPage WaitForHelpPage(const std::string& heading, int timeoutMs) {
  HelpPage page;
  PollUntil(
      [&] {
        HWND viewer = VisibleViewer();
        if (!viewer) return false;
        page.caption = WindowText(viewer);
        page.text = WindowText(GetDlgItem(viewer, kViewerTextId));
        page.heading = page.text.substr(0, page.text.find_first_of("\r\n"));
        return page.heading == heading;
      },
      timeoutMs);
  return page;
}

bool CloseHelpViewer(int timeoutMs) {
  if (FindWindowA(kViewerClass, nullptr)) WinHelpA(nullptr, nullptr, HELP_QUIT, 0);
  return PollUntil([] { return FindWindowA(kViewerClass, nullptr) == nullptr; }, timeoutMs);
}

ModalStep HelpThenCancel(const std::string& heading, HelpPage& page, bool& dialogStayedOpen) {
  return Custom([heading, &page, &dialogStayedOpen](HWND dialog, const WindowSnapshot&) {
    ClickButton(dialog, IDC_HELP_BUTTON);
    page = WaitForHelpPage(heading);
    dialogStayedOpen = IsWindow(dialog) && IsWindowVisible(dialog);
    CloseHelpViewer();
    ClickButton(dialog, IDCANCEL);
  });
}

}  // namespace qb::test
