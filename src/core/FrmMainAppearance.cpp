// FrmMain: the appearance page. The slider sets the size of desktop icons, the two spin edits
// their horizontal and vertical spacing, and the tick box the arrow over shortcuts; a small
// preview inside the page follows them at once, touching nothing but control positions. Nothing
// reaches the shell until CmdApply on this page runs ApplyAppearance; CmdDefault runs
// ApplyAppearanceDefaults. None of these routines has a failure handler of its own.
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>

#include "appearance/AppearancePage.h"
#include "appearance/ChangeSliderBG.h"
#include "appearance/Desktop.h"
#include "base/Int16.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "base/Types.h"
#include "core/FrmMain.h"
#include "core/FrmWorking.h"
#include "core/MainModule.h"
#include "platform/Application.h"
#include "platform/EventLoop.h"
#include "platform/Forms.h"
#include "platform/PageBackgrounds.h"
#include "platform/Service.h"

namespace quorvane {

namespace {

constexpr char kWindowMetrics[] = "HKEY_CURRENT_USER\\Control Panel\\Desktop\\WindowMetrics";
constexpr char kShellIcons[] =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons";

void DoEvents() { platform::Use<platform::EventLoop>().DoEvents(); }

// The preview counts in its own pixels; the controls keep twips, 15 to the pixel. A position
// that falls between two twips is taken to the nearer one, an even one when halfway.
double Px(std::int32_t twips) { return static_cast<double>(twips) / ui::kTwipsPerPixel; }
std::int32_t Twips(double pixels) {
  return static_cast<std::int32_t>(text::RoundHalfEven(pixels * ui::kTwipsPerPixel));
}

// Sets a value as the load reads it: the control's change routine does not run for it.
void SetAtLoad(ui::ValueControl& control, std::int32_t value) {
  std::function<void()> change = std::move(control.Change);
  control.Change = nullptr;
  control.Value(value);
  control.Change = std::move(change);
}

// A stored spacing as the spin edits count it: (|value| - 495) / 15 + 1, rounded with ties to
// even.
std::int32_t SpacingSteps(std::int32_t value) {
  const double steps = (std::abs(static_cast<double>(value)) - 495.0) / 15.0 + 1.0;
  return static_cast<std::int32_t>(text::RoundHalfEven(steps));
}

// A spin value as the platform stores the spacing, in its 1/15-pixel units, computed in this
// order: times 15, plus 495, minus 15, negated.
std::string SpacingText(std::int32_t steps) {
  std::int32_t value = steps * 15;
  value = value + 495;
  value = value - 15;
  value = -value;
  return std::to_string(value);
}

// The slider's table: the caption and the preview's size of each position.
struct SliderStep {
  const char* status;
  std::int16_t previewSize;
};
constexpr SliderStep kSliderSteps[] = {
    {"16x16", 16}, {"32x32", 32}, {"48x48", 48}, {"64x64", 64},
    {"72x72", 72}, {"96x96", 96}, {"128x128", 128},
};

}  // namespace

void FrmMain::ConnectAppearancePage() {
  // The design's values: the slider's seven positions, the spacings from 1 to 500.
  Slider.Min = 1;
  Slider.Max = 7;
  Slider.Value(2);
  TxtHorizontal.Min = 1;
  TxtHorizontal.Max = 500;
  TxtHorizontal.Value(1);
  TxtVertical.Min = 1;
  TxtVertical.Max = 500;
  TxtVertical.Value(1);
  for (ui::Image* image : {&ImgMyComputer, &ImgMyDocuments, &ImgRecycleBin}) {
    image->Stretch(true);
  }

  Slider.Change = [this] { Slider_Change(); };
  TxtHorizontal.Change = [this] { TxtHorizontal_Change(); };
  TxtVertical.Change = [this] { TxtVertical_Change(); };
  PBDesktop.Paint = [this] { PBDesktop_Paint(); };
  // CmdApply and CmdDefault hand over to these while the page is showing.
  ApplyAppearance = [this] { quorvane::ApplyAppearance(*this); };
  ApplyAppearanceDefaults = [this] { quorvane::ApplyAppearanceDefaults(*this); };
}

void FrmMain::UpdatePreviewIconSize(std::int16_t size) {
  const std::int32_t side = Twips(size);
  ImgMyComputer.Stretch(true);
  ImgMyComputer.Width(side);
  ImgMyComputer.Height(side);
  LblMyComputer.Top(Twips(Px(ImgMyComputer.Height()) + Px(ImgMyComputer.Top()) + 1));
  LblMyComputer.Left(Twips((Px(ImgMyComputer.Width()) + Px(ImgMyComputer.Left())) / 4));

  ImgMyDocuments.Stretch(true);
  ImgMyDocuments.Width(side);
  ImgMyDocuments.Height(side);
  ImgMyDocuments.Left(Twips(Px(ImgMyComputer.Width()) + Px(ImgMyComputer.Left()) + 50));
  LblMyDocuments.Top(Twips(Px(ImgMyDocuments.Height()) + Px(ImgMyDocuments.Top()) + 1));
  LblMyDocuments.Left(Twips(Px(ImgMyDocuments.Width()) / 8 + Px(ImgMyDocuments.Left()) - 15));

  ImgRecycleBin.Stretch(true);
  ImgRecycleBin.Width(side);
  ImgRecycleBin.Height(side);
  ImgRecycleBin.Top(Twips(Px(ImgMyComputer.Height()) + Px(ImgMyComputer.Top()) + 50));
  LblRecycleBin.Top(Twips(Px(ImgRecycleBin.Height()) + Px(ImgRecycleBin.Top()) + 1));
  LblRecycleBin.Left(Twips((Px(ImgRecycleBin.Width()) + Px(ImgRecycleBin.Left())) / 4));
}

void FrmMain::Slider_Change() {
  const std::int32_t position = Slider.Value();
  if (position >= 1 && position <= 7) {
    const SliderStep& step = kSliderSteps[position - 1];
    LblStatus.Caption(step.status);
    UpdatePreviewIconSize(step.previewSize);
  }
  // The stored size follows the position, not the table: positions 5 and 7 store 80 and 112.
  mIconSize = CheckedInt16(static_cast<std::int64_t>(position) * 16);
}

void FrmMain::TxtHorizontal_Change() {
  const std::int32_t h = TxtHorizontal.Value();
  if (h > 500 || h < 10) return;
  const bool captions = !(h < 30);
  LblMyComputer.Visible(captions);
  LblMyDocuments.Visible(captions);

  ImgMyComputer.Left(Twips(h / 2.0));
  LblMyComputer.Left(Twips((Px(ImgMyComputer.Width()) + Px(ImgMyComputer.Left())) / 4));
  ImgMyDocuments.Left(Twips(Px(ImgMyComputer.Width()) + Px(ImgMyComputer.Left()) + h - 10));
  LblMyDocuments.Left(Twips(Px(ImgMyDocuments.Width()) / 8 + Px(ImgMyDocuments.Left()) - 15));
  ImgRecycleBin.Left(Twips(h / 2.0));
  LblRecycleBin.Left(Twips((Px(ImgRecycleBin.Width()) + Px(ImgRecycleBin.Left())) / 4));
  // Only the horizontal spacing asks for a restart.
  mRestartNeeded = kTrue;
}

void FrmMain::TxtVertical_Change() {
  const std::int32_t v = TxtVertical.Value();
  if (v > 500) return;
  // The second row never overlaps the first.
  if (Px(ImgMyComputer.Top()) + Px(ImgMyComputer.Height()) > 2.0 * v) return;
  const bool captions = !(v < 30);
  LblMyComputer.Visible(captions);
  LblRecycleBin.Visible(captions);
  ImgRecycleBin.Top(Twips(2.0 * v));
  LblRecycleBin.Top(Twips(Px(ImgRecycleBin.Height()) + Px(ImgRecycleBin.Top()) + 5));
}

void FrmMain::PBDesktop_Paint() {
  DoEvents();
  platform::Use<platform::PageBackgrounds>().PaintDesktop(PBDesktop.hDC());
  DoEvents();
}

void FrmMain::ReadIconSize() {
  LblAppearanceMsg.Visible(false);
  if (OSName == "Windows Vista") {
    TxtHorizontal.Enabled(false);
    TxtVertical.Enabled(false);
    Slider.Enabled(false);
    LblAppearanceMsg.Visible(true);
  }
  // The stored number stays in mIconSize until the slider is moved: the position is only
  // where it shows.
  mIconSize = CheckedInt16(StrictLong(Reg().ReadString(kWindowMetrics, "Shell Icon Size", "32")));
  SetAtLoad(Slider, static_cast<std::int32_t>(text::RoundHalfEven(mIconSize / 16.0)));
}

void FrmMain::SetUpSliderBackground() {
  std::uint32_t white = 0xFFFFFF;
  bool recreate = false;
  CreateSliderBrush(white, recreate);
  gSliderHwnd = Slider.hWnd;
  std::uint32_t parent = Picture1.hWnd;
  SubclassSliderParent(parent);
}

void FrmMain::ReadIconSpacing() {
  SetAtLoad(TxtHorizontal,
            SpacingSteps(StrictLong(Reg().ReadString(kWindowMetrics, "IconSpacing", "-1710"))));
  SetAtLoad(TxtVertical, SpacingSteps(StrictLong(
                             Reg().ReadString(kWindowMetrics, "IconVerticalspacing", "-1125"))));
  // Once, to lay out the preview; the horizontal routine asks for a restart already here.
  TxtHorizontal_Change();
  TxtVertical_Change();

  // The arrow is shown unless the program's own blank icon stands in its place.
  const std::string overlay = Reg().ReadString(kShellIcons, "29", "");
  ChkShowShortCut.Value(0);
  if (!(!overlay.empty() && text::InStr(1, overlay, "Empty.ico") > 0)) ChkShowShortCut.Value(1);
}

void ApplyAppearance(FrmMain& form) {
  auto& application = platform::Use<platform::Application>();
  application.SetMousePointer(platform::kHourglassPointer);
  platform::Use<platform::Forms>().Show(WorkingWindow(), false, form.hWnd);
  DoEvents();

  AdvRegistryAccess& reg = form.Reg();
  reg.WriteString(kWindowMetrics, "Shell Icon Size", std::to_string(form.mIconSize));
  reg.WriteString(kWindowMetrics, "IconSpacing", SpacingText(form.TxtHorizontal.Value()));
  reg.WriteString(kWindowMetrics, "IconVerticalspacing", SpacingText(form.TxtVertical.Value()));
  reg.WriteString(kWindowMetrics, "IconTitleWrap", "1");
  if (form.ChkShowShortCut.Value() == 1) {
    reg.KillValue(kShellIcons, "29");
  } else {
    reg.WriteString(kShellIcons, "29", core::gDataFolder + "Empty.ico");
  }

  DoEvents();
  RefreshDesktopView();
  ToggleShellIconSize();
  BroadcastShellChange();
  DoEvents();

  platform::Use<platform::Forms>().Unload(WorkingWindow());
  application.SetMousePointer(platform::kDefaultPointer);
  DoEvents();
}

void ApplyAppearanceDefaults(FrmMain& form) {
  form.Slider.Value(2);
  form.mIconSize = CheckedInt16(static_cast<std::int64_t>(form.Slider.Value()) * 16);
  form.TxtHorizontal.Value(82);
  form.TxtVertical.Value(43);
  DoEvents();
  // The overlay is left as it is.
  ApplyAppearance(form);
}

}  // namespace quorvane
