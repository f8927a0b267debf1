// The portable icons: the icon file reader over bytes, the choice of entries, what is drawn
// and how it is put on a context of the portable device contexts, the shell queries that find
// nothing, and the picker's queue. What the platform does alike is checked by the conformance
// suite over both builds; these are the things only the portable adapter has, or does its own
// way.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "IcoFiles.h"
#include "platform/Icons.h"
#include "platform/portable/PortableDeviceContexts.h"
#include "platform/portable/PortableIcons.h"

namespace quorvane::platform::portable {
namespace {

using testing::IcoBytes;
using testing::IcoImage;
using testing::SolidImage;
using testing::WriteBytes;

std::span<const std::uint8_t> Span(const std::string& bytes) {
  return {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
}

std::optional<IconPicture> Read(const std::string& bytes, std::int32_t size) {
  return ReadIconPicture(Span(bytes), size);
}

std::uint32_t ColourAt(const IconPicture& p, std::int32_t x, std::int32_t y) {
  return p.colour.at(static_cast<std::size_t>(y * p.width + x));
}

int MaskAt(const IconPicture& p, std::int32_t x, std::int32_t y) {
  return p.mask.at(static_cast<std::size_t>(y * p.width + x));
}

void Put32(std::string& bytes, std::size_t at, std::uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes[at + static_cast<std::size_t>(i)] = static_cast<char>(value >> (8 * i));
}

// Where the bitmap of the first entry begins.
constexpr std::size_t kFirstEntry = 6 + 16;

// --- reading icon files -------------------------------------------------------------------------

TEST(IcoReaderTest, TheDirectoryIsRecognisedByItsFirstSixBytes) {
  EXPECT_TRUE(IsIconFile(Span(IcoBytes({SolidImage(16, 24, 0)}))));
  EXPECT_FALSE(IsIconFile(Span(std::string("\0\0\1\0", 4))));
  EXPECT_FALSE(IsIconFile(Span(std::string("\0\0\1\0\0\0", 6))));   // no entry
  EXPECT_FALSE(IsIconFile(Span(std::string("\0\0\2\0\1\0", 6))));   // a cursor file
  EXPECT_FALSE(IsIconFile(Span(std::string("\1\0\1\0\1\0", 6))));
  EXPECT_TRUE(IsIconFile(Span(std::string("\0\0\1\0\1\0", 6))));    // its entries may be missing
  EXPECT_FALSE(Read(std::string("\0\0\1\0\1\0", 6), 32));
}

TEST(IcoReaderTest, EveryDepthDecodesToItsColoursAndMask) {
  IcoImage one = SolidImage(8, 1, 0, {0x000000, 0xABCDEF});
  one.pixels = {1, 0, 1, 1, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0, 0};
  one.pixels.resize(64, 0);
  one.mask[1] = 1;
  one.mask[63] = 1;
  std::optional<IconPicture> p = Read(IcoBytes({one}), 8);
  ASSERT_TRUE(p);
  EXPECT_EQ(p->width, 8);
  EXPECT_EQ(p->height, 8);
  EXPECT_FALSE(p->alpha);
  EXPECT_EQ(ColourAt(*p, 0, 0), 0xABCDEFu);
  EXPECT_EQ(ColourAt(*p, 1, 0), 0u);
  EXPECT_EQ(ColourAt(*p, 7, 0), 0xABCDEFu);
  EXPECT_EQ(ColourAt(*p, 0, 1), 0xABCDEFu);
  EXPECT_EQ(MaskAt(*p, 1, 0), 1);
  EXPECT_EQ(MaskAt(*p, 0, 0), 0);
  EXPECT_EQ(MaskAt(*p, 7, 7), 1);

  IcoImage four = SolidImage(8, 4, 0, {0x000000, 0x111111, 0x222222, 0x333333, 0x444444, 0x555555,
                                       0x666666, 0x777777, 0x888888, 0x999999, 0xAAAAAA, 0xBBBBBB,
                                       0xCCCCCC, 0xDDDDDD, 0xEEEEEE, 0xFFFFFF});
  for (std::size_t i = 0; i < 64; ++i) four.pixels[i] = static_cast<std::uint32_t>(i % 16);
  p = Read(IcoBytes({four}), 8);
  ASSERT_TRUE(p);
  for (std::int32_t x = 0; x < 8; ++x) EXPECT_EQ(ColourAt(*p, x, 1), 0x111111u * static_cast<std::uint32_t>(8 + x));

  IcoImage eight = SolidImage(8, 8, 0, {0x010203, 0x040506, 0x070809});
  eight.pixels[5] = 2;
  eight.pixels[6] = 200;  // beyond the palette: black
  p = Read(IcoBytes({eight}), 8);
  ASSERT_TRUE(p);
  EXPECT_EQ(ColourAt(*p, 0, 0), 0x010203u);
  EXPECT_EQ(ColourAt(*p, 5, 0), 0x070809u);
  EXPECT_EQ(ColourAt(*p, 6, 0), 0u);

  IcoImage sixteen = SolidImage(8, 16, 0x7C00 | 0x0010 | 0x0001);  // red 31, green 0, blue 17
  p = Read(IcoBytes({sixteen}), 8);
  ASSERT_TRUE(p);
  EXPECT_EQ(ColourAt(*p, 3, 3), 0xFF008Cu);

  IcoImage rgb = SolidImage(8, 24, 0x00123456);
  rgb.pixels[9] = 0x00FEDCBA;
  p = Read(IcoBytes({rgb}), 8);
  ASSERT_TRUE(p);
  EXPECT_EQ(ColourAt(*p, 0, 0), 0x123456u);
  EXPECT_EQ(ColourAt(*p, 1, 1), 0xFEDCBAu);

  IcoImage argb = SolidImage(8, 32, 0x00123456);
  p = Read(IcoBytes({argb}), 8);
  ASSERT_TRUE(p);
  EXPECT_FALSE(p->alpha) << "no alpha anywhere: the mask counts";
  argb.pixels[3] = 0x80FFFFFF;
  p = Read(IcoBytes({argb}), 8);
  ASSERT_TRUE(p);
  EXPECT_TRUE(p->alpha);
  EXPECT_EQ(ColourAt(*p, 3, 0), 0x80FFFFFFu);
}

TEST(IcoReaderTest, AShortPaletteCountIsHonoured) {
  IcoImage image = SolidImage(8, 8, 1, {0x000000, 0x00FF00});
  const std::string bytes = IcoBytes({image});
  std::optional<IconPicture> p = Read(bytes, 8);
  ASSERT_TRUE(p);
  EXPECT_EQ(ColourAt(*p, 0, 0), 0x00FF00u);
}

TEST(IcoReaderTest, EachSizeTakesTheNearestEntryOfTheDeepestColours) {
  // The platform's way on Windows: the small icon from the small entry. (Wine makes both icons
  // from the entry it takes for the large one; the conformance tests use entries that look
  // alike, so both ways pass there.)
  const std::string bytes = IcoBytes({SolidImage(32, 24, 0x0000FF), SolidImage(16, 4, 1, {0, 0xFF0000}),
                                      SolidImage(16, 32, 0xFF00FF00), SolidImage(48, 32, 0xFF000000)});
  std::optional<IconPicture> large = Read(bytes, 32);
  std::optional<IconPicture> small = Read(bytes, 16);
  ASSERT_TRUE(large && small);
  EXPECT_EQ(ColourAt(*large, 0, 0), 0x0000FFu);
  EXPECT_EQ(ColourAt(*small, 0, 0), 0xFF00FF00u);
  EXPECT_EQ(small->width, 16);
  // Of two at the same distance the first wins.
  const std::string tie = IcoBytes({SolidImage(24, 24, 0x111111), SolidImage(40, 24, 0x222222)});
  EXPECT_EQ(ColourAt(*Read(tie, 32), 0, 0), 0x111111u);
  const std::string tie2 = IcoBytes({SolidImage(40, 24, 0x222222), SolidImage(24, 24, 0x111111)});
  EXPECT_EQ(ColourAt(*Read(tie2, 32), 0, 0), 0x222222u);
}

TEST(IcoReaderTest, APngEntryIsPassedOver) {
  IcoImage png;
  png.png = true;
  png.width = 32;
  png.height = 32;
  EXPECT_FALSE(Read(IcoBytes({png}), 32));
  std::optional<IconPicture> p = Read(IcoBytes({png, SolidImage(16, 24, 0x123456)}), 32);
  ASSERT_TRUE(p);
  EXPECT_EQ(p->width, 32);
  EXPECT_EQ(ColourAt(*p, 31, 31), 0x123456u);
}

TEST(IcoReaderTest, EntriesThatCannotBeDecodedArePassedOver) {
  const IcoImage good = SolidImage(16, 24, 0x00AA00);
  auto withFirst = [&](const std::function<void(std::string&)>& spoil) {
    std::string bytes = IcoBytes({SolidImage(32, 24, 0xAA0000), good});
    spoil(bytes);
    return Read(bytes, 32);
  };
  // Compressed, of a depth not known, of no width, upside down, of a monstrous size, with a
  // header too short: each time the 16 by 16 entry is taken instead.
  struct Spoil {
    const char* what;
    std::size_t offset;
    std::uint32_t value;
  };
  const std::size_t header = kFirstEntry + 16;  // two directory entries
  for (const Spoil& s : {Spoil{"compressed", 16, 1}, Spoil{"depth 2", 14, 2},
                         Spoil{"no width", 4, 0}, Spoil{"top-down", 8, 0xFFFFFFC0u},
                         Spoil{"huge", 4, 100000}, Spoil{"header size", 0, 12},
                         Spoil{"header beyond", 0, 0x7FFFFFFF}}) {
    std::optional<IconPicture> p = withFirst([&](std::string& b) {
      if (s.offset == 14) {
        b[header + 14] = static_cast<char>(s.value);
        b[header + 15] = 0;
      } else {
        Put32(b, header + s.offset, s.value);
      }
    });
    ASSERT_TRUE(p) << s.what;
    EXPECT_EQ(ColourAt(*p, 0, 0), 0x00AA00u) << s.what;
  }
}

TEST(IcoReaderTest, ColoursCutShortSkipTheEntryAndAMaskCutShortCountsAsNotSet) {
  IcoImage image = SolidImage(32, 24, 0x445566);
  for (auto& m : image.mask) m = 1;
  std::string bytes = IcoBytes({image});
  // The colours take 32 rows of 96 bytes, the mask 32 rows of 4.
  const std::string maskCut = bytes.substr(0, bytes.size() - 64);
  std::optional<IconPicture> p = Read(maskCut, 32);
  ASSERT_TRUE(p);
  EXPECT_EQ(MaskAt(*p, 0, 31), 1);   // the bottom row comes first
  EXPECT_EQ(MaskAt(*p, 0, 0), 0);    // the top rows are missing
  const std::string colourCut = bytes.substr(0, bytes.size() - 128 - 10);
  EXPECT_FALSE(Read(colourCut, 32));
}

TEST(IcoReaderTest, OffsetsAndLengthsBeyondTheFileAreNoHarm) {
  std::string bytes = IcoBytes({SolidImage(16, 24, 0x445566)});
  std::string far = bytes;
  Put32(far, 6 + 12, 0xFFFFFFF0u);
  EXPECT_FALSE(Read(far, 16));
  std::string longer = bytes;
  Put32(longer, 6 + 8, 0xFFFFFFFFu);  // the entry says it is longer than the file
  EXPECT_TRUE(Read(longer, 16));
  std::string counted = bytes;
  counted[4] = static_cast<char>(0xFF);  // 255 entries, one present
  EXPECT_TRUE(Read(counted, 16));
}

TEST(IcoReaderTest, ScalingTakesThePixelEachFallsOn) {
  IconPicture picture;
  picture.width = 3;
  picture.height = 2;
  picture.colour = {1, 2, 3, 4, 5, 6};
  picture.mask = {0, 1, 0, 1, 0, 1};
  const IconPicture wide = ScalePicture(picture, 6, 2);
  EXPECT_EQ(wide.colour, (std::vector<std::uint32_t>{1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6}));
  EXPECT_EQ(wide.mask, (std::vector<std::uint8_t>{0, 0, 1, 1, 0, 0, 1, 1, 0, 0, 1, 1}));
  const IconPicture narrow = ScalePicture(picture, 2, 1);
  EXPECT_EQ(narrow.colour, (std::vector<std::uint32_t>{1, 2}));
  EXPECT_TRUE(ScalePicture(picture, 0, 5).colour.empty());
}

// --- the adapter over files and contexts --------------------------------------------------------

class PortableIconsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::filesystem::temp_directory_path() /
              ("quorvane-icons-" + std::to_string(::getpid()) + "-" + info->name());
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
  }
  void TearDown() override {
    std::error_code ec;
    std::filesystem::remove_all(folder_, ec);
  }

