// Icons from files of icons, drawn through their masks and alpha, the picture boxes' memory
// surfaces, and the icon routines of the icon page over them: natively over icon files the
// tests write, for Windows over the same files and the platform's own DLLs. Which picture an
// icon number of a DLL shows differs between systems, so no test looks at one: they compare
// what two routines draw, or whether anything is drawn at all.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "IcoFiles.h"
#include "Support.h"
#include "base/Failure.h"
#include "core/FrmMain.h"
#include "icons/modextracticon.h"
#include "platform/DeviceContexts.h"
#include "platform/Icons.h"
#include "platform/Service.h"
#include "ui/Controls.h"
#include "platform/MemorySurface.h"

namespace quorvane::testing {
namespace {

using platform::GdiHandle;
namespace gdi = platform::gdi;
namespace icons = platform::icons;

platform::Icons& Icons() { return platform::Use<platform::Icons>(); }
platform::DeviceContexts& Gdi() { return platform::Use<platform::DeviceContexts>(); }

// A bitmap of 32 bits a pixel, top-down, in a memory context of its own.
class Canvas {
 public:
  Canvas(std::int32_t width, std::int32_t height, std::uint32_t fill)
      : width_(width), height_(height) {
    platform::BitmapInfoHeader header;
    header.biWidth = width;
    header.biHeight = -height;
    header.biPlanes = 1;
    header.biBitCount = 32;
    dc_ = Gdi().CreateCompatibleDC(0);
    bitmap_ = Gdi().CreateDIBSection(dc_, header, gdi::kDibRgbColors, &bits_, 0, 0);
    old_ = Gdi().SelectObject(dc_, bitmap_);
    Fill(fill);
  }
  ~Canvas() {
    Gdi().SelectObject(dc_, old_);
    Gdi().DeleteObject(bitmap_);
    Gdi().DeleteDC(dc_);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  GdiHandle dc() const { return dc_; }
  bool Made() const { return bits_ != nullptr && old_ != 0; }
  void Fill(std::uint32_t value) {
    for (std::int32_t i = 0; i < width_ * height_; ++i) Put(i, value);
  }
  // The pixel as 0xAARRGGBB, all four bytes.
  std::uint32_t At(std::int32_t x, std::int32_t y) const {
    platform::BitmapObject description;
    Gdi().GetObjectA(bitmap_, description);  // finishes what the platform holds back
    const std::uint8_t* p = bits_ + (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                                     static_cast<std::size_t>(x)) * 4;
    return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
           static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
  }

 private:
  void Put(std::int32_t i, std::uint32_t value) {
    std::uint8_t* p = bits_ + static_cast<std::size_t>(i) * 4;
    p[0] = static_cast<std::uint8_t>(value);
    p[1] = static_cast<std::uint8_t>(value >> 8);
    p[2] = static_cast<std::uint8_t>(value >> 16);
    p[3] = static_cast<std::uint8_t>(value >> 24);
  }

  std::int32_t width_;
  std::int32_t height_;
  GdiHandle dc_ = 0;
  GdiHandle bitmap_ = 0;
  GdiHandle old_ = 0;
  std::uint8_t* bits_ = nullptr;
};

// The large and the small icon of a file, destroyed at the end.
struct Extracted {
  explicit Extracted(const std::string& file, std::int32_t index = 0) {
    result = Icons().ExtractIconExA(file.c_str(), index, &large, &small, 1);
  }
  ~Extracted() {
    Icons().DestroyIcon(large);
    Icons().DestroyIcon(small);
  }
  Extracted(const Extracted&) = delete;
  Extracted& operator=(const Extracted&) = delete;

  std::int32_t result = 0;
  GdiHandle large = 0;
  GdiHandle small = 0;
};

std::uint32_t PixelAt(const ui::Pixels& p, std::int32_t x, std::int32_t y) {
  return p.bgra.at(static_cast<std::size_t>(y * p.width + x));
}

bool AllOf(const ui::Pixels& p, std::uint32_t value) {
  if (p.Empty()) return false;
  for (std::uint32_t v : p.bgra) {
    if (v != value) return false;
  }
  return true;
}

constexpr std::uint32_t kOpaqueWhite = 0xFFFFFFFFu;

// --- extraction -------------------------------------------------------------------------------

class IconFilesTest : public ::testing::Test {
 protected:
  std::string Write(const std::string& name, const std::vector<IcoImage>& images) {
    const std::string path = folder_ + name;
    EXPECT_TRUE(WriteBytes(path, IcoBytes(images)));
    return path;
  }

