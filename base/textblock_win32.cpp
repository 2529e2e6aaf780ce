// Text blocks in movable global memory, as the rest of Windows expects them
// (the clipboard takes such a block as it stands).
#include <windows.h>

#include "base/textblock.h"

namespace qb {
namespace {
int g_failures = 0;
HGLOBAL AsHandle(TextBlock block) { return reinterpret_cast<HGLOBAL>(block); }
}  // namespace

TextBlock AllocTextBlock(std::size_t bytes) {
  if (g_failures > 0) {
    --g_failures;
    return kNoBlock;
  }
  return reinterpret_cast<TextBlock>(GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes));
}

void FreeTextBlock(TextBlock block) {
  if (IsTextBlock(block)) GlobalFree(AsHandle(block));
}

bool IsTextBlock(TextBlock block) {
  return block != kNoBlock && GlobalFlags(AsHandle(block)) != GMEM_INVALID_HANDLE;
}

std::size_t TextBlockSize(TextBlock block) {
  return IsTextBlock(block) ? GlobalSize(AsHandle(block)) : 0;
}

char* LockTextBlock(TextBlock block) {
  if (!IsTextBlock(block)) return nullptr;
  return static_cast<char*>(GlobalLock(AsHandle(block)));
}

void UnlockTextBlock(TextBlock block) {
  if (IsTextBlock(block)) GlobalUnlock(AsHandle(block));
}

void FailNextTextBlockAllocations(int count) { g_failures = count; }

}  // namespace qb
