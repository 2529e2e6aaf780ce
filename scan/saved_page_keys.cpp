// Apart from saved_page_fill.cpp: key_file.h and html_scanner.h can't meet in one
// file (both declare qb::LoadStatus).
#include "keys/key_file.h"
#include "scan/saved_page_fill.h"

namespace qb {

bool LoadKeyDatabaseFile(const std::string& path, KeyTable& keys) {
  return LoadDatabase(path, keys).loaded();
}

}  // namespace qb
