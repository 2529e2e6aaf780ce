// fillpage PAGE URL KEYS OUT [--current-key N] [--direct-post]
//
// Fills the saved page PAGE, whose address is URL (without scheme, as the
// document registry keeps it), from the key database KEYS with the default scan
// options (every ask and add-keys value Never), so nothing is ever asked, and
// writes the filled page to OUT exactly as a scan writes it.
//   --current-key N  the scan's current key (the key selected in the key list);
//                    without it there is none, and text fields keep their values
//   --direct-post    a direct-post scan; the request text (the "POST " line and
//                    its pairs, before the HTTP client adds anything) is printed
//                    on stdout, followed by a line feed
// Exit status: 0 done; 1 PAGE or KEYS can't be read, PAGE has no form that can
// be filled, or OUT can't be written; 2 a wrong command line.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

#include "base/user_message.h"
#include "scan/saved_page_fill.h"

namespace {

constexpr char kUsage[] = "usage: fillpage PAGE URL KEYS OUT [--current-key N] [--direct-post]\n";

struct CommandLine {
  std::vector<std::string> files;  // PAGE URL KEYS OUT
  int currentKey = qb::kNoKey;
  bool directPost = false;
};

bool ParseKeyIndex(const char* text, int& index) {
  char* end = nullptr;
  const long value = std::strtol(text, &end, 10);
  if (end == text || *end != '\0' || value < 0 || value > qb::kMaxKeys) return false;
  index = static_cast<int>(value);
  return true;
}

bool ParseCommandLine(int argc, char** argv, CommandLine& line) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    if (arg == "--direct-post") {
      line.directPost = true;
    } else if (arg == "--current-key") {
      if (++i >= argc || !ParseKeyIndex(argv[i], line.currentKey)) return false;
    } else if (arg.rfind("--", 0) == 0) {
      return false;
    } else {
      line.files.emplace_back(arg);
    }
  }
  return line.files.size() == 4;
}

// What the program would have shown in message boxes.
void PrintUserMessages() {
  for (const qb::UserMessage& message : qb::TakeUserMessages()) {
    std::fprintf(stderr, "fillpage: %s\n", message.text.c_str());
  }
}

int Fail(const std::string& text) {
  PrintUserMessages();
  std::fprintf(stderr, "fillpage: %s\n", text.c_str());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  CommandLine line;
  if (!ParseCommandLine(argc, argv, line)) {
    std::fputs(kUsage, stderr);
    return 2;
  }
#ifdef _WIN32
  // The same bytes on every platform: no CR before the line feed.
  _setmode(_fileno(stdout), _O_BINARY);
#endif
  qb::SavedPageFill fill;
  fill.page = line.files[0];
  fill.address = line.files[1];
  fill.keys = line.files[2];
  fill.out = line.files[3];
  fill.currentKey = line.currentKey;
  fill.directPost = line.directPost;

  std::string request;
  switch (qb::FillSavedPage(fill, qb::Keys(), request)) {
    case qb::FillResult::kFilled: break;
    case qb::FillResult::kKeysUnreadable: return Fail("can't read the key database " + fill.keys);
    case qb::FillResult::kPageUnreadable: return Fail("can't read the page " + fill.page);
    case qb::FillResult::kOutOfMemory: return Fail("not enough memory for the page " + fill.page);
    case qb::FillResult::kNoForm: return Fail("the page " + fill.page + " has no form that can be filled");
    case qb::FillResult::kNotWritten: return Fail("the filled page was not written");
  }
  // A damaged database still fills what it holds, as in the program; say what was wrong.
  PrintUserMessages();
  if (line.directPost) {
    request += '\n';
    if (std::fwrite(request.data(), 1, request.size(), stdout) != request.size() || std::fflush(stdout) != 0) {
      return Fail("can't write the request text");
    }
  }
  return 0;
}
