#include "wallpaper/FrmSlideShow.h"

#include <cmath>
#include <functional>
#include <iterator>
#include <utility>

#include "base/Failure.h"
#include "base/Int16.h"
#include "core/MainModule.h"
#include "platform/EventLoop.h"
#include "platform/FileSystem.h"
#include "platform/Pictures.h"
#include "platform/ResourcePictures.h"
#include "platform/Service.h"
#include "wallpaper/MWallpaper.h"

namespace quorvane {

namespace {

constexpr std::int16_t kEscape = 27;

// The intervals of CboInterval's entries, in milliseconds; 0 for "Manually".
constexpr std::int32_t kIntervals[] = {0, 2000, 5000, 10000, 20000};

void DoEvents() { platform::Use<platform::EventLoop>().DoEvents(); }

Pixels ResPicture(std::int32_t number) {
  return platform::Use<platform::ResourcePictures>().LoadResPicture(number);
}

// A half in twips, to the nearest whole number and a tie to the even one.
std::int32_t RoundedHalf(std::int32_t twips) {
  return static_cast<std::int32_t>(std::nearbyint(static_cast<double>(twips) / 2.0));
}

}  // namespace

FrmSlideShow::FrmSlideShow() : ui::Form("FrmSlideShow") {
  ui::ApplyLayout(*this, kFrmSlideShowLayout);

  for (const char* entry : {"Manually", "2 Seconds", "5 Seconds", "10 Seconds", "20 Seconds"}) {
    CboInterval.AddItem(entry);
  }
  // The picture's surroundings are the window's: black, like the box behind a picture that
  // lets the background through.
  Image1.BackColor = 0x000000;
  // Escape is the form's, whichever control has the focus.
  KeyPreview = true;
  Timer1.Interval = 5000;
  Timer1.Enabled(true);

  // The form's routines behind the controls' events.
  CboInterval.Click = [this] { CboInterval_Click(); };
  Timer1.Tick = [this] { Timer1_Timer(); };
  CmdNext.Click = [this] { CmdNext_Click(); };
  CmdPrevious.Click = [this] { CmdPrevious_Click(); };
  CmdFinish.Click = [this] { CmdFinish_Click(); };
  const auto onMove = [](std::function<void()> routine) {
    return [routine](std::int16_t, std::int16_t, float, float) { routine(); };
  };
  CmdPrevious.MouseMove = onMove([this] { CmdPrevious_MouseMove(); });
  CmdFinish.MouseMove = onMove([this] { CmdFinish_MouseMove(); });
  CmdNext.MouseMove = onMove([this] { CmdNext_MouseMove(); });
  FmControlPanel.MouseMove = onMove([this] { FmControlPanel_MouseMove(); });
}

void FrmSlideShow::Form_Load() { RestoreButtons(); }

void FrmSlideShow::Form_Activate() {
  // 1. The files in the file system's order. The list grows to the count of pictures so far
  // before each file is looked at, so a Thumbs.db at the end leaves one empty place behind.
  const std::string folder = core::gDataFolder + Tag;
  std::vector<std::string> names;
  // A folder that can't be listed holds no files.
  if (!platform::Use<platform::FileSystem>().ListFiles(folder, names)) names.clear();
  std::int16_t n = 0;
  for (const std::string& name : names) {
    SlideFiles.resize(static_cast<std::size_t>(n) + 1);
    if (name != "Thumbs.db") {
      SlideFiles[static_cast<std::size_t>(n)] = folder + "\\" + name;
      n = CheckedInt16(n + 1);
    }
    DoEvents();
  }
  // 2.-3.
  SlideIndex = 0;
  Image1.Picture(Pixels{});
  // 4.-6. The show waits at "Please Wait" for its first step.
  PlacePanel();
  CboInterval.ListIndex(2);
  LblInformation.Left(Width / 2);
}

void FrmSlideShow::Form_KeyDown(std::int16_t& KeyCode, std::int16_t /*Shift*/) {
  if (KeyCode == kEscape) Unload();
}

void FrmSlideShow::CboInterval_Click() {
  const std::int32_t index = CboInterval.ListIndex();
  if (index < 0 || index >= static_cast<std::int32_t>(std::size(kIntervals))) return;
  if (index == 0) {
    Timer1.Enabled(false);
    return;
  }
  Timer1.Interval = kIntervals[index];
  Timer1.Enabled(true);
}

void FrmSlideShow::Timer1_Timer() { ShowPicture(1); }

// The timer's own step, run at once; the timer goes on counting from where it was.
void FrmSlideShow::CmdNext_Click() { ShowPicture(1); }

void FrmSlideShow::CmdPrevious_Click() {
  if (SlideIndex <= 0) return;
  SlideIndex = CheckedInt16(SlideIndex - 1);
  ShowPicture(2);
}

void FrmSlideShow::CmdFinish_Click() { Unload(); }

std::int16_t FrmSlideShow::UpperBound() const {
  if (SlideFiles.empty()) RaiseSubscriptOutOfRange();
  return CheckedInt16(static_cast<std::int64_t>(SlideFiles.size()) - 1);
}

void FrmSlideShow::ShowPicture(std::int16_t mode) {
  // 1. Advance first: the first picture seen is the one at 1, and the one at 0 comes after the
  // wrap.
  if (mode == 1) SlideIndex = SlideIndex < UpperBound() ? CheckedInt16(SlideIndex + 1) : 0;
  if (SlideIndex < 0 || static_cast<std::size_t>(SlideIndex) >= SlideFiles.size()) {
    RaiseSubscriptOutOfRange();
  }
  const std::string path = SlideFiles[static_cast<std::size_t>(SlideIndex)];
  // 2. The picture at its own size; an empty path is no picture at all.
  Pixels picture;
  if (!path.empty()) picture = platform::Use<platform::Pictures>().LoadPicture(path);
  Image1.Width(picture.width * ui::kTwipsPerPixel);
  Image1.Height(picture.height * ui::kTwipsPerPixel);
  Image1.Picture(std::move(picture));
  // 3.
  LblInformation.Caption(FileNameOf(path));
  // 4. In the middle of the window, overflowing it alike on every side when larger.
  Image1.Left(Width / 2 - RoundedHalf(Image1.Width()));
  Image1.Top(Height / 2 - RoundedHalf(Image1.Height()));
  // 5.-7.
  PlacePanel();
  Image1.Visible(true);
  DoEvents();
  // Painted again with its picture. (A picture box's Refresh shows what was drawn on its
  // surface; nothing is drawn on this one: it shows its picture alone, which is handed back to it,
  // memory and all.)
  Image1.Picture(Image1.TakePicture());
  LblInformation.ZOrder();
  FmControlPanel.ZOrder();
}

void FrmSlideShow::PlacePanel() {
  FmControlPanel.Top(Height - kPanelHeight);
  FmControlPanel.Left(0);
  FmControlPanel.Width(Width);
}

void FrmSlideShow::RestoreButtons() {
  CmdPrevious.Picture(ResPicture(kPreviousPicture));
  CmdFinish.Picture(ResPicture(kFinishPicture));
  CmdNext.Picture(ResPicture(kNextPicture));
}

void FrmSlideShow::Hover(const std::string& name, ui::PictureBox& button, std::int32_t picture) {
  if (mLastHover == name) return;
  RestoreButtons();
  mLastHover = name;
  button.Picture(ResPicture(picture));
}

void FrmSlideShow::CmdPrevious_MouseMove() {
  Hover("CmdPrevious", CmdPrevious, kPreviousHoverPicture);
}

void FrmSlideShow::CmdFinish_MouseMove() { Hover("CmdFinish", CmdFinish, kFinishHoverPicture); }

void FrmSlideShow::CmdNext_MouseMove() { Hover("CmdNext", CmdNext, kNextHoverPicture); }

void FrmSlideShow::FmControlPanel_MouseMove() {
  if (mLastHover == "Form") return;
  RestoreButtons();
  mLastHover = "Form";
}

}  // namespace quorvane
