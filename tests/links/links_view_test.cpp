// The Links view and its folder commands in a real main window over a real
// DataHtml tree in a fresh program folder.
#include <algorithm>

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

// A cell's text as a list view hands it out (the Links view through its
// display-text request).
std::string ItemText(HWND list, int row, int column = 0) {
  char text[300] = {};
  ListView_GetItemText(list, row, column, text, sizeof text);
  return text;
}

std::vector<std::string> ItemTexts(HWND list) {
  std::vector<std::string> texts;
  for (int i = 0; i < ListView_GetItemCount(list); ++i) texts.push_back(ItemText(list, i));
  return texts;
}

// A click or double click on `row` of a list, as the list reports it to its parent.
void SendActivate(HWND list, int id, UINT code, int row, POINT at = {}) {
  NMITEMACTIVATE activate{};
  activate.hdr = {list, static_cast<UINT_PTR>(id), code};
  activate.iItem = row;
  activate.ptAction = at;
  SendMessageA(GetParent(list), WM_NOTIFY, id, reinterpret_cast<LPARAM>(&activate));
}

// The destination dialog: double click a row of its list.
void OpenDestinationRow(HWND dialog, const std::string& text) {
  HWND list = GetDlgItem(dialog, IDC_DESTINATION_LIST);
  LVFINDINFOA find{};
  find.flags = LVFI_STRING;
  find.psz = text.c_str();
  SendActivate(list, IDC_DESTINATION_LIST, NM_DBLCLK, ListView_FindItem(list, -1, &find));
}

// The main window over an empty DataHtml, pages opened in the stand-in browser.
// Tests make their tree and list it again.
class LinksViewTest : public ScanTest {
 protected:
  void SetUp() override {
    ScanTest::SetUp();
    ASSERT_NO_FATAL_FAILURE();
    root_ = dir_.File("DataHtml") + "\\";
    ResetLinksView();
    DeleteSubfoldersOption() = true;
  }

  void MakeFolder(const std::string& relative) {
    ASSERT_TRUE(CreateDirectoryA((root_ + relative).c_str(), nullptr)) << relative;
  }
  void MakeFile(const std::string& relative, const std::string& text = "<html></html>") {
    WriteText(root_ + relative, text);
  }
  // Folders (ending in a backslash) and pages under DataHtml, in order.
  void Make(std::initializer_list<std::string> paths) {
    for (const std::string& path : paths) path.back() == '\\' ? MakeFolder(path) : MakeFile(path);
  }
  bool Exists(const std::string& relative) const {
    return GetFileAttributesA((root_ + relative).c_str()) != INVALID_FILE_ATTRIBUTES;
  }

  HWND View() const { return App().linksView; }
  std::vector<std::string> Names() const { return ItemTexts(View()); }
  int RowOf(const std::string& name) const {
    const auto names = Names();
    const auto it = std::find(names.begin(), names.end(), name);
    return it == names.end() ? -1 : static_cast<int>(it - names.begin());
  }
  int Selected() const { return ListView_GetNextItem(View(), -1, LVNI_SELECTED); }

  // Selects a row as a click does: the list selects it and reports the click.
  void Select(const std::string& name) {
    const int row = RowOf(name);
    ASSERT_GE(row, 0) << name;
    SelectKeyRow(View(), row);
    Click(row, NM_CLICK);
  }
  // Enter in the list, as the keyboard sends it.
  void Enter(const std::string& name) {
    Select(name);
    SendMessageA(View(), WM_KEYDOWN, VK_RETURN, 0);
  }
  // A click or double click at the middle of a row, as the list reports it.
  void Click(int row, UINT code) {
    RECT r;
    ListView_GetItemRect(View(), row, &r, LVIR_BOUNDS);
    SendActivate(View(), IDC_LINKS_VIEW, code, row, {r.left + 30, (r.top + r.bottom) / 2});
  }
  void SortBy(int column) {
    NMLISTVIEW header{};
    header.hdr = {View(), IDC_LINKS_VIEW, static_cast<UINT>(LVN_COLUMNCLICK)};
    header.iItem = -1;
    header.iSubItem = column;
    SendMessageA(window_, WM_NOTIFY, IDC_LINKS_VIEW, reinterpret_cast<LPARAM>(&header));
  }

