// The registry reader over any bytes, and a rewrite round trip: every entry read
// is non-empty and within one line, and a folder rename written back reads back
// as exactly the renamed entries.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "acquire/document_registry.h"

namespace {

void Check(bool condition) {
  if (!condition) std::abort();
}

// Each input is written to a memory-backed file, read, renamed and read again.
struct Files {
  const std::string base = "/dev/shm/fuzz_registry." + std::to_string(getpid());
  const std::string registry = base + ".cfg", temp = base + "2.cfg";
  ~Files() {
    std::remove(registry.c_str());
    std::remove(temp.c_str());
  }
} g_files;

std::vector<qb::RegistryEntry> ReadAll() {
  std::vector<qb::RegistryEntry> entries;
  std::FILE* in = std::fopen(g_files.registry.c_str(), "r");
  Check(in != nullptr);
  qb::RegistryReader reader(in);
  for (qb::RegistryEntry e; reader.Next(e); entries.push_back(e))
    for (const std::string* line : {&e.url, &e.file})
      Check(!line->empty() && line->size() <= qb::kRegistryLineMax &&
            line->find('\n') == line->npos);
  std::fclose(in);
  return entries;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::FILE* out = std::fopen(g_files.registry.c_str(), "wb");
  if (!out) return 0;
  std::fwrite(data, 1, size, out);
  std::fclose(out);
  const std::vector<qb::RegistryEntry> entries = ReadAll();

  // The rename prefix is the start of the first file line, so renames do happen.
  const std::string oldPrefix = entries.empty() ? "C:\\" : entries[0].file.substr(0, 3);
  const std::string newPrefix = "D:\\Renamed";
  qb::DocumentRegistry(g_files.registry, g_files.temp).RenamePrefix(oldPrefix, newPrefix);
  const std::vector<qb::RegistryEntry> after = ReadAll();
  Check(after.size() == entries.size());
  for (std::size_t i = 0; i < entries.size(); ++i) {
    Check(after[i].url == entries[i].url);
    const auto renamed = qb::RenamedFileLine(entries[i].file, oldPrefix, newPrefix);
    Check(after[i].file == (renamed ? *renamed : entries[i].file));
  }
  return 0;
}
