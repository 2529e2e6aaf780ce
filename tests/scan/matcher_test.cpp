#include "scan/matcher.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "tests/keys/key_test_util.h"

namespace qb {
namespace {

using test::KeyTexts;
using test::OwnedTable;

KeyTexts SearchKey(const std::string& searchNames, const std::string& selection = "") {
  return {"key", searchNames, selection, "text"};
}

// The index answers as the walk over every key does. Each row's Search Names are
// those of keys 1 and 2 after key 0's "city": the lower index wins.
TEST(FindKeyBySearchName, SplitsSearchNamesAtCommasAndLineEndsAndTheLowestIndexWins) {
  const struct {
    std::string searchNames;
    std::vector<const char*> answered, notAnswered;  // field names
  } cases[] = {
      {"email, e-mail\r\nmail", {"EMAIL", "e-mail", "Mail"}, {"e"}},
      {"first name", {"First Name"}, {"first"}},  // inner spaces belong to the name
      {"zip   ,city", {"zip"}, {}},                // trailing spaces trimmed
      {"  ,,\r\n zip", {"zip"}, {""}},             // any run of gaps before an entry
      {"zi\rp", {"p"}, {"zip"}},                    // a CR ends the entry
      {"", {}, {"zip"}},
      {std::string(kMaxSearchEntryBytes, 'a') + "tail", {"tail"}, {}},  // read in pieces
  };
  for (const auto& c : cases) {
    OwnedTable keys({SearchKey("city"), SearchKey(c.searchNames), SearchKey(c.searchNames)});
    SearchNameIndex index;
    index.Build(*keys);
    for (const auto& [names, found] : {std::pair{c.answered, 1u}, std::pair{c.notAnswered, kNoMatch}}) {
      for (const char* name : names) {
        EXPECT_EQ(FindKeyBySearchName(*keys, name), found) << c.searchNames << " / " << name;
        EXPECT_EQ(index.Find(name), found) << c.searchNames << " / " << name;
      }
    }
  }
}

TEST(SearchNameIndex, FoldsCaseAsCompareNoCaseDoes) {
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) {
      const std::string x(1, static_cast<char>(a)), y(1, static_cast<char>(b));
      ASSERT_EQ(CompareNoCase(x, y) == 0, FoldCaseForCompare(x) == FoldCaseForCompare(y)) << a << " " << b;
    }
  }
}

TEST(SelectionContains, OneValuePerLine) {
  const std::tuple<const char*, const char*, bool> cases[] = {
      {"Yes, please\r\nNo", "yes, please", true},  // a comma does not end a line
      {"Yes, please\r\nNo", "yes", false},
      {"Yes, please\r\nNo", "NO", true},
      {"  Red  \r\n\r\nBlue", "red", true},
      {"Red", "", false},
      {"", "Red", false},
  };
  for (const auto& [selection, value, contained] : cases) {
    EXPECT_EQ(SelectionContains(value, selection), contained) << selection << " / " << value;
  }
}

// Key 1 learns or forgets a name while key 0 answers "city".
TEST(LearnAndForgetSearchName, ChangeOnlyWhatTheyMay) {
  enum Op { kLearn, kForget };
  const struct {
    Op op;
    KeyTexts key;
    const char *name, *value;
    bool withValue, done;
    const char *searchNames, *selection;
  } cases[] = {
      {kLearn, SearchKey("postcode, "), "zip", "", false, true, "postcode,zip", ""},
      {kLearn, SearchKey(""), "zip", "", false, true, "zip", ""},
      {kLearn, SearchKey("postcode\r\n", "North\r\n"), "zip", "south", true, true, "postcode,zip",
       "North\r\nsouth"},
      {kLearn, SearchKey("postcode", "South"), "zip", "south", true, true, "postcode,zip",
       "South"},  // already listed
      {kLearn, SearchKey("postcode"), "zip", "south", true, true, "postcode,zip", "south"},
      {kLearn, SearchKey("zip"), "CITY", "", false, false, "zip", ""},  // answered already
      {kLearn, SearchKey("zip"), "", "", false, false, "zip", ""},
      {kForget, SearchKey("email, e-mail\r\nmail"), "E-MAIL", "", false, true, "email,\nmail", ""},
      {kForget, SearchKey("email, e-mail\r\nmail"), "email", "", false, true, " e-mail\r\nmail",
       ""},
      {kForget, SearchKey("email,mail"), "mail", "", false, true, "email,", ""},
      {kForget, SearchKey("size, colour", "Red\r\nYes, please\r\nBlue"), "colour", "yes, please",
       true, true, "size,", "Red\r\nBlue"},
      {kForget, SearchKey("size, colour", "Red\r\nBlue"), "colour", "green", true, true, "size,",
       "Red\r\nBlue"},
      {kForget, SearchKey("size, colour", "Red"), "colour", "red", false, true, "size,", "Red"},
      {kForget, SearchKey(" ,\nemail,mail"), "mail", "", false, true, "email,", ""},  // leading separators go
      {kForget, SearchKey("zip"), "town", "", false, false, "zip", ""},  // nobody answers it
      {kForget, SearchKey(""), "city", "", false, true, "city", ""},    // an empty key takes it
  };
  for (const auto& c : cases) {
    OwnedTable keys({SearchKey("city"), c.key});
    SetDatabaseChanged(false);
    const auto change = c.op == kLearn ? LearnSearchName : ForgetSearchName;
    EXPECT_EQ(change(*keys, c.name, 1, c.value, c.withValue), c.done) << c.op << c.name;
    EXPECT_EQ(KeyFieldText(*keys, 1, kSearchNames), c.searchNames) << c.op << c.name;
    EXPECT_EQ(KeyFieldText(*keys, 1, kSelection), c.selection) << c.op << c.name;
    EXPECT_EQ(DatabaseChanged(), c.done) << c.op << c.name;
  }
}

TEST(LearnSearchName, TellsWhatDoesNotFitAndKeepsTheKey) {
  OwnedTable keys({SearchKey("zip"), SearchKey(std::string(kMaxFieldLength - 3, 'c'))});
  TakeUserMessages();
  EXPECT_FALSE(LearnSearchName(*keys, "town", 2, "", false));  // no such key
  EXPECT_TRUE(TakeUserMessages().empty());
  EXPECT_FALSE(LearnSearchName(*keys, "town", 1, "", false));  // would pass the field limit
  EXPECT_EQ(KeyFieldText(*keys, 1, kSearchNames).size(), kMaxFieldLength - 3);
  EXPECT_EQ(TakeUserMessages().size(), 1u);
  FailNextTextBlockAllocations(1);
  EXPECT_FALSE(LearnSearchName(*keys, "town", 0, "", false));
  EXPECT_EQ(KeyFieldText(*keys, 0, kSearchNames), "zip");
  EXPECT_EQ(TakeUserMessages().size(), 1u);
}

}  // namespace
}  // namespace qb
