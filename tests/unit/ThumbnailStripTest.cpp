// The wallpaper page's thumbnail strip over the portable services: the fill from a real packed
// collection (its order, the pattern, unreadable files, icons by name, the captions), the layout
// and scrolling arithmetic, the progress, DrawThumbnail's geometry on memory device contexts, set
// now and the double click; and the control kinds the strip is made of.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "platform/MemorySurface.h"
#include "platform/Pictures.h"
#include "platform/Service.h"
#include "platform/Wallpaper.h"
#include "stores/AdvRegistryAccess.h"
#include "ui/StripControls.h"
#include "wallpaper/Thumbnails.h"

#include "PortableServices.h"
#include "ScratchFiles.h"

namespace quorvane {
namespace {

namespace fs = std::filesystem;

constexpr char kDesktop[] = "HKEY_CURRENT_USER\\Control Panel\\Desktop";

// Pictures from their content: "PIC <w> <h> <colour>" decodes to a picture of that size in that
// colour (0xRRGGBB, opaque); anything else is no picture. Every load is noted with the size it
// was asked at ("sized" for an icon's load).
class TestPictures final : public platform::Pictures {
 public:
  ui::Pixels LoadPicture(const std::string& path) override { return Decode(path, "plain"); }
  void LoadPictureSizedInto(const std::string& path, std::int32_t size, std::int32_t depth,
                            ui::Pixels& picture) override {
    picture = Decode(path, "sized " + std::to_string(size) + " " + std::to_string(depth));
  }
  void SavePicture(const ui::Pixels& picture, const std::string& path) override {
    saves.push_back(path + " " + std::to_string(picture.width) + "x" +
                    std::to_string(picture.height));
  }
  std::vector<std::string> loads;
  std::vector<std::string> saves;

 private:
  ui::Pixels Decode(const std::string& path, const std::string& how) {
    std::string content;
    if (!platform::Use<platform::FileSystem>().ReadAll(path, content)) {
      throw Failure(FailureNumber::FileNotFound, "File not found");
    }
    loads.push_back(path.substr(path.rfind('\\') + 1) + " " + how);
    int width = 0, height = 0;
    unsigned colour = 0;
    if (std::sscanf(content.c_str(), "PIC %d %d %x", &width, &height, &colour) != 3) {
      throw Failure(FailureNumber::InvalidPicture, "Invalid picture");
    }
    return ui::Pixels{width, height,
                      std::vector<std::uint32_t>(static_cast<std::size_t>(width * height),
                                                 0xFF000000u | colour)};
  }
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

// Captions measured as a fixed-pitch type: 90 twips (6 pixels) a letter.
constexpr std::int32_t kLetter = 90;

class ThumbnailStripTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(scratch_ / "data");
    core::gDataFolder = (scratch_ / "data").string() + "\\";
    ui::InstallTextMeasure(
        [](const std::string& text) { return static_cast<std::int32_t>(text.size()) * kLetter; });
    for (ui::PictureBox* box : {&form_.picThumb, &form_.picLoad, &form_.picSlide}) {
      box->UseSurface(std::make_shared<platform::MemorySurface>());
    }
  }
  void TearDown() override { ui::InstallTextMeasure(nullptr); }

  // Packs a collection; each file holds `content` for its name.
  void MakeCollection(const std::string& name, const std::vector<std::string>& files,
                      const std::string& content = "PIC 200 100 3366CC") {
    services_.PackCollection(scratch_ / "sources", name, files, [&](const std::string& file) {
      return file.find(".bad") != std::string::npos ? std::string("not a picture") : content;
    });
  }
  void OpenFirst() {
    form_.RefreshCollections();
    form_.TvCollections.Select(1);
    form_.TvCollections_NodeClick();
  }
  // Selects the collection's node and clicks it.
  void Open(const std::string& name) {
    for (std::int32_t i = 1; i <= form_.TvCollections.Count(); ++i) {
      if (form_.TvCollections.Item(i).Text == name) form_.TvCollections.Select(i);
    }
    form_.TvCollections_NodeClick();
  }
  std::vector<std::string> Tags() {
    std::vector<std::string> tags;
    for (std::size_t i = 0; i < form_.optThumb.size(); ++i) tags.push_back(form_.optThumb[i].Tag());
    return tags;
  }

