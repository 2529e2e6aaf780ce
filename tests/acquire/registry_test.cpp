// The document registry over real files in a fresh folder.
#include <gtest/gtest.h>

#include <cstdio>
#include <vector>

#include "acquire/document_registry.h"
#include "tests/support/temp_dir.h"

namespace qb {
namespace {

using test::FileExists;
using test::ReadText;
using test::TempDir;
using test::WriteText;

const std::string kHeader = std::string(kRegistryHeader) + "\n";

// What a text written in text mode looks like on disk.
std::string OnDisk(std::string text) {
#ifdef _WIN32
  for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 2))
    text.insert(at, 1, '\r');
#endif
  return text;
}

class Registry : public ::testing::Test {
 protected:
  TempDir dir;
  DocumentRegistry registry{dir.File(kRegistryFileName), dir.File(kRegistryTempName)};

  void Write(const std::string& text) { WriteText(registry.path(), text); }
  std::string Page(const std::string& name) {
    WriteText(dir.File(name), "<html></html>");
    return dir.File(name);
  }
  std::string Contents() { return ReadText(registry.path()); }
};

std::vector<RegistryEntry> ReadAll(const std::string& path) {
  std::vector<RegistryEntry> entries;
  std::FILE* in = std::fopen(path.c_str(), "r");
  if (!in) return entries;
  RegistryReader reader(in);
  RegistryEntry e;
  while (reader.Next(e)) entries.push_back(e);
  std::fclose(in);
  return entries;
}

std::string Describe(const std::vector<RegistryEntry>& entries) {
  std::string out;
  for (const auto& e : entries) out += "(" + e.url + "|" + e.file + ")";
  return out;
}

TEST_F(Registry, ReadingRulePairsNonEmptyLinesAndBlankLinesShiftThePairing) {
  const struct {
    std::string bytes;
    const char* entries;
  } cases[] = {
      {"H\nu1\nf1\nu2\nf2\n", "(u1|f1)(u2|f2)"},
      {"u0\nu1\nf1", "(u1|f1)"},  // the first line is skipped whatever it holds
      {"H\nu1\nf1\n\nu2\nf2\n", "(u1|f1)(u2|f2)"},  // a blank where a URL belongs is passed over
      {"H\nu1\n\nf1\nu2\nf2\n", "(f1|u2)"},         // a blank file line shifts the rest
      {"H\nu1\n", ""},
      {"H", ""},
      {"", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.bytes);
    Write(c.bytes);
    EXPECT_EQ(Describe(ReadAll(registry.path())), c.entries);
  }
}

TEST_F(Registry, LongLineKeepsItsStartAndItsLastCharacter) {
  Write("H\n" + std::string(3000, 'a') + "Z\nfile\n");
  const auto entries = ReadAll(registry.path());
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].url, std::string(kRegistryLineMax - 1, 'a') + "Z");
  EXPECT_EQ(entries[0].file, "file");
}

TEST_F(Registry, UrlLookupIsAPrefixMatchAndFileLookupIsExact) {
  Write(kHeader + "www.example.com/order/form.asp\nC:\\D\\example.com.form.asp.htm\n" +
        "www.example.com/other.htm\nC:\\D\\example.com.other.htm.htm\n");
  EXPECT_EQ(registry.FindFileForUrl("WWW.Example.com"), "C:\\D\\example.com.form.asp.htm");
  EXPECT_EQ(registry.FindFileForUrl("www.example.com/other"), "C:\\D\\example.com.other.htm.htm");
  EXPECT_EQ(registry.FindFileForUrl("www.example.com/order/form.asp?x=1"), std::nullopt);

  EXPECT_EQ(registry.FindUrlForFile("c:\\d\\EXAMPLE.com.form.asp.htm"), "www.example.com/order/form.asp");
  EXPECT_EQ(registry.FindUrlForFile("C:\\D\\example.com.form.asp"), std::nullopt);

  std::remove(registry.path().c_str());
  EXPECT_EQ(registry.FindFileForUrl("www"), std::nullopt);
  EXPECT_EQ(registry.FindUrlForFile("C:\\D\\example.com.form.asp.htm"), std::nullopt);
}

TEST_F(Registry, SecondDownloadOfTheSameFileKeepsTheFirstUrl) {
  Write(kHeader);
  registry.AddEntry("C:\\D\\a.htm", "www.a.com/1");
  registry.AddEntry("c:\\d\\A.HTM", "www.a.com/2");
  registry.AddEntry("C:\\D\\b.htm", "www.b.com/");
  EXPECT_EQ(Contents(), kHeader + OnDisk("www.a.com/1\nC:\\D\\a.htm\nwww.b.com/\nC:\\D\\b.htm\n"));
}

