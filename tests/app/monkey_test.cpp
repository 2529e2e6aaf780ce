// A careless user for a while: random commands, clicks, drags and keys on the real
// main window, random typing and presses in every dialog and box that comes up,
// all drawn from one seed. After every action the key table, the Keys view, what
// was saved, the registry and a folder beside the program folder are checked.
// QB_MONKEY_SEED and QB_MONKEY_SECONDS choose the run (scripts/monkey.sh); without
// a seed one is made from the clock and printed.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <mutex>
#include <random>
#include <cstring>
#include <thread>

#include "acquire/acquire_state.h"
#include "keys/key_view_rules.h"
#include "tests/app/program_folder_fixture.h"
#include "tests/support/loopback_server.h"

#include <dlgs.h>  // after windows.h

namespace qb::test {
namespace {

using Clock = std::chrono::steady_clock;
using Bytes = std::vector<std::uint8_t>;

constexpr char kFormPage[] =
    "HTTP/1.0 200 OK\r\nContent-Type: text/html\r\n\r\n"
    "<html><body><form action=\"/post\" method=\"POST\">"
    "<input type=text name=first><input type=text name=email><input type=text name=unknown>"
    "<select name=country><option>Norway<option>Sweden</select>"
    "<input type=radio name=size value=S><input type=radio name=size value=L>"
    "<input type=checkbox name=news><textarea name=comments></textarea>"
    "<input type=submit></form></body></html>";

const std::vector<KeyTexts> kFirstKeys = {
    {"First name", "first,fname", "", "Ann"},
    {"Email", "email,mail", "", "ann@example.com"},
    {"Country", "country", "Norway\r\nSweden", "Norway"},
    {"Notes", "comments", "", "Hello"},
    {"Size", "size", "L", ""},
};
const std::vector<KeyTexts> kSecondKeys = {{"Zip", "zip,postcode", "", "0150"}, {"City", "city", "", "Oslo"}};

// What the careless user types: short, long, empty, path-like and list-like texts.
std::vector<std::string> TypedTexts(const std::string& outside) {
  return {"",         "a",        "Data.dat",      "Second.dat",        "New.dat",
          "Shop",     "x y",      "first, email",  "Norway\r\nSweden", std::string(300, 'n'),
          std::string(5000, 't'), "..\\escape",    "C:\\windows",       "<b>&amp;\"'",
          outside + "\\o.dat",    "..\\..\\Outside\\p.dat", "con",       "a\\b"};
}

const WORD kCommands[] = {
    IDM_NEW_DATABASE, IDM_OPEN_DATABASE, IDM_SAVE_DATABASE, IDM_SAVEAS_DATABASE, IDM_GLOBAL_OPTIONS,
    IDM_TOOL_BAR, IDM_DATABASES_BAR, IDM_KEY_WINDOW, IDM_LINK_WINDOW, IDM_STATUS_BAR, IDM_LINK_INFO,
    IDM_ADD_KEY, IDM_ADD_COMPARE, IDM_MODIFY_KEY, IDM_COPY_KEY, IDM_PASTE_KEY, IDM_DELETE_KEY,
    IDM_DATABASE_FIRST, IDM_DATABASE_FIRST + 1, IDM_DATABASE_FIRST + 2, IDM_DATABASE_LAST,
    IDM_DELETE_DATABASE, IDM_NEW_FOLDER, IDM_RENAME_FOLDER, IDM_DELETE_LINK, IDM_GOTO_SITE,
    IDM_RENAME_LINK, IDM_MOVE_LINK, IDM_LINKS_PAGE, IDM_SCAN_HTML, IDM_SCAN_FILE_HTML, IDM_SCAN_CLIPBOARD,
    IDM_SCAN_PROMPT_HTML, IDM_SCAN_MANUAL, IDM_SCAN_OPTIONS, IDM_COMPACT_CONFIGHTML,
    IDM_WINDOW_NORMAL, IDM_WINDOW_ONTOP, IDM_WINDOW_HORIZONTAL, IDM_WINDOW_VERTICAL, IDM_ABOUT};

const WPARAM kKeys[] = {'A', 'K', 'Z', VK_RETURN, VK_ESCAPE, VK_DELETE, VK_F2, VK_TAB, VK_INSERT, VK_DOWN, VK_UP};

std::string Size(const Bytes& b) { return std::to_string(b.size()) + " bytes"; }

std::uint64_t FromEnvironment(const char* name, std::uint64_t otherwise) {
  const char* text = std::getenv(name);
  return text && *text ? std::strtoull(text, nullptr, 10) : otherwise;
}

// Every file and folder under `folder` (folders with a trailing separator), with
// its bytes, by path relative to it.
std::map<std::string, Bytes> Files(const std::string& folder) {
  std::map<std::string, Bytes> out;
  std::error_code error;
  for (std::filesystem::recursive_directory_iterator it(folder, error), end; it != end; it.increment(error)) {
    const std::string name = it->path().string().substr(folder.size() + 1);
    out[it->is_directory() ? name + "\\" : name] = it->is_directory() ? Bytes{} : ReadBytes(it->path().string());
  }
  return out;
}

class Monkey;
Monkey* g_monkey = nullptr;

class Monkey : public ProgramFolderTest {
 public:
  static void CALLBACK OnTick(HWND, UINT, UINT_PTR, DWORD) { g_monkey->ActOnModalWindow(); }

