// For Windows the conformance suite runs over the real API: advapi32, kernel32, gdi32 and
// user32, in folders under the temporary folder the platform names.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "Support.h"
#include "platform/Service.h"
#include "platform/win32/Win32Platform.h"
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
    platform_.emplace();
    // The forms port: its Windows adapter is the binding's, installed beside the platform.
    forms_.emplace();
  }
  void TearDown() override {
    forms_.reset();
    platform_.reset();
    std::error_code ec;
    std::filesystem::remove_all(TempBase(), ec);
  }

 private:
  std::optional<platform::win32::Win32Platform> platform_;
  std::optional<platform::Installed<platform::Forms, ui::win32::Win32Forms>> forms_;
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
