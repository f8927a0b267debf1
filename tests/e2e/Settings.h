#pragma once
// The wallpaper settings driven as a person drives them, then the automatic change run at once:
// on the "Wallpaper" page CmdSettings opens the settings dialog, owned by the main window; in it
// a collection is ticked, the stretched position chosen and the start with Windows asked for,
// and CmdSave pressed. What the save leaves (the settings, the run value, Files.ini) is checked,
// then the registered message "Quorvane.ChangeWallpaper" makes the program change the wallpaper:
// WP.bmp, the style values and the system's wallpaper are checked, and the desktop photographed.
#include <string>

#include "Navigation.h"

namespace quorvane::e2e {

// Starts `program` (quorvane.exe) with the settings of the program's key and its run value
// removed, runs the settings cases, keeps screenshots e2e-settings.bmp and e2e-wallpaper.bmp in
// `screenshotFolder`, ends it through "Quorvane.Exit", and puts every registry value it touched
// back as it found it, the system's wallpaper too. `manifest` is a text file with a line
// "<collection>\t<file>\t<width>\t<height>" for each picture of the collections that were made
// in the data folder before the run; the collection of the first line is the one ticked.
void RunSettings(const std::string& program, const std::string& screenshotFolder,
                 const std::string& manifest, const Report& report);

}  // namespace quorvane::e2e
