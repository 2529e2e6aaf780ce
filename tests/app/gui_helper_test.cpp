// The modal-window driver that the GUI tests rely on, tried on real boxes. What
// it reads and how it answers, every GUI test uses and fails without; what it
// could hide, a box nobody expected or one that never came, is checked here.
#include <gtest/gtest.h>

#include "tests/support/gui_helper.h"

namespace qb::test {
namespace {

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
