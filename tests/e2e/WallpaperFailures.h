#pragma once
// The report of an automatic change that fails, as a person sees it with the program resident:
// Files.ini is made to name what can't become a wallpaper (a Total that is no number, an entry
// whose collection archive is gone, a picture that can't be decoded) and "Quorvane.ChangeWallpaper"
// runs the change. Each time a message box tells the failure, Quorvane.log gains its line, and
// the program goes on: its process and its main window still answer. Then a good Files.ini makes
// the next change work.
#include <string>

#include "Driving.h"

namespace quorvane::e2e {

// Starts `program` (quorvane.exe) resident ("/background") with the settings it reads at its
// start made for a change of the first entry (on, in order, tiled, an interval of an hour so
// that the minute timer changes nothing of its own), runs the failure cases and the good change,
// keeps the screenshots e2e-failure-*.bmp in `screenshotFolder`, ends the program through
// "Quorvane.Exit", and puts every registry value it touched back, the system's wallpaper too.
// `manifest` is the settings run's list of packed pictures; its first line is the good
// picture. `undecodable` is the entry ("<collection>\<file>") of a collection packed in the data
// folder whose file is no picture. The run writes Files.ini, WP.bmp and Temp.<EXT> in the data
// folder and removes the last two first; the script keeps what was there before.
void RunWallpaperFailures(const std::string& program, const std::string& screenshotFolder,
                          const std::string& manifest, const std::string& undecodable,
                          const Report& report);

}  // namespace quorvane::e2e
