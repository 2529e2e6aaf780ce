#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "app/settings_file.h"
#include "tests/support/temp_dir.h"

namespace qb {
namespace {

// A file whose bytes all differ from their neighbours, reserved fields included.
std::vector<std::uint8_t> Pattern() {
  std::vector<std::uint8_t> bytes(kSettingsFileSize);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = std::uint8_t(i * 7 + i / 256 + 1);
  return bytes;
}

std::uint32_t U32At(const std::vector<std::uint8_t>& b, std::size_t offset) {
  return b[offset] | b[offset + 1] << 8 | b[offset + 2] << 16 | std::uint32_t(b[offset + 3]) << 24;
}

// Read from the file's bytes, written back and saved, every byte comes back.
TEST(SettingsFile, EveryFieldComesFromItsOffsetAndGoesBackByteForByte) {
  const auto bytes = Pattern();
  AppSettings s;
  // The file holds 256 of the browser texts' 260 bytes; the rest must not keep old text.
  s.otherBrowserCaption.fill('x');
  s.browserProgram.fill('y');
  ParseSettings(bytes.data(), bytes.size(), s);
  EXPECT_EQ(SerializeSettings(s), bytes);

  const std::pair<std::size_t, std::uint32_t> words[] = {
      {0, s.reservedWord},     {260, std::uint32_t(s.windowRect.left)},
      {272, std::uint32_t(s.windowRect.bottom)}, {276, s.maximized},
      {2848, s.askForSelect[0]}, {2864, s.askForSelect[4]}, {2868, s.addKeys[0]},
      {2888, s.browserKind},   {3404, s.arrangement}, {3409, s.copyDescription},
      {3415, s.formStatistics}};
  for (const auto& [offset, value] : words) EXPECT_EQ(U32At(bytes, offset), value) << offset;
  const std::pair<std::size_t, std::uint8_t> singles[] = {
      {4, s.reservedBlock[0]}, {259, s.reservedBlock[255]}, {280, std::uint8_t(s.slotNames[0][0])},
      {280 + 9 * 256 + 255, std::uint8_t(s.slotNames[9][255])}, {2840, s.reserved2[0]},
      {2892, std::uint8_t(s.otherBrowserCaption[0])}, {3148, std::uint8_t(s.browserProgram[0])},
      {3408, s.onTop}, {3413, s.toolBarSide}, {3414, s.databaseBarSide}};
  for (const auto& [offset, value] : singles) EXPECT_EQ(bytes[offset], value) << offset;
  for (std::size_t i = kBrowserTextFileWidth; i < kBrowserTextSize; ++i) {
    EXPECT_EQ(s.otherBrowserCaption[i], 0);
    EXPECT_EQ(s.browserProgram[i], 0);
  }

  test::TempDir dir;
  const std::string path = dir.File("pellwick.cfg");
  AppSettings loaded;
  EXPECT_FALSE(ReadSettingsFile(path, loaded));
  ASSERT_TRUE(WriteSettingsFile(path, s));
  EXPECT_EQ(test::ReadBytes(path), bytes);
  ASSERT_TRUE(ReadSettingsFile(path, loaded));
  EXPECT_EQ(SerializeSettings(loaded), bytes);
}

TEST(SettingsFile, TruncatedFileRestoresOnlyWhatItHolds) {
  const auto bytes = Pattern();
  AppSettings s;
  s.otherBrowserCaption.fill('x');  // cleared even when the file ends before it
  ParseSettings(bytes.data(), 280, s);
  const auto read = SerializeSettings(s);
  const auto defaults = SerializeSettings(AppSettings{});
  EXPECT_TRUE(std::equal(read.begin(), read.begin() + 280, bytes.begin()));
  EXPECT_TRUE(std::equal(read.begin() + 280, read.end(), defaults.begin() + 280));

  // A field cut in the middle keeps the bytes that were there.
  s.windowRect.left = 0x11223344;
  ParseSettings(bytes.data(), 262, s);
  EXPECT_EQ(std::uint32_t(s.windowRect.left), 0x11220000u | bytes[261] << 8 | bytes[260]);
}

TEST(WindowRectClamp, KeepsTheStoredQuirks) {
  const struct {
    WindowRect in, out;
  } cases[] = {
      {{5000, 10, 5600, 400}, {0, 10, 1024, 400}},  // off-screen left; right becomes a width
      {{200, 10, 1500, 400}, {200, 10, 824, 400}},   // width stored into the right edge
      {{100, 10, 110, 400}, {0, 10, 300, 400}},      // too narrow
      {{0, 0, 0, 0}, {0, 0, 300, 100}},              // no saved rectangle
      {{10, 900, 500, 1000}, {10, 0, 500, 768}},     // bottom edge gets a height
      {{10, 10, 500, 25}, {10, 0, 500, 100}},        // too low
  };
  const auto edges = [](const WindowRect& r) { return std::tie(r.left, r.top, r.right, r.bottom); };
  for (const auto& c : cases) EXPECT_EQ(edges(ClampWindowRect(c.in, 1024, 768)), edges(c.out));
}

}  // namespace
}  // namespace qb
