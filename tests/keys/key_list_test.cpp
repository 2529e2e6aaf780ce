// The Keys view through the real list control and the main window's mouse rows:
// the sort cycle with its questions, every drop rule, rename in place, the
// Description on the system clipboard, and Copy, Paste and Delete key.
#include <atomic>
#include <cstdio>
#include <cstring>
#include <thread>

#include "tests/keys/keys_window.h"

namespace qb::test {
namespace {

class KeyListTest : public KeysWindowTest {
 protected:
  // A click on the column header, as the mouse makes it.
  static void ClickHeader() {
    HWND header = ListView_GetHeader(List());
    RECT r{};
    Header_GetItemRect(header, 0, &r);
    const LPARAM at = MAKELPARAM((r.left + r.right) / 2, (r.top + r.bottom) / 2);
    SendMessageA(header, WM_LBUTTONDOWN, MK_LBUTTON, at);
    SendMessageA(header, WM_LBUTTONUP, 0, at);
  }

  static RECT RowRect(int row) {
    RECT r{};
    ListView_GetItemRect(List(), row, &r, LVIR_BOUNDS);
    return r;
  }
  static POINT RowPoint(int row) {
    const RECT r = RowRect(row);
    return POINT{r.left + 30, (r.top + r.bottom) / 2};
  }
  // A point on no row: below the last one.
  static POINT BelowTheRows() {
    const RECT r = RowRect(ListView_GetItemCount(List()) - 1);
    return POINT{r.left + 30, r.bottom + 40};
  }

