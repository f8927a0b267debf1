// FrmMain: the wallpaper page's settings command.
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "platform/Forms.h"
#include "platform/Service.h"
#include "wallpaper/FrmSettings.h"
#include "wallpaper/MWallpaper.h"

namespace quorvane {

// The running program takes the dialog's settings from ProductKey once the dialog is gone; the
// minute count and the last entry used go on as they stood.
void FrmMain::CmdSettings_Click() {
  FrmSettings settings;
  platform::Use<platform::Forms>().Show(settings, true, hWnd);
  LoadWallpaperSettings(core::ProductKey);
}

}  // namespace quorvane
