#pragma once
// The icon catalogue: the fixed rows of icon-bearing objects of the shell, read at every run of
// the load routine into FrmMain's IconRecords, each with its image in ILicons.
#include <cstdint>
#include <string>

namespace quorvane {

class FrmMain;

// Builds rows 0 to 64 in row order, reading each row's icon through the window's registry
// object and adding the rows' images to ILicons: rows 26 to 55 as they are built (images 1 to
// 30), then rows 0 to 25 (31 to 56), then rows 56 to 64 (57 to 65). Needs OSName,
// gSystemFolder, gProgramFilesFolder. Failures go up to the load routine.
void LoadIconRecords(FrmMain& form);

// The row whose Name is `text`, exactly; -1 when none is.
std::int32_t FindIconRecord(const FrmMain& form, const std::string& text);

}  // namespace quorvane
