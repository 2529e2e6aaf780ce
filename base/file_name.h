// Whether a name typed by the user (or derived from an address) can be one file
// or folder name inside a given folder, and only there.
#pragma once

#include <string_view>

namespace qb {

// False for a name that would leave its folder or name something other than a
// plain file there: empty; holding a path separator, a drive colon, a wildcard,
// a character Windows forbids (" < > |) or a control character; "." and ".."
// (any name ending in a dot or blank, which Windows drops); and the device names
// of IsDeviceName.
bool IsPlainFileName(std::string_view name);

// True when Windows opens a device for this file name, whatever its extension and
// with blanks before it ("nul.txt", "CON .htm"): CON, PRN, AUX, NUL, CONIN$, CONOUT$,
// COM0-COM9 and LPT0-LPT9.
bool IsDeviceName(std::string_view name);

}  // namespace qb
