// The slide show over the portable services, with real packed collections of real bitmaps in a
// data folder of its own: FrmMain's CmdSlideShow (the folder unpacked for exactly the time the
// window is open), the activation, the order of ShowPicture (the first picture seen is the one at
// index 1), a collection of one picture, Thumbs.db last and in the middle, the intervals with
// "Manually", CmdPrevious at 0, CmdNext, leaving by CmdFinish and Escape, the hover pictures, and
// a picture that can't be decoded reported at the top level while the show goes on. The drop-down
// list of the control model and the form's design properties of the layout are tested here too.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "core/Regimes.h"
#include "platform/FileSystem.h"
#include "platform/Service.h"
#include "ui/Layout.h"
#include "wallpaper/FrmSlideShow.h"
#include "wallpaper/MWallpaper.h"

#include "PortableServices.h"
#include "ScratchFiles.h"

namespace quorvane {
namespace {

namespace fs = std::filesystem;

using testing::Host;
using testing::ReadFile;

// The file system of the host, but listing a folder's files in an order the test gives: the
// names of `order` first, as they stand there, then any other by name. (The host's own order is
// whatever its directory gives, and the show follows the file system's order.)
class OrderedFiles final : public platform::FileSystem {
 public:
  OrderedFiles(platform::FileSystem& host, std::vector<std::string> order)
      : host_(host), order_(std::move(order)) {}

  bool FileExists(const std::string& p) override { return host_.FileExists(p); }
  bool FolderExists(const std::string& p) override { return host_.FolderExists(p); }
  bool ReadAll(const std::string& p, std::string& c) override { return host_.ReadAll(p, c); }
  bool WriteAll(const std::string& p, const std::string& c) override {
    return host_.WriteAll(p, c);
  }
  bool Append(const std::string& p, const std::string& c) override { return host_.Append(p, c); }
  bool CreateFolder(const std::string& p) override { return host_.CreateFolder(p); }
  bool RemoveFile(const std::string& p) override { return host_.RemoveFile(p); }
  bool ListFiles(const std::string& folder, std::vector<std::string>& names) override {
    ++lists_;
    if (!host_.ListFiles(folder, names)) return false;
    const auto rank = [&](const std::string& name) {
      const auto at = std::find(order_.begin(), order_.end(), name);
      return at == order_.end() ? order_.size() : static_cast<std::size_t>(at - order_.begin());
    };
    std::sort(names.begin(), names.end(), [&](const std::string& a, const std::string& b) {
      return rank(a) != rank(b) ? rank(a) < rank(b) : a < b;
    });
    return true;
  }
  bool RemoveFolderTree(const std::string& p) override { return host_.RemoveFolderTree(p); }
  bool RenameFile(const std::string& s, const std::string& t) override {
    return host_.RenameFile(s, t);
  }
  platform::Replacement ReplaceWhole(
      const std::string& p, const std::function<bool(platform::FileWriter&)>& w) override {
    return host_.ReplaceWhole(p, w);
  }
  platform::Replacement PutInPlace(const std::string& m, const std::string& p) override {
    return host_.PutInPlace(m, p);
  }

  int Lists() const { return lists_; }

 private:
  platform::FileSystem& host_;
  std::vector<std::string> order_;
  int lists_ = 0;
};

// Records what a control tells its binding.
class Changes final : public ui::ControlObserver {
 public:
  explicit Changes(std::vector<std::string>& log) : log_(log) {}
  void Changed(ui::Control& control, ui::Property property) override {
    const char* what = property == ui::Property::ZOrder  ? "ZOrder"
                       : property == ui::Property::Focus ? "Focus"
                       : property == ui::Property::Enabled ? "Enabled"
                                                           : nullptr;
    if (what != nullptr) log_.push_back(control.Name() + " " + what);
  }

