// The Links view and its folder commands in a real main window over a real
// DataHtml tree in a fresh program folder.
#include <algorithm>
#include <atomic>
#include <thread>

#include "acquire/acquire_state.h"
#include "acquire/document_registry.h"
#include "links/link_commands.h"
#include "links/link_dialogs.h"
#include "links/link_paths.h"
#include "links/links_view.h"
#include "tests/scan/scan_fixture.h"
#include "tests/support/main_window_fixture.h"

namespace qb::test {
namespace {

constexpr char kSelectFirst[] = "First you must select Link file from the ListView window";
constexpr char kNotALink[] = "This is not a Link file then Folder";

class LinksViewTest : public MainWindowTest {
 protected:
  void SetUp() override {
    MainWindowTest::SetUp();
    root_ = dir_.File("DataHtml") + "\\";
    MakeFolder("");
    DeleteSubfoldersOption() = true;
  }

  void MakeFolder(const std::string& relative) {
    ASSERT_TRUE(CreateDirectoryA((root_ + relative).c_str(), nullptr)) << relative;
  }
  void MakeFile(const std::string& relative, const std::string& text = "<html></html>") {
    WriteText(root_ + relative, text);
  }
  bool Exists(const std::string& relative) const {
    return GetFileAttributesA((root_ + relative).c_str()) != INVALID_FILE_ATTRIBUTES;
  }

  HWND View() const { return App().linksView; }
  int Count() const { return static_cast<int>(SendMessageA(View(), LVM_GETITEMCOUNT, 0, 0)); }

