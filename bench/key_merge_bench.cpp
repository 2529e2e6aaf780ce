// Add / Compare with every loaded key selected, in each duplicate mode, beside the
// time to load the two database files it starts from. Two cases: 2000 loaded
// keys that all name a key of a full table of 2000, and 1000 such keys plus 1000
// new ones into a table of 1000. Every key holds 10 search names, of which the
// loaded keys share some with their own key, some with another key, and bring
// some new; Selections of 5 values overlap the same way. Prints medians.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "base/user_message.h"
#include "keys/key_file.h"
#include "keys/key_merge.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kNamesPerKey = 10;
constexpr int kValuesPerKey = 5;

double Ms(Clock::duration d) { return std::chrono::duration<double, std::milli>(d).count(); }

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

std::string Upper(std::string s) {
  for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return s;
}

std::string SearchNames(int key, int first, int count, const char* kind) {
  std::string s;
  for (int j = first; j < first + count; ++j) s += std::string(kind) + "field_" + std::to_string(key) + "_" + std::to_string(j) + ", ";
  return s;
}

// Table key i: "Key i", names 0..9 of key i, values 0..4.
void FillTable(qb::KeyTable& table, int keys) {
  for (int i = 0; i < keys; ++i) {
    qb::SetKeyField(table, i, qb::kName, "Key " + std::to_string(i));
    qb::SetKeyField(table, i, qb::kSearchNames, SearchNames(i, 0, kNamesPerKey, ""));
    std::string values;
    for (int v = 0; v < kValuesPerKey; ++v) values += "value " + std::to_string(i) + "." + std::to_string(v) + "\r\n";
    qb::SetKeyField(table, i, qb::kSelection, values);
    qb::SetKeyField(table, i, qb::kDescription, "Description of key " + std::to_string(i));
  }
  table.count = keys;
}

// Loaded key for table key t (upper case Name, so a duplicate): 4 of its own names,
// 3 of key t + 1, 3 new; values 2..4 of its own and 3 new. Keys past `duplicates`
// name no key of the table.
void FillLoaded(qb::KeyTable& loaded, int keys, int duplicates, std::mt19937& rng) {
  std::vector<int> order(keys);
  for (int i = 0; i < keys; ++i) order[i] = i;
  std::shuffle(order.begin(), order.end(), rng);
  for (int i = 0; i < keys; ++i) {
    const int t = order[i];
    const std::string name = t < duplicates ? Upper("Key " + std::to_string(t)) : "New key " + std::to_string(t);
    qb::SetKeyField(loaded, i, qb::kName, name);
    qb::SetKeyField(loaded, i, qb::kSearchNames,
                    Upper(SearchNames(t, 2, 4, "")) + SearchNames(t + 1, 0, 3, "") + SearchNames(t, 0, 3, "new_"));
    std::string values;
    for (int v = 2; v < 8; ++v) values += "VALUE " + std::to_string(t) + "." + std::to_string(v) + "\r\n";
    qb::SetKeyField(loaded, i, qb::kSelection, values);
    qb::SetKeyField(loaded, i, qb::kDescription, "Loaded description " + std::to_string(t));
  }
  loaded.count = keys;
}

void Run(const char* label, int tableKeys, int loadedKeys, int duplicates, int rounds, const std::string& dir) {
  std::mt19937 rng(2000);
  auto table = std::make_unique<qb::KeyTable>();
  auto loaded = std::make_unique<qb::KeyTable>();
  FillTable(*table, tableKeys);
  FillLoaded(*loaded, loadedKeys, duplicates, rng);
  const std::string tablePath = dir + "/Table.dat";
  const std::string loadedPath = dir + "/Loaded.dat";
  if (!qb::SaveDatabase(tablePath, *table) || !qb::SaveDatabase(loadedPath, *loaded)) std::exit(1);

  std::vector<double> load;
  for (int r = 0; r < rounds; ++r) {
    const auto t0 = Clock::now();
    qb::LoadDatabase(tablePath, *table);
    qb::LoadDatabase(loadedPath, *loaded);
    load.push_back(Ms(Clock::now() - t0));
  }
  std::vector<int> all(loadedKeys);
  for (int i = 0; i < loadedKeys; ++i) all[i] = i;
  std::printf("%s: load both files %.2f ms\n", label, Median(load));
  const char* const modes[] = {"Compare duplicated", "Owerwrite duplicated", "Do not add duplicated"};
  for (int mode = 0; mode < 3; ++mode) {
    std::vector<double> merge;
    qb::MergeOutcome outcome;
    for (int r = 0; r < rounds; ++r) {
      qb::LoadDatabase(tablePath, *table);
      const auto t0 = Clock::now();
      outcome = qb::MergeKeys(*table, *loaded, all, qb::MergeOptions{true, true, true, static_cast<qb::DuplicateMode>(mode)});
      merge.push_back(Ms(Clock::now() - t0));
    }
    std::printf("  %-22s merge %8.2f ms (%5.2f x load)  added %d, merged %d, skipped %d\n", modes[mode], Median(merge),
                Median(merge) / Median(load), outcome.added, outcome.merged, outcome.skipped);
  }
  qb::ClearAllKeys(*table);
  qb::ClearAllKeys(*loaded);
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;
  const auto dir = std::filesystem::temp_directory_path() / ("qb-merge-bench-" + std::to_string(std::random_device{}()));
  std::filesystem::create_directory(dir);
  Run("2000 loaded keys, all duplicates, into 2000 keys", 2000, 2000, 2000, rounds, dir.string());
  Run("1000 duplicates + 1000 new keys into 1000 keys", 1000, 2000, 1000, rounds, dir.string());
  std::filesystem::remove_all(dir);
  for (const qb::UserMessage& m : qb::TakeUserMessages()) std::fprintf(stderr, "message: %s\n", m.text.c_str());
  return 0;
}
