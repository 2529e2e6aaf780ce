#include "base/file_name.h"

#include <array>

namespace qb {
namespace {

constexpr std::string_view kForbidden = "\\/:*?\"<>|";
constexpr unsigned char kFirstPrintable = 0x20;
constexpr std::array<std::string_view, 4> kDevices = {"CON", "PRN", "AUX", "NUL"};
constexpr std::array<std::string_view, 2> kNumberedDevices = {"COM", "LPT"};

bool SameNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; };
    if (upper(a[i]) != upper(b[i])) return false;
  }
  return true;
}

// Windows opens the device for its name with any extension ("nul.txt") and with
// blanks before the extension ("CON .htm").
bool IsDeviceName(std::string_view name) {
  std::string_view stem = name.substr(0, name.find('.'));
  while (!stem.empty() && stem.back() == ' ') stem.remove_suffix(1);
  for (std::string_view device : kDevices)
    if (SameNoCase(stem, device)) return true;
  if (stem.size() != 4 || stem[3] < '1' || stem[3] > '9') return false;
  for (std::string_view device : kNumberedDevices)
    if (SameNoCase(stem.substr(0, 3), device)) return true;
  return false;
}

}  // namespace

bool IsPlainFileName(std::string_view name) {
  if (name.empty() || name.back() == '.' || name.back() == ' ') return false;
  for (char c : name)
    if (static_cast<unsigned char>(c) < kFirstPrintable || kForbidden.find(c) != std::string_view::npos)
      return false;
  return !IsDeviceName(name);
}

}  // namespace qb
