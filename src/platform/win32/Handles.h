#pragma once
// The owners of every kind of handle the Windows adapters and the binding hold: files and
// searches, device contexts, drawing objects and their selection into a context, COM objects,
// global memory and its lock, icons, modules, image lists, and the COM and OLE apartments of the
// thread. Each handle is closed once, by its owner, whatever path a routine leaves by.
#include <windows.h>
#include <commctrl.h>
#include <ole2.h>

#include <cstddef>
#include <utility>

#include "platform/win32/UniqueHandle.h"

namespace quorvane::platform::win32 {

// --- files --------------------------------------------------------------------------------------

inline void CloseKernelHandle(HANDLE handle) { ::CloseHandle(handle); }
inline void CloseSearch(HANDLE search) { ::FindClose(search); }

// An open file, as CreateFileA gives it.
using UniqueFile = UniqueHandle<HANDLE, &CloseKernelHandle>;
// A search of a folder, as FindFirstFileA gives it.
using UniqueSearch = UniqueHandle<HANDLE, &CloseSearch>;

// Takes what CreateFileA or FindFirstFileA returned: INVALID_HANDLE_VALUE, their word for no
// handle, becomes an owner that holds nothing.
inline UniqueFile AdoptFile(HANDLE file) {
  return UniqueFile(file == INVALID_HANDLE_VALUE ? nullptr : file);
}
inline UniqueSearch AdoptSearch(HANDLE search) {
  return UniqueSearch(search == INVALID_HANDLE_VALUE ? nullptr : search);
}

// Opens a file with CreateFileA; the owner holds nothing when it can't be opened, and
// GetLastError tells why.
inline UniqueFile OpenFile(const char* path, DWORD access, DWORD share, DWORD disposition,
                           DWORD attributes = FILE_ATTRIBUTE_NORMAL) {
  return AdoptFile(::CreateFileA(path, access, share, nullptr, disposition, attributes, nullptr));
}

// Closes the file now, for a writer that must know whether what it wrote reached the file:
// false when closing failed. An owner that holds nothing closes successfully.
inline bool CloseNow(UniqueFile& file) {
  const HANDLE handle = file.Release();
  return handle == nullptr || ::CloseHandle(handle) != FALSE;
}

// --- device contexts ----------------------------------------------------------------------------

inline void DeleteMemoryDC(HDC dc) { ::DeleteDC(dc); }

// A memory context, as CreateCompatibleDC gives it.
using UniqueMemoryDC = UniqueHandle<HDC, &DeleteMemoryDC>;

// The context of a window, or of the whole screen for no window, as GetDC lends it; handed back
// with ReleaseDC.
class WindowDC {
 public:
  explicit WindowDC(HWND window = nullptr) : window_(window), dc_(::GetDC(window)) {}
  ~WindowDC() {
    if (dc_ != nullptr) ::ReleaseDC(window_, dc_);
  }
  WindowDC(const WindowDC&) = delete;
  WindowDC& operator=(const WindowDC&) = delete;

  HDC Get() const { return dc_; }
  explicit operator bool() const { return dc_ != nullptr; }

 private:
  HWND window_;
  HDC dc_;
};

// --- drawing objects ----------------------------------------------------------------------------

template <class Object>
void DeleteGdiObject(Object object) {
  ::DeleteObject(object);
}

template <class Object>
using UniqueGdiObject = UniqueHandle<Object, &DeleteGdiObject<Object>>;
using UniqueBitmap = UniqueGdiObject<HBITMAP>;
using UniqueFont = UniqueGdiObject<HFONT>;
using UniqueBrush = UniqueGdiObject<HBRUSH>;

// An object selected into a context for the life of a scope; the object it displaced is
// selected back at the end. Nothing is selected when either is missing.
class SelectScope {
 public:
  SelectScope(HDC dc, HGDIOBJ object)
      : dc_(dc), previous_(dc != nullptr && object != nullptr ? ::SelectObject(dc, object)
                                                              : nullptr) {}
  ~SelectScope() {
    if (previous_ != nullptr && previous_ != HGDI_ERROR) ::SelectObject(dc_, previous_);
  }
  SelectScope(const SelectScope&) = delete;
  SelectScope& operator=(const SelectScope&) = delete;

  // Whether the object is selected.
  explicit operator bool() const { return previous_ != nullptr && previous_ != HGDI_ERROR; }

