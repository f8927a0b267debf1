// For Windows the profile-file conformance tests run over kernel32's profile functions, in
// folders under the temporary folder the platform names.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <system_error>

#include "platform/ProfileFiles.h"
#include "platform/Service.h"
#include "platform/win32/Win32ProfileFiles.h"

namespace quorvane::testing {

namespace {

std::string ProfileTestBase() {
  char temp[MAX_PATH + 1];
  const DWORD n = ::GetTempPathA(sizeof temp, temp);
  return std::string(temp, n) + "quorvane-profiles-" + std::to_string(::GetCurrentProcessId());
}

class ProfileEnvironment : public ::testing::Environment {
 public:
  void SetUp() override { platform::Install<platform::ProfileFiles>(&profiles_); }
  void TearDown() override {
    std::error_code ec;
    std::filesystem::remove_all(ProfileTestBase(), ec);
  }

 private:
  platform::Win32ProfileFiles profiles_;
};

[[maybe_unused]] ::testing::Environment* const kProfileEnvironment =
    ::testing::AddGlobalTestEnvironment(new ProfileEnvironment);

}  // namespace

// A new, empty folder for one test, as a Windows path with a trailing backslash.
std::string ProfileTestFolder() {
  static std::atomic<int> counter{0};
  const std::string base = ProfileTestBase();
  ::CreateDirectoryA(base.c_str(), nullptr);
  const std::string folder = base + "\\" + std::to_string(counter++);
  ::CreateDirectoryA(folder.c_str(), nullptr);
  return folder + "\\";
}

}  // namespace quorvane::testing
