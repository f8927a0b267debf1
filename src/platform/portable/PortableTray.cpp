#include "platform/portable/PortableTray.h"

#include <algorithm>

namespace quorvane::platform::portable {

std::vector<NotifyIconData>::iterator PortableTray::Find(const NotifyIconData& data) {
  return std::find_if(icons_.begin(), icons_.end(), [&](const NotifyIconData& icon) {
    return icon.hWnd == data.hWnd && icon.uID == data.uID;
  });
}

std::int32_t PortableTray::Shell_NotifyIconA(std::uint32_t message, const NotifyIconData& data) {
  std::int32_t result = 0;
  std::string name;
  const auto icon = Find(data);
  switch (message) {
    case tray::kAdd:
      name = "add";
      if (present_ && icon == icons_.end()) {
        icons_.push_back(data);
        result = 1;
      }
      break;
    case tray::kModify:
      name = "modify";
      if (present_ && icon != icons_.end()) {
        if ((data.uFlags & tray::kMessageFlag) != 0) icon->uCallbackMessage = data.uCallbackMessage;
        if ((data.uFlags & tray::kIconFlag) != 0) icon->hIcon = data.hIcon;
        if ((data.uFlags & tray::kTipFlag) != 0) icon->szTip = data.szTip;
        result = 1;
      }
      break;
    case tray::kDelete:
      name = "delete";
      if (present_ && icon != icons_.end()) {
        icons_.erase(icon);
        result = 1;
      }
      break;
    default:
      name = std::to_string(message);
      break;
  }
  calls_.push_back(Call{message, data, result});
  if (journal_ != nullptr) journal_->push_back("tray " + name);
  return result;
}

}  // namespace quorvane::platform::portable
