#include "platform/win32/Win32Notification.h"

#include <windows.h>
#include <shellapi.h>

#include <algorithm>

#include "platform/win32/GdiHandles.h"
#include "platform/win32/Win32Tray.h"

namespace quorvane::platform::win32 {

void Win32Notification::SetOption(std::int32_t number, std::int32_t value) {
  options_[number] = value;
}

void Win32Notification::SetPicture(const Pixels& picture) { hasPicture_ = !picture.Empty(); }

void Win32Notification::SetText(const std::string& text) { text_ = text; }

void Win32Notification::Show() {
  const TrayIconIdentity icon = LastTrayIcon();
  if (icon.hWnd == 0) return;
  NOTIFYICONDATAA balloon{};
  balloon.cbSize = sizeof balloon;
  balloon.hWnd = ToNative<HWND>(icon.hWnd);
  balloon.uID = icon.uID;
  balloon.uFlags = NIF_INFO;
  const std::size_t n = std::min(text_.size(), sizeof balloon.szInfo - 1);
  std::copy_n(text_.data(), n, balloon.szInfo);
  const char title[] = "Quorvane";
  std::copy_n(title, sizeof title, balloon.szInfoTitle);
  // The balloon draws no picture of ours; with one it takes the platform's information mark.
  balloon.dwInfoFlags = hasPicture_ ? NIIF_INFO : NIIF_NONE;
  ::Shell_NotifyIconA(NIM_MODIFY, &balloon);
}

}  // namespace quorvane::platform::win32
