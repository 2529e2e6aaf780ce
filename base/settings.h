// The settings record: the options and window placement the program keeps between
// runs. Its file form lives with the application frame.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace qb {

constexpr std::size_t kSettingsSlotCount = 10;    // slot names kept in the file
constexpr std::size_t kSlotNameSize = 256;
constexpr std::size_t kBrowserTextSize = 260;     // in memory
constexpr std::size_t kScanKindCount = 5;

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

}  // namespace qb
