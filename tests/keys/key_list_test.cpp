// The Keys view through the real list control and the main window's mouse rows:
// the sort cycle with its questions, drops and drags ended otherwise, rename in
// place, the Description on the system clipboard, the pop-up menu, and Copy,
// Paste and Delete key.
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

  // A point in a row; for row -1 a point on no row, below the last one.
  static POINT RowPoint(int row) {
    RECT r{};
    ListView_GetItemRect(List(), row >= 0 ? row : ListView_GetItemCount(List()) - 1, &r, LVIR_BOUNDS);
    return POINT{r.left + 30, row >= 0 ? (r.top + r.bottom) / 2 : r.bottom + 40};
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
};

// Leaving a user order asks; the way back does not, and keeps the sorted order
// as the stored one. (Which order asks and which comes next is the rules' test.)
TEST_F(KeyListTest, SortCycleAsksAndTheUserOrderIsLost) {
  OpenWith({"b", "C", "a"});
  const struct {
    const char* answer;  // nullptr: no question
    const char* header;
    Names rows;
  } clicks[] = {
      {"No", "User", {"b", "C", "a"}},
      {"Yes", "Ascending", {"a", "b", "C"}},
      {nullptr, "User", {"a", "b", "C"}},
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

// Where each drop lands is the rules' own test; here the window applies them. A
// drag ended by anything but the button's release leaves no drag image and the
// order as it was, and the release that follows drops nothing.
TEST_F(KeyListTest, DropsMoveTheKeyAndDragsEndedOtherwiseMoveNothing) {
  const Names abcd = {"A", "B", "C", "D"};
  const struct {
    const char* what;
    void (*end)();  // nullptr: dropped
    int onRow;      // -1: below every row
    Names rows;
  } drags[] = {
      {"dropped on a row below: just before it", nullptr, 2, {"B", "A", "C", "D"}},
      {"dropped outside every row: unchanged", nullptr, -1, abcd},
      {"Esc", [] { SendMessageA(List(), WM_KEYDOWN, VK_ESCAPE, 0); }, 2, abcd},
      {"another window takes the mouse",
       [] {
         HWND other = CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
         SetCapture(other);
         DestroyWindow(other);
       },
       2, abcd},
      {"the mouse let go", [] { ReleaseCapture(); }, 2, abcd},
  };
  for (const auto& drag : drags) {
    SCOPED_TRACE(drag.what);
    OpenWith(abcd);
    const POINT at = RowPoint(drag.onRow);
    if (drag.end) {
      ASSERT_TRUE(BeginDrag(0));
      drag.end();
      EXPECT_EQ(ImageList_GetDragImage(nullptr, nullptr), nullptr);
      ReleaseAt(at);
    } else {
      Drag(0, at);
    }
    EXPECT_FALSE(KeyDragInProgress());
    ExpectListed(drag.rows);
    EXPECT_EQ(DatabaseChanged(), drag.rows != abcd);
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

// Found by the careless-user run (a key's text freed under it): the clipboard
// frees the block it was given when it is emptied, so a block handed over and
// freed by the program as well took with it whatever text got that handle next.
TEST_F(KeyListTest, ClickPutsTheDescriptionOnTheClipboardOnlyWithTheOptionAndNeverFreesAKeysText) {
  OpenWithKeys({{"Mail", "mail", "", "me@example.org"}, {"Phone", "tel", "", "555"}, {"Empty", "e", "", ""}});
  ASSERT_TRUE(OpenClipboard(nullptr));
  EmptyClipboard();
  CloseClipboard();
  const struct {
    std::uint32_t option;
    int row;
    const char* clipboard;
  } clicks[] = {
      {0, 0, ""}, {1, 2, ""}, {1, 0, "me@example.org"}, {1, 1, "555"}, {1, 0, "me@example.org"},
  };
  for (int round = 0; round < 5; ++round) {
    SCOPED_TRACE(round);
    const DWORD before = GetClipboardSequenceNumber();
    Settings().copyDescription = clicks[round].option;
    ClickRow(clicks[round].row);
    EXPECT_EQ(SelectedKey(), clicks[round].row);
    EXPECT_EQ(GetClipboardSequenceNumber() != before, *clicks[round].clipboard != '\0');
    EXPECT_EQ(ClipboardText(), clicks[round].clipboard);
    const std::string text = "round " + std::to_string(round);
    ASSERT_TRUE(SetKeyField(Keys(), 2, kSelection, text));
    for (int key = 0; key < 3; ++key) {
      for (int f = 0; f < kKeyFieldCount; ++f) {
        const TextBlock block = Keys().fields[f][key];
        EXPECT_TRUE(block == kNoBlock || IsTextBlock(block)) << "key " << key << " field " << f;
      }
    }
    EXPECT_EQ(KeyFieldText(Keys(), 2, kSelection), text);
  }
  EXPECT_EQ(GetClipboardOwner(), window_);
  EXPECT_EQ(NamesOf(Keys()), (Names{"Mail", "Phone", "Empty"}));
}

// A right click on a row selects it and opens the key commands' pop-up menu.
TEST_F(KeyListTest, RightClickOnARowOpensThePopupMenu) {
  OpenWith({"A", "B", "C"});
  SelectRow(2);
  const POINT at = RowPoint(0);
  const auto items = PopupMenuTexts([&] {
    PostMessageA(List(), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(at.x, at.y));
    PostMessageA(List(), WM_RBUTTONUP, 0, MAKELPARAM(at.x, at.y));
  });
  Drain();
  ASSERT_FALSE(items.empty());
  EXPECT_EQ(items[0], "&Add key");
  EXPECT_EQ(SelectedKey(), 0);
}

// After a delete the pasted row shows what the table holds past its last key:
// nothing.
TEST_F(KeyListTest, CopyPasteAndDeleteKey) {
  OpenWith({"A", "B", "C"});
  SelectRow(0);
  Command(IDM_COPY_KEY);
  SelectRow(2);
  const auto result = CommandAnswered(IDM_DELETE_KEY, {Press("No")});
  EXPECT_EQ(result.seen[0].MessageText(), kDeleteKeyQuestion);
  EXPECT_EQ(Rows(), (Names{"A", "B", "C"}));
  CommandAnswered(IDM_DELETE_KEY, {Press("Yes")});
  EXPECT_EQ(Rows(), (Names{"A", "B"}));
  EXPECT_TRUE(DatabaseChanged());

  Command(IDM_PASTE_KEY);
  EXPECT_EQ(Rows(), (Names{"A", "B", ""}));
  EXPECT_STREQ(KeyNameBuffer().data(), "A");  // the copied key

  // With no row selected Copy forgets the key.
  ListView_SetItemState(List(), -1, 0, LVIS_SELECTED);
  Command(IDM_COPY_KEY);
  EXPECT_EQ(CopiedKeyIndex(), kNoCopiedKey);
}

}  // namespace
}  // namespace qb::test
