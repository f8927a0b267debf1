#pragma once
// The Appearance page driven as a person drives it. On "Windows XP": the page chosen with its
// command; the slider dragged to several positions, each shown in the preview at its size on
// the desktop's own background, with the slider's background white; a spacing typed and spun,
// the shortcut arrow unticked, Apply (the registry values as computed, the restart message) and
// Default (the defaults stored, no message). On "Windows Vista": the page's command hidden, its
// controls disabled and the message shown. Screenshots go to the screenshot folder.
#include <string>

#include "Driving.h"

namespace quorvane::e2e {

// Starts `program` (quorvane.exe) with an empty command line and runs the cases of the system it
// takes itself for; the stored appearance values are put back afterwards. Screenshots are
// <prefix>appearance-….bmp in `screenshotFolder`.
void RunAppearance(const std::string& program, const std::string& screenshotFolder,
                   const std::string& shotPrefix, const Report& report);

}  // namespace quorvane::e2e
