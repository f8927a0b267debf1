// The collection store and the automatic change over the build's own files, profile files,
// packer, picture loader and wallpaper call: the listing of the data folder, Files.ini as the
// ticked collections make it, the removal of a collection, and the minute tick with its order,
// its files and its failures. Natively that is the portable adapters; under Wine the platform's
// own. Only the message boxes are answered by the test. The desktop's style values and its
// wallpaper are put back afterwards.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "IcoFiles.h"
#include "PictureFiles.h"
#include "RegistrySnapshot.h"
#include "Support.h"
#include "base/Failure.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "platform/CollectionPacker.h"
#include "platform/FileSystem.h"
#include "platform/MessageBoxes.h"
#include "platform/Service.h"
#include "platform/Wallpaper.h"
#include "stores/AdvRegistryAccess.h"
#include "stores/iniReadWrite.h"
#include "wallpaper/MWallpaper.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace quorvane::testing {
namespace {

using platform::Use;

constexpr char kDesktop[] = "HKEY_CURRENT_USER\\Control Panel\\Desktop";

// Message boxes answered from a list, every prompt kept.
class AnsweredBoxes final : public platform::MessageBoxes {
 public:
  std::int32_t MsgBox(const std::string& prompt, std::int32_t buttons,
                      const std::string&) override {
    prompts.push_back(prompt);
    if (answers.empty()) return buttons == platform::msgbox::kYesNo ? platform::msgbox::kNo
                                                                     : platform::msgbox::kOk;
    const std::int32_t answer = answers.front();
    answers.pop_front();
    return answer;
  }
  std::vector<std::string> prompts;
  std::deque<std::int32_t> answers;
};

// The wallpaper the system had, put back through the same call the program makes.
class KeptWallpaper {
 public:
  KeptWallpaper() {
    char path[1024] = {};
#ifdef _WIN32
    ::SystemParametersInfoA(SPI_GETDESKWALLPAPER, sizeof path, path, 0);
#endif
    previous_ = path;
  }
  ~KeptWallpaper() {
    Use<platform::Wallpaper>().SystemParametersInfoA(platform::spi::kSetDeskWallpaper, 0,
                                                     previous_, platform::spi::kUpdateIniFile);
  }
  KeptWallpaper(const KeptWallpaper&) = delete;
  KeptWallpaper& operator=(const KeptWallpaper&) = delete;

 private:
  std::string previous_;
};

// The width and height a bitmap file's header gives, and its bits a pixel; none for no bitmap.
struct BitmapHeader {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t bits = 0;
};
std::optional<BitmapHeader> ReadBitmapHeader(const std::string& path) {
  std::string bytes;
  if (!Use<platform::FileSystem>().ReadAll(path, bytes) || bytes.size() < 54 ||
      bytes.compare(0, 2, "BM") != 0) {
    return std::nullopt;
  }
  const auto at = [&](std::size_t offset, int size) {
    std::uint32_t value = 0;
    for (int i = size - 1; i >= 0; --i) {
      value = value << 8 | static_cast<std::uint8_t>(bytes[offset + static_cast<std::size_t>(i)]);
    }
    return value;
  };
  return BitmapHeader{static_cast<std::int32_t>(at(18, 4)), static_cast<std::int32_t>(at(22, 4)),
                      static_cast<std::int32_t>(at(28, 2))};
}

class CollectionStoreConformance : public ::testing::Test {
 protected:
  void SetUp() override {
    previousData_ = core::gDataFolder;
    core::gDataFolder = FreshTempFolder();
    kept_.Keep(kDesktop, "TileWallpaper");
    kept_.Keep(kDesktop, "WallpaperStyle");
    gWallpaperEnable = kTrue;
    gWallpaperInterval = 0;
    gWallpaperOrder = 1;
    gWallpaperPosition = 1;
  }
  void TearDown() override { core::gDataFolder = previousData_; }

