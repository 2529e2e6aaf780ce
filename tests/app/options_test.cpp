// The options dialog through its real controls.
#include "tests/support/main_window_fixture.h"
#include "tests/support/help_viewer.h"

namespace qb::test {
namespace {

class Options : public OpenMainWindowTest {
 protected:
  ModalResult OpenOptions(std::vector<ModalStep> steps) {
    return RunAnswered([&] { EXPECT_EQ(Command(IDM_GLOBAL_OPTIONS), 0); }, std::move(steps));
  }
  static void Key(HWND dialog, WPARAM key) {
    PostMessageA(GetDlgItem(dialog, IDC_OPT_COPY_DESCRIPTION), WM_KEYDOWN, key, 0);
  }
};

// The check boxes and radio buttons as the dialog shows them.
std::vector<int> Checks(const WindowSnapshot& d) {
  std::vector<int> checks;
  for (int id : {IDC_OPT_COPY_DESCRIPTION, IDC_OPT_FIRST_BROWSER, IDC_OPT_PROMPT_BROWSER,
                 IDC_OPT_FORM_STATISTICS}) {
    const ControlInfo* c = d.Control(id);
    checks.push_back(c ? c->checked : -1);
  }
  return checks;
}

// Every option turned from where it stood, and the dialog closed each way; the
// file keeps two of the options, and the next run asks for the browser again.
TEST_F(Options, OkAndEnterKeepTheChangesCancelAndEscDropThemTheFileKeepsTwoAndTabVisitsAll) {
  const struct {
    const char* name;
    std::function<void(HWND)> close;
    bool kept;
  } cases[] = {
      {"Cancel", [](HWND d) { ClickButton(d, IDCANCEL); }, false},
      {"Esc", [](HWND d) { Key(d, VK_ESCAPE); }, false},
      {"Enter", [](HWND d) { Key(d, VK_RETURN); }, true},
      {"OK", [](HWND d) { ClickButton(d, IDOK); }, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Settings().copyDescription = 1;
    Settings().formStatistics = 0;
    SetBrowserWindowChoiceOption(kPromptForBrowserWindow);
    auto result = OpenOptions({Custom([&](HWND dialog, const WindowSnapshot&) {
      SetCheck(dialog, IDC_OPT_COPY_DESCRIPTION, false);
      SetCheck(dialog, IDC_OPT_FORM_STATISTICS, true);
      SetCheck(dialog, IDC_OPT_PROMPT_BROWSER, false);
      SetCheck(dialog, IDC_OPT_FIRST_BROWSER, true);
      c.close(dialog);
    })});
    EXPECT_EQ(result.seen[0].caption, "Quellbarrow - Options");
    EXPECT_EQ(Checks(result.seen[0]), (std::vector<int>{1, 0, 1, 0}));
    EXPECT_EQ(Settings().copyDescription, c.kept ? 0u : 1u);
    EXPECT_EQ(Settings().formStatistics, c.kept ? 1u : 0u);
    EXPECT_EQ(BrowserWindowChoiceOption(), c.kept ? kFirstBrowserWindow : kPromptForBrowserWindow);
  }
  ASSERT_EQ(CloseAndReadSettings().size(), kSettingsFileSize);
  Settings() = AppSettings{};
  SetBrowserWindowChoiceOption(kPromptForBrowserWindow);
  LoadOrSaveSettings(kLoadSettings);
  ASSERT_NE(Open(), nullptr);
  // And Tab visits every control in order; the radio pair is one stop (Wine
  // stops at the checked one).
  std::vector<int> order;
  const auto result = OpenOptions({Custom([&](HWND dialog, const WindowSnapshot&) {
    HWND c = GetDlgItem(dialog, IDC_OPT_COPY_DESCRIPTION);
    for (int i = 0; i < 6; ++i, c = GetNextDlgTabItem(dialog, c, FALSE)) order.push_back(GetDlgCtrlID(c));
    ClickButton(dialog, IDCANCEL);
  })});
  EXPECT_EQ(Checks(result.seen[0]), (std::vector<int>{0, 0, 1, 1}));
  ASSERT_EQ(order.size(), 6u);
  if (order[1] == IDC_OPT_PROMPT_BROWSER) order[1] = IDC_OPT_FIRST_BROWSER;
  EXPECT_EQ(order, (std::vector<int>{IDC_OPT_COPY_DESCRIPTION, IDC_OPT_FIRST_BROWSER,
                                     IDC_OPT_FORM_STATISTICS, IDOK, IDCANCEL, IDC_HELP_BUTTON}));
}

TEST_F(Options, HelpOpensItsTopicAndKeepsTheDialog) {
  ASSERT_TRUE(CopyHelpFileTo(dir_.path()));
  HelpPage page;
  bool stayedOpen = false;
  auto result = OpenOptions({HelpThenCancel("Options", page, stayedOpen)});
  EXPECT_EQ(page.heading, "Options");
  EXPECT_TRUE(stayedOpen);
}

}  // namespace
}  // namespace qb::test
