// formdump PAGE [URL]: parses a saved page as a scan would (no prompts) and
// prints what the parser kept as one JSON object. URL is the page address
// without scheme; the text before its first '/' is the host that relative form
// actions are resolved against.
#include <cstdio>
#include <string>
#include <string_view>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

#include "scan/form_json.h"
#include "scan/form_parser.h"

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::fprintf(stderr, "usage: formdump PAGE [URL]\n");
    return 2;
  }
#ifdef _WIN32
  // The same bytes on every platform: no CR before each line feed.
  _setmode(_fileno(stdout), _O_BINARY);
#endif
  const std::string_view address = argc == 3 ? argv[2] : "";
  const std::string_view host = address.substr(0, address.find('/'));

  qb::FormScan scan;
  switch (qb::LoadScanDocument(argv[1], scan.document)) {
    case qb::DocumentLoadStatus::kLoaded: break;
    case qb::DocumentLoadStatus::kCannotOpen:
      std::fprintf(stderr, "formdump: can not open %s\n", argv[1]);
      return 1;
    case qb::DocumentLoadStatus::kOutOfMemory:
      std::fprintf(stderr, "formdump: not enough memory for %s\n", argv[1]);
      return 1;
  }
  qb::ParseFormPage(scan, host);
  if (scan.outOfMemory) {
    std::fprintf(stderr, "formdump: not enough memory to keep every text of %s\n", argv[1]);
    return 1;
  }
  const std::string json = qb::FormScanToJson(scan) + "\n";
  if (std::fwrite(json.data(), 1, json.size(), stdout) != json.size() || std::fflush(stdout) != 0) {
    std::fprintf(stderr, "formdump: can not write the result\n");
    return 1;
  }
  return 0;
}
