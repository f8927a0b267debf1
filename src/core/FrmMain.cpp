#include "core/FrmMain.h"

#include "base/Failure.h"

namespace quorvane {

namespace {

FrmMain* gMainWindow = nullptr;

void Place(ui::Control& c, std::int32_t left, std::int32_t top, std::int32_t width,
           std::int32_t height, ui::Control* container = nullptr) {
  c.Left(left);
  c.Top(top);
  c.Width(width);
  c.Height(height);
  c.Container = container;
}

}  // namespace

FrmMain::FrmMain() {
  controls_ = {&PBPelmoraMain, &PBFileSystem, &PBAppearance, &PBWallpaper, &FrameCommands,
               &FrameWallpaper};
  for (std::size_t i = 0; i < CmdMenu.size(); ++i) controls_.push_back(&CmdMenu[i]);
  for (ui::Control* c : std::initializer_list<ui::Control*>{
           &CmdWindow, &CmdChange, &CmdReset, &CmdDefault, &CmdApply, &CmdSetAsWallpaper,
           &CmdSettings, &CmdSlideShow, &PicClose, &PicMin}) {
    controls_.push_back(c);
  }
  for (std::size_t i = 0; i < 2; ++i) {
    controls_.push_back(&imgTop[i]);
    controls_.push_back(&imgTopRow[i]);
    controls_.push_back(&imgTopRowHover[i]);
  }
  for (ui::Control* c : std::initializer_list<ui::Control*>{
           &LblCommandName, &LblCommandDesc, &LblDescribtion, &Label30, &Label33, &TvDesktop,
           &TvStartMenu, &TvExplore, &TvFileType, &TvControlPanel, &sIcon, &mIcon, &lIcon,
           &LblIconCat, &Label4, &Label5, &Tree, &Pi1, &PicSmall, &PicLarge, &Picture1, &Slider,
           &TxtHorizontal, &TxtVertical, &ChkShowShortCut, &LblAppearanceMsg, &LblStatus, &Label8,
           &Label9, &Label12, &Label14, &Label17, &PBDesktop, &ImgMyComputer, &ImgMyDocuments,
           &ImgRecycleBin, &LblMyComputer, &LblMyDocuments, &LblRecycleBin, &TvCollections,
           &Label13, &PicPopup, &ImgPopupWindows, &Image2, &PBTempWallpaper}) {
    controls_.push_back(c);
  }
  for (std::size_t i = 0; i < CmdWallpaperControl.size(); ++i) {
    controls_.push_back(&CmdWallpaperControl[i]);
  }

  // Design-time captions. The page's title stands out: larger, bold and dark; its subtitle
  // takes the accent colour of the pictures.
  LblCommandName.Caption("Pelmora");
  LblCommandName.FontSize(14);
  LblCommandName.FontBold(true);
  LblCommandName.ForeColor(0x52463F);
  LblCommandDesc.Caption("Change Icons with few clicks");
  LblCommandDesc.FontSize(9);
  LblCommandDesc.ForeColor(0x914F1D);
  Label33.Caption("About");
  Label30.Caption("Help");
  Label4.Caption("Objects");
  Label5.Caption("Preview");
  Label8.Caption("Icon Size");
  Label9.Caption("Icon Spacing");
  Label12.Caption("Spacing");
  Label13.Caption("Double Click Thumbnail to Open");
  Label14.Caption("Show Shortcut Arrow");
  ChkShowShortCut.Caption("Show Shortcut Arrow");
  Label17.Caption("Shortcut Overlay");
  LblStatus.Caption("32x32");
  LblRecycleBin.Caption("Recycle Bin");
  LblMyComputer.Caption("My Computer");
  LblMyDocuments.Caption("My Documents");
  LblIconCat.Caption("Desktop");
  LblAppearanceMsg.Caption("Icon Size and Icon Spacing has been blocked in Vista");
  CmdWallpaperControl[0].Caption("Create a new collection");
  CmdWallpaperControl[1].Caption("Modify Collection");
  CmdWallpaperControl[2].Caption("Remove Collection");

  // The catalogue trees draw from ILicons, the folder tree from Im16.
  for (ui::TreeView* tree : {&TvDesktop, &TvStartMenu, &TvExplore, &TvFileType, &TvControlPanel}) {
    tree->Images = &ILicons;
  }
  Tree.Images = &Im16;

  // Design-time places, in twips. Pages and the command frame have the places the page switch
  // gives them; the rest lie inside their page.
  for (ui::PictureBox* page : {&PBPelmoraMain, &PBFileSystem, &PBAppearance, &PBWallpaper}) {
    Place(*page, 3200, 2040, 7695, 5535);
    page->Visible(false);
  }
  Place(FrameCommands, 3240, 7800, 7695, 375);
  Place(FrameWallpaper, 3240, 7800, 7695, 375);
  FrameWallpaper.Visible(false);
  for (std::size_t i = 0; i < CmdMenu.size(); ++i) {
    Place(CmdMenu[i], 240, 2040 + static_cast<std::int32_t>(i) * 900, 2760, 780);
  }
  Place(PicMin, 10350, 120, 330, 330);
  Place(PicClose, 10740, 120, 330, 330);
  Place(imgTop[0], 8700, 120, 480, 480);
  Place(imgTop[1], 9300, 120, 480, 480);
  Place(LblCommandName, 3240, 450, 5300, 435);
  Place(LblCommandDesc, 3240, 900, 7000, 300);
  Place(LblDescribtion, 3240, 1230, 7600, 780);
  Place(CmdChange, 0, 0, 1800, 375, &FrameCommands);
  Place(CmdReset, 1950, 0, 1800, 375, &FrameCommands);
  Place(CmdDefault, 3900, 0, 1800, 375, &FrameCommands);
  Place(CmdApply, 5850, 0, 1800, 375, &FrameCommands);
  Place(CmdSetAsWallpaper, 0, 0, 1800, 375, &FrameWallpaper);
  Place(CmdSettings, 1950, 0, 1800, 375, &FrameWallpaper);
  Place(CmdSlideShow, 3900, 0, 1800, 375, &FrameWallpaper);

  Place(CmdWindow, 120, 15, 6840, 360, &PBPelmoraMain);
  for (ui::TreeView* tree : {&TvDesktop, &TvStartMenu, &TvExplore, &TvFileType, &TvControlPanel}) {
    Place(*tree, 120, 720, 4560, 4680, &PBPelmoraMain);
  }
  Place(Label4, 120, 450, 2000, 255, &PBPelmoraMain);
  Place(LblIconCat, 2200, 450, 2400, 255, &PBPelmoraMain);
  Place(Label5, 4920, 450, 2000, 255, &PBPelmoraMain);
  Place(sIcon, 4920, 900, 300, 300, &PBPelmoraMain);
  Place(lIcon, 5400, 900, 540, 540, &PBPelmoraMain);
  Place(mIcon, 6120, 900, 540, 540, &PBPelmoraMain);

  Place(Tree, 120, 120, 4560, 5280, &PBFileSystem);
  Place(Pi1, 4920, 120, 240, 240, &PBFileSystem);
  Place(PicSmall, 4920, 600, 240, 240, &PBFileSystem);
  Place(PicLarge, 5400, 600, 480, 480, &PBFileSystem);
  Pi1.Visible(false);

  Place(Picture1, 120, 120, 4200, 900, &PBAppearance);
  Place(Slider, 120, 120, 3000, 450, &Picture1);
  Place(TxtHorizontal, 120, 1320, 1200, 330, &PBAppearance);
  Place(TxtVertical, 1440, 1320, 1200, 330, &PBAppearance);
  // Only the box: Label14 beside it carries the caption.
  Place(ChkShowShortCut, 120, 1800, 210, 300, &PBAppearance);
  Place(Label14, 480, 1800, 3000, 300, &PBAppearance);
  Place(LblAppearanceMsg, 120, 2280, 7000, 300, &PBAppearance);
  Place(PBDesktop, 4440, 120, 3000, 3000, &PBAppearance);

  Place(TvCollections, 120, 120, 3000, 5000, &PBWallpaper);
  for (std::size_t i = 0; i < CmdWallpaperControl.size(); ++i) {
    Place(CmdWallpaperControl[i], 3300, 120 + static_cast<std::int32_t>(i) * 360, 3000, 300,
          &PBWallpaper);
  }

  // The form's routines behind the controls' events.
  TvDesktop.Click = [this] { TvDesktop_Click(); };
  TvStartMenu.Click = [this] { TvStartMenu_Click(); };
  TvExplore.Click = [this] { TvExplore_Click(); };
  TvFileType.Click = [this] { TvFileType_Click(); };
  TvControlPanel.Click = [this] { TvControlPanel_Click(); };
  TvDesktop.DblClick = [this] { TvDesktop_DblClick(); };
  TvStartMenu.DblClick = [this] { TvStartMenu_DblClick(); };
  TvExplore.DblClick = [this] { TvExplore_DblClick(); };
  TvFileType.DblClick = [this] { TvFileType_DblClick(); };
  TvControlPanel.DblClick = [this] { TvControlPanel_DblClick(); };
  CmdChange.Click = [this] { CmdChange_Click(); };
  CmdApply.Click = [this] { CmdApply_Click(); };
  CmdDefault.Click = [this] { CmdDefault_Click(); };
  CmdReset.Click = [this] { CmdReset_Click(); };
  CmdSettings.Click = [this] { CmdSettings_Click(); };
  for (std::size_t i = 0; i < CmdWallpaperControl.size(); ++i) {
    CmdWallpaperControl[i].Click = [this, i] {
      CmdWallpaperControl_Click(static_cast<std::int16_t>(i));
    };
  }
  CmdWindow.Click = [this] { CmdWindow_Click(); };
  CmdWindow.MouseMove = [this](std::int16_t button, std::int16_t shift, float x, float y) {
    CmdWindow_MouseMove(button, shift, x, y);
  };
  for (std::size_t i = 0; i < CmdMenu.size(); ++i) {
    CmdMenu[i].Click = [this, i] { CmdMenu_Click(static_cast<std::int16_t>(i)); };
  }
  PicClose.Click = [this] { PicClose_Click(); };
  PicMin.Click = [this] { PicMin_Click(); };
  Label14.Click = [this] { Label14_Click(); };

  // Hover.
  const auto onMove = [](std::function<void()> routine) {
    return [routine](std::int16_t, std::int16_t, float, float) { routine(); };
  };
  for (std::size_t i = 0; i < CmdMenu.size(); ++i) {
    CmdMenu[i].MouseMove = onMove([this, i] { CmdMenu_MouseMove(static_cast<std::int16_t>(i)); });
  }
  CmdChange.MouseMove = onMove([this] { CmdChange_MouseMove(); });
  CmdReset.MouseMove = onMove([this] { CmdReset_MouseMove(); });
  CmdDefault.MouseMove = onMove([this] { CmdDefault_MouseMove(); });
  CmdApply.MouseMove = onMove([this] { CmdApply_MouseMove(); });
  CmdSetAsWallpaper.MouseMove = onMove([this] { CmdSetAsWallpaper_MouseMove(); });
  CmdSettings.MouseMove = onMove([this] { CmdSettings_MouseMove(); });
  CmdSlideShow.MouseMove = onMove([this] { CmdSlideShow_MouseMove(); });
  PicClose.MouseMove = onMove([this] { PicClose_MouseMove(); });
  PicMin.MouseMove = onMove([this] { PicMin_MouseMove(); });
  FrameCommands.MouseMove = onMove([this] { FrameCommands_MouseMove(); });
  FrameWallpaper.MouseMove = onMove([this] { FrameWallpaper_MouseMove(); });
  PBWallpaper.MouseMove = onMove([this] { PBWallpaper_MouseMove(); });
  for (std::size_t i = 0; i < CmdWallpaperControl.size(); ++i) {
    CmdWallpaperControl[i].MouseMove =
        onMove([this, i] { CmdWallpaperControl_MouseMove(static_cast<std::int16_t>(i)); });
  }
  for (std::size_t i = 0; i < imgTop.size(); ++i) {
    imgTop[i].MouseMove = onMove([this, i] { imgTop_MouseMove(static_cast<std::int16_t>(i)); });
    imgTop[i].Click = [this, i] { imgTop_Click(static_cast<std::int16_t>(i)); };
  }

  // Surfaces that only serve as targets or stores.
  PicPopup.Visible(false);
  ImgPopupWindows.Visible(false);
  Image2.Visible(false);
  PBTempWallpaper.Visible(false);
  Timer1.Interval = 60000;
  Timer1.Enabled(true);
  Timer1.Tick = [this] { Timer1_Timer(); };
  for (std::size_t i = 0; i < 2; ++i) {
    imgTopRow[i].Visible(false);
    imgTopRowHover[i].Visible(false);
  }
}

AdvRegistryAccess& FrmMain::Reg() {
  if (!reg_) reg_ = std::make_unique<AdvRegistryAccess>();
  return *reg_;
}

ui::Control* FrmMain::FindControl(const std::string& name, std::int32_t index) const {
  return ui::FindControl(controls_, name, index);
}

FrmMain& MainWindow() {
  if (gMainWindow == nullptr) RaiseObjectVariableNotSet();
  return *gMainWindow;
}

MainWindowScope::MainWindowScope(FrmMain& form) : previous_(gMainWindow) { gMainWindow = &form; }

MainWindowScope::~MainWindowScope() { gMainWindow = previous_; }

}  // namespace quorvane
