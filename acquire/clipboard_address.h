// The address on the clipboard, as "Scan Address from Clipboard" and the offer of
// "Scan HTML" read it, and the local path of a "file:///" address on Windows.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "acquire/pasted_address.h"

namespace qb {

// Characters of the clipboard's text looked at: far past the longest address, so
// a first line cut here is reported as too long.
constexpr std::size_t kClipboardTextMax = 65536;

// Unicode text converted to the ANSI code page, or plain text; empty when the
// clipboard holds no text or another program keeps it open.
std::string ClipboardText();

// The clipboard's first line; a saved page's path in the ANSI code page.
PastedAddress ClipboardAddress();

// The path a "file:///" address names, its escaped UTF-8 converted to the ANSI
// code page (bytes that are not UTF-8 are kept as they are).
std::string LocalPathOfFileUrl(std::string_view fileUrl);

}  // namespace qb
