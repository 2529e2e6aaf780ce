#include "scan/page_encoding.h"

namespace qb {

// Off Windows there is no ANSI code page; keys are taken to be in Windows-1252.
std::string AnsiToUtf8(std::string_view text) { return Windows1252ToUtf8(text); }

}  // namespace qb
