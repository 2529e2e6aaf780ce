#include "base/textblock.h"

#include <cstring>

namespace qb {

TextLock::TextLock(TextBlock block)
    : block_(block), data_(block ? LockTextBlock(block) : nullptr),
      size_(data_ ? TextBlockSize(block) : 0) {}

TextLock::~TextLock() {
  if (data_) UnlockTextBlock(block_);
}

std::string_view TextLock::text() const {
  if (!data_) return {};
  const void* nul = std::memchr(data_, 0, size_);
  return std::string_view(data_, nul ? static_cast<const char*>(nul) - data_ : size_);
}

TextBlock MakeTextBlock(std::string_view text) {
  if (text.empty()) return kNoBlock;
  TextBlock block = AllocTextBlock(text.size() + 2);
  if (!block) return kNoBlock;
  char* p = LockTextBlock(block);
  if (!p) {
    FreeTextBlock(block);
    return kNoBlock;
  }
  std::memcpy(p, text.data(), text.size());
  UnlockTextBlock(block);
  return block;
}

std::string TextOf(TextBlock block) {
  TextLock lock(block);
  return std::string(lock.text());
}

}  // namespace qb
