#include "scan/matcher.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/keys/key_test_util.h"

namespace qb {
namespace {

using test::KeyTexts;
using test::OwnedTable;

KeyTexts SearchKey(const std::string& searchNames, const std::string& selection = "") {
  return {"key", searchNames, selection, "text"};
}

TEST(FindKeyBySearchName, SplitsSearchNamesAtCommasAndLineEnds) {
  struct Case {
    std::string searchNames;
    const char* fieldName;
    bool matches;
  } const cases[] = {
      {"email, e-mail\r\nmail", "EMAIL", true},
      {"email, e-mail\r\nmail", "e-mail", true},
      {"email, e-mail\r\nmail", "Mail", true},
      {"email, e-mail\r\nmail", "e", false},
      {"first name", "First Name", true},   // inner spaces belong to the name
      {"first name", "first", false},
      {"zip   ,city", "zip", true},          // trailing spaces trimmed
      {"  ,,\r\n zip", "zip", true},         // any run of gaps before an entry
      {"zi\rp", "zip", false},               // a CR ends the entry
      {"zi\rp", "p", true},
      {"post code", "postcode", false},
      {"", "zip", false},
      {"zip", "", false},
      {std::string(kMaxSearchEntryBytes, 'a') + "tail", "tail", true},  // read in pieces
  };
  for (const Case& c : cases) {
    OwnedTable keys({SearchKey(c.searchNames)});
    std::string name = c.fieldName;
    const std::uint32_t found = FindKeyBySearchName(*keys, name);
    EXPECT_EQ(found == 0, c.matches) << c.searchNames << " / " << c.fieldName;
    SearchNameIndex index;
    index.Build(*keys);
    EXPECT_EQ(index.Find(name), found) << c.searchNames << " / " << c.fieldName;
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

TEST(FindKeyBySearchName, LowestIndexWinsAndTheNameIsUpperCasedInPlace) {
  OwnedTable keys({SearchKey("city"), SearchKey("phone, zip"), SearchKey("zip")});
  SearchNameIndex index;
  index.Build(*keys);
  EXPECT_EQ(index.Find("ZIP"), 1u);
  const TextBlock name = MakeTextBlock("zip");
  EXPECT_EQ(FindKeyBySearchName(*keys, name), 1u);
  EXPECT_EQ(TextOf(name), "ZIP");
  FreeTextBlock(name);
  std::string missing = "fax";
  EXPECT_EQ(FindKeyBySearchName(*keys, missing), kNoMatch);
  EXPECT_EQ(FindKeyBySearchName(*keys, kNoBlock), kNoMatch);
}

TEST(SelectionContains, OneValuePerLine) {
  struct Case {
    const char* selection;
    const char* text;
    bool contained;
  } const cases[] = {
      {"Yes, please\r\nNo", "yes, please", true},  // a comma does not end a line
      {"Yes, please\r\nNo", "yes", false},
      {"Yes, please\r\nNo", "NO", true},
      {"  Red  \r\n\r\nBlue", "red", true},
      {"Red", "", false},
      {"", "Red", false},
  };
  for (const Case& c : cases) {
    std::string text = c.text;
    EXPECT_EQ(SelectionContains(text, c.selection), c.contained) << c.selection << " / " << c.text;
  }
  const TextBlock value = MakeTextBlock("blue");
  EXPECT_TRUE(SelectionContains(value, "Red\nBlue"));
  EXPECT_EQ(TextOf(value), "BLUE");
  FreeTextBlock(value);
}

TEST(LearnSearchName, AppendsTheNameAndValueToTheKey) {
  struct Case {
    KeyTexts key;
    const char* value;
    bool withValue;
    const char* searchNames;
    const char* selection;
  } const cases[] = {
      {SearchKey("postcode, "), "", false, "postcode,zip", ""},
      {SearchKey(""), "", false, "zip", ""},
      {SearchKey("postcode\r\n", "North\r\n"), "south", true, "postcode,zip", "North\r\nsouth"},
      {SearchKey("postcode", "South"), "south", true, "postcode,zip", "South"},  // already listed
      {SearchKey("postcode"), "south", true, "postcode,zip", "south"},
  };
  for (const Case& c : cases) {
    OwnedTable keys({SearchKey("other"), c.key});
    SetDatabaseChanged(false);
    ASSERT_TRUE(LearnSearchName(*keys, "zip", 1, c.value, c.withValue));
    EXPECT_EQ(KeyFieldText(*keys, 1, kSearchNames), c.searchNames);
    EXPECT_EQ(KeyFieldText(*keys, 1, kSelection), c.selection);
    EXPECT_TRUE(DatabaseChanged());
  }
}

TEST(LearnSearchName, RefusesWhatItMustNotLearn) {
  OwnedTable keys({SearchKey("zip"), SearchKey("city")});
  EXPECT_FALSE(LearnSearchName(*keys, "ZIP", 1, "", false));  // some key answers it already
  EXPECT_FALSE(LearnSearchName(*keys, "town", 2, "", false));  // no such key
  EXPECT_FALSE(LearnSearchName(*keys, "", 1, "", false));
  ASSERT_TRUE(SetKeyField(*keys, 1, kSearchNames, std::string(kMaxFieldLength - 3, 'c')));
  TakeUserMessages();
  EXPECT_FALSE(LearnSearchName(*keys, "town", 1, "", false));  // would pass the field limit
  EXPECT_EQ(KeyFieldText(*keys, 1, kSearchNames).size(), kMaxFieldLength - 3);
  EXPECT_EQ(TakeUserMessages().size(), 1u);
  FailNextTextBlockAllocations(1);
  EXPECT_FALSE(LearnSearchName(*keys, "town", 0, "", false));
  EXPECT_EQ(KeyFieldText(*keys, 0, kSearchNames), "zip");  // the old text stays
  EXPECT_EQ(TakeUserMessages().size(), 1u);
}

TEST(ForgetSearchName, DropsTheNameAndWithAValueTheSelectionLine) {
  struct Case {
    KeyTexts key;
    const char* name;
    const char* value;
    bool withValue;
    const char* searchNames;
    const char* selection;
  } const cases[] = {
      {SearchKey("email, e-mail\r\nmail"), "E-MAIL", "", false, "email,\nmail", ""},
      {SearchKey("email, e-mail\r\nmail"), "email", "", false, " e-mail\r\nmail", ""},
      {SearchKey("email,mail"), "mail", "", false, "email,", ""},
      {SearchKey("size, colour", "Red\r\nYes, please\r\nBlue"), "colour", "yes, please", true, "size,",
       "Red\r\nBlue"},
      {SearchKey("size, colour", "Red\r\nBlue"), "colour", "green", true, "size,", "Red\r\nBlue"},
      {SearchKey("size, colour", "Red"), "colour", "red", false, "size,", "Red"},
  };
  for (const Case& c : cases) {
    OwnedTable keys({c.key});
    SetDatabaseChanged(false);
    ASSERT_TRUE(ForgetSearchName(*keys, c.name, 0, c.value, c.withValue)) << c.name;
    EXPECT_EQ(KeyFieldText(*keys, 0, kSearchNames), c.searchNames) << c.name;
    EXPECT_EQ(KeyFieldText(*keys, 0, kSelection), c.selection) << c.name;
    EXPECT_TRUE(DatabaseChanged());
    std::string again = c.name;
    EXPECT_EQ(FindKeyBySearchName(*keys, again), kNoMatch);
  }
}

TEST(ForgetSearchName, NeedsAMatchAndGivesAnEmptyKeyTheName) {
  OwnedTable keys({SearchKey("zip"), SearchKey("")});
  EXPECT_FALSE(ForgetSearchName(*keys, "city", 0, "", false));
  ASSERT_TRUE(ForgetSearchName(*keys, "zip", 1, "", false));
  EXPECT_EQ(KeyFieldText(*keys, 1, kSearchNames), "zip");
}

}  // namespace
}  // namespace qb
