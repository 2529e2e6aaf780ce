// The listing's fast sort against the insertion sort it replaces: any records, any
// column, the same order.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "tests/links/reference_sort.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kRecordsMax = 300;  // the reference is quadratic
  if (size < 2) return 0;
  const int column = data[0] % qb::kLinkColumns;
  const bool parent = data[1] & 1;
  std::vector<qb::LinkEntry> entries;
  if (parent) entries.push_back(qb::MakeParentEntry());
  // Each record: a flags byte (folder, size), then a name up to a zero byte.
  std::size_t pos = 2;
  while (pos < size && entries.size() < kRecordsMax) {
    qb::FoundFile found;
    const std::uint8_t flags = data[pos++];
    found.attributes = (flags & 1) ? qb::kFolderAttribute : 0;
    found.sizeLow = flags >> 5;
    while (pos < size && data[pos] != 0) found.name += static_cast<char>(data[pos++]);
    ++pos;
    if (found.name.empty()) continue;
    qb::LinkEntry e = qb::MakeLinkEntry(found);
    e.image = static_cast<int>(entries.size());
    entries.push_back(e);
  }
  std::vector<qb::LinkEntry> reference = entries;
  qb::SortLinkEntries(entries, parent ? 1 : 0, column);
  qb::test::InsertionSortLinks(reference, parent ? 1 : 0, column);
  if (qb::test::Tags(entries) != qb::test::Tags(reference)) std::abort();
  return 0;
}
