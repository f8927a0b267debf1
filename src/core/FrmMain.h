#pragma once
// The main window: a form of the control model with its controls (each made with the form, so
// that it is among the form's controls), its members, and its routines. Where each control
// stands is the design's table, FrmMainLayout.cpp; the routines behind the controls' events are
// connected in the constructor. Routines of other modules reach the window through MainWindow().
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "base/Types.h"
#include "stores/AdvRegistryAccess.h"
#include "ui/Controls.h"
#include "ui/Form.h"
#include "ui/Layout.h"
#include "ui/StripControls.h"

namespace quorvane {

class FrmMenu;

// One row of the icon catalogue.
struct IconRecord {
  std::string Name;
  std::string Key;
  std::string Current;
  std::string Pending;
  std::string Default;
  std::string ValueName;
  std::int16_t ImageNumber = 0;
  std::string Backup;
};

// Rows 0 to 64 are used; 65 to 70 stay empty for the life of the program.
inline constexpr std::size_t kIconRecordCount = 71;

// The main window's design: its caption, size and border, and where each control stands
// (FrmMainLayout.cpp).
extern const ui::FormLayout kFrmMainLayout;

class FrmMain : public ui::Form {
 public:
  FrmMain();

  // --- pages and commands -------------------------------------------------------------------
  ui::PictureBox PBPelmoraMain{*this, "PBPelmoraMain"};
  ui::PictureBox PBFileSystem{*this, "PBFileSystem"};
  ui::PictureBox PBAppearance{*this, "PBAppearance"};
  ui::PictureBox PBWallpaper{*this, "PBWallpaper"};
  ui::PictureBox FrameCommands{*this, "FrameCommands"};
  ui::PictureBox FrameWallpaper{*this, "FrameWallpaper"};
  ui::ControlArray<ui::PictureBox, 4> CmdMenu{*this, "CmdMenu"};
  ui::PictureBox CmdWindow{*this, "CmdWindow"};
  ui::PictureBox CmdChange{*this, "CmdChange"};
  ui::PictureBox CmdReset{*this, "CmdReset"};
  ui::PictureBox CmdDefault{*this, "CmdDefault"};
  ui::PictureBox CmdApply{*this, "CmdApply"};
  ui::PictureBox CmdSetAsWallpaper{*this, "CmdSetAsWallpaper"};
  ui::PictureBox CmdSettings{*this, "CmdSettings"};
  ui::PictureBox CmdSlideShow{*this, "CmdSlideShow"};
  ui::PictureBox PicClose{*this, "PicClose"};
  ui::PictureBox PicMin{*this, "PicMin"};
  ui::ControlArray<ui::PictureBox, 2> imgTop{*this, "imgTop"};
  ui::ControlArray<ui::PictureBox, 2> imgTopRow{*this, "imgTopRow"};
  ui::ControlArray<ui::PictureBox, 2> imgTopRowHover{*this, "imgTopRowHover"};
  ui::Label LblCommandName{*this, "LblCommandName"};
  ui::Label LblCommandDesc{*this, "LblCommandDesc"};
  ui::Label LblDescribtion{*this, "LblDescribtion"};
  ui::Label Label30{*this, "Label30"};
  ui::Label Label33{*this, "Label33"};

  // --- the icon page --------------------------------------------------------------------------
  ui::TreeView TvDesktop{*this, "TvDesktop"};
  ui::TreeView TvStartMenu{*this, "TvStartMenu"};
  ui::TreeView TvExplore{*this, "TvExplore"};
  ui::TreeView TvFileType{*this, "TvFileType"};
  ui::TreeView TvControlPanel{*this, "TvControlPanel"};
  ui::ImageList ILicons{"ILicons"};
  ui::PictureBox sIcon{*this, "sIcon"};
  ui::PictureBox mIcon{*this, "mIcon"};
  ui::PictureBox lIcon{*this, "lIcon"};
  ui::Label LblIconCat{*this, "LblIconCat"};
  ui::Label Label4{*this, "Label4"};
  ui::Label Label5{*this, "Label5"};

  // --- the file system page -------------------------------------------------------------------
  ui::TreeView Tree{*this, "Tree"};
  ui::ImageList Im16{"Im16"};
  ui::PictureBox Pi1{*this, "Pi1"};
  ui::PictureBox PicSmall{*this, "PicSmall"};
  ui::PictureBox PicLarge{*this, "PicLarge"};

