// Natively the conformance suite runs over the portable adapters, in folders under the system's
// temporary folder.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <system_error>

#include "Support.h"
#include "platform/Service.h"
#include "platform/portable/DecodedPictures.h"
#include "platform/portable/GcabCollectionPacker.h"
#include "platform/portable/MemoryRegistry.h"
#include "platform/portable/PortableClipboard.h"
#include "platform/portable/PortableClock.h"
#include "platform/portable/PortableDeviceContexts.h"
#include "platform/portable/PortableEventLoop.h"
#include "platform/portable/PortableFileSystem.h"
#include "platform/portable/PortableIcons.h"
#include "platform/portable/PortableForms.h"
#include "platform/portable/PortableProfileFiles.h"
#include "platform/portable/PortableResourcePictures.h"
#include "platform/portable/PortableSystemInfo.h"
#include "platform/portable/PortableTray.h"
#include "platform/portable/PortableWindowActions.h"
#include "platform/portable/RecordingShellRequests.h"
#include "platform/portable/RecordingWallpaper.h"

namespace quorvane::testing {

namespace {

std::filesystem::path TempBase() {
  return std::filesystem::temp_directory_path() /
         ("quorvane-conformance-" + std::to_string(::getpid()));
}

class PortableEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    platform::Install<platform::RegistryStore>(&registry_);
    platform::Install<platform::FileSystem>(&files_);
    platform::Install<platform::EventLoop>(&events_);
    platform::Install<platform::ProfileFiles>(&profiles_);
    platform::Install<platform::DeviceContexts>(&gdi_);
    platform::Install<platform::Clipboard>(&clipboard_);
    platform::Install<platform::Icons>(&icons_);
    platform::Install<platform::Clock>(&clock_);
    platform::Install<platform::ResourcePictures>(&pictures_);
    platform::Install<platform::SystemInfo>(&system_);
    platform::Install<platform::Tray>(&tray_);
    platform::Install<platform::CollectionPackers>(&packers_);
    platform::Install<platform::ShellRequests>(&shell_);
    platform::Install<platform::Pictures>(&pictureFiles_);
    platform::Install<platform::Wallpaper>(&wallpaper_);
    platform::Install<platform::Forms>(&forms_);
    platform::Install<platform::WindowActions>(&windowActions_);
  }
  void TearDown() override {
    std::error_code ec;
    std::filesystem::remove_all(TempBase(), ec);
  }

 private:
  platform::MemoryRegistry registry_;
  platform::PortableFileSystem files_;
  platform::PortableEventLoop events_;
  platform::PortableProfileFiles profiles_;
  platform::portable::PortableDeviceContexts gdi_;
  platform::portable::PortableClipboard clipboard_{gdi_};
  platform::portable::PortableIcons icons_{gdi_};
  platform::portable::PortableClock clock_;
  platform::PortableResourcePictures pictures_;
  platform::portable::PortableSystemInfo system_;
  platform::portable::PortableTray tray_;
  platform::GcabCollectionPackers packers_;
  platform::portable::RecordingShellRequests shell_;
  platform::portable::DecodedPictures pictureFiles_;
  platform::portable::RecordingWallpaper wallpaper_;
  platform::portable::PortableForms forms_;
  platform::PortableWindowActions windowActions_;
};

[[maybe_unused]] ::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new PortableEnvironment);

}  // namespace

std::string FreshTempFolder() {
  static std::atomic<int> counter{0};
  const auto folder = TempBase() / std::to_string(counter++);
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  return folder.string() + "/";
}

}  // namespace quorvane::testing