  testing::ScratchFolder scratch_{"strip"};
  testing::PortableServices services_;
  TestPictures pictures_;
  TestWallpaper wallpaper_;
  platform::ScopedService<platform::Pictures> ownPictures_{pictures_};
  platform::ScopedService<platform::Wallpaper> ownWallpaper_{wallpaper_};
  FrmMain form_;
  MainWindowScope installed_{form_};
};

// --- the fill -----------------------------------------------------------------------------------

TEST_F(ThumbnailStripTest, FillsInAlphabeticalOrderThroughThePatternWithoutGaps) {
  MakeCollection("Sea", {"c.jpg", "A.bmp", "b.bad.gif", "d.pcx", "Thumbs.db", "e.GIF", "f.png"});
  OpenFirst();
  // The .pcx, the .png and Thumbs.db don't match; the undecodable b.bad.gif leaves no gap.
  EXPECT_EQ(Tags(), (std::vector<std::string>{"A.bmp", "c.jpg", "e.GIF"}));
  for (std::size_t i = 0; i < form_.optThumb.size(); ++i) {
    EXPECT_EQ(form_.optThumb[i].Caption(), form_.optThumb[i].Tag());
    EXPECT_TRUE(form_.optThumb[i].Visible());
    EXPECT_EQ(form_.optThumb[i].BackColor(), 0xFFFFFFu);
    EXPECT_EQ(form_.optThumb[i].Picture().width, 64);
    EXPECT_EQ(form_.optThumb[i].Container, &form_.picSlide);
  }
  EXPECT_TRUE(form_.optThumb[0].Value());
  EXPECT_FALSE(form_.optThumb[1].Value());
  EXPECT_TRUE(form_.picSlide.Visible());
  EXPECT_TRUE(form_.TvCollections.Enabled());
  EXPECT_FALSE(form_.picProgress.Visible());
  // The bar ends at 100 of 150.
  EXPECT_EQ(form_.picProgress.Max(), 150);
  EXPECT_EQ(form_.picProgress.Value(), 100);
  EXPECT_FALSE(fs::exists(scratch_ / "data" / "Sea")) << "the unpacked folder goes again";
  const auto& requests = services_.application.Requests();
  ASSERT_GE(requests.size(), 2u);
  EXPECT_EQ(requests[requests.size() - 2], "pointer 11");
  EXPECT_EQ(requests.back(), "pointer 0");
  EXPECT_TRUE(form_.picLoad.Picture().Empty()) << "no full picture is kept";
}

TEST_F(ThumbnailStripTest, ProgressIsTheShareDoneRoundedToEven) {
  // Eight files: 12.5 % a file; 1/8 gives 12 and 3/8 gives 38, as halves go to the even number.
  MakeCollection("Sea", {"1.jpg", "2.jpg", "3.jpg", "4.jpg", "5.jpg", "6.jpg", "7.jpg", "8.jpg"});
  form_.RefreshCollections();
  form_.TvCollections.Select(1);
  std::vector<double> seen;
  // At every yield the bar's value is read, and the reading waits for the next one.
  std::function<void()> read = [&] {
    seen.push_back(form_.picProgress.Value());
    services_.events.Post(read);
  };
  services_.events.Post(read);
  form_.TvCollections_NodeClick();
  // The first yield is the one before the files, with the bar at 0 and not yet shown.
  ASSERT_GE(seen.size(), 9u);
  EXPECT_EQ(std::vector<double>(seen.begin() + 1, seen.begin() + 9),
            (std::vector<double>{12, 25, 38, 50, 62, 75, 88, 100}));
}

TEST_F(ThumbnailStripTest, YieldsOnEveryFileAndOnceBefore) {
  MakeCollection("Sea", {"a.jpg", "b.jpg", "c.bad.jpg"});
  form_.RefreshCollections();
  form_.TvCollections.Select(1);
  const int before = services_.events.Yields();
  std::vector<bool> enabledWhileFilling;
  services_.events.Post([&] { enabledWhileFilling.push_back(form_.TvCollections.Enabled()); });
  form_.TvCollections_NodeClick();
  EXPECT_EQ(services_.events.Yields() - before, 1 + 3);
  EXPECT_EQ(enabledWhileFilling, (std::vector<bool>{false}));
}

TEST_F(ThumbnailStripTest, AnEmptyCollectionKeepsTheFirstThumbnailAsItWas) {
  MakeCollection("Sea", {"a.jpg"});
  MakeCollection("Town", {"only.pcx"});
  form_.RefreshCollections();
  Open("Sea");
  ASSERT_EQ(Tags(), (std::vector<std::string>{"a.jpg"}));
  const ui::Pixels picture = form_.optThumb[0].Picture();
  form_.optThumb[0].Value(false);
  Open("Town");
  EXPECT_EQ(Tags(), (std::vector<std::string>{"a.jpg"}));
  EXPECT_EQ(form_.optThumb[0].Caption(), "a.jpg");
  EXPECT_EQ(form_.optThumb[0].Picture(), picture);
  EXPECT_TRUE(form_.optThumb[0].Value());
}

TEST_F(ThumbnailStripTest, ANewFillUnloadsTheElementsOfTheLastOne) {
  MakeCollection("Sea", {"a.jpg", "b.jpg", "c.jpg", "d.jpg"});
  MakeCollection("Town", {"x.jpg", "y.jpg"});
  form_.RefreshCollections();
  Open("Sea");
  EXPECT_EQ(form_.optThumb.size(), 4u);
  const std::size_t controls = form_.Controls().size();
  Open("Town");
  EXPECT_EQ(Tags(), (std::vector<std::string>{"x.jpg", "y.jpg"}));
  EXPECT_EQ(form_.Controls().size(), controls - 2);
}

TEST_F(ThumbnailStripTest, IconsAreLoadedAtTheLargeShellSizeByAnyDotIcoOrDotCurInTheName) {
  MakeCollection("Sea", {"a.ico.jpg", "b.CUR", "c.jpg", "d.Ico"});
  OpenFirst();
  EXPECT_EQ(pictures_.loads,
            (std::vector<std::string>{"a.ico.jpg sized 3 0", "b.CUR sized 3 0", "c.jpg plain",
                                      "d.Ico sized 3 0"}));
}

TEST_F(ThumbnailStripTest, CaptionsAreShortenedByMeasuredWidth) {
  // The element is 1200 twips wide: the limit is 1185, 13 letters and a part.
  EXPECT_EQ(ShortenedCaption("abcdefghijklm", 1185), "abcdefghijklm");
  // A name exactly as wide as the limit stays whole.
  EXPECT_EQ(ShortenedCaption("abcdefghijklm", 13 * kLetter), "abcdefghijklm");
  // One letter more: the limit less "..." (270) holds 10 letters.
  EXPECT_EQ(ShortenedCaption("abcdefghijklmn", 13 * kLetter), "abcdefghij...");
  EXPECT_EQ(ShortenedCaption("a-very-long-wallpaper-name.jpg", 1185), "a-very-lon...");
  MakeCollection("Sea", {"a-very-long-wallpaper-name.jpg"});
  OpenFirst();
  EXPECT_EQ(form_.optThumb[0].Caption(), "a-very-lon...");
  EXPECT_EQ(form_.optThumb[0].Tag(), "a-very-long-wallpaper-name.jpg");
}

// --- layout and scrolling -----------------------------------------------------------------------

TEST_F(ThumbnailStripTest, FiveThumbnailsTakeOneRowAndSixTwo) {
  MakeCollection("Five", {"1.jpg", "2.jpg", "3.jpg", "4.jpg", "5.jpg"});
  MakeCollection("Six", {"1.jpg", "2.jpg", "3.jpg", "4.jpg", "5.jpg", "6.jpg"});
  form_.RefreshCollections();
  Open("Five");
  ASSERT_EQ(form_.optThumb.size(), 5u);
  EXPECT_EQ(form_.picSlide.Width(), 5 * 1200);
  EXPECT_EQ(form_.picSlide.Height(), 1440);
  EXPECT_EQ(form_.optThumb[4].Left(), 4 * 1200);
  EXPECT_EQ(form_.optThumb[4].Top(), 0);
  EXPECT_FALSE(form_.vsbSlide.Enabled()) << "one row fits in the window";
  EXPECT_EQ(form_.vsbSlide.Max(), 0);

  Open("Six");
  ASSERT_EQ(form_.optThumb.size(), 6u);
  EXPECT_EQ(form_.picSlide.Height(), 2 * 1440);
  EXPECT_EQ(form_.optThumb[5].Left(), 0);
  EXPECT_EQ(form_.optThumb[5].Top(), 1440);
  EXPECT_TRUE(form_.vsbSlide.Enabled());
  EXPECT_EQ(form_.vsbSlide.Max(), 2 * 1440 - 2640);
  EXPECT_EQ(form_.vsbSlide.SmallChange, 1440);
  EXPECT_EQ(form_.vsbSlide.LargeChange, 2640);
}

TEST_F(ThumbnailStripTest, ScrollingMovesTheSheet) {
  MakeCollection("Sea", std::vector<std::string>{"01.jpg", "02.jpg", "03.jpg", "04.jpg", "05.jpg",
                                                 "06.jpg", "07.jpg", "08.jpg", "09.jpg", "10.jpg",
                                                 "11.jpg"});
  OpenFirst();
  EXPECT_EQ(form_.vsbSlide.Max(), 3 * 1440 - 2640);
  form_.vsbSlide.Value(1000);
  EXPECT_EQ(form_.picSlide.Top(), -1000);
  form_.vsbSlide.Track(1500);
  EXPECT_EQ(form_.picSlide.Top(), -1500);
  form_.LayoutThumbnailStrip();
  EXPECT_EQ(form_.vsbSlide.Value(), 0);
  EXPECT_EQ(form_.picSlide.Top(), 0);
}

TEST_F(ThumbnailStripTest, TheWallpaperPageOpensOnItsFirstCollection) {
  MakeCollection("Sea", {"a.jpg", "b.jpg"});
  form_.RefreshCollections();
  form_.CmdMenu_Click(3);
  EXPECT_EQ(form_.TvCollections.SelectedItem(), 1);
  EXPECT_EQ(Tags(), (std::vector<std::string>{"a.jpg", "b.jpg"}));
}

// --- DrawThumbnail ------------------------------------------------------------------------------

class DrawThumbnailTest : public ::testing::Test {
 protected:
  ui::Pixels Draw(std::int32_t width, std::int32_t height, std::uint32_t colour) {
    source_.Picture(ui::Pixels{width, height,
                               std::vector<std::uint32_t>(
                                   static_cast<std::size_t>(width) * height, 0xFF000000u | colour)});
    target_.UseSurface(std::make_shared<platform::MemorySurface>());
    DrawThumbnail(source_, target_);
    return target_.Image();
  }
  static std::uint32_t At(const ui::Pixels& image, int x, int y) {
    return image.bgra[static_cast<std::size_t>(y * image.width + x)] & 0xFFFFFFu;
  }
  testing::PortableServices services_;
  ui::PictureBox source_{"picLoad"};
  ui::PictureBox target_{"picThumb"};
};

TEST_F(DrawThumbnailTest, PlaceIsTheFixedFactorCentred) {
  const ThumbnailPlace small = ThumbnailPlaceOf(200, 100);
  EXPECT_EQ(small.width, 32);   // 31.63
  EXPECT_EQ(small.height, 16);  // 15.82
  EXPECT_EQ(small.x, 16);
  EXPECT_EQ(small.y, 24);
  const ThumbnailPlace large = ThumbnailPlaceOf(1024, 768);
  EXPECT_EQ(large.width, 162);  // 161.96
  EXPECT_EQ(large.height, 121);  // 121.47
  EXPECT_EQ(large.x, -49);
  EXPECT_EQ(large.y, -29);  // -28.5, downwards
  // About 404 pixels is where a picture fills the box.
  EXPECT_EQ(ThumbnailPlaceOf(404, 404).width, 64);
  EXPECT_EQ(ThumbnailPlaceOf(404, 404).x, 0);
}

TEST_F(DrawThumbnailTest, ASmallPictureFloatsInWhiteWithABlackFrame) {
  const ui::Pixels image = Draw(200, 100, 0x3366CC);
  ASSERT_EQ(image.width, 64);
  ASSERT_EQ(image.height, 64);
  EXPECT_EQ(target_.Width(), 960);
  // The picture at 16,24 over 32 by 16; its frame at 15..48 and 23..40.
  for (int y = 0; y < 64; ++y) {
    for (int x = 0; x < 64; ++x) {
      const bool inside = x >= 16 && x < 48 && y >= 24 && y < 40;
      const bool frame = !inside && x >= 15 && x <= 48 && y >= 23 && y <= 40;
      const std::uint32_t expected = inside ? 0x3366CCu : frame ? 0x000000u : 0xFFFFFFu;
      ASSERT_EQ(At(image, x, y), expected) << x << "," << y;
    }
  }
}

TEST_F(DrawThumbnailTest, ABigPictureIsCroppedEvenlyAndHalftoneAveraged) {
  // Left half red, right half blue: the thumbnail shows the middle of the picture.
  const std::int32_t width = 1024, height = 768;
  ui::Pixels picture{width, height, std::vector<std::uint32_t>(width * height)};
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      picture.bgra[static_cast<std::size_t>(y * width + x)] = x < width / 2 ? 0xFFFF0000u
                                                                            : 0xFF0000FFu;
    }
  }
  source_.Picture(picture);
  target_.UseSurface(std::make_shared<platform::MemorySurface>());
  DrawThumbnail(source_, target_);
  const ui::Pixels image = target_.Image();
  // No white and no frame: the frame lies outside the box.
  for (int y = 0; y < 64; ++y) {
    for (int x = 0; x < 64; ++x) {
      const std::uint32_t p = At(image, x, y);
      ASSERT_NE(p, 0xFFFFFFu) << x << "," << y;
      ASSERT_NE(p, 0x000000u) << x << "," << y;
    }
  }
  // The picture's middle (column 81 of 162) falls at x = 81 - 49 = 32.
  EXPECT_EQ(At(image, 31, 32), 0xFF0000u);
  EXPECT_EQ(At(image, 32, 32), 0x0000FFu);
  const auto& journal = services_.gdi.JournalNames();
  EXPECT_NE(std::find(journal.begin(), journal.end(), "StretchDIBits"), journal.end());
  EXPECT_EQ(services_.gdi.LiveBrushes(), 0u) << "the brush is deleted";
}