  // Runs `action`, answering the windows it opens with `steps`; every step must
  // find its window and no other may open.
  ModalResult Modal(const std::function<void()>& action, std::vector<ModalStep> steps = {}) {
    ModalResult result = RunModal(action, std::move(steps));
    EXPECT_TRUE(result.ok()) << result.Describe();
    return result;
  }
  ModalResult Run(WORD command, std::vector<ModalStep> steps = {}) {
    SCOPED_TRACE("command " + std::to_string(command));
    return Modal([&] { Command(command); }, std::move(steps));
  }
  // The message box a command shows, answered with `button`.
  std::string MessageOf(WORD command, const std::string& button = "OK") {
    const ModalResult result = Run(command, {Press(button)});
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

TEST_F(LinksViewTest, ListsTheFilesOwnSizeAndTimeSortsByTheClickedColumnAndListsAgainWhenShown) {
  Make({"Shops\\", "Shops\\Zoo\\", "Shops\\Alpha\\", "Shops\\a.txt", "Shops\\b.asp", "Shops\\c.htm", "report"});
  MakeFile("form.htm", std::string(1234, 'x'));
  ASSERT_TRUE(RefreshLinksView());
  EXPECT_EQ(Names(), (std::vector<std::string>{"Shops", "form.htm", "report.   "}));
  EXPECT_EQ(Selected(), 0);
  // Typing a name's first letters selects it.
  SendMessageA(View(), WM_CHAR, 'r', 1);
  EXPECT_EQ(Selected(), 2);

  // The date column shows the file's own time, not a local one.
  WIN32_FILE_ATTRIBUTE_DATA data;
  ASSERT_TRUE(GetFileAttributesExA((root_ + "form.htm").c_str(), GetFileExInfoStandard, &data));
  SYSTEMTIME t;
  FileTimeToSystemTime(&data.ftLastWriteTime, &t);
  EXPECT_EQ(ItemText(View(), 1, 2), "1.234");
  EXPECT_EQ(ItemText(View(), 1, 3), std::to_string(t.wMonth) + "/" + std::to_string(t.wDay) + "/" +
                                        std::to_string(t.wYear) + "  " + std::to_string(t.wHour) + ":" +
                                        std::to_string(t.wMinute));

  // Below the root the parent row comes first, whatever the order. Downloads go to
  // the folder shown, and showing the view lists it again.
  Enter("Shops");
  EXPECT_EQ(CurrentLinksFolder(), root_ + "Shops\\");
  Command(IDM_KEY_WINDOW);
  MakeFile("Shops\\d.htm");
  Command(IDM_KEY_WINDOW);
  EXPECT_EQ(Names(), (std::vector<std::string>{"", "Alpha", "Zoo", "a.txt", "b.asp", "c.htm", "d.htm"}));
  SortBy(kSortExt);
  EXPECT_EQ(Names(), (std::vector<std::string>{"", "Alpha", "Zoo", "b.asp", "c.htm", "d.htm", "a.txt"}));
}

TEST_F(LinksViewTest, GoingDownAndUpRestoresTheRememberedRowAndScrollPosition) {
  Make({"A\\", "B\\", "C\\", "C\\Inner\\", "C\\Inner\\Deep\\", "C\\page.htm"});
  for (int i = 0; i < 60; ++i) MakeFolder("F" + std::to_string(10 + i));
  ASSERT_TRUE(RefreshLinksView());
  SendMessageA(View(), LVM_ENSUREVISIBLE, RowOf("F60"), FALSE);
  const int scrolled = GetScrollPos(View(), SB_VERT);
  ASSERT_GT(scrolled, 0);
  Enter("F60");
  EXPECT_EQ(GetScrollPos(View(), SB_VERT), 0);
  Enter("");
  EXPECT_EQ(GetScrollPos(View(), SB_VERT), scrolled);
  EXPECT_EQ(Selected(), RowOf("F60"));

  Enter("C");
  EXPECT_EQ(App().linksFolder, root_ + "C\\");
  EXPECT_EQ(Names(), (std::vector<std::string>{"", "Inner", "page.htm"}));
  Click(RowOf("Inner"), NM_DBLCLK);
  EXPECT_EQ(App().linksFolder, root_ + "C\\Inner\\");
  EXPECT_EQ(Names(), (std::vector<std::string>{"", "Deep"}));
  Click(0, NM_DBLCLK);
  EXPECT_EQ(App().linksFolder, root_ + "C\\");
  EXPECT_EQ(Selected(), RowOf("Inner"));
  Enter("");
  EXPECT_EQ(App().linksFolder, root_);
  EXPECT_EQ(Selected(), RowOf("C"));

  // A click only remembers the row: the next listing selects it again.
  Enter("C");
  Click(RowOf("page.htm"), NM_CLICK);
  RefreshLinksView();
  EXPECT_EQ(Selected(), RowOf("page.htm"));

  // A folder removed and renamed behind the program's back gives way to the
  // nearest one above that can be listed.
  for (const char* name : {"Inner", "Deep"}) Enter(name);
  ASSERT_TRUE(RemoveDirectoryA((root_ + "C\\Inner\\Deep").c_str()));
  ASSERT_TRUE(MoveFileA((root_ + "C\\Inner").c_str(), (root_ + "C\\Moved").c_str()));
  EXPECT_TRUE(RefreshLinksView());
  EXPECT_EQ(App().linksFolder, root_ + "C\\");
  EXPECT_EQ(Names(), (std::vector<std::string>{"", "Moved", "page.htm"}));
  Enter("");
  EXPECT_EQ(App().linksFolder, root_);
  EXPECT_EQ(Selected(), RowOf("C"));
}

// Reads the open pop-up menu's items and closes it: a timer the menu's own loop runs.
std::vector<std::string> g_menuItems;
void CALLBACK ReadAndCloseMenu(HWND, UINT, UINT_PTR timer, DWORD) {
  HWND menu = FindWindowA("#32768", nullptr);
  if (!menu || !IsWindowVisible(menu)) return;
  KillTimer(nullptr, timer);
  auto handle = reinterpret_cast<HMENU>(SendMessageA(menu, MN_GETHMENU, 0, 0));
  for (int k = 0; k < GetMenuItemCount(handle); ++k) {
    char text[64] = {};
    GetMenuStringA(handle, k, text, sizeof text, MF_BYPOSITION);
    if (text[0]) g_menuItems.push_back(text);
  }
  EndMenu();
}

// Right click on a row opens POPLIST_MENU there.
TEST_F(LinksViewTest, RightClickOnARowOpensTheLinksMenu) {
  MakeFolder("Shops");
  ASSERT_TRUE(RefreshLinksView());
  g_menuItems.clear();
  const UINT_PTR timer = SetTimer(nullptr, 0, 10, ReadAndCloseMenu);
  Click(0, NM_RCLICK);
  KillTimer(nullptr, timer);
  EXPECT_EQ(g_menuItems, (std::vector<std::string>{"&Goto site URL", "&New Folder", "&Rename Folder",
                                                   "&Delete Folder", "&Move Link", "&Rename Link", "&Delete Link",
                                                   "&Info Link"}));
  EXPECT_EQ(LinksView().selectedName, "Shops");
}

TEST_F(LinksViewTest, CommandsNeedARowAndSomeNeedADocument) {
  Make({"Shops\\", "form.htm"});
  ASSERT_TRUE(RefreshLinksView());
  const WORD needARow[] = {IDM_RENAME_FOLDER, IDM_DELETE_LINK, IDM_RENAME_LINK, IDM_MOVE_LINK};
  ListView_SetItemState(View(), -1, 0, LVIS_SELECTED);
  for (WORD command : needARow) EXPECT_EQ(MessageOf(command), kSelectFirst) << command;
  Select("Shops");
  for (WORD command : {IDM_RENAME_LINK, IDM_MOVE_LINK, IDM_SCAN_FILE_HTML, IDM_SCAN_PROMPT_HTML, IDM_GOTO_SITE})
    EXPECT_EQ(MessageOf(command), kNotALink) << command;
  // "&Rename Link" on a document changes nothing.
  Select("form.htm");
  Run(IDM_RENAME_LINK);
  EXPECT_EQ(Names(), (std::vector<std::string>{"Shops", "form.htm"}));
  EXPECT_EQ(Selected(), 1);

  // While the view is hidden they do nothing at all.
  Command(IDM_KEY_WINDOW);
  ListView_SetItemState(View(), -1, 0, LVIS_SELECTED);
  for (WORD command : needARow) Run(command);
}

TEST_F(LinksViewTest, RenamingAFolderCarriesEveryRegistryLineThatBeginsWithIt) {
  Make({"Shops\\", "Shops2\\", "Shops\\a.htm", "Shops2\\b.htm", "top.htm"});
  WriteRegistry({{"www.a.com/a", "Shops\\a.htm"}, {"www.b.com/b", "Shops2\\b.htm"}, {"www.t.com/t", "top.htm"}});
  ASSERT_TRUE(RefreshLinksView());
  Select("Shops");
  auto result = Run(IDM_RENAME_FOLDER, {TypeName("Stores")});
  EXPECT_NE(result.seen.at(0).ControlByText("Type a new Folder name:"), nullptr);
  EXPECT_EQ(result.seen[0].Control(IDC_MAKEDIR_NAME)->text, "Shops");
  EXPECT_TRUE(Exists("Stores\\a.htm"));
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "Stores\\a.htm"), "www.a.com/a");
  // Shops2 was not renamed, but its entry now says Stores2.
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "Stores2\\b.htm"), "www.b.com/b");
  EXPECT_EQ(Names(), (std::vector<std::string>{"Shops2", "Stores", "top.htm"}));

  Select("top.htm");
  result = Run(IDM_RENAME_FOLDER, {TypeName("renamed.htm")});
  EXPECT_NE(result.seen.at(0).ControlByText("Type a new File name:"), nullptr);
  EXPECT_EQ(result.seen[0].Control(IDC_MAKEDIR_NAME)->text, "top.htm");
  EXPECT_FALSE(Exists("top.htm"));
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "renamed.htm"), "www.t.com/t");

  // An empty name and a rename that fails change nothing.
  for (const char* name : {"", "Shops2"}) {
    Select("renamed.htm");
    Run(IDM_RENAME_FOLDER, {TypeName(name)});
  }
  EXPECT_TRUE(Exists("renamed.htm"));
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "renamed.htm"), "www.t.com/t");
}

