#include "links/link_paths.h"

#include <algorithm>
#include <cstdio>

#include "base/file_name.h"
#include "links/link_list.h"

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

std::optional<std::string> RefusedNameText(std::string_view folder, std::string_view name) {
  if (!IsPlainFileName(name) || !IsListedName(name)) return std::string(kBadNameText);
  return NewFolderTooLongText(folder, name);
}

bool IsUnderRoot(std::string_view path, std::string_view root) {
  if (path.size() < root.size()) return false;
  for (std::size_t i = 0; i < root.size(); ++i) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    if (lower(path[i]) != lower(root[i])) return false;
  }
  const std::string_view rest = path.substr(root.size());
  for (std::size_t start = 0; start <= rest.size();) {
    const std::size_t end = std::min(rest.find_first_of("\\/", start), rest.size());
    if (rest.substr(start, end - start) == "..") return false;
    start = end + 1;
  }
  return true;
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
