#include "scan/scan_options.h"

#include <gtest/gtest.h>

namespace qb {
namespace {

constexpr std::uint32_t kAsks[] = {kAskNever, kAskAllways, kAskUnMatched, 7};  // 7 reads as UnMatched

// The expectations hold one character per value of kAsks: '1' where the scan asks
// (for radio groups: where it checks them).
TEST(ScanOptions, WhenEachFieldKindAsks) {
  const struct {
    bool promptAll, keyMatched, optionListed;
    const char *text, *select, *radioAndCheckbox;
  } rows[] = {
      {false, true, true, "0100", "0100", "0111"},
      {false, true, false, "0100", "0111", "0111"},
      {false, false, false, "0111", "0111", "0111"},
      {true, true, true, "1111", "0111", "1111"},  // Never holds a select even here
      {true, false, false, "1111", "0111", "1111"},
  };
  for (const auto& row : rows) {
    for (int a = 0; a < 4; ++a) {
      ScanOptions options;
      options.askForSelect.fill(kAsks[a]);
      const auto asks = [&](const char* expected) { return expected[a] == '1'; };
      SCOPED_TRACE(::testing::Message() << row.promptAll << row.keyMatched << row.optionListed
                                        << " ask " << kAsks[a]);
      for (PromptKind kind : {kPromptText, kPromptTextarea}) {
        EXPECT_EQ(PromptsTextField(options, kind, row.promptAll, row.keyMatched), asks(row.text)) << kind;
      }
      int lookUps = 0;
      const auto optionListed = [&] {
        ++lookUps;
        return row.optionListed;
      };
      EXPECT_EQ(PromptsSelect(options, row.promptAll, row.keyMatched, optionListed), asks(row.select));
      // The options are looked up only for UnMatched with a matched key.
      EXPECT_EQ(lookUps, a >= 2 && row.keyMatched && !row.promptAll ? 1 : 0);
      EXPECT_EQ(ChecksRadioGroups(options, row.promptAll), asks(row.radioAndCheckbox));
      EXPECT_EQ(PromptsCheckboxes(options, row.promptAll), asks(row.radioAndCheckbox));
    }
  }
}

}  // namespace
}  // namespace qb