  std::string folder_ = FreshTempFolder();
};

TEST_F(IconFilesTest, AnIconFileGivesALargeAndASmallIcon) {
  const std::string file = Write("red.ico", {SolidImage(32, 24, 0xFF0000)});
  Extracted icon(file);
  EXPECT_EQ(icon.result, 2);
  EXPECT_NE(icon.large, 0u);
  EXPECT_NE(icon.small, 0u);
  EXPECT_NE(icon.large, icon.small);
}

TEST_F(IconFilesTest, TheNameOfTheFileDoesNotMatterOnlyItsContents) {
  const std::string file = Write("red.txt", {SolidImage(32, 24, 0xFF0000)});
  Extracted icon(file);
  EXPECT_EQ(icon.result, 2);
}

TEST_F(IconFilesTest, OneHandleAskedForIsOneMade) {
  const std::string file = Write("one.ico", {SolidImage(32, 24, 0xFF0000)});
  GdiHandle small = 0;
  EXPECT_EQ(Icons().ExtractIconExA(file.c_str(), 0, nullptr, &small, 1), 1);
  EXPECT_NE(small, 0u);
  EXPECT_NE(Icons().DestroyIcon(small), 0);
  EXPECT_EQ(Icons().ExtractIconExA(file.c_str(), 0, nullptr, nullptr, 1), 0);
}

TEST_F(IconFilesTest, AnIconFileHoldsOneIconWhichNegativeNumbersFindToo) {
  const std::string file = Write("one.ico", {SolidImage(32, 24, 0x00FF00)});
  EXPECT_EQ(Icons().ExtractIconExA(file.c_str(), -1, nullptr, nullptr, 0), 1);
  {
    Extracted second(file, 1);
    EXPECT_EQ(second.result, 0);
    EXPECT_EQ(second.large, 0u);
    EXPECT_EQ(second.small, 0u);
  }
  for (std::int32_t number : {-2, -3, -100}) {
    Extracted negative(file, number);
    EXPECT_EQ(negative.result, 2) << number;
  }
}

TEST_F(IconFilesTest, NumberMinusOneCountsAndMakesNothing) {
  const std::string file = Write("one.ico", {SolidImage(32, 24, 0x00FF00)});
  Extracted count(file, -1);
  EXPECT_EQ(count.result, 1);
  EXPECT_EQ(count.large, 0u);
  EXPECT_EQ(count.small, 0u);
}

TEST_F(IconFilesTest, AFileThatIsNoIconFileGivesNone) {
  const std::string file = folder_ + "notes.txt";
  ASSERT_TRUE(WriteBytes(file, "no icons in here\r\n"));
  Extracted icon(file);
  EXPECT_EQ(icon.result, 0);
  EXPECT_EQ(icon.large, 0u);
  EXPECT_EQ(icon.small, 0u);
}

TEST_F(IconFilesTest, AMissingOrEmptyFileCannotBeReadAtAll) {
  Extracted missing(folder_ + "missing.ico");
  EXPECT_EQ(missing.result, -1);
  EXPECT_EQ(missing.large, 0u);
  const std::string empty = folder_ + "empty.ico";
  ASSERT_TRUE(WriteBytes(empty, ""));
  Extracted none(empty);
  EXPECT_EQ(none.result, -1);
  Extracted blank("");
  EXPECT_EQ(blank.result, -1);
}

TEST_F(IconFilesTest, ACursorFileIsNoIconFile) {
  std::string bytes = IcoBytes({SolidImage(32, 24, 0x123456)});
  bytes[2] = 2;  // the type of a cursor file
  const std::string file = folder_ + "arrow.cur";
  ASSERT_TRUE(WriteBytes(file, bytes));
  Extracted icon(file);
  EXPECT_EQ(icon.result, 0);
}

TEST_F(IconFilesTest, DestroyingTwiceOrNothingDoesNoHarm) {
  const std::string file = Write("red.ico", {SolidImage(32, 24, 0xFF0000)});
  GdiHandle large = 0;
  ASSERT_EQ(Icons().ExtractIconExA(file.c_str(), 0, &large, nullptr, 1), 1);
  EXPECT_NE(Icons().DestroyIcon(large), 0);
  EXPECT_EQ(Icons().DestroyIcon(large), 0);
  EXPECT_EQ(Icons().DestroyIcon(0), 0);
  Canvas canvas(34, 34, 0);
  EXPECT_EQ(Icons().DrawIconEx(canvas.dc(), 0, 0, large, 0, 0, 0, 0, icons::kDiNormal), 0);
  EXPECT_EQ(Icons().DrawIconEx(canvas.dc(), 0, 0, 0, 0, 0, 0, 0, icons::kDiNormal), 0);
  EXPECT_EQ(canvas.At(5, 5), 0u);
}

// --- drawing ------------------------------------------------------------------------------------

TEST_F(IconFilesTest, ALargeIconDrawsAtItsOwnSizeWhereItIsPut) {
  const std::string file = Write("green.ico", {SolidImage(32, 24, 0x00FF00)});
  Extracted icon(file);
  Canvas canvas(40, 40, 0x00336699);
  ASSERT_TRUE(canvas.Made());
  EXPECT_NE(Icons().DrawIconEx(canvas.dc(), 1, 1, icon.large, 0, 0, 0, 0, icons::kDiNormal), 0);
  EXPECT_EQ(canvas.At(0, 0), 0x00336699u);
  EXPECT_EQ(canvas.At(1, 1), 0x0000FF00u);
  EXPECT_EQ(canvas.At(32, 32), 0x0000FF00u);
  EXPECT_EQ(canvas.At(33, 33), 0x00336699u);
  EXPECT_EQ(canvas.At(33, 1), 0x00336699u);
}

TEST_F(IconFilesTest, TheMaskLetsTheBackgroundThroughAndTheColoursAreXoredOnIt) {
  IcoImage image = SolidImage(32, 24, 0);
  const std::uint32_t colours[4] = {0x000000, 0xFFFFFF, 0x0000FF, 0x808080};
  for (std::int32_t y = 0; y < 32; ++y) {
    for (std::int32_t x = 0; x < 32; ++x) {
      image.pixels[static_cast<std::size_t>(y * 32 + x)] = colours[x % 4];
      image.mask[static_cast<std::size_t>(y * 32 + x)] = static_cast<std::uint8_t>(y % 2);
    }
  }
  const std::string file = Write("masked.ico", {image});
  Extracted icon(file);
  Canvas canvas(40, 40, 0x00336699);
  ASSERT_EQ(Icons().DrawIconEx(canvas.dc(), 1, 1, icon.large, 0, 0, 0, 0, icons::kDiNormal), 1);
  // Row 0 is opaque: the colours as they are.
  EXPECT_EQ(canvas.At(1, 1), 0x00000000u);
  EXPECT_EQ(canvas.At(2, 1), 0x00FFFFFFu);
  EXPECT_EQ(canvas.At(3, 1), 0x000000FFu);
  EXPECT_EQ(canvas.At(4, 1), 0x00808080u);
  // Row 1 is transparent: black keeps the background, other colours invert bits of it.
  EXPECT_EQ(canvas.At(1, 2), 0x00336699u);
  EXPECT_EQ(canvas.At(2, 2), 0x00CC9966u);
  EXPECT_EQ(canvas.At(3, 2), 0x00336666u);
  EXPECT_EQ(canvas.At(4, 2), 0x00B3E619u);
}

TEST_F(IconFilesTest, AnIconWithAlphaIsBlendedThroughItAndItsMaskIsUnused) {
  IcoImage image = SolidImage(32, 32, 0);
  const std::uint32_t alphas[8] = {0, 1, 64, 127, 128, 200, 254, 255};
  const std::uint32_t colours[4] = {0xFFFFFF, 0x123456, 0x7F7F7F, 0x00FF00};
  for (std::int32_t y = 0; y < 32; ++y) {
    for (std::int32_t x = 0; x < 32; ++x) {
      const auto at = static_cast<std::size_t>(y * 32 + x);
      image.pixels[at] = alphas[x % 8] << 24 | colours[y % 4];
      image.mask[at] = static_cast<std::uint8_t>(x >= 8 ? 1 : 0);
    }
  }
  const std::string file = Write("alpha.ico", {image});
  Extracted icon(file);
  Canvas canvas(40, 40, 0x7F336699);
  ASSERT_EQ(Icons().DrawIconEx(canvas.dc(), 1, 1, icon.large, 0, 0, 0, 0, icons::kDiNormal), 1);
  // What the platform gives, byte for byte: each colour weighted by its alpha and the
  // background by the rest, each rounded on its own.
  const std::uint32_t white[8] = {0x7F336699, 0x80346799, 0x9F668CB3, 0xBF99B2CC,
                                  0xBF99B3CC, 0xE3D3DEE9, 0xFEFEFEFF, 0xFFFFFFFF};
  const std::uint32_t dark[8] = {0x7F336699, 0x80336698, 0x9F2B5989, 0xBF234D78,
                                 0xBF224D77, 0xE3193F64, 0xFE123457, 0xFF123456};
  // Grey at alpha 1 tells the rounding apart from adding 128 of 255.
  const std::uint32_t grey[8] = {0x7F336699, 0x80336698, 0x9F466C93, 0xBF59728C,
                                 0xBF59738C, 0xE36F7A85, 0xFE7F7F80, 0xFF7F7F7F};
  for (std::int32_t x = 0; x < 8; ++x) {
    EXPECT_EQ(canvas.At(1 + x, 1), white[x]) << "alpha " << alphas[x];
    EXPECT_EQ(canvas.At(9 + x, 1), white[x]) << "alpha " << alphas[x] << " under the mask";
    EXPECT_EQ(canvas.At(1 + x, 2), dark[x]) << "alpha " << alphas[x];
    EXPECT_EQ(canvas.At(1 + x, 3), grey[x]) << "alpha " << alphas[x];
  }
}

TEST_F(IconFilesTest, TheMaskAloneOrTheImageAloneCanBeDrawn) {
  IcoImage image = SolidImage(32, 24, 0x0000FF);
  for (std::size_t i = 0; i < image.mask.size(); ++i) image.mask[i] = static_cast<std::uint8_t>(i % 2);
  const std::string file = Write("blue.ico", {image});
  Extracted icon(file);
  Canvas canvas(40, 40, 0x7F336699);
  ASSERT_EQ(Icons().DrawIconEx(canvas.dc(), 1, 1, icon.large, 0, 0, 0, 0, icons::kDiMask), 1);
  EXPECT_EQ(canvas.At(1, 1), 0x00000000u);
  EXPECT_EQ(canvas.At(2, 1), 0x00FFFFFFu);
  canvas.Fill(0x7F336699);
  ASSERT_EQ(Icons().DrawIconEx(canvas.dc(), 1, 1, icon.large, 0, 0, 0, 0, icons::kDiImage), 1);
  EXPECT_EQ(canvas.At(1, 1), 0x000000FFu);
  EXPECT_EQ(canvas.At(2, 1), 0x000000FFu);
  canvas.Fill(0x7F336699);
  EXPECT_EQ(Icons().DrawIconEx(canvas.dc(), 1, 1, icon.large, 0, 0, 0, 0, 0), 1);
  EXPECT_EQ(canvas.At(1, 1), 0x7F336699u);
}

TEST_F(IconFilesTest, AThirtyTwoBitIconWithoutAlphaGoesByItsMask) {
  IcoImage image = SolidImage(32, 32, 0x00FF0000);
  for (std::size_t i = 0; i < image.mask.size(); ++i) image.mask[i] = static_cast<std::uint8_t>(i % 2);
  const std::string file = Write("plain32.ico", {image});
  Extracted icon(file);
  Canvas canvas(40, 40, 0x00336699);
  ASSERT_EQ(Icons().DrawIconEx(canvas.dc(), 1, 1, icon.large, 0, 0, 0, 0, icons::kDiNormal), 1);
  EXPECT_EQ(canvas.At(1, 1), 0x00FF0000u);
  EXPECT_EQ(canvas.At(2, 1), 0x00CC6699u);
}

TEST_F(IconFilesTest, PaletteEntriesOfOneFourAndEightBitsDrawTheirColours) {
  for (std::uint16_t bits : {std::uint16_t{1}, std::uint16_t{4}, std::uint16_t{8}}) {
    IcoImage image = SolidImage(32, bits, 0, {0x000000, 0x10A0F0});
    for (std::size_t i = 0; i < image.pixels.size(); ++i) image.pixels[i] = i % 3 == 0 ? 1u : 0u;
    const std::string file = Write("palette" + std::to_string(bits) + ".ico", {image});
    Extracted icon(file);
    Canvas canvas(34, 34, 0x00336699);
    ASSERT_EQ(Icons().DrawIconEx(canvas.dc(), 0, 0, icon.large, 0, 0, 0, 0, icons::kDiNormal), 1)
        << bits;
    EXPECT_EQ(canvas.At(0, 0), 0x0010A0F0u) << bits;
    EXPECT_EQ(canvas.At(1, 0), 0x00000000u) << bits;
    EXPECT_EQ(canvas.At(3, 0), 0x0010A0F0u) << bits;
    EXPECT_EQ(canvas.At(30, 31), 0x00000000u) << bits;
    EXPECT_EQ(canvas.At(31, 31), 0x0010A0F0u) << bits;
  }
}

TEST_F(IconFilesTest, TheEntryNearestInSizeWinsThenTheDeepestColours) {
  {
    const std::string file =
        Write("depths.ico", {SolidImage(32, 4, 1, {0, 0xFF0000}), SolidImage(32, 32, 0xFF00FF00),
                             SolidImage(32, 8, 1, {0, 0x0000FF})});
    Extracted icon(file);
    Canvas canvas(34, 34, 0);
    Icons().DrawIconEx(canvas.dc(), 0, 0, icon.large, 0, 0, 0, 0, icons::kDiNormal);
    EXPECT_EQ(canvas.At(0, 0) & 0x00FFFFFFu, 0x0000FF00u);
  }
  {
    const std::string file = Write(
        "sizes.ico", {SolidImage(31, 32, 0xFF00FF00), SolidImage(32, 4, 1, {0, 0xFF0000})});
    Extracted icon(file);
    Canvas canvas(34, 34, 0);
    Icons().DrawIconEx(canvas.dc(), 0, 0, icon.large, 0, 0, 0, 0, icons::kDiNormal);
    EXPECT_EQ(canvas.At(0, 0), 0x00FF0000u);
  }
  {
    const std::string file = Write("far.ico", {SolidImage(48, 24, 0xFF0000), SolidImage(24, 24, 0x00FF00)});
    Extracted icon(file);
    Canvas canvas(34, 34, 0);
    Icons().DrawIconEx(canvas.dc(), 0, 0, icon.large, 0, 0, 0, 0, icons::kDiNormal);
    EXPECT_EQ(canvas.At(0, 0), 0x0000FF00u);
    EXPECT_EQ(canvas.At(31, 31), 0x0000FF00u) << "scaled to 32";
    EXPECT_EQ(canvas.At(32, 32), 0u);
  }
}

TEST_F(IconFilesTest, IconsOfOtherSizesAreScaledPixelByPixel) {
  // One 32 by 32 entry: the small icon takes every second pixel of every second row.
  IcoImage image = SolidImage(32, 24, 0);
  for (std::int32_t y = 0; y < 32; ++y) {
    for (std::int32_t x = 0; x < 32; ++x) {
      image.pixels[static_cast<std::size_t>(y * 32 + x)] =
          static_cast<std::uint32_t>(x) | static_cast<std::uint32_t>(y) << 8;
    }
  }
  const std::string file = Write("ramp.ico", {image});
  Extracted icon(file);
  Canvas canvas(34, 34, 0);
  Icons().DrawIconEx(canvas.dc(), 1, 1, icon.small, 0, 0, 0, 0, icons::kDiNormal);
  for (std::int32_t y = 0; y < 16; ++y) {
    for (std::int32_t x = 0; x < 16; ++x) {
      EXPECT_EQ(canvas.At(1 + x, 1 + y),
                static_cast<std::uint32_t>(2 * x) | static_cast<std::uint32_t>(2 * y) << 8);
    }
  }
  EXPECT_EQ(canvas.At(17, 1), 0u);

  // One 16 by 16 entry: the large icon doubles every pixel.
  IcoImage little = SolidImage(16, 1, 0, {0x000000, 0xFFFFFF});
  for (std::size_t i = 0; i < little.pixels.size(); ++i) little.pixels[i] = i % 2;
  const std::string smallFile = Write("little.ico", {little});
  Extracted doubled(smallFile);
  canvas.Fill(0x00336699);
  Icons().DrawIconEx(canvas.dc(), 1, 1, doubled.large, 0, 0, 0, 0, icons::kDiNormal);
  EXPECT_EQ(canvas.At(1, 1), 0x00000000u);
  EXPECT_EQ(canvas.At(2, 1), 0x00000000u);
  EXPECT_EQ(canvas.At(3, 1), 0x00FFFFFFu);
  EXPECT_EQ(canvas.At(4, 1), 0x00FFFFFFu);
  EXPECT_EQ(canvas.At(32, 1), 0x00FFFFFFu);
  EXPECT_EQ(canvas.At(33, 1), 0x00336699u);
}

TEST_F(IconFilesTest, NoContextDrawsNothingAndAContextThatIsNoneFails) {
  const std::string file = Write("red.ico", {SolidImage(32, 24, 0xFF0000)});
  Extracted icon(file);
  EXPECT_EQ(Icons().DrawIconEx(0, 0, 0, icon.large, 0, 0, 0, 0, icons::kDiNormal), 1);
  EXPECT_EQ(Icons().DrawIconEx(0x1234, 0, 0, icon.large, 0, 0, 0, 0, icons::kDiNormal), 0);
}

// --- the shell's queries without a path to resolve ---------------------------------------------

TEST(ShellIconsTest, AMissingPathGivesNoListAndClearsTheIconNumber) {
  platform::ShFileInfo info;
  info.iIcon = 77;
  info.dwAttributes = 0x55;
  const std::string missing = FreshTempFolder() + "missing\\nothing.txt";
  EXPECT_EQ(Icons().SHGetFileInfoA(missing.c_str(), 0, info, icons::kShFileInfoSize,
                                   icons::kShgfiSysIconIndex | icons::kShgfiSmallIcon),
            0u);
  EXPECT_EQ(info.iIcon, 0);
  EXPECT_EQ(info.dwAttributes, 0x55u);
}

TEST(ShellIconsTest, NoListIsNoListToDrawFromOrMeasure) {
  std::int32_t width = 5;
  std::int32_t height = 6;
  EXPECT_EQ(Icons().ImageList_GetIconSize(0, width, height), 0);
  EXPECT_EQ(width, 5);
  EXPECT_EQ(height, 6);
  Canvas canvas(4, 4, 0);
  EXPECT_EQ(Icons().ImageList_Draw(0, 0, canvas.dc(), 0, 0, icons::kIldTransparent), 0);
  EXPECT_EQ(canvas.At(0, 0), 0u);
}

#ifdef _WIN32
// --- the platform's own files of icons ---------------------------------------------------------

TEST(PlatformIconsTest, Shell32HoldsManyIconsAndGivesTheFirstAtBothSizes) {
  EXPECT_GT(Icons().ExtractIconExA("shell32.dll", -1, nullptr, nullptr, 0), 1);
  Extracted icon("shell32.dll", 0);
  EXPECT_EQ(icon.result, 2);
  EXPECT_NE(icon.large, 0u);
  EXPECT_NE(icon.small, 0u);
  Canvas canvas(34, 34, 0x00FF00FF);
  ASSERT_EQ(Icons().DrawIconEx(canvas.dc(), 0, 0, icon.large, 0, 0, 0, 0, icons::kDiNormal), 1);
  bool drawn = false;
  for (std::int32_t y = 0; y < 32 && !drawn; ++y) {
    for (std::int32_t x = 0; x < 32 && !drawn; ++x) drawn = canvas.At(x, y) != 0x00FF00FFu;
  }
  EXPECT_TRUE(drawn);
}

TEST(PlatformIconsTest, ANumberBeyondTheFileGivesNoIcon) {
  Extracted icon("shell32.dll", 5000);
  EXPECT_EQ(icon.result, 0);
  EXPECT_EQ(icon.large, 0u);
  EXPECT_EQ(icon.small, 0u);
}

TEST(PlatformIconsTest, AnExistingFolderIsInTheSystemImageListAtTheSmallSize) {
  const std::string folder = FreshTempFolder();
  platform::ShFileInfo info;
  const std::uint32_t list =
      Icons().SHGetFileInfoA(folder.c_str(), 0, info, icons::kShFileInfoSize,
                             icons::kShgfiSysIconIndex | icons::kShgfiSmallIcon);
  ASSERT_NE(list, 0u);
  std::int32_t width = 0;
  std::int32_t height = 0;
  EXPECT_EQ(Icons().ImageList_GetIconSize(list, width, height), 1);
  EXPECT_EQ(width, 16);
  EXPECT_EQ(height, 16);
  Canvas canvas(16, 16, 0x00FF00FF);
  EXPECT_NE(Icons().ImageList_Draw(list, info.iIcon, canvas.dc(), 0, 0, icons::kIldTransparent),
            0);
  bool drawn = false;
  for (std::int32_t y = 0; y < 16 && !drawn; ++y) {
    for (std::int32_t x = 0; x < 16 && !drawn; ++x) drawn = canvas.At(x, y) != 0x00FF00FFu;
  }
  EXPECT_TRUE(drawn);
  // A handle the platform did not give is no list.
  EXPECT_EQ(Icons().ImageList_GetIconSize(list + 8, width, height), 0);
}

TEST(PlatformIconsTest, ASystemIndexQueryGivesTheListWhateverElseItAsksFor) {
  // DrawShellIcon's query asks for the executable type with the rest; the list comes all the
  // same, with the folder's icon in the record.
  const std::string folder = FreshTempFolder();
  platform::ShFileInfo small;
  const std::uint32_t smallList =
      Icons().SHGetFileInfoA(folder.c_str(), 0, small, icons::kShFileInfoSize, 0x6605);
  ASSERT_NE(smallList, 0u);
  platform::ShFileInfo plain;
  EXPECT_EQ(Icons().SHGetFileInfoA(folder.c_str(), 0, plain, icons::kShFileInfoSize,
                                   icons::kShgfiSysIconIndex | icons::kShgfiSmallIcon),
            smallList);
  EXPECT_EQ(small.iIcon, plain.iIcon);
  std::int32_t width = 0;
  std::int32_t height = 0;
  EXPECT_EQ(Icons().ImageList_GetIconSize(smallList, width, height), 1);
  EXPECT_EQ(width, 16);
  platform::ShFileInfo large;
  const std::uint32_t largeList =
      Icons().SHGetFileInfoA(folder.c_str(), 0, large, icons::kShFileInfoSize, 0x6604);
  ASSERT_NE(largeList, 0u);
  EXPECT_EQ(Icons().ImageList_GetIconSize(largeList, width, height), 1);
  EXPECT_EQ(width, 32);
  // The executable type alone is still 0 for a folder.
  platform::ShFileInfo info;
  EXPECT_EQ(Icons().SHGetFileInfoA(folder.c_str(), 0, info, icons::kShFileInfoSize,
                                   icons::kShgfiExeType),
            0u);
}
#endif

// --- picture boxes ------------------------------------------------------------------------------

TEST(MemorySurfaceTest, ABoxWithoutAreaHasNoContextAndNoImage) {
  ui::PictureBox box("Box");
  box.UseSurface(std::make_shared<platform::MemorySurface>());
  EXPECT_EQ(box.hDC(), 0u);
  EXPECT_TRUE(box.Image().Empty());
  box.Width(14);
  box.Height(300);
  EXPECT_EQ(box.hDC(), 0u);
}

TEST(MemorySurfaceTest, TheImageHasTheBoxsSizeInPixelsAndStartsInItsBackColour) {
  ui::PictureBox box("Box");
  box.UseSurface(std::make_shared<platform::MemorySurface>());
  box.Width(540);
  box.Height(310);
  box.BackColor = 0x00102030;  // red 0x30, green 0x20, blue 0x10
  EXPECT_NE(box.hDC(), 0u);
  const ui::Pixels image = box.Image();
  EXPECT_EQ(image.width, 36);
  EXPECT_EQ(image.height, 20);
  EXPECT_TRUE(AllOf(image, 0xFF302010u));
}

TEST(MemorySurfaceTest, DrawingOnTheContextShowsInTheImageAndClsClearsIt) {
  ui::PictureBox box("Box");
  box.UseSurface(std::make_shared<platform::MemorySurface>());
  box.Width(150);
  box.Height(150);
  const GdiHandle dc = box.hDC();
  ASSERT_NE(dc, 0u);
  EXPECT_EQ(box.hDC(), dc);  // the same context while the size stays
  EXPECT_NE(Gdi().BitBlt(dc, 2, 3, 4, 1, 0, 0, 0, gdi::kBlackness), 0);
  ui::Pixels image = box.Image();
  EXPECT_EQ(PixelAt(image, 2, 3), 0xFF000000u);
  EXPECT_EQ(PixelAt(image, 5, 3), 0xFF000000u);
  EXPECT_EQ(PixelAt(image, 6, 3), kOpaqueWhite);
  EXPECT_EQ(PixelAt(image, 2, 4), kOpaqueWhite);
  box.BackColor = 0x0000FF;
  box.Cls();
  EXPECT_TRUE(AllOf(box.Image(), 0xFFFF0000u));
}

TEST(MemorySurfaceTest, ANewSizeMakesANewImageKeepingWhatWasDrawn) {
  ui::PictureBox box("Box");
  box.UseSurface(std::make_shared<platform::MemorySurface>());
  box.Width(60);
  box.Height(60);
  ASSERT_NE(Gdi().BitBlt(box.hDC(), 0, 0, 2, 2, 0, 0, 0, gdi::kBlackness), 0);
  box.Width(120);
  const ui::Pixels image = box.Image();
  EXPECT_EQ(image.width, 8);
  EXPECT_EQ(image.height, 4);
  EXPECT_EQ(PixelAt(image, 1, 1), 0xFF000000u);
  EXPECT_EQ(PixelAt(image, 2, 1), kOpaqueWhite);
  EXPECT_EQ(PixelAt(image, 7, 3), kOpaqueWhite);
}

// --- the icon page ------------------------------------------------------------------------------

// A main window of its own whose preview boxes draw in memory.
class IconPageTest : public ::testing::Test {
 protected:
  IconPageTest() {
    for (ui::PictureBox* box : {&form_.sIcon, &form_.mIcon, &form_.lIcon, &form_.Pi1,
                                &form_.PicSmall, &form_.PicLarge}) {
      box->UseSurface(std::make_shared<platform::MemorySurface>());
    }
  }

