#pragma once
// The wallpaper page driven as a person drives it: the page opened on a collection of real
// pictures of mixed kinds and sizes, the strip waited for and checked (how many thumbnails, where
// each stands, and the caption each thumbnail's window carries, in the collection's order, a long
// name shortened with "..."), scrolled to its last row, one thumbnail set as wallpaper now, and one opened with
// a double click in the viewer the test registered for its kind.
#include <string>

#include "Driving.h"

namespace quorvane::e2e {

// Starts `program` (quorvane.exe) on a data folder that holds one collection, runs the strip
// cases, keeps screenshots e2e-strip.bmp and e2e-strip-scrolled.bmp in `screenshotFolder` and
// ends it through "Quorvane.Exit". `manifest` names the collection on its first line
// ("collection\t<name>") and then, one line each in the strip's order, the pictures the strip
// must show ("<file>\t<width>\t<height>\t<bytes>"). `viewerRecord` is the file the registered
// viewer writes the path it was started with into.
void RunWallpaperPage(const std::string& program, const std::string& screenshotFolder,
                      const std::string& manifest, const std::string& viewerRecord,
                      const Report& report);

// The viewer the test registers: writes `file` into `record`.
int RecordViewer(const std::string& record, const std::string& file);

}  // namespace quorvane::e2e
