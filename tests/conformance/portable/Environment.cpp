// Natively the conformance suite runs over the portable adapters, in folders under the system's
// temporary folder.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "Support.h"
#include "platform/Service.h"
#include "platform/portable/PortableForms.h"
#include "platform/portable/PortablePlatform.h"

namespace quorvane::testing {

namespace {

std::filesystem::path TempBase() {
  return std::filesystem::temp_directory_path() /
         ("quorvane-conformance-" + std::to_string(::getpid()));
}

class PortableEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    platform_.emplace();
    // The host's file system is drive C, as the temporary folder is on drive C under Windows.
    platform_->Drives().Mount('C', "/", "");
    // The forms port, installed beside the platform.
    forms_.emplace();
  }
  void TearDown() override {
    forms_.reset();
    platform_.reset();
    std::error_code ec;
    std::filesystem::remove_all(TempBase(), ec);
  }

 private:
  std::optional<platform::portable::PortablePlatform> platform_;
  std::optional<platform::Installed<platform::Forms, platform::portable::PortableForms>>
      forms_;
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
