// The databases bar: one button per database slot, 1 to 9, the current one held
// down, each captioned with its slot's database name while the bar lies flat.
#include <cstring>
#include <string>

#include "bars/dock_bar.h"
#include "base/app_state.h"
#include "base/dispatch.h"
#include "resources/resource.h"

namespace qb {
namespace {

constexpr int kDatabaseButtonCount = IDM_DATABASE_LAST - IDM_DATABASE_FIRST + 1;
static_assert(kDatabaseButtonCount == 9, "nine database slots, 50206..50214 without a gap");
static_assert(kDatabaseButtonCount < kBarButtonRows, "rows 1..9 hold the slots' buttons");
constexpr char kEmptySlotText[] = "empty";
constexpr char kDatabaseSuffix[] = ".dat";

const BarButton kDatabaseButtons[] = {
    {0, IDM_DATABASE_FIRST + 0, nullptr},
    {1, IDM_DATABASE_FIRST + 1, nullptr},
    {2, IDM_DATABASE_FIRST + 2, nullptr},
    {3, IDM_DATABASE_FIRST + 3, nullptr},
    {4, IDM_DATABASE_FIRST + 4, nullptr},
    {5, IDM_DATABASE_FIRST + 5, nullptr},
    {6, IDM_DATABASE_FIRST + 6, nullptr},
    {7, IDM_DATABASE_FIRST + 7, nullptr},
    {8, IDM_DATABASE_FIRST + 8, nullptr},
};
static_assert(sizeof(kDatabaseButtons) / sizeof(kDatabaseButtons[0]) == kDatabaseButtonCount,
              "one button per slot");

// The database name of slot `slot` (0..8), as the settings record holds it.
std::string SlotName(int slot) {
  const auto& name = Settings().slotNames[static_cast<std::size_t>(slot)];
  return std::string(name.data(), strnlen(name.data(), name.size()));
}

bool SlotEmpty(int button) { return SlotName(button).empty(); }

// The name without its ".dat", which every database has.
std::string SlotLabel(int button) {
  std::string name = SlotName(button);
  if (name.empty()) return kEmptySlotText;
  const std::size_t n = sizeof(kDatabaseSuffix) - 1;
  if (name.size() > n && _stricmp(name.c_str() + name.size() - n, kDatabaseSuffix) == 0)
    name.resize(name.size() - n);
  return name;
}

std::string SlotTip(int button) {
  const std::string name = SlotName(button);
  return "Database " + std::to_string(button + 1) + ": " + (name.empty() ? kEmptySlotText : name);
}

const BarKind kDatabaseBarKind = {
    kDatabaseButtons, kDatabaseButtonCount, IDM_DATABASES_BAR, "Databases bar",
    SlotLabel,        SlotTip,              SlotEmpty,
};

const MessageRow kDatabaseBarMessages[] = {
    {WM_CREATE,      OnBarCreate},
    {WM_PAINT,       OnBarPaint},
    {WM_LBUTTONDOWN, OnBarLButtonDown},
    {WM_MOUSEMOVE,   OnBarMouseMove},
    {WM_LBUTTONUP,   OnBarLButtonUp},
    {WM_MOVE,        OnBarMove},
    {WM_CLOSE,       OnBarClose},
    {WM_TIMER,       OnBarTimer},
};

}  // namespace

void InitDatabaseBarDescriptor(std::uint8_t side) {
  DockBar& bar = DatabaseBarDescriptor();
  ResetBarDescriptor(bar, kDatabaseBarClass, kDatabaseBarTimerId, kDatabaseBarLayoutValue, side,
                     &kDatabaseBarKind);
  // Pressing one slot's button releases the other eight.
  for (int number = 1; number <= kDatabaseButtonCount; ++number) {
    int k = 0;
    for (int other = 1; other <= kDatabaseButtonCount; ++other)
      if (other != number) bar.rows[number].releases[k++] = static_cast<std::uint8_t>(other);
  }
}

bool RegisterDatabaseBarClass(HINSTANCE instance) {
  return RegisterBarClass(instance, kDatabaseBarClass, WindowProcedure<kDatabaseBarMessages>);
}

}  // namespace qb
