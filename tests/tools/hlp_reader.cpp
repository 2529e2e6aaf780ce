#include "tests/tools/hlp_reader.h"

#include <cstring>

namespace qb::test {
namespace {

constexpr std::uint32_t kHelpMagic = 0x00035F3F;
constexpr std::size_t kFileHeader = 9;  // an internal file's reserved and used sizes, and a flag byte
constexpr std::uint16_t kTreeMagic = 0x293B;
constexpr std::size_t kTreeHeader = 38;
constexpr std::uint16_t kNoPage = 0xFFFF;
constexpr std::uint32_t kNoLink = 0xFFFFFFFF;
constexpr std::size_t kBlockSize = 4096;
constexpr std::size_t kBlockHeader = 12;  // the last link before the block, its first link, one more
constexpr std::size_t kDecompressedBlock = 0x4000;
constexpr std::uint32_t kCharactersPerBlock = 0x8000;
constexpr std::size_t kLinkHeader = 21;

std::uint16_t U16At(const std::uint8_t* p) { return static_cast<std::uint16_t>(p[0] | p[1] << 8); }
std::uint32_t U32At(const std::uint8_t* p) { return U16At(p) | static_cast<std::uint32_t>(U16At(p + 2)) << 16; }

bool Fail(std::string& error, const std::string& what) {
  error = what;
  return false;
}

}  // namespace

// Past the end a read returns 0 and the cursor stays failed; a default one has failed.
class HlpCursor {
 public:
  HlpCursor() = default;
  HlpCursor(const std::uint8_t* p, std::size_t n) : p_(p), n_(n), ok_(true) {}
  bool ok() const { return ok_; }
  bool AtEnd() const { return ok_ && at_ == n_; }
  const std::uint8_t* here() const { return p_ + at_; }
  std::size_t left() const { return n_ - at_; }
  bool Has(std::size_t k) const { return ok_ && k <= n_ - at_; }
  std::uint8_t Peek() const { return Has(1) ? p_[at_] : 0; }
  std::uint8_t U8() { return Has(1) ? p_[at_++] : Bad(); }
  std::uint16_t U16() { return Has(2) ? U16At(Take(2)) : Bad(); }
  std::uint32_t U32() { return Has(4) ? U32At(Take(4)) : Bad(); }
  void Skip(std::size_t k) { Has(k) ? void(Take(k)) : void(Bad()); }
  // The next `k` bytes as a cursor of their own.
  HlpCursor Sub(std::size_t k) { return Has(k) ? HlpCursor(Take(k), k) : (Bad(), HlpCursor()); }
  std::vector<std::uint8_t> Bytes(std::size_t k) {
    if (!Has(k)) return Bad(), std::vector<std::uint8_t>();
    const std::uint8_t* p = Take(k);
    return {p, p + k};
  }
  std::string Z() {
    const void* nul = ok_ ? std::memchr(p_ + at_, 0, n_ - at_) : nullptr;
    if (!nul) return Bad(), std::string();
    const std::size_t len = static_cast<const std::uint8_t*>(nul) - (p_ + at_);
    return std::string(reinterpret_cast<const char*>(Take(len + 1)), len);
  }
  // The packed numbers of display records: the low bit of the first byte says
  // whether the longer form is used.
  std::uint32_t PackedUShort() { return (Peek() & 1) ? U16() >> 1 : U8() >> 1; }
  int PackedShort() { return (Peek() & 1) ? (U16() >> 1) - 16384 : (U8() >> 1) - 64; }
  long PackedLong() {
    return (Peek() & 1) ? static_cast<long>(U32() >> 1) - 0x40000000L : static_cast<long>(U16() >> 1) - 16384;
  }

