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
  for (int f = 0; f < qb::kKeyFieldCount; ++f) {
    for (int i = 0; i < qb::kMaxKeys; ++i) {
      const qb::TextBlock block = table.fields[f][i];
      if (i >= keys) {
        Check(block == qb::kNoBlock);
      } else if (block != qb::kNoBlock) {
        qb::TextLock lock(block);
        Check(lock.text().size() + 2 <= qb::TextBlockSize(block));
        Check(lock.text().size() < qb::kFieldLengthLimit);
      }
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
    for (int i = 0; i < r.keysRead; ++i) {
      for (int f = 0; f < qb::kKeyFieldCount; ++f) {
        const auto field = static_cast<qb::KeyField>(f);
        Check(qb::KeyFieldText(g_table, i, field) == qb::KeyFieldText(g_again, i, field));
      }
    }
    Check(qb::DatabaseBytes(g_again) == image);
  } else {
    CheckTable(g_table, 0);
  }
  qb::ClearAllKeys(g_table);
  qb::ClearAllKeys(g_again);
  return 0;
}
