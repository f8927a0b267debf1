#pragma once
// What the harnesses share: stopping the run when a property fails, and one scratch file a
// process that the harness fills with the input and hands to the code under test.
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace quorvane::fuzzing {

// Stops the run, naming the harness and the property that failed, so the input is kept.
inline void Require(bool condition, const char* what) {
  if (!condition) {
    std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, what);
    std::abort();
  }
}

// One file for the life of the process in the temporary folder, named for the harness and the
// process, with the given extension; removed at the end.
class ScratchFile {
 public:
  explicit ScratchFile(const std::string& extension)
      : path_((std::filesystem::temp_directory_path() /
               (std::string(program_invocation_short_name) + "-" + std::to_string(::getpid()) +
                extension))
                  .string()) {}
  ~ScratchFile() {
    std::error_code ec;
    std::filesystem::remove(path_, ec);
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  const std::string& Path() const { return path_; }

  void Fill(const std::uint8_t* data, std::size_t size) const {
    std::FILE* f = std::fopen(path_.c_str(), "wb");
    Require(f != nullptr, "can't write the scratch file");
    if (size > 0) Require(std::fwrite(data, 1, size, f) == size, "short write");
    std::fclose(f);
  }

  std::string Contents() const {
    std::string bytes;
    std::FILE* f = std::fopen(path_.c_str(), "rb");
    Require(f != nullptr, "can't read the scratch file");
    char chunk[4096];
    std::size_t n = 0;
    while ((n = std::fread(chunk, 1, sizeof chunk, f)) > 0) bytes.append(chunk, n);
    std::fclose(f);
    return bytes;
  }

 private:
  std::string path_;
};

}  // namespace quorvane::fuzzing
