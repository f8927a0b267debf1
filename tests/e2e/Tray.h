#pragma once
// The program resident in the notification area, driven as a person drives it: the icon's
// messages sent to PicPopup as the notification area sends them (0x200 with the mouse message in
// lParam); the menu that a right click pops up, read from outside, photographed with an item
// highlighted, and chosen from with the keyboard and with the pointer; "Show/Hide", "Change
// Wallpaper" and "Exit"; a left double click; PicMin's notification, photographed, which takes
// no focus and goes by itself or on a click; and the close requests of the system menu and of
// another program.
#include <string>

#include "Driving.h"

namespace quorvane::e2e {

// The whole run. `manifest` is the settings run's list of packed pictures (the first is the one
// "Change Wallpaper" sets); screenshots go to `screenshotFolder` as <prefix>tray-menu.bmp and
// <prefix>tray-notification.bmp.
void RunTray(const std::string& program, const std::string& screenshotFolder,
             const std::string& manifest, const std::string& shotPrefix, const Report& report);

// The menu alone, photographed with its first item highlighted, then dismissed and the program
// ended through "Exit": for a run at another display scaling.
void RunTrayMenuOnly(const std::string& program, const std::string& screenshotFolder,
                     const std::string& shotPrefix, const Report& report);

}  // namespace quorvane::e2e