 private:
  std::vector<std::string>& log_;
};

// A picture of one colour, with a mark of another at its top left, so that two of one size
// differ.
Pixels Plain(std::int32_t width, std::int32_t height, std::uint32_t colour) {
  Pixels picture{width, height, std::vector<std::uint32_t>(
                                    static_cast<std::size_t>(width) * height, colour)};
  picture.bgra[0] = 0xFF102030;
  return picture;
}

class SlideShowTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(scratch_ / "data");
    core::gDataFolder = (scratch_ / "data").string() + "\\";
    // The buttons' pictures: each number its own colour, 32 by 32.
    for (std::int32_t number = 151; number <= 156; ++number) {
      services_.pictures.Put(number, Plain(32, 32, 0xFF000000u | static_cast<std::uint32_t>(number)));
    }
  }

  // A bitmap file of that size, saved by the platform's own bitmap writer.
  std::string Bitmap(std::int32_t width, std::int32_t height, std::uint32_t colour) {
    return Bmp(Plain(width, height, colour));
  }
  std::string Bmp(const Pixels& picture) {
    const std::string path = (scratch_ / "made").string() + "/" + std::to_string(made_++) + ".bmp";
    fs::create_directories(scratch_ / "made");
    services_.decoded.SavePicture(picture, path);
    return ReadFile(path);
  }

  // Packs a collection from files of the given contents, and gives the file system the order of
  // `names` for the folder.
  void MakeCollection(const std::string& name,
                      const std::vector<std::pair<std::string, std::string>>& files) {
    std::vector<std::string> names;
    std::map<std::string, std::string> contents;
    for (const auto& [file, content] : files) {
      names.push_back(file);
      contents[file] = content;
    }
    order_ = names;
    ordered_ = std::make_unique<OrderedFiles>(services_.files, order_);
    orderedInstalled_ =
        std::make_unique<platform::ScopedService<platform::FileSystem>>(*ordered_);
    services_.PackCollection(scratch_ / "sources", name, names,
                             [&](const std::string& file) { return contents.at(file); });
  }

  // The show over an unpacked collection, as CmdSlideShow leaves it: Tag set, loaded, activated.
  std::unique_ptr<FrmSlideShow> Open(const std::string& name) {
    auto packer = services_.packers.Create();
    packer->UnpackFiles(core::gDataFolder + name + ".RXS", core::gDataFolder + name, "");
    packer->Release();
    auto form = std::make_unique<FrmSlideShow>();
    form->Tag = name;
    form->LblCollectionName.Caption(name);
    form->Load();
    form->Form_Activate();
    return form;
  }

  std::string Folder(const std::string& name) { return core::gDataFolder + name; }

  testing::ScratchFolder scratch_{"slideshow"};
  testing::PortableServices services_;
  platform::portable::PortableForms& forms_ = services_.forms;
  std::vector<std::string> order_;
  std::unique_ptr<OrderedFiles> ordered_;
  std::unique_ptr<platform::ScopedService<platform::FileSystem>> orderedInstalled_;
  int made_ = 0;
};

// --- the drop-down list and the form's design of the control model -------------------------------

TEST(ComboBoxTest, EntriesCountFromZeroAndChoosingAnotherRunsClick) {
  ui::ComboBox list("CboTest");
  int clicks = 0;
  list.Click = [&] { ++clicks; };
  EXPECT_EQ(list.ListIndex(), -1);
  list.AddItem("a");
  list.AddItem("b");
  EXPECT_EQ(list.ListCount(), 2);
  EXPECT_EQ(list.List(1), "b");
  list.ListIndex(1);
  EXPECT_EQ(clicks, 1);
  list.ListIndex(1);
  EXPECT_EQ(clicks, 1) << "the chosen entry chosen again runs no click";
  list.ListIndex(-1);
  EXPECT_EQ(list.ListIndex(), -1);
  EXPECT_THROW(list.ListIndex(2), Failure);
  EXPECT_THROW(list.List(-1), Failure);
  list.Clear();
  EXPECT_EQ(list.ListCount(), 0);
  EXPECT_EQ(list.ListIndex(), -1);
}

