#include "platform/win32/Win32Icons.h"

#include <windows.h>
#include <commctrl.h>
#include <shellapi.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "platform/win32/GdiHandles.h"
#include "platform/win32/Win32IconPicker.h"

namespace quorvane::platform::win32 {

namespace {

// Stand-ins for image lists whose pointers need more than 32 bits: their sign extension lies in
// the system's half of the address space, where no pointer of a process lies.
constexpr GdiHandle kWideListBase = 0xFFFF0000u;

using PickIconProc = int(WINAPI*)(HWND, LPWSTR, UINT, int*);

PickIconProc PickerExport() {
  static const PickIconProc proc = [] {
    HMODULE shell = ::LoadLibraryA("shell32.dll");
    if (shell == nullptr) return PickIconProc{nullptr};
    const FARPROC found = ::GetProcAddress(shell, MAKEINTRESOURCEA(62));
    // Through a function type without arguments, which may be cast to any other.
    return reinterpret_cast<PickIconProc>(reinterpret_cast<void (*)()>(found));
  }();
  return proc;
}

template <std::size_t N>
void CopyText(char (&to)[N], const char* from) {
  std::memcpy(to, from, N);
  to[N - 1] = '\0';
}

}  // namespace

std::int32_t Win32Icons::ExtractIconExA(const char* file, std::int32_t index, GdiHandle* large,
                                        GdiHandle* small, std::uint32_t count) {
  std::vector<HICON> larges(large != nullptr ? count : 0u, nullptr);
  std::vector<HICON> smalls(small != nullptr ? count : 0u, nullptr);
  const UINT made = ::ExtractIconExA(file, index, large != nullptr ? larges.data() : nullptr,
                                     small != nullptr ? smalls.data() : nullptr, count);
  const auto result = static_cast<std::int32_t>(made);
  // A failed call may leave anything in the outputs; the caller's are only written when icons
  // were made.
  if (index != -1 && result > 0) {
    for (std::uint32_t i = 0; i < count; ++i) {
      if (large != nullptr) large[i] = FromNative(larges[i]);
      if (small != nullptr) small[i] = FromNative(smalls[i]);
    }
  }
  return result;
}

std::int32_t Win32Icons::DrawIconEx(GdiHandle dc, std::int32_t x, std::int32_t y, GdiHandle icon,
                                    std::int32_t width, std::int32_t height, std::uint32_t step,
                                    GdiHandle brush, std::uint32_t flags) {
  return ::DrawIconEx(ToNative<HDC>(dc), x, y, ToNative<HICON>(icon), width, height, step,
                      ToNative<HBRUSH>(brush), flags);
}

std::int32_t Win32Icons::DestroyIcon(GdiHandle icon) {
  return ::DestroyIcon(ToNative<HICON>(icon));
}

std::uint32_t Win32Icons::SHGetFileInfoA(const char* path, std::uint32_t attributes,
                                         ShFileInfo& info, std::uint32_t /*size*/,
                                         std::uint32_t flags) {
  // Fields the platform leaves alone keep what the caller's record held.
  SHFILEINFOA native{};
  native.hIcon = ToNative<HICON>(info.hIcon);
  native.iIcon = info.iIcon;
  native.dwAttributes = info.dwAttributes;
  CopyText(native.szDisplayName, info.szDisplayName);
  CopyText(native.szTypeName, info.szTypeName);
  // A query of the system image list gives the list, whatever else it asks for: the shell
  // answers the executable type alone when that flag comes with any other, so it is left out
  // of such a query.
  const std::uint32_t asked =
      (flags & icons::kShgfiSysIconIndex) != 0 ? flags & ~icons::kShgfiExeType : flags;
  const DWORD_PTR result = ::SHGetFileInfoA(path, attributes, &native, sizeof native, asked);
  info.hIcon = FromNative(native.hIcon);
  info.iIcon = native.iIcon;
  info.dwAttributes = native.dwAttributes;
  CopyText(info.szDisplayName, native.szDisplayName);
  CopyText(info.szTypeName, native.szTypeName);
  if ((flags & icons::kShgfiSysIconIndex) != 0) return ListHandle(reinterpret_cast<void*>(result));
  return static_cast<std::uint32_t>(result);
}

std::int32_t Win32Icons::ImageList_Draw(GdiHandle list, std::int32_t index, GdiHandle dc,
                                        std::int32_t x, std::int32_t y, std::uint32_t flags) {
  const auto native = static_cast<HIMAGELIST>(ListOf(list));
  if (native == nullptr) return 0;
  return ::ImageList_Draw(native, index, ToNative<HDC>(dc), x, y, flags);
}

std::int32_t Win32Icons::ImageList_GetIconSize(GdiHandle list, std::int32_t& width,
                                               std::int32_t& height) {
  const auto native = static_cast<HIMAGELIST>(ListOf(list));
  int cx = 0;
  int cy = 0;
  if (native == nullptr || ::ImageList_GetIconSize(native, &cx, &cy) == FALSE) return 0;
  width = cx;
  height = cy;
  return 1;
}

std::int32_t Win32Icons::PickIconDlg(GdiHandle owner, char16_t* path, std::uint32_t size,
                                     std::int32_t& index) {
  if (path == nullptr || size == 0) return 0;
  const HWND window = ToNative<HWND>(owner);
  const PickIconProc pick = PickerExport();
  if (pick != nullptr) {
    // The platform's wide characters are 16-bit units as well; the dialog gets its own copy.
    std::wstring buffer(path, path + size);
    int number = index;
    const int result = pick(window, buffer.data(), size, &number);
    if (result == 1) {
      std::transform(buffer.begin(), buffer.end(), path,
                     [](wchar_t unit) { return static_cast<char16_t>(unit); });
      index = number;
    }
    if (result == 1 || result == 0) return result;
  }
  // No working picker in the shell: it is missing, or it answered with neither OK nor Cancel
  // without showing anything. The program's own takes its place, on the caller's buffer.
  return ShowIconPicker(window, path, size, index);
}

GdiHandle Win32Icons::ListHandle(void* list) {
  if (list == nullptr) return 0;
  for (const auto& [value, known] : lists_) {
    if (known == list) return value;
  }
  GdiHandle value = FromNative(list);
  if (ToNative<void*>(value) != list) {
    value = kWideListBase + static_cast<GdiHandle>(lists_.size());
  }
  lists_.emplace_back(value, list);
  return value;
}

void* Win32Icons::ListOf(GdiHandle handle) const {
  for (const auto& [value, list] : lists_) {
    if (value == handle) return list;
  }
  return nullptr;
}

}  // namespace quorvane::platform::win32
