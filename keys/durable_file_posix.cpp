#include <unistd.h>

#include <cstdio>

#include "keys/durable_file.h"

namespace qb {

bool FlushToDisk(std::FILE* file) { return std::fflush(file) == 0 && fsync(fileno(file)) == 0; }

bool MoveFileOver(const std::string& from, const std::string& to) {
  return std::rename(from.c_str(), to.c_str()) == 0;
}

bool CutFile(const std::string& path, long size) { return truncate(path.c_str(), size) == 0; }

}  // namespace qb
