// The wallpaper call as the program makes it: SPI_SETDESKWALLPAPER (20) with the path of a bitmap
// file and SPIF_UPDATEINIFILE (1). On Windows the system must then report that path as its
// wallpaper; natively the stand-in must have kept it. The wallpaper the system had before is
// put back afterwards.
#include <gtest/gtest.h>

#include <string>

#include "Support.h"
#include "platform/Pictures.h"
#include "platform/Service.h"
#include "platform/Wallpaper.h"

#ifdef _WIN32
#include <windows.h>
#else
#include "platform/portable/RecordingWallpaper.h"
#endif

namespace quorvane::testing {
namespace {

using platform::Use;
using platform::Wallpaper;

// The wallpaper the system shows now, as it reports it.
std::string CurrentWallpaper() {
#ifdef _WIN32
  char path[MAX_PATH + 1] = {};
  if (!::SystemParametersInfoA(SPI_GETDESKWALLPAPER, sizeof path, path, 0)) return "<no answer>";
  return path;
#else
  return dynamic_cast<platform::portable::RecordingWallpaper&>(Use<Wallpaper>()).Current();
#endif
}

// Puts the wallpaper of the start of a test back at its end.
class KeepWallpaper {
 public:
  KeepWallpaper() : previous_(CurrentWallpaper()) {}
  ~KeepWallpaper() {
    Use<Wallpaper>().SystemParametersInfoA(platform::spi::kSetDeskWallpaper, 0, previous_,
                                           platform::spi::kUpdateIniFile);
  }
  KeepWallpaper(const KeepWallpaper&) = delete;
  KeepWallpaper& operator=(const KeepWallpaper&) = delete;
  const std::string& Previous() const { return previous_; }

 private:
  std::string previous_;
};

TEST(WallpaperConformance, SettingABitmapAsWallpaperMakesItTheSystemsWallpaper) {
  const std::string path = FreshTempFolder() + "WP.bmp";
  Pixels picture;
  picture.width = 4;
  picture.height = 3;
  picture.bgra.assign(12, 0xFF336699u);
  Use<platform::Pictures>().SavePicture(picture, path);

  KeepWallpaper keep;
  ASSERT_NE(keep.Previous(), path);
  EXPECT_NE(Use<Wallpaper>().SystemParametersInfoA(platform::spi::kSetDeskWallpaper, 0, path,
                                                   platform::spi::kUpdateIniFile),
            0);
  EXPECT_EQ(CurrentWallpaper(), path);
}

TEST(WallpaperConformance, ASecondCallReplacesTheFirst) {
  const std::string folder = FreshTempFolder();
  Pixels picture;
  picture.width = 1;
  picture.height = 1;
  picture.bgra = {0xFF000000u};
  Use<platform::Pictures>().SavePicture(picture, folder + "one.bmp");
  Use<platform::Pictures>().SavePicture(picture, folder + "two.bmp");

  KeepWallpaper keep;
  auto& wallpaper = Use<Wallpaper>();
  wallpaper.SystemParametersInfoA(20, 0, folder + "one.bmp", 1);
  EXPECT_EQ(CurrentWallpaper(), folder + "one.bmp");
  wallpaper.SystemParametersInfoA(20, 0, folder + "two.bmp", 1);
  EXPECT_EQ(CurrentWallpaper(), folder + "two.bmp");
}

}  // namespace
}  // namespace quorvane::testing