  // Packs a collection; a file whose name ends in ".bad" holds no picture, every other one is
  // a bitmap of `width` by 2 pixels, its width the file's place in the list plus 2.
  void MakeCollection(const std::string& name, const std::vector<std::string>& files) {
    const std::string sources = FreshTempFolder();
    auto packer = Use<platform::CollectionPackers>().Create();
    std::int32_t width = 2;
    for (const std::string& file : files) {
      ++width;
      const std::string bytes =
          file.size() > 4 && file.substr(file.size() - 4) == ".bad"
              ? std::string("no picture at all")
              : picture_files::BitmapFile(width, 2, 24,
                                          std::vector<std::uint32_t>(
                                              static_cast<std::size_t>(width) * 2, 0x336699));
      ASSERT_TRUE(WriteBytes(sources + file, bytes));
      packer->PackFile(sources + file, core::gDataFolder + name + ".RXS", 0, "", true);
    }
    packer->Release();
  }
  static std::set<std::string> Texts(const ui::TreeView& tree) {
    std::set<std::string> texts;
    for (std::int32_t i = 1; i <= tree.Count(); ++i) texts.insert(tree.Item(i).Text);
    return texts;
  }
  static void Tick(ui::TreeView& tree, const std::set<std::string>& ticked) {
    for (std::int32_t i = 1; i <= tree.Count(); ++i) {
      tree.Item(i).Checked = ticked.count(tree.Item(i).Text) > 0;
    }
  }
  static std::int32_t NodeOf(const ui::TreeView& tree, const std::string& text) {
    for (std::int32_t i = 1; i <= tree.Count(); ++i) {
      if (tree.Item(i).Text == text) return i;
    }
    return 0;
  }
  std::string Index() const { return core::gDataFolder + "Files.ini"; }
  std::string Read(const std::string& path) const {
    std::string bytes;
    Use<platform::FileSystem>().ReadAll(path, bytes);
    return bytes;
  }
  bool Exists(const std::string& path) const {
    auto& files = Use<platform::FileSystem>();
    return files.FileExists(path) || files.FolderExists(path);
  }
  // The files of a folder in the order the file system gives them.
  std::vector<std::string> Listed(const std::string& folder) const {
    std::vector<std::string> names;
    Use<platform::FileSystem>().ListFiles(folder, names);
    return names;
  }
  static std::int32_t FailureOf(FrmMain& form) {
    try {
      form.Timer1_Timer();
    } catch (const Failure& failure) {
      return static_cast<std::int32_t>(failure.Number());
    }
    return 0;
  }