TEST_F(DrawThumbnailTest, TheBrushAndModeStepsComeInTheirOrder) {
  services_.gdi.ClearJournal();
  Draw(100, 100, 0x808080);
  std::vector<std::string> steps;
  for (const std::string& name : services_.gdi.JournalNames()) {
    if (name == "SetStretchBltMode" || name == "CreateSolidBrush" || name == "UnrealizeObject" ||
        name == "SetBrushOrgEx" || name == "StretchDIBits" || name == "DeleteObject") {
      steps.push_back(name);
    }
  }
  const std::vector<std::string> expected{
      "SetStretchBltMode", "CreateSolidBrush", "UnrealizeObject", "SetBrushOrgEx",
      "StretchDIBits",     "SetStretchBltMode", "UnrealizeObject", "SetBrushOrgEx",
      "DeleteObject"};
  EXPECT_EQ(steps, expected);
}

TEST_F(DrawThumbnailTest, ThePictureIsStretchedFromItsOwnPixelsWithNoCopyOfIt) {
  services_.gdi.ClearJournal();
  Draw(1024, 768, 0x406080);
  // The one bitmap made is the thumbnail's own surface, 64 pixels wide.
  std::size_t bitmaps = 0;
  for (const std::string& call : services_.gdi.Journal()) {
    if (call.rfind("CreateDIBSection(", 0) != 0) continue;
    ++bitmaps;
    EXPECT_EQ(call.find(",1024,"), std::string::npos) << call << ": a bitmap of the picture";
  }
  EXPECT_EQ(bitmaps, 1u);
  std::size_t stretches = 0;
  for (const std::string& name : services_.gdi.JournalNames()) {
    if (name == "StretchDIBits") ++stretches;
    EXPECT_NE(name, "StretchBlt");
  }
  EXPECT_EQ(stretches, 1u);
}

