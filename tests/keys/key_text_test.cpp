// Readable key lists and the sample database built from one.
#include <gtest/gtest.h>

#include "keys/key_file.h"
#include "keys/key_text.h"
#include "tests/keys/key_test_util.h"
#include "tests/support/temp_dir.h"

namespace qb::test {
namespace {

TEST(KeyText, FieldsAndRepeatedLines) {
  OwnedTable table;
  std::string error;
  ASSERT_TRUE(ParseKeyText("# keys\r\nkey  First name  \r\n  search fname, first\nsearch given\n\n"
                           "key Country\nselect Germany\nselect France\n"
                           "description One\ndescription\ndescription Three",
                           *table, error))
      << error;
  EXPECT_EQ(table.Texts(), (std::vector<KeyTexts>{{"First name", "fname, first\r\ngiven", "", ""},
                                                  {"Country", "", "Germany\r\nFrance", "One\r\n\r\nThree"}}));
}

TEST(KeyText, MistakesNameTheirLineAndLeaveNoKeys) {
  struct Case {
    std::string text, error;
  } cases[] = {
      {"search x\n", "line 1: \"search\" before the first key"},
      {"key A\nname B\n", "line 2: unknown word \"name\""},
      {"key A\n\nkey\n", "line 3: a key needs a name"},
      {"key Mail\nkey MAIL\n", "line 2: a key named \"MAIL\" comes before"},
      {"key A\ndescription " + std::string(kMaxFieldLength + 1, 'x'),
       "line 1: a field of this key is longer than 29999 bytes"},
      {"key A\nsearch a" + std::string(1, '\0'), "line 2: a NUL byte can't be kept in a key"},
  };
  for (const Case& c : cases) {
    OwnedTable table;
    std::string error;
    EXPECT_FALSE(ParseKeyText(c.text, *table, error));
    EXPECT_EQ(error, c.error);
    EXPECT_EQ(table->count, 0);
  }
}

// The sample that the program's folder receives as Databases\Sample.dat.
TEST(KeyText, SampleKeysBuildADatabase) {
  OwnedTable table;
  std::string error;
  ASSERT_TRUE(ParseKeyText(ReadText(QB_SAMPLE_KEYS), *table, error)) << error;
  for (const char* name : {"First name", "Last name", "E-mail", "Street", "City", "Postcode", "Phone", "Country",
                           "Newsletter"}) {
    const int k = FindKeyByName(*table, name);
    ASSERT_NE(k, kNoKey) << name;
    EXPECT_NE(KeyFieldText(*table, k, kSearchNames), "") << name;
  }
  EXPECT_EQ(KeyFieldText(*table, FindKeyByName(*table, "Country"), kSelection),
            "United States\r\nUnited States of America\r\nUSA\r\nUS");
  TempDir dir;
  OwnedTable loaded;
  ASSERT_TRUE(SaveDatabase(dir.File("Sample.dat"), *table));
  ASSERT_TRUE(LoadDatabase(dir.File("Sample.dat"), *loaded).loaded());
  EXPECT_EQ(loaded.Texts(), table.Texts());
}

}  // namespace
}  // namespace qb::test
