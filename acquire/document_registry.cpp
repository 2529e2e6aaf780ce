#include "acquire/document_registry.h"

#include <algorithm>
#include <memory>

#include "acquire/no_case.h"
#include "keys/durable_file.h"

namespace qb {
namespace {

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

File Open(const std::string& path, const char* mode) { return File(std::fopen(path.c_str(), mode)); }

// The saved page still exists when it can be opened for reading.
bool FileExists(const std::string& path) { return Open(path, "r") != nullptr; }

void SkipLine(std::FILE* in) {
  int c;
  while ((c = std::fgetc(in)) != EOF && c != '\n') {
  }
}

// One line as every reader will read it back: up to the first line feed, at most
// kRegistryLineMax characters.
std::string_view AsLine(std::string_view text) {
  return text.substr(0, std::min(text.find('\n'), kRegistryLineMax));
}

// An entry with an empty line would shift the pairing of every later entry, so
// such an entry is never written.
bool WriteEntry(std::FILE* out, std::string_view url, std::string_view file) {
  const std::string_view urlLine = AsLine(url);
  const std::string_view fileLine = AsLine(file);
  if (urlLine.empty() || fileLine.empty()) return true;
  std::string text;
  text.reserve(urlLine.size() + fileLine.size() + 2);
  text.append(urlLine).append("\n").append(fileLine).append("\n");
  return std::fwrite(text.data(), 1, text.size(), out) == text.size();
}

}  // namespace

RegistryReader::RegistryReader(std::FILE* in) : in_(in) { SkipLine(in_); }

bool RegistryReader::ReadLine(std::string& line) {
  line.clear();
  int c = std::fgetc(in_);
  if (c == EOF) return false;
  for (; c != EOF && c != '\n'; c = std::fgetc(in_)) {
    if (line.size() < kRegistryLineMax)
      line += static_cast<char>(c);
    else
      line.back() = static_cast<char>(c);
  }
  return true;
}

bool RegistryReader::Next(RegistryEntry& entry) {
  for (;;) {
    if (!ReadLine(entry.url)) return false;
    entry.file.clear();
    if (!entry.url.empty()) ReadLine(entry.file);
    if (!entry.url.empty() && !entry.file.empty()) return true;
  }
}

std::optional<std::string> RenamedFileLine(std::string_view line, std::string_view oldPrefix,
                                           std::string_view newPrefix) {
  if (!StartsWithNoCase(line, oldPrefix)) return std::nullopt;
  std::string renamed(newPrefix);
  renamed += line.substr(oldPrefix.size());
  // A longer new prefix must not give a line that reads back differently.
  if (renamed.size() > kRegistryLineMax) renamed.resize(kRegistryLineMax);
  return renamed;
}

DocumentRegistry::DocumentRegistry(std::string registryPath, std::string tempPath)
    : registryPath_(std::move(registryPath)), tempPath_(std::move(tempPath)) {}

template <typename Match>
std::optional<RegistryEntry> DocumentRegistry::FirstEntry(Match match) const {
  File in = Open(registryPath_, "r");
  if (!in) return std::nullopt;
  RegistryReader reader(in.get());
  RegistryEntry entry;
  while (reader.Next(entry))
    if (match(entry)) return entry;
  return std::nullopt;
}

std::optional<std::string> DocumentRegistry::FindFileForUrl(std::string_view urlPrefix) const {
  auto found = FirstEntry([&](const RegistryEntry& e) { return StartsWithNoCase(e.url, urlPrefix); });
  return found ? std::optional<std::string>(std::move(found->file)) : std::nullopt;
}

std::optional<std::string> DocumentRegistry::FindUrlForFile(std::string_view file) const {
  auto found = FirstEntry([&](const RegistryEntry& e) { return EqualNoCase(e.file, file); });
  return found ? std::optional<std::string>(std::move(found->url)) : std::nullopt;
}

void DocumentRegistry::AddEntry(std::string_view file, std::string_view url) const {
  if (!Open(registryPath_, "r")) {
    // Recreated without its header, and this entry is not recorded: the next
    // entry appended stands where the header belongs. That is how the registry
    // has always come back after it went missing.
    Open(registryPath_, "w");
    return;
  }
  if (FindUrlForFile(file)) return;  // the older address stays
  File out = Open(registryPath_, "a+");
  if (!out) return;
  std::fseek(out.get(), 0, SEEK_END);
  const long end = std::ftell(out.get());
  const bool written = WriteEntry(out.get(), url, file);
  if (std::fclose(out.release()) == 0 && written && EntryReadsBack(end, url, file)) return;
  // A full disk took part of the entry. Half an entry would pair the lines of
  // every later one wrongly, so the file is cut back to where it ended.
  if (end >= 0) CutFile(registryPath_, end);
}

// A full disk can take part of an entry while the run-time reports it whole, so
// what was appended at `end` is read back.
bool DocumentRegistry::EntryReadsBack(long end, std::string_view url, std::string_view file) const {
  File in = Open(registryPath_, "r");
  if (!in || end < 0 || std::fseek(in.get(), end, SEEK_SET) != 0) return false;
  std::string expected;
  expected.append(AsLine(url)).append("\n").append(AsLine(file)).append("\n");
  std::string back(expected.size() + 1, '\0');
  back.resize(std::fread(back.data(), 1, back.size(), in.get()));
  return back == expected;
}

void DocumentRegistry::Compact() const { RewriteEntries(Rewrite::kCompact, {}, {}); }

void DocumentRegistry::RenameFile(std::string_view oldPath, std::string_view newPath) const {
  RewriteEntries(Rewrite::kRenameFile, oldPath, newPath);
}

void DocumentRegistry::RenamePrefix(std::string_view oldPrefix, std::string_view newPrefix) const {
  RewriteEntries(Rewrite::kRenamePrefix, oldPrefix, newPrefix);
}

void DocumentRegistry::RewriteEntries(Rewrite kind, std::string_view from, std::string_view to) const {
  {
    File in = Open(registryPath_, "r");
    if (!in) return;
    File out = Open(tempPath_, "w");
    if (!out) return;
    RegistryReader reader(in.get());
    bool written = std::fputs(kRegistryHeader, out.get()) >= 0 && std::fputs("\n", out.get()) >= 0;
    RegistryEntry entry;
    while (written && reader.Next(entry)) {
      if (kind != Rewrite::kRenamePrefix && !FileExists(entry.file)) continue;
      if (kind == Rewrite::kRenameFile && EqualNoCase(entry.file, from)) {
        entry.file = std::string(to);
      } else if (kind == Rewrite::kRenamePrefix) {
        if (std::optional<std::string> renamed = RenamedFileLine(entry.file, from, to))
          entry.file = std::move(*renamed);
      }
      written = WriteEntry(out.get(), entry.url, entry.file);
    }
    // A rewrite that could not be written whole must not replace the registry.
    if (std::fclose(out.release()) != 0 || !written) return;
  }
  // Put in place in one step: copied over, a full disk could cut the registry short.
  if (!MoveFileOver(tempPath_, registryPath_)) std::remove(tempPath_.c_str());
}

}  // namespace qb
