// Any two key tables and any selection, merged in every mode over a few rounds:
// the indexed merge gives the same table as the plain walk, the table keeps its
// rules (count within bounds, each block held by one entry, nothing past the
// count, every text within its block and the file's limit), and restoring the
// safety copy gives back the table's file image byte for byte.
#include <fuzzer/FuzzedDataProvider.h>
#include <unistd.h>

#include <string>

#include "keys/key_file.h"
#include "tests/keys/merge_reference.h"
#include "tests/keys/table_check.h"

namespace {

using qb::test::Check;
using qb::test::CheckTable;

qb::KeyTable g_table;
qb::KeyTable g_reference;
qb::KeyTable g_loaded;

// Short texts from pieces that collide often: letters that fold to each other,
// the separators of both lists, and now and then a name past the 512 limit.
std::string Text(FuzzedDataProvider& in) {
  static const char* const kPieces[] = {"a", "A", "b", "\xC9", "\xE9", ",", " ", "\r", "\n", "ab", "x y"};
  std::string text;
  for (int n = in.ConsumeIntegralInRange(0, 12); n > 0; --n) {
    const int piece = in.ConsumeIntegralInRange(0, 11);
    if (piece == 11) {
      text += std::string(qb::kMergeNameMax + in.ConsumeIntegralInRange(-2, 2), 'a');
    } else {
      text += kPieces[piece];
    }
  }
  return text;
}

void Fill(FuzzedDataProvider& in, qb::KeyTable& table) {
  const int keys = in.ConsumeIntegralInRange(0, 12);
  for (int k = 0; k < keys; ++k) {
    for (int f = 0; f < qb::kKeyFieldCount; ++f) qb::SetKeyField(table, k, static_cast<qb::KeyField>(f), Text(in));
  }
  table.count = keys;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string path = "/tmp/qb-fuzz-merge-" + std::to_string(getpid()) + ".dat";
  FuzzedDataProvider in(data, size);
  Fill(in, g_table);
  Fill(in, g_loaded);
  const std::vector<std::uint8_t> before = qb::DatabaseBytes(g_table);
  qb::ReadDatabaseBytes(before.data(), before.size(), g_reference);
  const bool changedBefore = in.ConsumeBool();
  qb::SetDatabaseChanged(changedBefore);
  qb::MergeSession session;
  Check(session.Begin(path, g_table));

  for (int round = in.ConsumeIntegralInRange(1, 3); round > 0; --round) {
    qb::MergeOptions options;
    options.takeSearchNames = in.ConsumeBool();
    options.takeSelection = in.ConsumeBool();
    options.takeDescription = in.ConsumeBool();
    options.mode = static_cast<qb::DuplicateMode>(in.ConsumeIntegralInRange(0, 2));
    std::vector<int> selected(in.ConsumeIntegralInRange(0, 16));
    for (int& s : selected) s = in.ConsumeIntegralInRange(-1, g_loaded.count);
    const unsigned refused = in.ConsumeIntegral<std::uint8_t>();
    const auto refuse = [refused](int index) { return (refused >> (index % 8)) & 1; };

    qb::MergeKeys(g_table, g_loaded, selected, options,
                  [&](int index, std::string_view) { return !refuse(index); });
    qb::test::ReferenceMerge(g_reference, g_loaded, selected, options, refuse);
    CheckTable(g_table);
    Check(qb::DatabaseBytes(g_table) == qb::DatabaseBytes(g_reference));
  }

  Check(session.Restore());
  Check(qb::DatabaseBytes(g_table) == before && qb::DatabaseChanged() == changedBefore);
  CheckTable(g_table);
  session.End();
  qb::ClearAllKeys(g_table);
  qb::ClearAllKeys(g_reference);
  qb::ClearAllKeys(g_loaded);
  return 0;
}
