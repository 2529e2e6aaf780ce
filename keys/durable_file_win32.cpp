#include <windows.h>
#include <io.h>

#include <cstdio>

#include "keys/durable_file.h"

namespace qb {

bool FlushToDisk(std::FILE* file) { return std::fflush(file) == 0 && _commit(_fileno(file)) == 0; }

bool MoveFileOver(const std::string& from, const std::string& to) {
  // The run-time's rename refuses an existing target; this replaces it.
  return MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

}  // namespace qb
