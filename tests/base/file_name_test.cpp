#include <gtest/gtest.h>

#include <string>

#include "base/file_name.h"

namespace qb {
namespace {

TEST(PlainFileName, RefusesNamesThatLeaveTheFolderOrNameADevice) {
  // Only the bare device names (any case, any extension) are devices.
  for (const char* name : {"Shops", "order form.htm", "a.b.c", "console", "COM10", "LPT", "conout"})
    EXPECT_TRUE(IsPlainFileName(name)) << name;
  const std::string refused[] = {
      "", ".", "..", "ends with dot.", "ends with blank ",                            // empty or a bad end
      "..\\escaped", "../escaped", "sub\\dir", "C:", "C:escaped",                     // paths
      "a*b", "what?", "say\"so\"", "<b>", "a|b",                                      // wildcards, redirection
      "tab\there", "line\nend", std::string("nul\0byte", 8), "\x1f",                  // control characters
      "CON", "con", "Nul.txt", "PRN .htm", "aux", "com1", "LPT9.htm", "LPT0.htm", "conin$", "CONOUT$.x",
  };
  for (const std::string& name : refused) EXPECT_FALSE(IsPlainFileName(name)) << '"' << name << '"';
}

}  // namespace
}  // namespace qb
