// The Links view's records, orders and cell texts, and its folder texts.
#include <gtest/gtest.h>

#include "links/link_list.h"
#include "links/link_paths.h"

namespace qb::test {
namespace {

constexpr std::uint64_t kTicksPerDay = 864000000000ull;
constexpr std::uint64_t kTicks1970 = 116444736000000000ull;

FoundFile Document(const std::string& name, std::uint32_t size = 0) { return FoundFile{name, 0x20, size}; }
FoundFile Folder(const std::string& name) { return FoundFile{name, kFolderAttribute}; }

TEST(LinkEntries, NamesSplitAtTheLastDotAndSizesAreKeptAsComputed) {
  const struct {
    FoundFile found;
    std::string name, extension, nameCell, sizeCell;
  } cases[] = {
      {Document("form.htm", 1234567), "form", "htm", "form.htm", "1.234.567"},
      {Document("a.b.c.htm"), "a.b.c", "htm", "a.b.c.htm", "0"},
      {Document("report"), "report", "   ", "report.   ", "0"},
      {Document("trailing."), "trailing", "", "trailing.", "0"},
      {Folder("Shops.old"), "Shops.old", "DIR", "Shops.old", "0"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.found.name);
    const LinkEntry e = MakeLinkEntry(c.found);
    EXPECT_EQ(e.name, c.name);
    EXPECT_EQ(LinkCellText(e, 0), c.nameCell);
    EXPECT_EQ(LinkCellText(e, 1), c.extension);
    EXPECT_EQ(LinkCellText(e, 2), c.sizeCell);
  }
  // The high size word is taken from the low one, wrapping.
  FoundFile big = Document("big.htm", 5);
  big.sizeHigh = 7;
  EXPECT_EQ(LinkCellText(MakeLinkEntry(big), 2), "4.294.967.294");
  // A long name keeps its first 255 characters.
  EXPECT_EQ(MakeLinkEntry(Document(std::string(300, 'n') + ".htm")).name, std::string(kLinkNameMax, 'n'));
}

TEST(LinkEntries, FileTimesBecomeCalendarFieldsAndTheDateCell) {
  const struct {
    std::uint64_t ticks;
    LinkTime t;
  } cases[] = {
      {0, {1601, 1, 1, 1, 0, 0, 0, 0}},
      {kTicks1970, {1970, 1, 4, 1, 0, 0, 0, 0}},
      // 2000-02-29 12:34:56.789, a leap day in a year divisible by 400.
      {kTicks1970 + 11016 * kTicksPerDay + ((12 * 60 + 34) * 60 + 56) * 10000000ull + 7890000,
       {2000, 2, 2, 29, 12, 34, 56, 789}},
      {0x7FFFFFFFFFFFFFFFull, {30828, 9, 4, 14, 2, 48, 5, 477}},
      {0x8000000000000000ull, {}},  // no time at all
  };
  const auto fields = [](const LinkTime& t) {
    return std::vector<int>{t.year, t.month, t.dayOfWeek, t.day, t.hour, t.minute, t.second, t.milliseconds};
  };
  for (const auto& c : cases) EXPECT_EQ(fields(LinkTimeFromTicks(c.ticks)), fields(c.t)) << c.ticks;
  const std::uint64_t leapDayMorning = kTicks1970 + 11016 * kTicksPerDay + (5 * 60 + 7) * 600000000ull;  // 05:07
  EXPECT_EQ(LinkCellText(MakeLinkEntry(FoundFile{"a.htm", 0x20, 0, 0, leapDayMorning}), 3), "2/29/2000  5:7");
  EXPECT_EQ(LinkCellText(MakeParentEntry(), 3), "");
}

// Names, folders and sizes as a directory search would hand them in.
std::vector<FoundFile> Search(const std::vector<std::pair<std::string, std::uint32_t>>& rows) {
  std::vector<FoundFile> out;
  for (const auto& [name, size] : rows)
    out.push_back(name.back() == '/' ? Folder(name.substr(0, name.size() - 1)) : Document(name, size));
  return out;
}

std::vector<std::string> Listed(const std::vector<FoundFile>& search, bool parent, int column) {
  LinkListing listing;
  listing.Begin(parent);
  for (const FoundFile& f : search) listing.Add(f);
  listing.Sort(column);
  std::vector<std::string> names;
  for (const LinkEntry& e : listing.entries())
    names.push_back(e.kind == kLinkParent ? "<up>" : LinkCellText(e, 0));
  return names;
}

TEST(LinkListing, FoldersFirstParentRowOnTopHiddenNamesLeftOutInEachColumn) {
  const auto search = Search({{"zeta.htm", 5}, {"Beta/", 0}, {".hidden.htm", 1}, {"apple/", 0}, {"./", 0},
                              {"alpha.txt", 9}, {"../", 0}, {"alpha.htm", 9}, {".git/", 0}, {"Mid.asp", 1}});
  const struct {
    int column;
    std::vector<std::string> order;
  } cases[] = {
      {kSortName, {"<up>", "apple", "Beta", "alpha.txt", "alpha.htm", "Mid.asp", "zeta.htm"}},
      {kSortExt, {"<up>", "apple", "Beta", "Mid.asp", "alpha.htm", "zeta.htm", "alpha.txt"}},
      {kSortSize, {"<up>", "apple", "Beta", "Mid.asp", "zeta.htm", "alpha.txt", "alpha.htm"}},
      // Folders move up only past folders, a run of them by name (hidden names
      // break no run); documents keep the search's order.
      {kSortDate, {"<up>", "zeta.htm", "apple", "Beta", "alpha.txt", "alpha.htm", "Mid.asp"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.column);
    EXPECT_EQ(Listed(search, true, c.column), c.order);
    EXPECT_EQ(Listed(search, false, c.column), std::vector<std::string>(c.order.begin() + 1, c.order.end()));
  }
}

TEST(LinkListing, StopsAtTheEntryLimitCountingTheParentRow) {
  for (bool parent : {false, true}) {
    LinkListing listing;
    listing.Begin(parent);
    std::size_t accepted = 0;
    while (listing.Add(Document("p" + std::to_string(accepted) + ".htm"))) ++accepted;
    EXPECT_EQ(listing.entries().size(), kLinksEntryMax);
    EXPECT_FALSE(listing.Add(Document("late.htm")));
    EXPECT_EQ(listing.entries().size(), kLinksEntryMax);
  }
}

TEST(LinkColumns, WidthsShareHalfTheClientWidth) {
  EXPECT_EQ(LinksColumnWidths(808), (LinkColumnWidths{224, 40, 56, 80}));
  EXPECT_EQ(LinksColumnWidths(601), (LinkColumnWidths{165, 29, 41, 59}));
}

TEST(LinkPaths, FoldersGoUpToTheBackslashBeforeTheirLastPart) {
  const struct {
    const char *folder, *parent, *destinationUp;
  } cases[] = {
      {"C:\\App\\DataHtml\\Shops\\", "C:\\App\\DataHtml\\", "C:\\App\\DataHtml\\"},
      {"C:\\App\\DataHtml\\Shops\\Old\\", "C:\\App\\DataHtml\\Shops\\", "C:\\App\\DataHtml\\Shops\\"},
      {"C:\\App\\DataHtml\\", "C:\\App\\", "C:\\App\\DataHtml\\"},  // never above the root
      {"C:\\", "C:\\", "C:\\"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ParentFolder(c.folder), c.parent);
    EXPECT_EQ(DestinationUp(c.folder, "C:\\App\\DataHtml\\"), c.destinationUp) << c.folder;
  }
}

TEST(LinkPaths, NamesFitThePathLimitAndNamesAndPathsStayUnderTheRoot) {
  const std::string folder = "C:\\" + std::string(246, 'f') + "\\";  // 250 characters
  EXPECT_EQ(NewFolderTooLongText(folder, std::string(9, 'n')), std::nullopt);
  EXPECT_EQ(NewFolderTooLongText(folder, std::string(10, 'n')),
            "Directory file name is too long.\nIt can not exceded 260 charachters including current "
            "directory\nThis New directory name can't exceded 10 charachters");

  const std::string root = "C:\\App\\DataHtml\\";
  const std::string deep = root + std::string(240, 'f') + "\\";
  EXPECT_EQ(RefusedNameText(root, "Shops"), std::nullopt);
  EXPECT_EQ(RefusedNameText(root, "..\\escaped"), kBadNameText);
  EXPECT_EQ(RefusedNameText(root, ".hidden"), kBadNameText);  // never listed
  EXPECT_EQ(RefusedNameText(deep, "name"), NewFolderTooLongText(deep, "name"));

  for (const char* path : {"C:\\App\\DataHtml\\", "c:\\app\\datahtml\\Shops\\a.htm"})
    EXPECT_TRUE(IsUnderRoot(path, root)) << path;
  for (const char* path : {"C:\\App\\DataHtml\\..\\escaped", "C:\\App\\DataHtml\\Shops\\..\\..\\x",
                           "C:\\App\\DataHtml\\Shops/../../x", "C:\\App\\DataHtml\\..", "C:\\App\\Data",
                           "C:\\App\\Other\\a.htm"})
    EXPECT_FALSE(IsUnderRoot(path, root)) << path;
}

}  // namespace
}  // namespace qb::test
