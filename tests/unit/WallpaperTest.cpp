// The wallpaper engine over the portable services: the collection store on disk (real packed
// collection files), Files.ini, the two settings keys, the removal of a collection, and the
// minute tick of the automatic change with its order, its style values and its failures.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "platform/Pictures.h"
#include "platform/Service.h"
#include "platform/Wallpaper.h"
#include "stores/AdvRegistryAccess.h"
#include "stores/iniReadWrite.h"
#include "wallpaper/MWallpaper.h"

#include "PortableServices.h"
#include "ScratchFiles.h"

namespace quorvane {
namespace {

namespace fs = std::filesystem;

constexpr char kDesktop[] = "HKEY_CURRENT_USER\\Control Panel\\Desktop";

// Pictures as the tick sees them: a file that starts with "PIC" decodes to a 3 by 2 picture;
// anything else is no picture. Each load notes the style values the registry holds at that
// moment, so a test sees that they were written before the picture was touched.
class TestPictures final : public platform::Pictures {
 public:
  explicit TestPictures(platform::RegistryStore& store) : store_(store) {}
  ui::Pixels LoadPicture(const std::string& path) override {
    std::string content;
    if (!platform::Use<platform::FileSystem>().ReadAll(path, content)) {
      throw Failure(FailureNumber::FileNotFound, "File not found");
    }
    AdvRegistryAccess reg(store_);
    loads.push_back(path + " tile=" + reg.ReadString(kDesktop, "TileWallpaper", "-") +
                    " style=" + reg.ReadString(kDesktop, "WallpaperStyle", "-"));
    if (content.rfind("PIC", 0) != 0) throw Failure(static_cast<FailureNumber>(481), "Invalid picture");
    return ui::Pixels{3, 2, std::vector<std::uint32_t>(6, 0xFF112233u)};
  }
  void SavePicture(const ui::Pixels& picture, const std::string& path) override {
    saves.push_back(path + " " + std::to_string(picture.width) + "x" +
                    std::to_string(picture.height));
  }
  std::vector<std::string> loads;
  std::vector<std::string> saves;

 private:
  platform::RegistryStore& store_;
};

class TestWallpaper final : public platform::Wallpaper {
 public:
  std::int32_t SystemParametersInfoA(std::uint32_t action, std::uint32_t param,
                                     const std::string& text, std::uint32_t winIni) override {
    calls.push_back(std::to_string(action) + "," + std::to_string(param) + "," + text + "," +
                    std::to_string(winIni));
    return 1;
  }
  std::vector<std::string> calls;
};

using testing::Host;
using testing::ReadFile;
using testing::WriteFile;

class WallpaperTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(scratch_ / "data");
    core::gDataFolder = (scratch_ / "data").string() + "\\";
    gWallpaperEnable = kTrue;
    gWallpaperInterval = 0;
    gWallpaperOrder = 1;
    gWallpaperPosition = 1;
  }

  // Packs a collection from files of the given names; a name ending in ".bad" holds no picture.
  void MakeCollection(const std::string& name, const std::vector<std::string>& files) {
    services_.PackCollection(sources_, name, files, [&](const std::string& file) {
      return file.find(".bad") == std::string::npos ? "PIC " + name + "/" + file
                                                    : std::string("not a picture");
    });
  }
  void Tick(ui::TreeView& tree, const std::vector<std::string>& ticked) {
    for (std::int32_t i = 1; i <= tree.Count(); ++i) {
      tree.Item(i).Checked = std::find(ticked.begin(), ticked.end(), tree.Item(i).Text) !=
                             ticked.end();
    }
  }
  std::string Index() { return core::gDataFolder + "Files.ini"; }
  std::vector<std::string> Listed(const std::string& folder) {
    std::vector<std::string> names;
    files_.ListFiles(folder, names);
    return names;
  }

