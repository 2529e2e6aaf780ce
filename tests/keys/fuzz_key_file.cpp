// The database reader over any bytes. Besides the sanitizers' checks: the table
// stays within its capacity with nothing past the count, every text fits its
// block, and what was read is written and read back unchanged.
#include <cstdlib>

#include "keys/key_file.h"

namespace {

qb::KeyTable g_table;
qb::KeyTable g_again;

void Check(bool ok) {
  if (!ok) std::abort();
}

void CheckTable(const qb::KeyTable& table, int keys) {
  Check(table.count == keys && keys >= 0 && keys <= qb::kMaxKeys);
  for (const auto& field : table.fields) {
    for (int i = 0; i < qb::kMaxKeys; ++i) {
      if (field[i] == qb::kNoBlock) continue;
      qb::TextLock lock(field[i]);
      Check(i < keys && lock.text().size() + 2 <= qb::TextBlockSize(field[i]) &&
            lock.text().size() < qb::kFieldLengthLimit);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const qb::LoadResult r = qb::ReadDatabaseBytes(data, size, g_table);
  if (r.loaded()) {
    CheckTable(g_table, r.keysRead);
    qb::DamageReport(r);
    const std::vector<std::uint8_t> image = qb::DatabaseBytes(g_table);
    const qb::LoadResult again = qb::ReadDatabaseBytes(image.data(), image.size(), g_again);
    Check(again.loaded() && !again.damaged() && again.keysRead == r.keysRead);
    // Every length is below the limit (checked above), so equal images mean equal keys.
    Check(qb::DatabaseBytes(g_again) == image);
  } else {
    CheckTable(g_table, 0);
  }
  // A read with the wrong magic leaves its table as it was, so this one is cleared
  // here; the copy is always read from a good image, which clears it first.
  qb::ClearAllKeys(g_table);
  return 0;
}
