// The Windows platform installs one adapter of every port over the real API for its life, and
// puts back what was installed before when it ends.
#include <gtest/gtest.h>

#include "platform/Service.h"
#include "platform/win32/Win32Platform.h"

namespace quorvane::platform::win32 {
namespace {

TEST(Win32PlatformConformance, EveryPortIsServedByThePlatformsOwnAdapter) {
  Win32Platform platform;
  EXPECT_EQ(&Use<platform::Process>(), &platform.Process());
  EXPECT_EQ(&Use<platform::RegistryStore>(), &platform.RegistryStore());
  EXPECT_EQ(&Use<platform::FileSystem>(), &platform.FileSystem());
  EXPECT_EQ(&Use<platform::ProfileFiles>(), &platform.ProfileFiles());
  EXPECT_EQ(&Use<platform::EventLoop>(), &platform.EventLoop());
  EXPECT_EQ(&Use<platform::DeviceContexts>(), &platform.DeviceContexts());
  EXPECT_EQ(&Use<platform::Clipboard>(), &platform.Clipboard());
  EXPECT_EQ(&Use<platform::Icons>(), &platform.Icons());
  EXPECT_EQ(&Use<platform::MessageBoxes>(), &platform.MessageBoxes());
  EXPECT_EQ(&Use<platform::Clock>(), &platform.Clock());
  EXPECT_EQ(&Use<platform::SystemInfo>(), &platform.SystemInfo());
  EXPECT_EQ(&Use<platform::Tray>(), &platform.Tray());
  EXPECT_EQ(&Use<platform::Notification>(), &platform.Notification());
  EXPECT_EQ(&Use<platform::Application>(), &platform.Application());
  EXPECT_EQ(&Use<platform::ResourcePictures>(), &platform.ResourcePictures());
  EXPECT_EQ(&Use<platform::ShellRequests>(), &platform.ShellRequests());
  EXPECT_EQ(&Use<platform::CollectionPackers>(), &platform.CollectionPackers());
  EXPECT_EQ(&Use<platform::Pictures>(), &platform.Pictures());
  EXPECT_EQ(&Use<platform::Wallpaper>(), &platform.Wallpaper());
  EXPECT_EQ(&Use<platform::WindowActions>(), &platform.WindowActions());
}

TEST(Win32PlatformConformance, TheSuitesOwnServicesAreBackWhenItEnds) {
  platform::FileSystem* const files = &Use<platform::FileSystem>();
  platform::RegistryStore* const store = &Use<platform::RegistryStore>();
  {
    Win32Platform platform;
    EXPECT_NE(&Use<platform::FileSystem>(), files);
  }
  EXPECT_EQ(&Use<platform::FileSystem>(), files);
  EXPECT_EQ(&Use<platform::RegistryStore>(), store);
}

}  // namespace
}  // namespace quorvane::platform::win32
