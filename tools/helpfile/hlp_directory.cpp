#include "tools/helpfile/hlp_directory.h"

#include <utility>

namespace qb::help {
namespace {

constexpr std::uint32_t kFileMagic = 0x00035F3F;
constexpr std::uint8_t kInternalFileFlags = 4;
constexpr std::uint16_t kBTreeMagic = 0x293B;
constexpr std::uint16_t kDirectoryFlags = 0x0402;
constexpr std::uint16_t kDirectoryPageSize = 1024;
constexpr std::size_t kLeafHeader = 8;   // unused bytes, entries, previous page, next page
constexpr std::size_t kIndexHeader = 6;  // unused bytes, entries, first child page
constexpr std::size_t kMaxPages = 0xFFFF;  // page numbers are 16 bits, 0xFFFF meaning none

void PutInternalFile(Bytes& out, const Bytes& content) {
  Put32(out, static_cast<std::uint32_t>(content.size() + 9));
  Put32(out, static_cast<std::uint32_t>(content.size()));
  Put8(out, kInternalFileFlags);
  out.insert(out.end(), content.begin(), content.end());
}

}  // namespace

std::vector<std::uint8_t> BuildBTree(const std::vector<BTreeEntry>& entries, std::uint16_t pageSize,
                                     std::uint16_t flags, const char* structure) {
  struct Child {
    std::uint16_t page;
    const Bytes* firstKey;
  };
  static const Bytes kNoKey;
  std::vector<Bytes> pages;

  // Leaves, filled in order.
  std::vector<std::vector<const BTreeEntry*>> leaves(1);
  std::size_t used = 0;
  for (const BTreeEntry& e : entries) {
    const std::size_t size = e.key.size() + e.value.size();
    if (size > pageSize - kLeafHeader) return {};
    if (used + size > pageSize - kLeafHeader) {
      leaves.emplace_back();
      used = 0;
    }
    leaves.back().push_back(&e);
    used += size;
  }
  std::vector<Child> level;
  for (std::size_t i = 0; i < leaves.size(); ++i) {
    Bytes page;
    std::size_t content = 0;
    for (const BTreeEntry* e : leaves[i]) content += e->key.size() + e->value.size();
    Put16(page, static_cast<std::uint32_t>(pageSize - kLeafHeader - content));
    Put16(page, static_cast<std::uint32_t>(leaves[i].size()));
    Put16(page, i > 0 ? static_cast<std::uint32_t>(i - 1) : 0xFFFF);
    Put16(page, i + 1 < leaves.size() ? static_cast<std::uint32_t>(i + 1) : 0xFFFF);
    for (const BTreeEntry* e : leaves[i]) {
      page.insert(page.end(), e->key.begin(), e->key.end());
      page.insert(page.end(), e->value.begin(), e->value.end());
    }
    page.resize(pageSize, 0);
    level.push_back(Child{static_cast<std::uint16_t>(pages.size()),
                          leaves[i].empty() ? &kNoKey : &leaves[i].front()->key});
    pages.push_back(std::move(page));
  }

  // Index levels until one page holds them all. An index page's first child needs
  // no key: it is where every key below the page's first entry lies.
  std::uint16_t levels = 1;
  while (level.size() > 1) {
    std::vector<Child> upper;
    std::size_t i = 0;
    while (i < level.size()) {
      Bytes page;
      Put16(page, 0);  // unused bytes, set below
      Put16(page, 0);  // entries
      Put16(page, level[i].page);
      const Bytes* firstKey = level[i].firstKey;
      std::size_t count = 0;
      for (++i; i < level.size(); ++i) {
        const std::size_t size = level[i].firstKey->size() + 2;
        if (kIndexHeader + size > pageSize) return {};
        if (page.size() + size > pageSize) break;
        page.insert(page.end(), level[i].firstKey->begin(), level[i].firstKey->end());
        Put16(page, level[i].page);
        ++count;
      }
      const std::size_t unused = pageSize - page.size();
      page[0] = static_cast<std::uint8_t>(unused);
      page[1] = static_cast<std::uint8_t>(unused >> 8);
      page[2] = static_cast<std::uint8_t>(count);
      page[3] = static_cast<std::uint8_t>(count >> 8);
      page.resize(pageSize, 0);
      upper.push_back(Child{static_cast<std::uint16_t>(pages.size()), firstKey});
      pages.push_back(std::move(page));
      if (pages.size() >= kMaxPages) return {};
    }
    level = std::move(upper);
    ++levels;
  }
  if (pages.size() >= kMaxPages) return {};

  Bytes tree;
  Put16(tree, kBTreeMagic);
  Put16(tree, flags);
  Put16(tree, pageSize);
  PutFixed(tree, structure, 16);
  Put16(tree, 0);  // must be zero
  Put16(tree, 0);  // page splits
  Put16(tree, level.front().page);
  Put16(tree, 0xFFFF);
  Put16(tree, static_cast<std::uint32_t>(pages.size()));
  Put16(tree, levels);
  Put32(tree, static_cast<std::uint32_t>(entries.size()));
  for (const Bytes& page : pages) tree.insert(tree.end(), page.begin(), page.end());
  return tree;
}

Bytes HelpFileOf(const std::map<std::string, Bytes>& files) {
  Bytes out;
  out.assign(16, 0);
  std::vector<BTreeEntry> directory;
  for (const auto& [name, content] : files) {
    BTreeEntry e;
    PutText(e.key, name);
    Put8(e.key, 0);
    Put32(e.value, static_cast<std::uint32_t>(out.size()));
    directory.push_back(std::move(e));
    PutInternalFile(out, content);
  }
  const std::uint32_t directoryStart = static_cast<std::uint32_t>(out.size());
  PutInternalFile(out, BuildBTree(directory, kDirectoryPageSize, kDirectoryFlags, "z4"));
  Set32(out, 0, kFileMagic);
  Set32(out, 4, directoryStart);
  Set32(out, 8, kNone);  // no free blocks
  Set32(out, 12, static_cast<std::uint32_t>(out.size()));
  return out;
}

}  // namespace qb::help
