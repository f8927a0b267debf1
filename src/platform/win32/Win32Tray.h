#pragma once
// The notification area through shell32's Shell_NotifyIconA.
#include <cstdint>

#include "platform/Tray.h"

namespace quorvane::platform::win32 {

class Win32Tray final : public Tray {
 public:
  // The short record goes to the platform in its own short form, handles widened; its 64-byte
  // tip is passed as it stands, with a terminator behind it.
  std::int32_t Shell_NotifyIconA(std::uint32_t message, const NotifyIconData& data) override;
};

// The window and id of the icon this process added last and has not deleted since; a window of
// 0 when there is none.
struct TrayIconIdentity {
  std::uint32_t hWnd = 0;
  std::uint32_t uID = 0;
};
TrayIconIdentity LastTrayIcon();

}  // namespace quorvane::platform::win32
