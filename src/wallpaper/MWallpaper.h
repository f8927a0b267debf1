#pragma once
// The module MWallpaper: the collection store on disk, the wallpaper settings, and the path
// helpers the wallpaper routines share.
//
// A collection is one packed file <Name>.RXS directly in gDataFolder; its temporary unpacked
// folder is gDataFolder + <Name>. Files.ini in gDataFolder is the flat, numbered list of every
// picture of every ticked collection, which the automatic change reads.
#include <cstdint>
#include <string>

#include "base/Types.h"
#include "ui/Controls.h"

namespace quorvane {

// The settings of the automatic change, all 16-bit, filled by LoadWallpaperSettings.
extern Boolean gWallpaperEnable;
extern std::int16_t gWallpaperInterval;
extern std::int16_t gWallpaperOrder;
extern std::int16_t gWallpaperPosition;

// The key the running program reads its settings from at load, and the one the settings
// dialog writes; they are kept apart on purpose.
inline constexpr char kPredecessorKey[] = "HKEY_CURRENT_USER\\Software\\Talvenor\\Mirefold\\Sablewick";
// The automatic start of the program with Windows.
inline constexpr char kRunKey[] = "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
inline constexpr char kRunValue[] = "Talvenor Quorvane";

// The text behind the last backslash; the whole text when there is none.
std::string FileNameOf(const std::string& path);
// The text behind the last "." in upper case, without the point; "(NONE)" without a point.
std::string FileExtensionOf(const std::string& name);
// True for any file or folder the shell can name.
Boolean PathExists(const std::string& path);
// Deletes the folder with what it holds, when it exists.
void DeleteFolderIfPresent(const std::string& path);
// When `source` exists: deletes `target` if it exists, then moves `source` there. Otherwise
// nothing, and nothing is reported.
void MoveFileOver(const std::string& source, const std::string& target);

// Adds a root node (picture 1, no key) for each file of gDataFolder whose extension reads
// "RXS", named without its last four characters, in the file system's order. Does not clear
// the tree.
void ListCollections(ui::TreeView& tree);

// Builds Files.ini anew from the ticked nodes of `tree`: a folder not yet unpacked is unpacked
// (and stays), its files listed in the file system's order under [Files] as 1, 2, ...
// "<Name>\<file>", Thumbs.db left out; then [Count] Total. A folder that can't be listed after
// the unpack is a failure for the caller; so is a 32,768th entry (overflow).
void RebuildFilesIni(ui::TreeView& tree);

// Reads Enable, TimeInterval, ChangeOrder and Position of `key` into the four globals, with the
// defaults 1, 5, 1, 1 for values that are absent. An interval beyond 16 bits is an overflow.
void LoadWallpaperSettings(const std::string& key);

}  // namespace quorvane