TEST_F(LinksViewTest, DeletingAsksFirstAndEntersSubfoldersOnlyWithTheOption) {
  Make({"Keep\\", "Keep\\Sub\\", "Flat\\", "All\\", "All\\Sub\\", "All\\Sub\\Deeper\\", "Keep\\a.htm",
        "Keep\\Sub\\b.htm", "Flat\\c.htm", "All\\d.htm", "All\\Sub\\Deeper\\e.htm", "form.htm"});
  WriteRegistry({{"www.a.com/form", "form.htm"}});
  ASSERT_TRUE(RefreshLinksView());
  // A page goes once the user says yes; its registry entry stays.
  for (const char* answer : {"No", "Yes"}) {
    Select("form.htm");
    EXPECT_EQ(MessageOf(IDM_DELETE_LINK, answer), "Are you sure you want to delete a link file:\n" + root_ + "form.htm");
  }
  EXPECT_FALSE(Exists("form.htm"));
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "form.htm"), "www.a.com/form");

  const auto deleteWith = [&](const std::string& folder, bool option) {
    Select(folder);
    return Run(IDM_DELETE_LINK, {Custom([option](HWND dialog, const WindowSnapshot&) {
                 SetCheck(dialog, IDC_DELETEDIR_SUBFOLDERS, option);
                 ClickButton(dialog, IDOK);
               })}).seen.at(0);
  };
  const WindowSnapshot shown = deleteWith("Keep", false);
  EXPECT_EQ(shown.caption, "Quellbarrow - Remove List view Directory");
  EXPECT_EQ(shown.Control(IDC_DELETEDIR_PATH)->text, root_ + "Keep");
  EXPECT_EQ(shown.Control(IDC_DELETEDIR_SUBFOLDERS)->checked, 1);  // on at start
  EXPECT_FALSE(Exists("Keep\\a.htm"));
  EXPECT_TRUE(Exists("Keep\\Sub\\b.htm"));
  EXPECT_FALSE(DeleteSubfoldersOption());

  // A folder holding only pages goes without the option.
  deleteWith("Flat", false);
  EXPECT_EQ(deleteWith("All", true).Control(IDC_DELETEDIR_SUBFOLDERS)->checked, 0);
  EXPECT_EQ(Names(), (std::vector<std::string>{"Keep"}));

  // Cancel keeps everything, the option included.
  Select("Keep");
  Run(IDM_DELETE_LINK, {Press("Cancel")});
  EXPECT_TRUE(Exists("Keep\\Sub\\b.htm"));
  EXPECT_TRUE(DeleteSubfoldersOption());
}

