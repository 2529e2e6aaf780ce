#include "base/app_state.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <utility>
#include <vector>

namespace qb {
namespace {

BOOL CALLBACK AddOwned(HWND window, LPARAM param) {
  auto* list = reinterpret_cast<std::pair<HWND, std::vector<HWND>>*>(param);
  if (GetWindow(window, GW_OWNER) == list->first) list->second.push_back(window);
  return TRUE;
}

// The dialogs whose handlers are running on this thread, innermost last.
thread_local std::vector<HWND> t_dialogs;

}  // namespace

AppState& App() {
  static AppState state;
  return state;
}

AppSettings& Settings() {
  static AppSettings settings;
  return settings;
}

void SetProgramDirectory(const std::string& dir) {
  AppState& app = App();
  app.programDir = dir.substr(0, kProgramDirMax);
  app.helpPath = app.programDir + kHelpFileName;
}

std::string FormatText(const char* format, ...) {
  std::array<char, kScratchTextSize> scratch{};
  va_list args;
  va_start(args, format);
  std::vsnprintf(scratch.data(), scratch.size(), format, args);
  va_end(args);
  return std::string(scratch.data());
}

MessageOwnerScope::MessageOwnerScope(HWND dialog) { t_dialogs.push_back(dialog); }
MessageOwnerScope::~MessageOwnerScope() { t_dialogs.pop_back(); }

HWND MessageOwner() {
  for (auto at = t_dialogs.rbegin(); at != t_dialogs.rend(); ++at) {
    if (IsWindow(*at)) return *at;
  }
  return App().mainWindow;
}

int ShowMessage(const std::string& text, const char* caption, UINT flags) {
  return MessageBoxA(MessageOwner(), text.c_str(), caption, flags);
}

void OrderMainWindow(HWND main, bool onTop, UINT flags) {
  const UINT keep = SWP_NOMOVE | SWP_NOSIZE | flags;
  if (!onTop) {
    SetWindowPos(main, HWND_NOTOPMOST, 0, 0, 0, 0, keep);
    return;
  }
  // Under Wine an owner stays below the windows it owns (the tool tip, floating
  // bars) and so never becomes topmost; they let go of it for the moment.
  std::pair<HWND, std::vector<HWND>> owned{main, {}};
  EnumThreadWindows(GetCurrentThreadId(), AddOwned, reinterpret_cast<LPARAM>(&owned));
  for (HWND w : owned.second) SetWindowLongPtrA(w, GWLP_HWNDPARENT, 0);
  SetWindowPos(main, HWND_TOPMOST, 0, 0, 0, 0, keep);
  for (HWND w : owned.second) {
    SetWindowLongPtrA(w, GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(main));
    SetWindowPos(w, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  }
}

}  // namespace qb
