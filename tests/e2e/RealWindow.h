#pragma once
// The real window as a person uses it, where the windows of the system would do otherwise than
// the controls of the program: a disabled picture button under the pointer, numbers typed into
// the spin edits, and the keyboard focus after a collection is removed. Each case checks what
// the real window shows and keeps a screenshot.
#include <string>

#include "Driving.h"

namespace quorvane::e2e {

// The collections that RunRealWindow's removal case finds in the data folder, packed there
// beforehand (scripts/e2e.sh does it); the first one listed is removed.
inline constexpr const char* kFocusCollections[] = {"FocusOne", "FocusTwo"};

// Starts `program` (quorvane.exe) with an empty command line, taken for "Windows XP" (the
// Appearance page has its command), runs the cases, saves screenshots as <prefix><case>.bmp in
// `screenshotFolder`, and ends it through "Quorvane.Exit". The registry values and Files.ini
// that the settings dialog's save writes are put back afterwards.
void RunRealWindow(const std::string& program, const std::string& screenshotFolder,
                   const std::string& shotPrefix, const Report& report);

}  // namespace quorvane::e2e