 protected:
  void SetUp() override {
    MainWindowTest::SetUp();
    ASSERT_NO_FATAL_FAILURE();
    ASSERT_NO_FATAL_FAILURE(MakeProgramFolder(dir_.File("Program"), kFirstKeys));
    const std::string root = program_ + "\\DataHtml\\";
    outside_ = dir_.File("Outside");
    for (const std::string& f : {root + "Shop\\Deep", outside_, outside_ + "\\inner"})
      CreateDirectoryA(f.c_str(), nullptr);
    std::string registry = std::string(kRegistryHeader) + "\r\n";
    for (const char* page : {"form.htm", "Shop\\order.htm", "Shop\\Deep\\deep.htm"}) {
      WriteText(root + page, std::strstr(kFormPage, "<html>"));
      registry += std::string("127.0.0.1/") + page + "\r\n" + root + page + "\r\n";
    }
    WriteText(program_ + "\\" + kRegistryFileName, registry);
    WriteText(outside_ + "\\keep.htm", "<form action=/x method=post></form>");
    WriteText(outside_ + "\\inner\\Data.dat", "not a database");
    ASSERT_TRUE(SaveDatabase(Database("Second.dat"), *OwnedTable(kSecondKeys)));
    ASSERT_TRUE(MakeUnixLink(root, "Elsewhere", "../../Outside"));
    outsideBefore_ = Files(outside_);
    ASSERT_EQ(outsideBefore_.size(), 3u);  // keep.htm, inner\ and inner\Data.dat
    std::strcpy(Settings().slotNames[1].data(), "Second.dat");
    ShowBrowser();
    ASSERT_TRUE(OpenProgram());
    accelerators_ = LoadAcceleratorsA(Instance(), kMainClassName);
    g_monkey = this;
  }

  void TearDown() override {
    g_monkey = nullptr;
    ProgramFolderTest::TearDown();
  }

  // --- the log, the watchdog and the report -------------------------------

  void Log(const std::string& action) {
    std::lock_guard<std::mutex> lock(logMutex_);
    log_.push_back(std::to_string(++actions_) + " " + action);
    if (log_.size() > 50) log_.pop_front();
    beat_ = Clock::now().time_since_epoch().count();
  }

  // Reports the seed and the last actions, to replay the run, and ends it.
  [[noreturn]] void Die(const std::string& what) {
    std::lock_guard<std::mutex> lock(logMutex_);
    std::fprintf(stderr, "monkey: %s\nmonkey: seed %llu after %llu actions; the last ones:\n", what.c_str(), seed_,
                 actions_);
    for (const std::string& line : log_) std::fprintf(stderr, "  %s\n", line.c_str());
    std::fflush(stderr);
    TerminateProcess(GetCurrentProcess(), 3);
    std::abort();
  }