  // A cell's text as the view hands it out (through its display-text request).
  std::string Cell(int row, int column) const {
    char text[300] = {};
    LVITEMA item{};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    SendMessageA(View(), LVM_GETITEMTEXTA, row, reinterpret_cast<LPARAM>(&item));
    return text;
  }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (int i = 0; i < Count(); ++i) names.push_back(Cell(i, 0));
    return names;
  }
  int RowOf(const std::string& name) const {
    const auto names = Names();
    const auto it = std::find(names.begin(), names.end(), name);
    return it == names.end() ? -1 : static_cast<int>(it - names.begin());
  }
  int Selected() const {
    return static_cast<int>(SendMessageA(View(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
  }

  // Selects a row as a click does: the list selects it and reports the click.
  void Select(int row) {
    LVITEMA item{};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    item.state = LVIS_SELECTED | LVIS_FOCUSED;
    SendMessageA(View(), LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
    Click(row, NM_CLICK);
  }
  void Select(const std::string& name) {
    const int row = RowOf(name);
    ASSERT_GE(row, 0) << name;
    Select(row);
  }
  // Enter in the list, as the keyboard sends it.
  void Enter(const std::string& name) {
    Select(name);
    SendMessageA(View(), WM_KEYDOWN, VK_RETURN, 0);
  }
  // A click or double click at the middle of a row, as the list reports it.
  void Click(int row, UINT code) {
    RECT r{LVIR_BOUNDS, 0, 0, 0};
    SendMessageA(View(), LVM_GETITEMRECT, row, reinterpret_cast<LPARAM>(&r));
    NMITEMACTIVATE activate{};
    activate.hdr = {View(), IDC_LINKS_VIEW, code};
    activate.iItem = row;
    activate.ptAction = {r.left + 30, (r.top + r.bottom) / 2};
    SendMessageA(window_, WM_NOTIFY, IDC_LINKS_VIEW, reinterpret_cast<LPARAM>(&activate));
  }
  void SortBy(int column) {
    NMLISTVIEW header{};
    header.hdr = {View(), IDC_LINKS_VIEW, static_cast<UINT>(LVN_COLUMNCLICK)};
    header.iItem = -1;
    header.iSubItem = column;
    SendMessageA(window_, WM_NOTIFY, IDC_LINKS_VIEW, reinterpret_cast<LPARAM>(&header));
  }

  // The message box a command shows, answered with `button`.
  std::string MessageOf(WORD command, const std::string& button = "OK") {
    auto result = RunModal([&] { Command(command); }, {Press(button)});
    EXPECT_TRUE(result.ok()) << result.Describe();
    return result.seen.empty() ? std::string() : result.seen[0].MessageText();
  }

  DocumentRegistry Registry() const {
    return DocumentRegistry(dir_.File(kRegistryFileName), dir_.File(kRegistryTempName));
  }
  void WriteRegistry(const std::vector<std::pair<std::string, std::string>>& entries) {
    std::string text = std::string(kRegistryHeader) + "\n";
    for (const auto& [url, relative] : entries) text += url + "\n" + root_ + relative + "\n";
    WriteText(dir_.File(kRegistryFileName), text);
  }

  // The name dialog answered with `name` and OK.
  static ModalStep TypeName(const std::string& name) {
    return Custom([name](HWND dialog, const WindowSnapshot&) {
      SetControlText(dialog, IDC_MAKEDIR_NAME, name);
      ClickButton(dialog, IDOK);
    });
  }

  std::string root_;
};

TEST_F(LinksViewTest, RootListsFoldersFirstWithoutAParentRowAndHidesDotNames) {
  MakeFolder("Shops");
  MakeFolder(".cache");
  MakeFile("report");
  MakeFile("form.htm", std::string(1234, 'x'));
  MakeFile(".hidden.htm");
  ASSERT_NE(Open(), nullptr);
  EXPECT_EQ(Names(), (std::vector<std::string>{"Shops", "form.htm", "report.   "}));
  const int form = RowOf("form.htm");
  EXPECT_EQ(Cell(form, 1), "htm");
  EXPECT_EQ(Cell(form, 2), "1.234");
  EXPECT_EQ(Cell(0, 1), "DIR");
  EXPECT_EQ(Cell(RowOf("report.   "), 1), "   ");
  EXPECT_EQ(App().linksFolder, root_);
  EXPECT_EQ(Selected(), 0);
  // Typing a name's first letters selects it.
  SendMessageA(View(), WM_CHAR, 'r', 1);
  EXPECT_EQ(Selected(), RowOf("report.   "));

  // The date column shows the file's own time, not a local one.
  WIN32_FILE_ATTRIBUTE_DATA data;
  ASSERT_TRUE(GetFileAttributesExA((root_ + "form.htm").c_str(), GetFileExInfoStandard, &data));
  SYSTEMTIME t;
  FileTimeToSystemTime(&data.ftLastWriteTime, &t);
  EXPECT_EQ(Cell(form, 3), std::to_string(t.wMonth) + "/" + std::to_string(t.wDay) + "/" +
                               std::to_string(t.wYear) + "  " + std::to_string(t.wHour) + ":" +
                               std::to_string(t.wMinute));
}

TEST_F(LinksViewTest, OneLevelDownTheParentRowStaysFirstUnderEverySort) {
  MakeFolder("Shops");
  for (const char* name : {"Shops\\b.htm", "Shops\\a.asp", "Shops\\c.txt"}) MakeFile(name);
  MakeFolder("Shops\\Zoo");
  MakeFolder("Shops\\Alpha");
  ASSERT_NE(Open(), nullptr);
  Enter("Shops");
  EXPECT_EQ(App().linksFolder, root_ + "Shops\\");
  for (int column : {kSortName, kSortExt, kSortSize, kSortDate}) {
    SCOPED_TRACE(column);
    SortBy(column);
    ASSERT_EQ(Count(), 6);
    EXPECT_EQ(Cell(0, 0), "");
    EXPECT_EQ(Cell(0, 3), "");
  }
  SortBy(kSortExt);
  EXPECT_EQ(Names(), (std::vector<std::string>{"", "Alpha", "Zoo", "a.asp", "b.htm", "c.txt"}));
}

// The Date column leaves documents in the order the directory search returns
// them and sorts each run of neighbouring folders by name.
TEST_F(LinksViewTest, DateSortKeepsTheSearchOrderOfDocuments) {
  for (const char* name : {"m.htm", "b.htm", "x.htm", "a.htm", "k.htm"}) MakeFile(name);
  for (const char* name : {"Fz", "Fa", "Fm"}) MakeFolder(name);
  ASSERT_NE(Open(), nullptr);
  SortBy(kSortDate);
  std::vector<std::string> searched;
  WIN32_FIND_DATAA found;
  HANDLE find = FindFirstFileA((root_ + "*.*").c_str(), &found);
  ASSERT_NE(find, INVALID_HANDLE_VALUE);
  do {
    if (found.cFileName[0] != '.') searched.push_back(found.cFileName);
  } while (FindNextFileA(find, &found));
  FindClose(find);
  std::vector<std::string> expected = searched;
  for (auto run = expected.begin(); run != expected.end();) {
    auto isFolder = [](const std::string& n) { return n[0] == 'F'; };
    if (!isFolder(*run)) {
      ++run;
      continue;
    }
    auto end = std::find_if_not(run, expected.end(), isFolder);
    std::sort(run, end);
    run = end;
  }
  EXPECT_EQ(Names(), expected);
}

TEST_F(LinksViewTest, GoingDownAndUpRestoresTheRememberedRow) {
  for (const char* name : {"A", "B", "C", "C\\Inner"}) MakeFolder(name);
  MakeFile("C\\page.htm");
  ASSERT_NE(Open(), nullptr);
  Enter("C");
  EXPECT_EQ(App().linksFolder, root_ + "C\\");
  EXPECT_EQ(Names(), (std::vector<std::string>{"", "Inner", "page.htm"}));
  Click(RowOf("Inner"), NM_DBLCLK);
  EXPECT_EQ(App().linksFolder, root_ + "C\\Inner\\");
  EXPECT_EQ(Names(), (std::vector<std::string>{""}));
  Click(0, NM_DBLCLK);
  EXPECT_EQ(App().linksFolder, root_ + "C\\");
  EXPECT_EQ(Selected(), RowOf("Inner"));
  Enter("");
  EXPECT_EQ(App().linksFolder, root_);
  EXPECT_EQ(Selected(), RowOf("C"));

  // A double click on a document leaves the folder as it is and names the page
  // (which, holding no form, the scan reports).
  Enter("C");
  const auto scan = RunModal([&] { Click(RowOf("page.htm"), NM_DBLCLK); }, {Press("OK")});
  EXPECT_TRUE(scan.ok()) << scan.Describe();
  EXPECT_EQ(App().linksFolder, root_ + "C\\");
  EXPECT_EQ(LinksView().selectedName, "page.htm");
  // A click only remembers the row: the next listing selects it again.
  Click(RowOf("Inner"), NM_CLICK);
  RefreshLinksView();
  EXPECT_EQ(Selected(), RowOf("Inner"));
}

TEST_F(LinksViewTest, GoingBackUpRestoresTheScrollPosition) {
  for (int i = 0; i < 60; ++i) MakeFolder("F" + std::to_string(10 + i));
  ASSERT_NE(Open(), nullptr);
  SendMessageA(View(), LVM_ENSUREVISIBLE, 50, FALSE);
  const int scrolled = GetScrollPos(View(), SB_VERT);
  ASSERT_GT(scrolled, 0);
  Enter("F60");
  EXPECT_EQ(GetScrollPos(View(), SB_VERT), 0);
  Enter("");
  EXPECT_EQ(GetScrollPos(View(), SB_VERT), scrolled);
  EXPECT_EQ(Selected(), RowOf("F60"));
}

// Right click on a row opens POPLIST_MENU there; it is closed again from outside.
TEST_F(LinksViewTest, RightClickOnARowOpensTheLinksMenu) {
  MakeFolder("Shops");
  ASSERT_NE(Open(), nullptr);
  std::vector<std::string> items;
  std::atomic<bool> done{false};
  std::thread closer([&] {
    for (int i = 0; i < 500 && !done; ++i, Sleep(10)) {
      HWND menu = FindWindowA("#32768", nullptr);
      if (!menu || !IsWindowVisible(menu)) continue;
      auto handle = reinterpret_cast<HMENU>(SendMessageA(menu, MN_GETHMENU, 0, 0));
      for (int k = 0; k < GetMenuItemCount(handle); ++k) {
        char text[64] = {};
        GetMenuStringA(handle, k, text, sizeof text, MF_BYPOSITION);
        if (text[0]) items.push_back(text);
      }
      PostMessageA(window_, WM_CANCELMODE, 0, 0);
      return;
    }
  });
  Click(0, NM_RCLICK);
  done = true;
  closer.join();
  EXPECT_EQ(items, (std::vector<std::string>{"&Goto site URL", "&New Folder", "&Rename Folder",
                                             "&Delete Folder", "&Move Link", "&Rename Link",
                                             "&Delete Link", "&Info Link"}));
  EXPECT_EQ(LinksView().selectedName, "Shops");
}

TEST_F(LinksViewTest, CommandsNeedARowAndSomeNeedADocument) {
  MakeFolder("Shops");
  MakeFile("form.htm");
  ASSERT_NE(Open(), nullptr);
  ListView_SetItemState(View(), -1, 0, LVIS_SELECTED);
  for (WORD command : {IDM_RENAME_FOLDER, IDM_DELETE_LINK, IDM_RENAME_LINK, IDM_MOVE_LINK})
    EXPECT_EQ(MessageOf(command), kSelectFirst) << command;
  Select("Shops");
  for (WORD command : {IDM_RENAME_LINK, IDM_MOVE_LINK})
    EXPECT_EQ(MessageOf(command), kNotALink) << command;
  // "&Rename Link" on a document changes nothing.
  Select("form.htm");
  auto result = RunModal([&] { Command(IDM_RENAME_LINK); }, {});
  EXPECT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(Names(), (std::vector<std::string>{"Shops", "form.htm"}));
  EXPECT_EQ(Selected(), 1);

  // While the view is hidden they do nothing at all.
  Command(IDM_KEY_WINDOW);
  ListView_SetItemState(View(), -1, 0, LVIS_SELECTED);
  for (WORD command : {IDM_RENAME_FOLDER, IDM_DELETE_LINK, IDM_RENAME_LINK, IDM_MOVE_LINK}) {
    result = RunModal([&] { Command(command); }, {});
    EXPECT_TRUE(result.ok()) << command << result.Describe();
  }
}

TEST_F(LinksViewTest, NewFolderIsCreatedInTheCurrentFolderAndRefusedWhenTooLong) {
  ASSERT_NE(Open(), nullptr);
  auto result = RunModal([&] { Command(IDM_NEW_FOLDER); }, {TypeName("Fresh")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen[0].caption, "Quellbarrow - New name");
  EXPECT_NE(result.seen[0].ControlByText("Type a ne Directory name"), nullptr);
  EXPECT_TRUE(Exists("Fresh"));
  EXPECT_EQ(Names(), (std::vector<std::string>{"Fresh"}));

  // A current folder of 250 characters leaves room for 9 more.
  std::string deep = root_;
  while (deep.size() < 250) {
    std::size_t part = std::min<std::size_t>(250 - deep.size() - 1, 100);
    if (250 - (deep.size() + part + 1) == 1) --part;  // leave no room for a bare "\\"
    deep += std::string(part, 'd') + "\\";
    ASSERT_TRUE(CreateDirectoryA(deep.c_str(), nullptr)) << deep;
  }
  ASSERT_EQ(deep.size(), 250u);
  App().linksFolder = deep;
  RefreshLinksView();
  result = RunModal([&] { Command(IDM_NEW_FOLDER); },
                    {TypeName("0123456789"), Press("OK"),
                     Again(Custom([](HWND dialog, const WindowSnapshot&) {
                       ClickButton(dialog, IDCANCEL);
                     }))});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen[1].caption, "Warning");
  EXPECT_EQ(result.seen[1].MessageText(),
            "Directory file name is too long.\nIt can not exceded 260 charachters including current "
            "directory\nThis New directory name can't exceded 10 charachters");
  EXPECT_EQ(Names(), (std::vector<std::string>{""}));
  result = RunModal([&] { Command(IDM_NEW_FOLDER); }, {TypeName("012345678")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(Names(), (std::vector<std::string>{"", "012345678"}));
}

TEST_F(LinksViewTest, RenamingAFolderCarriesEveryRegistryLineThatBeginsWithIt) {
  for (const char* name : {"Shops", "Shops2"}) MakeFolder(name);
  MakeFile("Shops\\a.htm");
  MakeFile("Shops2\\b.htm");
  MakeFile("top.htm");
  WriteRegistry({{"www.a.com/a", "Shops\\a.htm"}, {"www.b.com/b", "Shops2\\b.htm"},
                 {"www.t.com/t", "top.htm"}});
  ASSERT_NE(Open(), nullptr);
  Select("Shops");
  auto result = RunModal([&] { Command(IDM_RENAME_FOLDER); }, {TypeName("Stores")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_NE(result.seen[0].ControlByText("Type a new Folder name:"), nullptr);
  EXPECT_EQ(result.seen[0].Control(IDC_MAKEDIR_NAME)->text, "Shops");
  EXPECT_TRUE(Exists("Stores\\a.htm"));
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "Stores\\a.htm"), "www.a.com/a");
  // Shops2 was not renamed, but its entry now says Stores2.
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "Stores2\\b.htm"), "www.b.com/b");
  EXPECT_EQ(Names(), (std::vector<std::string>{"Shops2", "Stores", "top.htm"}));

  Select("top.htm");
  result = RunModal([&] { Command(IDM_RENAME_FOLDER); }, {TypeName("renamed.htm")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_NE(result.seen[0].ControlByText("Type a new File name:"), nullptr);
  EXPECT_EQ(result.seen[0].Control(IDC_MAKEDIR_NAME)->text, "top.htm");
  EXPECT_FALSE(Exists("top.htm"));
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "renamed.htm"), "www.t.com/t");

  // An empty name and a rename that fails change nothing.
  Select("renamed.htm");
  result = RunModal([&] { Command(IDM_RENAME_FOLDER); }, {TypeName("")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  Select("renamed.htm");
  result = RunModal([&] { Command(IDM_RENAME_FOLDER); }, {TypeName("Shops2")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_TRUE(Exists("renamed.htm"));
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "renamed.htm"), "www.t.com/t");
}

TEST_F(LinksViewTest, DeletingADocumentAsksFirstAndLeavesTheRegistry) {
  MakeFile("form.htm");
  WriteRegistry({{"www.a.com/form", "form.htm"}});
  ASSERT_NE(Open(), nullptr);
  for (const char* answer : {"No", "Yes"}) {
    Select("form.htm");
    EXPECT_EQ(MessageOf(IDM_DELETE_LINK, answer),
              "Are you sure you want to delete a link file:\n" + root_ + "form.htm");
  }
  EXPECT_FALSE(Exists("form.htm"));
  EXPECT_EQ(Count(), 0);
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "form.htm"), "www.a.com/form");
}

TEST_F(LinksViewTest, DeletingAFolderEntersSubfoldersOnlyWithTheOption) {
  for (const char* name : {"Keep", "Keep\\Sub", "Flat", "All", "All\\Sub", "All\\Sub\\Deeper"})
    MakeFolder(name);
  for (const char* name : {"Keep\\a.htm", "Keep\\Sub\\b.htm", "Flat\\c.htm", "All\\d.htm",
                           "All\\Sub\\Deeper\\e.htm"})
    MakeFile(name);
  ASSERT_NE(Open(), nullptr);
  const auto deleteWith = [&](const std::string& folder, bool option) {
    Select(folder);
    auto result = RunModal([&] { Command(IDM_DELETE_LINK); },
                           {Custom([option](HWND dialog, const WindowSnapshot&) {
                             SetCheck(dialog, IDC_DELETEDIR_SUBFOLDERS, option);
                             ClickButton(dialog, IDOK);
                           })});
    EXPECT_TRUE(result.ok()) << result.Describe();
    return result.seen.empty() ? WindowSnapshot{} : result.seen[0];
  };
  const WindowSnapshot shown = deleteWith("Keep", false);
  EXPECT_EQ(shown.caption, "Quellbarrow - Remove List view Directory");
  EXPECT_EQ(shown.Control(IDC_DELETEDIR_PATH)->text, root_ + "Keep");
  EXPECT_EQ(shown.Control(IDC_DELETEDIR_SUBFOLDERS)->checked, 1);  // on at start
  EXPECT_FALSE(Exists("Keep\\a.htm"));
  EXPECT_TRUE(Exists("Keep\\Sub\\b.htm"));
  EXPECT_FALSE(DeleteSubfoldersOption());

  deleteWith("Flat", false);
  EXPECT_FALSE(Exists("Flat"));
  EXPECT_EQ(deleteWith("All", true).Control(IDC_DELETEDIR_SUBFOLDERS)->checked, 0);
  EXPECT_FALSE(Exists("All"));
  EXPECT_EQ(Names(), (std::vector<std::string>{"Keep"}));

  // Cancel keeps everything, the option included.
  Select("Keep");
  auto result = RunModal([&] { Command(IDM_DELETE_LINK); }, {Press("Cancel")});
  EXPECT_TRUE(result.ok()) << result.Describe();
  EXPECT_TRUE(Exists("Keep\\Sub\\b.htm"));
  EXPECT_TRUE(DeleteSubfoldersOption());
}

TEST_F(LinksViewTest, DeleteWalkStopsAtItsDeepestLevel) {
  std::string path;
  for (int level = 1; level <= kDeleteLevelsMax + 1; ++level) {
    path += "L\\";
    MakeFolder(path);
    MakeFile(path + "p.htm");
  }
  DeleteFolderTree(root_ + "L", true);
  // The last level is never entered, so it and every folder above it stay.
  EXPECT_TRUE(Exists(path + "p.htm"));
  EXPECT_FALSE(Exists(path.substr(0, path.size() - 2) + "p.htm"));
  EXPECT_TRUE(Exists("L"));
}

// The destination dialog: double click a row of its list.
void OpenDestinationRow(HWND dialog, const std::string& text) {
  HWND list = GetDlgItem(dialog, IDC_DESTINATION_LIST);
  LVFINDINFOA find{};
  find.flags = LVFI_STRING;
  find.psz = text.c_str();
  NMITEMACTIVATE activate{};
  activate.hdr = {list, IDC_DESTINATION_LIST, static_cast<UINT>(NM_DBLCLK)};
  activate.iItem = static_cast<int>(SendMessageA(list, LVM_FINDITEMA, static_cast<WPARAM>(-1),
                                                 reinterpret_cast<LPARAM>(&find)));
  SendMessageA(dialog, WM_NOTIFY, IDC_DESTINATION_LIST, reinterpret_cast<LPARAM>(&activate));
}

std::vector<std::string> DestinationRows(HWND dialog) {
  HWND list = GetDlgItem(dialog, IDC_DESTINATION_LIST);
  std::vector<std::string> rows;
  const int count = static_cast<int>(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0));
  for (int i = 0; i < count; ++i) {
    char text[300] = {};
    LVITEMA item{};
    item.pszText = text;
    item.cchTextMax = sizeof text;
    SendMessageA(list, LVM_GETITEMTEXTA, i, reinterpret_cast<LPARAM>(&item));
    rows.push_back(text);
  }
  return rows;
}

TEST_F(LinksViewTest, MovingALinkOverwritesTheFileThereAndMovesItsEntry) {
  for (const char* name : {"From", "Target", "Target\\Deeper", "Target\\.svn"}) MakeFolder(name);
  MakeFile("From\\form.htm", "new page");
  MakeFile("Target\\form.htm", "old page");
  MakeFile("gone.htm");
  WriteRegistry({{"www.a.com/form", "From\\form.htm"}, {"www.gone.com/", "missing.htm"}});
  ASSERT_NE(Open(), nullptr);
  Enter("From");
  Select("form.htm");
  std::vector<std::vector<std::string>> listed;
  auto result = RunModal([&] { Command(IDM_MOVE_LINK); },
                         {Custom([&](HWND dialog, const WindowSnapshot&) {
                           listed.push_back(DestinationRows(dialog));
                           OpenDestinationRow(dialog, "Target");
                           listed.push_back(DestinationRows(dialog));
                           OpenDestinationRow(dialog, "Deeper");
                           OpenDestinationRow(dialog, "...");
                           listed.push_back(DestinationRows(dialog));
                           ClickButton(dialog, IDOK);
                         })});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen[0].caption, "Quellbarrow - Select destination");
  // The root has no "..." row; folders come in the search's order.
  auto sorted = [](std::vector<std::string> v) {
    std::sort(v.begin(), v.end());
    return v;
  };
  ASSERT_EQ(listed.size(), 3u);
  EXPECT_EQ(sorted(listed[0]), (std::vector<std::string>{"From", "Target"}));
  EXPECT_EQ(listed[1], (std::vector<std::string>{"...", "Deeper"}));
  EXPECT_EQ(listed[2], listed[1]);
  EXPECT_EQ(ReadText(root_ + "Target\\form.htm"), "new page");
  EXPECT_FALSE(Exists("From\\form.htm"));
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "Target\\form.htm"), "www.a.com/form");
  // Moving compacts the registry as it goes.
  EXPECT_EQ(Registry().FindFileForUrl("www.gone.com"), std::nullopt);
  EXPECT_EQ(Names(), (std::vector<std::string>{""}));

