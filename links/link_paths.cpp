#include "links/link_paths.h"

#include <cstdio>

namespace qb {

std::string ParentFolder(std::string_view folder) {
  if (folder.size() < 2) return std::string(folder);
  const std::size_t cut = folder.rfind('\\', folder.size() - 2);
  if (cut == std::string_view::npos) return std::string(folder);
  return std::string(folder.substr(0, cut + 1));
}

std::string DestinationUp(std::string_view folder, std::string_view root) {
  if (folder.size() <= root.size()) return std::string(folder);
  const std::string up = ParentFolder(folder);
  return up.size() < root.size() ? std::string(root) : up;
}

std::optional<std::string> NewFolderTooLongText(std::string_view folder, std::string_view name) {
  if (folder.size() + name.size() <= kLinkPathMax) return std::nullopt;
  char text[256];
  std::snprintf(text, sizeof text,
                "Directory file name is too long.\nIt can not exceded %d charachters including "
                "current directory\nThis New directory name can't exceded %d charachters",
                static_cast<int>(kLinkPathSize),
                static_cast<int>(kLinkPathSize) - static_cast<int>(folder.size()));
  return std::string(text);
}

std::string WithBackslash(std::string_view path) {
  std::string out(path);
  if (out.empty() || out.back() != '\\') out += '\\';
  return out;
}

std::string WithoutBackslash(std::string_view path) {
  if (!path.empty() && path.back() == '\\') path.remove_suffix(1);
  return std::string(path);
}

}  // namespace qb
