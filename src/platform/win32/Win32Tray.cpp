#include "platform/win32/Win32Tray.h"

#include <windows.h>
#include <shellapi.h>

#include <algorithm>
#include <cstring>

#include "platform/win32/GdiHandles.h"

namespace quorvane::platform::win32 {

namespace {

TrayIconIdentity gLastIcon;

}  // namespace

std::int32_t Win32Tray::Shell_NotifyIconA(std::uint32_t message, const NotifyIconData& data) {
  NOTIFYICONDATAA native{};
  // The short record of 88 bytes is the platform's first form; in a 64-bit process that form is
  // wider, and its size is what the platform knows it by. A record of another size keeps its
  // size, within what is here.
  native.cbSize = data.cbSize == tray::kRecordSize
                      ? static_cast<DWORD>(NOTIFYICONDATAA_V1_SIZE)
                      : static_cast<DWORD>(std::min<std::size_t>(data.cbSize, sizeof native));
  native.hWnd = ToNative<HWND>(data.hWnd);
  native.uID = data.uID;
  native.uFlags = data.uFlags;
  native.uCallbackMessage = data.uCallbackMessage;
  native.hIcon = ToNative<HICON>(data.hIcon);
  // The native tip is wider than 64 bytes and zeroed, so a tip without a NUL still ends.
  std::memcpy(native.szTip, data.szTip.data(), data.szTip.size());
  const BOOL done = ::Shell_NotifyIconA(message, &native);
  if (done) {
    if (message == NIM_ADD) {
      gLastIcon = TrayIconIdentity{data.hWnd, data.uID};
    } else if (message == NIM_DELETE && gLastIcon.hWnd == data.hWnd && gLastIcon.uID == data.uID) {
      gLastIcon = TrayIconIdentity{};
    }
  }
  return static_cast<std::int32_t>(done);
}

TrayIconIdentity LastTrayIcon() { return gLastIcon; }

}  // namespace quorvane::platform::win32
