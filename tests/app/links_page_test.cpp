// "Useful &web links" and the about box's two links: each opens the page of links
// that lies in the program folder, in the chosen browser (the scan tests' stand-in).
#include <algorithm>

#include "acquire/browser.h"
#include "tests/scan/scan_fixture.h"
#include "tests/support/main_window_fixture.h"

namespace qb::test {
namespace {

class LinksPage : public MainWindowTest {
 protected:
  void SetUp() override {
    MainWindowTest::SetUp();
    UseStandInBrowser();
    ASSERT_NE(Open(), nullptr);
  }
  std::string Page() const { return dir_.File(kLinksPageName); }
  // The stand-in's lines once it has written `count` of them.
  std::string OpenedLines(std::size_t count) {
    const std::string file = dir_.File("opened.txt");
    PumpUntil([&] {
      const std::string text = FileExists(file) ? ReadText(file) : std::string();
      return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) >= count;
    }, 10000);
    return FileExists(file) ? ReadText(file) : std::string();
  }
};

// The menu command, then a click on either link of the about box, which stays open.
TEST_F(LinksPage, MenuCommandAndBothAboutLinksOpenTheShippedPage) {
  auto click = [](int id) {
    return Custom([id](HWND dialog, const WindowSnapshot&) {
      HWND link = GetDlgItem(dialog, id);
      PostMessageA(link, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, 2));
      PostMessageA(link, WM_LBUTTONUP, 0, MAKELPARAM(2, 2));
    });
  };
  const auto openAll = [&] {
    EXPECT_EQ(Command(IDM_LINKS_PAGE), 0);
    Command(IDM_ABOUT);
  };
  RunAnswered(openAll, {click(IDC_ABOUT_LINKS), Again(click(IDC_ABOUT_WEB_PAGE)), Again(Press("OK"))});
  const std::string line = Page() + "\r\n";
  EXPECT_EQ(OpenedLines(3), line + line + line);
}

}  // namespace
}  // namespace qb::test
