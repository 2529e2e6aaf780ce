// Menu greying and checking from the program's state, and the menu help line.
#include "tests/support/main_window_fixture.h"

namespace qb::test {
namespace {

using Menus = OpenMainWindowTest;

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
    EXPECT_EQ(InitMenu(), 0);
    // The menu and the tool bar (which asks CommandAvailable) agree.
    const auto state = [&](UINT id) { return std::pair(Greyed(id), CommandAvailable(WORD(id))); };
    for (UINT id : c.enabled) EXPECT_EQ(state(id), std::pair(false, true)) << id;
    for (UINT id : c.greyed) EXPECT_EQ(state(id), std::pair(true, false)) << id;
  }
  Keys().count = 0;
}

TEST_F(Menus, ChecksFollowBarsViewsAndWindowOptions) {
  const UINT ids[] = {IDM_TOOL_BAR,      IDM_DATABASES_BAR, IDM_KEY_WINDOW, IDM_LINK_WINDOW,
                      IDM_STATUS_BAR,    IDM_WINDOW_NORMAL, IDM_WINDOW_ONTOP,
                      IDM_WINDOW_HORIZONTAL, IDM_WINDOW_VERTICAL};
  const auto checks = [&] {
    InitMenu();
    std::vector<bool> v;
    for (UINT id : ids) v.push_back(Checked(id));
    return v;
  };
  EXPECT_EQ(checks(), (std::vector<bool>{1, 1, 1, 1, 1, 1, 0, 1, 0}));

  // Changed behind the menu's back; the next opening shows the truth. "&Key window"
  // is checked while the Links view shows.
  ToolBarDescriptor().state = kBarDockedHidden;
  DatabaseBarDescriptor().state = kBarFloatingHidden;
  Layout().keysShown = false;
  StatusBar().shown = false;
  Settings().onTop = 1;
  Settings().arrangement = kVertical;
  EXPECT_EQ(checks(), (std::vector<bool>{0, 0, 1, 0, 0, 0, 1, 0, 1}));
}

TEST_F(Menus, APopUpMenuOfAViewIsLeftAlone) {
  HMENU popup = LoadMenuA(Instance(), "IPOPMENU");
  HMENU keys = GetSubMenu(popup, 0);
  EXPECT_EQ(InitMenu(keys), 1);
  EXPECT_FALSE(GetMenuState(keys, IDM_ADD_KEY, MF_BYCOMMAND) & MF_GRAYED);
  DestroyMenu(popup);
}

// Every command has its help line (the resources' test); here the line of the
// highlighted item, whatever its state, and the longest one, reach the status bar.
TEST_F(Menus, HighlightedItemShowsItsHelpAndClosingShowsSeparator) {
  const struct {
    WORD item, flags;  // flags 0xFFFF: the menu closed
    const char* text;
  } rows[] = {
      {IDM_NEW_DATABASE, MF_STRING, "Create a new Quellbarrow database"},
      {IDM_KEY_WINDOW, MF_STRING | MF_CHECKED, "Show or hide list window"},
      {0, MF_SEPARATOR, "Separator"},
      {IDM_SCAN_PROMPT_HTML, MF_STRING,
       "Scan current selected HTML document file and ask to select each Form Field."},
      {0, 0xFFFF, "Separator"},
  };
  for (const auto& r : rows) {
    const HMENU menu = r.flags == 0xFFFF ? nullptr : GetMenu(window_);
    EXPECT_EQ(SendMessageA(window_, WM_MENUSELECT, MAKEWPARAM(r.item, r.flags),
                           reinterpret_cast<LPARAM>(menu)), 0);
    EXPECT_EQ(StatusText(), r.text) << r.item;
  }
}

}  // namespace
}  // namespace qb::test
