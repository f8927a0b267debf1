// Each build's platform object installs one adapter of every port for its life, and puts back
// what was installed before when it ends.
#include <gtest/gtest.h>

#include "platform/MessageBoxes.h"
#include "platform/Service.h"
#ifdef _WIN32
#include "platform/win32/Win32Platform.h"
#else
#include "platform/portable/PortablePlatform.h"
#endif

namespace quorvane::platform {
namespace {

#ifdef _WIN32
using BuildPlatform = win32::Win32Platform;
#else
using BuildPlatform = portable::PortablePlatform;
#endif

// Message boxes of the test's own, installed over the platform's.
class OwnBoxes final : public MessageBoxes {
 public:
  std::int32_t MsgBox(const std::string&, std::int32_t, const std::string&) override { return 0; }
};

TEST(PlatformConformance, EveryPortIsServedByThePlatformsOwnAdapter) {
  BuildPlatform platform;
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

TEST(PlatformConformance, WhatWasInstalledBeforeIsBackWhenItEnds) {
  platform::FileSystem* const files = gInstalled<platform::FileSystem>;
  platform::Clock* const clock = gInstalled<platform::Clock>;
  OwnBoxes own;
  ScopedService<platform::MessageBoxes> installed(own);
  {
    BuildPlatform platform;
    EXPECT_EQ(&Use<platform::MessageBoxes>(), &platform.MessageBoxes());
    EXPECT_NE(gInstalled<platform::FileSystem>, files);
  }
  EXPECT_EQ(&Use<platform::MessageBoxes>(), &own);
  EXPECT_EQ(gInstalled<platform::FileSystem>, files);
  EXPECT_EQ(gInstalled<platform::Clock>, clock);
}

TEST(PlatformConformance, APortInstalledOverThePlatformServesUntilItsScopeEnds) {
  BuildPlatform platform;
  {
    OwnBoxes own;
    ScopedService<platform::MessageBoxes> installed(own);
    EXPECT_EQ(&Use<platform::MessageBoxes>(), &own);
  }
  EXPECT_EQ(&Use<platform::MessageBoxes>(), &platform.MessageBoxes());
}

}  // namespace
}  // namespace quorvane::platform
