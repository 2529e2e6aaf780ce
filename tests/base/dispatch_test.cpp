#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "base/dispatch.h"
#include "tests/support/gui_helper.h"

namespace qb {
namespace {

// Handler (0 for the dialog's own procedure), message (or command id), wParam (or
// notification code), lParam.
using Call = std::tuple<int, UINT, WPARAM, LPARAM>;
std::vector<Call> g_calls;

template <int N>
LRESULT OnMessage(HWND, UINT m, WPARAM w, LPARAM l) {
  g_calls.push_back({N, m, w, l});
  return 10 * N;
}
template <int N>
LRESULT OnCommand(HWND, WORD id, WORD code, LPARAM control) {
  g_calls.push_back({N, id, code, control});
  return 10 * N + 1;
}

const MessageRow kRows[] = {
    {WM_USER + 1, OnMessage<1>},
    {WM_USER + 2, OnMessage<2>},
    {WM_USER + 1, OnMessage<2>},  // dead: the first row wins
};

const CommandRow kCommands[] = {
    {0,     nullptr},  // a row without a handler never matches
    {50302, OnCommand<1>},
    {50303, OnCommand<2>},
    {50302, OnCommand<2>},  // dead duplicate
};

class Dispatch : public ::testing::Test {
 protected:
  void SetUp() override {
    g_calls.clear();
    window_ = CreateWindowExA(0, "STATIC", "before", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr,
                              GetModuleHandleA(nullptr), nullptr);
    ASSERT_NE(window_, nullptr);
  }
  void TearDown() override { DestroyWindow(window_); }
  HWND window_ = nullptr;
};

TEST_F(Dispatch, TheTablesProcedureRunsTheFirstMatchingRowAndCommandsKeepTheirHighWord) {
  const DLGPROC procedure = DialogProcedure<kRows, kCommands>;
  EXPECT_EQ(procedure(window_, WM_USER + 1, 7, 8), 10);
  EXPECT_EQ(procedure(window_, WM_USER + 2, 0, 0), 20);
  EXPECT_EQ(procedure(window_, WM_COMMAND, MAKEWPARAM(50302, 1), 99), 11);  // accelerator
  EXPECT_EQ(procedure(window_, WM_COMMAND, MAKEWPARAM(50303, 0), 0), 21);   // menu
  EXPECT_EQ(procedure(window_, WM_COMMAND, MAKEWPARAM(0, 0), 0), 0);        // handler-less row
  EXPECT_EQ(g_calls, (std::vector<Call>{
                         {1, WM_USER + 1, 7, 8}, {2, WM_USER + 2, 0, 0}, {1, 50302, 1, 99}, {2, 50303, 0, 0}}));
}

// A dialog that records the commands DefDlgProc hands it.
INT_PTR CALLBACK RecordingDialog(HWND, UINT m, WPARAM w, LPARAM l) {
  if (m == WM_COMMAND) g_calls.push_back({0, m, w, l});
  return FALSE;
}

TEST_F(Dispatch, DefaultSelectorPicksTheDefaultProcedure) {
  // Selector 1 is DefWindowProc: WM_SETTEXT really sets the text.
  const auto setText = [&](std::uint32_t selector, const char* text) {
    return LookupMessage(MakeMessageMap(kRows, selector), window_, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
  };
  EXPECT_TRUE(setText(kDefaultWindowProc, "after"));
  // Selector 0 and unknown selectors return 0 and do nothing.
  for (std::uint32_t selector : {0u, 3u, 0xFFFFFFFFu}) {
    EXPECT_EQ(setText(selector, "none"), 0) << selector;
    EXPECT_EQ(test::WindowText(window_), "after") << selector;
  }
  EXPECT_TRUE(g_calls.empty());

  // Selector 2 is DefDlgProc, which hands a command on to the dialog's procedure.
  // A template without controls; the zeros after it are its empty menu, class and title.
  alignas(4) DLGTEMPLATE tmpl[2] = {};
  tmpl[0].style = WS_POPUP;
  HWND dialog = CreateDialogIndirectParamA(GetModuleHandleA(nullptr), tmpl, nullptr, RecordingDialog, 0);
  ASSERT_NE(dialog, nullptr);
  // An unknown command goes on as message 273 with wParam and lParam as received,
  // and no row's handler runs.
  LookupCommand(MakeCommandMap(kCommands, kDefaultDialogProc), dialog, MAKEWPARAM(1234, 1), 0x5678);
  EXPECT_EQ(g_calls, (std::vector<Call>{{0, 273, MAKEWPARAM(1234, 1), 0x5678}}));
  DestroyWindow(dialog);
}

}  // namespace
}  // namespace qb
