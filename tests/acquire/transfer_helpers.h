// Shared by the transfer tests: a hook that reads the status edit of the download
// dialog after every change, and what a text written in text mode becomes.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace qb::test {

// Records, on this thread, the dialog's caption and controls when it opens and the
// text of its status edit after each WM_SETTEXT (the dialog blocks in its sockets
// between changes, so nothing else could read them).
class StatusRecorder {
 public:
  explicit StatusRecorder(std::function<void(const std::string&)> onText = {});
  ~StatusRecorder();
  StatusRecorder(const StatusRecorder&) = delete;
  StatusRecorder& operator=(const StatusRecorder&) = delete;

  std::vector<std::string> texts;
  std::string caption;
  std::string groupText;
  LONG editStyle = 0;

 private:
  static LRESULT CALLBACK Hook(int code, WPARAM wParam, LPARAM lParam);
  static StatusRecorder* current_;
  std::function<void(const std::string&)> onText_;
  HHOOK hook_;
};

// Each line feed written through a text-mode stream becomes CR LF.
std::string TextMode(const std::string& bytes);

}  // namespace qb::test
