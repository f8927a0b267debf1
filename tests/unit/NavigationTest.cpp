// The main window's pages, zones and hover pictures over the control model: which picture each
// control shows, and when pictures are loaded.
#include <gtest/gtest.h>

#include <string>

#include "base/Failure.h"
#include "core/FrmMain.h"
#include "platform/Service.h"
#include "platform/portable/PortableMessageBoxes.h"
#include "platform/portable/PortableResourcePictures.h"
#include "platform/portable/PortableWindowActions.h"

namespace quorvane {
namespace {

// A picture that tells its own number.
ui::Pixels Numbered(std::int32_t number) {
  return ui::Pixels{1, 1, {static_cast<std::uint32_t>(number)}};
}

std::int32_t NumberOf(const ui::PictureBox& box) {
  return box.Picture().Empty() ? 0 : static_cast<std::int32_t>(box.Picture().bgra[0]);
}

class NavigationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (std::int32_t n = 100; n <= 160; ++n) pictures_.Put(n, Numbered(n));
    // The folder tree as the load routine leaves it: its root at least.
    form_.Tree.Add("My Computer", 1, 1);
  }
  int Loads(std::int32_t n) const { return pictures_.Loads(n); }

  platform::portable::PortableResourcePictures pictures_;
  platform::portable::PortableWindowActions actions_;
  platform::portable::PortableMessageBoxes boxes_;
  platform::ScopedService<platform::ResourcePictures> s1_{pictures_};
  platform::ScopedService<platform::WindowActions> s2_{actions_};
  platform::ScopedService<platform::MessageBoxes> s3_{boxes_};
  FrmMain form_;
  MainWindowScope installed_{form_};
};

TEST_F(NavigationTest, EveryPageByItsCommand) {
  struct Row {
    std::int16_t index;
    ui::PictureBox* page;
    ui::PictureBox* frame;
    const char* title;
    bool change, reset, defaults, apply;
  };
  const Row rows[] = {
      {0, &form_.PBPelmoraMain, &form_.FrameCommands, "Pelmora", true, true, true, true},
      {1, &form_.PBFileSystem, &form_.FrameCommands, "File System", true, false, true, false},
      {2, &form_.PBAppearance, &form_.FrameCommands, "Appearance", false, false, true, true},
      {3, &form_.PBWallpaper, &form_.FrameWallpaper, "Wallpaper Manager", false, false, false,
       false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.title);
    form_.CmdMenu[static_cast<std::size_t>(row.index)].Click();
    for (std::size_t i = 0; i < 4; ++i) {
      EXPECT_EQ(form_.CmdMenu[i].Tag(), i == static_cast<std::size_t>(row.index) ? "Active" : "");
    }
    for (ui::PictureBox* page :
         {&form_.PBPelmoraMain, &form_.PBFileSystem, &form_.PBAppearance, &form_.PBWallpaper}) {
      EXPECT_EQ(page->Visible(), page == row.page) << page->Name();
    }
    EXPECT_EQ(row.page->Left(), 3200);
    EXPECT_EQ(row.page->Top(), 2040);
    EXPECT_EQ(row.page->Width(), 7695);
    EXPECT_EQ(row.page->Height(), 5535);
    EXPECT_TRUE(row.frame->Visible());
    EXPECT_EQ(row.frame->Top(), 7800);
    EXPECT_EQ(row.frame->Left(), 3240);
    EXPECT_EQ(form_.FrameCommands.Visible(), row.frame == &form_.FrameCommands);
    EXPECT_EQ(form_.LblCommandName.Caption(), row.title);
    EXPECT_EQ(form_.CmdChange.Enabled(), row.change);
    EXPECT_EQ(form_.CmdReset.Enabled(), row.reset);
    EXPECT_EQ(form_.CmdDefault.Enabled(), row.defaults);
    EXPECT_EQ(form_.CmdApply.Enabled(), row.apply);
  }
}

TEST_F(NavigationTest, TheAppearancePageSelectsAndOpensTheFolderTreesFirstNode) {
  form_.Tree.Add("Local Disk (C:)", 2, 2, "", 1);
  form_.CmdMenu[1].Click();
  EXPECT_EQ(form_.Tree.SelectedItem(), 0);
  EXPECT_FALSE(form_.Tree.Item(1).Expanded);
  form_.CmdMenu[2].Click();
  EXPECT_EQ(form_.Tree.SelectedItem(), 1);
  EXPECT_TRUE(form_.Tree.Item(1).Expanded);
}

