#pragma once
// The platform services of quorvane.exe.

namespace quorvane::app {

// Installs the Windows adapter of every platform port, once, at the start of the process, for
// the rest of its life: the Windows platform, and beside it the binding's forms adapter. This is
// the one place where the program chooses its adapters.
void InstallWin32Services();

}  // namespace quorvane::app
