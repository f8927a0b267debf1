// The portable platform installs one adapter of every port for its life, and puts back what was
// installed before when it ends.
#include <gtest/gtest.h>

#include "platform/Service.h"
#include "platform/portable/PortableMessageBoxes.h"
#include "platform/portable/PortablePlatform.h"

namespace quorvane::platform::portable {
namespace {

TEST(PortablePlatformTest, EveryPortIsServedByThePlatformsOwnAdapter) {
  PortablePlatform platform;
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

TEST(PortablePlatformTest, WhatWasInstalledBeforeIsBackWhenItEnds) {
  platform::Clock* const clockBefore = gInstalled<platform::Clock>;
  PortableMessageBoxes own;
  ScopedService<platform::MessageBoxes> installed(own);
  {
    PortablePlatform platform;
    EXPECT_EQ(&Use<platform::MessageBoxes>(), &platform.MessageBoxes());
  }
  EXPECT_EQ(&Use<platform::MessageBoxes>(), &own);
  EXPECT_EQ(gInstalled<platform::Clock>, clockBefore);
}

TEST(PortablePlatformTest, APortInstalledOverThePlatformServesUntilItsScopeEnds) {
  PortablePlatform platform;
  {
    PortableMessageBoxes own;
    ScopedService<platform::MessageBoxes> installed(own);
    EXPECT_EQ(&Use<platform::MessageBoxes>(), &own);
  }
  EXPECT_EQ(&Use<platform::MessageBoxes>(), &platform.MessageBoxes());
}

}  // namespace
}  // namespace quorvane::platform::portable
