// An address the user copied: the first line of the clipboard's text, told apart
// as a web address, a saved page on this computer (a "file:///" address or a plain
// path) or nothing scannable. Platform-free: the text comes from any program.
#pragma once

#include <string>
#include <string_view>

namespace qb {

constexpr std::string_view kFileUrlPrefix = "file:///";

enum class PastedKind {
  kNone,       // no address: the user is told how to copy one
  kWeb,        // "http://", "https://" or "www.": downloaded and scanned
  kLocalFile,  // scanned as a saved page
  kTooLong,    // longer than kUrlTextMax
};

struct PastedAddress {
  PastedKind kind = PastedKind::kNone;
  std::string line;  // the first line, trimmed, as copied
  std::string text;  // the address to scan; for a "file:///" address its local path
};

// Blanks around the text are dropped and only its first line counts; a NUL ends
// the text as it ends a clipboard's.
PastedAddress ParsePastedAddress(std::string_view clipboardText);

// "file:///" in any case.
bool IsFileUrl(std::string_view text);

// The local path a "file:///" address names: the prefix dropped, everything from a
// "?" or "#" on dropped, percent escapes decoded (an escape of NUL or one without
// two hex digits is kept as written), "/" read as "\". The escapes stand for
// UTF-8 bytes; the Windows side converts them.
std::string FileUrlPath(std::string_view fileUrl);

}  // namespace qb
