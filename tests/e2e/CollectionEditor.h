#pragma once
// The collection editor driven as a person drives it: the wallpaper page's "Create a new
// collection", a name typed, pictures chosen in the platform's own open dialog by typing their
// folder and names, the list's three columns read from the real list view, one item removed with
// its confirmation, OK, the new collection's node and strip; then "Modify Collection" (one picture
// added, one removed, OK); then the three refusals of OK.
#include <string>

#include "Driving.h"

namespace quorvane::e2e {

// Starts `program` (quorvane.exe), runs the editor cases over the pictures named in `manifest`
// (one line each: "<Windows path of the folder>\t<file>", at least four, all in that folder),
// keeps screenshots e2e-editor-*.bmp in `screenshotFolder`, copies the archive as it is after
// the creation and after the change to `archiveCopies`\created.RXS and \modified.RXS, and writes
// the names each should hold to `archiveCopies`\created.txt and \modified.txt, for the script
// to compare with what the archives list. `viewed` is a bitmap that is listed, previewed and
// double-clicked; the viewer registered for bitmaps writes the path it was started with into
// `viewerRecord`. Ends the program through "Quorvane.Exit".
void RunCollectionEditor(const std::string& program, const std::string& screenshotFolder,
                         const std::string& manifest, const std::string& archiveCopies,
                         const std::string& viewerRecord, const std::string& viewed,
                         const Report& report);

}  // namespace quorvane::e2e
