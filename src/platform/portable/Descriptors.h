#pragma once
// The owners of the host's open files the portable adapters hold: a descriptor, and a C stream.
// Each is closed once, by its owner; a writer that must know whether its bytes reached the file
// closes it early and reads the answer.
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <utility>

namespace quorvane::platform::portable {

class UniqueDescriptor {
 public:
  UniqueDescriptor() = default;
  explicit UniqueDescriptor(int fd) : fd_(fd) {}
  ~UniqueDescriptor() { Close(); }
  UniqueDescriptor(UniqueDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  UniqueDescriptor& operator=(UniqueDescriptor&& other) noexcept {
    if (this != &other) {
      Close();
      fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
  }
  UniqueDescriptor(const UniqueDescriptor&) = delete;
  UniqueDescriptor& operator=(const UniqueDescriptor&) = delete;

  int Get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }
  // Closes it now; false when closing failed, which may be the first word of a failed write.
  // An owner that holds nothing closes successfully.
  bool Close() { return fd_ < 0 || ::close(std::exchange(fd_, -1)) == 0; }

 private:
  int fd_ = -1;
};

struct StreamCloser {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using UniqueStream = std::unique_ptr<std::FILE, StreamCloser>;

// Closes the stream now: false when what was written to it didn't all reach the file.
inline bool CloseNow(UniqueStream& stream) { return !stream || std::fclose(stream.release()) == 0; }

}  // namespace quorvane::platform::portable
