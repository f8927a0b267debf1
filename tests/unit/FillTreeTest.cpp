// The five catalogue trees as FillCatalogueTrees leaves them, on both systems.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "core/FrmMain.h"
#include "icons/FillTree.h"

namespace quorvane {
namespace {

using Nodes = std::vector<std::pair<std::string, int>>;

Nodes Contents(const ui::TreeView& tree) {
  Nodes nodes;
  for (std::int32_t i = 1; i <= tree.Count(); ++i) {
    const ui::Node& n = tree.Item(i);
    EXPECT_EQ(n.Image, n.SelectedImage) << n.Text;
    EXPECT_EQ(std::get<std::int32_t>(n.Tag), n.Image) << n.Text;
    EXPECT_EQ(n.Parent, 0) << n.Text;
    EXPECT_EQ(n.Key, "") << n.Text;
    nodes.emplace_back(n.Text, n.Image);
  }
  return nodes;
}

class FillTreeTest : public ::testing::Test {
 protected:
  void Fill(const std::string& osName) {
    form_.OSName = osName;
    FillCatalogueTrees();
  }
  FrmMain form_;
  MainWindowScope installed_{form_};
};

TEST_F(FillTreeTest, OnVista) {
  Fill("Windows Vista");
  EXPECT_EQ(Contents(form_.TvDesktop),
            (Nodes{{"My Computer", 2}, {"My Network Places", 4}, {"Recycle Bin (Empty)", 5},
                   {"Recycle Bin (Full)", 6}, {"Briefcase", 7}}));
  EXPECT_EQ(Contents(form_.TvStartMenu),
            (Nodes{{"EMail", 8}, {"Windows Security", 9}, {"Help and Support", 10}, {"Search", 11},
                   {"Set Program Access and Defaults", 13}}));
  EXPECT_EQ(Contents(form_.TvControlPanel),
            (Nodes{{"Control Panel", 57}, {"Taskbar and Start Menu", 58}, {"Folder Options", 59},
                   {"Administrative Tools", 60}, {"Network Connections", 61}, {"Fonts", 62},
                   {"Printers and Faxes", 64}, {"Scheduled Tasks", 65}}));
  // Numbers follow the image, not the position.
  EXPECT_EQ(std::get<std::int32_t>(form_.TvDesktop.Item(5).Tag), 7);
}

TEST_F(FillTreeTest, OnOtherSystems) {
  Fill("Windows XP");
  EXPECT_EQ(Contents(form_.TvDesktop),
            (Nodes{{"My Computer", 2}, {"Internet Explorer", 3}, {"My Network Places", 4},
                   {"Recycle Bin (Empty)", 5}, {"Recycle Bin (Full)", 6}, {"Briefcase", 7}}));
  EXPECT_EQ(Contents(form_.TvStartMenu),
            (Nodes{{"EMail", 8}, {"Windows Security", 9}, {"Help and Support", 10}, {"Search", 11},
                   {"Run...", 12}, {"Set Program Access and Defaults", 13}}));
  EXPECT_EQ(form_.TvControlPanel.Count(), 9);
  EXPECT_EQ(form_.TvControlPanel.Item(7).Text, "Scanners and Cameras");
  EXPECT_EQ(form_.TvControlPanel.Item(7).Image, 63);
}

TEST_F(FillTreeTest, TheSameTreesOnEverySystem) {
  for (const char* os : {"Windows Vista", "Newer than Windows Vista"}) {
    FrmMain form;
    MainWindowScope installed(form);
    form.OSName = os;
    FillCatalogueTrees();
    const Nodes explore = Contents(form.TvExplore);
    ASSERT_EQ(explore.size(), 16u);
    EXPECT_EQ(explore.front(), (std::pair<std::string, int>{"Floppy (3.5'')", 15}));
    EXPECT_EQ(explore.back(), (std::pair<std::string, int>{"Search Results", 30}));
    const Nodes files = Contents(form.TvFileType);
    ASSERT_EQ(files.size(), 26u);
    for (std::size_t i = 0; i < files.size(); ++i) EXPECT_EQ(files[i].second, 31 + static_cast<int>(i));
    EXPECT_EQ(files.front().first, "Bitmap Image Files (*.bmp)");
    EXPECT_EQ(files[13].first, "Word Documents (*.doc)");
    EXPECT_EQ(files.back().first, "Shortcut Overlay");
  }
}

TEST_F(FillTreeTest, NodeOneOfEachTreeIsSelected) {
  Fill("Windows XP");
  for (const ui::TreeView* tree : {&form_.TvDesktop, &form_.TvStartMenu, &form_.TvExplore,
                                   &form_.TvFileType, &form_.TvControlPanel}) {
    EXPECT_EQ(tree->SelectedItem(), 1) << tree->Name();
  }
  // Which tree shows is not decided here.
  EXPECT_TRUE(form_.TvDesktop.Visible());
  EXPECT_TRUE(form_.TvExplore.Visible());
}

TEST_F(FillTreeTest, ASecondRunWithoutEmptyingAddsEveryNodeTwice) {
  Fill("Windows XP");
  FillCatalogueTrees();
  EXPECT_EQ(form_.TvDesktop.Count(), 12);
  EXPECT_EQ(form_.TvDesktop.Item(7).Text, "My Computer");
}

TEST_F(FillTreeTest, RowsWithoutANodeAnywhere) {
  Fill("Windows Vista");
  for (const ui::TreeView* tree : {&form_.TvDesktop, &form_.TvStartMenu, &form_.TvExplore,
                                   &form_.TvFileType, &form_.TvControlPanel}) {
    for (std::int32_t i = 1; i <= tree->Count(); ++i) {
      const std::string& text = tree->Item(i).Text;
      EXPECT_NE(text, "Desktop");
      EXPECT_NE(text, "Program Group");
      EXPECT_NE(text, "Internet Explorer");
      EXPECT_NE(text, "Run...");
      EXPECT_NE(text, "Scanners and Cameras");
    }
  }
}

}  // namespace
}  // namespace quorvane
