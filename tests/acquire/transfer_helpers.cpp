#include "tests/acquire/transfer_helpers.h"

#include "resources/resource.h"
#include "tests/support/gui_helper.h"

namespace qb::test {

StatusRecorder* StatusRecorder::current_ = nullptr;

StatusRecorder::StatusRecorder(std::function<void(const std::string&)> onText)
    : onText_(std::move(onText)),
      hook_(SetWindowsHookExA(WH_CALLWNDPROCRET, Hook, nullptr, GetCurrentThreadId())) {
  current_ = this;
}

StatusRecorder::~StatusRecorder() {
  UnhookWindowsHookEx(hook_);
  current_ = nullptr;
}

LRESULT CALLBACK StatusRecorder::Hook(int code, WPARAM wParam, LPARAM lParam) {
  const auto* call = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
  if (code == HC_ACTION && current_) {
    if (call->message == WM_SETTEXT && GetDlgCtrlID(call->hwnd) == IDC_DOWNLOAD_STATUS) {
      current_->texts.push_back(WindowText(call->hwnd));
      if (current_->onText_) current_->onText_(current_->texts.back());
    } else if (call->message == WM_INITDIALOG) {
      current_->caption = WindowText(call->hwnd);
      current_->groupText = WindowText(GetDlgItem(call->hwnd, IDC_DOWNLOAD_GROUP));
      current_->editStyle = GetWindowLongA(GetDlgItem(call->hwnd, IDC_DOWNLOAD_STATUS), GWL_STYLE);
    }
  }
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

std::string TextMode(const std::string& bytes) {
  std::string out;
  for (char c : bytes) {
    if (c == '\n') out += '\r';
    out += c;
  }
  return out;
}

}  // namespace qb::test
