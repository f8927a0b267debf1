// FrmMain: the wallpaper page's thumbnail strip. A click on a collection's node unpacks the
// collection, fills the strip with one thumbnail a picture and removes the unpacked folder again;
// the strip is laid out in rows as wide as picFrame holds, scrolled by vsbSlide; the checked
// thumbnail can be set as wallpaper now, and a double-clicked one opened in the system's viewer.
#include <cctype>
#include <string>

#include "base/Int16.h"
#include "base/Text.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "core/Regimes.h"
#include "platform/Application.h"
#include "platform/CollectionPacker.h"
#include "platform/EventLoop.h"
#include "platform/Pictures.h"
#include "platform/Service.h"
#include "platform/Wallpaper.h"
#include "platform/WindowActions.h"
#include "ui/RenderedImage.h"
#include "wallpaper/MWallpaper.h"
#include "wallpaper/Thumbnails.h"

namespace quorvane {

namespace {

void DoEvents() { platform::Use<platform::EventLoop>().DoEvents(); }

constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::int32_t kRestore = 9;  // the viewer's window restored to its place and size

// Unpacks one entry of a collection into the data folder.
void UnpackEntry(const std::string& collection, const std::string& entry) {
  const std::string data = core::gDataFolder;
  auto packer = platform::Use<platform::CollectionPackers>().Create();
  packer->UnpackFiles(data + collection + ".RXS", data, entry);
  packer->Release();
}

// The unpacked entry takes the name "Temp.<EXT>" in the data folder; the path of that file.
std::string RenameAsTemp(const std::string& entry) {
  const std::string data = core::gDataFolder;
  const std::string temp = "Temp." + FileExtensionOf(entry);
  MoveFileOver(data + entry, data + temp);
  return data + temp;
}

// Whether the name holds ".ico" or ".cur" anywhere, in any case: such a file is loaded at the
// large shell icon size.
bool LoadsAsIcon(const std::string& name) {
  std::string lower = name;
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower.find(".ico") != std::string::npos || lower.find(".cur") != std::string::npos;
}

}  // namespace

// --- the fill -----------------------------------------------------------------------------------

void FrmMain::TvCollections_NodeClick() {
  // Each step runs whatever became of the one before.
  std::string name;
  const std::string data = core::gDataFolder;
  core::ResumeEach(
      [&] { name = TvCollections.Item(TvCollections.SelectedItem()).Text; },
      [&] {
        auto packer = platform::Use<platform::CollectionPackers>().Create();
        packer->UnpackFiles(data + name + ".RXS", data + name, "");
        packer->Release();
      },
      [&] { filHidden.Path(data + name); },
      [&] { LoadThumbnailStrip(); },
      // The thumbnails hold their own pictures now: the folder goes again while the page shows.
      [&] { DeleteFolderIfPresent(data + name); },
      [&] { LayoutThumbnailStrip(); });
}

void FrmMain::LoadThumbnailStrip() {
  auto& application = platform::Use<platform::Application>();
  std::string folder;
  std::int32_t count = 0;
  core::ResumeEach(
      [&] { application.SetMousePointer(platform::kHourglassPointer); },
      [&] { filHidden.Refresh(); },
      [&] { TvCollections.Enabled(false); },
      // The sheet starts as one thumbnail at the corner, hidden, in the thumbnails' type, so that
      // widths measured on it hold for their captions.
      [&] { picSlide.Left(0); },
      [&] { picSlide.Top(0); },
      [&] { picSlide.Width(optThumb[0].Width()); },
      [&] { picSlide.Height(optThumb[0].Height()); },
      [&] { picSlide.Visible(false); },
      [&] { picSlide.BackColor = kWhite; },
      [&] {
        while (optThumb.size() > 1) optThumb.UnloadLast();
      },
      [&] { DoEvents(); },
      [&] {
        folder = filHidden.Path();
        if (folder.empty() || folder.back() != '\\') folder += '\\';
      },
      [&] { count = filHidden.ListCount(); },
      [&] { ShowThumbnailProgress(); });

  std::int16_t i = 0;
  for (std::int32_t j = 0; j < count; ++j) {
    const std::string file = filHidden.List(j);
    core::ResumeEach(
        [&] {
          const double share = static_cast<double>(j + 1) / count * 100.0;
          SetThumbnailProgress(CheckedInt16(text::RoundHalfEven(share)), file);
        },
        // Only one full picture is held at a time. The box sizes itself to its picture: with
        // none it has no area either.
        [&] { picLoad.Picture(ui::Pixels{}); },
        [&] { picLoad.Width(0); },
        [&] { picLoad.Height(0); },
        [&] { picLoad.Cls(); });
    // A file that can't be decoded leaves no gap and takes no index.
    const bool loaded = core::AsResult(
        [&] {
          ui::Pixels picture = picLoad.TakePicture();
          auto& pictures = platform::Use<platform::Pictures>();
          if (LoadsAsIcon(file)) {
            pictures.LoadPictureSizedInto(folder + file, platform::kLargeShellSize,
                                          platform::kDefaultDepth, picture);
          } else {
            pictures.LoadPictureInto(folder + file, picture);
          }
          // The box sizes itself to its picture.
          picLoad.Width(picture.width * ui::kTwipsPerPixel);
          picLoad.Height(picture.height * ui::kTwipsPerPixel);
          picLoad.Picture(std::move(picture));
          return true;
        },
        false);
    if (!loaded) continue;

    const std::size_t index = static_cast<std::size_t>(i);
    core::ResumeEach(
        [&] { DrawThumbnail(picLoad, picThumb); },
        [&] {
          if (i > 0) optThumb.Load(i);
        },
        [&] { optThumb[index].Tag(file); },
        [&] { optThumb[index].Picture(picThumb.Image()); },
        [&] { optThumb[index].Caption(ShortenedCaption(file, optThumb[index].Width() - 15)); },
        [&] { optThumb[index].Visible(true); },
        [&] { optThumb[index].BackColor(kWhite); });
    i = CheckedInt16(i + 1);
  }

  core::ResumeEach(
      [&] { picProgress.Visible(false); },
      [&] { picLoad.Picture(ui::Pixels{}); },
      [&] { picThumb.Picture(ui::Pixels{}); },
      [&] { picThumb.Cls(); },
      [&] { optThumb[0].Value(true); },
      [&] { picSlide.Visible(true); },
      [&] { TvCollections.Enabled(true); },
      [&] { TvCollections.SetFocus(); },
      [&] { application.SetMousePointer(platform::kDefaultPointer); });
}

// --- layout and scrolling -----------------------------------------------------------------------

void FrmMain::LayoutThumbnailStrip() {
  const std::int32_t width = optThumb[0].Width();
  const std::int32_t height = optThumb[0].Height();
  if (width <= 0 || height <= 0) return;
  const std::int32_t columns = (picFrame.Width() - vsbSlide.Width()) / width;
  if (columns <= 0) return;
  const auto count = static_cast<std::int32_t>(optThumb.size());
  for (std::int32_t i = 0; i < count; ++i) {
    auto& element = optThumb[static_cast<std::size_t>(i)];
    element.Left((i % columns) * width);
    element.Top((i / columns) * height);
  }
  picSlide.Width(width * columns);
  picSlide.Height(height * (count / columns) + (count % columns != 0 ? height : 0));
  vsbSlide.Value(0);
  const std::int16_t maximum = CheckedInt16(picSlide.Height() - picFrame.Height());
  vsbSlide.Max(maximum);
  if (maximum >= 0) {
    vsbSlide.Enabled(true);
    vsbSlide.SmallChange = height;
    vsbSlide.LargeChange = picFrame.Height();
  } else {
    vsbSlide.Max(0);
    vsbSlide.Enabled(false);
  }
}

void FrmMain::Form_Resize() { LayoutThumbnailStrip(); }

void FrmMain::vsbSlide_Change() {
  picSlide.Top(-vsbSlide.Value());
  picFrame.Refresh();
}

void FrmMain::vsbSlide_Scroll() {
  picSlide.Top(-vsbSlide.Value());
  picFrame.Refresh();
}

// --- progress -----------------------------------------------------------------------------------

void FrmMain::ShowThumbnailProgress() {
  picProgress.Value(0);
  picProgress.Visible(true);
  picProgress.Max(150);
}

void FrmMain::SetThumbnailProgress(std::int16_t percent, const std::string& /*name*/) {
  // The fill ends at 100 of 150: the bar stops two thirds of the way.
  picProgress.Value(percent);
  DoEvents();
}

// --- set now and the viewer ---------------------------------------------------------------------

// No failure handling of its own: a failure reaches the window's top-level report.
void FrmMain::CmdSetAsWallpaper_Click() {
  for (ui::Control* control : Controls()) {
    const auto* option = dynamic_cast<ui::OptionButton*>(control);
    const auto* check = dynamic_cast<ui::CheckBox*>(control);
    const bool checked = (option != nullptr && option->Value()) ||
                         (check != nullptr && check->Value() == 1);
    if (!checked || control->Tag().empty()) continue;
    const std::string tag = control->Tag();
    // With no node selected the name is empty, as the routine has no guard of its own.
    const std::int32_t selected = TvCollections.SelectedItem();
    const std::string name = selected != 0 ? TvCollections.Item(selected).Text : std::string();
    UnpackEntry(name, tag);
    MakeWallpaperOf(RenameAsTemp(tag));
    TvCollections.SetFocus();
  }
}

void FrmMain::optThumb_DblClick(std::int16_t Index) {
  std::string tag;
  std::string name;
  std::string temp;
  core::ResumeEach(
      [&] { tag = optThumb[static_cast<std::size_t>(Index)].Tag(); },
      [&] { name = TvCollections.Item(TvCollections.SelectedItem()).Text; },
      [&] { UnpackEntry(name, tag); },
      [&] { temp = core::gDataFolder + "Temp." + FileExtensionOf(tag); },
      [&] { RenameAsTemp(tag); },
      // The system's own viewer, on the temporary file; parameters and folder are "0".
      [&] {
        platform::Use<platform::WindowActions>().ShellExecuteA(hWnd, "Open", temp, "0", "0",
                                                               kRestore);
      },
      [&] { TvCollections.SetFocus(); });
}

}  // namespace quorvane
