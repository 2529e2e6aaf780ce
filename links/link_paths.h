// Folder texts of the Links view and of its folder commands. A folder text always
// ends with a backslash; paths are at most 259 characters.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qb {

constexpr std::size_t kLinkPathSize = 260;  // bytes of a path, its terminator included
constexpr std::size_t kLinkPathMax = kLinkPathSize - 1;
// Deepest folder level the view remembers a row for.
constexpr int kLinksDepthMax = 255;
// Paths shorter than this are never deleted as a folder (a drive, a bare root).
constexpr std::size_t kDeletePathMin = 4;
// Folder levels the delete walks, the folder itself being the first.
constexpr int kDeleteLevelsMax = 18;

// The folder one level up: cut back to the backslash before the last component.
// A folder with no such backslash stays as it is.
std::string ParentFolder(std::string_view folder);

// The destination folder one level up, never above `root`.
std::string DestinationUp(std::string_view folder, std::string_view root);

// The warning for a new folder name that makes the path too long, or nullopt
// when current folder + name fits.
std::optional<std::string> NewFolderTooLongText(std::string_view folder, std::string_view name);

// The name dialog's answer to a name for a folder or page in `folder`: a name that
// would leave the folder, name a device or never be listed is refused with
// kBadNameText, one that makes the path too long with NewFolderTooLongText;
// nullopt accepts it.
constexpr char kBadNameText[] =
    "This name can not be used.\nA name can not hold \\ / : * ? \" < > | or control characters,\n"
    "begin or end with a dot, end with a blank or be a device name such as CON or NUL.";
std::optional<std::string> RefusedNameText(std::string_view folder, std::string_view name);

// Whether `path` lies in `root` or below it (compared without regard to case) and
// names no ".." folder on the way.
bool IsUnderRoot(std::string_view path, std::string_view root);

// `path` with a backslash added when it has none at its end.
std::string WithBackslash(std::string_view path);
// `path` without its closing backslash.
std::string WithoutBackslash(std::string_view path);

}  // namespace qb
