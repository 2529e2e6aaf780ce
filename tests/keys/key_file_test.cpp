// Key database files: real files in a fresh folder, read and written by the
// loader and saver the slots use.
#include <gtest/gtest.h>

#include <filesystem>

#include "keys/key_file.h"
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
  Image& Text(const std::string& s) {
    U32(static_cast<std::uint32_t>(s.size()));
    bytes.insert(bytes.end(), s.begin(), s.end());
    return *this;
  }
  Image& Key(const std::string& name) { return Text(name).Text("").Text("").Text(""); }
};

class KeyFileTest : public ::testing::Test {
 protected:
  void SetUp() override { TakeUserMessages(); }
  LoadResult Load(const Bytes& bytes, OwnedTable& table, SlotName* slot = nullptr) {
    WriteBytes(path_, bytes);
    return LoadDatabase(path_, *table, slot);
  }
  // The one message the last operation gave, or "" when none.
  std::string Message(const char* caption = "", MessageIcon icon = MessageIcon::kNone) {
    auto messages = TakeUserMessages();
    if (messages.empty()) return "";
    EXPECT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].caption, caption);
    EXPECT_EQ(messages[0].icon, icon);
    return messages[0].text;
  }

  TempDir dir_;
  std::string path_ = dir_.File("Data.dat");
};