  std::string previousData_;
  RegistrySnapshot kept_;
  KeptWallpaper wallpaper_;
  AnsweredBoxes boxes_;
  platform::ScopedService<platform::MessageBoxes> answering_{boxes_};
};

TEST_F(CollectionStoreConformance, TheListingTakesEveryCaseOfRxsAndNothingElse) {
  MakeCollection("Sea", {"bay.bmp"});
  const std::string archive = Read(core::gDataFolder + "Sea.RXS");
  ASSERT_TRUE(WriteBytes(core::gDataFolder + "lower.rxs", archive));
  ASSERT_TRUE(WriteBytes(core::gDataFolder + "Mixed.Rxs", archive));
  ASSERT_TRUE(WriteBytes(core::gDataFolder + "notes.txt", "x"));
  ASSERT_TRUE(WriteBytes(core::gDataFolder + "RXS", "x"));
  ASSERT_TRUE(Use<platform::FileSystem>().CreateFolder(core::gDataFolder + "Folder.RXS"));
  ui::TreeView tree("TvCollections");
  ListCollections(tree);
  EXPECT_EQ(Texts(tree), (std::set<std::string>{"Sea", "lower", "Mixed"}));
  ListCollections(tree);
  EXPECT_EQ(tree.Count(), 6) << "listing again adds to the tree; it does not clear it";
}

TEST_F(CollectionStoreConformance, FilesIniListsTheTickedCollectionsInTreeOrderWithoutThumbsDb) {
  MakeCollection("Sea", {"bay.bmp", "cliff.bmp"});
  MakeCollection("Town", {"night.bmp", "Thumbs.db", "square.bmp"});
  MakeCollection("Lake", {"shore.bmp"});
  ui::TreeView tree("TvCollections");
  ListCollections(tree);
  ASSERT_EQ(tree.Count(), 3);
  Tick(tree, {"Sea", "Town"});
  RebuildFilesIni(tree);

  // The entries follow the tree, and in each collection the file system's order.
  std::string expected = "[Files]\r\n";
  int counter = 0;
  for (std::int32_t node = 1; node <= tree.Count(); ++node) {
    if (!tree.Item(node).Checked) continue;
    const std::string name = tree.Item(node).Text;
    for (const std::string& file : Listed(core::gDataFolder + name)) {
      if (file == "Thumbs.db") continue;
      expected += std::to_string(++counter) + "=" + name + "\\" + file + "\r\n";
    }
  }
  expected += "[Count]\r\nTotal=4\r\n";
  EXPECT_EQ(counter, 4);
  EXPECT_EQ(Read(Index()), expected);
  // The folders unpacked for the listing stay; the unticked collection was never unpacked.
  EXPECT_TRUE(Use<platform::FileSystem>().FolderExists(core::gDataFolder + "Sea"));
  EXPECT_TRUE(Use<platform::FileSystem>().FileExists(core::gDataFolder + "Town\\Thumbs.db"));
  EXPECT_FALSE(Exists(core::gDataFolder + "Lake"));
}

TEST_F(CollectionStoreConformance, FilesIniWithNoTickedCollectionHoldsOnlyItsTotal) {
  MakeCollection("Sea", {"bay.bmp"});
  ASSERT_TRUE(WriteBytes(Index(), "[Files]\r\n1=Old\\gone.bmp\r\n"));
  ui::TreeView tree("TvCollections");
  ListCollections(tree);
  RebuildFilesIni(tree);
  EXPECT_EQ(Read(Index()), "[Count]\r\nTotal=0\r\n");
}

TEST_F(CollectionStoreConformance, RemovalAsksThenDeletesTheArchiveAndItsFolderAndListsAnew) {
  MakeCollection("Sea", {"bay.bmp"});
  MakeCollection("Town", {"night.bmp"});
  ASSERT_TRUE(Use<platform::FileSystem>().CreateFolder(core::gDataFolder + "Sea"));
  ASSERT_TRUE(WriteBytes(core::gDataFolder + "Sea\\bay.bmp", "unpacked before"));
  ASSERT_TRUE(WriteBytes(Index(), "[Files]\r\n1=Sea\\bay.bmp\r\n[Count]\r\nTotal=1\r\n"));
  FrmMain form;
  MainWindowScope installed(form);
  form.RefreshCollections();
  form.CmdWallpaperControl_Click(2);
  ASSERT_EQ(boxes_.prompts, (std::vector<std::string>{"Select a collection to remove first!"}));

  form.TvCollections.Select(NodeOf(form.TvCollections, "Sea"));
  boxes_.answers = {platform::msgbox::kNo};
  form.CmdWallpaperControl_Click(2);
  EXPECT_EQ(boxes_.prompts.back(), "Are you sure you want to delete?");
  EXPECT_TRUE(Exists(core::gDataFolder + "Sea.RXS"));

  boxes_.answers = {platform::msgbox::kYes};
  form.CmdWallpaperControl_Click(2);
  EXPECT_FALSE(Exists(core::gDataFolder + "Sea.RXS"));
  EXPECT_FALSE(Exists(core::gDataFolder + "Sea"));
  EXPECT_EQ(Texts(form.TvCollections), (std::set<std::string>{"Town"}));
  EXPECT_EQ(ReadIniValue("Files", "1", Index()), "Sea\\bay.bmp") << "Files.ini is left alone";

  // The last one: the strip is emptied.
  form.optThumb[0].Tag("night.bmp");
  form.optThumb[0].Caption("night.bmp");
  form.TvCollections.Select(1);
  boxes_.answers = {platform::msgbox::kYes};
  form.CmdWallpaperControl_Click(2);
  EXPECT_EQ(form.TvCollections.Count(), 0);
  EXPECT_EQ(form.optThumb[0].Tag(), "");
  EXPECT_EQ(form.optThumb[0].Caption(), "");
}

TEST_F(CollectionStoreConformance, TheTickTakesTheEntriesInOrderAndWrapsWithTheirStyle) {
  MakeCollection("Sea", {"bay.bmp", "cliff.bmp", "reef.bmp"});
  ui::TreeView tree("TvCollections");
  ListCollections(tree);
  Tick(tree, {"Sea"});
  RebuildFilesIni(tree);
  const std::vector<std::string> entries = {ReadIniValue("Files", "1", Index()),
                                            ReadIniValue("Files", "2", Index()),
                                            ReadIniValue("Files", "3", Index())};
  DeleteFolderIfPresent(core::gDataFolder + "Sea");

  FrmMain form;
  MainWindowScope installed(form);
  AdvRegistryAccess reg;
  const int positions[] = {1, 2, 3, 1};
  for (int change = 0; change < 4; ++change) {
    gWallpaperPosition = static_cast<std::int16_t>(positions[change]);
    form.Timer1_Timer();
    EXPECT_EQ(form.mCurrentIndex, change % 3 + 1);
    // The picture of that entry is now WP.bmp, a 24-bit bitmap of its size.
    const std::string file = entries[static_cast<std::size_t>(change % 3)].substr(4);
    const std::int32_t width =
        file == "bay.bmp" ? 3 : file == "cliff.bmp" ? 4 : 5;
    const std::optional<BitmapHeader> saved = ReadBitmapHeader(core::gDataFolder + "WP.bmp");
    ASSERT_TRUE(saved.has_value()) << "change " << change;
    EXPECT_EQ(saved->width, width) << file;
    EXPECT_EQ(saved->height, 2) << file;
    EXPECT_EQ(saved->bits, 24);
    EXPECT_TRUE(Use<platform::FileSystem>().FileExists(core::gDataFolder + "Temp.BMP"));
    EXPECT_EQ(reg.ReadString(kDesktop, "TileWallpaper", "-"),
              std::string(positions[change] == 1 ? "1" : "0") + '\0');
    EXPECT_EQ(reg.ReadString(kDesktop, "WallpaperStyle", "-"),
              std::string(positions[change] == 3 ? "2" : "0") + '\0');
  }
}

// The colour of the pixel at (x, y) of a 24-bit bitmap file, as 0xBBGGRR; rows are bottom-up and
// padded to four bytes.
std::uint32_t BitmapPixel(const std::string& bytes, std::int32_t width, std::int32_t height,
                          std::int32_t x, std::int32_t y) {
  const std::size_t stride = (static_cast<std::size_t>(width) * 3 + 3) / 4 * 4;
  const std::size_t bits = static_cast<std::uint8_t>(bytes[10]) |
                           static_cast<std::size_t>(static_cast<std::uint8_t>(bytes[11])) << 8;
  const std::size_t at = bits + static_cast<std::size_t>(height - 1 - y) * stride +
                         static_cast<std::size_t>(x) * 3;
  const auto byte = [&](std::size_t i) { return static_cast<std::uint32_t>(
                                             static_cast<std::uint8_t>(bytes.at(i))); };
  return byte(at) << 16 | byte(at + 1) << 8 | byte(at + 2);  // blue, green, red in the file
}

TEST_F(CollectionStoreConformance, WhereThePictureIsTransparentTheWallpaperTakesTheBoxsBackColor) {
  // A GIF of 4 by 2: its left half red, its right half the transparent index.
  const std::string sources = FreshTempFolder();
  const std::vector<std::uint32_t> palette = {0x000000, 0xFF0000};
  const std::vector<std::uint32_t> indices = {1, 1, 0, 0, 1, 1, 0, 0};
  ASSERT_TRUE(WriteBytes(sources + "glass.gif",
                         picture_files::GifFile(4, 2, palette, indices, false, 0)));
  {
    auto packer = Use<platform::CollectionPackers>().Create();
    packer->PackFile(sources + "glass.gif", core::gDataFolder + "Glass.RXS", 0, "", true);
    packer->Release();
  }
  ASSERT_TRUE(WriteBytes(Index(), "[Files]\r\n1=Glass\\glass.gif\r\n[Count]\r\nTotal=1\r\n"));
  FrmMain form;
  MainWindowScope installed(form);
  form.PBTempWallpaper.BackColor = 0x40C020;

  form.Timer1_Timer();
  const std::string saved = Read(core::gDataFolder + "WP.bmp");
  const std::optional<BitmapHeader> header = ReadBitmapHeader(core::gDataFolder + "WP.bmp");
  ASSERT_TRUE(header.has_value());
  ASSERT_EQ(header->width, 4);
  ASSERT_EQ(header->height, 2);
  ASSERT_EQ(header->bits, 24);
  for (std::int32_t y = 0; y < 2; ++y) {
    EXPECT_EQ(BitmapPixel(saved, 4, 2, 0, y), 0x0000FFu) << "red, as 0xBBGGRR, row " << y;
    EXPECT_EQ(BitmapPixel(saved, 4, 2, 1, y), 0x0000FFu) << "row " << y;
    EXPECT_EQ(BitmapPixel(saved, 4, 2, 2, y), 0x40C020u) << "the back colour, row " << y;
    EXPECT_EQ(BitmapPixel(saved, 4, 2, 3, y), 0x40C020u) << "row " << y;
  }
}

TEST_F(CollectionStoreConformance, ARandomChangeStaysWithinTheList) {
  MakeCollection("Sea", {"bay.bmp", "cliff.bmp"});
  ui::TreeView tree("TvCollections");
  ListCollections(tree);
  Tick(tree, {"Sea"});
  RebuildFilesIni(tree);
  FrmMain form;
  MainWindowScope installed(form);
  gWallpaperOrder = 0;
  for (int change = 0; change < 6; ++change) {
    form.Timer1_Timer();
    EXPECT_GE(form.mCurrentIndex, 1);
    EXPECT_LE(form.mCurrentIndex, 2);
  }
}

TEST_F(CollectionStoreConformance, FailedChangesGoUpAndTheNextOneWorks) {
  MakeCollection("Sea", {"bay.bmp"});
  MakeCollection("Bad", {"broken.bad"});
  FrmMain form;
  MainWindowScope installed(form);

  ASSERT_TRUE(WriteBytes(Index(), "[Files]\r\n1=Bad\\broken.bad\r\n[Count]\r\nTotal=1\r\n"));
  EXPECT_EQ(FailureOf(form), 481) << "no picture";
  EXPECT_FALSE(Exists(core::gDataFolder + "WP.bmp"));

  ASSERT_TRUE(WriteBytes(Index(), "[Files]\r\n1=Gone\\x.jpg\r\n[Count]\r\nTotal=1\r\n"));
  EXPECT_EQ(FailureOf(form), 53) << "an archive that is gone and no Temp.JPG";

  ASSERT_TRUE(WriteBytes(Index(), "[Files]\r\n1=Sea\\bay.bmp\r\n[Count]\r\nTotal=many\r\n"));
  EXPECT_EQ(FailureOf(form), 13) << "a Total that is no number";

  ASSERT_TRUE(WriteBytes(Index(), "[Files]\r\n1=Sea\\bay.bmp\r\n[Count]\r\nTotal=1\r\n"));
  EXPECT_EQ(FailureOf(form), 0);
  const std::optional<BitmapHeader> saved = ReadBitmapHeader(core::gDataFolder + "WP.bmp");
  ASSERT_TRUE(saved.has_value());
  EXPECT_EQ(saved->width, 3);
}

}  // namespace
}  // namespace quorvane::testing
