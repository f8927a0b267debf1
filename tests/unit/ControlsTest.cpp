// The control model on its own: what the forms read back is what they set, and the handlers and
// observers run when the platform's controls would run theirs.
#include <gtest/gtest.h>

#include <vector>

#include "base/Failure.h"
#include "ui/Controls.h"
#include "ui/Form.h"

namespace quorvane::ui {
namespace {

class Recorder : public ControlObserver {
 public:
  void Changed(Control& control, Property property) override {
    seen.emplace_back(control.Name(), property);
  }
  std::vector<std::pair<std::string, Property>> seen;
};

Pixels Solid(std::int32_t w, std::int32_t h, std::uint32_t colour) {
  return Pixels{w, h, std::vector<std::uint32_t>(static_cast<std::size_t>(w * h), colour)};
}

TEST(TreeViewTest, NodesCountFromOneInTheOrderAdded) {
  TreeView tree("TvDesktop");
  EXPECT_EQ(tree.Add("My Computer", 2, 2), 1);
  EXPECT_EQ(tree.Add("Briefcase", 7, 7), 2);
  EXPECT_EQ(tree.Count(), 2);
  EXPECT_EQ(tree.Item(2).Text, "Briefcase");
  EXPECT_EQ(tree.Item(2).Image, 7);
  EXPECT_EQ(tree.Item(1).Parent, 0);
  EXPECT_THROW(tree.Item(0), Failure);
  EXPECT_THROW(tree.Item(3), Failure);
}

TEST(TreeViewTest, OneNodeIsSelectedAtATime) {
  TreeView tree("Tree");
  tree.Add("a", 1, 1);
  tree.Add("b", 1, 1);
  EXPECT_EQ(tree.SelectedItem(), 0);
  tree.Select(2);
  EXPECT_EQ(tree.SelectedItem(), 2);
  tree.Select(1);
  EXPECT_EQ(tree.SelectedItem(), 1);
  EXPECT_THROW(tree.Select(5), Failure);
  tree.Clear();
  EXPECT_EQ(tree.SelectedItem(), 0);
  EXPECT_EQ(tree.Count(), 0);
}

TEST(TreeViewTest, KeysAreUniqueAndParentsMustExist) {
  TreeView tree("Tree");
  tree.Add("root", 1, 1, "Start Icon");
  EXPECT_THROW(tree.Add("again", 1, 1, "Start Icon"), Failure);
  EXPECT_EQ(tree.Add("child", 1, 1, "c", 1), 2);
  EXPECT_EQ(tree.Item(2).Parent, 1);
  EXPECT_THROW(tree.Add("orphan", 1, 1, "o", 9), Failure);
}

TEST(TreeViewTest, RemovingANodeTakesItsDescendantsAndMovesTheLaterNodesUp) {
  TreeView tree("Tree");
  tree.Add("root", 1, 1);                 // 1
  tree.Add("a", 1, 1, "", 1);             // 2
  tree.Add("b", 1, 1, "", 1);             // 3
  tree.Add("a1", 1, 1, "", 2);            // 4
  tree.Add("b1", 1, 1, "", 3);            // 5
  tree.Add("a1x", 1, 1, "", 4);           // 6
  tree.Select(5);
  tree.Remove(2);
  EXPECT_EQ(tree.Removed(), (std::vector<std::int32_t>{2, 4, 6}));
  ASSERT_EQ(tree.Count(), 3);
  EXPECT_EQ(tree.Item(2).Text, "b");
  EXPECT_EQ(tree.Item(3).Text, "b1");
  EXPECT_EQ(tree.Item(3).Parent, 2);
  EXPECT_EQ(tree.SelectedItem(), 3);
  tree.Remove(3);
  EXPECT_EQ(tree.SelectedItem(), 0);
  EXPECT_THROW(tree.Remove(7), Failure);
  tree.Clear();
  EXPECT_TRUE(tree.Removed().empty());
}

TEST(TreeViewTest, ChildrenShowAsAddedOrByTextUnderASortedNode) {
  TreeView tree("Tree");
  tree.Add("root", 1, 1);
  tree.Add("zeta", 1, 1, "", 1);
  tree.Add("Alpha", 1, 1, "", 1);
  tree.Add("beta", 1, 1, "", 1);
  tree.Add("top", 1, 1);
  EXPECT_EQ(tree.Children(0), (std::vector<std::int32_t>{1, 5}));
  EXPECT_EQ(tree.Children(1), (std::vector<std::int32_t>{2, 3, 4}));
  EXPECT_EQ(tree.FirstChild(1), 2);
  tree.Item(1).Sorted = true;
  EXPECT_EQ(tree.Children(1), (std::vector<std::int32_t>{3, 4, 2}));
  EXPECT_EQ(tree.FirstChild(1), 3);
  EXPECT_EQ(tree.FirstChild(2), 0);
  EXPECT_EQ(tree.FullPath(4), "root\\beta");
  EXPECT_EQ(tree.FullPath(5), "top");
  EXPECT_THROW(tree.FullPath(9), Failure);
}

TEST(FocusTest, SetFocusMakesTheControlActiveAndTellsTheBinding) {
  Form form("FrmTest");
  TreeView tree(form, "TvTest");
  PictureBox box(form, "PicTest");
  Recorder recorder;
  tree.Observe(&recorder);
  EXPECT_EQ(form.ActiveControl(), nullptr);
  tree.SetFocus();
  EXPECT_EQ(form.ActiveControl(), &tree);
  ASSERT_EQ(recorder.seen.size(), 1u);
  EXPECT_EQ(recorder.seen[0].second, Property::Focus);
  box.SetFocus();
  EXPECT_EQ(form.ActiveControl(), &box);
}

TEST(FocusTest, AControlThatGoesIsNoLongerActive) {
  Form form("FrmTest");
  {
    TreeView tree(form, "TvTest");
    tree.SetFocus();
    EXPECT_EQ(form.ActiveControl(), &tree);
  }
  EXPECT_EQ(form.ActiveControl(), nullptr);
}

TEST(ImageListTest, NumbersFromOneAndTheFirstImageSetsTheSize) {
  ImageList list("ILicons");
  EXPECT_EQ(list.Add("", Solid(32, 32, 0xFF0000FFu)), 1);
  EXPECT_EQ(list.Add("Icon5", Solid(16, 16, 0xFF00FF00u)), 2);
  EXPECT_EQ(list.ImageWidth, 32);
  EXPECT_EQ(list.ImageHeight, 32);
  EXPECT_EQ(list.Item(2).key, "Icon5");
  EXPECT_EQ(list.Item(1).picture, Solid(32, 32, 0xFF0000FFu));
  EXPECT_THROW(list.Item(3), Failure);
  list.Clear();
  EXPECT_EQ(list.Count(), 0);
}

TEST(CheckBoxTest, ANewValueRunsClickAndTheSameValueDoesNot) {
  CheckBox box("ChkShowShortCut");
  int clicks = 0;
  box.Click = [&] { ++clicks; };
  box.Value(0);
  EXPECT_EQ(clicks, 0);
  box.Value(1);
  EXPECT_EQ(clicks, 1);
  box.Value(1);
  EXPECT_EQ(clicks, 1);
}

TEST(ValueControlTest, ANewValueRunsChange) {
  ValueControl slider("Slider");
  int changes = 0;
  slider.Change = [&] { ++changes; };
  slider.Value(3);
  slider.Value(3);
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(slider.Value(), 3);
}

TEST(ControlTest, ObserverHearsEveryChange) {
  Label label("LblIconCat");
  Recorder recorder;
  label.Observe(&recorder);
  label.Caption("Desktop");
  label.Visible(false);
  label.Left(30);
  label.Tag("Active");
  EXPECT_EQ(recorder.seen.size(), 4u);
  EXPECT_EQ(recorder.seen[0].second, Property::Caption);
  EXPECT_EQ(recorder.seen[1].second, Property::Visible);
  EXPECT_EQ(label.Caption(), "Desktop");
  EXPECT_FALSE(label.Visible());
}

TEST(LabelTest, ItsFaceIsPlainEightPointsUntilSetAndEachChangeRedrawsTheCaption) {
  Label label("LblCommandName");
  EXPECT_EQ(label.FontSize(), 8);
  EXPECT_FALSE(label.FontBold());
  EXPECT_FALSE(label.FontUnderline());
  EXPECT_EQ(label.ForeColor(), 0u);
  Recorder recorder;
  label.Observe(&recorder);
  label.FontSize(14);
  label.FontBold(true);
  label.FontUnderline(true);
  label.ForeColor(0xFF0000);
  ASSERT_EQ(recorder.seen.size(), 4u);
  for (const auto& [name, property] : recorder.seen) EXPECT_EQ(property, Property::Caption);
  EXPECT_EQ(label.FontSize(), 14);
  EXPECT_TRUE(label.FontBold());
}

TEST(ControlArrayTest, ElementsKnowTheirNameAndIndex) {
  ControlArray<PictureBox, 4> menu("CmdMenu");
  EXPECT_EQ(menu[3].Name(), "CmdMenu");
  EXPECT_EQ(menu[3].Index(), 3);
  EXPECT_THROW(menu[4], std::out_of_range);
}

TEST(PictureBoxTest, WithoutASurfaceThereIsNothingToDrawOn) {
  PictureBox box("sIcon");
  EXPECT_EQ(box.hDC(), 0u);
  EXPECT_TRUE(box.Image().Empty());
  box.Picture(Solid(2, 2, 0xFFFFFFFFu));
  EXPECT_EQ(box.Picture().width, 2);
}

}  // namespace
}  // namespace quorvane::ui
