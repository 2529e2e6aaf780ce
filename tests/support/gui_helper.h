// Drives message boxes and modal dialogs through their real controls.
//
// RunModal runs an action on the calling thread (the user-interface thread of the
// test). A watcher thread waits for each modal window that the action opens, in
// order, takes a snapshot of its caption and controls, and answers it as the step
// says: press a named button, send a command id, or anything a custom step does.
// A modal window that no step expects is recorded and cancelled, so a test never
// hangs on a box it did not foresee.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace qb::test {

struct ControlInfo {
  int id = 0;
  std::string className;
  std::string text;
  bool enabled = false;
  int checked = 0;  // BM_GETCHECK for buttons, 0 otherwise
};

struct WindowSnapshot {
  HWND window = nullptr;
  std::string caption;
  std::vector<ControlInfo> controls;

  // The message text of a message box (its static text control).
  std::string MessageText() const;
  const ControlInfo* Control(int id) const;
  // The control whose text, without '&' marks, equals `text`.
  const ControlInfo* ControlByText(const std::string& text) const;
  // Texts of all buttons, without '&' marks, in child order.
  std::vector<std::string> ButtonTexts() const;
};

// What to do with one modal window. Runs on the watcher thread; the window belongs
// to the thread under test, so use SendMessage/PostMessage on it.
using ModalAction = std::function<void(HWND window, const WindowSnapshot& snapshot)>;

struct ModalStep {
  ModalAction act;
  bool again = false;  // the step answers a window an earlier step answered
};

// Presses the button whose text (without '&') is `buttonText`, as a click would.
ModalStep Press(const std::string& buttonText);
// Sends WM_COMMAND with `id` (BN_CLICKED) to the window.
ModalStep Command(int id);
// Types `path` into the file-name field of a common open or save dialog and
// presses its Open (Save) button.
ModalStep ChooseFile(const std::string& path);
// A step of one's own.
ModalStep Custom(ModalAction action);
// The same kinds, for a window that an earlier step answered (say a dialog that
// stayed open after a message box it raised was closed).
ModalStep Again(ModalStep step);

// Helpers usable inside custom steps.
void SetControlText(HWND dialog, int id, const std::string& text);
void SetCheck(HWND dialog, int id, bool checked);
void ClickButton(HWND dialog, int id);
// A left click in the middle of `window` through the system's input, as the
// mouse makes it: it reaches whatever the user could reach there (nothing, when
// the window is disabled behind a modal one). Clicks are handled in their order.
void ClickWithMouse(HWND window);

struct ModalResult {
  std::vector<WindowSnapshot> seen;        // one per step answered, in order
  std::vector<WindowSnapshot> unexpected;  // windows no step was left for
  std::vector<std::string> errors;         // steps that found no window, buttons not found
  bool ok() const { return errors.empty() && unexpected.empty(); }
  std::string Describe() const;
};

struct ModalOptions {
  int stepTimeoutMs = 10000;
  // Also answer windows of other processes (a helper program's question box).
  bool anyProcess = false;
  // Windows that come and go by themselves (a transfer's progress dialog): neither
  // answered by a step nor counted as unexpected. Asked without sending a message,
  // so it may look at a window whose thread is blocked.
  std::function<bool(HWND window)> passOver;
};

ModalResult RunModal(const std::function<void()>& action, std::vector<ModalStep> steps,
                     ModalOptions options = {});
// RunModal with what went wrong added to the test's failures; `seen` holds a
// snapshot for every step even then, so that the checks after it fail rather than crash.
ModalResult RunAnswered(const std::function<void()>& action, std::vector<ModalStep> steps,
                        ModalOptions options = {});

// Pumps this thread's messages until `condition` holds or `timeoutMs` passes.
bool PumpUntil(const std::function<bool()>& condition, int timeoutMs = 5000);
// The same without pumping: for a thread whose windows must wait (a modal step's),
// or for what another process does.
bool PollUntil(const std::function<bool()>& condition, int timeoutMs = 5000);

// Text of any window, read with WM_GETTEXT.
std::string WindowText(HWND window);
std::string ClassOf(HWND window);

// A symbolic link `name` in `folder` to `target` (relative to that folder), made
// on the Unix side under Wine, which makes none itself; true once it is there.
bool MakeUnixLink(const std::string& folder, const std::string& name, const std::string& target);

}  // namespace qb::test
