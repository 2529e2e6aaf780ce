// The modal-window driver that the GUI tests rely on, tried on real boxes.
#include <gtest/gtest.h>

#include "tests/support/gui_helper.h"

namespace qb::test {
namespace {

TEST(GuiHelper, ReadsBoxesAndAnswersThemInTheOrderTheyOpen) {
  std::vector<int> answers;
  auto result = RunModal(
      [&] {
        answers.push_back(
            MessageBoxA(nullptr, "Save it?", "Question", MB_YESNOCANCEL | MB_ICONQUESTION));
        answers.push_back(MessageBoxA(nullptr, "two", "B", MB_OKCANCEL));
      },
      {Press("No"), Command(IDCANCEL)});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(answers, (std::vector<int>{IDNO, IDCANCEL}));
  ASSERT_EQ(result.seen.size(), 2u);
  EXPECT_EQ(result.seen[0].caption, "Question");
  EXPECT_EQ(result.seen[0].MessageText(), "Save it?");
  EXPECT_EQ(result.seen[0].ButtonTexts(), (std::vector<std::string>{"Yes", "No", "Cancel"}));
  EXPECT_EQ(result.seen[1].MessageText(), "two");
}

// A dialog that raises a box of its own and stays open: the driver answers the box
// and then the dialog again.
INT_PTR CALLBACK AskingDialog(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  if (message == WM_INITDIALOG) return TRUE;
  if (message != WM_COMMAND) return FALSE;
  if (LOWORD(wParam) == IDCANCEL) EndDialog(dialog, 0);
  if (LOWORD(wParam) != IDOK) return FALSE;
  char text[32] = {};
  GetDlgItemTextA(dialog, 100, text, sizeof(text));
  if (text[0])
    EndDialog(dialog, 7);
  else
    MessageBoxA(dialog, "Type something", nullptr, MB_OK);
  return TRUE;
}

// An in-memory template: caption, an edit (id 100) and an OK button.
std::vector<WORD> Template() {
  std::vector<WORD> t;
  auto words = [&](std::initializer_list<WORD> w) { t.insert(t.end(), w); };
  auto dword = [&](DWORD v) { words({LOWORD(v), HIWORD(v)}); };
  auto text = [&](const wchar_t* s) { do t.push_back(*s); while (*s++); };
  dword(WS_POPUP | WS_VISIBLE | WS_CAPTION | DS_MODALFRAME | DS_SETFONT);
  dword(0);
  words({2, 0, 0, 120, 50, 0, 0});  // two items, position, size, no menu, no class
  text(L"Asking");
  t.push_back(8);
  text(L"MS Shell Dlg");
  const struct { DWORD style; WORD x, y, cx, cy, id, cls; const wchar_t* text; } items[] = {
      {WS_CHILD | WS_VISIBLE | WS_BORDER | ES_AUTOHSCROLL, 5, 5, 100, 12, 100, 0x0081, L""},
      {WS_CHILD | WS_VISIBLE | BS_DEFPUSHBUTTON, 5, 25, 40, 14, IDOK, 0x0080, L"OK"},
  };
  for (const auto& item : items) {
    if (t.size() % 2) t.push_back(0);  // items start on a DWORD
    dword(item.style);
    dword(0);
    words({item.x, item.y, item.cx, item.cy, item.id, 0xFFFF, item.cls});
    text(item.text);
    t.push_back(0);
  }
  return t;
}

TEST(GuiHelper, DrivesADialogThatStaysOpenAfterItsOwnMessage) {
  std::vector<WORD> tmpl = Template();
  INT_PTR ended = -1;
  auto result = RunModal(
      [&] {
        ended = DialogBoxIndirectParamA(GetModuleHandleA(nullptr),
                                        reinterpret_cast<DLGTEMPLATE*>(tmpl.data()), nullptr,
                                        AskingDialog, 0);
      },
      {Press("OK"), Press("OK"),
       Again(Custom([](HWND dialog, const WindowSnapshot&) {
         SetControlText(dialog, 100, "hello");
         ClickButton(dialog, IDOK);
       }))});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(ended, 7);
  ASSERT_EQ(result.seen.size(), 3u);
  EXPECT_EQ(result.seen[0].caption, "Asking");
  ASSERT_NE(result.seen[0].Control(100), nullptr);
  EXPECT_EQ(result.seen[0].Control(100)->className, "Edit");
  EXPECT_EQ(result.seen[1].MessageText(), "Type something");
  EXPECT_EQ(result.seen[2].window, result.seen[0].window);
}

TEST(GuiHelper, UnforeseenBoxIsRecordedAndCancelledAndAMissingOneIsAnError) {
  int answer = 0;
  auto result = RunModal([&] { answer = MessageBoxA(nullptr, "surprise", "X", MB_OKCANCEL); }, {});
  EXPECT_FALSE(result.ok());
  ASSERT_EQ(result.unexpected.size(), 1u);
  EXPECT_EQ(result.unexpected[0].MessageText(), "surprise");
  EXPECT_EQ(answer, IDCANCEL);

  result = RunModal([] {}, {Press("OK")}, ModalOptions{500, false, {}});
  EXPECT_EQ(result.errors.size(), 1u);
}

}  // namespace
}  // namespace qb::test
