#pragma once
// FrmSettings: the modal dialog of the automatic wallpaper change. The user turns the change on
// or off, sets its interval in minutes, its order and the wallpaper's position, ticks the
// collections that take part, and decides whether the program starts with Windows. CmdSave
// writes all of it under ProductKey, the run value, and Files.ini.
//
// What the dialog saves is read back by the running program only when the dialog closes
// (FrmMain::CmdSettings_Click); at the program's load and after a collection is created or
// removed, the predecessor's key is read instead. The two keys are kept apart on purpose.
//
// Where each control stands is the design's table, FrmSettingsLayout.cpp; the form is shown
// through the Forms port.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "stores/AdvRegistryAccess.h"
#include "ui/Controls.h"
#include "ui/Form.h"
#include "ui/Layout.h"

namespace quorvane {

// The dialog's design: its caption, size and border, and where each control stands
// (FrmSettingsLayout.cpp).
extern const ui::FormLayout kFrmSettingsLayout;

class FrmSettings : public ui::Form {
 public:
  // Creating the form makes the common controls ready.
  FrmSettings();

  // --- controls -------------------------------------------------------------------------------
  ui::PictureBox Picture1{*this, "Picture1"};
  ui::Label Label1{*this, "Label1"};
  ui::PictureBox Picture2{*this, "Picture2"};
  ui::CheckBox ChkEnable{*this, "ChkEnable"};
  ui::Label Label2{*this, "Label2"};
  // A spin edit whose minimum and maximum are both 0: no bound of its own.
  ui::ValueControl CboMinutes{*this, "CboMinutes"};
  ui::Label Label3{*this, "Label3"};
  ui::Frame Frame1{*this, "Frame1"};
  ui::OptionButton OptSequentially{*this, "OptSequentially"};
  ui::OptionButton OptRandomally{*this, "OptRandomally"};
  ui::Frame Frame2{*this, "Frame2"};
  ui::Label Label5{*this, "Label5"};
  ui::OptionButton OptTileImages{*this, "OptTileImages"};
  ui::OptionButton OptCenterImage{*this, "OptCenterImage"};
  ui::OptionButton OptStrechImage{*this, "OptStrechImage"};
  ui::Label Label4{*this, "Label4"};
  // A tree with tick boxes: a node's Checked is its tick.
  ui::TreeView TvCollections{*this, "TvCollections"};
  ui::CheckBox ChkLoadWallpaper{*this, "ChkLoadWallpaper"};
  ui::CommandButton CmdSave{*this, "CmdSave"};

  // --- routines -------------------------------------------------------------------------------
  // Creation: the common controls are initialised.
  void Form_Initialize();
  // Load: the option buttons and both pictures get white backgrounds.
  void Form_Load() override;
  // Each activation: the collections listed (the tree is not cleared first), then the controls
  // set from ProductKey and the run value.
  void Form_Activate() override;
  // A value below 0 becomes 0 at once; there is no upper bound.
  void CboMinutes_Change();
  // Writes the settings under ProductKey and the run value, rebuilds Files.ini, and unloads the
  // form: its window goes, and the modal show returns.
  void CmdSave_Click();

 private:
  // The form's own registry object, made on first use.
  AdvRegistryAccess& Reg();

  std::unique_ptr<AdvRegistryAccess> reg_;
};

}  // namespace quorvane
