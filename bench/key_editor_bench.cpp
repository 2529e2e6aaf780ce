// Opening the key editor: from the call until its WM_INITDIALOG has returned (the
// key list filled with one row per key, the chosen key's fields in the edits) and
// until its message loop first goes idle (shown and painted). An empty table
// beside a full one of 2000 keys, in add mode and in modify mode with the middle
// key chosen in a Keys view of 2000 rows. Prints minima, medians and maxima.
//   key_editor_bench [RUNS]      (under Wine with a display: scripts/wine-session.sh)
#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "base/app_state.h"
#include "keys/key_editor.h"
#include "keys/key_rows.h"
#include "keys/key_table.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kSearchNamesPerKey = 10;
// The first dialogs a process opens under Wine pay for loading and caching (fonts,
// classes, themes); these runs are not counted.
constexpr int kWarmUpRuns = 5;

Clock::time_point g_opened, g_initDone, g_idle;

double Ms(Clock::duration d) { return std::chrono::duration<double, std::milli>(d).count(); }

LRESULT CALLBACK AfterMessage(int code, WPARAM wParam, LPARAM lParam) {
  const auto* message = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
  if (code == HC_ACTION && message->message == WM_INITDIALOG) g_initDone = Clock::now();
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

// The owner hears when the dialog's loop has nothing left to do, and cancels it.
LRESULT CALLBACK OwnerProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_ENTERIDLE && wParam == MSGF_DIALOGBOX) {
    g_idle = Clock::now();
    PostMessageA(reinterpret_cast<HWND>(lParam), WM_COMMAND, IDCANCEL, 0);
    return 0;
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

void FillKeys(int count) {
  qb::KeyTable& keys = qb::Keys();
  qb::ClearAllKeys(keys);
  for (int k = 0; k < count; ++k) {
    std::string names;
    for (int e = 0; e < kSearchNamesPerKey; ++e) names += "field" + std::to_string(k) + "_" + std::to_string(e) + ",";
    qb::SetKeyField(keys, k, qb::kName, "Key number " + std::to_string(k));
    qb::SetKeyField(keys, k, qb::kSearchNames, names);
    qb::SetKeyField(keys, k, qb::kSelection, "first\r\nsecond\r\nthird");
    qb::SetKeyField(keys, k, qb::kDescription, "The text of key " + std::to_string(k));
  }
  keys.count = count;
}

// A Keys view of `rows` rows with the middle one selected, as the main window has it.
HWND MakeKeysView(int rows) {
  HWND view = CreateWindowExA(0, WC_LISTVIEWA, "", WS_POPUP | LVS_REPORT | LVS_SINGLESEL, 0, 0, 200, 400,
                              nullptr, nullptr, nullptr, nullptr);
  qb::AddFullWidthColumn(view);
  for (int i = 0; i < rows; ++i) qb::AddKeyRow(view, i, qb::KeyFieldText(qb::Keys(), i, qb::kName));
  ListView_SetItemState(view, rows / 2, LVIS_SELECTED, LVIS_SELECTED);
  return view;
}

struct Figures {
  std::vector<double> init, idle;
};

Figures Measure(HWND owner, int mode, int runs) {
  Figures f;
  for (int run = 0; run < runs; ++run) {
    g_opened = Clock::now();
    if (qb::OpenKeyEditor(owner, mode) < 0) {
      std::printf("the key editor did not open (error %lu)\n", GetLastError());
      std::exit(1);
    }
    f.init.push_back(Ms(g_initDone - g_opened));
    f.idle.push_back(Ms(g_idle - g_opened));
  }
  return f;
}

void Print(const char* label, std::vector<double> v) {
  std::sort(v.begin(), v.end());
  std::printf("  %-36s min %6.2f   median %6.2f   max %6.2f ms\n", label, v.front(), v[v.size() / 2], v.back());
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
  HINSTANCE instance = GetModuleHandleA(nullptr);
  qb::App().instance = instance;
  INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_LISTVIEW_CLASSES};
  InitCommonControlsEx(&controls);
  WNDCLASSA owner{};
  owner.lpfnWndProc = OwnerProc;
  owner.hInstance = instance;
  owner.lpszClassName = "KeyEditorBenchOwner";
  RegisterClassA(&owner);
  HWND window = CreateWindowExA(0, owner.lpszClassName, "", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr,
                                nullptr, instance, nullptr);
  if (!window) {
    std::printf("no window: is there a display? (scripts/wine-session.sh start)\n");
    return 1;
  }
  HHOOK hook = SetWindowsHookExA(WH_CALLWNDPROCRET, AfterMessage, nullptr, GetCurrentThreadId());

  std::printf("key editor, %d runs each\n", runs);
  struct Case {
    const char* label;
    int keys;
    int mode;
  };
  for (const Case& c : {Case{"0 keys, add", 0, qb::kEditorAdd}, Case{"2000 keys, add", qb::kMaxKeys, qb::kEditorAdd},
                        Case{"2000 keys, modify key 1000", qb::kMaxKeys, qb::kEditorModify}}) {
    FillKeys(c.keys);
    qb::App().keysView = MakeKeysView(c.keys);
    Measure(window, c.mode, kWarmUpRuns);
    const Figures f = Measure(window, c.mode, runs);
    std::printf("%s\n", c.label);
    Print("to WM_INITDIALOG done (list filled)", f.init);
    Print("to first idle (shown, painted)", f.idle);
    DestroyWindow(qb::App().keysView);
  }
  UnhookWindowsHookEx(hook);
  DestroyWindow(window);
  qb::ClearAllKeys(qb::Keys());
  return 0;
}