  testing::ScratchFolder scratch_{"wallpaper"};
  const fs::path sources_ = scratch_ / "sources";
  testing::PortableServices services_;
  platform::portable::MemoryRegistry& store_ = services_.store;
  platform::portable::PortableFileSystem& files_ = services_.files;
  platform::portable::PortableEventLoop& events_ = services_.events;
  platform::portable::PortableMessageBoxes& boxes_ = services_.boxes;
  TestPictures pictures_{store_};
  TestWallpaper wallpaper_;
  platform::ScopedService<platform::Pictures> ownPictures_{pictures_};
  platform::ScopedService<platform::Wallpaper> ownWallpaper_{wallpaper_};
  FrmMain form_;
  MainWindowScope installed_{form_};
};

// --- path helpers -------------------------------------------------------------------------------

TEST_F(WallpaperTest, FileNamesAndExtensions) {
  EXPECT_EQ(FileNameOf("C:\\Data\\Sea\\bay.jpg"), "bay.jpg");
  EXPECT_EQ(FileNameOf("bay.jpg"), "bay.jpg");
  EXPECT_EQ(FileNameOf("C:\\Data\\"), "");
  EXPECT_EQ(FileExtensionOf("a.b.jpg"), "JPG");
  EXPECT_EQ(FileExtensionOf("night.Jpeg"), "JPEG");
  EXPECT_EQ(FileExtensionOf("README"), "(NONE)");
  EXPECT_EQ(FileExtensionOf("trailing."), "");
}

TEST_F(WallpaperTest, PathExistsForFilesAndFoldersAlike) {
  WriteFile(core::gDataFolder + "a.txt", "x");
  fs::create_directories(Host(core::gDataFolder + "Sea"));
  EXPECT_EQ(PathExists(core::gDataFolder + "a.txt"), kTrue);
  EXPECT_EQ(PathExists(core::gDataFolder + "Sea"), kTrue);
  EXPECT_EQ(PathExists(core::gDataFolder + "nothing"), kFalse);
}

TEST_F(WallpaperTest, MoveFileOverReplacesTheTargetAndIgnoresAMissingSource) {
  WriteFile(core::gDataFolder + "new.jpg", "new");
  WriteFile(core::gDataFolder + "Temp.JPG", "old");
  MoveFileOver(core::gDataFolder + "new.jpg", core::gDataFolder + "Temp.JPG");
  EXPECT_EQ(ReadFile(core::gDataFolder + "Temp.JPG"), "new");
  EXPECT_FALSE(fs::exists(Host(core::gDataFolder + "new.jpg")));
  MoveFileOver(core::gDataFolder + "gone.jpg", core::gDataFolder + "Temp.JPG");
  EXPECT_EQ(ReadFile(core::gDataFolder + "Temp.JPG"), "new");
}

TEST_F(WallpaperTest, DeleteFolderIfPresentTakesTheContentsToo) {
  WriteFile(core::gDataFolder + "x.txt", "keep");
  fs::create_directories(Host(core::gDataFolder + "Sea\\inner"));
  WriteFile(core::gDataFolder + "Sea\\bay.jpg", "PIC");
  DeleteFolderIfPresent(core::gDataFolder + "Sea");
  DeleteFolderIfPresent(core::gDataFolder + "Nothing");
  EXPECT_FALSE(fs::exists(Host(core::gDataFolder + "Sea")));
  EXPECT_TRUE(fs::exists(Host(core::gDataFolder + "x.txt")));
}

// --- listing --------------------------------------------------------------------------------------

