#include "base/file_name.h"

#include <array>

namespace qb {
namespace {

constexpr std::string_view kForbidden = "\\/:*?\"<>|";
constexpr unsigned char kFirstPrintable = 0x20;
constexpr std::array<std::string_view, 6> kDevices = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
constexpr std::array<std::string_view, 2> kNumberedDevices = {"COM", "LPT"};
constexpr std::size_t kNumberedDeviceLength = 4;  // "COM1"

bool SameNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; };
    if (upper(a[i]) != upper(b[i])) return false;
  }
  return true;
}

}  // namespace

bool IsDeviceName(std::string_view name) {
  std::string_view stem = name.substr(0, name.find('.'));
  while (!stem.empty() && stem.back() == ' ') stem.remove_suffix(1);
  for (std::string_view device : kDevices)
    if (SameNoCase(stem, device)) return true;
  if (stem.size() != kNumberedDeviceLength || stem[3] < '0' || stem[3] > '9') return false;
  for (std::string_view device : kNumberedDevices)
    if (SameNoCase(stem.substr(0, 3), device)) return true;
  return false;
}

bool IsPlainFileName(std::string_view name) {
  if (name.empty() || name.back() == '.' || name.back() == ' ') return false;
  for (char c : name)
    if (static_cast<unsigned char>(c) < kFirstPrintable || kForbidden.find(c) != std::string_view::npos)
      return false;
  return !IsDeviceName(name);
}

}  // namespace qb
