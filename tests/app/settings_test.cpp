#include <gtest/gtest.h>

#include <cstring>

#include "app/settings.h"
#include "tests/support/temp_dir.h"

namespace qb {
namespace {

std::uint32_t U32At(const std::vector<std::uint8_t>& b, std::size_t offset) {
  return b[offset] | b[offset + 1] << 8 | b[offset + 2] << 16 | std::uint32_t(b[offset + 3]) << 24;
}

// A record in which every field holds a value of its own, reserved fields included.
AppSettings Patterned() {
  AppSettings s;
  s.reservedWord = 0xA1B2C3D4;
  for (std::size_t i = 0; i < s.reservedBlock.size(); ++i) s.reservedBlock[i] = std::uint8_t(255 - i);
  s.windowRect = {-3, 17, 800, 600};
  s.maximized = 1;
  for (std::size_t i = 0; i < kSettingsSlotCount; ++i) {
    std::snprintf(s.slotNames[i].data(), kSlotNameSize, "Slot%zu.dat", i);
    s.slotNames[i][kSlotNameSize - 1] = char('a' + i);  // bytes after the NUL are kept too
  }
  for (std::size_t i = 0; i < 8; ++i) s.reserved2[i] = std::uint8_t(0x80 + i);
  s.askForSelect = {0, 1, 2, 1, 0};
  s.addKeys = {1, 0, 1, 0, 1};
  s.browserKind = kBrowserOther;
  std::strcpy(s.otherBrowserCaption.data(), "Opera");
  std::strcpy(s.browserProgram.data(), "C:\\Opera\\opera.exe");
  s.arrangement = 1;
  s.onTop = 1;
  s.copyDescription = 0;
  s.toolBarSide = 2;
  s.databaseBarSide = 3;
  s.formStatistics = 1;
  return s;
}

TEST(SettingsFile, LayoutPutsEachFieldAtItsOffset) {
  const auto bytes = SerializeSettings(Patterned());
  ASSERT_EQ(bytes.size(), 3419u);
  EXPECT_EQ(U32At(bytes, 0), 0xA1B2C3D4u);
  EXPECT_EQ(bytes[4], 255);
  EXPECT_EQ(static_cast<std::int32_t>(U32At(bytes, 260)), -3);
  EXPECT_EQ(U32At(bytes, 272), 600u);
  EXPECT_EQ(U32At(bytes, 276), 1u);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(&bytes[280])), "Slot0.dat");
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(&bytes[280 + 9 * 256])), "Slot9.dat");
  EXPECT_EQ(bytes[2840], 0x80);
  EXPECT_EQ(U32At(bytes, 2848 + 4 * 2), 2u);
  EXPECT_EQ(U32At(bytes, 2868), 1u);
  EXPECT_EQ(U32At(bytes, 2888), 502u);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(&bytes[2892])), "Opera");
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(&bytes[3148])), "C:\\Opera\\opera.exe");
  EXPECT_EQ(U32At(bytes, 3404), 1u);
  EXPECT_EQ(bytes[3408], 1);
  EXPECT_EQ(U32At(bytes, 3409), 0u);
  EXPECT_EQ(bytes[3413], 2);
  EXPECT_EQ(bytes[3414], 3);
  EXPECT_EQ(U32At(bytes, 3415), 1u);
}

TEST(SettingsFile, SaveThenLoadRestoresEveryByte) {
  test::TempDir dir;
  const std::string path = dir.File("pellwick.cfg");
  ASSERT_TRUE(WriteSettingsFile(path, Patterned()));
  const auto written = test::ReadBytes(path);
  ASSERT_EQ(written.size(), 3419u);

  AppSettings loaded;
  ASSERT_TRUE(ReadSettingsFile(path, loaded));
  EXPECT_EQ(SerializeSettings(loaded), written);
  EXPECT_EQ(loaded.arrangement, 1u);  // "Vertical"
  EXPECT_EQ(loaded.onTop, 1);         // "On The Top"
}

TEST(SettingsFile, MissingFileKeepsDefaults) {
  test::TempDir dir;
  AppSettings s;
  EXPECT_FALSE(ReadSettingsFile(dir.File("pellwick.cfg"), s));
  EXPECT_EQ(SerializeSettings(s), SerializeSettings(AppSettings{}));
  EXPECT_EQ(s.browserKind, 500u);
  EXPECT_EQ(s.copyDescription, 1u);
}

TEST(SettingsFile, TruncatedFileRestoresOnlyWhatItHolds) {
  auto bytes = SerializeSettings(Patterned());
  bytes.resize(280);
  AppSettings s;
  ParseSettings(bytes.data(), bytes.size(), s);
  EXPECT_EQ(s.windowRect.left, -3);
  EXPECT_EQ(s.windowRect.bottom, 600);
  EXPECT_EQ(s.maximized, 1u);
  EXPECT_EQ(s.slotNames[0][0], 0);
  EXPECT_EQ(s.browserKind, 500u);
  EXPECT_EQ(s.copyDescription, 1u);
  EXPECT_EQ(s.arrangement, 0u);
}

TEST(SettingsFile, FieldCutInTheMiddleKeepsTheBytesThatWereThere) {
  auto bytes = SerializeSettings(Patterned());
  bytes.resize(262);  // two bytes of the rectangle's left edge
  AppSettings s;
  s.windowRect.left = 0x11223344;
  ParseSettings(bytes.data(), bytes.size(), s);
  EXPECT_EQ(static_cast<std::uint32_t>(s.windowRect.left), 0x1122FFFDu);  // -3 is FD FF ...
}

TEST(SettingsFile, BrowserTextsAreClearedBeforeTheyAreRead) {
  AppSettings s;
  s.otherBrowserCaption.fill('x');
  s.browserProgram.fill('y');
  auto bytes = SerializeSettings(Patterned());
  ParseSettings(bytes.data(), bytes.size(), s);
  EXPECT_STREQ(s.otherBrowserCaption.data(), "Opera");
  for (std::size_t i = kBrowserTextFileWidth; i < kBrowserTextSize; ++i) {
    EXPECT_EQ(s.otherBrowserCaption[i], 0);
    EXPECT_EQ(s.browserProgram[i], 0);
  }
  // Even a file that ends before them leaves them empty.
  s.otherBrowserCaption.fill('x');
  ParseSettings(bytes.data(), 100, s);
  EXPECT_EQ(s.otherBrowserCaption[0], 0);
}

TEST(WindowRectClamp, KeepsTheStoredQuirks) {
  struct Case {
    WindowRect in;
    WindowRect out;
  } cases[] = {
      {{5000, 10, 5600, 400}, {0, 10, 1024, 400}},  // off-screen left; right becomes a width
      {{200, 10, 1500, 400}, {200, 10, 824, 400}},   // width stored into the right edge
      {{100, 10, 110, 400}, {0, 10, 300, 400}},      // too narrow
      {{0, 0, 0, 0}, {0, 0, 300, 100}},              // no saved rectangle
      {{10, 900, 500, 1000}, {10, 0, 500, 768}},     // bottom edge gets a height
      {{10, 10, 500, 25}, {10, 0, 500, 100}},        // too low
  };
  for (const auto& c : cases) {
    WindowRect r = ClampWindowRect(c.in, 1024, 768);
    EXPECT_EQ(r.left, c.out.left);
    EXPECT_EQ(r.top, c.out.top);
    EXPECT_EQ(r.right, c.out.right);
    EXPECT_EQ(r.bottom, c.out.bottom);
  }
}

}  // namespace
}  // namespace qb