  // --- the appearance page --------------------------------------------------------------------
  ui::PictureBox Picture1{*this, "Picture1"};
  ui::ValueControl Slider{*this, "Slider"};
  ui::ValueControl TxtHorizontal{*this, "TxtHorizontal"};
  ui::ValueControl TxtVertical{*this, "TxtVertical"};
  ui::CheckBox ChkShowShortCut{*this, "ChkShowShortCut"};
  ui::Label LblAppearanceMsg{*this, "LblAppearanceMsg"};
  ui::Label LblStatus{*this, "LblStatus"};
  ui::Label Label8{*this, "Label8"};
  ui::Label Label9{*this, "Label9"};
  ui::Label Label12{*this, "Label12"};
  ui::Label Label14{*this, "Label14"};
  ui::Label Label17{*this, "Label17"};
  ui::PictureBox PBDesktop{*this, "PBDesktop"};
  ui::Image ImgMyComputer{*this, "ImgMyComputer"};
  ui::Image ImgMyDocuments{*this, "ImgMyDocuments"};
  ui::Image ImgRecycleBin{*this, "ImgRecycleBin"};
  ui::Label LblMyComputer{*this, "LblMyComputer"};
  ui::Label LblMyDocuments{*this, "LblMyDocuments"};
  ui::Label LblRecycleBin{*this, "LblRecycleBin"};
  ui::Label LblSmall{*this, "LblSmall"};
  ui::Label LblLarge{*this, "LblLarge"};
  ui::Label LblHorizontal{*this, "LblHorizontal"};
  ui::Label LblVertical{*this, "LblVertical"};

  // --- the wallpaper page ---------------------------------------------------------------------
  ui::TreeView TvCollections{*this, "TvCollections"};
  ui::ControlArray<ui::Label, 3> CmdWallpaperControl{*this, "CmdWallpaperControl"};
  ui::Label Label13{*this, "Label13"};
  // The thumbnail strip: picFrame, white, is the visible window of the strip and clips
  // picSlide, the sheet that holds the thumbnails and moves when vsbSlide scrolls it. Each
  // thumbnail is an element of optThumb, a graphical option button with the picture's file name
  // in its Tag; element 0 exists from the start and stands for an empty strip, the others are
  // loaded for each fill. The checked one is the selection.
  ui::PictureBox picFrame{*this, "picFrame"};
  ui::ScrollBar vsbSlide{*this, "vsbSlide"};
  ui::PictureBox picSlide{*this, "picSlide"};
  ui::LoadedOptionArray<ui::GraphicalOptionButton> optThumb{*this, "optThumb"};
  // Lists the unpacked collection: its alphabetical order is the order of the strip.
  ui::FileListBox filHidden{*this, "filHidden"};
  // Decodes one file of the fill (sizing itself to its picture), and the 64 by 64 surface its
  // thumbnail is drawn on.
  ui::PictureBox picLoad{*this, "picLoad"};
  ui::PictureBox picThumb{*this, "picThumb"};
  // The fill's progress.
  ui::ProgressBar picProgress{*this, "picProgress"};

  // Decodes a picture for the wallpaper; sizes itself to its picture.
  ui::PictureBox PBTempWallpaper{*this, "PBTempWallpaper"};
  // The automatic wallpaper change: a tick a minute, in both run modes, never stopped.
  ui::Timer Timer1{*this, "Timer1"};

  // --- the tray -------------------------------------------------------------------------------
  ui::PictureBox PicPopup{*this, "PicPopup"};
  ui::PictureBox ImgPopupWindows{*this, "ImgPopupWindows"};

  // --- stores of design pictures ----------------------------------------------------------------
  // The small picture at the root of the folder tree.
  ui::PictureBox Image2{*this, "Image2"};

  // --- members --------------------------------------------------------------------------------
  std::array<IconRecord, kIconRecordCount> IconRecords;
  std::string OSName;
  std::int16_t CategoryClickX = 0;
  std::int16_t CategoryClickY = 0;
  std::int16_t mIconSize = 0;
  std::int16_t mFormLoaded = 0;
  std::string mHoverKey;
  // Set when the horizontal icon spacing has been changed; CmdApply on the appearance page
  // asks for a restart then.
  std::int16_t mRestartNeeded = 0;
  // Minutes counted since the last wallpaper change, and the Files.ini entry used last.
  std::int16_t mTickCount = 0;
  std::int16_t mCurrentIndex = 0;