TEST(SlideShowDesignTest, TheWindowCoversTheScreenOnBlackWithThePanelAndItsControls) {
  platform::portable::PortablePlatform adapters;
  FrmSlideShow form;
  EXPECT_EQ(form.Name(), "FrmSlideShow");
  EXPECT_EQ(form.Border, ui::BorderStyle::None);
  EXPECT_EQ(form.WindowState, ui::kMaximizedWindow);
  EXPECT_EQ(form.BackColor, 0x000000u);
  EXPECT_TRUE(form.KeyPreview);
  EXPECT_FALSE(form.Image1.Visible()) << "no picture until the first step";
  EXPECT_EQ(form.FmControlPanel.BackColor, 0xE0E0E0u);
  EXPECT_EQ(form.FmControlPanel.Height(), FrmSlideShow::kPanelHeight);
  for (ui::Control* inside : std::vector<ui::Control*>{
           &form.CmdPrevious, &form.CmdNext, &form.CmdFinish, &form.Label1, &form.CboInterval,
           &form.Label2, &form.LblCollectionName, &form.LblInformation}) {
    EXPECT_EQ(inside->Container, &form.FmControlPanel) << inside->Name();
    EXPECT_LE(inside->Top() + inside->Height(), form.FmControlPanel.Height()) << inside->Name();
  }
  EXPECT_EQ(form.Label1.Caption(), "Duration");
  EXPECT_EQ(form.Label2.Caption(), "Collection Name:");
  EXPECT_EQ(form.LblInformation.Caption(), "Please Wait");
  ASSERT_EQ(form.CboInterval.ListCount(), 5);
  const char* const entries[] = {"Manually", "2 Seconds", "5 Seconds", "10 Seconds",
                                 "20 Seconds"};
  for (std::int32_t i = 0; i < 5; ++i) EXPECT_EQ(form.CboInterval.List(i), entries[i]);
  EXPECT_EQ(form.Timer1.Interval, 5000);
  EXPECT_TRUE(form.Timer1.Enabled());
}

TEST(SlideShowDesignTest, ALayoutGivesTheFormItsSurfaceAndWindowState) {
  ui::Form form("FrmTest");
  ui::ApplyLayout(form, ui::FormLayout{.caption = "T", .width = 30, .height = 45});
  EXPECT_EQ(form.BackColor, ui::kButtonFace);
  EXPECT_EQ(form.WindowState, ui::kNormalWindow);
  ui::ApplyLayout(form, ui::FormLayout{.caption = "T", .backColor = 0x123456,
                                       .windowState = ui::kMaximizedWindow});
  EXPECT_EQ(form.BackColor, 0x123456u);
  EXPECT_EQ(form.WindowState, ui::kMaximizedWindow);
}

// --- the activation ------------------------------------------------------------------------------

TEST_F(SlideShowTest, ActivationListsTheFilesInTheFileSystemsOrderAndWaitsAtPleaseWait) {
  MakeCollection("Sea", {{"c.bmp", Bitmap(4, 3, 0xFF0000FF)},
                         {"a.bmp", Bitmap(5, 3, 0xFF00FF00)},
                         {"b.pcx", "not a picture this program knows"}});
  const int yieldsBefore = services_.events.Yields();
  auto form = Open("Sea");
  EXPECT_EQ(services_.events.Yields() - yieldsBefore, 3) << "a yield after each file";
  EXPECT_EQ(form->SlideFiles, (std::vector<std::string>{Folder("Sea") + "\\c.bmp",
                                                        Folder("Sea") + "\\a.bmp",
                                                        Folder("Sea") + "\\b.pcx"}))
      << "every file, whatever its kind, in the file system's order";
  EXPECT_EQ(form->SlideIndex, 0);
  EXPECT_TRUE(form->Image1.Picture().Empty());
  EXPECT_FALSE(form->Image1.Visible());
  EXPECT_EQ(form->LblInformation.Caption(), "Please Wait");
  EXPECT_EQ(form->LblCollectionName.Caption(), "Sea");
  // The panel across the bottom, the whole width; the file's name from the middle on.
  EXPECT_EQ(form->FmControlPanel.Top(), form->Height - 800);
  EXPECT_EQ(form->FmControlPanel.Left(), 0);
  EXPECT_EQ(form->FmControlPanel.Width(), form->Width);
  EXPECT_EQ(form->LblInformation.Left(), form->Width / 2);
  // "5 Seconds", and its timer.
  EXPECT_EQ(form->CboInterval.ListIndex(), 2);
  EXPECT_TRUE(form->Timer1.Enabled());
  EXPECT_EQ(form->Timer1.Interval, 5000);
}