  // Cancel moves nothing.
  Enter("");
  Enter("Target");
  Select("form.htm");
  result = RunModal([&] { Command(IDM_MOVE_LINK); }, {Press("Cancel")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_TRUE(Exists("Target\\form.htm"));
}

TEST_F(LinksViewTest, LinkInfoShowsTheRecordedAddressOfTheSelectedPage) {
  MakeFolder("Shops");
  MakeFile("Shops\\form.htm");
  MakeFile("Shops\\unknown.htm");
  WriteRegistry({{"www.example.com/order/form.asp?x=1", "Shops\\form.htm"}});
  ASSERT_NE(Open(), nullptr);
  Enter("Shops");
  Select("form.htm");
  auto result = RunModal([&] { Command(IDM_LINK_INFO); }, {Press("OK")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen[0].caption, "Quellbarrow");
  EXPECT_EQ(result.seen[0].MessageText(), "Location URL:\nhttp://www.example.com/order/form.asp?x=1\n\n"
                                          "Location File:\n" + root_ + "Shops\\form.htm");
  // Nothing is shown for a page the registry does not know, nor for a folder.
  for (const char* row : {"unknown.htm", ""}) {
    Select(row);
    result = RunModal([&] { Command(IDM_LINK_INFO); }, {});
    EXPECT_TRUE(result.ok()) << row << result.Describe();
  }
}

TEST_F(LinksViewTest, DownloadsGoToTheFolderTheViewShowsAndShowingItListsItAgain) {
  MakeFolder("Shops");
  ASSERT_NE(Open(), nullptr);
  Enter("Shops");
  EXPECT_EQ(CurrentLinksFolder(), root_ + "Shops\\");
  Command(IDM_KEY_WINDOW);
  MakeFile("Shops\\new.htm");
  Command(IDM_KEY_WINDOW);
  EXPECT_EQ(Names(), (std::vector<std::string>{"", "new.htm"}));
}

// Scanning and visiting saved pages from the view, with the stand-in browser.
class LinkScanTest : public LinksViewTest {
 protected:
  void SetUp() override {
    LinksViewTest::SetUp();
    UseStandInBrowser();
    KeyTable& keys = Keys();
    const int mail = keys.count++;
    SetKeyField(keys, mail, kName, "Mail");
    SetKeyField(keys, mail, kSearchNames, "email");
    SetKeyField(keys, mail, kDescription, "me@example.com");
    MakeFolder("Shops");
    MakeFile("Shops\\order.htm", kMailPage);
    WriteRegistry({{"www.example.com/shop/order.htm", "Shops\\order.htm"}});
    ASSERT_NE(Open(), nullptr);
    // The Keys view's selected key fills the text fields.
    LVITEMA item{};
    item.mask = LVIF_TEXT;
    item.pszText = const_cast<char*>("Mail");
    SendMessageA(App().keysView, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
    SelectKeyRow(App().keysView, mail);
  }

  static constexpr char kMailPage[] =
      "<html><body><form method=post action=/cgi/mail>\n"
      "Mail <input type=text name=email>\n<input type=submit></form></body></html>\n";

  std::string FilledPath() const { return dir_.File("QuellbarrowTemproaryFile.htm"); }
  bool Filled() const {
    return FileExists(FilledPath()) && ReadText(FilledPath()).find("value=\"me@example.com\"") != std::string::npos;
  }
  std::string Opened() { return BrowserOpened(dir_); }
};

TEST_F(LinkScanTest, DoubleClickOrEnterOnASavedPageScansIt) {
  Enter("Shops");
  auto result = RunModal([&] { Click(RowOf("order.htm"), NM_DBLCLK); }, {});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_TRUE(Filled());
  EXPECT_EQ(Opened(), FilledPath() + "\r\n");
  EXPECT_EQ(App().linksFolder, root_ + "Shops\\");

  DeleteFileA(FilledPath().c_str());
  result = RunModal([&] { Enter("order.htm"); }, {});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_TRUE(Filled());
}

// "&Scan File HTML" fills from the keys; "&Scan Prompt HTML" asks even for the field
// a key answers. The view lists the folder again afterwards.
TEST_F(LinkScanTest, ScanCommandsOnASavedPage) {
  Enter("Shops");
  Select("order.htm");
  MakeFile("Shops\\later.htm");
  auto result = RunModal([&] { Command(IDM_SCAN_FILE_HTML); }, {});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_TRUE(Filled());
  EXPECT_NE(RowOf("later.htm"), -1);

  DeleteFileA(FilledPath().c_str());
  // The listing keeps the row number, which "later.htm" now holds.
  Select("order.htm");
  result = RunModal([&] { Command(IDM_SCAN_PROMPT_HTML); }, {Press("Cancel All")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  ASSERT_EQ(result.seen.size(), 1u);
  EXPECT_EQ(result.seen[0].Control(IDC_NOMATCH_NAME)->text, "email");
  EXPECT_TRUE(FileExists(FilledPath()));
}

TEST_F(LinkScanTest, GotoSiteOpensTheRecordedAddress) {
  MakeFile("loose.htm");  // not recorded: nothing opens
  ASSERT_TRUE(RefreshLinksView());
  Select("loose.htm");
  auto result = RunModal([&] { Command(IDM_GOTO_SITE); }, {});
  ASSERT_TRUE(result.ok()) << result.Describe();
  Enter("Shops");
  Select("order.htm");
  result = RunModal([&] { Command(IDM_GOTO_SITE); }, {});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(Opened(), "http://www.example.com/shop/order.htm\r\n");
}

TEST_F(LinkScanTest, PageCommandsOnAFolderRowAreRefused) {
  Select("Shops");
  for (WORD command : {IDM_SCAN_FILE_HTML, IDM_SCAN_PROMPT_HTML, IDM_GOTO_SITE}) {
    SCOPED_TRACE(command);
    EXPECT_EQ(MessageOf(command), kNotALink);
  }
  EXPECT_FALSE(FileExists(FilledPath()));
  EXPECT_FALSE(FileExists(dir_.File("opened.txt")));
}

// ---- Names, links and moves that must not leave DataHtml or lose a page

TEST_F(LinksViewTest, NamesThatLeaveTheFolderOrNameADeviceAreRefusedInTheNameDialog) {
  MakeFolder("Shops");
  MakeFile("form.htm");
  WriteRegistry({{"www.a.com/form", "form.htm"}});
  ASSERT_NE(Open(), nullptr);
  for (const char* bad : {"..\\escaped", "../escaped", "..", "Shops\\inner", "C:escaped", "CON", "nul.htm",
                          "a*b", "what?", "tab\there", ".hidden", "trailing."}) {
    SCOPED_TRACE(bad);
    for (WORD command : {IDM_NEW_FOLDER, IDM_RENAME_FOLDER}) {
      Select("form.htm");
      // Told off in the dialog, which stays open until cancelled.
      auto result = RunModal([&] { Command(command); },
                             {TypeName(bad), Press("OK"), Again(test::Command(IDCANCEL))});
      ASSERT_TRUE(result.ok()) << result.Describe();
      EXPECT_EQ(result.seen[1].caption, "Warning");
      EXPECT_EQ(result.seen[1].MessageText(), kBadNameText);
    }
  }
  EXPECT_EQ(Names(), (std::vector<std::string>{"Shops", "form.htm"}));
  EXPECT_FALSE(FileExists(dir_.File("escaped")));
  EXPECT_FALSE(Exists("Shops\\inner"));
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "form.htm"), "www.a.com/form");
}

// A symbolic link made on the Unix side, as the system under the tests makes none
// itself: `name` in `folder`, pointing to `target` (relative to that folder).
void MakeUnixLink(const std::string& folder, const std::string& name, const std::string& target) {
  std::string command = "Z:\\bin\\ln -s " + target + " " + name;
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  ASSERT_TRUE(CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, folder.c_str(),
                             &startup, &process));
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  const std::string link = folder + "\\" + name;
  // The link shows as a folder that is a reparse point.
  ASSERT_TRUE(PumpUntil([&] {
    const DWORD attributes = GetFileAttributesA(link.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) &&
           (attributes & FILE_ATTRIBUTE_DIRECTORY);
  })) << link;
}

// The walk the Delete command runs once its dialog is answered, in both option
// states, on folders holding a link to a folder outside DataHtml and on a link.
TEST_F(LinksViewTest, DeletingAFolderNeverEntersALinkToAFolderElsewhere) {
  const std::string outside = dir_.File("Outside");
  ASSERT_TRUE(CreateDirectoryA(outside.c_str(), nullptr));
  WriteText(outside + "\\keep.htm", "keep");
  for (const char* box : {"Box1", "Box0"}) {
    MakeFolder(box);
    MakeFile(std::string(box) + "\\page.htm");
    MakeUnixLink(root_ + box, "link", "../../Outside");
  }
  MakeUnixLink(dir_.File("DataHtml"), "Link", "../Outside");
  const std::pair<const char*, bool> deletions[] = {{"Box1", true}, {"Box0", false}, {"Link", true}};
  for (const auto& [folder, subfolders] : deletions) {
    SCOPED_TRACE(folder);
    DeleteFolderTree(root_ + folder, subfolders);
    EXPECT_EQ(ReadText(outside + "\\keep.htm"), "keep");
  }
  EXPECT_FALSE(Exists("Box1\\page.htm"));
  EXPECT_FALSE(Exists("Box0\\page.htm"));
}

TEST_F(LinksViewTest, AMoveThatCannotCopyLeavesThePageAndItsEntryWhereTheyWere) {
  for (const char* name : {"From", "Target", "Target\\form.htm"}) MakeFolder(name);  // no file can take that name
  MakeFile("From\\form.htm", "page");
  WriteRegistry({{"www.a.com/form", "From\\form.htm"}});
  ASSERT_NE(Open(), nullptr);
  Enter("From");
  Select("form.htm");
  auto result = RunModal([&] { Command(IDM_MOVE_LINK); }, {Custom([](HWND dialog, const WindowSnapshot&) {
                           OpenDestinationRow(dialog, "Target");
                           ClickButton(dialog, IDOK);
                         })});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(ReadText(root_ + "From\\form.htm"), "page");
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "From\\form.htm"), "www.a.com/form");
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "Target\\form.htm"), std::nullopt);
}

