// The settings record and its file "pellwick.cfg": the raw little-endian bytes of
// the fields in a fixed order, 3419 bytes, no header, no version. Platform-free.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qb {

constexpr std::size_t kSettingsFileSize = 3419;
constexpr std::size_t kSettingsSlotCount = 10;    // slot names kept in the file
constexpr std::size_t kSlotNameSize = 256;
constexpr std::size_t kBrowserTextSize = 260;     // in memory
constexpr std::size_t kBrowserTextFileWidth = 256;  // in the file
constexpr std::size_t kScanKindCount = 5;
constexpr char kSettingsFileName[] = "\\pellwick.cfg";

enum BrowserKind : std::uint32_t {
  kBrowserExplorer = 500,
  kBrowserNetscape = 501,
  kBrowserOther = 502,
};

struct WindowRect {
  std::int32_t left = 0, top = 0, right = 0, bottom = 0;
};

struct AppSettings {
  std::uint32_t reservedWord = 0;
  std::array<std::uint8_t, 256> reservedBlock{};
  WindowRect windowRect;
  std::uint32_t maximized = 0;
  std::array<std::array<char, kSlotNameSize>, kSettingsSlotCount> slotNames{};
  std::array<std::uint8_t, 8> reserved2{};
  std::array<std::uint32_t, kScanKindCount> askForSelect{};  // 0 Never, 1 Allways, 2 UnMatched
  std::array<std::uint32_t, kScanKindCount> addKeys{};       // 0 Never, 1 UnMatched
  std::uint32_t browserKind = kBrowserExplorer;
  std::array<char, kBrowserTextSize> otherBrowserCaption{};
  std::array<char, kBrowserTextSize> browserProgram{};
  std::uint32_t arrangement = 0;  // 0 horizontal, 1 vertical
  std::uint8_t onTop = 0;
  std::uint32_t copyDescription = 1;
  std::uint8_t toolBarSide = 0;  // 0 top, 1 bottom, 2 left, 3 right
  std::uint8_t databaseBarSide = 0;
  std::uint32_t formStatistics = 0;
};

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