TEST_F(SlideShowTest, TheButtonsTakeTheirNormalPicturesAtLoad) {
  MakeCollection("Sea", {{"a.bmp", Bitmap(4, 3, 0xFF0000FF)}});
  auto form = Open("Sea");
  EXPECT_EQ(form->CmdPrevious.Picture(), services_.pictures.LoadResPicture(151));
  EXPECT_EQ(form->CmdFinish.Picture(), services_.pictures.LoadResPicture(153));
  EXPECT_EQ(form->CmdNext.Picture(), services_.pictures.LoadResPicture(155));
}

// --- ShowPicture's order ---------------------------------------------------------------------------

TEST_F(SlideShowTest, TheFirstPictureSeenIsTheOneAtIndexOneAndTheOneAtZeroComesAfterTheWrap) {
  MakeCollection("Sea", {{"first.bmp", Bitmap(40, 30, 0xFF0000FF)},
                         {"second.bmp", Bitmap(17, 9, 0xFF00FF00)},
                         {"third.bmp", Bitmap(8, 6, 0xFFFF0000)}});
  auto form = Open("Sea");
  std::vector<std::string> log;
  Changes changes(log);
  form->LblInformation.Observe(&changes);
  form->FmControlPanel.Observe(&changes);

  form->Timer1.Tick();
  EXPECT_EQ(form->SlideIndex, 1);
  EXPECT_EQ(form->LblInformation.Caption(), "second.bmp");
  EXPECT_EQ(form->Image1.Picture().width, 17);
  EXPECT_EQ(form->Image1.Picture().height, 9);
  EXPECT_TRUE(form->Image1.Visible());
  // The box takes the picture's size, and stands in the middle: half of 17 pixels (127.5 twips)
  // rounds to 128, half of 9 (67.5) to 68, each to the even number.
  EXPECT_EQ(form->Image1.Width(), 17 * 15);
  EXPECT_EQ(form->Image1.Height(), 9 * 15);
  EXPECT_EQ(form->Image1.Left(), form->Width / 2 - 128);
  EXPECT_EQ(form->Image1.Top(), form->Height / 2 - 68);
  EXPECT_EQ(log, (std::vector<std::string>{"LblInformation ZOrder", "FmControlPanel ZOrder"}))
      << "the name and the panel in front of the picture, in that order";

  form->CmdNext.Click();
  EXPECT_EQ(form->SlideIndex, 2);
  EXPECT_EQ(form->LblInformation.Caption(), "third.bmp");
  form->Timer1.Tick();
  EXPECT_EQ(form->SlideIndex, 0) << "after the last comes the first";
  EXPECT_EQ(form->LblInformation.Caption(), "first.bmp");
  EXPECT_EQ(form->Image1.Picture().width, 40);
  EXPECT_EQ(form->Image1.Left(), form->Width / 2 - 300);
  form->Timer1.Tick();
  EXPECT_EQ(form->LblInformation.Caption(), "second.bmp");
}

TEST_F(SlideShowTest, APictureLargerThanTheWindowOverflowsItAlikeOnEverySide) {
  MakeCollection("Sea", {{"a.bmp", Bitmap(4, 4, 0xFF0000FF)},
                         {"big.bmp", Bitmap(1000, 800, 0xFF00FF00)}});
  auto form = Open("Sea");
  form->Timer1.Tick();
  EXPECT_EQ(form->Image1.Width(), 15000);
  EXPECT_EQ(form->Image1.Left(), form->Width / 2 - 7500);
  EXPECT_LT(form->Image1.Left(), 0);
  EXPECT_EQ(form->Image1.Left() + form->Image1.Width() - form->Width, -form->Image1.Left());
  EXPECT_EQ(form->Image1.Top(), form->Height / 2 - 6000);
  EXPECT_EQ(form->Image1.Top() + form->Image1.Height() - form->Height, -form->Image1.Top());
}

