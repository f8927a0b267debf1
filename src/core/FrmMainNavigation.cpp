// FrmMain: the hover pictures of its buttons and commands, the top icons, the wallpaper
// commands' highlight, the window drag and the caption that ticks the shortcut box.
#include "core/FrmMain.h"
#include "platform/MessageBoxes.h"
#include "platform/ResourcePictures.h"
#include "platform/Service.h"
#include "platform/WindowActions.h"

namespace quorvane {

namespace {

ui::Pixels ResPicture(std::int32_t number) {
  return platform::Use<platform::ResourcePictures>().LoadResPicture(number);
}

}  // namespace

void FrmMain::Hover(const std::string& key, ui::PictureBox& box, std::int32_t picture) {
  if (mHoverKey == key) return;
  ResetHover();
  mHoverKey = key;
  box.Picture(ResPicture(picture));
}

void FrmMain::ClearHover(const std::string& key) {
  if (mHoverKey == key) return;
  ResetHover();
  mHoverKey = key;
}

void FrmMain::CmdMenu_MouseMove(std::int16_t Index) {
  struct Entry {
    const char* key;
    std::int32_t hover;
  };
  static constexpr Entry kPages[] = {
      {"Pelmora", 121}, {"FileSystem", 118}, {"Appearance", 103}, {"Wallpaper", 128}};
  const Entry& page = kPages[static_cast<std::size_t>(Index)];
  Hover(page.key, CmdMenu[static_cast<std::size_t>(Index)], page.hover);
}

void FrmMain::CmdChange_MouseMove() { Hover("CmdChange", CmdChange, 109); }
void FrmMain::CmdReset_MouseMove() { Hover("CmdReset", CmdReset, 124); }
void FrmMain::CmdDefault_MouseMove() { Hover("Cmddefault", CmdDefault, 113); }
void FrmMain::CmdApply_MouseMove() { Hover("CmdApply", CmdApply, 106); }
void FrmMain::CmdSetAsWallpaper_MouseMove() { Hover("CmdSetAsWallpaper", CmdSetAsWallpaper, 135); }
void FrmMain::CmdSettings_MouseMove() { Hover("CmdSettings", CmdSettings, 140); }
void FrmMain::CmdSlideShow_MouseMove() { Hover("CmdSlideShow", CmdSlideShow, 137); }
void FrmMain::PicClose_MouseMove() { Hover("PicClose", PicClose, 143); }
void FrmMain::PicMin_MouseMove() { Hover("PicMin", PicMin, 147); }
void FrmMain::FrameCommands_MouseMove() { ClearHover("FrameCommands"); }
void FrmMain::FrameWallpaper_MouseMove() { ClearHover("FrameCommands"); }

void FrmMain::Form_MouseMove(std::int16_t /*Button*/, std::int16_t /*Shift*/, float /*X*/,
                             float /*Y*/) {
  ClearHover("Form");
}

void FrmMain::CmdWallpaperControl_MouseMove(std::int16_t Index) {
  if (mHoverKey == "IconChange") return;
  mHoverKey = "IconChange";
  ui::Label& element = CmdWallpaperControl[static_cast<std::size_t>(Index)];
  element.ForeColor(kHighlight);
  element.FontUnderline(true);
}

void FrmMain::PBWallpaper_MouseMove() {
  if (mHoverKey == "Form") return;
  for (std::size_t i = 0; i < CmdWallpaperControl.size(); ++i) {
    CmdWallpaperControl[i].ForeColor(0);
    CmdWallpaperControl[i].FontUnderline(false);
  }
  mHoverKey = "Form";
}

void FrmMain::imgTop_MouseMove(std::int16_t Index) {
  // No key test here: the work repeats on every move.
  mHoverKey = "TopIconsX";
  for (std::size_t i = 0; i < imgTop.size(); ++i) imgTop[i].Picture(imgTopRowHover[i].Picture());
  const auto element = static_cast<std::size_t>(Index);
  imgTop[element].Picture(imgTopRow[element].Picture());
}

void FrmMain::imgTop_Click(std::int16_t Index) {
  if (Index == 0) {
    platform::Use<platform::MessageBoxes>().MsgBox(
        "Quorvane\r\n\r\nIcons, desktop appearance and wallpapers for your Windows desktop.");
    return;
  }
  // Help: a missing file does nothing visible, since the result is not looked at.
  auto& actions = platform::Use<platform::WindowActions>();
  const std::string folder = actions.ProgramFolder();
  actions.ShellExecuteA(hWnd, "open", folder + "\\orlavine.chm", "", folder, 1);
}

void FrmMain::Form_MouseDown(std::int16_t /*Button*/, std::int16_t /*Shift*/, float /*X*/,
                             float /*Y*/) {
  auto& actions = platform::Use<platform::WindowActions>();
  actions.ReleaseCapture();
  actions.SendMessageA(hWnd, 0xA1, 2, 0);
}

void FrmMain::Label14_Click() { ChkShowShortCut.Value(ChkShowShortCut.Value() == 0 ? 1 : 0); }

}  // namespace quorvane
