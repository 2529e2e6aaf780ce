// The document registry "ConfigHtml.cfg": for every page the program downloaded,
// its address (without scheme) and the local file that holds it. A header line,
// then two-line entries in the order they were added; no count, no deletion mark,
// no escaping. Each operation opens and closes the file itself; nothing is cached.
// Platform-free: the file is text that anyone may have edited.
#pragma once

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace qb {

constexpr char kRegistryFileName[] = "ConfigHtml.cfg";
constexpr char kRegistryTempName[] = "ConfigHtml2.cfg";
constexpr char kRegistryHeader[] = "DO NOT CHANGE OR EDIT THIS FILE IN ANY WAY!!!";
// Characters kept of one line; further characters overwrite the last one kept.
constexpr std::size_t kRegistryLineMax = 2047;

struct RegistryEntry {
  std::string url;
  std::string file;
};

// Walks the entries of an open registry stream. The first line is skipped whatever
// it holds. A pair is used only when both lines are non-empty, and an empty first
// line is not followed by a second read, so one blank line shifts the pairing.
class RegistryReader {
 public:
  explicit RegistryReader(std::FILE* in);
  // The next usable entry; false at the end of the stream.
  bool Next(RegistryEntry& entry);

 private:
  // False when the stream ended before the line's first character.
  bool ReadLine(std::string& line);
  std::FILE* in_;
};

// A file line after a folder rename: `newPrefix` and the rest of the line after
// `oldPrefix` when the line begins with it (any case), nullopt otherwise. Any line
// that begins with the old text follows, so renaming "Shops" moves "Shops2" too.
std::optional<std::string> RenamedFileLine(std::string_view line, std::string_view oldPrefix,
                                           std::string_view newPrefix);

class DocumentRegistry {
 public:
  // `registryPath` is the registry file; `tempPath` the file a rewrite goes through.
  DocumentRegistry(std::string registryPath, std::string tempPath);

  // The file of the first entry whose address begins with `urlPrefix` (any case).
  std::optional<std::string> FindFileForUrl(std::string_view urlPrefix) const;
  // The address of the first entry whose file equals `file` (any case).
  std::optional<std::string> FindUrlForFile(std::string_view file) const;
  // Appends an entry unless one for the same file exists (the older address stays).
  // A missing registry is only recreated, empty: that download is not recorded.
  void AddEntry(std::string_view file, std::string_view url) const;
  // Drops the entries whose files are gone.
  void Compact() const;
  // A link file moves: drops entries whose files are gone, then points the entry
  // of `oldPath` at `newPath`. Called while the old file still exists.
  void RenameFile(std::string_view oldPath, std::string_view newPath) const;
  // A folder or link was renamed: every file line beginning with `oldPrefix` gets
  // `newPrefix` instead. No existence test.
  void RenamePrefix(std::string_view oldPrefix, std::string_view newPrefix) const;

  const std::string& path() const { return registryPath_; }

 private:
  bool EntryReadsBack(long end, std::string_view url, std::string_view file) const;
  template <typename Match>
  std::optional<RegistryEntry> FirstEntry(Match match) const;

  enum class Rewrite { kCompact, kRenameFile, kRenamePrefix };
  void RewriteEntries(Rewrite kind, std::string_view from, std::string_view to) const;

  std::string registryPath_;
  std::string tempPath_;
};

}  // namespace qb
