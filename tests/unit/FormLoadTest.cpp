// The load routine of the main window over the portable services: its steps in their order, the
// two systems, and its two ways out.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "PortableServices.h"
#include "ScratchFiles.h"
#include "platform/MemorySurface.h"

namespace quorvane {
namespace {

constexpr char kMyComputer[] =
    "HKEY_CLASSES_ROOT\\CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\DefaultIcon";
constexpr char kMetrics[] = "HKEY_CURRENT_USER\\Control Panel\\Desktop\\WindowMetrics";
constexpr char kShellIcons[] =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons";

class FormLoadTest : public ::testing::Test {
 protected:
  void SetUp() override {
    services_.PrepareLoad(root_.Path());
    testing::PreviewsInMemory(form_);
  }

  void Put(const std::string& key, const std::string& name, const std::string& value) {
    AdvRegistryAccess reg(store_);
    ASSERT_NE(reg.WriteString(key, name, value), 0);
  }
  std::string Log() { return testing::ReadFile(core::gDataFolder + core::kErrorLogName); }

  testing::ScratchFolder root_{"load"};
  testing::PortableServices services_;
  platform::portable::MemoryRegistry& store_ = services_.store;
  platform::portable::PortableEventLoop& events_ = services_.events;
  platform::portable::PortableIcons& icons_ = services_.icons;
  platform::portable::PortableSystemInfo& system_ = services_.system;
  platform::portable::PortableTray& tray_ = services_.tray;
  platform::portable::PortableMessageBoxes& boxes_ = services_.boxes;
  platform::portable::PortableNotification& notification_ = services_.notification;
  platform::portable::PortableResourcePictures& pictures_ = services_.pictures;
  platform::portable::PortableApplication& application_ = services_.application;
  platform::portable::RecordingShellRequests& shell_ = services_.shell;
  FrmMain form_;
  MainWindowScope installed_{form_};
};

TEST_F(FormLoadTest, OnVistaEveryStepRunsInItsOrder) {
  Put(kMetrics, "Shell Icon Size", "48");
  Put(kMetrics, "IconSpacing", "-1125");
  form_.Form_Load();

  // The tray icon is removed before it is added.
  ASSERT_GE(tray_.Calls().size(), 2u);
  EXPECT_EQ(tray_.Calls()[0].message, platform::tray::kDelete);
  EXPECT_EQ(tray_.Calls()[1].message, platform::tray::kAdd);
  EXPECT_EQ(tray_.Icons().size(), 1u);
  EXPECT_EQ(notification_.Options(),
            (std::vector<std::pair<std::int32_t, std::int32_t>>{
                {0x68030064, 4}, {0x68030062, 45}, {0x68030055, 0}, {0x6803005A, 6}}));

  EXPECT_EQ(form_.OSName, "Windows Vista");
  EXPECT_EQ(core::gDataFolder.substr(core::gDataFolder.size() - 27),
            "Talvenor\\Mirefold\\Quorvane\\");
  EXPECT_EQ(std::filesystem::file_size(testing::Host(core::gDataFolder + "Empty.ico")), 768u);
  EXPECT_EQ(AdvRegistryAccess(store_).KeyExists(core::ProductKey), kTrue);

  EXPECT_EQ(form_.ILicons.Count(), 65);
  EXPECT_EQ(form_.TvDesktop.Count(), 5);
  EXPECT_EQ(form_.TvControlPanel.Count(), 8);

  // The first zone and the first page.
  EXPECT_EQ(form_.CategoryClickX, 30);
  EXPECT_EQ(form_.CategoryClickY, 30);
  EXPECT_TRUE(form_.TvDesktop.Visible());
  EXPECT_FALSE(form_.TvStartMenu.Visible());
  EXPECT_FALSE(form_.TvExplore.Visible());
  EXPECT_EQ(form_.LblIconCat.Caption(), "Desktop");
  EXPECT_TRUE(form_.PBPelmoraMain.Visible());
  EXPECT_FALSE(form_.PBWallpaper.Visible());
  EXPECT_EQ(form_.CmdMenu[0].Tag(), "Active");
  EXPECT_EQ(form_.LblCommandName.Caption(), "Pelmora");
  EXPECT_EQ(form_.LblCommandDesc.Caption(), "Changes icons with just a few clicks");
  EXPECT_EQ(pictures_.Loads(131), 1);  // the Desktop zone's picture

  // The appearance controls, blocked on this system.
  EXPECT_TRUE(form_.LblAppearanceMsg.Visible());
  EXPECT_FALSE(form_.TxtHorizontal.Enabled());
  EXPECT_FALSE(form_.Slider.Enabled());
  EXPECT_EQ(form_.mIconSize, 48);
  EXPECT_EQ(form_.Slider.Value(), 3);
  EXPECT_EQ(form_.TxtHorizontal.Value(), 43);
  EXPECT_EQ(form_.TxtVertical.Value(), 43);  // the default -1125
  EXPECT_EQ(form_.ChkShowShortCut.Value(), 1);

  // The Appearance command is hidden and the last command takes its place.
  EXPECT_FALSE(form_.CmdMenu[2].Visible());
  EXPECT_EQ(form_.CmdMenu[3].Top(), form_.CmdMenu[2].Top());
  EXPECT_GE(events_.Yields(), 2);
  EXPECT_TRUE(boxes_.Boxes().empty());
}

TEST_F(FormLoadTest, OnXpNothingIsBlocked) {
  system_.SetVersion(2, 5, 1);
  Put(kShellIcons, "29", "C:\\data\\Empty.ico,0");
  form_.Form_Load();
  EXPECT_EQ(form_.OSName, "Windows XP");
  EXPECT_EQ(form_.TvDesktop.Count(), 6);
  EXPECT_FALSE(form_.LblAppearanceMsg.Visible());
  EXPECT_TRUE(form_.TxtHorizontal.Enabled());
  EXPECT_TRUE(form_.CmdMenu[2].Visible());
  EXPECT_EQ(form_.Slider.Value(), 2);                       // the default "32"
  EXPECT_EQ(form_.TxtHorizontal.Value(), (1710 - 495) / 15 + 1);
  EXPECT_EQ(form_.ChkShowShortCut.Value(), 0);              // the program's blank overlay
}

TEST_F(FormLoadTest, ARowThatFailsEndsTheRoutineThroughItsErrorPath) {
  Put(kMyComputer, "", "explorer.exe");
  form_.Form_Load();
  EXPECT_EQ(form_.TvDesktop.Count(), 0);
  EXPECT_FALSE(form_.PBPelmoraMain.Visible());
  EXPECT_EQ(form_.IconRecords[28].Name, "");
  const std::string log = Log();
  EXPECT_NE(log.find("FrmMain"), std::string::npos) << log;
  EXPECT_NE(log.find("Form_Load"), std::string::npos) << log;
  // The split without a second piece is the subscript failure.
  EXPECT_NE(log.find("error 9\tSubscript out of range"), std::string::npos) << log;
  EXPECT_TRUE(boxes_.Boxes().empty());
}

TEST_F(FormLoadTest, WithoutADataFolderOnlyTheMessageShows) {
  // A file stands where the program's first folder should be made.
  std::ofstream((root_ / "appdata" / "Talvenor").string()) << "x";
  form_.Form_Load();
  ASSERT_EQ(boxes_.Boxes().size(), 1u);
  EXPECT_EQ(boxes_.Boxes()[0].prompt,
            "Unable to create default folder. Please run the program with Admin privilege");
  EXPECT_EQ(form_.ILicons.Count(), 0);
  EXPECT_EQ(form_.TvDesktop.Count(), 0);
  EXPECT_FALSE(form_.PBPelmoraMain.Visible());
}

TEST_F(FormLoadTest, ALoadAfterEmptyingRebuildsTheSameWindowAndKeepsOneTrayIcon) {
  form_.Form_Load();
  for (ui::TreeView* t : {&form_.TvDesktop, &form_.TvStartMenu, &form_.TvExplore,
                          &form_.TvFileType, &form_.TvControlPanel}) {
    t->Clear();
  }
  form_.ILicons.Clear();
  form_.IconRecords = {};
  form_.Form_Load();
  EXPECT_EQ(form_.ILicons.Count(), 65);
  EXPECT_EQ(form_.TvDesktop.Count(), 5);
  EXPECT_EQ(tray_.Icons().size(), 1u);
}

}  // namespace
}  // namespace quorvane

