#pragma once
// The appearance page's two commands, which the main window's CmdApply and CmdDefault hand over
// to while the page is showing (their routines are in core/FrmMainAppearance.cpp).

namespace quorvane {

class FrmMain;

// Writes the icon size, the two spacings, the title wrap and the shortcut overlay to the
// registry, and has the shell take them up, under the busy window and the hourglass.
void ApplyAppearance(FrmMain& form);
// The default size and spacings in the controls, then ApplyAppearance. The overlay is left as
// it is.
void ApplyAppearanceDefaults(FrmMain& form);

}  // namespace quorvane
