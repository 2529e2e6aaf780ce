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

bool CutFile(const std::string& path, long size) {
  HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  const bool cut = SetFilePointer(file, size, nullptr, FILE_BEGIN) != INVALID_SET_FILE_POINTER && SetEndOfFile(file);
  CloseHandle(file);
  return cut;
}

}  // namespace qb
