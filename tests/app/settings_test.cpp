#include <gtest/gtest.h>
#include "app/settings.h"
TEST(Settings, Size) { EXPECT_EQ(qb::SerializeSettings(qb::AppSettings{}).size(), qb::kSettingsFileSize); }
