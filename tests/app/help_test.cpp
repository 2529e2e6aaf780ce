// Help through the real windows: F1 and "&Help Topics", every context number the
// program opens, read back from the WinHelp viewer; and the about box.
#include "base/help.h"
#include "tests/support/help_viewer.h"
#include "tests/support/main_window_fixture.h"

namespace qb::test {
namespace {

class Help : public MainWindowTest {
 protected:
  void SetUp() override {
    MainWindowTest::SetUp();
    ASSERT_TRUE(CopyHelpFileTo(dir_.path()));
  }
  void TearDown() override {
    EXPECT_TRUE(CloseHelpViewer());
    MainWindowTest::TearDown();
  }
};

// F1 is "&Help Topics" through the accelerators: the contents open, and the main
// window leaves the on-top state so that the viewer shows above it. That the help
// file holds every number the program opens is the help writer's test; here the
// viewer goes from topic to topic, and each time the main window is put on top as
// the setting says.
TEST_F(Help, F1OpensTheContentsAndAContextNumberItsTopicWithTheWindowOnTopAsSet) {
  Settings().onTop = 1;
  ASSERT_NE(Open(), nullptr);
  ASSERT_TRUE(Topmost(window_));
  HACCEL accelerators = LoadAcceleratorsA(GetModuleHandleA(nullptr), "Quellbarrow");
  MSG key{window_, WM_KEYDOWN, VK_F1, 0x003B0001, 0, {}};
  EXPECT_TRUE(TranslateAcceleratorA(window_, accelerators, &key));
  const HelpPage page = WaitForHelpPage("Quellbarrow Help");
  EXPECT_EQ(page.heading, "Quellbarrow Help");
  EXPECT_EQ(page.caption, "Quellbarrow Help");
  EXPECT_EQ(Settings().onTop, 0u);
  EXPECT_FALSE(Topmost(window_));

  const struct {
    DWORD context;
    const char* heading;
    std::uint32_t onTop;
  } topics[] = {{1206, "Previewing a key", 1}, {1900, "The key editor", 0}, {999, "Quellbarrow Help", 1}};
  for (const auto& t : topics) {  // the same viewer, going from topic to topic
    Settings().onTop = t.onTop;
    ShowHelpTopic(t.context);
    EXPECT_EQ(WaitForHelpPage(t.heading).heading, t.heading) << t.context;
    EXPECT_EQ(Topmost(window_), t.onTop == 1) << t.context;
  }
}

using About = OpenMainWindowTest;

// Found by the careless-user run: Esc and the close box left the box up for good.
TEST_F(About, ShowsNameVersionIconAndWhatTheProgramDoesAndOkEscAndTheCloseBoxCloseIt) {
  const struct {
    const char* name;
    UINT message;
    WPARAM id;
  } ways[] = {{"OK", WM_COMMAND, IDOK}, {"Esc", WM_COMMAND, IDCANCEL}, {"close box", WM_CLOSE, 0}};
  for (const auto& way : ways) {
    SCOPED_TRACE(way.name);
    bool hasIcon = false, closed = false;
    LOGFONTA nameFont{};
    auto result = RunAnswered([&] { EXPECT_EQ(Command(IDM_ABOUT), 0); },
                           {Custom([&](HWND dialog, const WindowSnapshot&) {
                             DWORD_PTR icon = 0, font = 0;
                             SendMessageTimeoutA(GetDlgItem(dialog, IDC_ABOUT_ICON), STM_GETICON, 0, 0,
                                                 SMTO_NORMAL, 3000, &icon);
                             hasIcon = icon != 0;
                             SendMessageTimeoutA(GetDlgItem(dialog, IDC_ABOUT_NAME), WM_GETFONT, 0, 0,
                                                 SMTO_NORMAL, 3000, &font);
                             GetObjectA(reinterpret_cast<HFONT>(font), sizeof(nameFont), &nameFont);
                             PostMessageA(dialog, way.message, way.id, 0);
                             PollUntil([&] { return !IsWindow(dialog); }, 3000);
                             closed = !IsWindow(dialog);
                             if (!closed) ClickButton(dialog, IDOK);
                           })});
    EXPECT_TRUE(closed);
    const WindowSnapshot& box = result.seen.at(0);
    const auto text = [&](int id) { return box.Control(id) ? box.Control(id)->text : "(none)"; };
    EXPECT_EQ(box.caption, "Quellbarrow - About");
    EXPECT_EQ(text(IDC_ABOUT_NAME), "Quellbarrow");
    EXPECT_EQ(text(IDC_ABOUT_VERSION), "Version " QB_VERSION);
    EXPECT_NE(box.ControlByText("Fills in web forms with the answers you keep as keys, and opens the "
                                "filled page in your browser."),
              nullptr);
    EXPECT_EQ(box.ButtonTexts(), std::vector<std::string>{"OK"});
    EXPECT_TRUE(hasIcon);
    EXPECT_EQ(nameFont.lfWeight, FW_BOLD);
  }
}

}  // namespace
}  // namespace qb::test
