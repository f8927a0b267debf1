#include "core/mdlTray.h"

#include <algorithm>

#include "platform/Service.h"

namespace quorvane::core {

platform::NotifyIconData gTrayIcon;

void AddToTray(std::uint32_t& hWnd, std::uint32_t picture, const std::string& tip,
               std::uint32_t callbackMessage) {
  gTrayIcon.cbSize = platform::tray::kRecordSize;
  gTrayIcon.hWnd = hWnd;
  gTrayIcon.uID = 1;
  gTrayIcon.uFlags = platform::tray::kMessageFlag | platform::tray::kIconFlag |
                     platform::tray::kTipFlag;
  gTrayIcon.uCallbackMessage = callbackMessage;
  gTrayIcon.hIcon = picture;
  // Left-set: the text and its NUL from the left, blanks after them, nothing past 64 bytes.
  const std::string terminated = tip + '\0';
  gTrayIcon.szTip.fill(' ');
  std::copy_n(terminated.begin(), std::min(terminated.size(), gTrayIcon.szTip.size()),
              gTrayIcon.szTip.begin());
  platform::Use<platform::Tray>().Shell_NotifyIconA(platform::tray::kAdd, gTrayIcon);
}

void RemoveFromTray() {
  platform::Use<platform::Tray>().Shell_NotifyIconA(platform::tray::kDelete, gTrayIcon);
}

}  // namespace quorvane::core
