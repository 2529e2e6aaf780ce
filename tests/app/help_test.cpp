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

TEST_F(Help, F1AndHelpTopicsOpenTheContentsAndLeaveTheOnTopState) {
  const struct {
    const char* name;
    std::function<void(HWND)> press;
  } ways[] = {
      {"F1", [](HWND window) {
         HACCEL accelerators = LoadAcceleratorsA(GetModuleHandleA(nullptr), "Quellbarrow");
         MSG key{window, WM_KEYDOWN, VK_F1, 0x003B0001, 0, {}};
         EXPECT_TRUE(TranslateAcceleratorA(window, accelerators, &key));
       }},
      {"Help Topics", [](HWND window) { SendMessageA(window, WM_COMMAND, IDM_HELP_TOPICS, 0); }},
  };
  for (const auto& way : ways) {
    SCOPED_TRACE(way.name);
    Settings().onTop = 1;
    ASSERT_NE(Open(), nullptr);
    ASSERT_TRUE(Topmost(window_));
    way.press(window_);
    const HelpPage page = WaitForHelpPage("Quellbarrow Help");
    EXPECT_EQ(page.heading, "Quellbarrow Help");
    EXPECT_EQ(page.caption, "Quellbarrow Help");
    EXPECT_NE(page.text.find("Filling in a form"), std::string::npos) << page.text;
    EXPECT_EQ(Settings().onTop, 0u);
    EXPECT_FALSE(Topmost(window_));
    EXPECT_TRUE(CloseHelpViewer());
  }
}

// That the help file holds every number the program opens is the help writer's
// test; here the viewer goes from topic to topic.
TEST_F(Help, AContextNumberOpensItsTopicAndTheWindowStaysOnTop) {
  const struct {
    DWORD context;
    const char* heading;
  } topics[] = {{999, "Quellbarrow Help"}, {1206, "Previewing a key"}, {1900, "The key editor"}};
  Settings().onTop = 1;
  ASSERT_NE(Open(), nullptr);
  for (const auto& t : topics) {  // one viewer, going from topic to topic
    ShowHelpTopic(t.context);
    EXPECT_EQ(WaitForHelpPage(t.heading).heading, t.heading) << t.context;
    EXPECT_TRUE(Topmost(window_)) << t.context;
  }
  Settings().onTop = 0;
  ShowHelpTopic(1900);
  EXPECT_FALSE(Topmost(window_));
}

using About = MainWindowTest;

TEST_F(About, ShowsNameVersionIconAndWhatTheProgramDoesAndOkCloses) {
  ASSERT_NE(Open(), nullptr);
  bool hasIcon = false;
  LOGFONTA nameFont{};
  auto result = RunModal([&] { EXPECT_EQ(Command(IDM_ABOUT), 0); },
                         {Custom([&](HWND dialog, const WindowSnapshot&) {
                           DWORD_PTR icon = 0;
                           SendMessageTimeoutA(GetDlgItem(dialog, IDC_ABOUT_ICON), STM_GETICON, 0, 0,
                                               SMTO_NORMAL, 3000, &icon);
                           hasIcon = icon != 0;
                           DWORD_PTR font = 0;
                           SendMessageTimeoutA(GetDlgItem(dialog, IDC_ABOUT_NAME), WM_GETFONT, 0, 0,
                                               SMTO_NORMAL, 3000, &font);
                           GetObjectA(reinterpret_cast<HFONT>(font), sizeof(nameFont), &nameFont);
                           ClickButton(dialog, IDOK);
                         })});
  ASSERT_TRUE(result.ok()) << result.Describe();
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

// Found by the careless-user run: Esc and the close box left the box up for good.
TEST_F(About, EscAndTheCloseBoxCloseItToo) {
  ASSERT_NE(Open(), nullptr);
  for (const UINT message : {WM_CLOSE, WM_COMMAND}) {
    bool closed = false;
    auto result = RunModal([&] { Command(IDM_ABOUT); }, {Custom([&](HWND dialog, const WindowSnapshot&) {
                             PostMessageA(dialog, message, message == WM_COMMAND ? IDCANCEL : 0, 0);
                             for (int i = 0; i < 150 && IsWindow(dialog); ++i) Sleep(20);
                             closed = !IsWindow(dialog);
                             if (!closed) ClickButton(dialog, IDOK);
                           })});
    ASSERT_TRUE(result.ok()) << result.Describe();
    EXPECT_TRUE(closed) << (message == WM_CLOSE ? "close box" : "Esc");
  }
}

}  // namespace
}  // namespace qb::test