TEST_F(LinksViewTest, MovingALinkOverwritesTheFileThereAndMovesItsEntryUnlessItCannotCopy) {
  // No file can take the name of the folder Blocked\form.htm.
  Make({"From\\", "Target\\", "Target\\Deeper\\", "Target\\.svn\\", "Blocked\\", "Blocked\\form.htm\\", "gone.htm"});
  MakeFile("From\\form.htm", "new page");
  MakeFile("Target\\form.htm", "old page");
  WriteRegistry({{"www.a.com/form", "From\\form.htm"}, {"www.gone.com/", "missing.htm"}});
  ASSERT_TRUE(RefreshLinksView());
  Enter("From");
  Select("form.htm");
  std::vector<std::vector<std::string>> listed;
  Run(IDM_MOVE_LINK, {Custom([&](HWND dialog, const WindowSnapshot&) {
        HWND list = GetDlgItem(dialog, IDC_DESTINATION_LIST);
        listed.push_back(ItemTexts(list));
        OpenDestinationRow(dialog, "Target");
        listed.push_back(ItemTexts(list));
        OpenDestinationRow(dialog, "Deeper");
        OpenDestinationRow(dialog, "...");
        listed.push_back(ItemTexts(list));
        ClickButton(dialog, IDOK);
      })});
  // The root has no "..." row; folders come in the search's order.
  ASSERT_EQ(listed.size(), 3u);
  std::sort(listed[0].begin(), listed[0].end());
  EXPECT_EQ(listed[0], (std::vector<std::string>{"Blocked", "From", "Target"}));
  EXPECT_EQ(listed[1], (std::vector<std::string>{"...", "Deeper"}));
  EXPECT_EQ(listed[2], listed[1]);
  EXPECT_EQ(ReadText(root_ + "Target\\form.htm"), "new page");
  EXPECT_FALSE(Exists("From\\form.htm"));
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "Target\\form.htm"), "www.a.com/form");
  // Moving compacts the registry as it goes.
  EXPECT_EQ(Registry().FindFileForUrl("www.gone.com"), std::nullopt);
  EXPECT_EQ(Names(), (std::vector<std::string>{""}));

  // Cancel moves nothing; a move that cannot copy leaves the page and its entry.
  Enter("");
  Enter("Target");
  for (const char* destination : {"", "Blocked"}) {
    SCOPED_TRACE(destination);
    Select("form.htm");
    Run(IDM_MOVE_LINK, {Custom([destination](HWND dialog, const WindowSnapshot&) {
          if (*destination) OpenDestinationRow(dialog, destination);
          ClickButton(dialog, *destination ? IDOK : IDCANCEL);
        })});
    EXPECT_EQ(ReadText(root_ + "Target\\form.htm"), "new page");
    EXPECT_EQ(Registry().FindUrlForFile(root_ + "Target\\form.htm"), "www.a.com/form");
  }
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "Blocked\\form.htm"), std::nullopt);
}