TEST_F(SlideShowTest, AJpegIsShownAtItsOwnSize) {
  const std::string jpeg = ReadFile(std::string(QUORVANE_SOURCE_DIR) + "/tests/data/quadrants.jpg");
  ASSERT_FALSE(jpeg.empty());
  MakeCollection("Sea", {{"a.bmp", Bitmap(4, 4, 0xFF0000FF)}, {"quadrants.jpg", jpeg}});
  auto form = Open("Sea");
  form->CmdNext.Click();
  const Pixels expected = services_.decoded.LoadPicture(Folder("Sea") + "\\quadrants.jpg");
  EXPECT_EQ(form->Image1.Picture(), expected);
  EXPECT_EQ(form->Image1.Width(), expected.width * 15);
  EXPECT_EQ(form->LblInformation.Caption(), "quadrants.jpg");
}

TEST_F(SlideShowTest, ACollectionOfOnePictureStaysAtIndexZeroAndShowsItAtEachStep) {
  MakeCollection("One", {{"only.bmp", Bitmap(6, 5, 0xFF0000FF)}});
  auto form = Open("One");
  for (int step = 0; step < 3; ++step) {
    form->Timer1.Tick();
    EXPECT_EQ(form->SlideIndex, 0);
    EXPECT_EQ(form->LblInformation.Caption(), "only.bmp");
    EXPECT_EQ(form->Image1.Picture().width, 6);
  }
  form->CmdPrevious.Click();
  EXPECT_EQ(form->SlideIndex, 0);
}

TEST_F(SlideShowTest, ThumbsDbLastLeavesOneEmptyStepWithAnEmptyPictureAndName) {
  MakeCollection("Sea", {{"a.bmp", Bitmap(6, 5, 0xFF0000FF)},
                         {"b.bmp", Bitmap(7, 5, 0xFF00FF00)},
                         {"Thumbs.db", "the shell's cache of thumbnails"}});
  auto form = Open("Sea");
  EXPECT_EQ(form->SlideFiles, (std::vector<std::string>{Folder("Sea") + "\\a.bmp",
                                                        Folder("Sea") + "\\b.bmp", ""}));
  form->Timer1.Tick();
  EXPECT_EQ(form->LblInformation.Caption(), "b.bmp");
  form->Timer1.Tick();
  EXPECT_EQ(form->SlideIndex, 2);
  EXPECT_TRUE(form->Image1.Picture().Empty());
  EXPECT_EQ(form->Image1.Width(), 0);
  EXPECT_EQ(form->LblInformation.Caption(), "");
  EXPECT_TRUE(form->Image1.Visible());
  form->Timer1.Tick();
  EXPECT_EQ(form->SlideIndex, 0);
  EXPECT_EQ(form->LblInformation.Caption(), "a.bmp");
}

TEST_F(SlideShowTest, ThumbsDbInTheMiddleLeavesNoGapAndTheNameIsComparedExactly) {
  MakeCollection("Sea", {{"a.bmp", Bitmap(6, 5, 0xFF0000FF)},
                         {"Thumbs.db", "cache"},
                         {"b.bmp", Bitmap(7, 5, 0xFF00FF00)},
                         {"thumbs.db", "another name than Thumbs.db"}});
  auto form = Open("Sea");
  EXPECT_EQ(form->SlideFiles,
            (std::vector<std::string>{Folder("Sea") + "\\a.bmp", Folder("Sea") + "\\b.bmp",
                                      Folder("Sea") + "\\thumbs.db"}));
}

// --- the intervals and the buttons -----------------------------------------------------------------

TEST_F(SlideShowTest, EachIntervalSetsTheTimerAndManuallyStopsIt) {
  MakeCollection("Sea", {{"a.bmp", Bitmap(6, 5, 0xFF0000FF)}, {"b.bmp", Bitmap(7, 5, 0xFF00FF00)}});
  auto form = Open("Sea");
  const std::int32_t intervals[] = {0, 2000, 5000, 10000, 20000};
  for (std::int32_t index : {1, 3, 4, 0, 2}) {
    form->CboInterval.ListIndex(index);
    EXPECT_EQ(form->Timer1.Enabled(), index != 0) << index;
    if (index != 0) {
      EXPECT_EQ(form->Timer1.Interval, intervals[index]) << index;
    }
  }
  form->CboInterval.ListIndex(0);
  EXPECT_FALSE(form->Timer1.Enabled());
  // By hand the show goes on.
  form->CmdNext.Click();
  EXPECT_EQ(form->LblInformation.Caption(), "b.bmp");
  form->CmdPrevious.Click();
  EXPECT_EQ(form->SlideIndex, 0);
  EXPECT_EQ(form->LblInformation.Caption(), "a.bmp");
  EXPECT_FALSE(form->Timer1.Enabled());
}

