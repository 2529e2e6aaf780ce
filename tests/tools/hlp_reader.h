// A reader of WinHelp 3.1 files for tests, written from the published layout and
// not from our writer: the file header and internal directory, |SYSTEM, |CTXOMAP,
// |CONTEXT and the LZ77-compressed |TOPIC with its display records. Every read is
// bounds-checked, and anything it does not expect throws std::runtime_error
// saying what it found.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qb::test {

class HlpCursor;  // little-endian reads within a range

// A B+ tree (header and pages) whose entries hold 4-byte values.
class HlpBTree {
 public:
  enum KeyKind { kStringKey, kLongKey };  // a string key is kept without its NUL
  using Key = std::vector<std::uint8_t>;
  using Entry = std::pair<Key, std::uint32_t>;

  void Read(const std::uint8_t* data, std::size_t size, KeyKind kind);
  // Every entry, leaf by leaf from the leftmost leaf; checks the key order and count.
  std::vector<Entry> Leaves() const;
  // Descends through the index pages as a viewer looks a key up.
  std::optional<std::uint32_t> Find(const Key& key) const;
  int levels() const { return levels_; }

 private:
  // A page after its entry count, which it gives.
  HlpCursor Page(std::size_t page, std::uint16_t& count) const;
  Key ReadKey(HlpCursor& page) const;
  int Compare(const Key& a, const Key& b) const;  // only the sign counts
  // The leaf page where `key` belongs, descending the index pages (the leftmost
  // leaf for none).
  std::size_t LeafFor(const Key* key) const;
  // Appends the entries of a leaf page; gives the next leaf.
  std::size_t ReadLeaf(std::size_t page, std::vector<Entry>& entries) const;

  KeyKind kind_ = kLongKey;
  std::vector<std::uint8_t> pages_;
  std::size_t pageSize_ = 0, pageCount_ = 0, root_ = 0;
  int levels_ = 0;
  std::uint32_t count_ = 0;
};

// A long key as the trees store it: four bytes, little-endian.
HlpBTree::Key LongKey(std::int32_t value);

struct HlpTopic {
  std::uint32_t offset = 0;  // counted from the records as a viewer counts
  std::string title;
  std::vector<std::string> paragraphs;  // '\t' for a tab, '\n' for a line break
  std::vector<std::int32_t> jumps;      // context hashes jumped to
};

class HlpFile {
 public:
  explicit HlpFile(std::vector<std::uint8_t> bytes);

  std::optional<std::uint32_t> FindContext(std::int32_t hash) const;
  // The topic an offset lies in: the last one starting at or before it.
  const HlpTopic* TopicAt(std::uint32_t offset) const;
  const HlpTopic* TopicOfNumber(std::uint32_t number) const;

  std::vector<std::string> fileNames;
  std::string title;
  std::string windowCaption;
  std::uint32_t contentsOffset = 0;
  std::map<std::uint32_t, std::uint32_t> contextNumbers;
  std::vector<HlpTopic> topics;

 private:
  HlpCursor File(const std::string& name) const;
  void ReadSystem();
  void ReadTopics();

  std::vector<std::uint8_t> bytes_;
  HlpBTree directory_;
  HlpBTree context_;
};

}  // namespace qb::test