// --- set now and the viewer ---------------------------------------------------------------------

TEST_F(ThumbnailStripTest, SetNowSavesTheCheckedPictureAndLeavesTheStyleValues) {
  MakeCollection("Sea", {"a.jpg", "b.jpg"}, "PIC 640 480 102030");
  OpenFirst();
  AdvRegistryAccess reg(services_.store);
  reg.WriteString(kDesktop, "TileWallpaper", "1");
  reg.WriteString(kDesktop, "WallpaperStyle", "2");
  const std::string tile = reg.ReadString(kDesktop, "TileWallpaper", "-");
  const std::string style = reg.ReadString(kDesktop, "WallpaperStyle", "-");
  form_.optThumb[1].Value(true);
  pictures_.saves.clear();
  form_.CmdSetAsWallpaper_Click();
  EXPECT_EQ(pictures_.saves, (std::vector<std::string>{core::gDataFolder + "WP.bmp 640x480"}));
  EXPECT_EQ(wallpaper_.calls, (std::vector<std::string>{"20,0," + core::gDataFolder + "WP.bmp,1"}));
  EXPECT_TRUE(fs::exists(scratch_ / "data" / "Temp.JPG"));
  EXPECT_FALSE(fs::exists(scratch_ / "data" / "b.jpg"));
  EXPECT_EQ(tile.substr(0, 1), "1");
  EXPECT_EQ(reg.ReadString(kDesktop, "TileWallpaper", "-"), tile);
  EXPECT_EQ(reg.ReadString(kDesktop, "WallpaperStyle", "-"), style);
}