TEST_F(WallpaperTest, ListCollectionsTakesEveryRxsFileWhateverItsCaseAndNothingElse) {
  MakeCollection("Sea", {"bay.jpg"});
  MakeCollection("Town", {"night.jpg"});
  fs::copy_file(Host(core::gDataFolder + "Town.RXS"), Host(core::gDataFolder + "a.rxs"));
  fs::create_directories(Host(core::gDataFolder + "Lake"));  // a folder with no archive
  fs::create_directories(Host(core::gDataFolder + "Folder.RXS"));  // a folder, not a file
  WriteFile(core::gDataFolder + "notes.txt", "x");
  ui::TreeView tree("TvCollections");
  ListCollections(tree);
  std::set<std::string> names;
  for (std::int32_t i = 1; i <= tree.Count(); ++i) {
    names.insert(tree.Item(i).Text);
    EXPECT_EQ(tree.Item(i).Image, 1);
    EXPECT_EQ(tree.Item(i).SelectedImage, 1);
    EXPECT_EQ(tree.Item(i).Key, "");
  }
  EXPECT_EQ(names, (std::set<std::string>{"Sea", "Town", "a"}));
  // It does not clear the tree: a second listing lists each again.
  ListCollections(tree);
  EXPECT_EQ(tree.Count(), 6);
}

// --- Files.ini ------------------------------------------------------------------------------------

TEST_F(WallpaperTest, RebuildFilesIniListsTheTickedCollectionsInTreeOrderWithoutThumbsDb) {
  MakeCollection("Sea", {"bay.jpg", "Thumbs.db", "cliff.bmp"});
  MakeCollection("Lake", {"still.jpg"});
  MakeCollection("Town", {"night.jpg"});
  ui::TreeView tree("TvCollections");
  for (const char* name : {"Town", "Lake", "Sea"}) tree.Add(name, 1, 1);
  Tick(tree, {"Town", "Sea"});
  const int yieldsBefore = events_.Yields();
  RebuildFilesIni(tree);

  // The unpacked folders stay; the unticked collection is not unpacked.
  EXPECT_TRUE(fs::is_directory(Host(core::gDataFolder + "Town")));
  EXPECT_TRUE(fs::is_directory(Host(core::gDataFolder + "Sea")));
  EXPECT_FALSE(fs::exists(Host(core::gDataFolder + "Lake")));
  // The entries: Town first (the tree's order), then Sea in the order its folder lists.
  std::string expected = "[Files]\r\n1=Town\\night.jpg\r\n";
  int number = 2;
  for (const std::string& file : Listed(core::gDataFolder + "Sea")) {
    if (file == "Thumbs.db") continue;
    expected += std::to_string(number++) + "=Sea\\" + file + "\r\n";
  }
  expected += "[Count]\r\nTotal=3\r\n";
  EXPECT_EQ(ReadFile(Index()), expected);
  // One yield a file, Thumbs.db included.
  EXPECT_EQ(events_.Yields() - yieldsBefore, 4);
}

TEST_F(WallpaperTest, RebuildFilesIniWithNothingTickedLeavesOnlyTheCount) {
  MakeCollection("Sea", {"bay.jpg"});
  WriteFile(Index(), "[Files]\r\n1=Old\\x.jpg\r\n");
  ui::TreeView tree("TvCollections");
  tree.Add("Sea", 1, 1);
  RebuildFilesIni(tree);
  EXPECT_EQ(ReadFile(Index()), "[Count]\r\nTotal=0\r\n");
}

TEST_F(WallpaperTest, TwoCollectionsWithTheSameFileNameGiveTwoEntries) {
  MakeCollection("Sea", {"x.jpg"});
  MakeCollection("Town", {"x.jpg"});
  ui::TreeView tree("TvCollections");
  tree.Add("Sea", 1, 1);
  tree.Add("Town", 1, 1);
  Tick(tree, {"Sea", "Town"});
  RebuildFilesIni(tree);
  EXPECT_EQ(ReadIniValue("Files", "1", Index()), "Sea\\x.jpg");
  EXPECT_EQ(ReadIniValue("Files", "2", Index()), "Town\\x.jpg");
}

TEST_F(WallpaperTest, ATickedCollectionWithoutItsArchiveFailsTheRebuild) {
  ui::TreeView tree("TvCollections");
  tree.Add("Gone", 1, 1);
  Tick(tree, {"Gone"});
  try {
    RebuildFilesIni(tree);
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::PathNotFound);
  }
}

