#include "keys/key_file.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <memory>

#include "base/user_message.h"
#include "keys/durable_file.h"

namespace qb {
namespace {

constexpr std::size_t kFileBufferSize = 64 * 1024;

using FilePtr = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

std::uint32_t GetLE32(const std::uint8_t* p) {
  return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
         static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

std::array<std::uint8_t, 4> LE32(std::uint32_t v) {
  return {static_cast<std::uint8_t>(v), static_cast<std::uint8_t>(v >> 8),
          static_cast<std::uint8_t>(v >> 16), static_cast<std::uint8_t>(v >> 24)};
}

// Byte sources for the reader: Read returns how many bytes it got (fewer only at
// the end); Skip says whether all `bytes` were there.
class MemorySource {
 public:
  MemorySource(const std::uint8_t* data, std::size_t size) : pos_(data), end_(data + size) {}
  std::size_t Read(void* into, std::size_t bytes) {
    const std::size_t n = std::min<std::size_t>(bytes, end_ - pos_);
    if (n) std::memcpy(into, pos_, n);
    pos_ += n;
    return n;
  }
  bool Skip(std::size_t bytes) {
    const std::size_t n = std::min<std::size_t>(bytes, end_ - pos_);
    pos_ += n;
    return n == bytes;
  }

 private:
  const std::uint8_t* pos_;
  const std::uint8_t* end_;
};

class FileSource {
 public:
  explicit FileSource(std::FILE* file) : file_(file) {}
  std::size_t Read(void* into, std::size_t bytes) { return std::fread(into, 1, bytes, file_); }
  bool Skip(std::size_t bytes) {
    std::array<char, 4096> scratch;
    while (bytes > 0) {
      const std::size_t want = std::min(bytes, scratch.size());
      const std::size_t got = std::fread(scratch.data(), 1, want, file_);
      bytes -= got;
      if (got < want) return false;
    }
    return true;
  }

 private:
  std::FILE* file_;
};

// Reads one field's text of `length` bytes into a new block at `entry`. False when
// the input ended inside it; what arrived stays in the block.
template <class Source>
bool ReadFieldText(Source& in, std::uint32_t length, TextBlock& entry) {
  // A zero-filled block two bytes longer than the text: the zeros end the text,
  // even when the input ends early.
  TextBlock block = AllocTextBlock(length + 2);
  char* text = block ? LockTextBlock(block) : nullptr;
  if (!text) {
    // Out of memory: the field stays empty, and the reader keeps its place.
    FreeTextBlock(block);
    return in.Skip(length);
  }
  const std::size_t got = in.Read(text, length);
  UnlockTextBlock(block);
  entry = block;
  return got == length;
}

template <class Source>
LoadResult ParseDatabase(Source& in, KeyTable& table) {
  LoadResult result;
  std::array<std::uint8_t, 4> word;
  if (in.Read(word.data(), 4) != 4 || GetLE32(word.data()) != kDatabaseMagic) {
    result.status = DatabaseLoadStatus::kNotADatabase;
    return result;
  }
  result.status = DatabaseLoadStatus::kLoaded;
  ClearAllKeys(table);
  if (in.Read(word.data(), 4) != 4) {
    result.endedEarly = true;
    return result;
  }
  result.declaredCount = static_cast<std::int32_t>(GetLE32(word.data()));
  if (result.declaredCount < 0) {
    result.countNegative = true;
    return result;
  }
  int keys = result.declaredCount;
  if (keys > kMaxKeys) {
    result.countTooLarge = true;
    keys = kMaxKeys;
  }
  for (int k = 0; k < keys; ++k) {
    for (int f = 0; f < kKeyFieldCount; ++f) {
      bool complete = in.Read(word.data(), 4) == 4;
      if (complete) {
        // A key counts once its Name's length is read; what follows may be cut.
        table.count = k + 1;
        const std::uint32_t length = GetLE32(word.data());
        if (length > 0 && length < kFieldLengthLimit) {
          complete = ReadFieldText(in, length, table.fields[f][k]);
        }
      }
      if (!complete) {
        result.endedEarly = true;
        result.lastKeyCut = table.count == k + 1;
        result.keysRead = table.count;
        return result;
      }
    }
  }
  result.keysRead = table.count;
  return result;
}

class VectorSink {
 public:
  explicit VectorSink(std::vector<std::uint8_t>& out) : out_(out) {}
  bool Write(const void* bytes, std::size_t n) {
    // resize and one copy: a range insert goes byte by byte in an instrumented build.
    const std::size_t at = out_.size();
    out_.resize(at + n);
    if (n) std::memcpy(out_.data() + at, bytes, n);
    return true;
  }

 private:
  std::vector<std::uint8_t>& out_;
};

class FileSink {
 public:
  explicit FileSink(std::FILE* file) : file_(file) {}
  bool Write(const void* bytes, std::size_t n) {
    written += n;
    return std::fwrite(bytes, 1, n, file_) == n;
  }
  std::size_t written = 0;

 private:
  std::FILE* file_;
};

template <class Sink>
bool WriteDatabase(Sink& out, const KeyTable& table) {
  const int count = KeysInUse(table);
  if (!out.Write(LE32(kDatabaseMagic).data(), 4)) return false;
  if (!out.Write(LE32(static_cast<std::uint32_t>(count)).data(), 4)) return false;
  for (int k = 0; k < count; ++k) {
    for (int f = 0; f < kKeyFieldCount; ++f) {
      TextLock lock(table.fields[f][k]);
      const std::string_view text = lock.text();
      if (!out.Write(LE32(static_cast<std::uint32_t>(text.size())).data(), 4)) return false;
      if (!text.empty() && !out.Write(text.data(), text.size())) return false;
    }
  }
  return true;
}

}  // namespace

LoadResult ReadDatabaseBytes(const std::uint8_t* data, std::size_t size, KeyTable& table) {
  MemorySource in(data, size);
  return ParseDatabase(in, table);
}

std::vector<std::uint8_t> DatabaseBytes(const KeyTable& table) {
  std::vector<std::uint8_t> out;
  VectorSink sink(out);
  WriteDatabase(sink, table);
  return out;
}

std::string DamageReport(const LoadResult& r) {
  if (r.countNegative) {
    return "The key count of this database file is damaged (" + std::to_string(r.declaredCount) +
           ").\nNo keys were loaded.";
  }
  std::string text;
  if (r.countTooLarge) {
    text += "This database file says it holds " + std::to_string(r.declaredCount) +
            " keys, but a database can hold at most " + std::to_string(kMaxKeys) +
            ".\nSaving it keeps only the keys loaded.\n";
  }
  if (r.endedEarly) text += "This database file ends early.\n";
  if (text.empty()) return text;
  text += "Keys loaded: " + std::to_string(r.keysRead);
  text += r.lastKeyCut ? " (the last one incomplete)." : ".";
  return text;
}

LoadResult LoadDatabase(const std::string& path, KeyTable& table, SlotName* slotName) {
  FilePtr file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!file) {
    if (slotName) slotName->fill('\0');
    return LoadResult{};
  }
  std::vector<char> buffer(kFileBufferSize);
  std::setvbuf(file.get(), buffer.data(), _IOFBF, buffer.size());
  FileSource in(file.get());
  LoadResult result = ParseDatabase(in, table);
  file.reset();  // before `buffer` goes
  if (result.status == DatabaseLoadStatus::kNotADatabase) {
    TellUser(kNotADatabaseText);
  } else if (std::string report = DamageReport(result); !report.empty()) {
    TellUser(report, nullptr, MessageIcon::kWarning);
  }
  return result;
}

bool SaveDatabase(const std::string& path, const KeyTable& table) {
  // The new database goes to a file beside the old one and takes its place only
  // when it is complete and on the disk: a full disk or a killed process leaves
  // the old database as it was.
  const std::string temp = path + kDatabaseTempSuffix;
  bool ok = false;
  {
    std::vector<char> buffer(kFileBufferSize);
    FilePtr file(std::fopen(temp.c_str(), "wb"), std::fclose);
    if (file) {
      std::setvbuf(file.get(), buffer.data(), _IOFBF, buffer.size());
      FileSink out(file.get());
      ok = WriteDatabase(out, table) && FlushToDisk(file.get());
      ok = std::fclose(file.release()) == 0 && ok;
      ok = ok && FileLength(temp) == static_cast<long>(out.written);
    }
  }
  if (ok) ok = MoveFileOver(temp, path);
  if (!ok) {
    std::remove(temp.c_str());
    TellUser(kCantWriteText);
  }
  return ok;
}

}  // namespace qb
