// The key table's operations on real text blocks.
#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "tests/keys/key_test_util.h"

namespace qb::test {
namespace {

class KeyTableTest : public KeyStateTest {};

TEST_F(KeyTableTest, FindByNameIgnoresCaseAndEmptyNames) {
  const std::tuple<Names, std::string, int> cases[] = {
      {{}, "E-mail", kNoKey},        {{"Name", "E-Mail"}, "e-mail", 1},
      {{"mail", "Mail"}, "MAIL", 0}, {{"", "Phone"}, "", kNoKey},
      {{"", "Phone"}, "phone", 1},   {{"Names"}, "Name", kNoKey},
      {{"\xC9mile"}, "\xE9MILE", 0}, {{"\xD7"}, "\xF7", kNoKey},
      {{"\xC0\xDE"}, "\xE0\xFE", 0},  // the first and last capitals of the upper half
  };
  for (const auto& [names, query, expected] : cases) {
    OwnedTable table(NamedKeys(names));
    EXPECT_EQ(FindKeyByName(*table, query), expected) << query;
  }
}

// Both leave no entry sharing a handle with another, so a later free at one
// cannot take the blocks of the key that moved.
TEST_F(KeyTableTest, DeleteKeyAndMakeRoomLeaveNoSharedHandles) {
  OwnedTable table(NamedKeys({"A", "B", "C", "D"}));
  const TextBlock deleted = table->fields[kDescription][1];
  DeleteKey(*table, 1);
  EXPECT_EQ(table.Texts(), NamedKeys({"A", "C", "D"}));
  EXPECT_FALSE(IsTextBlock(deleted));
  EXPECT_FALSE(DatabaseChanged());
  SetKeyField(*table, 3, kDescription, "new");  // a key added at the count
  EXPECT_EQ(KeyFieldText(*table, 2, kDescription), "D-text");

  // The last key: only its own entry is emptied, the one past it is left alone.
  const TextBlock past = MakeTextBlock("past");
  table->fields[kName][4] = past;
  table->count = 4;
  DeleteKey(*table, 3);
  EXPECT_EQ(table->count, 3);
  EXPECT_EQ(table->fields[kDescription][3], kNoBlock);
  EXPECT_EQ(table->fields[kName][4], past);
  for (int index : {-1, 3, kNoKey}) DeleteKey(*table, index);

  MakeRoom(*table, 1, 3);
  EXPECT_EQ(table->count, 3);
  table->count = 4;
  SetKeyField(*table, 1, kName, "X");  // frees nothing that moved
  std::vector<KeyTexts> expected = NamedKeys({"A", "C", "D"});
  expected.insert(expected.begin() + 1, {"X", "", "", ""});
  EXPECT_EQ(table.Texts(), expected);
  for (auto [first, last] : {std::pair{2, 2}, {3, 1}, {-1, 2}, {0, kMaxKeys}})
    MakeRoom(*table, first, last);
  EXPECT_EQ(table.Texts(), expected);
}

TEST_F(KeyTableTest, SetDescriptionKeepsTheOldBlockAndSetKeyFieldFreesIt) {
  OwnedTable table(NamedKeys({"A"}));
  const TextBlock old = table->fields[kDescription][0];
  // An empty text keeps the Description but still marks the database changed.
  EXPECT_TRUE(SetDescription(*table, "", 0));
  EXPECT_TRUE(DatabaseChanged());
  EXPECT_EQ(table->fields[kDescription][0], old);
  EXPECT_TRUE(SetDescription(*table, "Hello", 0));
  EXPECT_EQ(KeyFieldText(*table, 0, kDescription), "Hello");
  ASSERT_TRUE(IsTextBlock(old));  // replaced without being freed
  FreeTextBlock(old);
  SetDatabaseChanged(false);
  FailNextTextBlockAllocations(1);
  EXPECT_FALSE(SetDescription(*table, "World", 0));
  EXPECT_TRUE(DatabaseChanged());
  EXPECT_EQ(KeyFieldText(*table, 0, kDescription), "Hello");
  EXPECT_EQ(OneMessage("Information", MessageIcon::kInformation),
            "Not enough memory to store the data");

  // Any other field is replaced and its old block freed.
  SetDatabaseChanged(false);
  const TextBlock search = table->fields[kSearchNames][0];
  ASSERT_TRUE(SetKeyField(*table, 0, kSearchNames, std::string_view("zip,plz", 3)));
  EXPECT_TRUE(DatabaseChanged());
  // Freed: dead, or handed out again for the new text.
  EXPECT_TRUE(!IsTextBlock(search) || table->fields[kSearchNames][0] == search);
  EXPECT_EQ(KeyFieldText(*table, 0, kSearchNames), "zip");
  EXPECT_TRUE(SetKeyField(*table, 0, kSearchNames, ""));
  EXPECT_EQ(table->fields[kSearchNames][0], kNoBlock);
  FailNextTextBlockAllocations(1);
  EXPECT_FALSE(SetKeyField(*table, 0, kSelection, "Yes"));
  EXPECT_EQ(table->fields[kSelection][0], kNoBlock);
  EXPECT_EQ(OneMessage(), "");
  EXPECT_FALSE(SetKeyField(*table, kMaxKeys, kName, "x"));
}

TEST_F(KeyTableTest, SortIsStableAndMovesWholeKeys) {
  const std::tuple<Names, SortDirection, Names> cases[] = {
      {{"b", "A", "a", "B", "c"}, SortDirection::kAscending, {"A", "a", "b", "B", "c"}},
      {{"b", "A", "a", "B", "c"}, SortDirection::kDescending, {"c", "b", "B", "A", "a"}},
      // A key without a Name stops every key that would pass it.
      {{"c", "", "b", "a"}, SortDirection::kAscending, {"c", "", "a", "b"}},
  };
  for (const auto& [names, direction, expected] : cases) {
    OwnedTable table(NamedKeys(names));
    SortKeysByName(*table, direction);
    EXPECT_EQ(table.Texts(), NamedKeys(expected));  // the stored order is gone
    EXPECT_FALSE(DatabaseChanged());
  }
}

TEST_F(KeyTableTest, MoveKeyToEveryPosition) {
  const Names names = {"A", "B", "C", "D"};
  const int count = static_cast<int>(names.size());
  for (int from = 0; from < count; ++from) {
    // `count` is where the last key dropped on its own row aims.
    for (int to = 0; to <= count; ++to) {
      OwnedTable table(NamedKeys(names));
      Names expected = names;
      expected.erase(expected.begin() + from);
      expected.insert(expected.begin() + std::min(to, count - 1), names[from]);
      MoveKey(*table, from, to);
      EXPECT_EQ(table.Texts(), NamedKeys(expected)) << from << " -> " << to;
    }
  }
}

// Clearing frees every position up to the capacity, whatever the count says, and
// empties the slot's name when given one.
TEST_F(KeyTableTest, ClearAllKeysFreesEveryPosition) {
  OwnedTable table(NamedKeys({"A", "B"}));
  const TextBlock past = MakeTextBlock("past");
  table->fields[kSelection][kMaxKeys - 1] = past;
  table->count = -7;
  SlotName name{'D', 'a', 't', 'a'};
  ClearAllKeys(*table, &name);
  EXPECT_EQ(table->count, 0);
  EXPECT_FALSE(IsTextBlock(past));
  EXPECT_EQ(name, SlotName{});
}

}  // namespace
}  // namespace qb::test
