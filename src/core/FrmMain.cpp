#include "core/FrmMain.h"

#include "base/Failure.h"
#include "platform/FileSystem.h"
#include "platform/Service.h"

namespace quorvane {

namespace {

FrmMain* gMainWindow = nullptr;

}  // namespace

FrmMain::FrmMain() : ui::Form("FrmMain") {
  ui::ApplyLayout(*this, kFrmMainLayout);

  // The catalogue trees draw from ILicons, the folder tree from Im16.
  for (ui::TreeView* tree : {&TvDesktop, &TvStartMenu, &TvExplore, &TvFileType, &TvControlPanel}) {
    tree->Images = &ILicons;
  }
  Tree.Images = &Im16;

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
  CmdSlideShow.Click = [this] { CmdSlideShow_Click(); };
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
  PicPopup.MouseMove = [this](std::int16_t button, std::int16_t shift, float x, float y) {
    PicPopup_MouseMove(button, shift, x, y);
  };
  Label14.Click = [this] { Label14_Click(); };
  ConnectAppearancePage();
  ConnectFolderPage();

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

  // The thumbnail strip.
  filHidden.Pattern = "*.bmp;*.dib;*.rle;*.gif;*.jpg;*.wmf;*.emf;*.ico;*.cur";
  filHidden.Lister = [](const std::string& folder, std::vector<std::string>& names) {
    return platform::Use<platform::FileSystem>().ListFiles(folder, names);
  };
  TvCollections.Click = [this] { TvCollections_NodeClick(); };
  vsbSlide.Change = [this] { vsbSlide_Change(); };
  vsbSlide.Scroll = [this] { vsbSlide_Scroll(); };
  optThumb.OnConnect([this](ui::GraphicalOptionButton& element, std::int16_t index) {
    element.DblClick = [this, index] { optThumb_DblClick(index); };
  });
  CmdSetAsWallpaper.Click = [this] { CmdSetAsWallpaper_Click(); };

  // The automatic wallpaper change: a tick a minute.
  Timer1.Interval = 60000;
  Timer1.Enabled(true);
  Timer1.Tick = [this] { Timer1_Timer(); };
}

AdvRegistryAccess& FrmMain::Reg() {
  if (!reg_) reg_ = std::make_unique<AdvRegistryAccess>();
  return *reg_;
}

FrmMain& MainWindow() {
  if (gMainWindow == nullptr) RaiseObjectVariableNotSet();
  return *gMainWindow;
}

MainWindowScope::MainWindowScope(FrmMain& form) : previous_(gMainWindow) { gMainWindow = &form; }

MainWindowScope::~MainWindowScope() { gMainWindow = previous_; }

}  // namespace quorvane
