// Drives a running Quellbarrow for scripts/screenshots.sh: mouse messages as a
// user's hand would make them (the pointer is put where they say), menu commands,
// and the rectangles of windows to capture. Mouse input injected from another
// process does not reliably reach a window under Wine, so the messages are posted.
//   screenshot_driver wait CLASS            waits for a visible window, prints its rectangle
//   screenshot_driver drag CLASS X Y DX DY  drags from client point (X, Y) of CLASS by (DX, DY)
//   screenshot_driver hover CLASS X Y       rests the pointer on client point (X, Y) of CLASS
//   screenshot_driver command ID            sends menu command ID to the main window
//   screenshot_driver key ID VK [COUNT]     presses key VK (COUNT times) in the main window's child ID
//   screenshot_driver rclick ID X Y         right-clicks client point (X, Y) of the main window's child ID
//   screenshot_driver close                 closes the main window
//   screenshot_driver dialog TITLE          waits for a visible dialog of that caption, prints its rectangle
//   screenshot_driver click TITLE ID        presses button ID of that dialog
//   screenshot_driver settext TITLE ID TEXT sets the text of control ID of that dialog
//   screenshot_driver dblclick TITLE ID X Y double-clicks client point (X, Y) of control ID of that dialog
//   screenshot_driver help FILE ID          opens help file FILE at context number ID
//   screenshot_driver helpquit              closes the help viewer
//   screenshot_driver press CAPTION ID      sends button ID's click to the window so titled
//   screenshot_driver address TEXT          waits for a window whose address bar holds TEXT, prints its rectangle
//   screenshot_driver setlines TITLE ID TEXT sets the text of control ID, '|' standing for a line break
//   screenshot_driver menu LETTER [DOWNS]   opens the menu of mnemonic LETTER, moves DOWNS items down
//   screenshot_driver pickrow ID ROW        selects row ROW of the main window's list view ID by keys
//   screenshot_driver rclick ID X Y         right-clicks client point (X, Y) of the main window's child ID
//   screenshot_driver clipboard TEXT        puts TEXT on the clipboard, as a browser's copy of its address does
//   screenshot_driver dlgkey TITLE VK       presses key VK in the control of that dialog that has the focus
//   screenshot_driver dismiss CLASS         closes the visible top-level window of CLASS (a browser's)
//   screenshot_driver focus                 prints the active window's caption, its owner's, and the class
//                                           and ID of the control with the keyboard focus
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>

