#include "scan/scan_options.h"

#include <gtest/gtest.h>

namespace qb {
namespace {

ScanOptions AskAll(std::uint32_t ask) {
  ScanOptions options;
  options.askForSelect.fill(ask);
  return options;
}

// Columns: Never, Allways, UnMatched, a value no dialog stores (read as UnMatched).
constexpr std::uint32_t kAsks[] = {kAskNever, kAskAllways, kAskUnMatched, 7};

TEST(ScanOptions, TextFieldsAskInAPromptAllScanOrAsTheOptionSays) {
  struct Row {
    bool promptAll;
    bool keyMatched;
    bool asks[4];
  } const rows[] = {
      {false, true, {false, true, false, false}},
      {false, false, {false, true, true, true}},
      {true, true, {true, true, true, true}},
      {true, false, {true, true, true, true}},
  };
  for (PromptKind kind : {kPromptText, kPromptTextarea}) {
    for (const Row& row : rows) {
      for (int a = 0; a < 4; ++a) {
        EXPECT_EQ(PromptsTextField(AskAll(kAsks[a]), kind, row.promptAll, row.keyMatched), row.asks[a])
            << kind << " " << row.promptAll << row.keyMatched << " ask " << kAsks[a];
      }
    }
  }
}

TEST(ScanOptions, SelectsNeverAskWithNeverNotEvenInAPromptAllScan) {
  struct Row {
    bool promptAll;
    bool keyMatched;
    bool optionListed;
    bool asks[4];
  } const rows[] = {
      {true, false, false, {false, true, true, true}},
      {true, true, true, {false, true, true, true}},
      {false, false, false, {false, true, true, true}},
      {false, true, true, {false, true, false, false}},
      {false, true, false, {false, true, true, true}},
  };
  for (const Row& row : rows) {
    for (int a = 0; a < 4; ++a) {
      int lookUps = 0;
      const bool asks = PromptsSelect(AskAll(kAsks[a]), row.promptAll, row.keyMatched, [&] {
        ++lookUps;
        return row.optionListed;
      });
      EXPECT_EQ(asks, row.asks[a]) << row.promptAll << row.keyMatched << row.optionListed << " ask " << kAsks[a];
      // The options are looked up only for UnMatched with a matched key.
      EXPECT_EQ(lookUps, (a >= 2 && row.keyMatched && !row.promptAll) ? 1 : 0);
    }
  }
}

TEST(ScanOptions, RadioGroupsAndCheckBoxesAreLeftAloneOnlyWithNever) {
  for (std::uint32_t ask : kAsks) {
    for (bool promptAll : {false, true}) {
      const bool expected = promptAll || ask != kAskNever;
      EXPECT_EQ(ChecksRadioGroups(AskAll(ask), promptAll), expected) << ask << promptAll;
      EXPECT_EQ(PromptsCheckboxes(AskAll(ask), promptAll), expected) << ask << promptAll;
    }
  }
}

}  // namespace
}  // namespace qb
