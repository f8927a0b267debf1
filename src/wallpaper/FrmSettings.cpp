#include "wallpaper/FrmSettings.h"

#include <initializer_list>

#include "base/Failure.h"
#include "core/MainModule.h"
#include "base/Text.h"
#include "platform/Forms.h"
#include "platform/Service.h"
#include "platform/WindowActions.h"
#include "wallpaper/MWallpaper.h"

namespace quorvane {

namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF;

// A stored number as the state of a check box: 0 unticked, 1 ticked, 2 greyed. Any other number
// is no state a check box can take.
std::int16_t CheckState(std::int32_t value) {
  if (value < 0 || value > 2) {
    Raise(static_cast<FailureNumber>(380), "Invalid property value");
  }
  return static_cast<std::int16_t>(value);
}

}  // namespace

FrmSettings::FrmSettings() : ui::Form("FrmSettings") {
  ui::ApplyLayout(*this, kFrmSettingsLayout);

  // The spin edit has no bounds of its own: its change routine keeps it from going below 0.
  CboMinutes.Min = 0;
  CboMinutes.Max = 0;
  // The buttons of one frame clear each other.
  ui::OptionButton::Group({&OptSequentially, &OptRandomally});
  ui::OptionButton::Group({&OptTileImages, &OptCenterImage, &OptStrechImage});
  // The collections' tree shows a tick box on each node.
  TvCollections.Checkboxes = true;

  // The form's routines behind the controls' events.
  CboMinutes.Change = [this] { CboMinutes_Change(); };
  CmdSave.Click = [this] { CmdSave_Click(); };

  Form_Initialize();
}

AdvRegistryAccess& FrmSettings::Reg() {
  if (!reg_) reg_ = std::make_unique<AdvRegistryAccess>();
  return *reg_;
}

void FrmSettings::Form_Initialize() { platform::Use<platform::Forms>().InitCommonControls(); }

void FrmSettings::Form_Load() {
  for (ui::OptionButton* option :
       {&OptSequentially, &OptRandomally, &OptTileImages, &OptCenterImage, &OptStrechImage}) {
    option->BackColor(kWhite);
  }
  Picture1.BackColor = kWhite;
  Picture2.BackColor = kWhite;
}

// No check guards the dialog: the values are used as the registry gives them, and a missing
// key gives the defaults.
void FrmSettings::Form_Activate() {
  const std::string key = core::ProductKey;
  // 1. The collections, added behind whatever the tree holds already.
  ListCollections(TvCollections);
  // 2. The change and its interval.
  ChkEnable.Value(CheckState(Reg().ReadDWORD(key, "Enable", 1)));
  CboMinutes.Value(Reg().ReadDWORD(key, "TimeInterval", 5));
  // 3. The order: another value checks neither button.
  switch (Reg().ReadDWORD(key, "ChangeOrder", 1)) {
    case 1:
      OptSequentially.Value(true);
      break;
    case 2:
      OptRandomally.Value(true);
      break;
    default:
      break;
  }
  // 4. The position: another value checks none.
  switch (Reg().ReadDWORD(key, "Position", 1)) {
    case 1:
      OptTileImages.Value(true);
      break;
    case 2:
      OptCenterImage.Value(true);
      break;
    case 3:
      OptStrechImage.Value(true);
      break;
    default:
      break;
  }
  // 5. The start with Windows as last saved; step 7 overrules it.
  ChkLoadWallpaper.Value(CheckState(Reg().ReadDWORD(key, "AutoStart", 1)));
  // 6. The ticked collections: every name is followed by ";", so the last piece is the empty
  // text behind the closing one. A name holding ";" itself falls apart here and finds no node.
  const std::vector<std::string> pieces =
      text::Split(Reg().ReadString(key, "Collections", ""), ";");
  for (std::size_t piece = 0; piece + 1 < pieces.size(); ++piece) {
    for (std::int32_t node = 1; node <= TvCollections.Count(); ++node) {
      if (TvCollections.Item(node).Text != pieces[piece]) continue;
      TvCollections.Select(node);
      TvCollections.Item(node).Checked = true;
      TvCollections.NodeChanged(node);
    }
  }
  // 7. The run value decides what the box shows.
  ChkLoadWallpaper.Value(Reg().ReadString(kRunKey, kRunValue, "").empty() ? 0 : 1);
}

void FrmSettings::CboMinutes_Change() {
  if (CboMinutes.Value() < 0) CboMinutes.Value(0);
}

void FrmSettings::CmdSave_Click() {
  const std::string key = core::ProductKey;
  // 1.-5.
  Reg().WriteDWORD(key, "Enable", ChkEnable.Value());
  Reg().WriteDWORD(key, "TimeInterval", CboMinutes.Value());
  Reg().WriteDWORD(key, "ChangeOrder", OptSequentially.Value() ? 1 : 2);
  // With none of the three checked, the position written is 0, which the change takes for the
  // centre.
  std::int32_t position = 0;
  if (OptTileImages.Value()) {
    position = 1;
  } else if (OptCenterImage.Value()) {
    position = 2;
  } else if (OptStrechImage.Value()) {
    position = 3;
  }
  Reg().WriteDWORD(key, "Position", position);
  Reg().WriteDWORD(key, "AutoStart", ChkLoadWallpaper.Value());
  // 6. Each ticked collection followed by ";", in the tree's order.
  std::string collections;
  for (std::int32_t node = 1; node <= TvCollections.Count(); ++node) {
    if (TvCollections.Item(node).Checked) collections += TvCollections.Item(node).Text + ";";
  }
  Reg().WriteString(key, "Collections", collections);
  // 7. With nothing to change to, the program need not start with Windows; AutoStart keeps
  // what step 5 wrote.
  if (collections.empty()) ChkLoadWallpaper.Value(0);
  // 8. The start with Windows: the program's own path, unquoted even with spaces in it.
  if (ChkLoadWallpaper.Value() == 1) {
    auto& program = platform::Use<platform::WindowActions>();
    Reg().WriteString(kRunKey, kRunValue,
                      program.ProgramFolder() + "\\" + program.ProgramName() + ".exe /background");
  } else if (Reg().ValueExists(kRunKey, kRunValue) != kFalse) {
    Reg().KillValue(kRunKey, kRunValue);
  }
  // 9. The list the change picks from.
  RebuildFilesIni(TvCollections);
  // 10.
  Unload();
}

}  // namespace quorvane
