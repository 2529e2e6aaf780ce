// Where the status bar, the docked bars and the views go, for each arrangement.
#include "app/layout_math.h"

#include <gtest/gtest.h>

#include <string>

namespace qb {
namespace {

constexpr int kThick = 30, kStatus = 20;
enum Shown { kTool = 1, kDatabases = 2, kKeys = 4, kLinks = 8, kAll = 15 };

std::string Text(const std::optional<Box>& b) {
  return b ? std::to_string(b->x) + "," + std::to_string(b->y) + " " + std::to_string(b->width) + "x" +
                 std::to_string(b->height)
           : "-";
}

TEST(ComputeLayout, BarsAndViewsForEachArrangement) {
  const struct {
    const char* name;
    int toolSide, databaseSide, shown, arrangement, width, room;  // room: the client area above the status bar
    Box boxes[4];  // tool bar, databases bar, Keys view, Links view; all zero when not there
  } cases[] = {
      {"both bars at the top", kSideTop, kSideTop, kAll, kHorizontal, 700, 370,
       {{-4, 0, 706, 30}, {-4, 30, 706, 30}, {0, 60, 350, 310}, {350, 60, 350, 310}}},
      {"tool bar left, databases bar top", kSideLeft, kSideTop, kAll, kHorizontal, 700, 370,
       {{0, 30, 30, 340}, {-4, 0, 706, 30}, {30, 30, 335, 340}, {365, 30, 335, 340}}},
      {"databases bar left yields to the tool bar at the top", kSideTop, kSideLeft, kAll, kHorizontal, 700, 370,
       {{-4, 0, 706, 30}, {0, 30, 30, 340}, {30, 30, 335, 340}, {365, 30, 335, 340}}},
      {"databases bar left, the tool bar at the bottom", kSideBottom, kSideLeft, kAll, kHorizontal, 700, 370,
       {{-4, 340, 706, 30}, {0, 0, 30, 340}, {30, 0, 335, 340}, {365, 0, 335, 340}}},
      {"databases bar right, the tool bar at the top", kSideTop, kSideRight, kAll, kHorizontal, 700, 370,
       {{-4, 0, 706, 30}, {670, 30, 30, 340}, {0, 30, 335, 340}, {335, 30, 335, 340}}},
      // An odd height leaves the last row uncovered.
      {"both at the bottom, the second above the first", kSideBottom, kSideBottom, kAll, kVertical, 700, 371,
       {{-4, 341, 706, 30}, {-4, 311, 706, 30}, {0, 0, 700, 155}, {0, 155, 700, 155}}},
      {"both at the right, the second inside the first", kSideRight, kSideRight, kAll, kHorizontal, 700, 370,
       {{670, 0, 30, 370}, {640, 0, 30, 370}, {0, 0, 320, 370}, {320, 0, 320, 370}}},
      {"both at the left", kSideLeft, kSideLeft, kAll, kHorizontal, 700, 370,
       {{0, 0, 30, 370}, {30, 0, 30, 370}, {60, 0, 320, 370}, {380, 0, 320, 370}}},
      {"a hidden tool bar at the left leaves the databases bar at the edge", kSideLeft, kSideLeft, kAll & ~kTool,
       kHorizontal, 700, 370, {{}, {0, 0, 30, 370}, {30, 0, 335, 370}, {365, 0, 335, 370}}},
      // An odd width leaves the last column uncovered.
      {"odd width, bars hidden", kSideTop, kSideTop, kKeys | kLinks, kHorizontal, 601, 370,
       {{}, {}, {0, 0, 300, 370}, {300, 0, 300, 370}}},
      {"a hidden bar gives its room back", kSideTop, kSideTop, kAll & ~kTool, kHorizontal, 700, 370,
       {{}, {-4, 0, 706, 30}, {0, 30, 350, 340}, {350, 30, 350, 340}}},
      {"Links view alone fills the room", kSideTop, kSideBottom, kAll & ~kKeys, kVertical, 700, 370,
       {{-4, 0, 706, 30}, {-4, 340, 706, 30}, {}, {0, 30, 700, 310}}},
      {"Keys view alone fills the room", kSideRight, kSideTop, kAll & ~kLinks, kHorizontal, 700, 370,
       {{670, 30, 30, 340}, {-4, 0, 706, 30}, {0, 30, 670, 340}, {}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    LayoutInput in;
    in.clientRight = c.width;
    in.clientBottom = c.room + kStatus;
    in.statusHeight = kStatus;
    in.bars[0] = {c.toolSide, c.shown & kTool ? kBarDocked : kBarDockedHidden, kThick};
    in.bars[1] = {c.databaseSide, c.shown & kDatabases ? kBarDocked : kBarFloating, kThick};
    in.keysShown = c.shown & kKeys;
    in.linksShown = c.shown & kLinks;
    in.arrangement = c.arrangement;
    const LayoutResult out = ComputeLayout(in);
    EXPECT_EQ(Text(out.status), Text(Box{0, c.room, c.width, kStatus}));
    const std::optional<Box> got[] = {out.bars[0], out.bars[1], out.keys, out.links};
    for (int i = 0; i < 4; ++i) {
      const bool shown = c.shown & 1 << i;
      EXPECT_EQ(Text(got[i]), shown ? Text(c.boxes[i]) : "-") << "box " << i;
    }
  }
  LayoutInput noStatus;
  noStatus.clientRight = 100;
  noStatus.clientBottom = 80;
  noStatus.statusShown = false;
  noStatus.statusHeight = kStatus;
  noStatus.bars[0].state = noStatus.bars[1].state = kBarFloatingHidden;
  const LayoutResult out = ComputeLayout(noStatus);
  EXPECT_EQ(Text(out.status), "-");
  EXPECT_EQ(Text(out.keys), "0,0 50x80");
}

}  // namespace
}  // namespace qb
