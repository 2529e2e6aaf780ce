// Shared by the transfer tests: a hook that reads the status edit of the download
// dialog after every change, a download whose message boxes are answered, and
// what a text written in text mode becomes.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "acquire/download_dialog.h"
#include "resources/resource.h"
#include "tests/support/gui_helper.h"
#include "tests/support/loopback_server.h"

namespace qb::test {

// Records, on this thread, the text of the dialog's status edit after each
// WM_SETTEXT (the dialog blocks in its sockets between changes, so nothing else
// could read them). A paced server is let go on to its next step each time a byte
// count is shown.
class StatusRecorder {
 public:
  explicit StatusRecorder(LoopbackServer* paced = nullptr)
      : paced_(paced),
        hook_(SetWindowsHookExA(WH_CALLWNDPROCRET, Hook, nullptr, GetCurrentThreadId())) {
    current_ = this;
  }
  ~StatusRecorder() {
    UnhookWindowsHookEx(hook_);
    current_ = nullptr;
  }
  StatusRecorder(const StatusRecorder&) = delete;
  StatusRecorder& operator=(const StatusRecorder&) = delete;

  std::vector<std::string> texts;

 private:
  static LRESULT CALLBACK Hook(int code, WPARAM wParam, LPARAM lParam) {
    const auto* call = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    StatusRecorder* self = code == HC_ACTION ? current_ : nullptr;
    if (self && call->message == WM_SETTEXT && GetDlgCtrlID(call->hwnd) == IDC_DOWNLOAD_STATUS) {
      const std::string& text = self->texts.emplace_back(WindowText(call->hwnd));
      if (self->paced_ && text.size() > 6 && text.compare(text.size() - 6, 6, " Bytes") == 0)
        self->paced_->Continue();
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
  }
  inline static StatusRecorder* current_ = nullptr;
  LoopbackServer* paced_;
  HHOOK hook_;
};

// Runs DownloadPage with `steps` answering the message boxes it raises; the
// download dialog comes and goes by itself.
inline INT_PTR DownloadAnswering(std::vector<ModalStep> steps, ModalResult& result, int stepTimeoutMs = 10000) {
  ModalOptions options;
  options.passOver = [](HWND window) { return GetDlgItem(window, IDC_DOWNLOAD_STATUS) != nullptr; };
  options.stepTimeoutMs = stepTimeoutMs;
  INT_PTR ended = -1;
  result = RunModal([&] { ended = DownloadPage(); }, std::move(steps), options);
  return ended;
}

// Each line feed written through a text-mode stream becomes CR LF.
inline std::string TextMode(const std::string& bytes) {
  std::string out;
  for (char c : bytes) out += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return out;
}

}  // namespace qb::test
