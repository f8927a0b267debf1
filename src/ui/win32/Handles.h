#pragma once
// Owners of the handles the binding makes: each is closed once, by its owner.
#include <windows.h>
#include <commctrl.h>

#include <utility>

namespace quorvane::ui::win32 {

template <class Handle, void (*Close)(Handle)>
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

 private:
  Handle handle_{};
};

inline void CloseGdiObject(HGDIOBJ object) { ::DeleteObject(object); }
inline void CloseFont(HFONT font) { CloseGdiObject(font); }
inline void CloseBrush(HBRUSH brush) { CloseGdiObject(brush); }
inline void CloseBitmap(HBITMAP bitmap) { CloseGdiObject(bitmap); }
inline void CloseImageList(HIMAGELIST list) { ::ImageList_Destroy(list); }
inline void CloseMemoryDC(HDC dc) { ::DeleteDC(dc); }

using UniqueFont = UniqueHandle<HFONT, &CloseFont>;
using UniqueBrush = UniqueHandle<HBRUSH, &CloseBrush>;
using UniqueBitmap = UniqueHandle<HBITMAP, &CloseBitmap>;
using UniqueImageList = UniqueHandle<HIMAGELIST, &CloseImageList>;
using UniqueMemoryDC = UniqueHandle<HDC, &CloseMemoryDC>;

}  // namespace quorvane::ui::win32