TEST_F(NavigationTest, TheAppearancePageFailsOnAnEmptyFolderTreeAfterShowingItself) {
  form_.Tree.Clear();
  try {
    form_.CmdMenu[2].Click();
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::InvalidProcedureCall);
  }
  EXPECT_TRUE(form_.PBAppearance.Visible());
  EXPECT_EQ(form_.Tree.SelectedItem(), 0);
}

TEST_F(NavigationTest, TheTextsLetterForLetter) {
  form_.CmdMenu[1].Click();
  EXPECT_EQ(form_.LblCommandDesc.Caption(), "Changes folder icons with just a few clicks");
  EXPECT_EQ(form_.LblDescribtion.Caption(),
            "Click to change the icons of Folders \r\n\r\nSelect icon in the box and then click on "
            "'Change' to select a new icon for the selected object.");
  form_.CmdMenu[3].Click();
  EXPECT_EQ(form_.LblDescribtion.Caption(),
            "Wallpaper Manager lets you set the time interval at which your desktop wallpaper "
            "will be changed automatically from your collections. \r\n\r\n Click 'Wallpaper "
            "Settings' to Add or Remove Collection");
  form_.CmdMenu[2].Click();
  EXPECT_EQ(form_.LblCommandDesc.Caption(), "Icon sizes and spacing");
}

TEST_F(NavigationTest, ThePageTitleKeepsItsLargerFaceOnEveryPageAndOtherCaptionsArePlain) {
  for (std::size_t element : {1u, 2u, 3u, 0u}) {
    form_.CmdMenu[element].Click();
    EXPECT_EQ(form_.LblCommandName.FontSize(), 14);
    EXPECT_TRUE(form_.LblCommandName.FontBold());
  }
  for (const ui::Label* label : {&form_.LblDescribtion, &form_.Label4, &form_.Label14,
                                 &form_.LblIconCat, &form_.CmdWallpaperControl[0]}) {
    EXPECT_EQ(label->FontSize(), 8) << label->Name();
    EXPECT_FALSE(label->FontBold()) << label->Name();
  }
  // The title's box ends before the top icons begin, so the two never overlap.
  EXPECT_LE(form_.LblCommandName.Left() + form_.LblCommandName.Width(), form_.imgTop[0].Left());
}

TEST_F(NavigationTest, ResetHoverShowsTheRestingPictures) {
  form_.CmdMenu[0].Click();
  EXPECT_EQ(NumberOf(form_.CmdMenu[0]), 122);
  EXPECT_EQ(NumberOf(form_.CmdMenu[1]), 117);
  EXPECT_EQ(NumberOf(form_.CmdMenu[2]), 102);
  EXPECT_EQ(NumberOf(form_.CmdMenu[3]), 127);
  EXPECT_EQ(NumberOf(form_.CmdApply), 107);
  EXPECT_EQ(NumberOf(form_.CmdChange), 110);
  EXPECT_EQ(NumberOf(form_.PicClose), 142);
  EXPECT_EQ(NumberOf(form_.PicMin), 146);
  EXPECT_EQ(NumberOf(form_.CmdSettings), 134);
  form_.CmdMenu[1].Click();
  EXPECT_EQ(NumberOf(form_.CmdMenu[1]), 119);
  EXPECT_EQ(NumberOf(form_.CmdApply), 105);  // disabled on this page
  EXPECT_EQ(NumberOf(form_.CmdReset), 123);
  // Its hover picture shows all the same.
  form_.CmdApply.MouseMove(0, 0, 1, 1);
  EXPECT_EQ(NumberOf(form_.CmdApply), 106);
}

