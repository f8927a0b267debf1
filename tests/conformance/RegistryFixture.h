#pragma once
// Every registry test works under a key of its own in the current user's hive, made empty
// before and removed after the test.
#include <gtest/gtest.h>

#include <string>

#include "Support.h"

namespace quorvane::testing {

class RegistryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    base_ = std::string("Software\\QuorvaneConformance\\") + info->test_suite_name() + "." +
            info->name();
    DeleteTree(platform::reg::kCurrentUser, base_);
  }
  void TearDown() override { DeleteTree(platform::reg::kCurrentUser, base_); }

  // The test's key below HKEY_CURRENT_USER, and the same as a full path.
  const std::string& Base() const { return base_; }
  std::string Path(const std::string& below = "") const {
    return "HKEY_CURRENT_USER\\" + base_ + (below.empty() ? "" : "\\" + below);
  }
  std::string ShortPath(const std::string& below = "") const {
    return "HKCU\\" + base_ + (below.empty() ? "" : "\\" + below);
  }

 private:
  std::string base_;
};

}  // namespace quorvane::testing
