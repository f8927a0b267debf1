#pragma once
// The two routines that know which registry keys belong to which catalogue row: writing a
// staged icon location to the row's keys, and taking the row back to its stock icon. A row is
// found by its Name, compared exactly; a name no row has writes nothing. Every call, also one
// that wrote nothing, ends with the shell refresh: RefreshDesktopView, BroadcastShellChange,
// ToggleShellIconSize, in that order.
//
// All writes are text values through the window's AdvRegistryAccess, which makes missing keys;
// the results of its writes and deletes are not looked at. The keys depend on the Windows
// version for two rows only ("My Network Places" and "EMail"), by `osName` being exactly
// "Windows Vista". A failure of the refresh goes up to the caller.
#include <string>

#include "stores/AdvRegistryAccess.h"

namespace quorvane {

// Writes `location` to every key of the row called `name`.
void WriteIconRecord(AdvRegistryAccess& reg, const std::string& osName, const std::string& name,
                     const std::string& location);

// Takes the row called `name` back to stock: the rows kept under "Shell Icons" lose their
// value there (all but "Program Group", which is written like the apply side), every other row
// has `location` written to its keys.
void RestoreIconRecord(AdvRegistryAccess& reg, const std::string& osName,
                       const std::string& name, const std::string& location);

}  // namespace quorvane
