// Key database files: real files in a fresh folder, read and written by the
// loader and saver the slots use; and the readable key lists the sample database
// is built from.
#include "keys/key_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>
#include <utility>

#include "keys/key_text.h"
#include "tests/keys/key_test_util.h"
#include "tests/support/temp_dir.h"

#ifndef _WIN32
#include <signal.h>
#include <sys/resource.h>
#endif

namespace qb::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Database images built by hand.
struct Image {
  Bytes bytes;
  explicit Image(std::uint32_t count) { U32(kDatabaseMagic).U32(count); }
  Image& U32(std::uint32_t v) {
    for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
    return *this;
  }
  Image& Raw(const std::string& s) {
    bytes.insert(bytes.end(), s.begin(), s.end());
    return *this;
  }
  // Length-prefixed texts, one per field.
  Image& Texts(const std::vector<std::string>& texts) {
    for (const std::string& s : texts) U32(static_cast<std::uint32_t>(s.size())).Raw(s);
    return *this;
  }
  Image& Add(const KeyRows& keys) {
    for (const KeyTexts& key : keys) Texts({key.begin(), key.end()});
    return *this;
  }
};

// Keys named k0, k1, ... with no other field.
KeyRows Numbered(int n) {
  KeyRows keys(n);
  for (int i = 0; i < n; ++i) keys[i][kName] = "k" + std::to_string(i);
  return keys;
}

class KeyFileTest : public KeyStateTest {
 protected:
  LoadResult Load(const Bytes& bytes, OwnedTable& table, SlotName* slot = nullptr) {
    WriteBytes(path_, bytes);
    return LoadDatabase(path_, *table, slot);
  }

  TempDir dir_;
  std::string path_ = dir_.File("Data.dat");
};

TEST_F(KeyFileTest, WriteThenReadKeepsEveryFieldInOrder) {
  std::string allBytes;
  for (int c = 1; c < 256; ++c) allBytes.push_back(static_cast<char>(c));
  const KeyRows keys = {
      {"First name", "firstname, fname\r\nfirst", "", "John"},
      {"", "", "", ""},  // no fields at all, still a key
      {"Country", "country", "Germany\r\nFrance", std::string(kMaxFieldLength, 'x')},
      {allBytes, "a", "b", "c"},
  };
  OwnedTable table(keys);
  OwnedTable loaded(NamedKeys({"old1", "old2", "old3", "old4", "old5"}));
  ASSERT_TRUE(SaveDatabase(path_, *table));
  const LoadResult r = LoadDatabase(path_, *loaded);
  EXPECT_TRUE(r.loaded() && !r.damaged());
  EXPECT_EQ(loaded.Texts(), keys);
  EXPECT_EQ(loaded->fields[kName][1], kNoBlock);  // an empty field has no block
  EXPECT_EQ(loaded->fields[kName][4], kNoBlock);  // the old keys are gone
  EXPECT_EQ(OneMessage(), "");
}

TEST_F(KeyFileTest, LayoutOnDisk) {
  OwnedTable table(NamedKeys({"A", "B", "C"}));
  ASSERT_TRUE(SaveDatabase(path_, *table));
  // A shorter database replaces a longer one completely.
  table.Fill({});
  ASSERT_TRUE(SaveDatabase(path_, *table));
  EXPECT_EQ(ReadBytes(path_), (Bytes{0xC6, 0x1E, 0x27, 0x00, 0, 0, 0, 0}));
  // Empty fields are four zero bytes; a text ends at its first NUL.
  table.Fill({{std::string("ab\0cd", 5), "", "", "c"}});
  ASSERT_TRUE(SaveDatabase(path_, *table));
  // clang-format off
  EXPECT_EQ(ReadBytes(path_), (Bytes{0xC6, 0x1E, 0x27, 0x00, 1, 0, 0, 0,
                                     2, 0, 0, 0, 'a', 'b', 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 'c'}));
  // clang-format on
}

TEST_F(KeyFileTest, WrongMagicIsRefusedWhateverTheSize) {
  std::vector<Bytes> files = {{}, {0xC6, 0x1E, 0x27}, {0x00, 0x27, 0x1E, 0xC6}, Bytes(100000, 'A')};
  for (std::size_t byte = 0; byte < 4; ++byte) {
    files.push_back(Image(1).Add(Numbered(1)).bytes);
    files.back()[byte] ^= 0x01;
  }
  for (const Bytes& bytes : files) {
    OwnedTable table(NamedKeys({"kept"}));
    SlotName slot{'D', 'a', 't', 'a'};
    EXPECT_EQ(Load(bytes, table, &slot).status, DatabaseLoadStatus::kNotADatabase);
    EXPECT_EQ(table.Texts(), NamedKeys({"kept"}));
    EXPECT_EQ(std::string(slot.data()), "Data");
    EXPECT_EQ(OneMessage(), "This is not a Quellbarrow database file");
  }
}

