// Heap text blocks for the native build. Live handles are tracked, so a stale
// handle is recognised instead of being dereferenced.
#include <cstdlib>
#include <cstring>
#include <unordered_map>

#include "base/textblock.h"

namespace qb {
namespace {

struct Block {
  std::size_t size;
  int locks;
  char* bytes;
};

std::unordered_map<TextBlock, Block>& Live() {
  static std::unordered_map<TextBlock, Block> live;
  return live;
}

int g_failures = 0;

}  // namespace

TextBlock AllocTextBlock(std::size_t bytes) {
  if (g_failures > 0) {
    --g_failures;
    return kNoBlock;
  }
  char* p = static_cast<char*>(std::calloc(bytes ? bytes : 1, 1));
  if (!p) return kNoBlock;
  TextBlock h = reinterpret_cast<TextBlock>(p);
  Live()[h] = Block{bytes, 0, p};
  return h;
}

void FreeTextBlock(TextBlock block) {
  auto it = Live().find(block);
  if (it == Live().end()) return;
  std::free(it->second.bytes);
  Live().erase(it);
}

bool IsTextBlock(TextBlock block) { return Live().count(block) != 0; }

std::size_t TextBlockSize(TextBlock block) {
  auto it = Live().find(block);
  return it == Live().end() ? 0 : it->second.size;
}

char* LockTextBlock(TextBlock block) {
  auto it = Live().find(block);
  if (it == Live().end()) return nullptr;
  ++it->second.locks;
  return it->second.bytes;
}

void UnlockTextBlock(TextBlock block) {
  auto it = Live().find(block);
  if (it != Live().end() && it->second.locks > 0) --it->second.locks;
}

void FailNextTextBlockAllocations(int count) { g_failures = count; }

}  // namespace qb
