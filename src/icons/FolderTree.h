#pragma once
// The folder tree's helpers: the display text of drives and folders, the drive queries, whether
// a folder has sub-folders, and the path a node of Tree stands for. No routine here shows a
// message.
#include <cstdint>
#include <string>

#include "base/Types.h"
#include "ui/Controls.h"

namespace quorvane {

// The word-by-word capitaliser of every text of Tree: the first character in upper case and the
// rest in lower case; then each character that follows a blank, "-", "_", ",", ".", "(", ")",
// "[", "]", "\", "/", "=" or "+" in upper case. "LOCAL DISK (c:)" becomes "Local Disk (C:)".
std::string ProperCaseName(const std::string& Name);

// Whether the drive letter ("C:") stands for a drive, with a medium or without one.
Boolean DriveExists(const std::string& Drive);

// The name a drive ("C:") shows: its volume name when a medium is in it, else nothing. The
// service's kind of drive is a number, which never equals the text "Remote", so the share name
// of a network drive is never taken, though it is asked first. On a failure, what it has so far.
std::string DriveName(const std::string& Drive);

// Whether the folder has at least one sub-folder. A path of under three characters ("C:") gets
// a backslash first. False when the folder can't be read.
Boolean HasSubFolders(std::string Path);

// The path node `Node` of `tree` stands for, from its full path: "My Computer\Local Disk (C:)
// \Windows" gives "C:\Windows", a drive's node "C:". The empty text on any failure, and so for
// the root and for no node at all.
std::string NodeFolderPath(const ui::TreeView& tree, std::int32_t Node);

}  // namespace quorvane
