// Natively the profile-file conformance tests run over the portable profile files, in folders
// under the system's temporary folder.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <system_error>

#include <unistd.h>

#include "platform/ProfileFiles.h"
#include "platform/Service.h"
#include "platform/portable/PortableProfileFiles.h"

namespace quorvane::testing {

namespace {

std::filesystem::path ProfileTestBase() {
  return std::filesystem::temp_directory_path() /
         ("quorvane-profiles-" + std::to_string(::getpid()));
}

class ProfileEnvironment : public ::testing::Environment {
 public:
  void SetUp() override { platform::Install<platform::ProfileFiles>(&profiles_); }
  void TearDown() override {
    std::error_code ec;
    std::filesystem::remove_all(ProfileTestBase(), ec);
  }

 private:
  platform::PortableProfileFiles profiles_;
};

[[maybe_unused]] ::testing::Environment* const kProfileEnvironment =
    ::testing::AddGlobalTestEnvironment(new ProfileEnvironment);

}  // namespace

// A new, empty folder for one test, with a trailing separator.
std::string ProfileTestFolder() {
  static std::atomic<int> counter{0};
  const auto folder = ProfileTestBase() / std::to_string(counter++);
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  return folder.string() + "/";
}

}  // namespace quorvane::testing