namespace quorvane {
namespace {

// The controls' events reach the form's routines.
TEST_F(FormLoadTest, ZonesAndTreesAnswerTheirEvents) {
  form_.Form_Load();
  form_.CmdWindow.MouseMove(0, 0, 2000.4f, 100.0f);
  EXPECT_EQ(form_.CategoryClickX, 2000);
  form_.CmdWindow.Click();
  EXPECT_TRUE(form_.TvStartMenu.Visible());
  EXPECT_FALSE(form_.TvDesktop.Visible());
  EXPECT_EQ(form_.LblIconCat.Caption(), "Start Menu");
  // Between two zones nothing shows.
  form_.CmdWindow.MouseMove(0, 0, 1600.0f, 100.0f);
  form_.CmdWindow.Click();
  EXPECT_FALSE(form_.TvStartMenu.Visible());
  EXPECT_FALSE(form_.TvDesktop.Visible());
  // Above and below the strip nothing changes.
  form_.CmdWindow.MouseMove(0, 0, 100.0f, 15.0f);
  form_.CmdWindow.Click();
  EXPECT_EQ(form_.LblIconCat.Caption(), "Start Menu");
  form_.CmdWindow.MouseMove(0, 0, 100.0f, 16.0f);
  form_.CmdWindow.Click();
  EXPECT_EQ(form_.LblIconCat.Caption(), "Desktop");
  form_.CmdMenu[3].Click();
  EXPECT_TRUE(form_.PBWallpaper.Visible());
  EXPECT_EQ(form_.LblCommandName.Caption(), "Wallpaper Manager");
  EXPECT_TRUE(form_.FrameWallpaper.Visible());
  EXPECT_FALSE(form_.FrameCommands.Visible());
  EXPECT_FALSE(form_.CmdApply.Enabled());
}

TEST_F(FormLoadTest, ATreeClickPreviewsItsRowWithoutAddingAnImage) {
  form_.Form_Load();
  const std::int16_t images = form_.ILicons.Count();
  form_.TvDesktop.Select(3);
  form_.TvDesktop.Click();
  EXPECT_EQ(form_.ILicons.Count(), images);
  // The other trees let a failure end their routine: a row without a comma.
  form_.IconRecords[33].Current = "no comma";
  form_.TvStartMenu.Select(1);  // "EMail", row 33
  EXPECT_ANY_THROW(form_.TvStartMenu.Click());
  // TvDesktop passes over it.
  form_.IconRecords[27].Current = "";
  form_.TvDesktop.Select(1);
  EXPECT_NO_THROW(form_.TvDesktop.Click());
}

}  // namespace
}  // namespace quorvane
