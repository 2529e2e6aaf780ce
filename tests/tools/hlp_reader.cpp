#include "tests/tools/hlp_reader.h"

#include <cstring>
#include <stdexcept>

namespace qb::test {
namespace {

constexpr std::uint32_t kHelpMagic = 0x00035F3F;
constexpr std::size_t kFileHeader = 9;  // an internal file's reserved and used sizes, and a flag byte
constexpr std::uint16_t kTreeMagic = 0x293B;
constexpr std::uint16_t kNoPage = 0xFFFF;
constexpr std::uint32_t kNoLink = 0xFFFFFFFF;
constexpr std::size_t kBlockSize = 4096;
constexpr std::size_t kBlockHeader = 12;  // the last link before the block, its first link, one more
constexpr std::size_t kDecompressedBlock = 0x4000;
constexpr std::uint32_t kCharactersPerBlock = 0x8000;
constexpr std::size_t kLinkHeader = 21;

std::uint16_t U16At(const std::uint8_t* p) { return static_cast<std::uint16_t>(p[0] | p[1] << 8); }
std::uint32_t U32At(const std::uint8_t* p) { return U16At(p) | static_cast<std::uint32_t>(U16At(p + 2)) << 16; }

void Require(bool ok, const std::string& what) {
  if (!ok) throw std::runtime_error(what);
}

}  // namespace

// Reads past the end throw, naming what was read.
class HlpCursor {
 public:
  HlpCursor(const std::uint8_t* p, std::size_t n, std::string what) : p_(p), n_(n), what_(std::move(what)) {}
  bool AtEnd() const { return at_ == n_; }
  const std::uint8_t* here() const { return p_ + at_; }
  std::size_t left() const { return n_ - at_; }
  const std::uint8_t* Take(std::size_t k) {
    Require(k <= left(), what_ + " runs past its end");
    at_ += k;
    return p_ + at_ - k;
  }
  void Skip(std::size_t k) { Take(k); }
  std::uint8_t U8() { return *Take(1); }
  std::uint16_t U16() { return U16At(Take(2)); }
  std::uint32_t U32() { return U32At(Take(4)); }
  // The next `k` bytes as a cursor of their own.
  HlpCursor Sub(std::size_t k, std::string what) { return HlpCursor(Take(k), k, std::move(what)); }
  std::string Z() {
    const void* nul = left() ? std::memchr(here(), 0, left()) : nullptr;
    Require(nul != nullptr, what_ + ": a string without its NUL");
    const std::size_t length = static_cast<const std::uint8_t*>(nul) - here();
    return std::string(reinterpret_cast<const char*>(Take(length + 1)), length);
  }
  // The packed numbers of display records: the low bit of the first byte says
  // whether the longer form is used.
  bool Long() const { return !AtEnd() && (p_[at_] & 1); }
  std::uint32_t PackedUShort() { return Long() ? U16() >> 1 : U8() >> 1; }
  int PackedShort() { return Long() ? (U16() >> 1) - 16384 : (U8() >> 1) - 64; }
  long PackedLong() {
    return Long() ? static_cast<long>(U32() >> 1) - 0x40000000L : static_cast<long>(U16() >> 1) - 16384;
  }

