// The two file-system steps that a safe save needs and the C library does not give
// portably: pushing a written file to the disk, and putting it in place of another
// in one step.
#pragma once

#include <cstdio>
#include <string>

namespace qb {

// Flushes `file` and asks the system to write its data to the disk.
bool FlushToDisk(std::FILE* file);
// Renames `from` to `to`, replacing `to` when it exists; `to` is never left half
// written: afterwards it is either the old file or `from`.
bool MoveFileOver(const std::string& from, const std::string& to);

}  // namespace qb