TEST_F(LinksViewTest, AFolderThatCannotBeListedGivesWayToTheNearestOneAbove) {
  for (const char* name : {"A", "A\\B", "A\\B\\C"}) MakeFolder(name);
  MakeFile("A\\a.htm");
  ASSERT_NE(Open(), nullptr);
  for (const char* name : {"A", "B", "C"}) Enter(name);
  // Removed and renamed behind the program's back.
  ASSERT_TRUE(RemoveDirectoryA((root_ + "A\\B\\C").c_str()));
  ASSERT_TRUE(MoveFileA((root_ + "A\\B").c_str(), (root_ + "A\\Moved").c_str()));
  EXPECT_TRUE(RefreshLinksView());
  EXPECT_EQ(App().linksFolder, root_ + "A\\");
  EXPECT_EQ(Names(), (std::vector<std::string>{"", "Moved", "a.htm"}));
  Enter("");
  EXPECT_EQ(App().linksFolder, root_);
  EXPECT_EQ(Names(), (std::vector<std::string>{"A"}));
}

TEST_F(LinksViewTest, EditingARowsNameInPlaceRenamesItWithTheDialogsChecks) {
  MakeFolder("Shops");
  MakeFile("Shops\\a.htm");
  WriteRegistry({{"www.a.com/", "Shops\\a.htm"}});
  ASSERT_NE(Open(), nullptr);
  const auto editName = [&](const std::string& name) {
    Select("Shops");
    SetFocus(View());
    HWND edit = reinterpret_cast<HWND>(SendMessageA(View(), LVM_EDITLABELA, RowOf("Shops"), 0));
    ASSERT_NE(edit, nullptr);
    SetWindowTextA(edit, name.c_str());
    SendMessageA(edit, WM_KEYDOWN, VK_RETURN, 0);
  };
  auto result = RunModal([&] { editName("..\\Escaped"); }, {Press("OK")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen[0].MessageText(), kBadNameText);
  EXPECT_EQ(Names(), (std::vector<std::string>{"Shops"}));
  EXPECT_FALSE(FileExists(dir_.File("Escaped")));

  result = RunModal([&] { editName("Stores"); }, {});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(Names(), (std::vector<std::string>{"Stores"}));
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "Stores\\a.htm"), "www.a.com/");
}

