// FrmMain: the wallpaper page's collections and the automatic wallpaper change.
#include <cmath>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "base/Int16.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "base/Numbers.h"
#include "base/Random.h"
#include "base/Text.h"
#include "platform/CollectionPacker.h"
#include "platform/EventLoop.h"
#include "platform/FileSystem.h"
#include "platform/MessageBoxes.h"
#include "platform/Pictures.h"
#include "platform/Service.h"
#include "platform/Wallpaper.h"
#include "stores/iniReadWrite.h"
#include "ui/RenderedImage.h"
#include "wallpaper/MWallpaper.h"

namespace quorvane {

namespace {

void DoEvents() { platform::Use<platform::EventLoop>().DoEvents(); }

constexpr char kDesktopKey[] = "HKEY_CURRENT_USER\\Control Panel\\Desktop";
}  // namespace

void FrmMain::RefreshCollections() {
  if (!platform::Use<platform::FileSystem>().FolderExists(core::gDataFolder)) {
    core::gDataFolder = core::GetSpecialFolder(0x1A);
    core::CreateDefaultFolder();
  }
  TvCollections.Clear();
  ListCollections(TvCollections);
  // The running program takes its settings from the predecessor's key here; the settings
  // dialog's own key is read only when that dialog closes.
  LoadWallpaperSettings(kPredecessorKey);
}

void FrmMain::CmdWallpaperControl_Click(std::int16_t Index) {
  // Create (0) and modify (1) open the collection editor (FrmMainCollections.cpp); this is the
  // removal.
  if (Index == 0) return CreateCollection();
  if (Index == 1) return ModifyCollection();
  if (Index != 2) return;
  auto& boxes = platform::Use<platform::MessageBoxes>();
  if (TvCollections.SelectedItem() == 0) {
    boxes.MsgBox("Select a collection to remove first!");
    return;
  }
  if (boxes.MsgBox("Are you sure you want to delete?", platform::msgbox::kYesNo) !=
      platform::msgbox::kYes) {
    return;
  }
  const std::string name = TvCollections.Item(TvCollections.SelectedItem()).Text;
  if (!platform::Use<platform::FileSystem>().RemoveFile(core::gDataFolder + name + ".RXS")) {
    Raise(FailureNumber::FileNotFound, "File not found: " + core::gDataFolder + name + ".RXS");
  }
  DeleteFolderIfPresent(core::gDataFolder + name);

  TvCollections.Clear();
  DoEvents();
  DoEvents();
  RefreshCollections();
  DoEvents();
  DoEvents();
  if (TvCollections.Count() == 0) {
    EmptyThumbnailStrip();
    return;
  }
  // The strip shows the collection now selected: its node click, twice over.
  TvCollections.SetFocus();
  TvCollections.Select(TvCollections.SelectedItem() != 0 ? TvCollections.SelectedItem() : 1);
  DoEvents();
  DoEvents();
  if (TvCollections.Click) TvCollections.Click();
  DoEvents();
  if (TvCollections.Click) TvCollections.Click();
}

void FrmMain::EmptyThumbnailStrip() {
  optThumb[0].Picture(ui::Pixels{});
  optThumb[0].Tag("");
  optThumb[0].Caption("");
}

// The tick. It has no failure handling of its own: an undecodable picture, a missing
// Temp.<EXT>, an unreadable Total or an entry without a backslash go up to the window's
// top-level report, and the next tick works again.
void FrmMain::Timer1_Timer() {
  if (gWallpaperEnable == kFalse) return;
  mTickCount = CheckedInt16(mTickCount + 1);
  if (mTickCount < gWallpaperInterval) return;
  mTickCount = 0;

  const std::string data = core::gDataFolder;
  const std::string index = data + "Files.ini";
  const std::string total = ReadIniValue("Count", "Total", index);
  if (gWallpaperOrder == 1) {
    mCurrentIndex = mCurrentIndex < StrictLong(total) ? CheckedInt16(mCurrentIndex + 1)
                                                      : std::int16_t{1};
  } else {
    // Unseeded on this path: each run draws the generator's own sequence.
    const double draw = static_cast<double>(StrictLong(total)) * random::Rnd();
    mCurrentIndex = CheckedInt16(static_cast<std::int32_t>(std::floor(draw)) + 1);
  }
  const std::string entry = ReadIniValue("Files", std::to_string(mCurrentIndex), index);
  if (text::Trim(entry).empty()) return;

  const std::vector<std::string> pieces = text::Split(entry, "\\");
  const std::string name = text::Piece(pieces, 0);
  const std::string file = text::Piece(pieces, 1);
  {
    auto packer = platform::Use<platform::CollectionPackers>().Create();
    packer->UnpackFiles(data + name + ".RXS", data, file);
    packer->Release();
  }

  // The style first, so that it takes effect with the new picture.
  const char* tile = gWallpaperPosition == 1 ? "1" : "0";
  const char* style = gWallpaperPosition == 3 ? "2" : "0";
  Reg().WriteString(kDesktopKey, "TileWallpaper", tile);
  Reg().WriteString(kDesktopKey, "WallpaperStyle", style);

  const std::string temp = "Temp." + FileExtensionOf(file);
  MoveFileOver(data + file, data + temp);
  MakeWallpaperOf(data + temp);
}

void FrmMain::MakeWallpaperOf(const std::string& path) {
  // The box's old picture lends the new one its memory (a wallpaper's pixels are tens of
  // megabytes); when the load fails the box keeps its old one. The box sizes itself to it.
  ui::Pixels picture = PBTempWallpaper.TakePicture();
  try {
    platform::Use<platform::Pictures>().LoadPictureInto(path, picture);
  } catch (...) {
    PBTempWallpaper.Picture(std::move(picture));
    throw;
  }
  PBTempWallpaper.Width(picture.width * ui::kTwipsPerPixel);
  PBTempWallpaper.Height(picture.height * ui::kTwipsPerPixel);
  PBTempWallpaper.Picture(std::move(picture));
  // What the box shows is saved, not the picture loaded: where a picture lets the background
  // through, the bitmap takes the box's back colour.
  const std::string bitmap = core::gDataFolder + "WP.bmp";
  ui::Pixels rendered;
  platform::Use<platform::Pictures>().SavePicture(ui::RenderedImage(PBTempWallpaper, rendered),
                                                  bitmap);
  platform::Use<platform::Wallpaper>().SystemParametersInfoA(
      platform::spi::kSetDeskWallpaper, 0, bitmap, platform::spi::kUpdateIniFile);
}

void FrmMain::mnuChangeWallpaper_Click() {
  if (gWallpaperEnable == kFalse) return;
  mTickCount = gWallpaperInterval;
  Timer1_Timer();
}

}  // namespace quorvane