// --- settings -------------------------------------------------------------------------------------

TEST_F(WallpaperTest, SettingsHaveTheirDefaultsWhenTheKeyIsAbsent) {
  LoadWallpaperSettings(kPredecessorKey);
  EXPECT_EQ(gWallpaperEnable, kTrue);
  EXPECT_EQ(gWallpaperInterval, 5);
  EXPECT_EQ(gWallpaperOrder, 1);
  EXPECT_EQ(gWallpaperPosition, 1);
}

TEST_F(WallpaperTest, SettingsAreReadFromTheKeyGivenAndAnIntervalBeyondSixteenBitsOverflows) {
  AdvRegistryAccess reg(store_);
  reg.WriteDWORD(core::ProductKey, "Enable", 7);
  reg.WriteDWORD(core::ProductKey, "TimeInterval", 12);
  reg.WriteDWORD(core::ProductKey, "ChangeOrder", 2);
  reg.WriteDWORD(core::ProductKey, "Position", 3);
  LoadWallpaperSettings(core::ProductKey);
  EXPECT_EQ(gWallpaperEnable, kTrue);
  EXPECT_EQ(gWallpaperInterval, 12);
  EXPECT_EQ(gWallpaperOrder, 2);
  EXPECT_EQ(gWallpaperPosition, 3);
  reg.WriteDWORD(core::ProductKey, "Enable", 0);
  LoadWallpaperSettings(core::ProductKey);
  EXPECT_EQ(gWallpaperEnable, kFalse);
  reg.WriteDWORD(core::ProductKey, "TimeInterval", 40000);
  EXPECT_THROW(LoadWallpaperSettings(core::ProductKey), Failure);
}

TEST_F(WallpaperTest, RefreshCollectionsListsAnewAndReadsThePredecessorKeyOnly) {
  MakeCollection("Sea", {"bay.jpg"});
  AdvRegistryAccess reg(store_);
  reg.WriteDWORD(core::ProductKey, "TimeInterval", 30);
  reg.WriteDWORD(kPredecessorKey, "TimeInterval", 9);
  form_.TvCollections.Add("Stale", 1, 1);
  form_.RefreshCollections();
  ASSERT_EQ(form_.TvCollections.Count(), 1);
  EXPECT_EQ(form_.TvCollections.Item(1).Text, "Sea");
  EXPECT_EQ(gWallpaperInterval, 9);
}

// --- removal --------------------------------------------------------------------------------------

TEST_F(WallpaperTest, RemovalAsksFirstThenDeletesTheArchiveAndItsFolderAndListsAnew) {
  MakeCollection("Sea", {"bay.jpg"});
  MakeCollection("Town", {"night.jpg"});
  fs::create_directories(Host(core::gDataFolder + "Sea"));
  WriteFile(Index(), "[Files]\r\n1=Sea\\bay.jpg\r\n[Count]\r\nTotal=1\r\n");
  form_.RefreshCollections();
  form_.TvCollections.Select(0);
  form_.CmdWallpaperControl_Click(2);
  ASSERT_EQ(boxes_.Boxes().size(), 1u);
  EXPECT_EQ(boxes_.Boxes()[0].prompt, "Select a collection to remove first!");

  std::int32_t sea = 0;
  for (std::int32_t i = 1; i <= form_.TvCollections.Count(); ++i) {
    if (form_.TvCollections.Item(i).Text == "Sea") sea = i;
  }
  form_.TvCollections.Select(sea);
  boxes_.Answer(platform::msgbox::kNo);
  form_.CmdWallpaperControl_Click(2);
  EXPECT_EQ(boxes_.Boxes()[1].prompt, "Are you sure you want to delete?");
  EXPECT_EQ(boxes_.Boxes()[1].buttons, platform::msgbox::kYesNo);
  EXPECT_TRUE(fs::exists(Host(core::gDataFolder + "Sea.RXS")));

  int clicks = 0;
  form_.TvCollections.Click = [&] { ++clicks; };
  boxes_.Answer(platform::msgbox::kYes);
  EXPECT_EQ(form_.ActiveControl(), nullptr);
  form_.CmdWallpaperControl_Click(2);
  // The tree that is left takes the keyboard focus.
  EXPECT_EQ(form_.ActiveControl(), &form_.TvCollections);
  EXPECT_FALSE(fs::exists(Host(core::gDataFolder + "Sea.RXS")));
  EXPECT_FALSE(fs::exists(Host(core::gDataFolder + "Sea")));
  ASSERT_EQ(form_.TvCollections.Count(), 1);
  EXPECT_EQ(form_.TvCollections.Item(1).Text, "Town");
  EXPECT_EQ(clicks, 2);
  // Files.ini goes on naming the removed collection until the settings are saved again.
  EXPECT_EQ(ReadIniValue("Files", "1", Index()), "Sea\\bay.jpg");
}

