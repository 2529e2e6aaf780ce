// The file's directory: the internal files stored one after another behind the
// file header, found through a B+ tree of their names. |CONTEXT is a B+ tree too.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tools/helpfile/hlp_bytes.h"

namespace qb::help {

constexpr std::uint16_t kBTreeFlags = 0x0002;
constexpr std::uint16_t kIndexPageSize = 2048;

// A B+ tree as the help file keeps its indexes: leaf pages of (key, value) entries
// in key order, index pages of (first key of a child, child page) above them.
// `entries` must be sorted as the tree's readers compare keys. Empty when an entry
// or an index entry can't fit in a page.
struct BTreeEntry {
  std::vector<std::uint8_t> key;
  std::vector<std::uint8_t> value;
};
std::vector<std::uint8_t> BuildBTree(const std::vector<BTreeEntry>& entries, std::uint16_t pageSize,
                                     std::uint16_t flags, const char* structure);

// The whole file: the header, `files` (by name, in the byte order the directory
// keeps) and the directory after them.
Bytes HelpFileOf(const std::map<std::string, Bytes>& files);

}  // namespace qb::help
