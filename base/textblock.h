// Text blocks: the movable, zero-filled memory blocks that hold every key field and
// every kept form text. One block holds one zero-terminated text and is allocated
// two bytes longer than the text; an empty text has no block at all (handle 0).
// The product keeps them in global memory (GlobalAlloc/GlobalLock); the native
// build uses the heap, so the sanitizers see every access.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qb {

using TextBlock = std::uintptr_t;
constexpr TextBlock kNoBlock = 0;

// A zero-filled block of `bytes` bytes, or kNoBlock when memory is exhausted.
TextBlock AllocTextBlock(std::size_t bytes);
void FreeTextBlock(TextBlock block);  // kNoBlock is ignored
// Whether `block` is a live block (a freed or never-allocated handle is not).
bool IsTextBlock(TextBlock block);
std::size_t TextBlockSize(TextBlock block);  // 0 for a dead handle
// Read/write access between Lock and Unlock; nullptr when the block cannot be locked.
char* LockTextBlock(TextBlock block);
void UnlockTextBlock(TextBlock block);

// Test hook: the next `count` allocations fail as on an exhausted heap.
void FailNextTextBlockAllocations(int count);

// Scoped access to a block's text. A missing or unlockable block reads as "".
class TextLock {
 public:
  explicit TextLock(TextBlock block);
  ~TextLock();
  TextLock(const TextLock&) = delete;
  TextLock& operator=(const TextLock&) = delete;

  bool locked() const { return data_ != nullptr; }
  char* data() { return data_; }
  // The text up to its first NUL, never past the block's end.
  std::string_view text() const;

 private:
  TextBlock block_;
  char* data_;
  std::size_t size_;
};

// A new block of text.size() + 2 bytes holding `text`; kNoBlock for an empty text
// or when the allocation fails.
TextBlock MakeTextBlock(std::string_view text);
// A copy of a block's text ("" for no block).
std::string TextOf(TextBlock block);

}  // namespace qb
