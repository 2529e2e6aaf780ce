// The options dialog through its real controls.
#include "tests/app/main_window_fixture.h"

#include "resources/resource.h"

namespace qb::test {
namespace {

class Options : public MainWindowTest {
 protected:
  void SetUp() override {
    MainWindowTest::SetUp();
    ASSERT_NE(Open(), nullptr);
  }
  ModalResult OpenOptions(std::vector<ModalStep> steps, ModalOptions options = {}) {
    return RunModal([&] { EXPECT_EQ(Command(IDM_GLOBAL_OPTIONS), 0); }, std::move(steps),
                    options);
  }
};

TEST_F(Options, ShowsTheThreeOptionsAsTheyStand) {
  Settings().copyDescription = 1;
  Settings().formStatistics = 0;
  auto result = OpenOptions({Press("Cancel")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  const WindowSnapshot& d = result.seen[0];
  EXPECT_EQ(d.caption, "Quellbarrow - Options");
  struct Control {
    int id;
    const char* text;
    int checked;
  } controls[] = {
      {IDC_OPT_COPY_DESCRIPTION, "Copy key description onto clipboard when one was selected", 1},
      {IDC_OPT_FIRST_BROWSER, "Get HTML from the first browser window", 0},
      {IDC_OPT_PROMPT_BROWSER, "Prompt each time to select browser window", 1},
      {IDC_OPT_FORM_STATISTICS, "Show number of Forms and Fields when scaning an HTML.", 0},
      {IDOK, "OK", 0},
      {IDCANCEL, "Cancel", 0},
      {IDC_HELP_BUTTON, "Help", 0},
  };
  for (const auto& c : controls) {
    const ControlInfo* info = d.Control(c.id);
    ASSERT_NE(info, nullptr) << c.id;
    EXPECT_EQ(info->text, c.text);
    EXPECT_EQ(info->checked, c.checked) << c.id;
  }
  EXPECT_NE(d.ControlByText("Options"), nullptr);
}

TEST_F(Options, OkKeepsTheChangesAndTheFileKeepsTwoOfThem) {
  auto result = OpenOptions({Custom([](HWND dialog, const WindowSnapshot&) {
    SetCheck(dialog, IDC_OPT_COPY_DESCRIPTION, false);
    SetCheck(dialog, IDC_OPT_FORM_STATISTICS, true);
    SetCheck(dialog, IDC_OPT_PROMPT_BROWSER, false);
    SetCheck(dialog, IDC_OPT_FIRST_BROWSER, true);
    ClickButton(dialog, IDOK);
  })});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(Settings().copyDescription, 0u);
  EXPECT_EQ(Settings().formStatistics, 1u);
  EXPECT_EQ(BrowserWindowChoiceOption(), kFirstBrowserWindow);

  // Written at shut-down.
  SendMessageA(window_, WM_CLOSE, 0, 0);
  Drain();
  const auto bytes = ReadBytes(dir_.File("pellwick.cfg"));
  ASSERT_EQ(bytes.size(), kSettingsFileSize);
  EXPECT_EQ(bytes[3409], 0);
  EXPECT_EQ(bytes[3415], 1);

  // The next run shows the two saved check boxes and asks for the browser again.
  Settings() = AppSettings{};
  SetBrowserWindowChoiceOption(kPromptForBrowserWindow);
  LoadOrSaveSettings(kLoadSettings);
  ASSERT_NE(Open(), nullptr);
  result = OpenOptions({Press("Cancel")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen[0].Control(IDC_OPT_COPY_DESCRIPTION)->checked, 0);
  EXPECT_EQ(result.seen[0].Control(IDC_OPT_FORM_STATISTICS)->checked, 1);
  EXPECT_EQ(result.seen[0].Control(IDC_OPT_PROMPT_BROWSER)->checked, 1);
}

TEST_F(Options, CancelAndEscapeChangeNothing) {
  for (bool escape : {false, true}) {
    SCOPED_TRACE(escape ? "Esc" : "Cancel");
    auto result = OpenOptions({Custom([escape](HWND dialog, const WindowSnapshot&) {
      SetCheck(dialog, IDC_OPT_COPY_DESCRIPTION, false);
      SetCheck(dialog, IDC_OPT_FORM_STATISTICS, true);
      SetCheck(dialog, IDC_OPT_FIRST_BROWSER, true);
      SetCheck(dialog, IDC_OPT_PROMPT_BROWSER, false);
      if (escape)
        PostMessageA(GetDlgItem(dialog, IDC_OPT_COPY_DESCRIPTION), WM_KEYDOWN, VK_ESCAPE, 0);
      else
        ClickButton(dialog, IDCANCEL);
    })});
    ASSERT_TRUE(result.ok()) << result.Describe();
    EXPECT_EQ(Settings().copyDescription, 1u);
    EXPECT_EQ(Settings().formStatistics, 0u);
    EXPECT_EQ(BrowserWindowChoiceOption(), kPromptForBrowserWindow);
  }
}

TEST_F(Options, EnterAcceptsAndTabVisitsEveryControlInOrder) {
  std::vector<int> order;
  auto result = OpenOptions({Custom([&](HWND dialog, const WindowSnapshot&) {
    HWND c = GetDlgItem(dialog, IDC_OPT_COPY_DESCRIPTION);
    for (int i = 0; i < 6; ++i) {
      order.push_back(GetDlgCtrlID(c));
      c = GetNextDlgTabItem(dialog, c, FALSE);
    }
    SetCheck(dialog, IDC_OPT_FORM_STATISTICS, true);
    PostMessageA(GetDlgItem(dialog, IDC_OPT_FORM_STATISTICS), WM_KEYDOWN, VK_RETURN, 0);
  })});
  ASSERT_TRUE(result.ok()) << result.Describe();
  // The radio pair is one stop (Wine stops at the checked one).
  ASSERT_EQ(order.size(), 6u);
  EXPECT_TRUE(order[1] == IDC_OPT_FIRST_BROWSER || order[1] == IDC_OPT_PROMPT_BROWSER);
  order[1] = IDC_OPT_FIRST_BROWSER;
  EXPECT_EQ(order, (std::vector<int>{IDC_OPT_COPY_DESCRIPTION, IDC_OPT_FIRST_BROWSER,
                                     IDC_OPT_FORM_STATISTICS, IDOK, IDCANCEL, IDC_HELP_BUTTON}));
  EXPECT_EQ(Settings().formStatistics, 1u);
}

TEST_F(Options, HelpOpensItsTopicAndTheDialogStaysOpen) {
  Settings().onTop = 1;  // the window is not on top yet: the help routine puts it there
  auto result = OpenOptions({Press("Help"), Press("No"), Again(Press("Cancel"))},
                            ModalOptions{.anyProcess = true});
  ASSERT_TRUE(result.ok()) << result.Describe();
  ASSERT_EQ(result.seen.size(), 3u);
  EXPECT_EQ(result.seen[1].MessageText(),
            "Cannot find '" + App().helpPath + "'. Do you want to find this file yourself?");
  EXPECT_EQ(result.seen[2].caption, "Quellbarrow - Options");
  // Back on top after the help, as the option says.
  EXPECT_TRUE(GetWindowLongA(window_, GWL_EXSTYLE) & WS_EX_TOPMOST);
}

}  // namespace
}  // namespace qb::test