TEST_F(KeyFileTest, WriteThenReadKeepsEveryFieldInOrder) {
  std::string allBytes;
  for (int c = 1; c < 256; ++c) allBytes.push_back(static_cast<char>(c));
  const std::vector<KeyTexts> keys = {
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
  EXPECT_EQ(loaded->fields[kName][1], kNoBlock);
  EXPECT_EQ(loaded->fields[kName][4], kNoBlock);  // the old keys are gone
  EXPECT_FALSE(FileExists(path_ + kDatabaseTempSuffix));
  EXPECT_EQ(Message(), "");
}

TEST_F(KeyFileTest, LayoutOnDisk) {
  OwnedTable table(NamedKeys({"A", "B", "C"}));
  ASSERT_TRUE(SaveDatabase(path_, *table));
  // A shorter database replaces a longer one completely.
  OwnedTable empty;
  ASSERT_TRUE(SaveDatabase(path_, *empty));
  EXPECT_EQ(ReadBytes(path_), (Bytes{0xC6, 0x1E, 0x27, 0x00, 0, 0, 0, 0}));

  // Empty fields are four zero bytes and read back as no block; a text ends at its
  // first NUL.
  table.Fill({{std::string("ab\0cd", 5), "", "", "c"}});
  ASSERT_TRUE(SaveDatabase(path_, *table));
  EXPECT_EQ(ReadBytes(path_), (Bytes{0xC6, 0x1E, 0x27, 0x00, 1, 0, 0, 0, 2, 0, 0, 0, 'a', 'b',
                                     0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 'c'}));
  ASSERT_TRUE(LoadDatabase(path_, *empty).loaded());
  EXPECT_EQ(empty->fields[kSearchNames][0], kNoBlock);
}

TEST_F(KeyFileTest, WrongMagicIsRefusedWhateverTheSize) {
  std::vector<Bytes> files = {{}, {0xC6, 0x1E, 0x27}, {0x00, 0x27, 0x1E, 0xC6}, Bytes(100000, 'A')};
  for (std::size_t byte = 0; byte < 4; ++byte) {
    files.push_back(Image(1).Key("Name").bytes);
    files.back()[byte] ^= 0x01;
  }
  for (const Bytes& bytes : files) {
    OwnedTable table(NamedKeys({"kept"}));
    SlotName slot{'D', 'a', 't', 'a'};
    EXPECT_EQ(Load(bytes, table, &slot).status, DatabaseLoadStatus::kNotADatabase);
    EXPECT_EQ(table.Names(), std::vector<std::string>{"kept"});
    EXPECT_EQ(std::string(slot.data()), "Data");
    EXPECT_EQ(Message(), "This is not a Quellbarrow database file");
  }
}

TEST_F(KeyFileTest, MissingFileEmptiesTheSlotNameSilently) {
  OwnedTable table;
  SlotName slot{'G', 'o', 'n', 'e'};
  EXPECT_EQ(LoadDatabase(dir_.File("Gone.dat"), *table, &slot).status, DatabaseLoadStatus::kMissing);
  EXPECT_EQ(slot, SlotName{});
  EXPECT_EQ(Message(), "");
}

// Lengths of 30000 and more carry no text: the reader takes the next four bytes
// as the next length, so a writer that put text after one is read out of step.
TEST_F(KeyFileTest, LongLengthsDesynchroniseTheRest) {
  for (std::uint32_t length : {29999u, 30000u, 0xFFFFFFFFu}) {
    Image image = Image(2).U32(length);
    if (length < kFieldLengthLimit) image.bytes.insert(image.bytes.end(), length, 'n');
    image.Text("hi").Text("").Text("").Key("world");
    OwnedTable table;
    ASSERT_FALSE(Load(image.bytes, table).damaged());
    const std::string name = length < kFieldLengthLimit ? std::string(length, 'n') : "";
    EXPECT_EQ(table.Texts(), (std::vector<KeyTexts>{{name, "hi", "", ""}, {"world", "", "", ""}}));
  }
  // So it goes for a database saved with a field of 30000 bytes: the next key is
  // read from that text's bytes.
  OwnedTable saved({{"Long", "", "", std::string(30000, 'A')}, {"Next", "next", "", ""}});
  ASSERT_TRUE(SaveDatabase(path_, *saved));
  OwnedTable table;
  LoadDatabase(path_, *table);
  EXPECT_EQ(table.Texts(), (std::vector<KeyTexts>{{"Long", "", "", ""}, {"", "", "", ""}}));
}

TEST_F(KeyFileTest, CountsOutsideTheTable) {
  const std::string tooMany = " keys, but a database can hold at most 2000.\nSaving it keeps only the keys loaded.\n";
  struct Case {
    std::uint32_t count;
    int records, keysRead;
    std::string message;
  } cases[] = {
      {2000, 2000, 2000, ""},
      {2001, 2001, 2000, "This database file says it holds 2001" + tooMany + "Keys loaded: 2000."},
      {0x7FFFFFFF, 2, 2,
       "This database file says it holds 2147483647" + tooMany + "This database file ends early.\nKeys loaded: 2."},
      {0xFFFFFFFF, 3, 0, "The key count of this database file is damaged (-1).\nNo keys were loaded."},
  };
  for (const Case& c : cases) {
    Image image(c.count);
    for (int i = 0; i < c.records; ++i) image.Key("k" + std::to_string(i));
    OwnedTable table;
    const LoadResult r = Load(image.bytes, table);
    EXPECT_TRUE(r.loaded());
    EXPECT_EQ(table->count, c.keysRead);
    if (c.keysRead > 0) {
      EXPECT_EQ(table.Names().back(), "k" + std::to_string(c.keysRead - 1));
    }
    EXPECT_EQ(Message("", c.message.empty() ? MessageIcon::kNone : MessageIcon::kWarning), c.message);
  }
}

// A file cut at any byte loads the keys before the cut whole and, of the key that
// was cut, the fields and the start of the text that are there.
TEST_F(KeyFileTest, TruncatedFilesKeepWhatTheyHold) {
  const std::vector<KeyTexts> keys = {{"First", "first,fname", "", "John"}, {"Second", "", "Yes\r\nNo", "x"}};
  OwnedTable full(keys);
  const Bytes bytes = DatabaseBytes(*full);
  for (std::size_t cut = 4; cut < bytes.size(); ++cut) {
    OwnedTable table;
    const LoadResult r = Load(Bytes(bytes.begin(), bytes.begin() + cut), table);
    ASSERT_TRUE(r.loaded() && r.endedEarly) << cut;
    const std::vector<KeyTexts> got = table.Texts();
    ASSERT_LE(got.size(), keys.size());
    for (std::size_t k = 0; k < got.size(); ++k) {
      for (int f = 0; f < kKeyFieldCount; ++f) {
        const bool cutHere = r.lastKeyCut && k + 1 == got.size();
        EXPECT_EQ(cutHere ? keys[k][f].substr(0, got[k][f].size()) : keys[k][f], got[k][f]) << cut;
      }
    }
    EXPECT_EQ(Message("", MessageIcon::kWarning).rfind("This database file ends early.\nKeys loaded: ", 0), 0u);
  }
  // Cut inside the second key's Selection, after "Ye".
  OwnedTable table;
  Load(Bytes(bytes.begin(), bytes.begin() + 8 + 36 + 20), table);
  EXPECT_EQ(table.Texts(), (std::vector<KeyTexts>{keys[0], {"Second", "", "Ye", ""}}));
  EXPECT_EQ(Message("", MessageIcon::kWarning),
            "This database file ends early.\nKeys loaded: 2 (the last one incomplete).");
}

TEST_F(KeyFileTest, FailedSaveKeepsTheOldDatabase) {
  OwnedTable table(NamedKeys({"A"}));
  EXPECT_FALSE(SaveDatabase(dir_.File("none") + "/Data.dat", *table));
  EXPECT_EQ(Message(), "Can't write to database file");
  // A target that can't be replaced (a folder of that name): no new file is left.
  const std::string folder = dir_.File("Folder.dat");
  std::filesystem::create_directory(folder);
  EXPECT_FALSE(SaveDatabase(folder, *table));
  EXPECT_FALSE(FileExists(folder + kDatabaseTempSuffix));
  EXPECT_EQ(Message(), "Can't write to database file");
}

#ifndef _WIN32
// A disk that fills up during the write, made real with the file-size limit.
TEST_F(KeyFileTest, DiskFullDuringSaveKeepsTheOldDatabase) {
  OwnedTable table(NamedKeys({"Old"}));
  ASSERT_TRUE(SaveDatabase(path_, *table));
  const Bytes before = ReadBytes(path_);
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
  EXPECT_EQ(Message(), "Can't write to database file");
}
#endif

}  // namespace
}  // namespace qb::test