// ---- The keyboard: keys act on the view that has it

// Ends the message loop of a key press whose window never came.
void CALLBACK QuitLoop(HWND, UINT, UINT_PTR, DWORD) { PostQuitMessage(0); }

class ViewKeys : public LinksViewTest {
 protected:
  // Presses `key` in `focus` as the keyboard would, through the program's own
  // message loop and accelerator table. The loop ends once the queue is empty;
  // a window the key opens is answered by `steps`, the last of which ends it.
  ModalResult PressKey(HWND focus, UINT key, std::vector<ModalStep> steps = {}) {
    const DWORD thread = GetCurrentThreadId();
    if (!steps.empty()) {
      ModalAction last = steps.back().act;
      steps.back().act = [last, thread](HWND window, const WindowSnapshot& snapshot) {
        last(window, snapshot);
        PostThreadMessageA(thread, WM_QUIT, 0, 0);
      };
    }
    HACCEL accelerators = LoadAcceleratorsA(Instance(), kMainClassName);
    SetFocus(focus);
    return RunModal(
        [&] {
          PostMessageA(focus, WM_KEYDOWN, key, 1);
          PostMessageA(focus, WM_KEYUP, key, 0xC0000001);
          if (steps.empty()) PostQuitMessage(0);
          constexpr UINT kLongerThanAStepMs = 15000;
          const UINT_PTR guard = SetTimer(nullptr, 0, kLongerThanAStepMs, QuitLoop);
          RunMessageLoop(accelerators);
          KillTimer(nullptr, guard);
        },
        steps);
  }