TEST_F(ThumbnailStripTest, SetNowWithAnUndecodablePictureReachesTheCaller) {
  MakeCollection("Sea", {"a.jpg"});
  OpenFirst();
  // The packed file is replaced by one that is no picture.
  services_.PackCollection(scratch_ / "other", "Sea", {"a.jpg"},
                           [](const std::string&) { return std::string("broken"); });
  EXPECT_THROW(form_.CmdSetAsWallpaper_Click(), Failure);
  EXPECT_TRUE(wallpaper_.calls.empty());
}

TEST_F(ThumbnailStripTest, TheFillSetNowAndTheDoubleClickEachGiveTheTreeTheFocus) {
  MakeCollection("Sea", {"a.jpg", "b.gif"}, "PIC 64 48 102030");
  form_.Label13.SetFocus();
  OpenFirst();
  EXPECT_EQ(form_.ActiveControl(), &form_.TvCollections) << "after the fill";
  form_.Label13.SetFocus();
  form_.optThumb[1].Value(true);
  form_.CmdSetAsWallpaper_Click();
  EXPECT_EQ(form_.ActiveControl(), &form_.TvCollections) << "after set now";
  form_.Label13.SetFocus();
  form_.optThumb[1].DblClick();
  EXPECT_EQ(form_.ActiveControl(), &form_.TvCollections) << "after the double click";
}