TEST_F(WallpaperTest, RemovingTheLastCollectionEmptiesTheStripAndRunsNoNodeClick) {
  MakeCollection("Sea", {"bay.jpg"});
  form_.RefreshCollections();
  ui::OptionButton& first = form_.optThumb[0];
  first.Picture(ui::Pixels{3, 2, std::vector<std::uint32_t>(6, 0xFF112233u)});
  first.Tag("bay.jpg");
  first.Caption("bay.jpg");
  int clicks = 0;
  form_.TvCollections.Click = [&] { ++clicks; };
  form_.TvCollections.Select(1);
  boxes_.Answer(platform::msgbox::kYes);
  form_.CmdWallpaperControl_Click(2);
  EXPECT_EQ(form_.TvCollections.Count(), 0);
  EXPECT_EQ(form_.ActiveControl(), nullptr);  // no tree left to take the focus
  EXPECT_TRUE(first.Picture().Empty());
  EXPECT_EQ(first.Tag(), "");
  EXPECT_EQ(first.Caption(), "");
  EXPECT_EQ(clicks, 0);
}

TEST_F(WallpaperTest, RemovingOneOfTwoLeavesTheStripToTheNodeClick) {
  MakeCollection("Sea", {"bay.jpg"});
  MakeCollection("Town", {"night.jpg"});
  form_.RefreshCollections();
  form_.optThumb[0].Tag("night.jpg");
  form_.optThumb[0].Caption("night.jpg");
  form_.TvCollections.Select(1);
  boxes_.Answer(platform::msgbox::kYes);
  form_.CmdWallpaperControl_Click(2);
  ASSERT_EQ(form_.TvCollections.Count(), 1);
  // The node click fills the strip with the collection that is left.
  const std::string left = form_.TvCollections.Item(1).Text;
  const std::string picture = left == "Sea" ? "bay.jpg" : "night.jpg";
  EXPECT_EQ(form_.optThumb[0].Tag(), picture);
  EXPECT_EQ(form_.optThumb[0].Caption(), picture);
  EXPECT_EQ(form_.optThumb.size(), 1u);
}

// --- the tick -------------------------------------------------------------------------------------

class TickTest : public WallpaperTest {
 protected:
  void SetUp() override {
    WallpaperTest::SetUp();
    MakeCollection("Sea", {"bay.jpg", "cliff.jpg", "reef.jpg"});
    ui::TreeView tree("TvCollections");
    tree.Add("Sea", 1, 1);
    Tick(tree, {"Sea"});
    RebuildFilesIni(tree);
    DeleteFolderIfPresent(core::gDataFolder + "Sea");
  }
};

TEST_F(TickTest, ADisabledChangeDoesNotCount) {
  gWallpaperEnable = kFalse;
  gWallpaperInterval = 2;
  form_.Timer1_Timer();
  form_.Timer1_Timer();
  EXPECT_EQ(form_.mTickCount, 0);
  EXPECT_TRUE(wallpaper_.calls.empty());
}

