#include <gtest/gtest.h>

#include "platform/portable/RecordingWallpaper.h"

namespace quorvane::platform::portable {
namespace {

TEST(RecordingWallpaperTest, KeepsEveryCallInOrderAndTheLastWallpaperSet) {
  RecordingWallpaper wallpaper;
  EXPECT_EQ(wallpaper.Current(), "");
  EXPECT_EQ(wallpaper.SystemParametersInfoA(20, 0, "C:\\Data\\WP.bmp", 1), 1);
  EXPECT_EQ(wallpaper.SystemParametersInfoA(73, 260, "", 0), 0);  // not one it knows
  EXPECT_EQ(wallpaper.SystemParametersInfoA(20, 0, "C:\\Other.bmp", 3), 1);
  const std::vector<WallpaperCall> expected = {{20, 0, "C:\\Data\\WP.bmp", 1},
                                               {73, 260, "", 0},
                                               {20, 0, "C:\\Other.bmp", 3}};
  EXPECT_EQ(wallpaper.Calls(), expected);
  EXPECT_EQ(wallpaper.Current(), "C:\\Other.bmp");
  wallpaper.Clear();
  EXPECT_TRUE(wallpaper.Calls().empty());
  EXPECT_EQ(wallpaper.Current(), "");
}

TEST(RecordingWallpaperTest, AnEmptyPathClearsTheWallpaper) {
  RecordingWallpaper wallpaper;
  wallpaper.SystemParametersInfoA(20, 0, "C:\\WP.bmp", 1);
  wallpaper.SystemParametersInfoA(20, 0, "", 1);
  EXPECT_EQ(wallpaper.Current(), "");
  EXPECT_EQ(wallpaper.Calls().size(), 2u);
}

}  // namespace
}  // namespace quorvane::platform::portable