TEST_F(ThumbnailStripTest, DoubleClickOpensTheTemporaryFileInTheViewer) {
  MakeCollection("Sea", {"a.jpg", "b.gif"});
  OpenFirst();
  form_.optThumb[1].DblClick();
  EXPECT_EQ(services_.actions.calls.back(),
            "ShellExecuteA Open " + core::gDataFolder + "Temp.GIF 0 0 9");
  EXPECT_TRUE(fs::exists(scratch_ / "data" / "Temp.GIF"));
}

// --- the control kinds --------------------------------------------------------------------------

TEST(StripControlsTest, PatternsMatchWithoutRegardToCase) {
  const char* pattern = "*.bmp;*.dib;*.rle;*.gif;*.jpg;*.wmf;*.emf;*.ico;*.cur";
  EXPECT_TRUE(ui::MatchesPattern("a.JPG", pattern));
  EXPECT_TRUE(ui::MatchesPattern("a.ico.jpg", pattern));
  EXPECT_FALSE(ui::MatchesPattern("a.jpeg", pattern));
  EXPECT_FALSE(ui::MatchesPattern("a.pcx", pattern));
  EXPECT_FALSE(ui::MatchesPattern("Thumbs.db", pattern));
  EXPECT_TRUE(ui::MatchesPattern("x", "?"));
  EXPECT_FALSE(ui::MatchesPattern("xy", "?"));
}

