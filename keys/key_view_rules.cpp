#include "keys/key_view_rules.h"

#include <algorithm>
#include <cstring>

namespace qb {
namespace {

const std::array<std::array<char, kSortNameSize>, kSortOrderCount> kSortNames = {{
    {"User"}, {"Ascending"}, {"User"}, {"Descending"},
}};

constexpr char kTitleStart[] = "Quellbarrow - ";

int ValidOrder(int order) { return order >= 0 && order < kSortOrderCount ? order : kSortUser; }

}  // namespace

const char* SortOrderName(int order) { return kSortNames[ValidOrder(order)].data(); }

int NextSortOrder(int order) { return (ValidOrder(order) + 1) % kSortOrderCount; }

bool SortChangeAsks(int order) {
  order = ValidOrder(order);
  return order == kSortUser || order == kSortUserAfterAscending;
}

std::optional<SortDirection> FillSort(int order) {
  if (order == kSortAscending) return SortDirection::kAscending;
  if (order == kSortDescending) return SortDirection::kDescending;
  return std::nullopt;
}

int DropTarget(int dragged, int hit, int yInList, int count) {
  int target;
  if (hit > dragged) {
    target = hit - 1;
  } else {
    target = yInList < kTopDropZone ? 0 : hit + 1;
  }
  return target < count ? target : count - 1;
}

std::string SlotTitle(std::string_view slotName, bool loaded) {
  std::string title = kTitleStart;
  if (slotName.empty() || !loaded) return title + kNotLoadedText;
  const std::size_t slash = slotName.rfind('\\');
  return title + std::string(slash == std::string_view::npos ? slotName : slotName.substr(slash));
}

std::string SlotNameText(const SlotName& name) {
  return std::string(name.data(), strnlen(name.data(), name.size()));
}

void SetSlotNameText(SlotName& name, std::string_view text) {
  name.fill('\0');
  const std::size_t n = std::min(text.size(), name.size() - 1);
  std::memcpy(name.data(), text.data(), n);
}

bool SaveAccepts(std::string_view slotName) { return slotName.size() >= kShortestSavedName; }

bool TransferKey(KeyTable& from, int index, KeyTable& to) {
  const int target = KeysInUse(to);
  if (index < 0 || index >= KeysInUse(from) || target >= kMaxKeys) return false;
  for (int f = 0; f < kKeyFieldCount; ++f) {
    to.fields[f][target] = from.fields[f][index];
    from.fields[f][index] = kNoBlock;
  }
  to.count = target + 1;
  DeleteKey(from, index);  // its entries are empty by now: nothing is freed
  return true;
}

}  // namespace qb
