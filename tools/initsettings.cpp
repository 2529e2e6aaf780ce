// initsettings FILE [DATABASE] — writes a settings file with the default options,
// a window placed in the middle of a 1280 x 1024 screen and DATABASE (a bare file
// name under Databases) in slot 0, so a fresh program folder opens that database.
#include <cstdio>
#include <cstring>

#include "app/settings_file.h"

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::fprintf(stderr, "usage: initsettings FILE [DATABASE]\n");
    return 2;
  }
  qb::AppSettings s;
  s.windowRect = {140, 112, 1140, 812};
  if (argc == 3) {
    if (std::strlen(argv[2]) >= qb::kSlotNameSize) {
      std::fprintf(stderr, "initsettings: database name longer than %zu characters\n",
                   qb::kSlotNameSize - 1);
      return 1;
    }
    std::strncpy(s.slotNames[0].data(), argv[2], qb::kSlotNameSize - 1);
  }
  if (!qb::WriteSettingsFile(argv[1], s)) {
    std::fprintf(stderr, "initsettings: cannot write %s\n", argv[1]);
    return 1;
  }
  return 0;
}