// Past the magic a file loads what it holds, at most 2000 keys, and the user is
// told what was wrong with it; the empty database (8 bytes) loads silently.
// Lengths of 30000 and more carry no text: the reader takes the next four bytes as
// the next length, so a writer that put text after one is read out of step.
TEST_F(KeyFileTest, DamagedFilesLoadWhatTheyHold) {
  const std::string tooMany =
      " keys, but a database can hold at most 2000.\nSaving it keeps only the keys loaded.\n";
  const std::tuple<Bytes, KeyRows, std::string> cases[] = {
      {Image(0).bytes, {}, ""},
      {Image(2000).Add(Numbered(2000)).bytes, Numbered(2000), ""},
      {Image(2001).Add(Numbered(2001)).bytes, Numbered(2000),
       "This database file says it holds 2001" + tooMany + "Keys loaded: 2000."},
      {Image(0x7FFFFFFF).Add(Numbered(2)).bytes, Numbered(2),
       "This database file says it holds 2147483647" + tooMany +
           "This database file ends early.\nKeys loaded: 2."},
      {Image(0xFFFFFFFF).Add(Numbered(3)).bytes,
       {},
       "The key count of this database file is damaged (-1).\nNo keys were loaded."},
      {Image(2).Texts({"Long", "", "", std::string(30000, 'A'), "Next", "next", "", ""}).bytes,
       {{"Long", "", "", ""}, {"", "", "", ""}},
       ""},
      {Image(2).U32(0xFFFFFFFF).Texts({"hi", "", "", "world", "", "", ""}).bytes,
       {{"", "hi", "", ""}, {"world", "", "", ""}},
       ""},
      // Cut inside the second key's Selection, after "Ye".
      {Image(2).Add(Numbered(1)).Texts({"Second", ""}).U32(7).Raw("Ye").bytes,
       {Numbered(1)[0], {"Second", "", "Ye", ""}},
       "This database file ends early.\nKeys loaded: 2 (the last one incomplete)."},
  };
  for (const auto& [image, keys, message] : cases) {
    OwnedTable table(NamedKeys({"old"}));
    EXPECT_TRUE(Load(image, table).loaded());
    EXPECT_EQ(table.Texts(), keys);
    EXPECT_EQ(OneMessage("", message.empty() ? MessageIcon::kNone : MessageIcon::kWarning),
              message);
  }
}

TEST_F(KeyFileTest, FailedSaveKeepsTheOldDatabase) {
  OwnedTable table(NamedKeys({"Old"}));
  ASSERT_TRUE(SaveDatabase(path_, *table));
  const Bytes before = ReadBytes(path_);
  // No folder to write in; a target that can't be replaced (a folder of that name).
  std::filesystem::create_directory(dir_.File("Folder.dat"));
  for (const std::string& target : {dir_.File("none") + "/Data.dat", dir_.File("Folder.dat")}) {
    EXPECT_FALSE(SaveDatabase(target, *table));
    EXPECT_FALSE(FileExists(target + kDatabaseTempSuffix));
    EXPECT_EQ(OneMessage(), "Can't write to database file");
  }
#ifndef _WIN32
  // A disk that fills up during the write, made real with the file-size limit.
  table.Fill({{"Big", "", "", std::string(20000, 'b')}});
  rlimit saved, small;
  getrlimit(RLIMIT_FSIZE, &saved);
  small = saved;
  small.rlim_cur = 4096;
  auto* previous = signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &small);
  const bool ok = SaveDatabase(path_, *table);
  setrlimit(RLIMIT_FSIZE, &saved);
  signal(SIGXFSZ, previous);
  EXPECT_FALSE(ok);
  EXPECT_EQ(ReadBytes(path_), before);
  EXPECT_FALSE(FileExists(path_ + kDatabaseTempSuffix));
  EXPECT_EQ(OneMessage(), "Can't write to database file");
#endif
}

TEST(KeyText, FieldsAndRepeatedLines) {
  OwnedTable table;
  std::string error;
  ASSERT_TRUE(
      ParseKeyText("# keys\r\nkey  First name  \r\n  search fname, first\nsearch given\n\n"
                   "key Country\nselect Germany\nselect France\n"
                   "description One\ndescription\ndescription Three",
                   *table, error))
      << error;
  EXPECT_EQ(table.Texts(), (KeyRows{{"First name", "fname, first\r\ngiven", "", ""},
                                 {"Country", "", "Germany\r\nFrance", "One\r\n\r\nThree"}}));
}

TEST(KeyText, MistakesNameTheirLineAndLeaveNoKeys) {
  const std::pair<std::string, std::string> cases[] = {
      {"search x\n", "line 1: \"search\" before the first key"},
      {"key A\nname B\n", "line 2: unknown word \"name\""},
      {"key A\n\nkey\n", "line 3: a key needs a name"},
      {"key Mail\nkey MAIL\n", "line 2: a key named \"MAIL\" comes before"},
      {"key A\ndescription " + std::string(kMaxFieldLength + 1, 'x'),
       "line 1: a field of this key is longer than 29999 bytes"},
      {"key A\nsearch a" + std::string(1, '\0'), "line 2: a NUL byte can't be kept in a key"},
  };
  for (const auto& [text, expected] : cases) {
    OwnedTable table;
    std::string error;
    EXPECT_FALSE(ParseKeyText(text, *table, error));
    EXPECT_EQ(error, expected);
    EXPECT_EQ(table->count, 0);
  }
}

}  // namespace
}  // namespace qb::test