  // The routines of the folder page and the appearance page that CmdChange, CmdApply and
  // CmdDefault hand over to when that page is showing. Each page connects its own; while one
  // is not connected, the hand-over does nothing.
  std::function<void()> ChangeFolderIcon;
  std::function<void()> RestoreFolderIcon;
  std::function<void()> ApplyAppearance;
  std::function<void()> ApplyAppearanceDefaults;

  // The registry object, made on first use and kept for the life of the window.
  AdvRegistryAccess& Reg();

  // --- routines -------------------------------------------------------------------------------
  // The load routine: everything the program does at its start, and again after icons are
  // written. Its one error path reports through ReportError.
  void Form_Load() override;
  // Unload requests: `UnloadMode` 0 is the close from the system menu or the keyboard.
  void Form_QueryUnload(std::int16_t& Cancel, std::int16_t UnloadMode) override;
  void CmdMenu_Click(std::int16_t Index);
  // Hover: a control under the mouse shows its hover picture once, until another takes over.
  void CmdMenu_MouseMove(std::int16_t Index);
  void CmdChange_MouseMove();
  void CmdReset_MouseMove();
  void CmdDefault_MouseMove();
  void CmdApply_MouseMove();
  void CmdSetAsWallpaper_MouseMove();
  void CmdSettings_MouseMove();
  void CmdSlideShow_MouseMove();
  void PicClose_MouseMove();
  void PicMin_MouseMove();
  void FrameCommands_MouseMove();
  void FrameWallpaper_MouseMove();
  void Form_MouseMove(std::int16_t Button, std::int16_t Shift, float X, float Y) override;
  void CmdWallpaperControl_MouseMove(std::int16_t Index);
  void PBWallpaper_MouseMove();
  void imgTop_MouseMove(std::int16_t Index);
  void imgTop_Click(std::int16_t Index);
  // A press on the window's background drags the window.
  void Form_MouseDown(std::int16_t Button, std::int16_t Shift, float X, float Y) override;
  void Label14_Click();
  void CmdWindow_Click();
  // Keeps the position of the last mouse move over CmdWindow, which its click reads.
  void CmdWindow_MouseMove(std::int16_t Button, std::int16_t Shift, float X, float Y);
  void ResetHover();
  void TvDesktop_Click();
  void TvStartMenu_Click();
  void TvExplore_Click();
  void TvFileType_Click();
  void TvControlPanel_Click();
  // Staging: the shell's icon picker on the selected row's Current, and a confirmed choice kept
  // in the row and its node until it is applied or dropped.
  void TvDesktop_DblClick();
  void TvStartMenu_DblClick();
  void TvExplore_DblClick();
  void TvFileType_DblClick();
  void TvControlPanel_DblClick();
  void CmdChange_Click();
  // Applying the staged rows of the visible tree, taking the selected row back to stock, and
  // dropping the staging of the selected node.
  void CmdApply_Click();
  void CmdDefault_Click();
  void CmdReset_Click();
  // The first of the five catalogue trees whose own Visible is true; null when none is.
  ui::TreeView* VisibleTree();
  // The tree's Click and DblClick routines, by the tree.
  void ClickOf(ui::TreeView& tree);
  void DblClickOf(ui::TreeView& tree);
  // The rebuild after a write: the five trees, ILicons and IconRecords emptied, then the load
  // routine run again with CategoryClickX kept across it.
  void EmptyCatalogue();
  void ReloadKeepingCategory();
  // The wallpaper page's collections: TvCollections filled anew and the settings read from the
  // predecessor key; and the third wallpaper command, the removal of the selected collection.
  void RefreshCollections();
  void CmdWallpaperControl_Click(std::int16_t Index);
  // The first two wallpaper commands (FrmMainCollections.cpp): the collection editor shown modal
  // to make a collection, and on the selected collection, unpacked and listed, to change it.
  void CreateCollection();
  void ModifyCollection();
  // The strip after the last collection is gone: optThumb(0) without picture, Tag or caption.
  void EmptyThumbnailStrip();
  // The strip (FrmMainStrip.cpp): a click on a collection's node unpacks it and fills the strip
  // with its pictures; the strip laid out in rows of as many thumbnails as picFrame holds (also
  // the window's resize); scrolling; the fill's progress; the checked picture set as wallpaper
  // now, and a double-clicked one opened in the system's viewer.
  void TvCollections_NodeClick();
  void LoadThumbnailStrip();
  void LayoutThumbnailStrip();
  void vsbSlide_Change();
  void vsbSlide_Scroll();
  void ShowThumbnailProgress();
  void SetThumbnailProgress(std::int16_t percent, const std::string& name);
  void CmdSetAsWallpaper_Click();
  void optThumb_DblClick(std::int16_t Index);
  void Form_Resize() override;
  // FrmSettings shown modal, owned by this window; its settings are read back when it closes.
  void CmdSettings_Click();
  // FrmSlideShow shown modal, owned by this window, over the selected collection unpacked for
  // the time it is open.
  void CmdSlideShow_Click();
  // The tick of Timer1, and the tray menu's change that runs it at once.
  void Timer1_Timer();
  // Loads the picture file into PBTempWallpaper, saves what the box shows as WP.bmp in the data
  // folder and makes that the system's wallpaper: the end of the automatic change and of set now.
  void MakeWallpaperOf(const std::string& path);
  void mnuChangeWallpaper_Click();
  // The appearance page (FrmMainAppearance.cpp): its handlers connected and its design values
  // given; the preview re-laid for an icon size, in the preview's pixels; the change routines of
  // the slider and the two spacings; the preview's background; and the page's part of the load
  // routine: the blocked state and the stored size, the slider's background (once), and the
  // stored spacing laid out in the preview once, with the shortcut overlay.
  void ConnectAppearancePage();
  void UpdatePreviewIconSize(std::int16_t size);
  void Slider_Change();
  void TxtHorizontal_Change();
  void TxtVertical_Change();
  void PBDesktop_Paint();
  void ReadIconSize();
  void SetUpSliderBackground();
  void ReadIconSpacing();
  // The folder page (FrmMainFolders.cpp): its handlers connected; Tree built anew from its root
  // ("My Computer") and then its drives, each with a placeholder while it has sub-folders not
  // yet read; a node opened for the first time gets its sub-folders; a click shows the selected
  // path's icon in PicSmall and PicLarge; CmdChange writes an icon of the user's choice into the
  // selected folder's desktop.ini at once, and CmdDefault takes it away again.
  void ConnectFolderPage();
  void FillTreeRoot();
  void FillDrives();
  void Tree_Expand(std::int32_t Node);
  void Tree_Click();
  void ChangeSelectedFolderIcon();
  void RestoreSelectedFolderIcon();
  void PicClose_Click();
  void PicMin_Click();
  void mnuShowHide_Click();
  void mnuExit_Click();
  // The tray icon's events, which the notification area sends as mouse moves on PicPopup with
  // the mouse message as X: a left double click shows the window, a right button's release pops
  // up FrmMenu's menu at the pointer; anything else does nothing.
  void PicPopup_MouseMove(std::int16_t Button, std::int16_t Shift, float X, float Y);
  void ShowFromTray();
  void PopupTrayMenu();
  // FrmMenu, made and loaded at the first right click on the icon and kept loaded and hidden.
  FrmMenu& TrayMenuForm();
  bool TrayMenuFormLoaded() const;

  // The highlight colour of a wallpaper command under the mouse.
  static constexpr std::uint32_t kHighlight = 0xC0762A;

 private:

  // Runs ResetHover, keeps the key and shows the picture, unless the key is already held.
  void Hover(const std::string& key, ui::PictureBox& box, std::int32_t picture);
  // The surfaces that only clear.
  void ClearHover(const std::string& key);

  std::unique_ptr<AdvRegistryAccess> reg_;
  std::shared_ptr<FrmMenu> mTrayMenu;
};

// The main window of the process; a failure when none is installed.
FrmMain& MainWindow();
// Makes `form` the main window for the life of the scope.
class MainWindowScope {
 public:
  explicit MainWindowScope(FrmMain& form);
  ~MainWindowScope();
  MainWindowScope(const MainWindowScope&) = delete;
  MainWindowScope& operator=(const MainWindowScope&) = delete;

 private:
  FrmMain* previous_;
};

}  // namespace quorvane
