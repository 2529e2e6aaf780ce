// Menu greying and checking from the program's state, and the menu help line.
#include "tests/app/main_window_fixture.h"

#include "resources/resource.h"

namespace qb::test {
namespace {

class Menus : public MainWindowTest {
 protected:
  void SetUp() override {
    MainWindowTest::SetUp();
    ASSERT_NE(Open(), nullptr);
  }
  LRESULT InitMenu(HMENU menu) {
    return SendMessageA(window_, WM_INITMENU, reinterpret_cast<WPARAM>(menu), 0);
  }
  LRESULT Select(WORD item, WORD flags, HMENU menu) {
    return SendMessageA(window_, WM_MENUSELECT, MAKEWPARAM(item, flags),
                        reinterpret_cast<LPARAM>(menu));
  }
};

struct GreyCase {
  const char* name;
  int keys;
  bool modified;
  std::uint32_t copied;
  std::vector<UINT> enabled;
  std::vector<UINT> greyed;
};

const GreyCase kGreyCases[] = {
    {"empty database with a copied key", 0, false, 0,
     {IDM_PASTE_KEY, IDM_GLOBAL_OPTIONS, IDM_SCAN_HTML, 50206, IDM_NEW_FOLDER},
     {IDM_NEW_DATABASE, IDM_OPEN_DATABASE, IDM_SAVE_DATABASE, IDM_SAVEAS_DATABASE, IDM_ADD_KEY,
      IDM_COPY_KEY, IDM_DELETE_KEY, IDM_DELETE_DATABASE}},
    {"empty but modified database", 0, true, kNoCopiedKey,
     {IDM_SAVE_DATABASE},
     {IDM_NEW_DATABASE, IDM_OPEN_DATABASE, IDM_SAVEAS_DATABASE, IDM_PASTE_KEY, IDM_MODIFY_KEY}},
    {"keys, unchanged, nothing copied", 3, false, kNoCopiedKey,
     {IDM_NEW_DATABASE, IDM_OPEN_DATABASE, IDM_SAVEAS_DATABASE, IDM_ADD_KEY, IDM_ADD_COMPARE,
      IDM_MODIFY_KEY, IDM_COPY_KEY, IDM_DELETE_KEY, IDM_DELETE_DATABASE},
     {IDM_SAVE_DATABASE, IDM_PASTE_KEY}},
};

TEST_F(Menus, GreysCommandsFromTheDatabaseState) {
  for (const GreyCase& c : kGreyCases) {
    SCOPED_TRACE(c.name);
    Keys().count = c.keys;
    SetDatabaseChanged(c.modified);
    SetCopiedKeyIndex(c.copied);
    EXPECT_EQ(InitMenu(GetMenu(window_)), 0);
    for (UINT id : c.enabled) {
      EXPECT_FALSE(Greyed(id)) << id;
      EXPECT_TRUE(CommandAvailable(static_cast<WORD>(id))) << id;
    }
    for (UINT id : c.greyed) {
      EXPECT_TRUE(Greyed(id)) << id;
      EXPECT_FALSE(CommandAvailable(static_cast<WORD>(id))) << id;
    }
  }
  Keys().count = 0;
}

TEST_F(Menus, ChecksFollowBarsViewsAndWindowOptions) {
  InitMenu(GetMenu(window_));
  for (UINT id : {IDM_TOOL_BAR, IDM_DATABASES_BAR, IDM_KEY_WINDOW, IDM_LINK_WINDOW, IDM_STATUS_BAR,
                  IDM_WINDOW_NORMAL, IDM_WINDOW_HORIZONTAL})
    EXPECT_TRUE(Checked(id)) << id;
  for (UINT id : {IDM_WINDOW_ONTOP, IDM_WINDOW_VERTICAL}) EXPECT_FALSE(Checked(id)) << id;

  // Changed behind the menu's back; the next opening shows the truth.
  ToolBarDescriptor().state = kBarDockedHidden;
  DatabaseBarDescriptor().state = kBarFloatingHidden;
  Layout().keysShown = false;
  StatusBar().shown = false;
  Settings().onTop = 1;
  Settings().arrangement = kVertical;
  InitMenu(GetMenu(window_));
  for (UINT id : {IDM_TOOL_BAR, IDM_DATABASES_BAR, IDM_LINK_WINDOW, IDM_STATUS_BAR,
                  IDM_WINDOW_NORMAL, IDM_WINDOW_HORIZONTAL})
    EXPECT_FALSE(Checked(id)) << id;
  for (UINT id : {IDM_KEY_WINDOW, IDM_WINDOW_ONTOP, IDM_WINDOW_VERTICAL})
    EXPECT_TRUE(Checked(id)) << id;
  ToolBarDescriptor().state = kBarDocked;
  DatabaseBarDescriptor().state = kBarDocked;
  StatusBar().shown = true;
}

TEST_F(Menus, APopUpMenuOfAViewIsLeftAlone) {
  HMENU popup = LoadMenuA(Instance(), "IPOPMENU");
  HMENU keys = GetSubMenu(popup, 0);
  EXPECT_EQ(InitMenu(keys), 1);
  EXPECT_FALSE(GetMenuState(keys, IDM_ADD_KEY, MF_BYCOMMAND) & MF_GRAYED);
  DestroyMenu(popup);
}

TEST_F(Menus, HighlightedItemShowsItsHelpAndClosingShowsSeparator) {
  HMENU menu = GetMenu(window_);
  EXPECT_EQ(Select(IDM_NEW_DATABASE, MF_STRING, menu), 0);
  EXPECT_EQ(StatusText(), "Create a new Quellbarrow database");
  Select(IDM_KEY_WINDOW, MF_STRING | MF_CHECKED, menu);
  EXPECT_EQ(StatusText(), "Show or hide list window");
  Select(0, MF_SEPARATOR, menu);
  EXPECT_EQ(StatusText(), "Separator");
  Select(IDM_COMPACT_CONFIGHTML, MF_STRING, menu);
  EXPECT_EQ(StatusText(), "Remove deleted links from a file ConfigHtml.cfg");
  Select(0, 0xFFFF, nullptr);
  EXPECT_EQ(StatusText(), "Separator");
}

}  // namespace
}  // namespace qb::test
