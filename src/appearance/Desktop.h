#pragma once
// The module Desktop: making the shell take up registry values it caches (icon assignments,
// icon size, spacing, the shortcut overlay) without a log-off. A simulated F5 on the desktop's
// list view, a change broadcast to every window, and the toggle of "Shell Icon Size" that makes
// the shell rebuild its icon cache, with the two raw registry routines that serve it.
//
// The routines keep no state and have no failure handler of their own: a failure goes up to
// the caller. Their only reports are message boxes with an OK button, no icon and the
// application's title. The broadcasts block the one thread for up to 10 seconds for each
// hung top-level window; callers show a busy window meanwhile.
//
// Callers use the first three as a group, in one of two orders: after icons were written,
// RefreshDesktopView, BroadcastShellChange, ToggleShellIconSize; after the appearance page was
// applied, RefreshDesktopView, ToggleShellIconSize, BroadcastShellChange.
#include <string>

#include "platform/RegistryStore.h"

namespace quorvane {

// Posts F5 to the desktop's list view: "SysListView32" under "SHELLDLL_DefView" under the
// top-level "Progman". No lookup is checked, so a missing window makes the post go to window 0
// and nothing is refreshed or reported.
void RefreshDesktopView();

// The shell's association-change notice, then the setting change posted and sent (with
// SPI_SETNONCLIENTMETRICS, time-out 10 s, skipping hung windows) to every top-level window.
void BroadcastShellChange();

// Writes "Shell Icon Size" under HKEY_CURRENT_USER\Control Panel\Desktop\WindowMetrics as its
// number plus one, sends the setting change, writes the old text back and sends it again. A
// text that is no 16-bit number, a missing value's "" included, and a sum beyond 16 bits are
// failures for the caller.
void ToggleShellIconSize();

// The text value `name` of `key` under `root`, without its terminator; "" when it cannot be
// read. Each failed step shows its message: "Error opening key.", "Error getting subkey
// length.", "Error getting subkey value.", "Error closing key.".
std::string GetRegistryText(platform::RegHandle root, const std::string& key,
                            const std::string& name);

// Writes `value` as the text value `name` of an existing `key` under `root`, with a
// terminator stored as part of the data. Shows "Error opening key.", "Error saving value." or
// "Error closing key." when that step fails.
void SetRegistryText(platform::RegHandle root, const std::string& key, const std::string& name,
                     const std::string& value);

}  // namespace quorvane
