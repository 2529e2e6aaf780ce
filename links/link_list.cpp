#include "links/link_list.h"

#include <algorithm>
#include <cstdio>

#include "acquire/no_case.h"

namespace qb {
namespace {

constexpr std::uint64_t kTicksPerMillisecond = 10000;
constexpr std::uint64_t kMillisecondsPerDay = 86400000;
// Days from 1601-01-01, where file times start, to 1970-01-01.
constexpr std::int64_t kDaysTo1970 = 134774;
// A file time with its top bit set is no time at all.
constexpr std::uint64_t kLastTick = 0x7FFFFFFFFFFFFFFFull;

// Byte order of the two names with A-Z read as a-z.
int CompareNoCase(std::string_view a, std::string_view b) {
  const std::size_t n = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < n; ++i) {
    const auto x = static_cast<unsigned char>(AsciiLower(a[i]));
    const auto y = static_cast<unsigned char>(AsciiLower(b[i]));
    if (x != y) return x < y ? -1 : 1;
  }
  return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
}

bool IsFolder(const LinkEntry& e) { return e.kind != kLinkDocument; }

bool ComesBefore(const LinkEntry& a, const LinkEntry& b, int column) {
  return CompareLinkEntries(a, b, column) == -1;
}

}  // namespace

LinkTime LinkTimeFromTicks(std::uint64_t ticks) {
  LinkTime t;
  if (ticks > kLastTick) return t;
  const std::uint64_t ms = ticks / kTicksPerMillisecond;
  const auto days = static_cast<std::int64_t>(ms / kMillisecondsPerDay);
  std::uint64_t rest = ms % kMillisecondsPerDay;
  t.milliseconds = static_cast<int>(rest % 1000);
  rest /= 1000;
  t.second = static_cast<int>(rest % 60);
  rest /= 60;
  t.minute = static_cast<int>(rest % 60);
  t.hour = static_cast<int>(rest / 60);
  t.dayOfWeek = static_cast<int>((days + 1) % 7);  // 1601-01-01 was a Monday
  // Civil date from a day number, counted in 400-year eras starting in March.
  const std::int64_t z = days - kDaysTo1970 + 719468;
  const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const std::int64_t doe = z - era * 146097;
  const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const std::int64_t mp = (5 * doy + 2) / 153;
  t.day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  t.month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  t.year = static_cast<int>(yoe + era * 400 + (t.month <= 2));
  return t;
}

bool IsListedName(std::string_view name) { return !name.empty() && name.front() != '.'; }

LinkEntry MakeLinkEntry(const FoundFile& found) {
  LinkEntry e;
  e.attributes = found.attributes;
  e.lastWrite = LinkTimeFromTicks(found.lastWrite);
  const std::string_view name = found.name;
  if (found.attributes & kFolderAttribute) {
    e.kind = kLinkFolder;
    e.name = std::string(name.substr(0, kLinkNameMax));
    e.extension = kFolderExtension;
    return e;
  }
  e.kind = kLinkDocument;
  e.size = found.sizeLow - found.sizeHigh;  // kept as the program has always shown it
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos) {
    e.name = std::string(name.substr(0, kLinkNameMax));
    e.extension = kNoExtension;
  } else {
    e.name = std::string(name.substr(0, std::min(dot, kLinkNameMax)));
    e.extension = std::string(name.substr(dot + 1, kLinkNameMax));
  }
  return e;
}

LinkEntry MakeParentEntry() {
  LinkEntry e;
  e.kind = kLinkParent;
  e.attributes = kFolderAttribute;
  return e;
}

int CompareLinkEntries(const LinkEntry& a, const LinkEntry& b, int column) {
  const bool folderA = IsFolder(a), folderB = IsFolder(b);
  if (column == kSortDate)
    return folderA && folderB ? CompareNoCase(a.name, b.name) : 0;
  if (folderA != folderB) return folderA ? -1 : 1;
  if (folderA) return CompareNoCase(a.name, b.name);
  if (column == kSortExt) {
    if (int c = CompareNoCase(a.extension, b.extension)) return c;
  } else if (column == kSortSize) {
    if (a.size != b.size) return a.size < b.size ? -1 : 1;
  }
  return CompareNoCase(a.name, b.name);
}

void SortLinkEntries(std::vector<LinkEntry>& entries, std::size_t first, int column) {
  if (first >= entries.size()) return;
  const auto begin = entries.begin() + static_cast<std::ptrdiff_t>(first);
  const auto before = [column](const LinkEntry& a, const LinkEntry& b) {
    return ComesBefore(a, b, column);
  };
  if (column != kSortDate) {
    std::stable_sort(begin, entries.end(), before);
    return;
  }
  // A folder moves up only past folders: a document above it stops it.
  for (auto run = begin; run != entries.end();) {
    if (!IsFolder(*run)) {
      ++run;
      continue;
    }
    auto end = std::find_if(run, entries.end(), [](const LinkEntry& e) { return !IsFolder(e); });
    std::stable_sort(run, end, before);
    run = end;
  }
}

void LinkListing::Begin(bool withParent) {
  entries_.clear();
  if (withParent) entries_.push_back(MakeParentEntry());
  sortFrom_ = entries_.size();
}

bool LinkListing::Add(const FoundFile& found) {
  if (entries_.size() >= kLinksEntryMax) return false;
  if (IsListedName(found.name)) entries_.push_back(MakeLinkEntry(found));
  return entries_.size() < kLinksEntryMax;
}

void LinkListing::Sort(int column) { SortLinkEntries(entries_, sortFrom_, column); }

std::string DottedSize(std::uint32_t size) {
  std::string digits = std::to_string(size);
  std::string out;
  out.reserve(digits.size() + digits.size() / 3);
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) out += '.';
    out += digits[i];
  }
  return out;
}

std::string LinkFileName(const LinkEntry& entry) {
  return entry.kind == kLinkDocument ? entry.name + "." + entry.extension : entry.name;
}

std::string LinkCellText(const LinkEntry& entry, int column) {
  if (entry.kind == kLinkParent) return std::string();
  switch (column) {
    case 0:
      return LinkFileName(entry);
    case 1:
      return entry.extension;
    case 2:
      return DottedSize(entry.size);
    case 3: {
      const LinkTime& t = entry.lastWrite;
      char text[64];
      std::snprintf(text, sizeof text, "%d/%d/%d  %d:%d", t.month, t.day, t.year, t.hour,
                    t.minute);
      return text;
    }
    default:
      return std::string();
  }
}

LinkColumnWidths LinksColumnWidths(int clientWidth) {
  static constexpr int kPercent[kLinkColumns] = {56, 10, 14, 20};
  const int half = (clientWidth - 8) / 2;
  LinkColumnWidths w{};
  for (int i = 0; i < kLinkColumns; ++i) w[i] = half * kPercent[i] / 100;
  return w;
}

}  // namespace qb