TEST(StripControlsTest, ElementsLoadUpToTheSixteenBitLimitAndElementZeroStays) {
  ui::Form form("FrmSample");
  ui::PictureBox sheet(form, "Sheet");
  ui::LoadedOptionArray<ui::GraphicalOptionButton> array(form, "opt");
  array[0].Container = &sheet;
  array[0].Width(1200);
  array[0].Caption("first");
  std::vector<std::int16_t> connected;
  array.OnConnect([&](ui::GraphicalOptionButton&, std::int16_t index) {
    connected.push_back(index);
  });
  EXPECT_THROW(array.UnloadLast(), Failure);
  EXPECT_THROW(array.Load(2), Failure) << "no gap";
  ui::GraphicalOptionButton& second = array.Load(1);
  EXPECT_EQ(second.Container, &sheet);
  EXPECT_EQ(second.Width(), 1200);
  EXPECT_EQ(second.Caption(), "first");
  EXPECT_FALSE(second.Visible());
  EXPECT_EQ(form.FindControl("opt", 1), &second);
  EXPECT_EQ(connected, (std::vector<std::int16_t>{0, 1}));
  // The elements are one group.
  array[0].Value(true);
  second.Value(true);
  EXPECT_FALSE(array[0].Value());
  array.UnloadLast();
  EXPECT_EQ(form.FindControl("opt", 1), nullptr);
  try {
    array.Load(32768);
    FAIL() << "an index past 32767 is an overflow";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::Overflow);
  }
}

TEST(StripControlsTest, AProgressBarRefusesValuesOutsideItsBounds) {
  ui::ProgressBar bar("bar");
  bar.Max(150);
  bar.Value(100);
  EXPECT_EQ(bar.Value(), 100);
  EXPECT_THROW(bar.Value(151), Failure);
  EXPECT_EQ(bar.Value(), 100);
}

TEST(StripControlsTest, AScrollBarKeepsItsValueWithinItsBoundsAndTellsChangeAndScroll) {
  ui::ScrollBar bar("bar");
  int changes = 0, scrolls = 0;
  bar.Change = [&] { ++changes; };
  bar.Scroll = [&] { ++scrolls; };
  bar.Max(100);
  bar.Value(150);
  EXPECT_EQ(bar.Value(), 100);
  bar.Value(100);
  bar.Track(40);
  EXPECT_EQ(bar.Value(), 40);
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(scrolls, 1);
}

}  // namespace
}  // namespace quorvane
