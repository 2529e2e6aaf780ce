// Whether a name typed by the user (or derived from an address) can be one file
// or folder name inside a given folder, and only there.
#pragma once

#include <string_view>

namespace qb {

// False for a name that would leave its folder or name something other than a
// plain file there: empty; holding a path separator, a drive colon, a wildcard,
// a character Windows forbids (" < > |) or a control character; "." and ".."
// (any name ending in a dot or blank, which Windows drops); and the device names
// CON, PRN, AUX, NUL, COM1-COM9 and LPT1-LPT9, with or without an extension.
bool IsPlainFileName(std::string_view name);

}  // namespace qb