  // A left click on a row, as the mouse makes it.
  static void ClickRow(int row) {
    const POINT p = RowPoint(row);
    SendMessageA(List(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(p.x, p.y));
    SendMessageA(List(), WM_LBUTTONUP, 0, MAKELPARAM(p.x, p.y));
    Drain();
  }

  // Presses on row `from`, moves past the drag threshold and lets go at `drop`
  // (the list's client coordinates); the status bar shows where the mouse is.
  void Drag(int from, POINT drop) {
    ASSERT_TRUE(BeginDrag(from));
    POINT at = drop;
    MapWindowPoints(List(), window_, &at, 1);
    POINT screen = drop;
    ClientToScreen(List(), &screen);
    SetCursorPos(screen.x, screen.y);
    SendMessageA(window_, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(at.x, at.y));
    EXPECT_EQ(StatusText(), "x=" + std::to_string(screen.x) + ", y=" + std::to_string(screen.y));
    ReleaseAt(drop);
  }

  // Presses on row `from` and moves past the drag threshold; true once dragging.
  static bool BeginDrag(int from) {
    const POINT start = RowPoint(from);
    PostMessageA(List(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(start.x, start.y));
    PostMessageA(List(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(start.x + 12, start.y + 12));
    return PumpUntil([] { return KeyDragInProgress(); }, 3000);
  }

  // The left button let go at `drop`, as the main window hears it holding the mouse.
  void ReleaseAt(POINT drop) {
    POINT at = drop;
    MapWindowPoints(List(), window_, &at, 1);
    SendMessageA(window_, WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
    Drain();
  }

  static void SetClipboardText(const std::string& text) {
    ASSERT_TRUE(OpenClipboard(nullptr));
    EmptyClipboard();
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, text.size() + 1);
    std::memcpy(GlobalLock(block), text.c_str(), text.size() + 1);
    GlobalUnlock(block);
    SetClipboardData(CF_TEXT, block);
    CloseClipboard();
  }

  static std::string ClipboardText() {
    if (!OpenClipboard(nullptr)) return "<not opened>";
    std::string text;
    if (HANDLE data = GetClipboardData(CF_TEXT)) {
      const char* locked = static_cast<const char*>(GlobalLock(data));
      text = locked ? locked : "<unreadable>";
      GlobalUnlock(data);
    }
    CloseClipboard();
    return text;
  }

  // The clipboard's text as another program gets it (clipboard_text.exe beside
  // this test).
  static std::string PastedElsewhere() {
    char exe[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, exe, sizeof(exe));
    std::string command = exe;
    command = "\"" + command.substr(0, command.find_last_of("\\/") + 1) + "clipboard_text.exe\"";
    FILE* pipe = _popen(command.c_str(), "r");
    if (!pipe) return "<not started>";
    std::string text;
    char chunk[256];
    for (std::size_t got; (got = std::fread(chunk, 1, sizeof(chunk), pipe)) > 0;) text.append(chunk, got);
    _pclose(pipe);
    return text;
  }
};

// User -> Ascending and the second User -> Descending ask; the way back does not,
// and keeps the sorted order as the stored one.
TEST_F(KeyListTest, SortCycleAsksTwiceAndTheUserOrderIsLost) {
  OpenWith({"b", "C", "a"});
  const struct {
    const char* answer;  // nullptr: no question
    const char* header;
    Names rows;
  } clicks[] = {
      {"No", "User", {"b", "C", "a"}},
      {"Yes", "Ascending", {"a", "b", "C"}},
      {nullptr, "User", {"a", "b", "C"}},
      {"Yes", "Descending", {"C", "b", "a"}},
      {nullptr, "User", {"C", "b", "a"}},
  };
  for (const auto& click : clicks) {
    SetDatabaseChanged(false);
    std::vector<ModalStep> steps;
    if (click.answer) steps.push_back(Press(click.answer));
    SCOPED_TRACE(click.header);
    const auto result = Answered(ClickHeader, std::move(steps));
    if (click.answer) {
      EXPECT_EQ(result.seen[0].caption, "Quellbarrow");
      EXPECT_EQ(result.seen[0].MessageText(), kSortQuestion);
    }
    EXPECT_EQ(Header(), click.header);
    ExpectListed(click.rows);
    // Only a Yes changes the stored order; the clicks back to User keep it.
    EXPECT_EQ(DatabaseChanged(), click.answer && std::string(click.answer) == "Yes");
  }
}

// Where each drop lands is the rules' own test; here the window applies them.
TEST_F(KeyListTest, DropRules) {
  const struct {
    const char* what;
    int from;
    int onRow;  // -1: below every row
    Names rows;
  } drops[] = {
      {"on a row below: just before it", 0, 2, {"B", "A", "C", "D"}},
      {"on a row above: just after it", 3, 1, {"A", "B", "D", "C"}},
      {"outside every row: unchanged", 1, -1, {"A", "B", "C", "D"}},
  };
  for (const auto& drop : drops) {
    SCOPED_TRACE(drop.what);
    OpenWith({"A", "B", "C", "D"});
    POINT at = drop.onRow >= 0 ? RowPoint(drop.onRow) : BelowTheRows();
    Drag(drop.from, at);
    EXPECT_FALSE(KeyDragInProgress());
    ExpectListed(drop.rows);
    EXPECT_EQ(DatabaseChanged(), drop.rows != Names({"A", "B", "C", "D"}));
  }
}

// A drag ended by anything but the button's release leaves no drag image and the
// order as it was, and the release that follows drops nothing.
TEST_F(KeyListTest, DragEndedWithoutADropMovesNothing) {
  const struct {
    const char* what;
    void (*end)();
  } ends[] = {
      {"Esc", [] { SendMessageA(List(), WM_KEYDOWN, VK_ESCAPE, 0); }},
      {"another window takes the mouse",
       [] {
         HWND other = CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
         SetCapture(other);
         DestroyWindow(other);
       }},
      {"the mouse let go", [] { ReleaseCapture(); }},
  };
  for (const auto& end : ends) {
    SCOPED_TRACE(end.what);
    OpenWith({"A", "B", "C"});
    ASSERT_TRUE(BeginDrag(0));
    end.end();
    EXPECT_FALSE(KeyDragInProgress());
    EXPECT_EQ(ImageList_GetDragImage(nullptr, nullptr), nullptr);
    ReleaseAt(RowPoint(2));
    ExpectListed({"A", "B", "C"});
    EXPECT_FALSE(DatabaseChanged());
  }
}

TEST_F(KeyListTest, RenameInPlace) {
  OpenWith({"A", "B"});
  const struct {
    const char* typed;
    WPARAM key;
    Names rows;
  } edits[] = {
      {"Renamed", VK_RETURN, {"A", "Renamed"}},
      {"", VK_RETURN, {"A", "Renamed"}},
      {"Dropped", VK_ESCAPE, {"A", "Renamed"}},
  };
  for (const auto& e : edits) {
    SCOPED_TRACE(e.typed);
    SetDatabaseChanged(false);
    SetFocus(List());
    HWND edit = ListView_EditLabel(List(), 1);
    ASSERT_TRUE(edit);
    SetWindowTextA(edit, e.typed);
    SendMessageA(edit, WM_KEYDOWN, e.key, 0);
    Drain();
    ExpectListed(e.rows);
    EXPECT_EQ(DatabaseChanged(), std::string(e.typed) == "Renamed");
  }
  EXPECT_EQ(SelectedKey(), 1);
}

// Other programs get the system's copy of the text, so it is read by a process of
// its own as well.
TEST_F(KeyListTest, ClickPutsTheDescriptionOnTheClipboardOnlyWithTheOptionAndAText) {
  OpenWithKeys({{"Mail", "mail", "", "me@example.org"}, {"Empty", "e", "", ""}});
  const struct {
    const char* what;
    std::uint32_t option;
    int row;
    bool placed;
  } clicks[] = {
      {"option off", 0, 0, false},
      {"empty Description", 1, 1, false},
      {"option on", 1, 0, true},
  };
  for (const auto& click : clicks) {
    SCOPED_TRACE(click.what);
    SetClipboardText("before");
    const DWORD before = GetClipboardSequenceNumber();
    Settings().copyDescription = click.option;
    ClickRow(click.row);
    EXPECT_EQ(SelectedKey(), click.row);
    EXPECT_EQ(GetClipboardSequenceNumber() != before, click.placed);
    EXPECT_EQ(GetClipboardOwner() == window_, click.placed);
    EXPECT_EQ(PastedElsewhere(), click.placed ? "me@example.org" : "before");
  }
}

// Found by the careless-user run (a key's text freed under it): the clipboard
// frees the block it was given when it is emptied, so a block handed over and
// freed by the program as well took with it whatever text got that handle next.
TEST_F(KeyListTest, CopiedDescriptionsNeverFreeAKeysText) {
  OpenWithKeys({{"Mail", "mail", "", "me@example.org"}, {"Phone", "tel", "", "555"}});
  Settings().copyDescription = 1;
  for (int round = 0; round < 4; ++round) {
    ClickRow(round % 2);
    ASSERT_TRUE(SetKeyField(Keys(), 1, kSelection, "round " + std::to_string(round)));
    for (int key = 0; key < 2; ++key) {
      for (int f = 0; f < kKeyFieldCount; ++f) {
        const TextBlock block = Keys().fields[f][key];
        EXPECT_TRUE(block == kNoBlock || IsTextBlock(block)) << "round " << round << " key " << key << " field " << f;
      }
    }
    EXPECT_EQ(KeyFieldText(Keys(), 1, kSelection), "round " + std::to_string(round));
    EXPECT_EQ(ClipboardText(), round % 2 ? "555" : "me@example.org");
  }
  EXPECT_EQ(NamesOf(Keys()), (Names{"Mail", "Phone"}));
}

// A right click on a row selects it and opens the key commands' pop-up menu,
// which the watcher reads and closes; on no row nothing opens.
TEST_F(KeyListTest, RightClickOpensThePopupMenuOverARow) {
  OpenWith({"A", "B", "C"});
  for (const bool overRow : {true, false}) {
    std::atomic<bool> done{false};
    int items = -1;
    UINT firstId = 0;
    std::thread watcher([&] {
      for (int i = 0; i < 300 && !done; ++i) {
        HWND menu = FindWindowA("#32768", nullptr);
        if (menu && IsWindowVisible(menu)) {
          HMENU handle = reinterpret_cast<HMENU>(SendMessageA(menu, MN_GETHMENU, 0, 0));
          items = GetMenuItemCount(handle);
          firstId = GetMenuItemID(handle, 0);
          PostMessageA(window_, WM_CANCELMODE, 0, 0);
          PostMessageA(menu, WM_KEYDOWN, VK_ESCAPE, 0);
          return;
        }
        Sleep(10);
      }
    });
    const POINT at = overRow ? RowPoint(1) : BelowTheRows();
    PostMessageA(List(), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(at.x, at.y));
    PostMessageA(List(), WM_RBUTTONUP, 0, MAKELPARAM(at.x, at.y));
    PumpUntil([&] { return items >= 0; }, overRow ? 3000 : 500);
    done = true;
    watcher.join();
    Drain();
    if (overRow) {
      EXPECT_EQ(items, 7);  // "&Add key" .. "&Delete key" with two separators
      EXPECT_EQ(firstId, static_cast<UINT>(IDM_ADD_KEY));
      EXPECT_EQ(SelectedKey(), 1);
    } else {
      EXPECT_EQ(items, -1);
    }
  }
}

// Paste before any Copy does nothing; after a delete the pasted row shows what
// the table holds past its last key: nothing.
TEST_F(KeyListTest, CopyPasteAndDeleteKey) {
  OpenWith({"A", "B", "C"});
  Command(IDM_PASTE_KEY);
  EXPECT_EQ(Rows(), (Names{"A", "B", "C"}));
  EXPECT_FALSE(DatabaseChanged());

  SelectRow(0);
  Command(IDM_COPY_KEY);
  EXPECT_EQ(CopiedKeyIndex(), 0u);

  SelectRow(2);
  const auto result = CommandAnswered(IDM_DELETE_KEY, {Press("No")});
  EXPECT_EQ(result.seen[0].caption, "Quellbarrow");
  EXPECT_EQ(result.seen[0].MessageText(), kDeleteKeyQuestion);
  EXPECT_EQ(Rows(), (Names{"A", "B", "C"}));
  CommandAnswered(IDM_DELETE_KEY, {Press("Yes")});
  EXPECT_EQ(Rows(), (Names{"A", "B"}));
  EXPECT_TRUE(DatabaseChanged());

  Command(IDM_PASTE_KEY);
  EXPECT_EQ(Rows(), (Names{"A", "B", ""}));
  EXPECT_EQ(Keys().count, 3);
  EXPECT_STREQ(KeyNameBuffer().data(), "A");

  // With no row selected Copy forgets the key.
  ListView_SetItemState(List(), -1, 0, LVIS_SELECTED);
  Command(IDM_COPY_KEY);
  EXPECT_EQ(CopiedKeyIndex(), kNoCopiedKey);
}

}  // namespace
}  // namespace qb::test