  void AddKeyRow(const std::string& name) {
    const int index = Keys().count++;
    SetKeyField(Keys(), index, kName, name);
    LVITEMA item{};
    item.mask = LVIF_TEXT;
    item.iItem = index;
    item.pszText = const_cast<char*>(name.c_str());
    SendMessageA(App().keysView, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
  }
};

TEST_F(ViewKeys, DelAndF2ActOnTheFocusedViewAndGreyedCommandsStayIdle) {
  MakeFolder("Shops");
  MakeFile("form.htm");
  ASSERT_NE(Open(), nullptr);

  Select("Shops");
  auto result = PressKey(View(), VK_F2, {Press("Cancel")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen[0].caption, "Quellbarrow - New name");
  EXPECT_NE(result.seen[0].ControlByText("Type a new Folder name:"), nullptr);

  Select("form.htm");
  result = PressKey(View(), VK_DELETE, {Press("Yes")});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen[0].MessageText(), "Are you sure you want to delete a link file:\n" + root_ + "form.htm");
  EXPECT_FALSE(Exists("form.htm"));

  // "&Add" is greyed while the database is empty: Insert does nothing.
  HWND keys = App().keysView;
  result = PressKey(keys, VK_INSERT);
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_TRUE(result.seen.empty());

  // F2 on a key edits its Name in place; the Links view's selection is left alone.
  AddKeyRow("Mail");
  Select("Shops");
  SelectKeyRow(keys, 0);
  result = PressKey(keys, VK_F2);
  ASSERT_TRUE(result.ok()) << result.Describe();
  HWND edit = reinterpret_cast<HWND>(SendMessageA(keys, LVM_GETEDITCONTROL, 0, 0));
  ASSERT_NE(edit, nullptr);
  EXPECT_EQ(WindowText(edit), "Mail");
  SendMessageA(edit, WM_KEYDOWN, VK_ESCAPE, 0);
}

}  // namespace
}  // namespace qb::test