// Scanning and visiting saved pages from the view, with the stand-in browser.
class LinkScanTest : public LinksViewTest {
 protected:
  void SetUp() override {
    LinksViewTest::SetUp();
    MakeFolder("Shops");
    SavePage("Shops\\order.htm",
             "<html><body><form method=post action=/cgi/mail>\n"
             "Mail <input type=text name=email>\n<input type=submit></form></body></html>\n",
             "www.example.com/shop/order.htm");
    ASSERT_TRUE(RefreshLinksView());
    // The Keys view's selected key fills the text fields.
    SelectKeyRow(App().keysView, AddKey("Mail", "email", "", "me@example.com"));
  }

  std::string FilledPath() const { return dir_.File("QuellbarrowTemproaryFile.htm"); }
  bool Filled() const {
    return FileExists(FilledPath()) && ReadText(FilledPath()).find("value=\"me@example.com\"") != std::string::npos;
  }
};

// A double click scans a saved page and leaves the folder as it is; "&Scan File
// HTML" fills from the keys; "&Scan Prompt HTML" asks even for the field a key
// answers. The view lists the folder again afterwards.
TEST_F(LinkScanTest, DoubleClickAndScanCommandsScanASavedPage) {
  Enter("Shops");
  Modal([&] { Click(RowOf("order.htm"), NM_DBLCLK); });
  EXPECT_TRUE(Filled());
  EXPECT_EQ(Opened(), FilledPath() + "\r\n");
  EXPECT_EQ(App().linksFolder, root_ + "Shops\\");
  EXPECT_EQ(LinksView().selectedName, "order.htm");

  DeleteFileA(FilledPath().c_str());
  Select("order.htm");
  MakeFile("Shops\\later.htm");
  Run(IDM_SCAN_FILE_HTML);
  EXPECT_TRUE(Filled());
  EXPECT_NE(RowOf("later.htm"), -1);

  DeleteFileA(FilledPath().c_str());
  // The listing keeps the row number, which "later.htm" now holds.
  Select("order.htm");
  const auto result = Run(IDM_SCAN_PROMPT_HTML, {Press("Cancel All")});
  ASSERT_EQ(result.seen.size(), 1u);
  EXPECT_EQ(result.seen[0].Control(IDC_NOMATCH_NAME)->text, "email");
  EXPECT_TRUE(FileExists(FilledPath()));
}

