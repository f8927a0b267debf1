#pragma once
// Files for the tests that reach the host's disk: a scratch folder for each test, and reading
// and writing files by the paths the system builds (with backslashes).
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>

namespace quorvane::testing {

// A path the system built, with the host's separators.
inline std::string Host(std::string path) {
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

// The whole content of a file, empty when there is none.
inline std::string ReadFile(const std::string& path) {
  std::ifstream in(Host(path), std::ios::binary);
  std::stringstream all;
  all << in.rdbuf();
  return all.str();
}

inline void WriteFile(const std::string& path, const std::string& content) {
  std::ofstream out(Host(path), std::ios::binary | std::ios::trunc);
  out << content;
}

// An empty folder under the host's temporary folder, named after the running test and this
// process, and removed with everything in it at the end of the test.
class ScratchFolder {
 public:
  explicit ScratchFolder(const std::string& prefix) {
    std::string test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
    std::replace(test.begin(), test.end(), '/', '_');
    path_ = std::filesystem::temp_directory_path() /
            ("quorvane-" + prefix + "-" + std::to_string(::getpid()) + "-" + test);
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

}  // namespace quorvane::testing