TEST_F(SlideShowTest, CmdNextStepsAtOnceWithoutTouchingTheTimer) {
  MakeCollection("Sea", {{"a.bmp", Bitmap(6, 5, 0xFF0000FF)}, {"b.bmp", Bitmap(7, 5, 0xFF00FF00)}});
  auto form = Open("Sea");
  std::vector<std::string> log;
  Changes changes(log);
  form->Timer1.Observe(&changes);
  form->CmdNext.Click();
  EXPECT_EQ(form->SlideIndex, 1);
  EXPECT_TRUE(log.empty()) << "the timer is not started anew";
}

TEST_F(SlideShowTest, CmdPreviousBeforeAnyPictureDoesNothingAndAfterOneShowsTheOneBefore) {
  MakeCollection("Sea", {{"a.bmp", Bitmap(6, 5, 0xFF0000FF)},
                         {"b.bmp", Bitmap(7, 5, 0xFF00FF00)},
                         {"c.bmp", Bitmap(8, 5, 0xFFFF0000)}});
  auto form = Open("Sea");
  form->CmdPrevious.Click();
  EXPECT_EQ(form->SlideIndex, 0);
  EXPECT_EQ(form->LblInformation.Caption(), "Please Wait");
  EXPECT_FALSE(form->Image1.Visible());
  EXPECT_TRUE(form->Image1.Picture().Empty());
  form->CmdNext.Click();
  form->CmdNext.Click();
  EXPECT_EQ(form->LblInformation.Caption(), "c.bmp");
  form->CmdPrevious.Click();
  EXPECT_EQ(form->SlideIndex, 1);
  EXPECT_EQ(form->LblInformation.Caption(), "b.bmp") << "the index is not advanced first";
  form->CmdPrevious.Click();
  EXPECT_EQ(form->LblInformation.Caption(), "a.bmp");
  form->CmdPrevious.Click();
  EXPECT_EQ(form->SlideIndex, 0) << "no wrap backwards";
  EXPECT_EQ(form->LblInformation.Caption(), "a.bmp");
}

TEST_F(SlideShowTest, CmdFinishAndEscapeLeaveTheShowAndOtherKeysDoNot) {
  MakeCollection("Sea", {{"a.bmp", Bitmap(6, 5, 0xFF0000FF)}});
  auto form = Open("Sea");
  std::int16_t key = 13;
  form->Form_KeyDown(key, 0);
  EXPECT_TRUE(form->Loaded());
  key = 27;
  form->Form_KeyDown(key, 0);
  EXPECT_FALSE(form->Loaded());
  auto again = Open("Sea");
  again->CmdFinish.Click();
  EXPECT_FALSE(again->Loaded());
}