TEST_F(LinkScanTest, LinkInfoAndGotoSiteUseTheRecordedAddress) {
  MakeFile("loose.htm");
  ASSERT_TRUE(RefreshLinksView());
  // Nothing is shown or opened with no row selected, for a folder, or for a page
  // the registry does not know.
  ListView_SetItemState(View(), -1, 0, LVIS_SELECTED);
  Run(IDM_LINK_INFO);
  for (const char* row : {"Shops", "loose.htm"}) {
    SCOPED_TRACE(row);
    Select(row);
    Run(IDM_LINK_INFO);
  }
  Run(IDM_GOTO_SITE);
  Enter("Shops");
  Select("order.htm");
  const auto result = Run(IDM_LINK_INFO, {Press("OK")});
  EXPECT_EQ(result.seen.at(0).caption, "Quellbarrow");
  EXPECT_EQ(result.seen[0].MessageText(), "Location URL:\nhttp://www.example.com/shop/order.htm\n\n"
                                          "Location File:\n" + root_ + "Shops\\order.htm");
  Run(IDM_GOTO_SITE);
  EXPECT_EQ(Opened(), "http://www.example.com/shop/order.htm\r\n");
}

// ---- Names, links and moves that must not leave DataHtml or lose a page

// Every refused name is refused by one rule; both name dialogs and the edit in
// place apply it. A new folder goes in the current folder, whose length limits
// the name.
TEST_F(LinksViewTest, NameDialogsAndEditInPlaceRefuseNamesThatLeaveTheFolderOrTheLengthLimit) {
  Make({"Shops\\", "Shops\\a.htm", "form.htm"});
  WriteRegistry({{"www.a.com/form", "form.htm"}, {"www.a.com/", "Shops\\a.htm"}});
  ASSERT_TRUE(RefreshLinksView());
  for (const char* bad : {"..\\escaped", "Shops\\inner"}) {
    for (WORD command : {IDM_NEW_FOLDER, IDM_RENAME_FOLDER}) {
      SCOPED_TRACE(std::string(bad) + " " + std::to_string(command));
      Select("form.htm");
      // Told off in the dialog, which stays open until cancelled.
      const auto result = Run(command, {TypeName(bad), Press("OK"), Again(test::Command(IDCANCEL))});
      EXPECT_EQ(result.seen.at(1).caption, "Warning");
      EXPECT_EQ(result.seen[1].MessageText(), kBadNameText);
    }
  }
  const auto editName = [&](const std::string& name) {
    Select("Shops");
    SetFocus(View());
    HWND edit = reinterpret_cast<HWND>(SendMessageA(View(), LVM_EDITLABELA, RowOf("Shops"), 0));
    ASSERT_NE(edit, nullptr);
    SetWindowTextA(edit, name.c_str());
    SendMessageA(edit, WM_KEYDOWN, VK_RETURN, 0);
  };
  EXPECT_EQ(Modal([&] { editName("..\\escaped"); }, {Press("OK")}).seen.at(0).MessageText(), kBadNameText);
  EXPECT_EQ(Names(), (std::vector<std::string>{"Shops", "form.htm"}));
  EXPECT_FALSE(FileExists(dir_.File("escaped")));
  EXPECT_FALSE(Exists("Shops\\inner"));
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "form.htm"), "www.a.com/form");

  Modal([&] { editName("Stores"); });
  EXPECT_EQ(Registry().FindUrlForFile(root_ + "Stores\\a.htm"), "www.a.com/");

  auto result = Run(IDM_NEW_FOLDER, {TypeName("Fresh")});
  EXPECT_NE(result.seen.at(0).ControlByText("Type a ne Directory name"), nullptr);
  EXPECT_EQ(Names(), (std::vector<std::string>{"Fresh", "Stores", "form.htm"}));
  // A current folder of 250 characters leaves room for 9 more.
  const std::string deep = root_ + std::string(249 - root_.size(), 'd') + "\\";
  ASSERT_TRUE(CreateDirectoryA(deep.c_str(), nullptr)) << deep;
  App().linksFolder = deep;
  RefreshLinksView();
  result = Run(IDM_NEW_FOLDER, {TypeName("0123456789"), Press("OK"), Again(test::Command(IDCANCEL))});
  EXPECT_EQ(result.seen.at(1).caption, "Warning");
  EXPECT_EQ(result.seen[1].MessageText(), NewFolderTooLongText(deep, "0123456789"));
  EXPECT_EQ(Names(), (std::vector<std::string>{""}));
  Run(IDM_NEW_FOLDER, {TypeName("012345678")});
  EXPECT_EQ(Names(), (std::vector<std::string>{"", "012345678"}));
}

