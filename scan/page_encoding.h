// The character encoding of a saved page, found as a browser finds it, and the
// conversion of key texts (typed in the ANSI code page) for a UTF-8 page. A
// saved page holds the whole answer of its server, header included, or the page
// alone.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qb {

// A server's header longer than this is taken for no header at all.
constexpr std::size_t kMaxResponseHeaderBytes = 65536;
// Browsers look for a <meta> declaration in the first 1024 bytes of the page.
constexpr std::size_t kCharsetPrescanBytes = 1024;

// Whether the page is read as UTF-8: a byte-order mark decides, else the charset
// of the answer's Content-Type header, else a <meta charset> or http-equiv
// Content-Type declaration near the top of the page.
bool IsUtf8Page(std::string_view saved);

// The charset a Content-Type value or a meta content names ("text/html;
// charset=utf-8" gives "utf-8"); empty for none.
std::string_view CharsetOfContentType(std::string_view value);

// Windows-1252 bytes as UTF-8.
std::string Windows1252ToUtf8(std::string_view text);

// Text in this computer's ANSI code page as UTF-8. Windows converts with its
// code page; elsewhere the ANSI code page is taken to be Windows-1252.
std::string AnsiToUtf8(std::string_view text);

}  // namespace qb