TEST_F(NavigationTest, MovingFromApplyToDefaultResetsOnceAndLoadsEachPictureOnce) {
  form_.CmdMenu[0].Click();
  form_.CmdApply.MouseMove(0, 0, 1, 1);
  EXPECT_EQ(form_.mHoverKey, "CmdApply");
  const int restsBefore = Loads(107);
  form_.CmdApply.MouseMove(0, 0, 2, 2);
  form_.CmdApply.MouseMove(0, 0, 3, 3);
  EXPECT_EQ(Loads(106), 1);  // not reloaded while the mouse stays on it
  form_.CmdDefault.MouseMove(0, 0, 1, 1);
  EXPECT_EQ(form_.mHoverKey, "Cmddefault");
  EXPECT_EQ(NumberOf(form_.CmdDefault), 113);
  EXPECT_EQ(NumberOf(form_.CmdApply), 107);
  EXPECT_EQ(Loads(107), restsBefore + 1);  // one ResetHover
  EXPECT_EQ(Loads(113), 1);
}

TEST_F(NavigationTest, HoverKeysOfEveryControl) {
  struct Row {
    ui::PictureBox* box;
    const char* key;
    std::int32_t hover;
  };
  const Row rows[] = {
      {&form_.CmdChange, "CmdChange", 109}, {&form_.CmdReset, "CmdReset", 124},
      {&form_.CmdDefault, "Cmddefault", 113}, {&form_.CmdApply, "CmdApply", 106},
      {&form_.CmdSetAsWallpaper, "CmdSetAsWallpaper", 135},
      {&form_.CmdSettings, "CmdSettings", 140}, {&form_.CmdSlideShow, "CmdSlideShow", 137},
      {&form_.PicClose, "PicClose", 143}, {&form_.PicMin, "PicMin", 147},
      {&form_.CmdMenu[0], "Pelmora", 121}, {&form_.CmdMenu[1], "FileSystem", 118},
      {&form_.CmdMenu[2], "Appearance", 103}, {&form_.CmdMenu[3], "Wallpaper", 128},
  };
  for (const Row& row : rows) {
    row.box->MouseMove(0, 0, 1, 1);
    EXPECT_EQ(form_.mHoverKey, row.key);
    EXPECT_EQ(NumberOf(*row.box), row.hover) << row.key;
  }
}

TEST_F(NavigationTest, SurfacesThatOnlyClear) {
  form_.CmdApply.MouseMove(0, 0, 1, 1);
  form_.FrameCommands.MouseMove(0, 0, 1, 1);
  EXPECT_EQ(form_.mHoverKey, "FrameCommands");
  EXPECT_EQ(NumberOf(form_.CmdApply), 107);  // back at rest: enabled, as designed
  form_.FrameWallpaper.MouseMove(0, 0, 1, 1);
  EXPECT_EQ(form_.mHoverKey, "FrameCommands");
  form_.Form_MouseMove(0, 0, 1, 1);
  EXPECT_EQ(form_.mHoverKey, "Form");
}

TEST_F(NavigationTest, WallpaperCommandsHighlightUntilThePageTakesItBack) {
  form_.CmdWallpaperControl[1].MouseMove(0, 0, 1, 1);
  EXPECT_EQ(form_.mHoverKey, "IconChange");
  EXPECT_TRUE(form_.CmdWallpaperControl[1].FontUnderline());
  EXPECT_EQ(form_.CmdWallpaperControl[1].ForeColor(), FrmMain::kHighlight);
  // The key is held: a move onto another element changes nothing.
  form_.CmdWallpaperControl[2].MouseMove(0, 0, 1, 1);
  EXPECT_FALSE(form_.CmdWallpaperControl[2].FontUnderline());
  const int rests = Loads(142);
  form_.PBWallpaper.MouseMove(0, 0, 1, 1);
  EXPECT_EQ(form_.mHoverKey, "Form");
  EXPECT_FALSE(form_.CmdWallpaperControl[1].FontUnderline());
  EXPECT_EQ(form_.CmdWallpaperControl[1].ForeColor(), 0u);
  EXPECT_EQ(Loads(142), rests);  // no ResetHover here
}

