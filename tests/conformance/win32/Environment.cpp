// For Windows the conformance suite runs over the real API: advapi32, kernel32, gdi32 and
// user32, in folders under the temporary folder the platform names.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <system_error>

#include "Support.h"
#include "platform/Service.h"
#include "platform/win32/Win32Clipboard.h"
#include "platform/win32/Win32Clock.h"
#include "platform/win32/Win32CollectionPacker.h"
#include "platform/win32/Win32DeviceContexts.h"
#include "platform/win32/Win32EventLoop.h"
#include "platform/win32/Win32FileSystem.h"
#include "platform/win32/Win32Pictures.h"
#include "platform/win32/Win32Icons.h"
#include "platform/win32/Win32ProfileFiles.h"
#include "platform/win32/Win32Registry.h"
#include "platform/win32/Win32ResourcePictures.h"
#include "platform/win32/Win32ShellRequests.h"
#include "platform/win32/Win32SystemInfo.h"
#include "platform/win32/Win32Tray.h"
#include "platform/win32/Win32Wallpaper.h"
#include "platform/win32/Win32WindowActions.h"
#include "ui/win32/Win32Forms.h"

namespace quorvane::testing {

namespace {

std::string TempBase() {
  char temp[MAX_PATH + 1];
  const DWORD n = ::GetTempPathA(sizeof temp, temp);
  return std::string(temp, n) + "quorvane-conformance-" + std::to_string(::GetCurrentProcessId());
}

class Win32Environment : public ::testing::Environment {
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
  platform::Win32Registry registry_;
  platform::Win32FileSystem files_;
  platform::Win32EventLoop events_;
  platform::Win32ProfileFiles profiles_;
  platform::win32::Win32DeviceContexts gdi_;
  platform::win32::Win32Clipboard clipboard_;
  platform::win32::Win32Icons icons_;
  platform::win32::Win32Clock clock_;
  platform::Win32ResourcePictures pictures_;
  platform::win32::Win32SystemInfo system_;
  platform::win32::Win32Tray tray_;
  platform::Win32CollectionPackers packers_;
  platform::win32::Win32ShellRequests shell_;
  platform::win32::Win32Pictures pictureFiles_;
  platform::win32::Win32Wallpaper wallpaper_;
  ui::win32::Win32Forms forms_;
  platform::Win32WindowActions windowActions_;
};

[[maybe_unused]] ::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new Win32Environment);

}  // namespace

std::string FreshTempFolder() {
  static std::atomic<int> counter{0};
  const std::string base = TempBase();
  ::CreateDirectoryA(base.c_str(), nullptr);
  const std::string folder = base + "\\" + std::to_string(counter++);
  ::CreateDirectoryA(folder.c_str(), nullptr);
  return folder + "\\";
}

}  // namespace quorvane::testing
