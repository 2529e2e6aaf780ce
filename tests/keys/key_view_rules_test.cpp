// Rules of the key list and the slots without a window: drops, the sort cycle,
// titles, Save's name rule, moving keys between tables, and Paste key.
#include <gtest/gtest.h>

#include <cstring>

#include "keys/key_clipboard.h"
#include "keys/key_view_rules.h"
#include "tests/keys/key_test_util.h"

namespace qb::test {
namespace {

// Each drop moves the key where DropTarget says; every key stays exactly once.
TEST(KeyViewRulesTest, DropsLandBeforeRowsBelowAfterRowsAboveAndFirstInTheTopZone) {
  struct Case {
    const char* what;
    int dragged, hit, y;
    Names expected;
  };
  const Case cases[] = {
      {"on a row below: just before it", 0, 2, 50, {"B", "A", "C", "D"}},
      {"on a row above: just after it", 3, 1, 50, {"A", "B", "D", "C"}},
      {"on itself: one place down", 1, 1, 50, {"A", "C", "B", "D"}},
      {"on a row above, in the top zone: first", 2, 0, 10, {"C", "A", "B", "D"}},
      {"on a row below, in the top zone: still before it", 0, 3, 5, {"B", "C", "A", "D"}},
      {"the first on itself in the top zone: unchanged", 0, 0, 19, {"A", "B", "C", "D"}},
      {"the last on itself: unchanged", 3, 3, 80, {"A", "B", "C", "D"}},
      {"the last on the row above: unchanged", 3, 2, 80, {"A", "B", "C", "D"}},
  };
  for (const Case& c : cases) {
    OwnedTable table(NamedKeys({"A", "B", "C", "D"}));
    const int target = DropTarget(c.dragged, c.hit, c.y, 4);
    ASSERT_GE(target, 0) << c.what;
    ASSERT_LT(target, 4) << c.what;
    MoveKey(*table, c.dragged, target);
    EXPECT_EQ(NamesOf(*table), c.expected) << c.what;
  }
}

TEST(KeyViewRulesTest, SortOrderCyclesAndAsksOnlyWhenLeavingAUserOrder) {
  const struct {
    int order;
    const char* name;
    bool asks;
    std::optional<SortDirection> fill;
  } rows[] = {
      {0, "User", true, std::nullopt},
      {1, "Ascending", false, SortDirection::kAscending},
      {2, "User", true, std::nullopt},
      {3, "Descending", false, SortDirection::kDescending},
  };
  for (const auto& row : rows) {
    EXPECT_STREQ(SortOrderName(row.order), row.name);
    EXPECT_EQ(SortChangeAsks(row.order), row.asks) << row.order;
    EXPECT_EQ(FillSort(row.order), row.fill) << row.order;
    EXPECT_EQ(NextSortOrder(row.order), (row.order + 1) % 4);
  }
}

TEST(KeyViewRulesTest, TitlesAndSaveNames) {
  // The window tests show a loaded slot's title.
  EXPECT_EQ(SlotTitle("Data.dat", false), "Quellbarrow - Not Loaded");
  EXPECT_EQ(SlotTitle("", true), "Quellbarrow - Not Loaded");
  EXPECT_EQ(SlotTitle("old\\Data.dat", true), "Quellbarrow - \\Data.dat");
  for (const char* name : {"", ".dat"}) EXPECT_FALSE(SaveAccepts(name)) << name;
  EXPECT_TRUE(SaveAccepts("a.dat"));

  SlotName name{};
  SetSlotNameText(name, std::string(300, 'n'));
  EXPECT_EQ(SlotNameText(name), std::string(kSlotNameSize - 1, 'n'));
}

TEST(KeyViewRulesTest, TransferKeyMovesBlocksAndStopsAtAFullTable) {
  OwnedTable from(NamedKeys({"A", "B", "C"}));
  OwnedTable to(NamedKeys({"X"}));
  const TextBlock b = from->fields[kName][1];
  ASSERT_TRUE(TransferKey(*from, 1, *to));
  EXPECT_EQ(NamesOf(*from), (Names{"A", "C"}));
  EXPECT_EQ(to.Texts(), NamedKeys({"X", "B"}));
  EXPECT_EQ(to->fields[kName][1], b);  // moved, not copied
  EXPECT_EQ(from->fields[kName][2], kNoBlock);
  EXPECT_FALSE(TransferKey(*from, 2, *to));

  to->count = kMaxKeys;
  EXPECT_FALSE(TransferKey(*from, 0, *to));
  EXPECT_EQ(NamesOf(*from), (Names{"A", "C"}));
}

class PasteKeyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    SetCopiedKeyIndex(kNoCopiedKey);
    SetDatabaseChanged(false);
    KeyNameBuffer().fill('\0');
    KeyFieldBuffer().fill('\0');
  }
  void TearDown() override { SetCopiedKeyIndex(kNoCopiedKey); }
};

// Nothing before a Copy or for a key without a Name; then the steps in their
// order: the Name into the editor's buffer, the field buffer as the copied key's
// Description, then a key more that is whatever its position holds.
TEST_F(PasteKeyTest, AppendsThePositionPastTheKeysAndTakesTheFieldBuffer) {
  OwnedTable table(NamedKeys({"A", "B", "C"}));
  DeleteKey(*table, 2);
  EXPECT_EQ(PasteKey(*table), -1);
  SetCopiedKeyIndex(2);  // past the keys: no Name there
  EXPECT_EQ(PasteKey(*table), -1);
  EXPECT_EQ(table->count, 2);
  EXPECT_FALSE(DatabaseChanged());

  SetCopiedKeyIndex(0);
  std::strcpy(KeyFieldBuffer().data(), "last read field");
  const TextBlock replaced = table->fields[kDescription][0];  // Set description keeps it
  EXPECT_EQ(PasteKey(*table), 2);
  FreeTextBlock(replaced);
  EXPECT_EQ(table->count, 3);
  EXPECT_TRUE(DatabaseChanged());
  EXPECT_STREQ(KeyNameBuffer().data(), "A");
  EXPECT_EQ(KeyFieldText(*table, 0, kDescription), "last read field");
  EXPECT_EQ(table.Texts()[2], (KeyTexts{"", "", "", ""}));

  // An empty field buffer leaves the Description; a full table gets no key more.
  KeyFieldBuffer().fill('\0');
  SetCopiedKeyIndex(1);
  table->count = kMaxKeys;
  EXPECT_EQ(PasteKey(*table), -1);
  EXPECT_EQ(table->count, kMaxKeys);
  EXPECT_EQ(KeyFieldText(*table, 1, kDescription), "B-text");
}

}  // namespace
}  // namespace qb::test
