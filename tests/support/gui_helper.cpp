#include "tests/support/gui_helper.h"

#include <dlgs.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <set>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace qb::test {
namespace {

using Clock = std::chrono::steady_clock;
constexpr int kPollMs = 5;
constexpr int kSettleMs = 1000;
constexpr UINT kSendTimeoutMs = 3000;
constexpr int kMessageBoxTextId = 0xFFFF;

std::string StripMnemonics(const std::string& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '&' && i + 1 < text.size()) ++i;  // "&&" keeps one '&'
    out += text[i];
  }
  return out;
}

// A message to a window of the thread under test, which may be busy: given up
// after a while rather than waited for.
DWORD_PTR Send(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
  DWORD_PTR result = 0;
  SendMessageTimeoutA(window, message, wParam, lParam, SMTO_NORMAL, kSendTimeoutMs, &result);
  return result;
}

bool IsButton(const ControlInfo& c) { return _stricmp(c.className.c_str(), "Button") == 0; }

BOOL CALLBACK AddControl(HWND child, LPARAM param) {
  auto* snap = reinterpret_cast<WindowSnapshot*>(param);
  if (GetParent(child) != snap->window) return TRUE;  // direct children only
  ControlInfo c{GetDlgCtrlID(child), ClassOf(child), WindowText(child), IsWindowEnabled(child) != FALSE};
  if (IsButton(c)) c.checked = static_cast<int>(Send(child, BM_GETCHECK));
  snap->controls.push_back(c);
  return TRUE;
}

WindowSnapshot Snapshot(HWND window) {
  WindowSnapshot s{window, WindowText(window), {}};
  EnumChildWindows(window, AddControl, reinterpret_cast<LPARAM>(&s));
  return s;
}

BOOL CALLBACK CollectWindow(HWND w, LPARAM p) {
  reinterpret_cast<std::vector<HWND>*>(p)->push_back(w);
  return TRUE;
}

std::vector<HWND> TopLevelWindows() {
  std::vector<HWND> windows;
  EnumWindows(CollectWindow, reinterpret_cast<LPARAM>(&windows));
  return windows;
}

// A visible, enabled dialog-class window of the thread (any thread with
// anyProcess) that is among `among` or not: the modal window on top of its owner.
// With shownOnly false, also a window that never became visible (a dialog that
// failed to show itself must still be closed, or the action would never return).
HWND FindModal(DWORD thread, const ModalOptions& options, const std::set<HWND>& among, bool inAmong,
               bool shownOnly = true) {
  for (HWND w : TopLevelWindows()) {
    if (!options.anyProcess && GetWindowThreadProcessId(w, nullptr) != thread) continue;
    if (shownOnly && (!IsWindowVisible(w) || !IsWindowEnabled(w))) continue;
    if (ClassOf(w) == "#32770" && (among.count(w) != 0) == inAmong && !(options.passOver && options.passOver(w)))
      return w;
  }
  return nullptr;
}

}  // namespace

std::string ClassOf(HWND window) {
  char name[256] = {};
  GetClassNameA(window, name, sizeof(name));
  return name;
}

