#pragma once
// The program's icon in the notification area. The module keeps one record, the short
// notification icon record, from the adding of the icon to its removal; removing uses the record
// as the last add left it.
#include <cstdint>
#include <string>

#include "platform/Tray.h"

namespace quorvane::core {

// The module's record. Before the first add it is all zero, so a removal then names no icon.
extern platform::NotifyIconData gTrayIcon;

// Fills the record (size 88, the window, id 1, flags message, icon and tip, the callback
// message, the icon handle of `picture`, the tip with a NUL appended and left-set into its 64
// bytes: padded with blanks, or cut at 64) and adds the icon. The platform's answer is not
// looked at.
void AddToTray(std::uint32_t& hWnd, std::uint32_t picture, const std::string& tip,
               std::uint32_t callbackMessage);

// Deletes the icon the record names. The platform's answer is not looked at.
void RemoveFromTray();

}  // namespace quorvane::core
