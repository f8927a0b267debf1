#pragma once
// The icon page's changes driven as a person makes them, on the row "Briefcase" of the "Desktop"
// zone: a double click and CmdChange open the icon picker ("Change Icon", owned by the main
// window), where an icon is clicked and OK or Cancel pressed; a staged row is written with
// CmdApply or taken back with CmdReset; CmdApply with nothing staged and CmdDefault with their
// messages; and what each leaves in the registry and the tree.
#include <string>

#include "Navigation.h"

namespace quorvane::e2e {

// Starts `program` (quorvane.exe) with the row's icon and the shell's icon size seeded, runs the
// icon cases on its window, keeps screenshots e2e-icon-*.bmp in `screenshotFolder`, ends it
// through "Quorvane.Exit", and puts every registry value it touched back as it found it.
// `traceFile` is the file that Wine's own diagnostics of the programs in the desktop go to
// (where the shell's own picker is a stub, it tells there that it was asked); empty when there
// is none.
void RunIconChanges(const std::string& program, const std::string& screenshotFolder,
                    const std::string& traceFile, const Report& report);

}  // namespace quorvane::e2e
