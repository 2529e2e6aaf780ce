#include "app/settings_file.h"
#include "keys/durable_file.h"

#include <cstdio>
#include <algorithm>
#include <cstring>
#include <memory>

namespace qb {
namespace {

// Walks the file image field by field, copying what is there.
class FieldReader {
 public:
  FieldReader(const std::uint8_t* bytes, std::size_t size) : bytes_(bytes), size_(size) {}
  void Field(void* field, std::size_t width) {
    std::size_t n = pos_ < size_ ? std::min(width, size_ - pos_) : 0;
    if (n) std::memcpy(field, bytes_ + pos_, n);
    pos_ += width;
  }

 private:
  const std::uint8_t* bytes_;
  std::size_t size_;
  std::size_t pos_ = 0;
};

class FieldWriter {
 public:
  void Field(const void* field, std::size_t width) {
    const auto* p = static_cast<const std::uint8_t*>(field);
    out_.insert(out_.end(), p, p + width);
  }
  std::vector<std::uint8_t> Take() { return std::move(out_); }

 private:
  std::vector<std::uint8_t> out_;
};

// The integer fields are stored in host order; both targets are little-endian.
static_assert(sizeof(std::uint32_t) == 4 && sizeof(std::int32_t) == 4, "32-bit fields");

template <typename Io, typename Settings>
void Fields(Io& io, Settings& s) {
  auto field = [&io](auto& v, std::size_t width) { io.Field(&v, width); };
  field(s.reservedWord, 4);
  field(s.reservedBlock, 256);
  field(s.windowRect.left, 4);
  field(s.windowRect.top, 4);
  field(s.windowRect.right, 4);
  field(s.windowRect.bottom, 4);
  field(s.maximized, 4);
  for (auto& name : s.slotNames) field(name, kSlotNameSize);
  field(s.reserved2, 8);
  for (auto& v : s.askForSelect) field(v, 4);
  for (auto& v : s.addKeys) field(v, 4);
  field(s.browserKind, 4);
  field(s.otherBrowserCaption, kBrowserTextFileWidth);
  field(s.browserProgram, kBrowserTextFileWidth);
  field(s.arrangement, 4);
  field(s.onTop, 1);
  field(s.copyDescription, 4);
  field(s.toolBarSide, 1);  // the two side bytes are adjacent: one 2-byte field
  field(s.databaseBarSide, 1);
  field(s.formStatistics, 4);
}

}  // namespace

void ParseSettings(const std::uint8_t* bytes, std::size_t size, AppSettings& settings) {
  // The browser texts are cleared before they are read, whether or not the file
  // reaches them; their last 4 bytes never come from the file.
  settings.otherBrowserCaption.fill(0);
  settings.browserProgram.fill(0);
  FieldReader reader(bytes, size);
  Fields(reader, settings);
}

std::vector<std::uint8_t> SerializeSettings(const AppSettings& settings) {
  FieldWriter writer;
  Fields(writer, settings);
  return writer.Take();
}

bool ReadSettingsFile(const std::string& path, AppSettings& settings) {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> f(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!f) return false;
  std::vector<std::uint8_t> image(kSettingsFileSize);
  std::size_t got = std::fread(image.data(), 1, image.size(), f.get());
  ParseSettings(image.data(), got, settings);
  return true;
}

bool WriteSettingsFile(const std::string& path, const AppSettings& settings) {
  // Written beside the old file and put in its place only when whole: a full disk
  // keeps the old settings rather than leaving a short file that loads as defaults.
  const std::string temp = path + ".tmp";
  std::FILE* f = std::fopen(temp.c_str(), "wb");
  if (!f) return false;
  const std::vector<std::uint8_t> image = SerializeSettings(settings);
  bool ok = std::fwrite(image.data(), 1, image.size(), f) == image.size();
  ok = FlushToDisk(f) && ok;
  ok = std::fclose(f) == 0 && ok;
  ok = ok && FileLength(temp) == static_cast<long>(image.size());
  if (ok) ok = MoveFileOver(temp, path);
  if (!ok) std::remove(temp.c_str());
  return ok;
}

namespace {
// 32-bit arithmetic wraps, as it does in the program on any saved values.
std::int32_t Sub(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}
}  // namespace

WindowRect ClampWindowRect(WindowRect r, int width, int height) {
  if (r.left >= Sub(width, 8)) r.left = 0;
  if (r.top >= Sub(height, 8)) r.top = 0;
  if (r.right > width) r.right = Sub(width, r.left);
  if (r.bottom > height) r.bottom = Sub(height, r.top);
  if (Sub(r.right, r.left) < 20) {
    r.left = 0;
    r.right = 300;
  }
  if (Sub(r.bottom, r.top) < 20) {
    r.top = 0;
    r.bottom = 100;
  }
  return r;
}

}  // namespace qb