TEST_F(TickTest, AnIntervalOfFiveFiresAtTheFifthTickAndThenEveryFifth) {
  gWallpaperInterval = 5;
  std::vector<int> fired;
  for (int tick = 1; tick <= 10; ++tick) {
    const std::size_t before = wallpaper_.calls.size();
    form_.Timer1_Timer();
    if (wallpaper_.calls.size() > before) fired.push_back(tick);
  }
  EXPECT_EQ(fired, (std::vector<int>{5, 10}));
}

TEST_F(TickTest, AChangeWritesTheStyleFirstThenTheBitmapThenTellsTheSystem) {
  gWallpaperPosition = 3;
  form_.Timer1_Timer();
  const std::string data = core::gDataFolder;
  const std::string first = ReadIniValue("Files", "1", Index());
  const std::string file = first.substr(first.find('\\') + 1);
  ASSERT_EQ(pictures_.loads.size(), 1u);
  const std::string nul(1, '\0');  // text values come back with their terminator
  EXPECT_EQ(pictures_.loads[0], data + "Temp.JPG tile=0" + nul + " style=2" + nul);
  EXPECT_EQ(pictures_.saves, (std::vector<std::string>{data + "WP.bmp 3x2"}));
  EXPECT_EQ(wallpaper_.calls, (std::vector<std::string>{"20,0," + data + "WP.bmp,1"}));
  // The entry moved to its neutral name; the unpacked file is gone.
  EXPECT_EQ(ReadFile(data + "Temp.JPG"), "PIC Sea/" + file);
  EXPECT_FALSE(fs::exists(Host(data + file)));
  EXPECT_EQ(form_.mTickCount, 0);
}

TEST_F(TickTest, TheStyleValuesOfEachPosition) {
  AdvRegistryAccess reg(store_);
  auto style = [&] {
    std::string tile = reg.ReadString(kDesktop, "TileWallpaper", "-");
    std::string fit = reg.ReadString(kDesktop, "WallpaperStyle", "-");
    return tile.substr(0, 1) + fit.substr(0, 1);
  };
  gWallpaperPosition = 1;
  form_.Timer1_Timer();
  EXPECT_EQ(style(), "10");
  gWallpaperPosition = 2;
  form_.Timer1_Timer();
  EXPECT_EQ(style(), "00");
  gWallpaperPosition = 3;
  form_.Timer1_Timer();
  EXPECT_EQ(style(), "02");
  gWallpaperPosition = 7;
  form_.Timer1_Timer();
  EXPECT_EQ(style(), "00");
}

TEST_F(TickTest, SequentialOrderWrapsFromTheTotalToOne) {
  std::vector<std::int16_t> used;
  for (int i = 0; i < 5; ++i) {
    form_.Timer1_Timer();
    used.push_back(form_.mCurrentIndex);
  }
  EXPECT_EQ(used, (std::vector<std::int16_t>{1, 2, 3, 1, 2}));
}

TEST_F(TickTest, WithOneEntrySequentialOrderKeepsShowingIt) {
  WriteFile(Index(), "[Files]\r\n1=Sea\\bay.jpg\r\n[Count]\r\nTotal=1\r\n");
  for (int i = 0; i < 3; ++i) form_.Timer1_Timer();
  EXPECT_EQ(form_.mCurrentIndex, 1);
  EXPECT_EQ(wallpaper_.calls.size(), 3u);
}

TEST_F(TickTest, RandomOrderStaysWithinOneToTheTotal) {
  gWallpaperOrder = 2;
  std::set<std::int16_t> seen;
  for (int i = 0; i < 60; ++i) {
    form_.Timer1_Timer();
    seen.insert(form_.mCurrentIndex);
  }
  EXPECT_EQ(seen, (std::set<std::int16_t>{1, 2, 3}));
}

TEST_F(TickTest, ABlankEntryPassesTheTickWithoutAChange) {
  WriteFile(Index(), "[Count]\r\nTotal=0\r\n");
  form_.Timer1_Timer();
  EXPECT_EQ(form_.mCurrentIndex, 1);
  EXPECT_TRUE(wallpaper_.calls.empty());
  EXPECT_EQ(form_.mTickCount, 0);
}