  std::string Write(const std::string& name, const std::vector<IcoImage>& images) {
    const std::string path = (folder_ / name).string();
    EXPECT_TRUE(WriteBytes(path, IcoBytes(images)));
    return path;
  }

  // A 32-bit top-down bitmap selected into a context of its own.
  GdiHandle Canvas(std::int32_t width, std::int32_t height, std::uint8_t** bits) {
    BitmapInfoHeader header;
    header.biWidth = width;
    header.biHeight = -height;
    header.biPlanes = 1;
    header.biBitCount = 32;
    const GdiHandle dc = gdi_.CreateCompatibleDC(0);
    gdi_.SelectObject(dc, gdi_.CreateDIBSection(dc, header, 0, bits, 0, 0));
    return dc;
  }

  std::filesystem::path folder_;
  PortableDeviceContexts gdi_{64, 64};
  PortableIcons icons_{gdi_};
};

TEST_F(PortableIconsTest, HandlesLiveUntilDestroyedAndShowTheirPictures) {
  const std::string file = Write("a.ico", {SolidImage(32, 24, 0x123456), SolidImage(16, 24, 0x654321)});
  GdiHandle large[2] = {0, 0};
  GdiHandle small[2] = {0, 0};
  EXPECT_EQ(icons_.ExtractIconExA(file.c_str(), 0, large, small, 2), 2);
  EXPECT_EQ(large[1], 0u) << "the file has no second icon";
  EXPECT_EQ(icons_.LiveIcons(), 2u);
  ASSERT_NE(icons_.PictureOf(large[0]), nullptr);
  EXPECT_EQ(icons_.PictureOf(large[0])->width, 32);
  EXPECT_EQ(icons_.PictureOf(small[0])->width, 16);
  EXPECT_EQ(ColourAt(*icons_.PictureOf(small[0]), 0, 0), 0x654321u);
  icons_.DestroyIcon(large[0]);
  icons_.DestroyIcon(small[0]);
  EXPECT_EQ(icons_.LiveIcons(), 0u);
  EXPECT_EQ(icons_.PictureOf(large[0]), nullptr);
}

TEST_F(PortableIconsTest, AFolderIsAFileThatCannotBeRead) {
  GdiHandle large = 0;
  EXPECT_EQ(icons_.ExtractIconExA(folder_.string().c_str(), 0, &large, nullptr, 1), -1);
  EXPECT_EQ(icons_.ExtractIconExA(nullptr, 0, &large, nullptr, 1), -1);
  EXPECT_EQ(large, 0u);
}

TEST_F(PortableIconsTest, AFileOfOnlyPngEntriesGivesNoIcon) {
  IcoImage png;
  png.png = true;
  const std::string file = Write("png.ico", {png});
  GdiHandle large = 0;
  GdiHandle small = 0;
  EXPECT_EQ(icons_.ExtractIconExA(file.c_str(), 0, &large, &small, 1), 0);
  EXPECT_EQ(icons_.LiveIcons(), 0u);
}

TEST_F(PortableIconsTest, DrawingGoesThroughTheContextsOwnOperationsAndGivesAllBack) {
  const std::string file = Write("a.ico", {SolidImage(32, 24, 0x123456)});
  GdiHandle large = 0;
  ASSERT_EQ(icons_.ExtractIconExA(file.c_str(), 0, &large, nullptr, 1), 1);
  std::uint8_t* bits = nullptr;
  const GdiHandle dc = Canvas(40, 40, &bits);
  const std::size_t contexts = gdi_.LiveContexts();
  const std::size_t bitmaps = gdi_.LiveBitmaps();
  gdi_.ClearJournal();
  EXPECT_EQ(icons_.DrawIconEx(dc, 1, 1, large, 0, 0, 0, 0, icons::kDiNormal), 1);
  EXPECT_EQ(gdi_.JournalNames(),
            (std::vector<std::string>{"CreateCompatibleDC", "CreateDIBSection", "SelectObject",
                                      "BitBlt", "BitBlt", "SelectObject", "DeleteObject",
                                      "DeleteDC"}));
  EXPECT_EQ(gdi_.LiveContexts(), contexts);
  EXPECT_EQ(gdi_.LiveBitmaps(), bitmaps);
  EXPECT_EQ(bits[(1 * 40 + 1) * 4], 0x56);
  EXPECT_EQ(bits[(1 * 40 + 1) * 4 + 2], 0x12);
}

TEST_F(PortableIconsTest, AnIconHalfOutsideTheContextIsClipped) {
  const std::string file = Write("a.ico", {SolidImage(32, 24, 0x0000FF)});
  GdiHandle large = 0;
  ASSERT_EQ(icons_.ExtractIconExA(file.c_str(), 0, &large, nullptr, 1), 1);
  std::uint8_t* bits = nullptr;
  const GdiHandle dc = Canvas(20, 20, &bits);
  EXPECT_EQ(icons_.DrawIconEx(dc, -16, 10, large, 0, 0, 0, 0, icons::kDiNormal), 1);
  EXPECT_EQ(bits[(10 * 20 + 0) * 4], 0xFF);
  EXPECT_EQ(bits[(10 * 20 + 15) * 4], 0xFF);
  EXPECT_EQ(bits[(10 * 20 + 16) * 4], 0x00);
  EXPECT_EQ(bits[(9 * 20 + 0) * 4], 0x00);
}

TEST_F(PortableIconsTest, AGivenSizeScalesTheIcon) {
  IcoImage image = SolidImage(32, 24, 0x0000FF);
  const std::string file = Write("a.ico", {image});
  GdiHandle large = 0;
  ASSERT_EQ(icons_.ExtractIconExA(file.c_str(), 0, &large, nullptr, 1), 1);
  std::uint8_t* bits = nullptr;
  const GdiHandle dc = Canvas(20, 20, &bits);
  EXPECT_EQ(icons_.DrawIconEx(dc, 0, 0, large, 8, 4, 0, 0, icons::kDiNormal), 1);
  EXPECT_EQ(bits[(3 * 20 + 7) * 4], 0xFF);
  EXPECT_EQ(bits[(3 * 20 + 8) * 4], 0x00);
  EXPECT_EQ(bits[(4 * 20 + 7) * 4], 0x00);
}

TEST_F(PortableIconsTest, AlphaIsBlendedOnTwentyFourBitBitmapsAndOnTheScreen) {
  const std::string file = Write("a.ico", {SolidImage(32, 32, 0x800000FF)});
  GdiHandle large = 0;
  ASSERT_EQ(icons_.ExtractIconExA(file.c_str(), 0, &large, nullptr, 1), 1);
  BitmapInfoHeader header;
  header.biWidth = 34;
  header.biHeight = 34;
  header.biPlanes = 1;
  header.biBitCount = 24;
  std::uint8_t* bits = nullptr;
  const GdiHandle dc = gdi_.CreateCompatibleDC(0);
  gdi_.SelectObject(dc, gdi_.CreateDIBSection(dc, header, 0, &bits, 0, 0));
  for (std::size_t i = 0; i < 34 * 104; ++i) bits[i] = 0x40;
  ASSERT_EQ(icons_.DrawIconEx(dc, 0, 0, large, 0, 0, 0, 0, icons::kDiNormal), 1);
  // Bottom-up: the top row is the last in memory.
  const std::uint8_t* top = bits + 33 * 104;
  EXPECT_EQ(top[0], 0xA0);
  EXPECT_EQ(top[1], 0x20);
  EXPECT_EQ(top[2], 0x20);

  const GdiHandle screen = gdi_.GetDC(0);
  ASSERT_EQ(icons_.DrawIconEx(screen, 10, 10, large, 0, 0, 0, 0, icons::kDiNormal), 1);
  EXPECT_EQ(gdi_.ScreenPixel(10, 10), 0x000080u);
  EXPECT_EQ(gdi_.ScreenPixel(9, 10), 0u);
  gdi_.ReleaseDC(0, screen);
}

TEST_F(PortableIconsTest, AFailingContextOperationFailsTheDrawingAndLeavesNothingBehind) {
  const std::string file = Write("a.ico", {SolidImage(32, 24, 0x0000FF)});
  GdiHandle large = 0;
  ASSERT_EQ(icons_.ExtractIconExA(file.c_str(), 0, &large, nullptr, 1), 1);
  std::uint8_t* bits = nullptr;
  const GdiHandle dc = Canvas(40, 40, &bits);
  const std::size_t contexts = gdi_.LiveContexts();
  const std::size_t bitmaps = gdi_.LiveBitmaps();
  for (const char* operation : {"CreateCompatibleDC", "CreateDIBSection", "SelectObject", "BitBlt"}) {
    gdi_.FailNext(operation);
    EXPECT_EQ(icons_.DrawIconEx(dc, 0, 0, large, 0, 0, 0, 0, icons::kDiNormal), 0) << operation;
    EXPECT_EQ(gdi_.LiveContexts(), contexts) << operation;
    EXPECT_EQ(gdi_.LiveBitmaps(), bitmaps) << operation;
    EXPECT_EQ(bits[0], 0) << operation;
  }
}

TEST_F(PortableIconsTest, ShellQueriesFindNothingAndAreWrittenDown) {
  ShFileInfo info;
  info.hIcon = 99;
  info.iIcon = 5;
  EXPECT_EQ(icons_.SHGetFileInfoA("C:\\Windows", 0, info, icons::kShFileInfoSize, 0x4001), 0u);
  EXPECT_EQ(info.iIcon, 0);
  EXPECT_EQ(info.hIcon, 99u) << "no icon handle asked for";
  EXPECT_EQ(icons_.SHGetFileInfoA("C:\\Windows", 0, info, icons::kShFileInfoSize, 0x103), 0u);
  EXPECT_EQ(info.hIcon, 0u);
  ASSERT_EQ(icons_.ShellQueries().size(), 2u);
  EXPECT_EQ(icons_.ShellQueries()[0].path, "C:\\Windows");
  EXPECT_EQ(icons_.ShellQueries()[0].flags, 0x4001u);
  EXPECT_EQ(icons_.ShellQueries()[1].flags, 0x103u);
}

// --- the picker ---------------------------------------------------------------------------------

TEST_F(PortableIconsTest, ThePickerAnswersFromItsQueueAndWritesEachCallDown) {
  std::u16string buffer = u"shell32.dll";
  buffer.resize(260, u'\0');
  std::int32_t index = 4;
  icons_.AnswerPicker(u"C:\\Icons\\new.ico", -12);
  icons_.CancelPicker();
  EXPECT_EQ(icons_.PickIconDlg(0x2A, buffer.data(), 260, index), 1);
  EXPECT_EQ(buffer.substr(0, 17), std::u16string(u"C:\\Icons\\new.ico\0", 17));
  EXPECT_EQ(index, -12);
  EXPECT_EQ(icons_.PickIconDlg(0x2A, buffer.data(), 260, index), 0);
  EXPECT_EQ(index, -12);
  EXPECT_EQ(buffer.substr(0, 16), u"C:\\Icons\\new.ico");
  EXPECT_EQ(icons_.PickIconDlg(0, buffer.data(), 260, index), 0) << "no answer left: cancel";
  ASSERT_EQ(icons_.PickerCalls().size(), 3u);
  EXPECT_EQ(icons_.PickerCalls()[0].owner, 0x2Au);
  EXPECT_EQ(icons_.PickerCalls()[0].path, u"shell32.dll");
  EXPECT_EQ(icons_.PickerCalls()[0].size, 260u);
  EXPECT_EQ(icons_.PickerCalls()[0].index, 4);
  EXPECT_EQ(icons_.PickerCalls()[1].path, u"C:\\Icons\\new.ico");
  EXPECT_EQ(icons_.PickerCalls()[1].index, -12);
}

TEST_F(PortableIconsTest, AnAnswerLongerThanTheBufferIsCutWithItsNul) {
  std::u16string buffer(8, u'x');
  std::int32_t index = 0;
  icons_.AnswerPicker(u"0123456789", 1);
  EXPECT_EQ(icons_.PickIconDlg(0, buffer.data(), 5, index), 1);
  EXPECT_EQ(buffer, std::u16string(u"0123\0xxx", 8));
}

}  // namespace
}  // namespace quorvane::platform::portable
