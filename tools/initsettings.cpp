// initsettings FILE [DATABASE] [--browser CAPTION PROGRAM] — writes a settings file
// with the default options, a window placed in the middle of a 1280 x 1024 screen
// and DATABASE (a bare file name under Databases) in slot 0, so a fresh program
// folder opens that database. With --browser the browser is "Other": its windows'
// titles hold CAPTION and PROGRAM opens pages; text fields no key answers are then
// asked about, so a first scan shows the prompt.
#include <array>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "app/settings_file.h"
#include "scan/scan_options.h"

namespace {

bool Store(std::array<char, qb::kBrowserTextSize>& field, const char* text, const char* what) {
  if (std::strlen(text) >= field.size()) {
    std::fprintf(stderr, "initsettings: %s longer than %zu characters\n", what, field.size() - 1);
    return false;
  }
  std::string_view(text).copy(field.data(), field.size() - 1);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  qb::AppSettings s;
  if (argc >= 5 && !std::strcmp(argv[argc - 3], "--browser")) {
    s.browserKind = qb::kBrowserOther;
    if (!Store(s.otherBrowserCaption, argv[argc - 2], "browser caption") ||
        !Store(s.browserProgram, argv[argc - 1], "browser program"))
      return 1;
    s.askForSelect[qb::kPromptText] = qb::kAskUnMatched;
    argc -= 3;
  }
  if (argc < 2 || argc > 3) {
    std::fprintf(stderr, "usage: initsettings FILE [DATABASE] [--browser CAPTION PROGRAM]\n");
    return 2;
  }
  s.windowRect = {140, 112, 1140, 812};
  if (argc == 3) {
    if (std::strlen(argv[2]) >= qb::kSlotNameSize) {
      std::fprintf(stderr, "initsettings: database name longer than %zu characters\n",
                   qb::kSlotNameSize - 1);
      return 1;
    }
    std::string_view(argv[2]).copy(s.slotNames[0].data(), qb::kSlotNameSize - 1);
  }
  if (!qb::WriteSettingsFile(argv[1], s)) {
    std::fprintf(stderr, "initsettings: cannot write %s\n", argv[1]);
    return 1;
  }
  return 0;
}