TEST_F(TickTest, AnAbsentIndexFailsAtTheTotalInBothOrders) {
  fs::remove(Host(Index()));
  EXPECT_THROW(form_.Timer1_Timer(), Failure);
  gWallpaperOrder = 2;
  EXPECT_THROW(form_.Timer1_Timer(), Failure);
}

TEST_F(TickTest, AnEntryWithoutABackslashFailsAtItsSecondElement) {
  WriteFile(Index(), "[Files]\r\n1=nobackslash.jpg\r\n[Count]\r\nTotal=1\r\n");
  try {
    form_.Timer1_Timer();
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::SubscriptOutOfRange);
  }
}

TEST_F(TickTest, AnUndecodablePictureFailsAndTheNextTickWorks) {
  MakeCollection("Bad", {"broken.bad.jpg"});
  WriteFile(Index(),
            "[Files]\r\n1=Bad\\broken.bad.jpg\r\n2=Sea\\bay.jpg\r\n[Count]\r\nTotal=2\r\n");
  EXPECT_THROW(form_.Timer1_Timer(), Failure);
  EXPECT_TRUE(wallpaper_.calls.empty());
  form_.Timer1_Timer();
  EXPECT_EQ(wallpaper_.calls.size(), 1u);
  EXPECT_EQ(form_.mCurrentIndex, 2);
}

TEST_F(TickTest, AnUndecodablePictureLeavesTheHiddenBoxWithItsLastPicture) {
  MakeCollection("Bad", {"broken.bad.jpg"});
  WriteFile(Index(),
            "[Files]\r\n1=Sea\\bay.jpg\r\n2=Bad\\broken.bad.jpg\r\n[Count]\r\nTotal=2\r\n");
  form_.Timer1_Timer();
  const ui::Pixels shown = form_.PBTempWallpaper.Picture();
  ASSERT_FALSE(shown.Empty());
  EXPECT_THROW(form_.Timer1_Timer(), Failure);
  EXPECT_EQ(form_.PBTempWallpaper.Picture(), shown);
}

TEST_F(TickTest, AMissingArchiveShowsAnEarlierTempAgainOrFailsWithoutOne) {
  WriteFile(Index(), "[Files]\r\n1=Gone\\x.png\r\n[Count]\r\nTotal=1\r\n");
  EXPECT_THROW(form_.Timer1_Timer(), Failure);  // no Temp.PNG lies about
  WriteFile(core::gDataFolder + "Temp.PNG", "PIC earlier");
  form_.Timer1_Timer();
  ASSERT_EQ(wallpaper_.calls.size(), 1u);
  EXPECT_EQ(ReadFile(core::gDataFolder + "Temp.PNG"), "PIC earlier");
}

TEST_F(TickTest, TheTrayMenusChangeFiresAtOnceOnlyWhenEnabled) {
  gWallpaperInterval = 30;
  gWallpaperEnable = kFalse;
  form_.mnuChangeWallpaper_Click();
  EXPECT_EQ(form_.mTickCount, 0);
  EXPECT_TRUE(wallpaper_.calls.empty());
  gWallpaperEnable = kTrue;
  form_.mnuChangeWallpaper_Click();
  EXPECT_EQ(wallpaper_.calls.size(), 1u);
  EXPECT_EQ(form_.mTickCount, 0);
}

TEST_F(TickTest, TheTimerTicksEveryMinuteFromTheWindowsCreation) {
  EXPECT_EQ(form_.Timer1.Interval, 60000);
  EXPECT_TRUE(form_.Timer1.Enabled());
  ASSERT_TRUE(form_.Timer1.Tick);
  form_.Timer1.Tick();
  EXPECT_EQ(wallpaper_.calls.size(), 1u);
}

}  // namespace
}  // namespace quorvane
