// The document registry over real files in a fresh folder.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>

#include "acquire/document_registry.h"
#include "tests/support/temp_dir.h"

namespace qb::test {
namespace {

const std::string kHeader = std::string(kRegistryHeader) + "\n";

class Registry : public ::testing::Test {
 protected:
  TempDir dir;
  DocumentRegistry registry{dir.File(kRegistryFileName), dir.File(kRegistryTempName)};

  void Write(const std::string& text) { WriteText(registry.path(), text); }
  // Read back in text mode, as it was written: a stray CR would show.
  std::string Contents() {
    std::ifstream in(registry.path());
    return std::string(std::istreambuf_iterator<char>(in), {});
  }
  // A saved page that exists.
  std::string Page(const std::string& name) {
    WriteText(dir.File(name), "<html></html>");
    return dir.File(name);
  }
  // Every entry the reading rule yields, as "(url|file)...".
  std::string Entries() {
    std::string out;
    std::FILE* in = std::fopen(registry.path().c_str(), "r");
    RegistryReader reader(in);
    for (RegistryEntry e; reader.Next(e);) out += "(" + e.url + "|" + e.file + ")";
    std::fclose(in);
    return out;
  }
};

TEST_F(Registry, ReadingRulePairsNonEmptyLinesAndBlankLinesShiftThePairing) {
  const struct {
    std::string bytes, entries;
  } cases[] = {
      {"H\nu1\nf1\nu2\nf2\n", "(u1|f1)(u2|f2)"},
      {"u0\nu1\nf1", "(u1|f1)"},                    // the first line is skipped whatever it holds
      {"H\nu1\nf1\n\nu2\nf2\n", "(u1|f1)(u2|f2)"},  // a blank where a URL belongs is passed over
      {"H\nu1\n\nf1\nu2\nf2\n", "(f1|u2)"},         // a blank file line shifts the rest
      {"H\nu1\n", ""},
      {"", ""},
      // A long line keeps its start; what follows overwrites its last character.
      {"H\n" + std::string(3000, 'a') + "Z\nfile\n",
       "(" + std::string(kRegistryLineMax - 1, 'a') + "Z|file)"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.bytes.substr(0, 40));
    Write(c.bytes);
    EXPECT_EQ(Entries(), c.entries);
  }
}

TEST_F(Registry, UrlLookupIsAPrefixMatchAndFileLookupIsExact) {
  Write(kHeader + "www.example.com/order/form.asp\nC:\\D\\example.com.form.asp.htm\n" +
        "www.example.com/other.htm\nC:\\D\\example.com.other.htm.htm\n");
  EXPECT_EQ(registry.FindFileForUrl("WWW.Example.com"), "C:\\D\\example.com.form.asp.htm");
  EXPECT_EQ(registry.FindFileForUrl("www.example.com/other"), "C:\\D\\example.com.other.htm.htm");
  EXPECT_EQ(registry.FindFileForUrl("www.example.com/order/form.asp?x=1"), std::nullopt);

  EXPECT_EQ(registry.FindUrlForFile("c:\\d\\EXAMPLE.com.form.asp.htm"),
            "www.example.com/order/form.asp");
  EXPECT_EQ(registry.FindUrlForFile("C:\\D\\example.com.form.asp"), std::nullopt);

  std::remove(registry.path().c_str());
  EXPECT_EQ(registry.FindFileForUrl("www"), std::nullopt);
}

TEST_F(Registry, AddEntryKeepsTheFirstUrlOfAFileAndWritesNoEmptyLine) {
  Write(kHeader);
  registry.AddEntry("C:\\D\\a.htm", "www.a.com/1");
  registry.AddEntry("c:\\d\\A.HTM", "www.a.com/2");  // the same file downloaded again
  registry.AddEntry("", "www.x.com/");
  registry.AddEntry("C:\\D\\x.htm", "");
  registry.AddEntry("C:\\D\\b.htm", "www.b.com/\nwww.c.com/");
  EXPECT_EQ(Contents(), kHeader + "www.a.com/1\nC:\\D\\a.htm\nwww.b.com/\nC:\\D\\b.htm\n");
}

// The first entry makes an empty file; the next stands where the header belongs,
// so readers skip it and pair its file line with the following entry's URL.
TEST_F(Registry, MissingRegistryIsRecreatedWithoutHeaderAndLosesTheFirstEntry) {
  registry.AddEntry("C:\\D\\first.htm", "www.first.com/");
  registry.AddEntry("C:\\D\\a.htm", "www.a.com/");
  registry.AddEntry("C:\\D\\b.htm", "www.b.com/");
  EXPECT_EQ(Contents(), "www.a.com/\nC:\\D\\a.htm\nwww.b.com/\nC:\\D\\b.htm\n");
}

TEST_F(Registry, CompactDropsDeletedLinks) {
  const std::string kept = Page("kept.htm");
  Write(kHeader + "www.gone.com/\n" + dir.File("gone.htm") + "\nwww.kept.com/\n" + kept + "\n");
  registry.Compact();
  EXPECT_EQ(Contents(), kHeader + "www.kept.com/\n" + kept + "\n");
  EXPECT_FALSE(FileExists(dir.File(kRegistryTempName)));

  std::remove(registry.path().c_str());
  registry.Compact();
  EXPECT_FALSE(FileExists(registry.path()));
}

TEST_F(Registry, RenameFileMovesItsEntryAndCompactsTheRest) {
  const std::string moved = Page("moved.htm"), other = Page("other.htm");
  Write(kHeader + "www.m.com/\n" + moved + "\nwww.g.com/\n" + dir.File("gone.htm") +
        "\nwww.o.com/\n" + other + "\n");
  registry.RenameFile(moved, "C:\\D\\Sub\\moved.htm");
  EXPECT_EQ(Contents(), kHeader + "www.m.com/\nC:\\D\\Sub\\moved.htm\nwww.o.com/\n" + other + "\n");

  // Once the old file is gone, its entry goes with the next rename.
  registry.RenameFile("C:\\D\\Sub\\moved.htm", "C:\\D\\moved.htm");
  EXPECT_EQ(Contents(), kHeader + "www.o.com/\n" + other + "\n");
}

TEST_F(Registry, RenamePrefixAlsoRenamesFoldersThatOnlyBeginAlike) {
  Write(kHeader + "www.a.com/\nC:\\App\\DataHtml\\Shops\\a.htm\n" +
        "www.b.com/\nc:\\app\\datahtml\\shops2\\b.htm\n" +
        "www.c.com/\nC:\\App\\DataHtml\\c.htm\n");
  registry.RenamePrefix("C:\\App\\DataHtml\\Shops", "C:\\App\\DataHtml\\Stores");
  EXPECT_EQ(Contents(), kHeader + "www.a.com/\nC:\\App\\DataHtml\\Stores\\a.htm\n" +
                            "www.b.com/\nC:\\App\\DataHtml\\Stores2\\b.htm\n" +
                            "www.c.com/\nC:\\App\\DataHtml\\c.htm\n");
}

TEST(RenamedFileLine, StaysWithinOneRegistryLine) {
  const auto renamed =
      RenamedFileLine("C:\\A\\" + std::string(kRegistryLineMax - 5, 'x'), "C:\\A", "C:\\Longer");
  ASSERT_TRUE(renamed);
  EXPECT_EQ(*renamed, "C:\\Longer\\" + std::string(kRegistryLineMax - 10, 'x'));
  EXPECT_EQ(RenamedFileLine("C:\\B\\x", "C:\\A", "C:\\Z"), std::nullopt);
}

}  // namespace
}  // namespace qb::test
