#pragma once
// FrmMenu: the form that holds the tray icon's menu. It is never shown: it is made at the first
// right click on the icon, stays loaded and hidden, and the main window pops its menu mnuFile up
// at the pointer. Each item hands over to the main window's routine of the same name. Its
// OfficeMenu1 draws the menu in the office style of its stored properties (FrmMenuLayout.cpp).
#include "ui/Form.h"
#include "ui/Menu.h"

namespace quorvane {

class FrmMenu : public ui::Form {
 public:
  FrmMenu();

  ui::Menu mnuFile{*this, "mnuFile"};
  ui::Menu mnuShowHide{*this, "mnuShowHide", mnuFile};
  ui::Menu mnuChangeWallpaper{*this, "mnuChangeWallpaper", mnuFile};
  ui::Menu mnuSeparator{*this, "mnuSeparator", mnuFile};
  ui::Menu mnuExit{*this, "mnuExit", mnuFile};
  ui::OfficeMenu OfficeMenu1{*this, "OfficeMenu1"};

  void mnuShowHide_Click();
  void mnuChangeWallpaper_Click();
  void mnuExit_Click();
};

// The menu form's design: its captions, and OfficeMenu1's face and colours.
void ApplyFrmMenuLayout(FrmMenu& form);

}  // namespace quorvane
