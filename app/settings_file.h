// The settings file "pellwick.cfg": the raw little-endian bytes of the record's
// fields in a fixed order, 3419 bytes, no header, no version. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/settings.h"

namespace qb {

constexpr std::size_t kSettingsFileSize = 3419;
constexpr std::size_t kBrowserTextFileWidth = 256;  // a browser text's width in the file
constexpr char kSettingsFileName[] = "\\pellwick.cfg";

// Reads the fields in file order from `bytes`. A short input leaves every field
// after the point where it ended as it was (a field cut in the middle gets the
// bytes that were there); bytes past the layout are ignored.
void ParseSettings(const std::uint8_t* bytes, std::size_t size, AppSettings& settings);
// The 3419 bytes of the file.
std::vector<std::uint8_t> SerializeSettings(const AppSettings& settings);

// File level: false when the file cannot be opened (the caller tells the user).
bool ReadSettingsFile(const std::string& path, AppSettings& settings);
bool WriteSettingsFile(const std::string& path, const AppSettings& settings);

// Start-up clamping of the saved window rectangle to a screen of width x height.
// The right and bottom edges may receive a width and a height; that is how the
// program has always restored it.
WindowRect ClampWindowRect(WindowRect r, int width, int height);

}  // namespace qb
