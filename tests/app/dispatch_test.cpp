#include <gtest/gtest.h>

#include <vector>

#include "app/dispatch.h"

namespace qb {
namespace {

struct Call {
  int handler;
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
};
std::vector<Call> g_calls;

LRESULT First(HWND, UINT m, WPARAM w, LPARAM l) {
  g_calls.push_back({1, m, w, l});
  return 11;
}
LRESULT Second(HWND, UINT m, WPARAM w, LPARAM l) {
  g_calls.push_back({2, m, w, l});
  return 22;
}
LRESULT CmdFirst(HWND, WORD id, WORD code, LPARAM control) {
  g_calls.push_back({1, id, code, control});
  return 33;
}
LRESULT CmdSecond(HWND, WORD id, WORD code, LPARAM control) {
  g_calls.push_back({2, id, code, control});
  return 44;
}

const MessageRow kRows[] = {
    {WM_USER + 1, First},
    {WM_USER + 2, Second},
    {WM_USER + 1, Second},  // dead: the first row wins
};

const CommandRow kCommands[] = {
    {0,     nullptr},  // a row without a handler never matches
    {50302, CmdFirst},
    {50303, CmdSecond},
    {50302, CmdSecond},  // dead duplicate
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

TEST_F(Dispatch, FirstMatchingRowWinsAndLaterDuplicatesAreDead) {
  const MessageMap map = MakeMessageMap(kRows, kDefaultNone);
  EXPECT_EQ(map.count, 3);
  EXPECT_EQ(LookupMessage(map, window_, WM_USER + 1, 7, 8), 11);
  EXPECT_EQ(LookupMessage(map, window_, WM_USER + 2, 0, 0), 22);
  ASSERT_EQ(g_calls.size(), 2u);
  EXPECT_EQ(g_calls[0].handler, 1);
  EXPECT_EQ(g_calls[0].wParam, 7u);
  EXPECT_EQ(g_calls[0].lParam, 8);
  EXPECT_EQ(g_calls[1].handler, 2);
}

TEST_F(Dispatch, DefaultSelectorPicksTheDefaultProcedure) {
  // Selector 1 is DefWindowProc: WM_SETTEXT really sets the text.
  const MessageMap windowMap = MakeMessageMap(kRows, kDefaultWindowProc);
  EXPECT_TRUE(LookupMessage(windowMap, window_, WM_SETTEXT, 0,
                            reinterpret_cast<LPARAM>("after")));
  char text[16] = {};
  GetWindowTextA(window_, text, sizeof(text));
  EXPECT_STREQ(text, "after");

  // Selector 0 and unknown selectors return 0 and do nothing.
  for (std::uint32_t selector : {0u, 3u, 0xFFFFFFFFu}) {
    const MessageMap map = MakeMessageMap(kRows, selector);
    EXPECT_EQ(LookupMessage(map, window_, WM_SETTEXT, 0, reinterpret_cast<LPARAM>("none")), 0);
    GetWindowTextA(window_, text, sizeof(text));
    EXPECT_STREQ(text, "after");
  }
  EXPECT_TRUE(g_calls.empty());
}

// A dialog whose procedure records what reaches it through DefDlgProc.
std::vector<Call> g_dialogCalls;
INT_PTR CALLBACK RecordingDialog(HWND, UINT m, WPARAM w, LPARAM l) {
  if (m == WM_COMMAND) g_dialogCalls.push_back({0, m, w, l});
  return FALSE;
}

HWND CreateEmptyDialog() {
  // DLGTEMPLATE + empty menu, class and title, aligned to a DWORD.
  alignas(4) WORD tmpl[16] = {};
  auto* t = reinterpret_cast<DLGTEMPLATE*>(tmpl);
  t->style = WS_POPUP;
  t->cx = 50;
  t->cy = 20;
  return CreateDialogIndirectParamA(GetModuleHandleA(nullptr), t, nullptr, RecordingDialog, 0);
}

TEST_F(Dispatch, SelectorTwoIsTheDialogDefaultProcedure) {
  HWND dialog = CreateEmptyDialog();
  ASSERT_NE(dialog, nullptr);
  g_dialogCalls.clear();
  const CommandMap map = MakeCommandMap(kCommands, kDefaultDialogProc);
  // An unknown command goes on as message 273 with wParam and lParam as received.
  LookupCommand(map, dialog, MAKEWPARAM(1234, 1), 0x5678);
  ASSERT_EQ(g_dialogCalls.size(), 1u);
  EXPECT_EQ(g_dialogCalls[0].message, 273u);
  EXPECT_EQ(g_dialogCalls[0].wParam, MAKEWPARAM(1234, 1));
  EXPECT_EQ(g_dialogCalls[0].lParam, 0x5678);
  EXPECT_TRUE(g_calls.empty());
  DestroyWindow(dialog);
}

TEST_F(Dispatch, CommandLookupSplitsWParamAndKeepsTheHighWord) {
  const CommandMap map = MakeCommandMap(kCommands, kDefaultNone);
  EXPECT_EQ(LookupCommand(map, window_, MAKEWPARAM(50302, 1), 99), 33);  // accelerator
  EXPECT_EQ(LookupCommand(map, window_, MAKEWPARAM(50303, 0), 0), 44);   // menu
  EXPECT_EQ(LookupCommand(map, window_, MAKEWPARAM(0, 0), 0), 0);        // handler-less row
  ASSERT_EQ(g_calls.size(), 2u);
  EXPECT_EQ(g_calls[0].handler, 1);  // the duplicate 50302 row is never reached
  EXPECT_EQ(g_calls[0].message, 50302u);
  EXPECT_EQ(g_calls[0].wParam, 1u);
  EXPECT_EQ(g_calls[0].lParam, 99);
  EXPECT_EQ(g_calls[1].wParam, 0u);
}

}  // namespace
}  // namespace qb