TEST_F(NavigationTest, TopIconsRepeatTheirWorkOnEveryMove) {
  form_.imgTopRow[0].Picture(Numbered(1));
  form_.imgTopRow[1].Picture(Numbered(2));
  form_.imgTopRowHover[0].Picture(Numbered(3));
  form_.imgTopRowHover[1].Picture(Numbered(4));
  form_.imgTop[1].MouseMove(0, 0, 1, 1);
  EXPECT_EQ(form_.mHoverKey, "TopIconsX");
  EXPECT_EQ(NumberOf(form_.imgTop[0]), 3);
  EXPECT_EQ(NumberOf(form_.imgTop[1]), 2);
  // At rest the top icons take their pictures from the hover row.
  form_.ResetHover();
  EXPECT_EQ(NumberOf(form_.imgTop[1]), 4);
  form_.imgTop[1].MouseMove(0, 0, 1, 1);
  EXPECT_EQ(NumberOf(form_.imgTop[1]), 2);
}

TEST_F(NavigationTest, HelpOpensTheFileBesideTheProgramAndAboutShowsABox) {
  form_.hWnd = 0x1234;
  actions_.programFolder = "C:\\Apps\\Quorvane";
  form_.imgTop[1].Click();
  ASSERT_EQ(actions_.calls.size(), 1u);
  EXPECT_EQ(actions_.calls[0],
            "ShellExecuteA open C:\\Apps\\Quorvane\\orlavine.chm  C:\\Apps\\Quorvane 1");
  EXPECT_TRUE(boxes_.Boxes().empty());  // a missing help file does nothing visible
  form_.imgTop[0].Click();
  EXPECT_EQ(boxes_.Boxes().size(), 1u);
}

TEST_F(NavigationTest, APressOnTheBackgroundDragsTheWindow) {
  form_.hWnd = 77;
  form_.Form_MouseDown(1, 0, 10, 10);
  EXPECT_EQ(actions_.calls, (std::vector<std::string>{"ReleaseCapture", "SendMessageA 77 161 2 0"}));
}

TEST_F(NavigationTest, TheCaptionBesideTheShortcutBoxFlipsIt) {
  int clicks = 0;
  form_.ChkShowShortCut.Click = [&] { ++clicks; };
  form_.Label14.Click();
  EXPECT_EQ(form_.ChkShowShortCut.Value(), 1);
  form_.Label14.Click();
  EXPECT_EQ(form_.ChkShowShortCut.Value(), 0);
  EXPECT_EQ(clicks, 2);  // the box's own routine does the rest
}

}  // namespace
}  // namespace quorvane

namespace quorvane {
namespace {

// The zone strip counts only moves strictly inside 15 and 340, and zones with both ends open.
TEST_F(NavigationTest, ZoneBoundsAreOpenAtBothEnds) {
  const auto clickAt = [&](float x, float y) {
    form_.LblIconCat.Caption("none");
    form_.CmdWindow.MouseMove(0, 0, x, y);
    form_.CmdWindow.Click();
    return form_.LblIconCat.Caption();
  };
  EXPECT_EQ(clickAt(100, 15), "none");
  EXPECT_EQ(clickAt(100, 16), "Desktop");
  EXPECT_EQ(clickAt(100, 339), "Desktop");
  EXPECT_EQ(clickAt(100, 340), "none");
  EXPECT_EQ(clickAt(15, 100), "none");
  EXPECT_EQ(clickAt(16, 100), "Desktop");
  EXPECT_EQ(clickAt(1484, 100), "Desktop");
  EXPECT_EQ(clickAt(1485, 100), "none");
  EXPECT_EQ(clickAt(1600, 100), "none");
  EXPECT_EQ(clickAt(1701, 100), "Start Menu");
  EXPECT_EQ(clickAt(3301, 100), "File Type");
  EXPECT_EQ(clickAt(6699, 100), "Control Panel");
  EXPECT_EQ(clickAt(6700, 100), "none");
  // A click in a gap hides every tree and leaves the strip's picture as it was.
  clickAt(2000, 100);
  const std::int32_t picture = NumberOf(form_.CmdWindow);
  clickAt(1600, 100);
  EXPECT_EQ(NumberOf(form_.CmdWindow), picture);
  for (const ui::TreeView* tree : {&form_.TvDesktop, &form_.TvStartMenu, &form_.TvExplore,
                                   &form_.TvFileType, &form_.TvControlPanel}) {
    EXPECT_FALSE(tree->Visible()) << tree->Name();
  }
  EXPECT_EQ(picture, 133);
}

}  // namespace
}  // namespace quorvane