TEST_F(SlideShowTest, AButtonUnderTheMouseShowsItsHoverPictureOnceAndThePanelTakesItBack) {
  MakeCollection("Sea", {{"a.bmp", Bitmap(6, 5, 0xFF0000FF)}});
  auto form = Open("Sea");
  auto& pictures = services_.pictures;
  const auto move = [](ui::Control& control) { control.MouseMove(0, 0, 15.0f, 15.0f); };

  move(form->CmdNext);
  EXPECT_EQ(form->CmdNext.Picture(), pictures.LoadResPicture(156));
  EXPECT_EQ(form->CmdPrevious.Picture(), pictures.LoadResPicture(151));
  EXPECT_EQ(form->CmdFinish.Picture(), pictures.LoadResPicture(153));
  EXPECT_EQ(form->mLastHover, "CmdNext");
  const int loads = pictures.Loads(156);
  move(form->CmdNext);
  EXPECT_EQ(pictures.Loads(156), loads) << "the same button again changes nothing";

  move(form->CmdPrevious);
  EXPECT_EQ(form->CmdPrevious.Picture(), pictures.LoadResPicture(152));
  EXPECT_EQ(form->CmdNext.Picture(), pictures.LoadResPicture(155));
  move(form->CmdFinish);
  EXPECT_EQ(form->CmdFinish.Picture(), pictures.LoadResPicture(154));
  EXPECT_EQ(form->CmdPrevious.Picture(), pictures.LoadResPicture(151));

  move(form->FmControlPanel);
  EXPECT_EQ(form->mLastHover, "Form");
  EXPECT_EQ(form->CmdFinish.Picture(), pictures.LoadResPicture(153));
  const int normalLoads = pictures.Loads(153);
  move(form->FmControlPanel);
  EXPECT_EQ(pictures.Loads(153), normalLoads) << "the panel again changes nothing";
  EXPECT_TRUE(form->FmControlPanel.Visible()) << "the panel never hides";
}

// --- failures --------------------------------------------------------------------------------------

TEST_F(SlideShowTest, APictureThatCantBeDecodedFailsShowPictureAfterTheIndexMoved) {
  MakeCollection("Sea", {{"a.bmp", Bitmap(6, 5, 0xFF0000FF)},
                         {"b.pcx", "a picture of a kind this program does not read"},
                         {"c.bmp", Bitmap(8, 5, 0xFFFF0000)}});
  auto form = Open("Sea");
  try {
    form->ShowPicture(1);
    FAIL() << "the .pcx was shown";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::InvalidPicture);
  }
  EXPECT_EQ(form->SlideIndex, 1);
  EXPECT_EQ(form->LblInformation.Caption(), "Please Wait") << "the step ends at the load";
  form->ShowPicture(1);
  EXPECT_EQ(form->LblInformation.Caption(), "c.bmp");
}

TEST_F(SlideShowTest, AnEmptyCollectionHasNoUpperBound) {
  MakeCollection("Empty", {{"Thumbs.db", "cache"}});
  auto form = Open("Empty");
  EXPECT_EQ(form->SlideFiles, std::vector<std::string>{""});
  fs::remove_all(Host(Folder("Empty")));
  auto none = Open("Nothing");  // no archive: no folder, no files
  EXPECT_TRUE(none->SlideFiles.empty());
  try {
    none->ShowPicture(1);
    FAIL() << "a step without files";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::SubscriptOutOfRange);
  }
}

// --- shown from the main window ------------------------------------------------------------------

class SlideShowFromMainTest : public SlideShowTest {
 protected:
  void SelectCollection(const std::string& name) {
    ListCollections(main_.TvCollections);
    for (std::int32_t node = 1; node <= main_.TvCollections.Count(); ++node) {
      if (main_.TvCollections.Item(node).Text == name) main_.TvCollections.Select(node);
    }
    ASSERT_NE(main_.TvCollections.SelectedItem(), 0) << name;
  }

  FrmMain main_;
  MainWindowScope installed_{main_};
};

TEST_F(SlideShowFromMainTest, WithNoCollectionSelectedItSaysSoAndShowsNothing) {
  MakeCollection("Sea", {{"a.bmp", Bitmap(6, 5, 0xFF0000FF)}});
  ListCollections(main_.TvCollections);
  ASSERT_TRUE(main_.CmdSlideShow.Click);
  main_.CmdSlideShow.Click();
  ASSERT_EQ(services_.boxes.Boxes().size(), 1u);
  EXPECT_EQ(services_.boxes.Boxes()[0].prompt, "Select a collection first!");
  EXPECT_TRUE(forms_.Requests().empty());
  EXPECT_FALSE(fs::exists(Host(Folder("Sea"))));
}

