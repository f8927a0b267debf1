#include "core/FrmMenu.h"

#include "core/FrmMain.h"

namespace quorvane {

FrmMenu::FrmMenu() : ui::Form("FrmMenu") {
  ApplyFrmMenuLayout(*this);
  mnuShowHide.Click = [this] { mnuShowHide_Click(); };
  mnuChangeWallpaper.Click = [this] { mnuChangeWallpaper_Click(); };
  mnuExit.Click = [this] { mnuExit_Click(); };
}

void FrmMenu::mnuShowHide_Click() { MainWindow().mnuShowHide_Click(); }

void FrmMenu::mnuChangeWallpaper_Click() { MainWindow().mnuChangeWallpaper_Click(); }

void FrmMenu::mnuExit_Click() { MainWindow().mnuExit_Click(); }

}  // namespace quorvane
