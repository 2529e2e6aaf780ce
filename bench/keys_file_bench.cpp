// Load and save of a full database (2000 keys): once with fields of everyday
// sizes, once with every field at the longest length the file carries (29999
// bytes, a 240 MB file). Prints the median of several rounds of each.
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

namespace {

using Clock = std::chrono::steady_clock;

std::string Text(std::mt19937& rng, std::size_t length) {
  static const char kLetters[] = "abcdefghijklmnopqrstuvwxyz ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789,.-@";
  std::uniform_int_distribution<std::size_t> pick(0, sizeof(kLetters) - 2);
  std::string s(length, ' ');
  for (char& c : s) c = kLetters[pick(rng)];
  return s;
}

std::size_t Between(std::mt19937& rng, std::size_t lo, std::size_t hi) {
  return std::uniform_int_distribution<std::size_t>(lo, hi)(rng);
}

// Names of 8-30 bytes, Search Names of 20-120, a Selection of 2-10 short lines on
// one key in three, Descriptions of 5-300.
void FillEveryday(qb::KeyTable& table) {
  std::mt19937 rng(2000);
  for (int i = 0; i < qb::kMaxKeys; ++i) {
    qb::SetKeyField(table, i, qb::kName, Text(rng, Between(rng, 8, 30)));
    qb::SetKeyField(table, i, qb::kSearchNames, Text(rng, Between(rng, 20, 120)));
    if (i % 3 == 0) {
      std::string selection;
      for (std::size_t n = Between(rng, 2, 10); n > 0; --n) selection += Text(rng, Between(rng, 3, 16)) + "\r\n";
      qb::SetKeyField(table, i, qb::kSelection, selection);
    }
    qb::SetKeyField(table, i, qb::kDescription, Text(rng, Between(rng, 5, 300)));
  }
  table.count = qb::kMaxKeys;
}

void FillLongest(qb::KeyTable& table) {
  std::mt19937 rng(30000);
  const std::string text = Text(rng, qb::kMaxFieldLength);
  for (int i = 0; i < qb::kMaxKeys; ++i) {
    for (int f = 0; f < qb::kKeyFieldCount; ++f) qb::SetKeyField(table, i, static_cast<qb::KeyField>(f), text);
  }
  table.count = qb::kMaxKeys;
}

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

double Ms(Clock::duration d) { return std::chrono::duration<double, std::milli>(d).count(); }

void Run(const char* label, void (*fill)(qb::KeyTable&), int rounds, const std::string& path) {
  auto table = std::make_unique<qb::KeyTable>();
  auto loaded = std::make_unique<qb::KeyTable>();
  fill(*table);
  std::vector<double> save, load;
  for (int r = 0; r < rounds; ++r) {
    auto t0 = Clock::now();
    if (!qb::SaveDatabase(path, *table)) {
      std::fprintf(stderr, "save failed\n");
      std::exit(1);
    }
    auto t1 = Clock::now();
    qb::ClearAllKeys(*loaded);
    auto t2 = Clock::now();
    const qb::LoadResult result = qb::LoadDatabase(path, *loaded);
    auto t3 = Clock::now();
    if (!result.loaded() || result.damaged() || result.keysRead != qb::kMaxKeys) {
      std::fprintf(stderr, "load failed\n");
      std::exit(1);
    }
    save.push_back(Ms(t1 - t0));
    load.push_back(Ms(t3 - t2));
  }
  const double mb = static_cast<double>(std::filesystem::file_size(path)) / (1024.0 * 1024.0);
  std::printf("%-28s file %9.2f MB  save %9.2f ms (%7.1f MB/s)  load %9.2f ms (%7.1f MB/s)  [median of %d]\n",
              label, mb, Median(save), mb / Median(save) * 1000.0, Median(load), mb / Median(load) * 1000.0,
              rounds);
  qb::ClearAllKeys(*table);
  qb::ClearAllKeys(*loaded);
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 9;
  const auto dir = std::filesystem::temp_directory_path() /
                   ("qb-keys-bench-" + std::to_string(std::random_device{}()));
  std::filesystem::create_directory(dir);
  const std::string path = (dir / "Bench.dat").string();
  Run("2000 keys, everyday fields", FillEveryday, rounds, path);
  Run("2000 keys, 4 x 29999 bytes", FillLongest, std::max(1, rounds / 3), path);
  std::filesystem::remove_all(dir);
  for (const qb::UserMessage& m : qb::TakeUserMessages()) std::fprintf(stderr, "message: %s\n", m.text.c_str());
  return 0;
}
