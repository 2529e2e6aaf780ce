// The database reader over any bytes. Besides the sanitizers' checks: the table
// keeps its rules with the count of keys read, and what was read is written and
// read back unchanged.
#include "keys/key_file.h"
#include "tests/keys/table_check.h"

namespace {

using qb::test::Check;
using qb::test::CheckTable;

qb::KeyTable g_table;
qb::KeyTable g_again;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const qb::LoadResult r = qb::ReadDatabaseBytes(data, size, g_table);
  if (r.loaded()) {
    Check(g_table.count == r.keysRead);
    CheckTable(g_table);
    qb::DamageReport(r);
    const std::vector<std::uint8_t> image = qb::DatabaseBytes(g_table);
    const qb::LoadResult again = qb::ReadDatabaseBytes(image.data(), image.size(), g_again);
    Check(again.loaded() && !again.damaged() && again.keysRead == r.keysRead);
    // Every length is below the limit (checked above), so equal images mean equal keys.
    Check(qb::DatabaseBytes(g_again) == image);
  } else {
    Check(g_table.count == 0);
    CheckTable(g_table);
  }
  // A read with the wrong magic leaves its table as it was, so this one is cleared
  // here; the copy is always read from a good image, which clears it first.
  qb::ClearAllKeys(g_table);
  return 0;
}