namespace {

// A visible top-level window of the class, or a docked bar inside the main window.
HWND FindVisible(const char* className) {
  for (int i = 0; i < 200; ++i) {
    HWND w = FindWindowA(className, nullptr);
    if (!w) {
      HWND main = FindWindowA("Quellbarrow", nullptr);
      if (main) w = FindWindowExA(main, nullptr, className, nullptr);
    }
    if (w && IsWindowVisible(w)) return w;
    Sleep(100);
  }
  return nullptr;
}

HWND FindDialog(const char* title) {
  for (int i = 0; i < 200; ++i) {
    HWND w = FindWindowA("#32770", title);
    if (w && IsWindowVisible(w) && IsWindowEnabled(w)) return w;
    Sleep(100);
  }
  return nullptr;
}

void PrintRect(HWND w) {
  RECT r;
  GetWindowRect(w, &r);
  std::printf("%ldx%ld+%ld+%ld\n", r.right - r.left, r.bottom - r.top, r.left, r.top);
}

POINT ClientPoint(HWND w, int x, int y) {
  POINT p{x, y};
  ClientToScreen(w, &p);
  return p;
}

// Puts the pointer at screen point `p` and tells `w` (which holds the mouse, or
// lies under it) in its own client coordinates.
void Mouse(HWND w, UINT message, WPARAM keys, POINT p) {
  SetCursorPos(p.x, p.y);
  ScreenToClient(w, &p);
  PostMessageA(w, message, keys, MAKELPARAM(p.x, p.y));
  Sleep(40);
}

struct Search {
  const std::function<bool(HWND)>* matches;
  HWND found;
};

BOOL CALLBACK MatchTopLevel(HWND w, LPARAM p) {
  auto* s = reinterpret_cast<Search*>(p);
  if (!IsWindowVisible(w) || !(*s->matches)(w)) return TRUE;
  s->found = w;
  return FALSE;
}

// Waits up to `seconds` for a visible top-level window that `matches`.
HWND WaitFor(const std::function<bool(HWND)>& matches, int seconds) {
  for (int i = 0; i < seconds * 10; ++i) {
    Search search{&matches, nullptr};
    EnumWindows(MatchTopLevel, reinterpret_cast<LPARAM>(&search));
    if (search.found) return search.found;
    Sleep(100);
  }
  return nullptr;
}

std::string TextOf(HWND w) {
  char text[1024] = {};
  SendMessageTimeoutA(w, WM_GETTEXT, sizeof(text), reinterpret_cast<LPARAM>(text), SMTO_NORMAL, 2000, nullptr);
  return text;
}

BOOL CALLBACK EditHolds(HWND child, LPARAM p) {
  auto* wanted = reinterpret_cast<std::pair<const char*, bool>*>(p);
  char cls[32] = {};
  GetClassNameA(child, cls, sizeof(cls));
  if (_stricmp(cls, "Edit") || TextOf(child).find(wanted->first) == std::string::npos) return TRUE;
  wanted->second = true;
  return FALSE;
}

int PrintRectAfterPaint(HWND w) {
  if (!w) return 1;
  Sleep(1500);  // let it paint
  RECT r;
  GetWindowRect(w, &r);
  std::printf("%ldx%ld+%ld+%ld\n", r.right - r.left, r.bottom - r.top, r.left, r.top);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  const char* what = argv[1];
  if (!std::strcmp(what, "wait") && argc == 3) {
    HWND w = FindVisible(argv[2]);
    if (!w) return 1;
    Sleep(700);  // let it paint
    RECT r;
    GetWindowRect(w, &r);
    std::printf("%ldx%ld+%ld+%ld\n", r.right - r.left, r.bottom - r.top, r.left, r.top);
    return 0;
  }
  if (!std::strcmp(what, "drag") && argc == 7) {
    HWND w = FindVisible(argv[2]);
    if (!w) return 1;
    HWND main = FindVisible("Quellbarrow");
    const POINT from = ClientPoint(w, std::atoi(argv[3]), std::atoi(argv[4]));
    const int dx = std::atoi(argv[5]), dy = std::atoi(argv[6]);
    // Pressed on the grip and moved a little: the main window takes the drag over.
    Mouse(w, WM_LBUTTONDOWN, MK_LBUTTON, from);
    Mouse(w, WM_MOUSEMOVE, MK_LBUTTON, POINT{from.x + dx / 12, from.y + dy / 12});
    Sleep(300);
    const int steps = 12;
    POINT p = from;
    for (int i = 2; i <= steps; ++i) {
      p = POINT{from.x + dx * i / steps, from.y + dy * i / steps};
      Mouse(main, WM_MOUSEMOVE, MK_LBUTTON, p);
    }
    Sleep(200);
    Mouse(main, WM_LBUTTONUP, 0, p);
    Sleep(500);
    return 0;
  }
  if (!std::strcmp(what, "hover") && argc == 5) {
    HWND w = FindVisible(argv[2]);
    if (!w) return 1;
    const POINT p = ClientPoint(w, std::atoi(argv[3]), std::atoi(argv[4]));
    Mouse(w, WM_MOUSEMOVE, 0, POINT{p.x - 3, p.y});
    Mouse(w, WM_MOUSEMOVE, 0, p);
    Sleep(1200);  // past the tool tip's delay
    return 0;
  }
  if (!std::strcmp(what, "dialog") && argc == 3) {
    HWND d = FindDialog(argv[2]);
    if (!d) return 1;
    Sleep(700);  // let it paint
    PrintRect(d);
    return 0;
  }
  if (!std::strcmp(what, "dblclick") && argc == 6) {
    HWND d = FindDialog(argv[2]);
    HWND c = d ? GetDlgItem(d, std::atoi(argv[3])) : nullptr;
    if (!c) return 1;
    const POINT p = ClientPoint(c, std::atoi(argv[4]), std::atoi(argv[5]));
    for (UINT m : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
      Mouse(c, m, m == WM_LBUTTONUP ? 0 : MK_LBUTTON, p);
    return 0;
  }
  if (!std::strcmp(what, "setlines") && argc == 5) {
    HWND d = FindDialog(argv[2]);
    if (!d) return 1;
    std::string text;
    for (const char* c = argv[4]; *c; ++c) text += *c == '|' ? std::string("\r\n") : std::string(1, *c);
    SetDlgItemTextA(d, std::atoi(argv[3]), text.c_str());
    Sleep(200);
    return 0;
  }
  if (argc >= 4 && (!std::strcmp(what, "click") || !std::strcmp(what, "settext"))) {
    HWND d = FindDialog(argv[2]);
    if (!d) return 1;
    const int id = std::atoi(argv[3]);
    if (!std::strcmp(what, "click")) {
      PostMessageA(d, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(d, id)));
    } else if (argc == 5) {
      SetDlgItemTextA(d, id, argv[4]);
    }
    Sleep(500);
    return 0;
  }
  if (!std::strcmp(what, "help") && argc == 4) {
    const DWORD id = static_cast<DWORD>(std::atoi(argv[3]));
    // The viewer WinHelp starts may not have its window at the first request.
    if (WinHelpA(nullptr, argv[2], HELP_CONTEXT, id)) return 0;
    for (int i = 0; i < 100 && !FindWindowA("MS_WINHELP", nullptr); ++i) Sleep(20);
    return WinHelpA(nullptr, argv[2], HELP_CONTEXT, id) ? 0 : 1;
  }
  if (!std::strcmp(what, "helpquit")) {
    WinHelpA(nullptr, nullptr, HELP_QUIT, 0);
    return 0;
  }
  if (!std::strcmp(what, "press") && argc == 4) {
    const std::string caption = argv[2];
    HWND w = WaitFor([&](HWND w) { return TextOf(w) == caption; }, 30);
    if (!w) return 1;
    const int id = std::atoi(argv[3]);
    PostMessageA(w, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(w, id)));
    return 0;
  }
  if (!std::strcmp(what, "address") && argc == 3) {
    return PrintRectAfterPaint(WaitFor(
        [&](HWND w) {
          std::pair<const char*, bool> wanted{argv[2], false};
          EnumChildWindows(w, EditHolds, reinterpret_cast<LPARAM>(&wanted));
          return wanted.second;
        },
        90));
  }
  if (!std::strcmp(what, "clipboard") && argc == 3) {
    const std::size_t size = std::strlen(argv[2]) + 1;
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, size);
    if (!block) return 1;
    std::memcpy(GlobalLock(block), argv[2], size);
    GlobalUnlock(block);
    if (!OpenClipboard(nullptr)) return 1;
    EmptyClipboard();
    const bool placed = SetClipboardData(CF_TEXT, block) != nullptr;
    CloseClipboard();
    return placed ? 0 : 1;
  }
  if (!std::strcmp(what, "dismiss") && argc == 3) {
    const std::string wanted = argv[2];
    HWND w = WaitFor(
        [&](HWND w) {
          char cls[64] = {};
          GetClassNameA(w, cls, sizeof(cls));
          return wanted == cls;
        },
        30);
    if (!w) return 1;
    PostMessageA(w, WM_CLOSE, 0, 0);
    for (int i = 0; i < 100 && IsWindow(w); ++i) Sleep(100);
    Sleep(700);  // what was behind it paints
    return IsWindow(w) ? 1 : 0;
  }
  if (!std::strcmp(what, "focus") && argc == 2) {
    GUITHREADINFO info{};
    info.cbSize = sizeof(info);
    HWND active = GetForegroundWindow();
    if (!active || !GetGUIThreadInfo(GetWindowThreadProcessId(active, nullptr), &info)) return 1;
    char cls[64] = {};
    if (info.hwndFocus) GetClassNameA(info.hwndFocus, cls, sizeof(cls));
    HWND owner = GetWindow(active, GW_OWNER);
    std::printf("active \"%s\" owner \"%s\" focus %s %d\n", TextOf(active).c_str(),
                owner ? TextOf(owner).c_str() : "", cls, info.hwndFocus ? GetDlgCtrlID(info.hwndFocus) : 0);
    return 0;
  }
  if (!std::strcmp(what, "dlgkey") && argc == 4) {
    HWND d = FindDialog(argv[2]);
    if (!d) return 1;
    GUITHREADINFO info{};
    info.cbSize = sizeof(info);
    if (!GetGUIThreadInfo(GetWindowThreadProcessId(d, nullptr), &info) || !info.hwndFocus) return 1;
    // Posted to the focused control as the keyboard would: the dialog's own
    // message loop turns Esc, Tab and Enter into its commands.
    const WPARAM vk = static_cast<WPARAM>(std::atoi(argv[3]));
    PostMessageA(info.hwndFocus, WM_KEYDOWN, vk, 1);
    PostMessageA(info.hwndFocus, WM_KEYUP, vk, 0xC0000001);
    Sleep(500);
    return 0;
  }
  HWND main = FindVisible("Quellbarrow");
  if (!main) return 1;
  if (!std::strcmp(what, "command") && argc == 3) {
    PostMessageA(main, WM_COMMAND, MAKEWPARAM(std::atoi(argv[2]), 0), 0);
    Sleep(500);
    return 0;
  }
  if (!std::strcmp(what, "key") && argc >= 4) {
    HWND child = GetDlgItem(main, std::atoi(argv[2]));
    if (!child) return 1;
    const int count = argc > 4 ? std::atoi(argv[4]) : 1;
    for (int i = 0; i < count; ++i) {
      PostMessageA(child, WM_KEYDOWN, std::atoi(argv[3]), 1);
      PostMessageA(child, WM_KEYUP, std::atoi(argv[3]), 0xC0000001);
      Sleep(100);
    }
    Sleep(700);  // let it list and paint
    return 0;
  }
  if (!std::strcmp(what, "rclick") && argc == 5) {
    HWND child = GetDlgItem(main, std::atoi(argv[2]));
    if (!child) return 1;
    const POINT p = ClientPoint(child, std::atoi(argv[3]), std::atoi(argv[4]));
    // The list follows a pressed button until it is let go or the pointer moves
    // away: the pointer is put there first, and both messages queued at once.
    SetCursorPos(p.x, p.y);
    Sleep(300);
    POINT inside = p;
    ScreenToClient(child, &inside);
    PostMessageA(child, WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(inside.x, inside.y));
    PostMessageA(child, WM_RBUTTONUP, 0, MAKELPARAM(inside.x, inside.y));
    Sleep(900);  // the menu opens and paints
    return 0;
  }
  if (!std::strcmp(what, "pickrow") && argc == 4) {
    HWND list = GetDlgItem(main, std::atoi(argv[2]));
    if (!list) return 1;
    PostMessageA(list, WM_KEYDOWN, VK_HOME, 0);
    for (int i = std::atoi(argv[3]); i > 0; --i) PostMessageA(list, WM_KEYDOWN, VK_DOWN, 0);
    Sleep(300);
    return 0;
  }
  if (!std::strcmp(what, "menu") && argc >= 3) {
    PostMessageA(main, WM_SYSCOMMAND, SC_KEYMENU, static_cast<unsigned char>(argv[2][0]));
    Sleep(700);
    for (int i = argc > 3 ? std::atoi(argv[3]) : 0; i > 0; --i) {
      PostMessageA(main, WM_KEYDOWN, VK_DOWN, 1);
      Sleep(200);
    }
    Sleep(700);  // the menu opens and paints, the status bar shows the item's help
    return 0;
  }
  if (!std::strcmp(what, "close")) {
    PostMessageA(main, WM_CLOSE, 0, 0);
    return 0;
  }
  return 2;
}