  std::string Write(const std::string& name, const std::vector<IcoImage>& images) {
    const std::string path = folder_ + name;
    EXPECT_TRUE(WriteBytes(path, IcoBytes(images)));
    return path;
  }

  // A file whose icon 0 has a 32 by 32 and a 16 by 16 entry, both of one colour. (Which entry
  // a small icon comes from is not the same on every system: the two look alike here.)
  std::string IconFile(const std::string& name, std::uint32_t colour) {
    return Write(name, {SolidImage(32, 24, colour), SolidImage(16, 24, colour)});
  }

  // A location whose file has no icon at all, the same on every system.
  std::string NoIconFile() {
    const std::string path = folder_ + "plain.txt";
    EXPECT_TRUE(WriteBytes(path, "text"));
    return path;
  }

  FrmMain form_;
  MainWindowScope scope_{form_};
  std::string folder_ = FreshTempFolder();
};

TEST_F(IconPageTest, AddIconImageDrawsTheLargeAndSmallIconsAtOneOneAndLeavesMIconEmpty) {
  const std::string file = IconFile("blue.ico", 0x0000FF);
  std::int16_t flag = 0;
  AddIconImage(file, 0, flag);
  const ui::Pixels large = form_.lIcon.Image();
  EXPECT_EQ(PixelAt(large, 0, 0), kOpaqueWhite);
  EXPECT_EQ(PixelAt(large, 1, 1), 0xFF0000FFu);
  EXPECT_EQ(PixelAt(large, 32, 32), 0xFF0000FFu);
  EXPECT_EQ(PixelAt(large, 33, 33), kOpaqueWhite);
  const ui::Pixels small = form_.sIcon.Image();
  EXPECT_EQ(PixelAt(small, 0, 0), kOpaqueWhite);
  EXPECT_EQ(PixelAt(small, 1, 1), 0xFF0000FFu);
  EXPECT_EQ(PixelAt(small, 16, 16), 0xFF0000FFu);
  EXPECT_EQ(PixelAt(small, 17, 17), kOpaqueWhite);
  EXPECT_TRUE(AllOf(form_.mIcon.Image(), kOpaqueWhite));
  EXPECT_EQ(form_.ILicons.Count(), 0);
  // Persistent drawing is switched off again.
  EXPECT_FALSE(form_.lIcon.AutoRedraw());
  EXPECT_FALSE(form_.sIcon.AutoRedraw());
  EXPECT_FALSE(form_.mIcon.AutoRedraw());
}

TEST_F(IconPageTest, AddIconImageWithAFlagAddsExactlyOneImageOfLIconPerCall) {
  const std::string red = IconFile("red.ico", 0xFF0000);
  const std::string green = IconFile("green.ico", 0x00FF00);
  std::int16_t flag = -1;
  AddIconImage(red, 0, flag);
  ASSERT_EQ(form_.ILicons.Count(), 1);
  AddIconImage(green, 0, flag);
  ASSERT_EQ(form_.ILicons.Count(), 2);
  std::int16_t one = 1;
  AddIconImage(red, 0, one);
  ASSERT_EQ(form_.ILicons.Count(), 3);
  EXPECT_EQ(form_.ILicons.Item(1).key, "");
  EXPECT_EQ(PixelAt(form_.ILicons.Item(1).picture, 1, 1), 0xFFFF0000u);
  EXPECT_EQ(PixelAt(form_.ILicons.Item(2).picture, 1, 1), 0xFF00FF00u);
  EXPECT_EQ(form_.ILicons.Item(3).picture, form_.lIcon.Image());
  // The first image sets the list's size: lIcon's, 36 pixels.
  EXPECT_EQ(form_.ILicons.ImageWidth, 36);
  EXPECT_EQ(form_.ILicons.ImageHeight, 36);
}

TEST_F(IconPageTest, AFileWithoutTheIconShowsWhatIconZeroOfShell32Shows) {
  std::int16_t flag = -1;
  AddIconImage("Shell32.dll", 0, flag);
  const ui::Pixels fallback = form_.lIcon.Image();
  const ui::Pixels fallbackSmall = form_.sIcon.Image();

  const std::string red = IconFile("red.ico", 0xFF0000);
  AddIconImage(red, 0, flag);  // something else in the boxes first
  AddIconImage(NoIconFile(), 0, flag);
  EXPECT_EQ(form_.lIcon.Image(), fallback);
  EXPECT_EQ(form_.sIcon.Image(), fallbackSmall);
  AddIconImage(red, 7, flag);  // the file, but not that icon
  EXPECT_EQ(form_.lIcon.Image(), fallback);
  AddIconImage(folder_ + "missing.ico", 0, flag);
  EXPECT_EQ(form_.lIcon.Image(), fallback);
  EXPECT_EQ(form_.ILicons.Count(), 5);
  EXPECT_EQ(form_.ILicons.Item(5).picture, fallback);
#ifdef _WIN32
  EXPECT_FALSE(AllOf(fallback, kOpaqueWhite)) << "Shell32.dll has an icon 0";
#else
  EXPECT_TRUE(AllOf(fallback, kOpaqueWhite)) << "no icon even from the fallback: boxes empty";
#endif
}

TEST_F(IconPageTest, StageIconImageDrawsInSIconAndMIconAndAddsMIconsImage) {
  const std::string before = IconFile("before.ico", 0x00FF00);
  std::int16_t flag = -1;
  AddIconImage(before, 0, flag);
  const ui::Pixels lIconBefore = form_.lIcon.Image();

  const std::string file = IconFile("blue.ico", 0x0000FF);
  EXPECT_EQ(StageIconImage(file, 0), 2);
  EXPECT_EQ(form_.ILicons.Count(), 2);
  const ui::Pixels staged = form_.mIcon.Image();
  EXPECT_EQ(PixelAt(staged, 0, 0), kOpaqueWhite);
  EXPECT_EQ(PixelAt(staged, 1, 1), 0xFF0000FFu);
  EXPECT_EQ(PixelAt(staged, 32, 32), 0xFF0000FFu);
  EXPECT_EQ(form_.ILicons.Item(2).picture, staged);
  EXPECT_EQ(PixelAt(form_.sIcon.Image(), 1, 1), 0xFF0000FFu);
  EXPECT_EQ(PixelAt(form_.sIcon.Image(), 17, 17), kOpaqueWhite);
  EXPECT_EQ(form_.lIcon.Image(), lIconBefore);
  EXPECT_FALSE(form_.mIcon.AutoRedraw());
}

TEST_F(IconPageTest, StageIconImageOfAFileWithoutTheIconGivesZeroAndChangesNothing) {
  const std::string file = IconFile("blue.ico", 0x0000FF);
  ASSERT_EQ(StageIconImage(file, 0), 1);
  const ui::Pixels small = form_.sIcon.Image();
  const ui::Pixels medium = form_.mIcon.Image();
  EXPECT_EQ(StageIconImage(NoIconFile(), 0), 0);
  EXPECT_EQ(StageIconImage(file, 3), 0);
  EXPECT_EQ(StageIconImage(folder_ + "missing.ico", 0), 0);
  EXPECT_EQ(form_.ILicons.Count(), 1);
  EXPECT_EQ(form_.sIcon.Image(), small);
  EXPECT_EQ(form_.mIcon.Image(), medium);
}

TEST_F(IconPageTest, AfterAddIconImageMIconIsEmptyEvenWhenAStagingDrewIt) {
  const std::string file = IconFile("blue.ico", 0x0000FF);
  ASSERT_EQ(StageIconImage(file, 0), 1);
  ASSERT_FALSE(AllOf(form_.mIcon.Image(), kOpaqueWhite));
  std::int16_t flag = 0;
  AddIconImage(file, 0, flag);
  EXPECT_TRUE(AllOf(form_.mIcon.Image(), kOpaqueWhite));
}

TEST_F(IconPageTest, ANegativeNumberPassesThroughAsAResourceIdentifier) {
  // A file of icons answers any resource identifier with its icon, so the routines show it
  // rather than falling back.
  const std::string file = IconFile("blue.ico", 0x0000FF);
  std::int16_t flag = 0;
  AddIconImage(file, -3, flag);
  EXPECT_EQ(PixelAt(form_.lIcon.Image(), 1, 1), 0xFF0000FFu);
  EXPECT_EQ(StageIconImage(file, -7), 1);
  EXPECT_EQ(PixelAt(form_.mIcon.Image(), 1, 1), 0xFF0000FFu);
}

TEST_F(IconPageTest, PickIconFailsForAPathOfMoreThan260Characters) {
  std::string path(261, 'a');
  std::int32_t number = 0;
  try {
    PickIcon(path, number);
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::InvalidProcedureCall);
  }
  EXPECT_EQ(path, std::string(261, 'a'));
}

TEST_F(IconPageTest, DrawShellIconLeavesTheBoxAsItWasWhenThePlatformGivesNoList) {
  form_.PicLarge.AutoRedraw(false);
  ASSERT_NE(Gdi().BitBlt(form_.PicLarge.hDC(), 0, 0, 3, 3, 0, 0, 0, gdi::kBlackness), 0);
  const ui::Pixels before = form_.PicLarge.Image();
  const ui::Pixels picture{1, 1, {0xFF123456u}};
  form_.PicLarge.Picture(picture);
  std::int16_t size = 32;
  DrawShellIcon(folder_ + "missing\\nothing.txt", form_.PicLarge, size);
  EXPECT_EQ(form_.PicLarge.Width(), 480);
  EXPECT_EQ(form_.PicLarge.Height(), 480);
  EXPECT_EQ(form_.PicLarge.Image(), before);
  EXPECT_EQ(form_.PicLarge.Picture(), picture);
  EXPECT_FALSE(form_.PicLarge.AutoRedraw());
  EXPECT_EQ(size, 32);
}

TEST_F(IconPageTest, DrawShellIconDrawsAFoldersIconAtTheSizeAsked) {
  for (const std::int16_t wanted : {std::int16_t{16}, std::int16_t{32}}) {
    ui::PictureBox& box = wanted == 16 ? form_.PicSmall : form_.PicLarge;
    box.Width(90);
    box.Height(90);
    box.Picture(ui::Pixels{1, 1, {0xFF123456u}});
    std::int16_t size = wanted;
    DrawShellIcon(folder_, box, size);
    EXPECT_EQ(box.Width(), wanted * 15);
    EXPECT_EQ(box.Height(), wanted * 15);
    EXPECT_EQ(box.ScaleWidth, wanted * 15);
    EXPECT_TRUE(box.Picture().Empty());
    EXPECT_TRUE(box.AutoRedraw());
    const ui::Pixels image = box.Image();
    ASSERT_EQ(image.width, wanted);
    EXPECT_TRUE(std::any_of(image.bgra.begin(), image.bgra.end(),
                            [&](std::uint32_t p) { return p != image.bgra.front(); }))
        << "size " << wanted;
  }
}

TEST_F(IconPageTest, GetNodeImageKeepsOneImagePerSystemIcon) {
  const std::string first = FreshTempFolder();
  const std::string second = FreshTempFolder();
  const std::int32_t number = GetNodeImage(first, kFalse);
  EXPECT_EQ(number, 1);
  EXPECT_EQ(form_.Im16.Count(), 1);
  const std::string key = form_.Im16.Item(1).key;
  EXPECT_EQ(key.rfind("Icon", 0), 0u) << key;
  // Two closed folders show one system icon.
  EXPECT_EQ(GetNodeImage(second, kFalse), 1);
  EXPECT_EQ(GetNodeImage(first, kFalse), 1);
  EXPECT_EQ(form_.Im16.Count(), 1);
  std::int32_t found = 0;
  EXPECT_EQ(FindIconKey(key, found), kTrue);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(form_.Pi1.Picture(), form_.Im16.Item(1).picture);
#ifdef _WIN32
  // The folder's small icon, drawn at the size the platform gave.
  EXPECT_EQ(gSmallIconWidth, 16);
  EXPECT_EQ(gSmallIconHeight, 16);
  EXPECT_FALSE(AllOf(form_.Im16.Item(1).picture, kOpaqueWhite));
#endif
  EXPECT_EQ(gLargeIcons, kFalse);
}

TEST_F(IconPageTest, FindIconKeyComparesInLowerCaseAndTheFirstEqualWins) {
  form_.Im16.Add("Start Icon", ui::Pixels{1, 1, {1u}});
  form_.Im16.Add("ICON4", ui::Pixels{1, 1, {2u}});
  form_.Im16.Add("icon4", ui::Pixels{1, 1, {3u}});
  std::int32_t number = -5;
  EXPECT_EQ(FindIconKey("Icon4", number), kTrue);
  EXPECT_EQ(number, 2);
  EXPECT_EQ(FindIconKey("start icon", number), kTrue);
  EXPECT_EQ(number, 1);
  EXPECT_EQ(FindIconKey("Icon5", number), kFalse);
  EXPECT_EQ(number, 0);
  EXPECT_EQ(FindIconKey("Start Icon1", number), kFalse);
}

}  // namespace
}  // namespace quorvane::testing