TEST_F(Registry, MissingRegistryIsRecreatedWithoutHeaderAndLosesTheFirstEntries) {
  registry.AddEntry("C:\\D\\a.htm", "www.a.com/");
  ASSERT_TRUE(FileExists(registry.path()));
  EXPECT_EQ(Contents(), "");

  // The next entry stands where the header belongs, so readers skip it and pair
  // its file line with the following entry's URL.
  registry.AddEntry("C:\\D\\a.htm", "www.a.com/");
  registry.AddEntry("C:\\D\\b.htm", "www.b.com/");
  EXPECT_EQ(registry.FindUrlForFile("C:\\D\\a.htm"), std::nullopt);
  EXPECT_EQ(registry.FindUrlForFile("C:\\D\\b.htm"), std::nullopt);
  EXPECT_EQ(registry.FindUrlForFile("www.b.com/"), "C:\\D\\a.htm");
}

TEST_F(Registry, EntriesWithAnEmptyLineAreNotWritten) {
  Write(kHeader);
  registry.AddEntry("", "www.a.com/");
  registry.AddEntry("C:\\D\\a.htm", "");
  registry.AddEntry("C:\\D\\b.htm", "www.b.com/\nwww.c.com/");
  EXPECT_EQ(Contents(), kHeader + OnDisk("www.b.com/\nC:\\D\\b.htm\n"));
}

TEST_F(Registry, CompactDropsDeletedLinks) {
  const std::string kept = Page("kept.htm");
  Write(kHeader + "www.gone.com/\n" + dir.File("gone.htm") + "\nwww.kept.com/\n" + kept + "\n");
  registry.Compact();
  EXPECT_EQ(Contents(), OnDisk(kHeader + "www.kept.com/\n" + kept + "\n"));
  EXPECT_FALSE(FileExists(dir.File(kRegistryTempName)));

  std::remove(kept.c_str());
  registry.Compact();
  EXPECT_EQ(Contents(), OnDisk(kHeader));

  std::remove(registry.path().c_str());
  registry.Compact();
  EXPECT_FALSE(FileExists(registry.path()));
}

TEST_F(Registry, RenameFileMovesItsEntryAndCompactsTheRest) {
  const std::string moved = Page("moved.htm");
  const std::string other = Page("other.htm");
  Write(kHeader + "www.m.com/\n" + moved + "\nwww.g.com/\n" + dir.File("gone.htm") + "\nwww.o.com/\n" +
        other + "\n");
  registry.RenameFile(moved, "C:\\D\\Sub\\moved.htm");
  EXPECT_EQ(Contents(), OnDisk(kHeader + "www.m.com/\nC:\\D\\Sub\\moved.htm\nwww.o.com/\n" + other + "\n"));

  // Once the old file is gone, its entry goes with the next rename.
  registry.RenameFile("C:\\D\\Sub\\moved.htm", "C:\\D\\moved.htm");
  EXPECT_EQ(Contents(), OnDisk(kHeader + "www.o.com/\n" + other + "\n"));
}

TEST_F(Registry, RenamePrefixAlsoRenamesFoldersThatOnlyBeginAlike) {
  Write(kHeader + "www.a.com/\nC:\\App\\DataHtml\\Shops\\a.htm\n" +
        "www.b.com/\nc:\\app\\datahtml\\shops2\\b.htm\n" + "www.c.com/\nC:\\App\\DataHtml\\c.htm\n");
  registry.RenamePrefix("C:\\App\\DataHtml\\Shops", "C:\\App\\DataHtml\\Stores");
  EXPECT_EQ(Contents(), OnDisk(kHeader + "www.a.com/\nC:\\App\\DataHtml\\Stores\\a.htm\n" +
                               "www.b.com/\nC:\\App\\DataHtml\\Stores2\\b.htm\n" +
                               "www.c.com/\nC:\\App\\DataHtml\\c.htm\n"));
}

TEST(RenamedFileLine, StaysWithinOneRegistryLine) {
  const std::string line = "C:\\A\\" + std::string(kRegistryLineMax - 5, 'x');
  const auto renamed = RenamedFileLine(line, "C:\\A", "C:\\Longer");
  ASSERT_TRUE(renamed);
  EXPECT_EQ(renamed->size(), kRegistryLineMax);
  EXPECT_EQ(renamed->substr(0, 10), "C:\\Longer\\");
  EXPECT_EQ(RenamedFileLine("C:\\B\\x", "C:\\A", "C:\\Z"), std::nullopt);
}

}  // namespace
}  // namespace qb
