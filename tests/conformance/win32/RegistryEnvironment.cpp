// For Windows the conformance suite runs over the real registry, file system and message loop.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <string>

#include "Support.h"
#include "platform/Service.h"
#include "platform/win32/Win32EventLoop.h"
#include "platform/win32/Win32FileSystem.h"
#include "platform/win32/Win32Registry.h"

namespace quorvane::testing {

namespace {

class RegistryEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    platform::Install<platform::RegistryStore>(&registry_);
    platform::Install<platform::FileSystem>(&files_);
    platform::Install<platform::EventLoop>(&events_);
  }

 private:
  platform::Win32Registry registry_;
  platform::Win32FileSystem files_;
  platform::Win32EventLoop events_;
};

[[maybe_unused]] ::testing::Environment* const kRegistryEnvironment =
    ::testing::AddGlobalTestEnvironment(new RegistryEnvironment);

}  // namespace

std::string FreshTempFolder() {
  static std::atomic<int> counter{0};
  char temp[MAX_PATH + 1];
  const DWORD n = ::GetTempPathA(sizeof temp, temp);
  std::string base(temp, n);
  base += "quorvane-conformance-" + std::to_string(::GetCurrentProcessId());
  ::CreateDirectoryA(base.c_str(), nullptr);
  std::string folder = base + "\\" + std::to_string(counter++);
  ::CreateDirectoryA(folder.c_str(), nullptr);
  return folder + "\\";
}

}  // namespace quorvane::testing
