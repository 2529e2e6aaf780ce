// The merge of loaded keys into the table and the lists it reads. The safety copy
// is checked by the fuzz target and through the dialog.
#include "keys/key_merge.h"

#include <gtest/gtest.h>

#include "tests/keys/key_test_util.h"

namespace qb::test {
namespace {

class KeyMergeTest : public KeyStateTest {};

TEST_F(KeyMergeTest, ListsAreSplitTrimmedAndCut) {
  const std::string longName(kMergeNameMax + 3, 'x');
  const std::string cut(kMergeNameMax, 'x');
  const std::tuple<std::string, Names> searchNames[] = {
      {"", {}},
      {" ,\r\n,", {}},
      {"zip, plz\r\npost code ,,  city  ", {"zip", "plz", "post code", "city"}},
      {"e-\rmail\n\tfax", {"e-mail", "\tfax"}},
      {longName + " ,next", {cut, "next"}},
      // cut at a blank, which then goes as any trailing blank
      {std::string(kMergeNameMax - 1, 'y') + "  z,", {std::string(kMergeNameMax - 1, 'y')}},
  };
  for (const auto& [text, expected] : searchNames) EXPECT_EQ(SplitSearchNames(text), expected) << text;

  // Values end at line feeds only; a loaded value also skips commas before it.
  const std::tuple<std::string, SelectionSource, Names> selections[] = {
      {", Yes\r\n,No , maybe \n\n", SelectionSource::kLoaded, {"Yes", "No , maybe"}},
      {", Yes\r\n,No , maybe \n\n", SelectionSource::kOwn, {", Yes", ",No , maybe"}},
      {longName + "\r\nlast", SelectionSource::kOwn, {cut, "last"}},
  };
  for (const auto& [text, source, expected] : selections) EXPECT_EQ(SplitSelection(text, source), expected) << text;
}

struct MergeCase {
  const char* what;
  MergeOptions options;
  std::vector<int> selected;
  std::vector<KeyTexts> table, loaded, expected;
};

constexpr MergeOptions kAll{true, true, true, kCompareDuplicated};
constexpr MergeOptions kOverwrite{true, true, true, kOverwriteDuplicated};
constexpr MergeOptions kSkip{true, true, true, kSkipDuplicated};
constexpr MergeOptions kSearchOnly{true, false, false, kCompareDuplicated};

// Each case: the table, the loaded keys, and the table after the merge.
TEST_F(KeyMergeTest, MergesEachSelectedKeyAsTheModeSays) {
  const MergeCase cases[] = {
      {"a new key comes at the end, its lists rewritten", kAll, {0},
       {{"City", "city", "", "Bonn"}},
       {{"Zip", " zip\r\n plz ", "1\r\n2", "53111"}},
       {{"City", "city", "", "Bonn"}, {"Zip", "zip,plz,", "1\r\n2\r\n", "53111"}}},
      {"do not add duplicated leaves the duplicate alone and still adds new keys", kSkip, {0, 1},
       {{"Zip", "zip", "a", "1"}},
       {{"ZIP", "postal", "b", "2"}, {"Town", "town", "", "Bonn"}},
       {{"Zip", "zip", "a", "1"}, {"Town", "town,", "", "Bonn"}}},
      {"a search name another key holds is not taken, by a new key or a duplicate", kAll, {0, 1},
       {{"Zip", "zip,plz", "", ""}, {"City", "city", "", ""}},
       {{"City", "PLZ,town", "", ""}, {"Post", "Zip,post", "", ""}},
       {{"Zip", "zip,plz", "", ""}, {"City", "town,city,", "", ""}, {"Post", "post,", "", ""}}},
      {"compare keeps the key's own names after the loaded ones, once each", kSearchOnly, {0},
       {{"Zip", "plz,zip,Code,code", "", ""}},
       {{"zip", "ZIP,post", "", ""}},
       {{"Zip", "ZIP,post,plz,Code,", "", ""}}},
      {"overwrite drops the key's own names", {true, false, false, kOverwriteDuplicated}, {0},
       {{"Zip", "plz,zip", "", ""}},
       {{"zip", "ZIP,post", "", ""}},
       {{"Zip", "ZIP,post,", "", ""}}},
      {"a key merged earlier in the round holds its names for the next", kAll, {0, 1},
       {},
       {{"A", "one", "", ""}, {"B", "ONE,two", "", ""}},
       {{"A", "one,", "", ""}, {"B", "two,", "", ""}}},
      {"the Selection keeps only the loaded values the key lacked", kAll, {0},
       {{"Sex", "", "Male\r\nfemale\r\nother", ""}},
       {{"sex", "", "FEMALE\r\ndiverse\r\nmale", ""}},
       {{"Sex", "", "diverse\r\n", ""}}},
      {"with overwrite the Selection ends up empty", kOverwrite, {0},
       {{"Sex", "", "Male", ""}},
       {{"sex", "", "Female\r\nMale", ""}},
       {{"Sex", "", "", ""}}},
      {"an empty loaded Selection empties the key's", kAll, {0},
       {{"Sex", "", "Male", ""}},
       {{"sex", "", "", ""}},
       {{"Sex", "", "", ""}}},
      {"the Description is replaced only by one that is there", kAll, {0, 1},
       {{"A", "", "", "old"}, {"B", "", "", "old"}},
       {{"a", "", "", "new"}, {"b", "", "", ""}},
       {{"A", "", "", "new"}, {"B", "", "", "old"}}},
      {"fields not taken stay as they were; a new key gets its Name only",
       {false, false, false, kOverwriteDuplicated}, {0, 1},
       {{"A", "a", "x", "old"}},
       {{"a", "b", "y", "new"}, {"C", "c", "z", "c"}},
       {{"A", "a", "x", "old"}, {"C", "", "", ""}}},
      {"the same Name twice: the second merges into the key the first added", kAll, {0, 1, 5, -1},
       {},
       {{"\xC9mile", "a", "1", "first"}, {"\xE9MILE", "b", "2", "second"}},
       {{"\xC9mile", "b,a,", "2\r\n", "second"}}},
      {"Names are found from the first key; keys without a Name are never found", kSearchOnly, {0, 1},
       {{"", "e", "", ""}, {"Mail", "m", "", ""}, {"mail", "n", "", ""}},
       {{"MAIL", "x", "", ""}, {"", "y", "", ""}},
       {{"", "e", "", ""}, {"Mail", "x,m,", "", ""}, {"mail", "n", "", ""}, {"", "y,", "", ""}}},
  };
  for (const MergeCase& c : cases) {
    SCOPED_TRACE(c.what);
    OwnedTable table(c.table);
    OwnedTable loaded(c.loaded);
    SetDatabaseChanged(false);
    MergeKeys(*table, *loaded, c.selected, c.options);
    EXPECT_EQ(table.Texts(), c.expected);
    EXPECT_EQ(DatabaseChanged(), table.Texts() != c.table);
  }
}

TEST_F(KeyMergeTest, LimitsAndFailuresLoseNothing) {
  // A full table takes no new key, but its keys are still merged into.
  OwnedTable full;
  for (int i = 0; i < kMaxKeys; ++i) SetKeyField(*full, i, kName, "k" + std::to_string(i));
  full->count = kMaxKeys;
  OwnedTable loaded({{"new", "", "", "n"}, {"K7", "", "", "seven"}});
  MergeOutcome outcome = MergeKeys(*full, *loaded, {0, 1}, kAll);
  EXPECT_EQ(outcome.noRoom, 1);
  EXPECT_EQ(outcome.merged, 1);
  EXPECT_EQ(full->count, kMaxKeys);
  EXPECT_EQ(KeyFieldText(*full, 7, kDescription), "seven");

  // Merged lists stop short of the longest field the file carries.
  const std::string name(500, 'n');
  std::string many;
  for (int i = 0; i < 70; ++i) many += name + std::to_string(i) + ",";
  OwnedTable table({{"A", many, many, ""}});
  OwnedTable longLoaded({{"a", "extra", "extra", ""}});
  MergeKeys(*table, *longLoaded, {0}, kAll);
  const std::string merged = KeyFieldText(*table, 0, kSearchNames);
  EXPECT_LE(merged.size(), kMaxFieldLength);
  EXPECT_EQ(merged.substr(0, 6), "extra,");
  EXPECT_GT(merged.size() + name.size() + 3, kMaxFieldLength);  // the next name would not fit

  // A failed allocation keeps the old text; a refused row takes the new key away.
  OwnedTable small(NamedKeys({"A"}));
  OwnedTable other({{"a", "", "", "new"}, {"B", "b", "b", "b"}});
  FailNextTextBlockAllocations(1);
  MergeKeys(*small, *other, {0}, {false, false, true, kOverwriteDuplicated});
  EXPECT_EQ(small.Texts(), NamedKeys({"A"}));
  outcome = MergeKeys(*small, *other, {1}, kAll, [](int, std::string_view) { return false; });
  EXPECT_EQ(outcome.skipped, 1);
  EXPECT_EQ(small.Texts(), NamedKeys({"A"}));
  EXPECT_EQ(small->fields[kName][1], kNoBlock);
}

}  // namespace
}  // namespace qb::test
