#pragma once
// The program as QuorvaneSetup.exe installed it: its Start Menu shortcut read as the shell reads
// it, the program started from the shortcut's target with its pages filled (also in a Wine prefix
// that had none of the values the installer adds under Wine), and its help opened from the "?"
// icon at the top of the window, in the system's help viewer; and the uninstaller driven by hand.
#include <string>

#include "Driving.h"

namespace quorvane::e2e {

// `shortcut` is the installed Start Menu entry; `expectedTarget` the installed quorvane.exe it must
// start. Screenshots go to `screenshotFolder` as e2e-installed.bmp and e2e-help.bmp.
void RunInstalled(const std::string& shortcut, const std::string& expectedTarget,
                  const std::string& screenshotFolder, const Report& report);

// The uninstaller, started in the same desktop beside this driver, run as a person runs it: past
// its first page, the box that also removes the user's collections and settings is unticked, a
// click ticks it, and "Uninstall" runs; then "Close". The page with the box is photographed as
// e2e-uninstall-box.bmp.
void RunUninstallWithData(const std::string& screenshotFolder, const Report& report);

}  // namespace quorvane::e2e