 private:
  HDC dc_;
  HGDIOBJ previous_;
};

// --- icons, image lists, modules ----------------------------------------------------------------

inline void DestroyIconHandle(HICON icon) { ::DestroyIcon(icon); }
inline void DestroyImageList(HIMAGELIST list) { ::ImageList_Destroy(list); }
inline void FreeLibraryModule(HMODULE module) { ::FreeLibrary(module); }

using UniqueIcon = UniqueHandle<HICON, &DestroyIconHandle>;
using UniqueImageList = UniqueHandle<HIMAGELIST, &DestroyImageList>;
using UniqueModule = UniqueHandle<HMODULE, &FreeLibraryModule>;

// --- COM ----------------------------------------------------------------------------------------

// One reference to a COM object, given back with Release at the end of its owner's life.
template <class Interface>
class ComPtr {
 public:
  ComPtr() = default;
  ~ComPtr() { Reset(); }
  ComPtr(ComPtr&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
  ComPtr& operator=(ComPtr&& other) noexcept {
    if (this != &other) {
      Reset();
      p_ = std::exchange(other.p_, nullptr);
    }
    return *this;
  }
  ComPtr(const ComPtr&) = delete;
  ComPtr& operator=(const ComPtr&) = delete;

  Interface* operator->() const { return p_; }
  Interface* Get() const { return p_; }
  explicit operator bool() const { return p_ != nullptr; }
  // Where a function that makes an object puts it; whatever this held is given back first.
  Interface** Out() {
    Reset();
    return &p_;
  }
  void** OutVoid() { return reinterpret_cast<void**>(Out()); }
  void Reset() {
    if (p_ != nullptr) std::exchange(p_, nullptr)->Release();
  }

 private:
  Interface* p_ = nullptr;
};

// COM for this thread, single-threaded, for the life of a scope, where it started here; a thread
// that had it already keeps it as it was.
class ComApartment {
 public:
  ComApartment() : result_(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  ~ComApartment() {
    if (SUCCEEDED(result_)) ::CoUninitialize();
  }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;

  HRESULT Result() const { return result_; }

 private:
  HRESULT result_;
};

// OLE (COM with the clipboard, drag and drop and the picture loader) for this thread for the life
// of a scope, where it started here.
class OleApartment {
 public:
  OleApartment() : result_(::OleInitialize(nullptr)) {}
  ~OleApartment() {
    if (SUCCEEDED(result_)) ::OleUninitialize();
  }
  OleApartment(const OleApartment&) = delete;
  OleApartment& operator=(const OleApartment&) = delete;

  HRESULT Result() const { return result_; }

 private:
  HRESULT result_;
};

// --- global memory ------------------------------------------------------------------------------

inline void FreeGlobal(HGLOBAL memory) { ::GlobalFree(memory); }

// A block of global memory, as GlobalAlloc gives it.
using UniqueGlobal = UniqueHandle<HGLOBAL, &FreeGlobal>;

// A block of movable global memory locked for the life of a scope: its bytes stay where Data
// says until the end. Nothing is locked for a missing block, or when the lock fails.
class GlobalLockScope {
 public:
  GlobalLockScope() = default;
  explicit GlobalLockScope(HGLOBAL memory)
      : memory_(memory), data_(memory != nullptr ? ::GlobalLock(memory) : nullptr) {}
  ~GlobalLockScope() { Unlock(); }
  GlobalLockScope(GlobalLockScope&& other) noexcept
      : memory_(std::exchange(other.memory_, nullptr)), data_(std::exchange(other.data_, nullptr)) {}
  GlobalLockScope& operator=(GlobalLockScope&& other) noexcept {
    if (this != &other) {
      Unlock();
      memory_ = std::exchange(other.memory_, nullptr);
      data_ = std::exchange(other.data_, nullptr);
    }
    return *this;
  }
  GlobalLockScope(const GlobalLockScope&) = delete;
  GlobalLockScope& operator=(const GlobalLockScope&) = delete;

  void* Data() const { return data_; }
  explicit operator bool() const { return data_ != nullptr; }
  void Unlock() {
    if (data_ != nullptr) ::GlobalUnlock(memory_);
    memory_ = nullptr;
    data_ = nullptr;
  }

 private:
  HGLOBAL memory_ = nullptr;
  void* data_ = nullptr;
};

}  // namespace quorvane::platform::win32
