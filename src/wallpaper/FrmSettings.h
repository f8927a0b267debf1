#pragma once
// FrmSettings: the modal dialog of the automatic wallpaper change. The user turns the change on
// or off, sets its interval in minutes, its order and the wallpaper's position, ticks the
// collections that take part, and decides whether the program starts with Windows. CmdSave
// writes all of it under ProductKey, the run value, and Files.ini.
//
// What the dialog saves is read back by the running program only when the dialog closes
// (FrmMain::CmdSettings_Click); at the program's load and after a collection is created or
// removed, the predecessor's key is read instead. The two keys are kept apart on purpose.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "stores/AdvRegistryAccess.h"
#include "ui/Controls.h"

namespace quorvane {

class FrmSettings {
 public:
  // Creating the form makes the common controls ready.
  FrmSettings();
  FrmSettings(const FrmSettings&) = delete;
  FrmSettings& operator=(const FrmSettings&) = delete;

  // --- the window itself --------------------------------------------------------------------
  std::string Caption = "Wallpaper Settings";
  // The inside of the window, in twips.
  std::int32_t Width = 7200;
  std::int32_t Height = 8160;
  // The real window, once a binding made it; 0 headless.
  std::uint32_t hWnd = 0;

  // --- controls -------------------------------------------------------------------------------
  ui::PictureBox Picture1{"Picture1"};
  ui::Label Label1{"Label1"};
  ui::PictureBox Picture2{"Picture2"};
  ui::CheckBox ChkEnable{"ChkEnable"};
  ui::Label Label2{"Label2"};
  // A spin edit whose minimum and maximum are both 0: no bound of its own.
  ui::ValueControl CboMinutes{"CboMinutes"};
  ui::Label Label3{"Label3"};
  ui::Frame Frame1{"Frame1"};
  ui::OptionButton OptSequentially{"OptSequentially"};
  ui::OptionButton OptRandomally{"OptRandomally"};
  ui::Frame Frame2{"Frame2"};
  ui::Label Label5{"Label5"};
  ui::OptionButton OptTileImages{"OptTileImages"};
  ui::OptionButton OptCenterImage{"OptCenterImage"};
  ui::OptionButton OptStrechImage{"OptStrechImage"};
  ui::Label Label4{"Label4"};
  // A tree with tick boxes: a node's Checked is its tick.
  ui::TreeView TvCollections{"TvCollections"};
  ui::CheckBox ChkLoadWallpaper{"ChkLoadWallpaper"};
  ui::CommandButton CmdSave{"CmdSave"};

  // --- routines -------------------------------------------------------------------------------
  // Creation: the common controls are initialised.
  void Form_Initialize();
  // Load: the option buttons and both pictures get white backgrounds.
  void Form_Load();
  // Each activation: the collections listed (the tree is not cleared first), then the controls
  // set from ProductKey and the run value.
  void Form_Activate();
  // A value below 0 becomes 0 at once; there is no upper bound.
  void CboMinutes_Change();
  // Writes the settings under ProductKey and the run value, rebuilds Files.ini, and unloads the
  // form.
  void CmdSave_Click();

  // Unloads the form: its window goes, and the modal show returns.
  void Unload() { unloaded_ = true; }
  bool Unloaded() const { return unloaded_; }

  // Every control of the form, for a binding and for lookups by name.
  const std::vector<ui::Control*>& Controls() const { return controls_; }
  // The control of that name (and index, for an element of a control array); null if none.
  ui::Control* FindControl(const std::string& name, std::int32_t index = -1) const;

 private:
  // The form's own registry object, made on first use.
  AdvRegistryAccess& Reg();

  std::unique_ptr<AdvRegistryAccess> reg_;
  std::vector<ui::Control*> controls_;
  bool unloaded_ = false;
};

}  // namespace quorvane