// Found by the careless-user run: a folder link entered in the Links view took the
// next download out of DataHtml into the folder the link leads to. It is not
// entered, not renamed, and not offered as the place to move a page to.
TEST_F(LinksViewTest, AFolderLinkIsNotEnteredRenamedOrOfferedAsADestination) {
  ASSERT_TRUE(CreateDirectoryA(dir_.File("Outside").c_str(), nullptr));
  Make({"Shop\\", "page.htm"});
  ASSERT_TRUE(MakeUnixLink(dir_.File("DataHtml"), "Elsewhere", "../Outside"));
  RefreshLinksView();
  for (WORD id : {IDM_LINKS_ENTER, IDM_RENAME_FOLDER}) {
    Select("Elsewhere");
    EXPECT_EQ(MessageOf(id), kFolderLinkText) << id;
    EXPECT_EQ(App().linksFolder, root_);
    EXPECT_TRUE(Exists("Elsewhere"));
  }
  Select("page.htm");
  Run(IDM_MOVE_LINK, {Custom([&](HWND dialog, const WindowSnapshot&) {
        EXPECT_EQ(ItemTexts(GetDlgItem(dialog, IDC_DESTINATION_LIST)), std::vector<std::string>{"Shop"});
        ClickButton(dialog, IDCANCEL);
      })});
}

