#pragma once
// The main window driven as a person drives it: its pages chosen with the page commands, the
// catalogue trees chosen by the zones of the zone strip, and the pictures of the command buttons
// under the pointer. Each case checks what the real window shows and keeps a screenshot.
#include <string>

#include "Driving.h"

namespace quorvane::e2e {

// How the run ends: hidden with PicMin and then ended through "Quorvane.Exit", or closed with
// PicClose.
enum class Ending { ByPicMin, ByPicClose };

// Starts `program` (quorvane.exe) with an empty command line, runs the background, page, zone,
// hover and drag cases on its window, saves screenshots as <prefix>page-<n>.bmp,
// <prefix>zone-<name>.bmp and <prefix>hover.bmp in `screenshotFolder`, and ends it as `ending`
// says.
void RunNavigation(const std::string& program, const std::string& screenshotFolder,
                   const std::string& shotPrefix, Ending ending, const Report& report);

}  // namespace quorvane::e2e
