// The listing's order as an insertion sort builds it, one record at a time: each
// new record moves up while it compares -1 with its upper neighbour. Quadratic;
// the reference the view's own sort is held to.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "links/link_list.h"

namespace qb::test {

inline void InsertionSortLinks(std::vector<LinkEntry>& entries, std::size_t first, int column) {
  for (std::size_t i = first + 1; i < entries.size(); ++i)
    for (std::size_t j = i; j > first && CompareLinkEntries(entries[j], entries[j - 1], column) == -1; --j)
      std::swap(entries[j], entries[j - 1]);
}

// The `image` field, which no order reads, tags each record with its place in
// the search; a sorted list reads back as those places.
inline std::vector<int> Tags(const std::vector<LinkEntry>& entries) {
  std::vector<int> out;
  for (const LinkEntry& e : entries) out.push_back(e.image);
  return out;
}

}  // namespace qb::test
