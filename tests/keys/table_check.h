// What a key table keeps to whatever was read or merged into it, checked by the
// fuzz targets: the count within bounds and nothing past it, each block alive and
// held by one entry, every text within its block and the file's limit.
#pragma once

#include <cstdlib>
#include <set>

#include "keys/key_table.h"

namespace qb::test {

inline void Check(bool ok) {
  if (!ok) std::abort();
}

inline void CheckTable(const KeyTable& table) {
  Check(table.count >= 0 && table.count <= kMaxKeys);
  std::set<TextBlock> seen;
  for (const auto& field : table.fields) {
    for (int i = 0; i < kMaxKeys; ++i) {
      if (field[i] == kNoBlock) continue;
      Check(i < table.count && IsTextBlock(field[i]) && seen.insert(field[i]).second);
      TextLock lock(field[i]);
      Check(lock.text().size() + 2 <= TextBlockSize(field[i]) && lock.text().size() <= kMaxFieldLength);
    }
  }
}

}  // namespace qb::test
