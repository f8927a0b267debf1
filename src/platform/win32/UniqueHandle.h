#pragma once
// The owner of one handle of the platform: closed once, by its owner, with the function given.
// An owner that holds nothing holds the handle type's empty value.
#include <utility>

namespace quorvane::platform::win32 {

template <class Handle, auto Close>
class UniqueHandle {
 public:
  UniqueHandle() = default;
  explicit UniqueHandle(Handle handle) : handle_(handle) {}
  ~UniqueHandle() { Reset(); }
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(std::exchange(other.handle_, Handle{})) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    if (this != &other) {
      Reset();
      handle_ = std::exchange(other.handle_, Handle{});
    }
    return *this;
  }
  UniqueHandle(const UniqueHandle&) = delete;
  UniqueHandle& operator=(const UniqueHandle&) = delete;

  Handle Get() const { return handle_; }
  explicit operator bool() const { return handle_ != Handle{}; }
  void Reset(Handle handle = Handle{}) {
    if (handle_ != Handle{}) Close(handle_);
    handle_ = handle;
  }
  // Gives the handle up without closing it: whoever takes it closes it.
  [[nodiscard]] Handle Release() { return std::exchange(handle_, Handle{}); }

 private:
  Handle handle_{};
};

}  // namespace quorvane::platform::win32