  // Fails the run when the user-interface thread stops answering for 10 seconds or
  // one action of the main window does not come back within 40.
  void Watch() {
    const auto since = [](Clock::rep then) { return Clock::now() - Clock::time_point(Clock::duration(then)); };
    while (!done_) {
      Sleep(200);
      if (since(beat_) > std::chrono::seconds(10)) Die("hang: nothing happened for 10 seconds");
      if (actionStart_ && since(actionStart_) > std::chrono::seconds(40))
        Die("hang: one action did not return within 40 seconds");
    }
  }

  static LONG WINAPI OnCrash(EXCEPTION_POINTERS* e) {
    char text[80];
    std::snprintf(text, sizeof text, "crash: exception %08lx", e->ExceptionRecord->ExceptionCode);
    g_monkey->Die(text);
  }

  // --- dialogs and boxes ---------------------------------------------------

  static BOOL CALLBACK CollectShown(HWND w, LPARAM out) {
    if (IsWindowVisible(w) && IsWindowEnabled(w)) reinterpret_cast<std::vector<HWND>*>(out)->push_back(w);
    return TRUE;
  }

  // The window that has the user: an enabled dialog of this thread other than the
  // main window and the browser.
  HWND ModalWindow() const {
    std::vector<HWND> windows;
    EnumThreadWindows(GetCurrentThreadId(), CollectShown, reinterpret_cast<LPARAM>(&windows));
    for (HWND w : windows)
      if (w != window_ && w != browser_ && ClassOf(w) == "#32770") return w;
    return nullptr;
  }

  static void Post(HWND dialog, int id, WORD code = BN_CLICKED, HWND control = nullptr) {
    PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, code), reinterpret_cast<LPARAM>(control));
  }

