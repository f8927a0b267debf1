// Natively the conformance suite runs over the portable registry store, file system and event
// loop.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>

#include <unistd.h>

#include "Support.h"
#include "platform/Service.h"
#include "platform/portable/MemoryRegistry.h"
#include "platform/portable/PortableEventLoop.h"
#include "platform/portable/PortableFileSystem.h"

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
  platform::MemoryRegistry registry_;
  platform::PortableFileSystem files_;
  platform::PortableEventLoop events_;
};

[[maybe_unused]] ::testing::Environment* const kRegistryEnvironment =
    ::testing::AddGlobalTestEnvironment(new RegistryEnvironment);

}  // namespace

std::string FreshTempFolder() {
  static std::atomic<int> counter{0};
  const auto base = std::filesystem::temp_directory_path() /
                    ("quorvane-conformance-" + std::to_string(::getpid()));
  const auto folder = base / std::to_string(counter++);
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  return folder.string() + "/";
}

}  // namespace quorvane::testing