 private:
  const std::uint8_t* Take(std::size_t k) {
    at_ += k;
    return p_ + at_ - k;
  }
  std::uint8_t Bad() {
    ok_ = false;
    return 0;
  }
  const std::uint8_t* p_ = nullptr;
  std::size_t n_ = 0;
  std::size_t at_ = 0;
  bool ok_ = false;
};

namespace {

// The internal file at `offset`: its header, then its data.
HlpCursor InternalFile(const std::vector<std::uint8_t>& bytes, std::uint32_t offset) {
  HlpCursor c(bytes.data(), bytes.size());
  c.Skip(offset);
  const std::uint32_t reserved = c.U32(), used = c.U32();
  c.U8();
  const HlpCursor data = c.Sub(used);
  return reserved >= used + kFileHeader && reserved <= bytes.size() - offset ? data : HlpCursor();
}

// LZ77 as the format describes it: per flag byte, eight items from its low bit
// up; a set bit is a 12-bit distance (minus one) and a 4-bit length (minus three).
bool Lz77(const std::uint8_t* p, std::size_t n, std::vector<std::uint8_t>& out, std::string& error) {
  std::size_t i = 0;
  while (i < n) {
    const std::uint8_t flags = p[i++];
    for (int bit = 0; bit < 8 && i < n; ++bit) {
      if (flags & (1 << bit)) {
        if (i + 2 > n) return Fail(error, "LZ77 reference cut off");
        const unsigned code = p[i] | p[i + 1] << 8;
        i += 2;
        const std::size_t distance = (code & 0xFFF) + 1;
        const std::size_t length = (code >> 12) + 3;
        if (distance > out.size()) return Fail(error, "LZ77 reference before the start");
        for (std::size_t k = 0; k < length; ++k) out.push_back(out[out.size() - distance]);
      } else {
        out.push_back(p[i++]);
      }
      if (out.size() > kDecompressedBlock) return Fail(error, "topic block decompresses past 16 KB");
    }
  }
  return true;
}

}  // namespace

bool HlpBTree::Read(const std::uint8_t* data, std::size_t size, KeyKind kind, std::string& error) {
  HlpCursor c(data, size);
  if (c.U16() != kTreeMagic) return Fail(error, "not a B+ tree");
  c.U16();  // flags
  pageSize_ = c.U16();
  c.Skip(16 + 2 + 2);  // structure, zero, page splits
  root_ = c.U16();
  if (c.U16() != 0xFFFF) return Fail(error, "B+ tree header: no -1 after the root page");
  pageCount_ = c.U16();
  levels_ = c.U16();
  count_ = c.U32();
  if (!c.ok() || pageSize_ < 16 || levels_ < 1 || root_ >= pageCount_ ||
      kTreeHeader + pageCount_ * pageSize_ > size)
    return Fail(error, "B+ tree header out of range");
  kind_ = kind;
  pages_.assign(data + kTreeHeader, data + kTreeHeader + pageCount_ * pageSize_);
  return true;
}

HlpCursor HlpBTree::Page(std::size_t page, std::uint16_t& count) const {
  if (page >= pageCount_) return HlpCursor();
  HlpCursor c(pages_.data() + page * pageSize_, pageSize_);
  c.Skip(2);  // unused bytes
  count = c.U16();
  return c;
}

HlpBTree::Key HlpBTree::ReadKey(HlpCursor& page) const {
  if (kind_ == kLongKey) return page.Bytes(4);
  const std::string text = page.Z();
  return Key(text.begin(), text.end());
}

int HlpBTree::Compare(const Key& a, const Key& b) const {
  if (kind_ == kStringKey) return (a > b) - (a < b);  // byte by byte, as strcmp
  const auto x = static_cast<std::int32_t>(U32At(a.data())), y = static_cast<std::int32_t>(U32At(b.data()));
  return (x > y) - (x < y);
}

bool HlpBTree::ReadLeaf(std::size_t page, std::vector<Entry>& entries, std::size_t& next) const {
  std::uint16_t count = 0;
  HlpCursor c = Page(page, count);
  c.Skip(2);  // previous leaf
  next = c.U16();
  for (std::uint16_t i = 0; i < count && c.ok(); ++i) {
    Key key = ReadKey(c);
    entries.emplace_back(std::move(key), c.U32());
  }
  return c.ok();
}

std::optional<std::size_t> HlpBTree::LeafFor(const Key* key) const {
  std::size_t page = root_;
  for (int level = levels_; level > 1; --level) {
    std::uint16_t count = 0;
    HlpCursor c = Page(page, count);
    page = c.U16();  // the child before every key of the page
    for (std::uint16_t i = 0; key && i < count && c.ok(); ++i) {
      const Key first = ReadKey(c);
      const std::uint16_t child = c.U16();
      if (Compare(first, *key) > 0) break;
      page = child;
    }
    if (!c.ok()) return std::nullopt;
  }
  return page;
}

bool HlpBTree::Leaves(std::vector<Entry>& entries, std::string& error) const {
  entries.clear();
  const std::optional<std::size_t> first = LeafFor(nullptr);
  if (!first) return Fail(error, "index page out of range");
  for (std::size_t page = *first, visited = 0; page != kNoPage;) {
    if (++visited > pageCount_) return Fail(error, "leaf chain runs in a circle");
    if (!ReadLeaf(page, entries, page)) return Fail(error, "leaf page out of range or overrun");
  }
  for (std::size_t i = 1; i < entries.size(); ++i)
    if (Compare(entries[i - 1].first, entries[i].first) >= 0) return Fail(error, "leaf keys out of order");
  if (entries.size() != count_) return Fail(error, "B+ tree holds another number of entries than it says");
  return true;
}

std::optional<std::uint32_t> HlpBTree::Find(const Key& key) const {
  const std::optional<std::size_t> page = LeafFor(&key);
  std::vector<Entry> leaf;
  std::size_t next;
  if (!page || !ReadLeaf(*page, leaf, next)) return std::nullopt;
  for (const auto& [k, value] : leaf)
    if (Compare(k, key) == 0) return value;
  return std::nullopt;
}

HlpBTree::Key LongKey(std::int32_t value) {
  const auto u = static_cast<std::uint32_t>(value);
  return {static_cast<std::uint8_t>(u), static_cast<std::uint8_t>(u >> 8), static_cast<std::uint8_t>(u >> 16),
          static_cast<std::uint8_t>(u >> 24)};
}

bool HlpFile::File(const std::string& name, HlpCursor& data, std::string& error) const {
  const std::optional<std::uint32_t> offset = directory_.Find(HlpBTree::Key(name.begin(), name.end()));
  if (!offset) return Fail(error, "no internal file " + name);
  data = InternalFile(bytes_, *offset);
  return data.ok() || Fail(error, "internal file " + name + " out of range");
}

bool HlpFile::ReadSystem(std::string& error) {
  HlpCursor c;
  if (!File("|SYSTEM", c, error)) return false;
  const std::uint16_t magic = c.U16(), minor = c.U16(), major = c.U16();
  c.U32();  // date
  const std::uint16_t flags = c.U16();
  if (magic != 0x036C || major != 1) return Fail(error, "|SYSTEM: not a help file header");
  // This reader knows the Windows 3.1 layout with LZ77 topic blocks of 4 KB only.
  if (minor <= 16 || flags != 4) return Fail(error, "|SYSTEM: a version or compression not read here");
  bool haveContents = false;
  while (!c.AtEnd()) {
    const std::uint16_t type = c.U16();
    HlpCursor record = c.Sub(c.U16());
    if (!c.ok()) return Fail(error, "|SYSTEM record overruns the file");
    if (type == 1) {
      title = record.Z();
    } else if (type == 3) {
      contentsOffset = record.U32();
      haveContents = true;
    } else if (type == 6) {
      record.Skip(2 + 10 + 9);
      windowCaption = record.Z();
    }
    if (!record.ok()) return Fail(error, "|SYSTEM record " + std::to_string(type) + " malformed");
  }
  return haveContents || Fail(error, "|SYSTEM names no contents topic");
}

bool HlpFile::ReadTopics(std::string& error) {
  HlpCursor file;
  if (!File("|TOPIC", file, error)) return false;
  const std::uint8_t* data = file.here();
  if (file.left() == 0 || file.left() % kBlockSize) return Fail(error, "|TOPIC is not whole blocks");
  std::vector<std::vector<std::uint8_t>> blocks(file.left() / kBlockSize);
  for (std::size_t k = 0; k < blocks.size(); ++k)
    if (!Lz77(data + k * kBlockSize + kBlockHeader, kBlockSize - kBlockHeader, blocks[k], error)) return false;

  std::uint32_t pos = 12, previous = kNoLink, characters = 0;
  std::uint32_t headerNext = kNoLink;  // where the last topic header says the next one is
  std::size_t currentBlock = SIZE_MAX, links = 0;
  std::string paragraph;  // a paragraph may go on in the next record
  while (pos != kNoLink) {
    if (pos < kBlockHeader || ++links > file.left()) return Fail(error, "topic link chain broken");
    const std::size_t block = (pos - kBlockHeader) / kDecompressedBlock;
    const std::size_t at = (pos - kBlockHeader) % kDecompressedBlock;
    if (block >= blocks.size() || at + kLinkHeader > blocks[block].size())
      return Fail(error, "topic link outside the topic blocks");
    if (block != currentBlock) {
      const std::uint8_t* header = data + block * kBlockSize;
      if (U32At(header + 4) != pos) return Fail(error, "block header names another first link");
      if (U32At(header) != (block == 0 ? kNoLink : previous))
        return Fail(error, "block header names another last link");
      currentBlock = block;
      characters = 0;
    }
    HlpCursor link(blocks[block].data() + at, blocks[block].size() - at);
    const std::uint32_t linkSize = link.U32(), length2 = link.U32(), prev = link.U32(), next = link.U32(),
                        length1 = link.U32();
    const std::uint8_t type = link.U8();
    HlpCursor data1 = link.Sub(length1 - kLinkHeader), data2 = link.Sub(length2);
    if (!link.ok() || length1 < kLinkHeader || linkSize != length1 + length2)
      return Fail(error, "topic link sizes inconsistent");
    if (prev != previous) return Fail(error, "topic link's previous link is wrong");

    if (type == 0x02) {
      if (!paragraph.empty()) return Fail(error, "a paragraph runs into the next topic");
      if (!topics.empty() && headerNext != pos) return Fail(error, "a topic header names another next topic");
      data1.Skip(12);
      if (data1.U32() != topics.size()) return Fail(error, "topic number out of sequence");
      data1.Skip(8);
      headerNext = data1.U32();
      topics.push_back({static_cast<std::uint32_t>(block) * kCharactersPerBlock + characters, data2.Z(), {}, {}});
      if (!data1.AtEnd() || !data2.ok()) return Fail(error, "topic header malformed");
    } else if (type == 0x20) {
      if (topics.empty()) return Fail(error, "text before the first topic");
      HlpTopic& topic = topics.back();
      // The paragraph's format, of which only the character count is used.
      data1.PackedLong();
      const std::uint32_t length = data1.PackedUShort();
      data1.Skip(4);
      const std::uint16_t bits = data1.U16();
      if (bits & 0x0001) data1.PackedLong();
      for (std::uint16_t b : {0x0002, 0x0004, 0x0008, 0x0010, 0x0020, 0x0040})
        if (bits & b) data1.PackedShort();
      if (bits & 0x0100) data1.Skip(3);
      if (bits & 0x0200) {
        const int tabs = data1.PackedShort();
        for (int i = 0; i < tabs && data1.ok(); ++i)
          if (data1.PackedUShort() & 0x4000) data1.PackedUShort();
      }
      std::uint32_t counted = 0;
      for (bool more = true; more;) {
        const std::string text = data2.Z();
        paragraph += text;
        counted += static_cast<std::uint32_t>(text.size());
        const std::uint8_t command = data1.U8();
        if (!data1.ok() || !data2.ok()) return Fail(error, "display record runs out of its data");
        switch (command) {
          case 0xFF: more = false; break;
          case 0x80: data1.U16(); break;
          case 0x81: paragraph += '\n'; ++counted; break;
          case 0x82: topic.paragraphs.push_back(paragraph); paragraph.clear(); ++counted; break;
          case 0x83: paragraph += '\t'; ++counted; break;
          case 0x89: break;
          case 0xE2: case 0xE3: case 0xE6: case 0xE7:
            topic.jumps.push_back(static_cast<std::int32_t>(data1.U32()));
            break;
          default:
            return Fail(error, "unknown formatting command " + std::to_string(command));
        }
      }
      if (!data1.AtEnd() || !data2.AtEnd()) return Fail(error, "display record holds more than it uses");
      if (counted != length) return Fail(error, "display record counts another number of characters");
      characters += length;
    } else {
      return Fail(error, "unknown topic record type " + std::to_string(type));
    }
    previous = pos;
    pos = next;
  }
  if (!paragraph.empty()) return Fail(error, "the last paragraph has no end");
  if (topics.empty()) return Fail(error, "no topics");
  return headerNext == kNoLink || Fail(error, "the last topic header names a next topic");
}

bool HlpFile::Read(const std::vector<std::uint8_t>& bytes, std::string& error) {
  *this = HlpFile();
  bytes_ = bytes;
  HlpCursor header(bytes_.data(), bytes_.size());
  if (header.U32() != kHelpMagic) return Fail(error, "not a help file");
  const std::uint32_t directory = header.U32();
  header.U32();  // free list
  if (header.U32() != bytes_.size()) return Fail(error, "file size in the header differs");
  const HlpCursor dir = InternalFile(bytes_, directory);
  if (!dir.ok()) return Fail(error, "directory out of range");
  if (!directory_.Read(dir.here(), dir.left(), HlpBTree::kStringKey, error)) return false;
  std::vector<HlpBTree::Entry> files;
  if (!directory_.Leaves(files, error)) return false;
  for (const auto& f : files) fileNames.emplace_back(f.first.begin(), f.first.end());

  HlpCursor map, context;
  if (!ReadSystem(error) || !ReadTopics(error) || !File("|CTXOMAP", map, error)) return false;
  for (std::uint16_t i = 0, count = map.U16(); i < count && map.ok(); ++i) {
    const std::uint32_t number = map.U32();
    contextNumbers[number] = map.U32();
  }
  if (!map.AtEnd()) return Fail(error, "|CTXOMAP size differs from its count");
  if (!File("|CONTEXT", context, error) || !context_.Read(context.here(), context.left(), HlpBTree::kLongKey, error))
    return false;
  std::vector<HlpBTree::Entry> leaves;  // read for the checks on the way
  return context_.Leaves(leaves, error);
}

std::optional<std::uint32_t> HlpFile::FindContext(std::int32_t hash) const {
  return context_.Find(LongKey(hash));
}

const HlpTopic* HlpFile::TopicAt(std::uint32_t offset) const {
  const HlpTopic* found = nullptr;
  for (const HlpTopic& t : topics)  // read in the order of their offsets
    if (t.offset <= offset) found = &t;
  return found;
}

const HlpTopic* HlpFile::TopicOfNumber(std::uint32_t number) const {
  const auto it = contextNumbers.find(number);
  return it == contextNumbers.end() ? nullptr : TopicAt(it->second);
}

}  // namespace qb::test
