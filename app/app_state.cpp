#include "app/app_state.h"

#include <array>
#include <cstdarg>
#include <cstdio>

namespace qb {

AppState& App() {
  static AppState state;
  return state;
}

AppSettings& Settings() {
  static AppSettings settings;
  return settings;
}

std::string FormatText(const char* format, ...) {
  std::array<char, kScratchTextSize> scratch{};
  va_list args;
  va_start(args, format);
  std::vsnprintf(scratch.data(), scratch.size(), format, args);
  va_end(args);
  return std::string(scratch.data());
}

int ShowMessage(const std::string& text, const char* caption, UINT flags) {
  return MessageBoxA(App().mainWindow, text.c_str(), caption, flags);
}

}  // namespace qb
