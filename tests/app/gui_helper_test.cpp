// The modal-window driver that the GUI tests rely on, tried on real boxes.
#include <gtest/gtest.h>

#include "tests/support/gui_helper.h"

namespace qb::test {
namespace {

// What a test reads of a box, and that the steps answer the boxes in the order
// they open.
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

// A test must not pass over a box it did not foresee, nor over one that never came.
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
