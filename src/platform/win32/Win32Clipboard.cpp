#include "platform/win32/Win32Clipboard.h"

#include <windows.h>

#include "platform/win32/GdiHandles.h"

namespace quorvane::platform::win32 {

std::int32_t Win32Clipboard::OpenClipboard(GdiHandle owner) {
  return ::OpenClipboard(ToNative<HWND>(owner));
}

std::int32_t Win32Clipboard::EmptyClipboard() { return ::EmptyClipboard(); }

GdiHandle Win32Clipboard::SetClipboardData(std::uint32_t format, GdiHandle data) {
  return FromNative(::SetClipboardData(format, ToNative<HANDLE>(data)));
}

GdiHandle Win32Clipboard::GetClipboardData(std::uint32_t format) {
  return FromNative(::GetClipboardData(format));
}

std::int32_t Win32Clipboard::IsClipboardFormatAvailable(std::uint32_t format) {
  return ::IsClipboardFormatAvailable(format);
}

std::int32_t Win32Clipboard::CloseClipboard() { return ::CloseClipboard(); }

}  // namespace quorvane::platform::win32