// The walk the Delete command runs once its dialog is answered, in both option
// states, on folders holding a link to a folder outside DataHtml and on a link.
TEST_F(LinksViewTest, DeleteWalkNeverEntersALinkToAFolderElsewhereAndStopsAtItsDeepestLevel) {
  const auto link = [](const std::string& folder, const std::string& name, const std::string& target) {
    ASSERT_TRUE(MakeUnixLink(folder, name, target));
    // Shown as a folder that is a reparse point, which is how the walk knows it.
    const DWORD kinds = FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY;
    ASSERT_EQ(GetFileAttributesA((folder + "\\" + name).c_str()) & kinds, kinds) << name;
  };
  const std::string outside = dir_.File("Outside");
  ASSERT_TRUE(CreateDirectoryA(outside.c_str(), nullptr));
  WriteText(outside + "\\keep.htm", "keep");
  for (const char* box : {"Box1", "Box0"}) {
    MakeFolder(box);
    MakeFile(std::string(box) + "\\page.htm");
    link(root_ + box, "link", "../../Outside");
  }
  link(dir_.File("DataHtml"), "Link", "../Outside");
  const std::pair<const char*, bool> deletions[] = {{"Box1", true}, {"Box0", false}, {"Link", true}};
  for (const auto& [folder, subfolders] : deletions) {
    SCOPED_TRACE(folder);
    DeleteFolderTree(root_ + folder, subfolders);
    EXPECT_EQ(ReadText(outside + "\\keep.htm"), "keep");
  }
  EXPECT_FALSE(Exists("Box1\\page.htm"));
  EXPECT_FALSE(Exists("Box0\\page.htm"));

  // The walk stops at its deepest level.
  std::string path;
  for (int level = 1; level <= kDeleteLevelsMax + 1; ++level) {
    path += "L\\";
    Make({path, path + "p.htm"});
  }
  DeleteFolderTree(root_ + "L", true);
  // The last level is never entered, so it and every folder above it stay.
  EXPECT_TRUE(Exists(path + "p.htm"));
  EXPECT_FALSE(Exists(path.substr(0, path.size() - 2) + "p.htm"));
  EXPECT_TRUE(Exists("L"));
}

// ---- The keyboard: keys act on the view that has it

// Ends the message loop of a key press whose window never came.
void CALLBACK QuitLoop(HWND, UINT, UINT_PTR, DWORD) { PostQuitMessage(0); }

// Presses `key` in `focus` as the keyboard would, through the program's own
// message loop and accelerator table. The loop ends once the queue is empty; a
// window the key opens is answered by `steps`, the last of which ends it.
ModalResult PressKey(HWND focus, UINT key, std::vector<ModalStep> steps = {}) {
  const DWORD thread = GetCurrentThreadId();
  if (!steps.empty()) {
    ModalAction last = steps.back().act;
    steps.back().act = [last, thread](HWND window, const WindowSnapshot& snapshot) {
      last(window, snapshot);
      PostThreadMessageA(thread, WM_QUIT, 0, 0);
    };
  }
  HACCEL accelerators = LoadAcceleratorsA(MainWindowTest::Instance(), kMainClassName);
  SetFocus(focus);
  ModalResult result = RunModal(
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
  EXPECT_TRUE(result.ok()) << result.Describe();
  return result;
}

TEST_F(LinksViewTest, DelAndF2ActOnTheFocusedViewAndGreyedCommandsStayIdle) {
  MakeFolder("Shops");
  MakeFile("form.htm");
  ASSERT_TRUE(RefreshLinksView());

  Select("Shops");
  auto result = PressKey(View(), VK_F2, {Press("Cancel")});
  EXPECT_EQ(result.seen.at(0).caption, "Quellbarrow - New name");

  Select("form.htm");
  PressKey(View(), VK_DELETE, {Press("Yes")});
  EXPECT_FALSE(Exists("form.htm"));

  // "&Add" is greyed while the database is empty: Insert does nothing.
  HWND keys = App().keysView;
  EXPECT_TRUE(PressKey(keys, VK_INSERT).seen.empty());

  // F2 on a key edits its Name in place; the Links view's selection is left alone.
  AddKey("Mail", "", "", "");
  Select("Shops");
  SelectKeyRow(keys, 0);
  PressKey(keys, VK_F2);
  HWND edit = reinterpret_cast<HWND>(SendMessageA(keys, LVM_GETEDITCONTROL, 0, 0));
  ASSERT_NE(edit, nullptr);
  EXPECT_EQ(WindowText(edit), "Mail");
  SendMessageA(edit, WM_KEYDOWN, VK_ESCAPE, 0);
}

}  // namespace
}  // namespace qb::test