TEST_F(SlideShowFromMainTest, TheFolderIsUnpackedForExactlyTheTimeTheModalShowIsOpen) {
  MakeCollection("Sea", {{"a.bmp", Bitmap(6, 5, 0xFF0000FF)}, {"b.bmp", Bitmap(7, 5, 0xFF00FF00)}});
  SelectCollection("Sea");
  main_.hWnd = 0x4321;
  std::vector<std::string> focus;
  Changes changes(focus);
  main_.TvCollections.Observe(&changes);
  bool folderDuring = false;
  std::vector<std::string> requestsDuring;
  std::string tag, shownName, seen;
  forms_.Queue<FrmSlideShow>([&](FrmSlideShow& form) {
    folderDuring = fs::exists(Host(Folder("Sea") + "\\a.bmp")) &&
                   fs::exists(Host(Folder("Sea") + "\\b.bmp"));
    requestsDuring = forms_.Requests();
    tag = form.Tag;
    shownName = form.LblCollectionName.Caption();
    EXPECT_TRUE(focus.empty()) << "the tree takes the focus only after the show";
    form.Timer1.Tick();
    seen = form.LblInformation.Caption();
  });
  forms_.Queue<FrmSlideShow>([](FrmSlideShow& form) {
    std::int16_t escape = 27;
    form.Form_KeyDown(escape, 0);
  });
  main_.CmdSlideShow_Click();
  EXPECT_TRUE(folderDuring);
  EXPECT_EQ(requestsDuring, std::vector<std::string>{"Show FrmSlideShow modal, owner 17185"});
  EXPECT_EQ(tag, "Sea");
  EXPECT_EQ(shownName, "Sea");
  EXPECT_EQ(seen, "b.bmp");
  EXPECT_EQ(forms_.Requests().back(), "FrmSlideShow unloaded");
  EXPECT_FALSE(fs::exists(Host(Folder("Sea")))) << "the folder goes with the show";
  EXPECT_TRUE(fs::exists(Host(core::gDataFolder + "Sea.RXS")));
  EXPECT_EQ(focus, std::vector<std::string>{"TvCollections Focus"});
}

TEST_F(SlideShowFromMainTest, ClosedByTheTitleBarTheFolderGoesAllTheSame) {
  MakeCollection("Sea", {{"a.bmp", Bitmap(6, 5, 0xFF0000FF)}});
  SelectCollection("Sea");
  main_.CmdSlideShow_Click();
  EXPECT_EQ(forms_.Requests().back(), "FrmSlideShow closed by the title bar");
  EXPECT_FALSE(fs::exists(Host(Folder("Sea"))));
}

// With the program's top-level report installed, a picture that can't be decoded is told in a
// message box and written to the log under the show's name, and the show goes on with the next
// step.
TEST_F(SlideShowFromMainTest, AFailedStepIsReportedAtTheTopLevelAndTheShowGoesOn) {
  struct Restore {
    ~Restore() { ui::InstallEventRunner(nullptr); }
  } restore;
  core::InstallTopLevelReport();
  MakeCollection("Sea", {{"a.bmp", Bitmap(6, 5, 0xFF0000FF)},
                         {"b.pcx", "a picture of a kind this program does not read"},
                         {"c.bmp", Bitmap(8, 5, 0xFFFF0000)}});
  SelectCollection("Sea");
  std::string afterFailure;
  bool stillUp = false;
  forms_.Queue<FrmSlideShow>([&](FrmSlideShow& form) {
    ui::RunEvent(form, form.Timer1.Tick);  // b.pcx
    stillUp = form.Loaded();
    ui::RunEvent(form, form.Timer1.Tick);  // c.bmp
    afterFailure = form.LblInformation.Caption();
    form.CmdFinish.Click();
  });
  main_.CmdSlideShow_Click();
  EXPECT_TRUE(stillUp);
  EXPECT_EQ(afterFailure, "c.bmp");
  const auto& boxes = services_.boxes.Boxes();
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].buttons, platform::msgbox::kOkOnly | platform::msgbox::kExclamation);
  const std::string log = ReadFile(core::gDataFolder + core::kErrorLogName);
  EXPECT_NE(log.find("\tFrmSlideShow\tevent\tline 0\terror 481\t"), std::string::npos) << log;
  EXPECT_EQ(forms_.Requests().back(), "FrmSlideShow unloaded");
  EXPECT_FALSE(fs::exists(Host(Folder("Sea"))));
}

}  // namespace
}  // namespace quorvane
