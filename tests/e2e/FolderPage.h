#pragma once
// The folder page driven as a person drives it: the page opened, drive C and a folder made for
// the test opened in the tree, a folder selected and its icon previewed, "Change" with an icon
// chosen in the picker (desktop.ini and the folder's attributes on disk, the node's new image),
// then "Default" (the file gone, the system attribute gone, the tree built anew).
#include <string>

#include "Driving.h"

namespace quorvane::e2e {

// Starts `program` (quorvane.exe), runs the folder cases on C:\QuorvaneFolders (made here, and
// removed at the end), keeps screenshots <prefix>tree.bmp, <prefix>preview.bmp and
// <prefix>changed.bmp in `screenshotFolder`, and ends it through "Quorvane.Exit".
void RunFolderPage(const std::string& program, const std::string& screenshotFolder,
                   const std::string& shotPrefix, const Report& report);

}  // namespace quorvane::e2e
