// The settings reader over any bytes: every field stays within its own storage and
// a re-serialised record is exactly the layout's size.
#include <cstdlib>

#include "app/settings_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qb::AppSettings s;
  qb::ParseSettings(data, size, s);
  if (qb::SerializeSettings(s).size() != qb::kSettingsFileSize) std::abort();
  qb::ClampWindowRect(s.windowRect, 1024, 768);
  return 0;
}