 private:
  const std::uint8_t* p_;
  std::size_t n_;
  std::size_t at_ = 0;
  std::string what_;
};

namespace {

// The internal file at `offset`: its header, then its data.
HlpCursor InternalFile(const std::vector<std::uint8_t>& bytes, std::uint32_t offset, const std::string& name) {
  HlpCursor c(bytes.data(), bytes.size(), "the help file");
  c.Skip(offset);
  const std::uint32_t reserved = c.U32(), used = c.U32();
  c.U8();
  Require(reserved >= used + kFileHeader && reserved <= bytes.size() - offset, name + " out of range");
  return c.Sub(used, name);
}

// LZ77 as the format describes it: per flag byte, eight items from its low bit
// up; a set bit is a 12-bit distance (minus one) and a 4-bit length (minus three).
std::vector<std::uint8_t> Lz77(HlpCursor in) {
  std::vector<std::uint8_t> out;
  while (!in.AtEnd()) {
    const std::uint8_t flags = in.U8();
    for (int bit = 0; bit < 8 && !in.AtEnd(); ++bit) {
      if (flags & (1 << bit)) {
        const std::uint16_t code = in.U16();
        const std::size_t distance = (code & 0xFFF) + 1;
        Require(distance <= out.size(), "LZ77 reference before the start");
        for (int k = 0; k < (code >> 12) + 3; ++k) out.push_back(out[out.size() - distance]);
      } else {
        out.push_back(in.U8());
      }
      Require(out.size() <= kDecompressedBlock, "topic block decompresses past 16 KB");
    }
  }
  return out;
}

}  // namespace

void HlpBTree::Read(const std::uint8_t* data, std::size_t size, KeyKind kind) {
  HlpCursor c(data, size, "B+ tree");
  Require(c.U16() == kTreeMagic, "not a B+ tree");
  c.U16();  // flags
  pageSize_ = c.U16();
  c.Skip(16 + 2 + 2);  // structure, zero, page splits
  root_ = c.U16();
  Require(c.U16() == 0xFFFF, "B+ tree header: no -1 after the root page");
  pageCount_ = c.U16();
  levels_ = c.U16();
  count_ = c.U32();
  Require(pageSize_ >= 16 && levels_ >= 1 && root_ < pageCount_ && pageCount_ * pageSize_ <= c.left(),
          "B+ tree header out of range");
  kind_ = kind;
  pages_.assign(c.here(), c.here() + pageCount_ * pageSize_);
}

HlpCursor HlpBTree::Page(std::size_t page, std::uint16_t& count) const {
  Require(page < pageCount_, "B+ tree page " + std::to_string(page) + " out of range");
  HlpCursor c(pages_.data() + page * pageSize_, pageSize_, "B+ tree page " + std::to_string(page));
  c.Skip(2);  // unused bytes
  count = c.U16();
  return c;
}

HlpBTree::Key HlpBTree::ReadKey(HlpCursor& page) const {
  if (kind_ == kLongKey) {
    const std::uint8_t* p = page.Take(4);
    return Key(p, p + 4);
  }
  const std::string text = page.Z();
  return Key(text.begin(), text.end());
}

int HlpBTree::Compare(const Key& a, const Key& b) const {
  if (kind_ == kStringKey) return (a > b) - (a < b);  // byte by byte, as strcmp
  const auto x = static_cast<std::int32_t>(U32At(a.data())), y = static_cast<std::int32_t>(U32At(b.data()));
  return (x > y) - (x < y);
}

std::size_t HlpBTree::ReadLeaf(std::size_t page, std::vector<Entry>& entries) const {
  std::uint16_t count = 0;
  HlpCursor c = Page(page, count);
  c.Skip(2);  // previous leaf
  const std::size_t next = c.U16();
  for (std::uint16_t i = 0; i < count; ++i) {
    Key key = ReadKey(c);
    entries.emplace_back(std::move(key), c.U32());
  }
  return next;
}

std::size_t HlpBTree::LeafFor(const Key* key) const {
  std::size_t page = root_;
  for (int level = levels_; level > 1; --level) {
    std::uint16_t count = 0;
    HlpCursor c = Page(page, count);
    page = c.U16();  // the child before every key of the page
    for (std::uint16_t i = 0; key && i < count; ++i) {
      const Key first = ReadKey(c);
      const std::uint16_t child = c.U16();
      if (Compare(first, *key) > 0) break;
      page = child;
    }
  }
  return page;
}

std::vector<HlpBTree::Entry> HlpBTree::Leaves() const {
  std::vector<Entry> entries;
  std::size_t visited = 0;
  for (std::size_t page = LeafFor(nullptr); page != kNoPage; page = ReadLeaf(page, entries))
    Require(++visited <= pageCount_, "leaf chain runs in a circle");
  for (std::size_t i = 1; i < entries.size(); ++i)
    Require(Compare(entries[i - 1].first, entries[i].first) < 0, "leaf keys out of order");
  Require(entries.size() == count_, "B+ tree holds another number of entries than it says");
  return entries;
}

std::optional<std::uint32_t> HlpBTree::Find(const Key& key) const {
  std::vector<Entry> leaf;
  ReadLeaf(LeafFor(&key), leaf);
  for (const auto& [k, value] : leaf)
    if (Compare(k, key) == 0) return value;
  return std::nullopt;
}

HlpBTree::Key LongKey(std::int32_t value) {
  const auto u = static_cast<std::uint32_t>(value);
  return {static_cast<std::uint8_t>(u), static_cast<std::uint8_t>(u >> 8), static_cast<std::uint8_t>(u >> 16),
          static_cast<std::uint8_t>(u >> 24)};
}

HlpFile::HlpFile(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {
  HlpCursor header(bytes_.data(), bytes_.size(), "the file header");
  Require(header.U32() == kHelpMagic, "not a help file");
  const std::uint32_t directory = header.U32();
  header.U32();  // free list
  Require(header.U32() == bytes_.size(), "file size in the header differs");
  const HlpCursor files = InternalFile(bytes_, directory, "the directory");
  directory_.Read(files.here(), files.left(), HlpBTree::kStringKey);
  for (const auto& [name, offset] : directory_.Leaves()) fileNames.emplace_back(name.begin(), name.end());
  ReadSystem();
  ReadTopics();

  HlpCursor map = File("|CTXOMAP");
  for (std::uint16_t i = 0, count = map.U16(); i < count; ++i) {
    const std::uint32_t number = map.U32();
    contextNumbers[number] = map.U32();
  }
  Require(map.AtEnd(), "|CTXOMAP size differs from its count");
  const HlpCursor context = File("|CONTEXT");
  context_.Read(context.here(), context.left(), HlpBTree::kLongKey);
  context_.Leaves();  // read for the checks on the way
}

HlpCursor HlpFile::File(const std::string& name) const {
  const std::optional<std::uint32_t> offset = directory_.Find(HlpBTree::Key(name.begin(), name.end()));
  Require(offset.has_value(), "no internal file " + name);
  return InternalFile(bytes_, *offset, name);
}

void HlpFile::ReadSystem() {
  HlpCursor c = File("|SYSTEM");
  const std::uint16_t magic = c.U16(), minor = c.U16(), major = c.U16();
  c.U32();  // date
  const std::uint16_t flags = c.U16();
  Require(magic == 0x036C && major == 1, "|SYSTEM: not a help file header");
  // This reader knows the Windows 3.1 layout with LZ77 topic blocks of 4 KB only.
  Require(minor > 16 && flags == 4, "|SYSTEM: a version or compression not read here");
  bool haveContents = false;
  while (!c.AtEnd()) {
    const std::uint16_t type = c.U16();
    HlpCursor record = c.Sub(c.U16(), "|SYSTEM record " + std::to_string(type));
    if (type == 1) {
      title = record.Z();
    } else if (type == 3) {
      contentsOffset = record.U32();
      haveContents = true;
    } else if (type == 6) {
      record.Skip(2 + 10 + 9);
      windowCaption = record.Z();
    }
  }
  Require(haveContents, "|SYSTEM names no contents topic");
}

void HlpFile::ReadTopics() {
  HlpCursor file = File("|TOPIC");
  const std::uint8_t* data = file.here();
  Require(file.left() > 0 && file.left() % kBlockSize == 0, "|TOPIC is not whole blocks");
  std::vector<std::vector<std::uint8_t>> blocks;
  while (!file.AtEnd()) {
    HlpCursor block = file.Sub(kBlockSize, "topic block");
    block.Skip(kBlockHeader);
    blocks.push_back(Lz77(block));
  }

  std::uint32_t pos = 12, previous = kNoLink, characters = 0;
  std::uint32_t headerNext = kNoLink;  // where the last topic header says the next one is
  std::size_t currentBlock = SIZE_MAX, links = 0;
  std::string paragraph;  // a paragraph may go on in the next record
  while (pos != kNoLink) {
    Require(pos >= kBlockHeader && ++links <= blocks.size() * kDecompressedBlock, "topic link chain broken");
    const std::size_t block = (pos - kBlockHeader) / kDecompressedBlock;
    const std::size_t at = (pos - kBlockHeader) % kDecompressedBlock;
    Require(block < blocks.size() && at <= blocks[block].size(), "topic link outside the topic blocks");
    if (block != currentBlock) {
      const std::uint8_t* header = data + block * kBlockSize;
      Require(U32At(header + 4) == pos, "block header names another first link");
      Require(U32At(header) == (block == 0 ? kNoLink : previous), "block header names another last link");
      currentBlock = block;
      characters = 0;
    }
    HlpCursor link(blocks[block].data() + at, blocks[block].size() - at, "topic link");
    const std::uint32_t linkSize = link.U32(), length2 = link.U32(), prev = link.U32(), next = link.U32(),
                        length1 = link.U32();
    const std::uint8_t type = link.U8();
    Require(length1 >= kLinkHeader && linkSize == length1 + length2, "topic link sizes inconsistent");
    HlpCursor data1 = link.Sub(length1 - kLinkHeader, "topic record data");
    HlpCursor data2 = link.Sub(length2, "topic record text");
    Require(prev == previous, "topic link's previous link is wrong");

    if (type == 0x02) {
      Require(paragraph.empty(), "a paragraph runs into the next topic");
      Require(topics.empty() || headerNext == pos, "a topic header names another next topic");
      data1.Skip(12);
      Require(data1.U32() == topics.size(), "topic number out of sequence");
      data1.Skip(8);
      headerNext = data1.U32();
      Require(data1.AtEnd(), "topic header malformed");
      topics.push_back({static_cast<std::uint32_t>(block) * kCharactersPerBlock + characters, data2.Z(), {}, {}});
    } else {
      Require(type == 0x20, "unknown topic record type " + std::to_string(type));
      Require(!topics.empty(), "text before the first topic");
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
      if (bits & 0x0200)  // tab stops
        for (int i = 0, tabs = data1.PackedShort(); i < tabs; ++i)
          if (data1.PackedUShort() & 0x4000) data1.PackedUShort();
      std::uint32_t counted = 0;
      for (bool more = true; more;) {
        const std::string text = data2.Z();
        paragraph += text;
        counted += static_cast<std::uint32_t>(text.size());
        const std::uint8_t command = data1.U8();
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
            throw std::runtime_error("unknown formatting command " + std::to_string(command));
        }
      }
      Require(data1.AtEnd() && data2.AtEnd(), "display record holds more than it uses");
      Require(counted == length, "display record counts another number of characters");
      characters += length;
    }
    previous = pos;
    pos = next;
  }
  Require(paragraph.empty(), "the last paragraph has no end");
  Require(!topics.empty(), "no topics");
  Require(headerNext == kNoLink, "the last topic header names a next topic");
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