std::string WindowText(HWND window) {
  DWORD_PTR length = 0;
  if (!SendMessageTimeoutA(window, WM_GETTEXTLENGTH, 0, 0, SMTO_NORMAL, kSendTimeoutMs, &length))
    return {};
  std::string text(length + 1, '\0');
  const DWORD_PTR copied = Send(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
  text.resize(std::min<std::size_t>(copied, length));
  return text;
}

std::string WindowSnapshot::MessageText() const {
  const ControlInfo* c = Control(kMessageBoxTextId);
  return c ? c->text : std::string();
}

const ControlInfo* WindowSnapshot::Control(int id) const {
  for (const auto& c : controls)
    if (c.id == id) return &c;
  return nullptr;
}

const ControlInfo* WindowSnapshot::ControlByText(const std::string& text) const {
  for (const auto& c : controls)
    if (StripMnemonics(c.text) == text) return &c;
  return nullptr;
}

std::vector<std::string> WindowSnapshot::ButtonTexts() const {
  std::vector<std::string> out;
  for (const auto& c : controls)
    if (IsButton(c)) out.push_back(StripMnemonics(c.text));
  return out;
}

ModalStep Press(const std::string& buttonText) {
  return Custom([buttonText](HWND window, const WindowSnapshot& snap) {
    for (const auto& c : snap.controls)
      if (IsButton(c) && c.enabled && StripMnemonics(c.text) == buttonText) return ClickButton(window, c.id);
    throw std::runtime_error("no enabled button \"" + buttonText + "\" in \"" + snap.caption + "\"");
  });
}

ModalStep Command(int id) {
  return Custom([id](HWND window, const WindowSnapshot&) { ClickButton(window, id); });
}

ModalStep ChooseFile(const std::string& path) {
  return Custom([path](HWND window, const WindowSnapshot& snap) {
    // The file-name field is a combo box (cmb13) in newer dialogs, an edit (edt1) in older ones.
    const int field = snap.Control(cmb13) ? cmb13 : edt1;
    if (!snap.Control(field)) throw std::runtime_error("no file-name field in \"" + snap.caption + "\"");
    SetControlText(window, field, path);
    ClickButton(window, IDOK);
  });
}

ModalStep Custom(ModalAction action) { return ModalStep{std::move(action)}; }

ModalStep Again(ModalStep step) {
  step.again = true;
  return step;
}

void SetControlText(HWND dialog, int id, const std::string& text) {
  Send(GetDlgItem(dialog, id), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void SetCheck(HWND dialog, int id, bool checked) {
  Send(GetDlgItem(dialog, id), BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED);
}

void ClickButton(HWND dialog, int id) {
  PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

void ClickWithMouse(HWND window) {
  RECT r{};
  GetWindowRect(window, &r);
  // Each event carries its place (0..65535 across the screen): the pointer's own
  // position may still be catching up with an earlier move.
  const auto scale = [](LONG at, int extent) { return static_cast<LONG>((at * 65536LL + extent / 2) / extent); };
  const LONG x = scale((r.left + r.right) / 2, GetSystemMetrics(SM_CXSCREEN));
  const LONG y = scale((r.top + r.bottom) / 2, GetSystemMetrics(SM_CYSCREEN));
  INPUT click[2] = {};
  for (int i = 0; i < 2; ++i) {
    click[i].type = INPUT_MOUSE;
    const DWORD button = i ? MOUSEEVENTF_LEFTUP : MOUSEEVENTF_LEFTDOWN;
    click[i].mi = {x, y, 0, MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | button, 0, 0};
  }
  SendInput(2, click, sizeof(INPUT));
}

bool MakeUnixLink(const std::string& folder, const std::string& name, const std::string& target) {
  std::string command = "Z:\\bin\\ln -s " + target + " " + name;
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, folder.c_str(), &startup,
                      &process))
    return false;
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  // The handle may be Wine's starter's, gone before the link is there.
  const std::string link = folder + "\\" + name;
  return PumpUntil([&] { return GetFileAttributesA(link.c_str()) != INVALID_FILE_ATTRIBUTES; }, 10000);
}

std::string ModalResult::Describe() const {
  std::ostringstream out;
  for (const auto& e : errors) out << "error: " << e << "\n";
  for (const auto& u : unexpected)
    out << "unexpected window \"" << u.caption << "\": " << u.MessageText() << "\n";
  return out.str();
}

ModalResult RunModal(const std::function<void()>& action, std::vector<ModalStep> steps,
                     ModalOptions options) {
  ModalResult result;
  const DWORD thread = GetCurrentThreadId();
  std::atomic<bool> actionDone{false};
  // Windows already open do not count as opened by the action.
  const std::vector<HWND> open = TopLevelWindows();
  std::set<HWND> handled(open.begin(), open.end());
  std::set<HWND> answered;  // by a step, for an Again step to find

  std::thread watcher([&] {
    for (std::size_t i = 0; i < steps.size(); ++i) {
      HWND window = nullptr;
      PollUntil([&] {
        window = steps[i].again ? FindModal(thread, options, answered, true)
                                : FindModal(thread, options, handled, false);
        return window || actionDone;
      }, options.stepTimeoutMs);
      if (!window) {
        result.errors.push_back("step " + std::to_string(i + 1) + ": no modal window appeared");
        break;
      }
      handled.insert(window);
      answered.insert(window);
      WindowSnapshot snap = Snapshot(window);
      result.seen.push_back(snap);
      try {
        steps[i].act(window, snap);
      } catch (const std::exception& e) {
        result.errors.push_back("step " + std::to_string(i + 1) + ": " + e.what());
        PostMessageA(window, WM_COMMAND, IDCANCEL, 0);
      }
      // The answer takes effect on the thread under test: wait until the window is
      // gone or covered by a box of its own before looking for the next one. A
      // window that stays open and active is left for an Again step.
      PollUntil([&] { return !IsWindow(window) || !IsWindowVisible(window) || !IsWindowEnabled(window) || actionDone; },
              kSettleMs);
    }
    // Anything else that opens before the action ends was not foreseen: cancel it.
    const bool failed = !result.errors.empty();
    while (!actionDone) {
      HWND extra = FindModal(thread, options, handled, false, !failed);
      if (extra) {
        handled.insert(extra);
        result.unexpected.push_back(Snapshot(extra));
        PostMessageA(extra, WM_COMMAND, IDCANCEL, 0);
        PostMessageA(extra, WM_CLOSE, 0, 0);
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(kPollMs));
    }
  });

  action();
  actionDone = true;
  watcher.join();
  return result;
}

ModalResult RunAnswered(const std::function<void()>& action, std::vector<ModalStep> steps,
                        ModalOptions options) {
  const std::size_t count = steps.size();
  ModalResult result = RunModal(action, std::move(steps), std::move(options));
  EXPECT_TRUE(result.ok()) << result.Describe();
  if (result.seen.size() < count) result.seen.resize(count);
  return result;
}

bool PollUntil(const std::function<bool()>& condition, int timeoutMs) {
  const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  while (!condition()) {
    if (Clock::now() >= deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(kPollMs));
  }
  return true;
}

bool PumpUntil(const std::function<bool()>& condition, int timeoutMs) {
  const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  while (!condition()) {
    if (Clock::now() >= deadline) return false;
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&msg);
      DispatchMessageA(&msg);
    }
    MsgWaitForMultipleObjects(0, nullptr, FALSE, kPollMs, QS_ALLINPUT);
  }
  return true;
}

}  // namespace qb::test
