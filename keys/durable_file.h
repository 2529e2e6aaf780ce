// The file-system steps that a safe save needs and the C library does not give
// portably: pushing a written file to the disk, putting it in place of another in
// one step, and cutting a file back to an earlier length.
#pragma once

#include <cstdio>
#include <string>

namespace qb {

// Flushes `file` and asks the system to write its data to the disk.
bool FlushToDisk(std::FILE* file);
// Renames `from` to `to`, replacing `to` when it exists; `to` is never left half
// written: afterwards it is either the old file or `from`.
bool MoveFileOver(const std::string& from, const std::string& to);
// Cuts the file at `path` to its first `size` bytes.
bool CutFile(const std::string& path, long size);

// The length of the file at `path`, -1 when it cannot be opened. Under some
// systems a full disk takes part of a write while the run-time reports it whole,
// so a written file is measured before it is trusted.
inline long FileLength(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (!file) return -1;
  const long length = std::fseek(file, 0, SEEK_END) == 0 ? std::ftell(file) : -1;
  std::fclose(file);
  return length;
}

}  // namespace qb
