// The Tools-menu command that compacts the registry, reached through the main
// window's command table as a menu choice would reach it.
#include <gtest/gtest.h>

#include "acquire/document_registry.h"
#include "app/app_state.h"
#include "app/frame.h"
#include "resources/resource.h"
#include "tests/support/temp_dir.h"

namespace qb {
namespace {

TEST(ToolsMenu, CompactConfigHtmlDropsDeletedLinks) {
  test::TempDir dir;
  SetProgramDirectory(dir.path());
  const std::string kept = dir.File("kept.htm");
  test::WriteText(kept, "<html></html>");
  const std::string header = std::string(kRegistryHeader) + "\r\n";
  test::WriteText(dir.File(kRegistryFileName),
                  header + "www.gone.com/\r\n" + dir.File("gone.htm") + "\r\nwww.kept.com/\r\n" + kept + "\r\n");

  EXPECT_EQ(LookupCommand(kMainCommandMap, nullptr, MAKEWPARAM(IDM_COMPACT_CONFIGHTML, 0), 0), 0);
  EXPECT_EQ(test::ReadText(dir.File(kRegistryFileName)), header + "www.kept.com/\r\n" + kept + "\r\n");
}

}  // namespace
}  // namespace qb
