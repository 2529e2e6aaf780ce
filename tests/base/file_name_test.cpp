#include <gtest/gtest.h>

#include <string>

#include "base/file_name.h"

namespace qb {
namespace {

TEST(PlainFileName, RefusesNamesThatLeaveTheFolderOrNameADevice) {
  struct Case {
    std::string name;
    bool plain;
  };
  const Case cases[] = {
      {"Shops", true},
      {"order form.htm", true},
      {"a.b.c", true},
      {"console", true},   // only the bare device names are devices
      {"COM10", true},
      {"", false},
      {".", false},
      {"..", false},
      {"..\\escaped", false},
      {"../escaped", false},
      {"sub\\dir", false},
      {"C:", false},
      {"C:escaped", false},
      {"a*b", false},
      {"what?", false},
      {"say\"so\"", false},
      {"<b>", false},
      {"a|b", false},
      {"tab\there", false},
      {std::string("nul\0byte", 8), false},
      {"line\nend", false},
      {"ends with dot.", false},
      {"ends with blank ", false},
      {"CON", false},
      {"con", false},
      {"Nul.txt", false},
      {"PRN .htm", false},
      {"aux", false},
      {"com1", false},
      {"LPT9.htm", false},
      {"LPT0.htm", false},
      {"conin$", false},
  };
  for (const Case& c : cases) EXPECT_EQ(IsPlainFileName(c.name), c.plain) << '"' << c.name << '"';
}

}  // namespace
}  // namespace qb
