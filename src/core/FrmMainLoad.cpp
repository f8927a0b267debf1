// FrmMain: the load routine, and the page and zone switches it ends with.
#include <cstdlib>

#include "base/Int16.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "core/Regimes.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "core/mdlTray.h"
#include "icons/Catalogue.h"
#include "icons/FillTree.h"
#include "platform/EventLoop.h"
#include "platform/MessageBoxes.h"
#include "platform/Notification.h"
#include "platform/ResourcePictures.h"
#include "platform/Service.h"

namespace quorvane {

namespace {

void DoEvents() { platform::Use<platform::EventLoop>().DoEvents(); }

}  // namespace

void FrmMain::Form_Load() {
  const auto load = [&] {
    // The tray icon: a stale one of this process never doubles.
    core::RemoveFromTray();
    std::uint32_t popup = PicPopup.hWnd;
    core::AddToTray(popup, Icon, "Quorvane", 0x200);

    // The notification near the tray: its five settings, in this order.
    auto& notify = platform::Use<platform::Notification>();
    notify.SetOption(0x68030064, 4);
    notify.SetOption(0x68030062, 45);
    notify.SetOption(0x68030055, 0);
    notify.SetPicture(ImgPopupWindows.Picture());
    notify.SetOption(0x6803005A, 6);

    OSName = core::GetOSName();
    core::gSystemFolder = core::GetSpecialFolder(0x29);
    core::gWindowsFolder = core::GetSpecialFolder(0x24);
    core::gProgramFilesFolder = core::GetSpecialFolder(0x26);
    core::gDataFolder = core::GetSpecialFolder(0x1A);
    if (core::CreateDefaultFolder() == kFalse) {
      platform::Use<platform::MessageBoxes>().MsgBox(
          "Unable to create default folder. Please run the program with Admin privilege");
      return;
    }
    core::gPicturesFolder = core::GetSpecialFolder(0x27);

    LoadIconRecords(*this);
    FillCatalogueTrees();

    CategoryClickX = 30;
    CategoryClickY = 30;
    CmdWindow_Click();
    CmdMenu_Click(0);
    ResetHover();

    // The folder tree: its root, then the drives.
    FillTreeRoot();
    FillDrives();

    // The appearance page: its blocked state and the stored size; the slider's background,
    // once in the life of the window; the stored spacing and the shortcut overlay.
    ReadIconSize();
    DoEvents();
    if (mFormLoaded == 0) {
      SetUpSliderBackground();
      mFormLoaded = kTrue;
    }
    DoEvents();
    ReadIconSpacing();

    // The collections, and the wallpaper settings the running program starts with.
    RefreshCollections();

    if (core::IsVista() != kFalse) {
      CmdMenu[2].Visible(false);
      CmdMenu[3].Top(CmdMenu[2].Top());
    }
  };
  // The load routine's one error path: a failure ends it, with a line in the log.
  core::AsResult(load, [] { core::ReportError("FrmMain", "Form_Load"); });
}

void FrmMain::CmdWindow_Click() {
  // Failures here are passed over statement by statement.
  if (!(CategoryClickY > 15) || !(CategoryClickY < 340)) return;
  for (ui::TreeView* tree : {&TvDesktop, &TvStartMenu, &TvExplore, &TvFileType, &TvControlPanel}) {
    core::ResumeEach([&] { tree->Visible(false); });
  }

  struct Zone {
    std::int16_t above, below;
    std::int32_t picture;
    const char* caption;
    ui::TreeView* tree;
    void (FrmMain::*click)();
  };
  const Zone zones[] = {
      {15, 1485, 131, "Desktop", &TvDesktop, &FrmMain::TvDesktop_Click},
      {1700, 3000, 133, "Start Menu", &TvStartMenu, &FrmMain::TvStartMenu_Click},
      {3300, 4700, 132, "File Type", &TvFileType, &FrmMain::TvFileType_Click},
      {4800, 6700, 130, "Control Panel", &TvControlPanel, &FrmMain::TvControlPanel_Click},
  };
  for (const Zone& zone : zones) {
    if (CategoryClickX > zone.above && CategoryClickX < zone.below) {
      core::ResumeEach(
          [&] {
            CmdWindow.Picture(
                platform::Use<platform::ResourcePictures>().LoadResPicture(zone.picture));
          },
          [&] { LblIconCat.Caption(zone.caption); }, [&] { zone.tree->Visible(true); },
          [&] { (this->*zone.click)(); });
      return;
    }
  }
}

void FrmMain::CmdWindow_MouseMove(std::int16_t /*Button*/, std::int16_t /*Shift*/, float X,
                                  float Y) {
  CategoryClickX = static_cast<std::int16_t>(text::RoundHalfEven(X));
  CategoryClickY = static_cast<std::int16_t>(text::RoundHalfEven(Y));
}

void FrmMain::CmdMenu_Click(std::int16_t Index) {
  ui::PictureBox* pages[] = {&PBPelmoraMain, &PBFileSystem, &PBAppearance, &PBWallpaper};
  for (std::size_t i = 0; i < CmdMenu.size(); ++i) CmdMenu[i].Tag("");
  for (ui::PictureBox* page : pages) page->Visible(false);
  for (ui::PictureBox* button : {&CmdReset, &CmdApply, &CmdDefault, &CmdChange}) {
    button->Enabled(false);
  }
  FrameCommands.Visible(false);
  FrameWallpaper.Visible(false);
  const auto element = static_cast<std::size_t>(Index);
  CmdMenu[element].Tag("Active");
  switch (Index) {
    case 0:
      for (ui::PictureBox* b : {&CmdReset, &CmdApply, &CmdDefault, &CmdChange}) b->Enabled(true);
      break;
    case 1:
      CmdDefault.Enabled(true);
      CmdChange.Enabled(true);
      break;
    case 2:
      CmdApply.Enabled(true);
      CmdDefault.Enabled(true);
      break;
    default:
      break;
  }
  ResetHover();

  struct Texts {
    const char* title;
    const char* desc;
    std::string description;
  };
  const std::string twoLineEnds = "\r\n\r\n";
  const Texts texts[] = {
      {"Pelmora", "Changes icons with just a few clicks",
       "Click to change the icons of Control Panel, File Type, Shortcut as well as Desktop Icons" +
           twoLineEnds +
           "Select icon in the box and then click on 'Change' to apply a new icon for the "
           "selected item."},
      {"File System", "Changes folder icons with just a few clicks",
       "Click to change the icons of Folders " + twoLineEnds +
           "Select icon in the box and then click on 'Change' to select a new icon for the "
           "selected object."},
      {"Appearance", "Icon sizes and spacing",
       "On this page you can customize your desktop icons appearance. this includes the color "
       "depth of the icons, their size and spacing"},
      {"Wallpaper Manager", "Wallpaper Manager will change images from a collection of images",
       "Wallpaper Manager lets you set the time interval at which your desktop wallpaper will be "
       "changed automatically from your collections. " +
           twoLineEnds + " Click 'Wallpaper Settings' to Add or Remove Collection"},
  };
  const Texts& t = texts[element];
  LblCommandName.Caption(t.title);
  LblCommandDesc.Caption(t.desc);
  LblDescribtion.Caption(t.description);

  ui::PictureBox& page = *pages[element];
  page.Left(3200);
  page.Top(2040);
  page.Height(5535);
  page.Width(7695);
  page.Visible(true);
  ui::PictureBox& frame = Index == 3 ? FrameWallpaper : FrameCommands;
  frame.Left(3240);
  frame.Height(375);
  frame.Top(7800);
  frame.Width(7695);
  frame.Visible(true);

  if (Index == 2) {
    Tree.Select(1);
    Tree.Item(1).Expanded = true;
    Tree.NodeChanged(1);
  }
  // The wallpaper page opens on its first collection's strip.
  if (Index == 3 && TvCollections.Count() > 0) {
    TvCollections.Select(1);
    TvCollections_NodeClick();
  }
}

void FrmMain::ResetHover() {
  auto& pictures = platform::Use<platform::ResourcePictures>();
  for (std::size_t i = 0; i < imgTop.size(); ++i) imgTop[i].Picture(imgTopRowHover[i].Picture());
  // Active, and not active, picture of each page command.
  constexpr std::int32_t kMenuPictures[4][2] = {{122, 120}, {119, 117}, {104, 102}, {101, 127}};
  for (std::size_t i = 0; i < CmdMenu.size(); ++i) {
    CmdMenu[i].Picture(pictures.LoadResPicture(
        CmdMenu[i].Tag() == "Active" ? kMenuPictures[i][0] : kMenuPictures[i][1]));
  }
  struct Button {
    ui::PictureBox* box;
    std::int32_t normal, disabled;
  };
  for (const Button& b : {Button{&CmdChange, 110, 108}, Button{&CmdReset, 125, 123},
                          Button{&CmdDefault, 114, 112}, Button{&CmdApply, 107, 105}}) {
    b.box->Picture(pictures.LoadResPicture(b.box->Enabled() ? b.normal : b.disabled));
  }
  CmdSetAsWallpaper.Picture(pictures.LoadResPicture(136));
  CmdSettings.Picture(pictures.LoadResPicture(134));
  CmdSlideShow.Picture(pictures.LoadResPicture(138));
  PicClose.Picture(pictures.LoadResPicture(142));
  PicMin.Picture(pictures.LoadResPicture(146));
}

}  // namespace quorvane