  // One answer to the dialog or box on top, on every tick of the timer: a file
  // name, typing, a press or a choice in a random control; a window that stays
  // open is cancelled, then closed, then reported.
  void ActOnModalWindow() {
    beat_ = Clock::now().time_since_epoch().count();
    if (HWND menu = FindWindowA("#32768", nullptr); menu && IsWindowVisible(menu)) {
      Log("close the menu");
      EndMenu();
      return;
    }
    HWND dialog = ModalWindow();
    if (!dialog) return;
    const int count = ++modalActions_[dialog];
    const std::string caption = "[" + WindowText(dialog) + "] ";
    if (count > 120) Die("the window " + caption + "does not close");
    if (count > 60) {
      Log(caption + "WM_CLOSE");
      PostMessageA(dialog, WM_CLOSE, 0, 0);
      return;
    }
    if (count > 30 || Pick(10) == 0) {
      Log(caption + "Cancel");
      return Post(dialog, IDCANCEL);
    }
    if (HWND field = GetDlgItem(dialog, GetDlgItem(dialog, cmb13) ? cmb13 : edt1)) {
      // Shorter than a path may be: Wine's open dialog overruns its stack on a longer one.
      const std::string names[] = {"Data.dat", "Second.dat", "Third.dat", "x", outside_ + "\\o.dat",
                                   "..\\..\\Outside\\p.dat", "..\\DataHtml\\form.htm", "nofolder\\x.dat"};
      const std::string& name = names[Pick(std::size(names))];
      Log(caption + "file name " + name + ", OK");
      SetWindowTextA(field, name.c_str());
      return Post(dialog, IDOK);
    }
    std::vector<HWND> controls;
    EnumChildWindows(dialog, CollectShown, reinterpret_cast<LPARAM>(&controls));
    if (controls.empty()) return;
    HWND control = controls[Pick(controls.size())];
    const std::string cls = ClassOf(control);
    const int id = GetDlgCtrlID(control);
    const std::string name = caption + cls + " " + std::to_string(id) + " \"" + WindowText(control).substr(0, 20) + "\"";
    if (cls == "Edit") {
      const std::string& text = texts_[Pick(texts_.size())];
      Log(name + " type " + std::to_string(text.size()) + " chars \"" + text.substr(0, 20) + "\"");
      SendMessageA(control, EM_SETSEL, 0, -1);
      SendMessageA(control, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
    } else if (cls == "Button") {
      // Help starts the help viewer, another program, which the run leaves alone.
      const LONG style = GetWindowLongA(control, GWL_STYLE) & BS_TYPEMASK;
      if (id == IDHELP || style == BS_GROUPBOX) return;
      if (style == BS_AUTOCHECKBOX || style == BS_AUTORADIOBUTTON || style == BS_CHECKBOX)
        SendMessageA(control, BM_SETCHECK, !SendMessageA(control, BM_GETCHECK, 0, 0), 0);
      Log(name + " press");
      Post(dialog, id, BN_CLICKED, control);
    } else if (cls == "SysListView32" || cls == "ListBox" || cls == "ComboBox") {
      const bool view = cls[0] == 'S', box = cls[0] == 'L';
      const LRESULT rows = SendMessageA(control, view ? LVM_GETITEMCOUNT : box ? LB_GETCOUNT : CB_GETCOUNT, 0, 0);
      if (rows <= 0) return;
      const int row = static_cast<int>(Pick(rows));
      const bool twice = cls[0] != 'C' && Pick(4) == 0;
      Log(name + (twice ? " double click row " : " choose row ") + std::to_string(row));
      if (!view) {
        SendMessageA(control, box ? LB_SETCURSEL : CB_SETCURSEL, row, 0);
        Post(dialog, id, box ? LBN_SELCHANGE : CBN_SELCHANGE, control);
        if (twice) Post(dialog, id, LBN_DBLCLK, control);
        return;
      }
      ListView_SetItemState(control, row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
      NMITEMACTIVATE n{};
      n.hdr = {control, static_cast<UINT_PTR>(id), static_cast<UINT>(NM_DBLCLK)};
      n.iItem = row;
      if (twice) SendMessageA(dialog, WM_NOTIFY, id, reinterpret_cast<LPARAM>(&n));
    }
  }

  // --- actions on the main window -------------------------------------------

  std::size_t Pick(std::size_t n) { return n ? std::uniform_int_distribution<std::size_t>(0, n - 1)(rng_) : 0; }

  HWND AnyList() { return Pick(2) ? App().keysView : App().linksView; }

  // A point on a random row of `list` (or below the rows), in its client coordinates.
  POINT RowPoint(HWND list) {
    const int rows = ListView_GetItemCount(list);
    const int row = static_cast<int>(Pick(rows + 1));
    RECT r{LVIR_BOUNDS, 0, 0, 0};
    if (row < rows && SendMessageA(list, LVM_GETITEMRECT, row, reinterpret_cast<LPARAM>(&r)))
      return POINT{r.left + 20, (r.top + r.bottom) / 2};
    GetClientRect(list, &r);
    return POINT{r.right / 2, r.bottom - 5};
  }

  // A press at `p` in `window` and its release, as the mouse sends them: the
  // pointer put there, the release waiting in the queue (a list watches the
  // queue for it before it acts on the press). With `drop`, the press becomes a
  // drag that ends there, in the main window's client coordinates.
  void Mouse(const std::string& what, HWND window, POINT p, UINT down, const POINT* drop = nullptr) {
    Log(what + " at " + std::to_string(p.x) + "," + std::to_string(p.y));
    PointerAt(window, p);
    if (drop) {
      PostMessageA(window, down, MK_LBUTTON, MAKELPARAM(p.x, p.y));
      PostMessageA(window, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(p.x + 20, p.y + 20));
      Drain();
      return DropAt(*drop);
    }
    PostMessageA(window, down == WM_RBUTTONDOWN ? WM_RBUTTONUP : WM_LBUTTONUP, 0, MAKELPARAM(p.x, p.y));
    SendMessageA(window, down, down == WM_RBUTTONDOWN ? MK_RBUTTON : MK_LBUTTON, MAKELPARAM(p.x, p.y));
  }

  // A row clicked, or dragged onto a row of either list.
  void OnList(const char* what, UINT down, bool drag = false) {
    HWND list = AnyList();
    HWND target = Pick(4) ? list : AnyList();
    POINT drop = RowPoint(target);
    MapWindowPoints(target, window_, &drop, 1);
    Mouse(std::string(what) + (list == App().keysView ? " Keys" : " Links"), list, RowPoint(list), down,
          drag ? &drop : nullptr);
  }

  // A button of the tool bar or the databases bar clicked, or the bar dragged by
  // its grip to anywhere over the main window.
  void OnBar() {
    DockBar& bar = Pick(2) ? ToolBarDescriptor() : DatabaseBarDescriptor();
    const char* name = &bar == &ToolBarDescriptor() ? "tool bar" : "databases bar";
    if (!bar.window || !IsWindowVisible(bar.window)) return Log(std::string(name) + " hidden");
    const std::vector<RECT> buttons = BarButtonRects(bar);
    const std::size_t which = Pick(buttons.size() + 1);
    if (which == buttons.size()) {
      RECT client;
      GetClientRect(window_, &client);
      const POINT drop{static_cast<LONG>(Pick(client.right + 1)), static_cast<LONG>(Pick(client.bottom + 1))};
      return Mouse(std::string(name) + " grip", bar.window, Centre(BarGripRect(bar)), WM_LBUTTONDOWN, &drop);
    }
    // Help starts the help viewer, another program, which the run leaves alone.
    if (bar.kind && static_cast<int>(which) < bar.kind->count && bar.kind->buttons[which].command == IDM_HELP_TOPICS)
      return Log(std::string(name) + " Help left out");
    Mouse(std::string(name) + " button " + std::to_string(which), bar.window, Centre(buttons[which]), WM_LBUTTONDOWN);
  }

  void Key() {
    HWND focus = GetFocus() ? GetFocus() : window_;
    const WPARAM key = kKeys[Pick(std::size(kKeys))];
    const bool control = key >= 'A' && key <= 'Z' && Pick(2);
    Log(std::string("key ") + (control ? "Ctrl+" : "") + std::to_string(key) + " to " + ClassOf(focus));
    BYTE state[256];
    GetKeyboardState(state);
    const BYTE ctrl = state[VK_CONTROL];
    state[VK_CONTROL] = control ? 0x80 : ctrl;
    SetKeyboardState(state);
    MSG msg{focus, WM_KEYDOWN, key, 1, 0, {}};
    if (IsEditControl(focus) || !TranslateAcceleratorA(focus, accelerators_, &msg)) {
      TranslateMessage(&msg);
      DispatchMessageA(&msg);
      msg.message = WM_KEYUP;
      DispatchMessageA(&msg);
    }
    state[VK_CONTROL] = ctrl;
    SetKeyboardState(state);
  }

  void Restart() {
    Log("close the program and start it again");
    SendMessageA(window_, WM_CLOSE, 0, 0);
    Drain();
    if (IsWindow(window_)) return;  // the user cancelled the save prompt
    window_ = nullptr;
    const Bytes settings = ReadBytes(program_ + "\\pellwick.cfg");
    if (settings.size() != kSettingsFileSize) Die("settings file of " + Size(settings) + " after close");
    // What a new start begins with; the main window resets its lists and slot itself.
    Settings() = AppSettings{};
    LoadOrSaveSettings(kLoadSettings);
    ClearAllKeys(Keys());
    SetCurrentLinksFolder("");
    if (!OpenProgram()) Die("the program did not start again");
    checkedName_ = "?";
    lagging_ = false;
  }

  struct Action {
    int weight;
    std::function<void()> run;
  };

  std::vector<Action> Actions() {
    return {
        {30, [this] {
           const WORD id = kCommands[Pick(std::size(kCommands))];
           Log("command " + std::to_string(id));
           SendMessageA(window_, WM_COMMAND, id, 0);
         }},
        {12, [this] { OnList("click", WM_LBUTTONDOWN); }},
        {5, [this] { OnList("double click", WM_LBUTTONDBLCLK); }},
        {4, [this] { OnList("right click", WM_RBUTTONDOWN); }},
        {4, [this] { OnList("drag", WM_LBUTTONDOWN, true); }},
        {6, [this] { OnBar(); }},
        {16, [this] { Key(); }},
        {4, [this] {
           HWND list = AnyList();
           Log(list == App().keysView ? "focus Keys" : "focus Links");
           SetFocus(list);
         }},
        {2, [this] {
           Log("click the Keys column");
           const int id = GetDlgCtrlID(App().keysView);
           NMLISTVIEW n{};
           n.hdr = {App().keysView, static_cast<UINT_PTR>(id), static_cast<UINT>(LVN_COLUMNCLICK)};
           SendMessageA(window_, WM_NOTIFY, id, reinterpret_cast<LPARAM>(&n));
         }},
        {3, [this] {
           const char* addresses[] = {"http://127.0.0.1/form.htm", "http://127.0.0.1/Shop/order.htm",
                                      "127.0.0.1/new", "", "http://", "http://127.0.0.1/../../x"};
           const char* address = addresses[Pick(std::size(addresses))];
           Log(std::string("browser shows ") + address);
           SetWindowTextA(FindWindowExA(browser_, nullptr, "Edit", nullptr), address);
         }},
        {1, [this] { Restart(); }},
    };
  }

  // --- invariants -------------------------------------------------------------

  std::map<std::string, Bytes> Databases() const { return Files(program_ + "\\Databases"); }

  void CheckTable(const Bytes& tableBefore) {
    const KeyTable& keys = Keys();
    if (keys.count < 0 || keys.count > kMaxKeys) Die("key count " + std::to_string(keys.count));
    for (int i = 0; i < kMaxKeys; ++i) {
      for (int f = 0; f < kKeyFieldCount; ++f) {
        const TextBlock block = keys.fields[f][i];
        if (block == kNoBlock) continue;
        const std::string at = " at key " + std::to_string(i);
        if (i >= keys.count) Die("a block past the count" + at);
        if (!IsTextBlock(block)) Die("a dead block" + at);
        if (TextLock(block).text().size() > kMaxFieldLength) Die("a text over its limit" + at);
      }
    }
    const std::string name = SlotNameText(CurrentSlotName());
    const std::string nameBefore = std::exchange(checkedName_, name);
    if (name.empty()) return;
    HWND list = App().keysView;
    if (ListView_GetItemCount(list) != keys.count) {
      // Open names the slot before its save prompt, and a Cancel there keeps the
      // table: the keys of a slot that had no name were never listed, and the view
      // shows them at its next fill. Any other naming loads the table and fills.
      // Once lagging, the view goes on lagging through more such namings, and while
      // keys are added under the same name.
      const bool tableKept = DatabaseBytes(keys) == tableBefore;
      if ((nameBefore.empty() || lagging_) && (tableKept || name == nameBefore)) {
        lagging_ = true;
        return;
      }
      Die("the Keys view shows " + std::to_string(ListView_GetItemCount(list)) + " rows for " +
          std::to_string(keys.count) + " keys");
    }
    lagging_ = false;
    for (int row = 0; row < keys.count; ++row) {
      char text[260] = {};
      ListView_GetItemText(list, row, 0, text, sizeof text);
      if (KeyFieldText(keys, row, kName).substr(0, sizeof text - 1) != text)
        Die("row " + std::to_string(row) + " shows \"" + text + "\" for key \"" + KeyFieldText(keys, row, kName) + "\"");
    }
  }

  // A database file written during the action holds the table as it was before
  // the action (a save prompt) or as it is after it.
  void CheckSaved(const std::map<std::string, Bytes>& before, const Bytes& tableBefore) {
    const Bytes tableAfter = DatabaseBytes(Keys());
    for (const auto& [name, bytes] : Databases()) {
      auto old = before.find(name);
      if (old != before.end() && old->second == bytes) continue;
      if (name.size() > 4 && name.substr(name.size() - 4) == ".tmp") continue;
      if (bytes != tableBefore && bytes != tableAfter)
        Die(name + " was written with " + Size(bytes) + ", neither the table before (" + Size(tableBefore) +
            ") nor after (" + Size(tableAfter) + ")");
    }
  }

  // Nothing changed in the folder beside the program folder, nothing was made
  // beside the two, and the registry's lines stay within what its reader takes.
  void CheckOutsideAndRegistry() {
    if (Files(outside_) != outsideBefore_) Die("the folder beside the program folder changed");
    if (std::distance(std::filesystem::directory_iterator(dir_.path()), {}) != 2)
      Die("something was made beside the program folder");
    std::ifstream registry(program_ + "\\" + kRegistryFileName);
    for (std::string line; std::getline(registry, line);)
      if (line.size() > kRegistryLineMax + 1) Die("a registry line of " + std::to_string(line.size()) + " characters");
  }

  void Run() {
    seed_ = FromEnvironment("QB_MONKEY_SEED", Clock::now().time_since_epoch().count() % 1000000007);
    const int seconds = static_cast<int>(FromEnvironment("QB_MONKEY_SECONDS", 60));
    std::printf("monkey: seed %llu for %d seconds (QB_MONKEY_SEED=%llu QB_MONKEY_SECONDS=%d to replay)\n", seed_,
                seconds, seed_, seconds);
    std::fflush(stdout);
    rng_.seed(seed_);
    texts_ = TypedTexts(outside_);
    beat_ = Clock::now().time_since_epoch().count();
    SetUnhandledExceptionFilter(OnCrash);
    std::thread watchdog([this] { Watch(); });
    const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, OnTick);
    const std::vector<Action> actions = Actions();
    int total = 0;
    for (const Action& a : actions) total += a.weight;
    const auto end = Clock::now() + std::chrono::seconds(seconds);
    while (Clock::now() < end) {
      auto before = Databases();
      const Bytes tableBefore = DatabaseBytes(Keys());
      int roll = static_cast<int>(Pick(total));
      std::size_t i = 0;
      while (roll >= actions[i].weight) roll -= actions[i++].weight;
      actionStart_ = Clock::now().time_since_epoch().count();
      actions[i].run();
      Drain();
      actionStart_ = 0;
      modalActions_.clear();
      if (!IsWindow(window_)) Die("the main window went away");
      CheckTable(tableBefore);
      CheckSaved(before, tableBefore);
      CheckOutsideAndRegistry();
    }
    KillTimer(nullptr, timer);
    done_ = true;
    watchdog.join();
    std::printf("monkey: %llu actions in %d seconds, seed %llu\n", actions_, seconds, seed_);
  }

  std::string outside_;
  std::map<std::string, Bytes> outsideBefore_;
  HACCEL accelerators_ = nullptr;
  std::mt19937_64 rng_;
  unsigned long long seed_ = 0;  // as printf takes it
  std::vector<std::string> texts_;
  std::map<HWND, int> modalActions_;
  // The slot's name at the last check ("?" before the first, which no file has),
  // and whether the Keys view may lag behind the table.
  std::string checkedName_ = "?";
  bool lagging_ = false;
  std::mutex logMutex_;
  std::deque<std::string> log_;
  unsigned long long actions_ = 0;
  std::atomic<Clock::rep> beat_{0};
  std::atomic<Clock::rep> actionStart_{0};
  std::atomic<bool> done_{false};
};

TEST_F(Monkey, ClicksLikeACarelessUser) {
  LoopbackServer server(LoopbackReply{{kFormPage}});
  ASSERT_TRUE(server.listening()) << server.error();
  Run();
}

}  // namespace
}  // namespace qb::test
