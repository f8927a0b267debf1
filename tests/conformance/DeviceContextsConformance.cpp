// Device contexts, bitmaps, blits and the clipboard as the bitmap class relies on them.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "platform/Clipboard.h"
#include "platform/Clock.h"
#include "platform/DeviceContexts.h"
#include "platform/Service.h"

namespace quorvane::testing {
namespace {

using platform::BitmapInfoHeader;
using platform::BitmapObject;
using platform::GdiHandle;
namespace gdi = platform::gdi;

platform::DeviceContexts& Gdi() { return platform::Use<platform::DeviceContexts>(); }
platform::Clipboard& Clip() { return platform::Use<platform::Clipboard>(); }

BitmapInfoHeader Header(std::int32_t width, std::int32_t height, std::uint16_t bitCount) {
  BitmapInfoHeader header;
  header.biSize = 40;
  header.biWidth = width;
  header.biHeight = height;
  header.biPlanes = 1;
  header.biBitCount = bitCount;
  header.biCompression = gdi::kBiRgb;
  return header;
}

// A device-independent bitmap selected into a memory context of its own, freed at the end.
class Dib {
 public:
  Dib(std::int32_t width, std::int32_t height, std::uint16_t bitCount = 24) {
    dc_ = Gdi().CreateCompatibleDC(0);
    bitmap_ = Gdi().CreateDIBSection(dc_, Header(width, height, bitCount), gdi::kDibRgbColors,
                                     &bits_, 0, 0);
    old_ = Gdi().SelectObject(dc_, bitmap_);
  }
  ~Dib() {
    Gdi().SelectObject(dc_, old_);
    Gdi().DeleteObject(bitmap_);
    Gdi().DeleteDC(dc_);
  }
  Dib(const Dib&) = delete;
  Dib& operator=(const Dib&) = delete;

  GdiHandle dc() const { return dc_; }
  GdiHandle bitmap() const { return bitmap_; }
  std::uint8_t* bits() const { return bits_; }
  bool Made() const { return dc_ != 0 && bitmap_ != 0 && bits_ != nullptr && old_ != 0; }

 private:
  GdiHandle dc_ = 0;
  GdiHandle bitmap_ = 0;
  GdiHandle old_ = 0;
  std::uint8_t* bits_ = nullptr;
};

std::vector<int> BytesOf(const std::uint8_t* first, int count) {
  return std::vector<int>(first, first + count);
}

// --- contexts -------------------------------------------------------------------------------------

TEST(DeviceContextsTest, AMemoryContextStartsWithAOneByOneMonochromeBitmap) {
  const GdiHandle dc = Gdi().CreateCompatibleDC(0);
  ASSERT_NE(dc, 0u);
  std::uint8_t* bits = nullptr;
  const GdiHandle bitmap = Gdi().CreateDIBSection(dc, Header(2, 2, 24), 0, &bits, 0, 0);
  const GdiHandle initial = Gdi().SelectObject(dc, bitmap);
  ASSERT_NE(initial, 0u);
  BitmapObject object;
  ASSERT_NE(Gdi().GetObjectA(initial, object), 0);
  EXPECT_EQ(object.bmWidth, 1);
  EXPECT_EQ(object.bmHeight, 1);
  EXPECT_EQ(object.bmBitsPixel, 1);
  EXPECT_EQ(object.bmBits, nullptr);
  EXPECT_EQ(Gdi().SelectObject(dc, initial), bitmap);
  EXPECT_NE(Gdi().DeleteObject(bitmap), 0);
  EXPECT_NE(Gdi().DeleteDC(dc), 0);
}

TEST(DeviceContextsTest, TheDesktopsContextIsGivenAndTakenBack) {
  const GdiHandle desktop = Gdi().GetDesktopWindow();
  ASSERT_NE(desktop, 0u);
  const GdiHandle dc = Gdi().GetDC(desktop);
  ASSERT_NE(dc, 0u);
  const GdiHandle memory = Gdi().CreateCompatibleDC(dc);
  EXPECT_NE(memory, 0u);
  EXPECT_NE(Gdi().DeleteDC(memory), 0);
  EXPECT_EQ(Gdi().ReleaseDC(desktop, dc), 1);

  const GdiHandle screen = Gdi().GetDC(0);
  EXPECT_NE(screen, 0u);
  EXPECT_EQ(Gdi().ReleaseDC(0, screen), 1);
}

TEST(DeviceContextsTest, DeleteDcAlsoTakesTheDesktopsContext) {
  const GdiHandle desktop = Gdi().GetDesktopWindow();
  const GdiHandle dc = Gdi().GetDC(desktop);
  ASSERT_NE(dc, 0u);
  EXPECT_NE(Gdi().DeleteDC(dc), 0);
  EXPECT_EQ(Gdi().ReleaseDC(desktop, dc), 0) << "gone already";
}

TEST(DeviceContextsTest, HandlesThatAreNotWhatTheCallNeedsFail) {
  EXPECT_EQ(Gdi().DeleteDC(0), 0);
  EXPECT_EQ(Gdi().DeleteObject(0), 0);
  EXPECT_EQ(Gdi().SelectObject(0, 0), 0u);
  EXPECT_EQ(Gdi().BitBlt(0, 0, 0, 1, 1, 0, 0, 0, gdi::kSrcCopy), 0);
  const GdiHandle dc = Gdi().CreateCompatibleDC(0);
  EXPECT_EQ(Gdi().SelectObject(dc, dc), 0u);
  BitmapObject object;
  EXPECT_EQ(Gdi().GetObjectA(dc, object), 0) << "a context is no bitmap";
  EXPECT_EQ(Gdi().GetObjectA(0, object), 0);
  EXPECT_NE(Gdi().DeleteDC(dc), 0);
}

// --- bitmaps --------------------------------------------------------------------------------------

TEST(DeviceContextsTest, ADibSectionIsDescribedWithRowsOfWholeFourBytesAndZeroedPixels) {
  std::uint8_t* bits = nullptr;
  const GdiHandle bitmap =
      Gdi().CreateDIBSection(0, Header(5, 3, 24), gdi::kDibRgbColors, &bits, 0, 0);
  ASSERT_NE(bitmap, 0u);
  ASSERT_NE(bits, nullptr);
  BitmapObject object;
  EXPECT_NE(Gdi().GetObjectA(bitmap, object), 0);
  EXPECT_EQ(object.bmType, 0);
  EXPECT_EQ(object.bmWidth, 5);
  EXPECT_EQ(object.bmHeight, 3);
  EXPECT_EQ(object.bmWidthBytes, 16);
  EXPECT_EQ(object.bmPlanes, 1);
  EXPECT_EQ(object.bmBitsPixel, 24);
  EXPECT_EQ(object.bmBits, bits);
  for (int i = 0; i < 48; ++i) EXPECT_EQ(bits[i], 0) << i;
  EXPECT_NE(Gdi().DeleteObject(bitmap), 0);

  const GdiHandle wide = Gdi().CreateDIBSection(0, Header(3, 2, 32), 0, &bits, 0, 0);
  ASSERT_NE(wide, 0u);
  ASSERT_NE(Gdi().GetObjectA(wide, object), 0);
  EXPECT_EQ(object.bmWidthBytes, 12);
  EXPECT_EQ(object.bmBitsPixel, 32);
  Gdi().DeleteObject(wide);
}

TEST(DeviceContextsTest, ANegativeHeightMakesATopDownBitmapOfThatManyRows) {
  std::uint8_t* bits = nullptr;
  const GdiHandle bitmap = Gdi().CreateDIBSection(0, Header(3, -5, 24), 0, &bits, 0, 0);
  ASSERT_NE(bitmap, 0u);
  BitmapObject object;
  ASSERT_NE(Gdi().GetObjectA(bitmap, object), 0);
  EXPECT_EQ(object.bmHeight, 5);
  Gdi().DeleteObject(bitmap);
}

TEST(DeviceContextsTest, SizesWithoutPixelsOrBeyondMemoryAreRefused) {
  const std::vector<std::pair<std::int32_t, std::int32_t>> sizes = {
      {0, 5}, {-3, 5}, {5, 0}, {0x7FFFFFFF, 0x7FFFFFFF}, {100000, 100000}};
  for (const auto& [width, height] : sizes) {
    std::uint8_t* bits = reinterpret_cast<std::uint8_t*>(&bits);
    EXPECT_EQ(Gdi().CreateDIBSection(0, Header(width, height, 24), 0, &bits, 0, 0), 0u)
        << width << "x" << height;
    EXPECT_EQ(bits, nullptr);
  }
}

TEST(DeviceContextsTest, ABitmapIsSelectedIntoOneMemoryContextAtATime) {
  Dib dib(2, 2);
  ASSERT_TRUE(dib.Made());
  EXPECT_EQ(Gdi().SelectObject(dib.dc(), dib.bitmap()), dib.bitmap()) << "already there";
  const GdiHandle other = Gdi().CreateCompatibleDC(0);
  EXPECT_EQ(Gdi().SelectObject(other, dib.bitmap()), 0u);
  const GdiHandle screen = Gdi().GetDC(0);
  std::uint8_t* bits = nullptr;
  const GdiHandle loose = Gdi().CreateDIBSection(0, Header(2, 2, 24), 0, &bits, 0, 0);
  EXPECT_EQ(Gdi().SelectObject(screen, loose), 0u) << "a window's context takes no bitmap";
  EXPECT_NE(Gdi().SelectObject(other, loose), 0u);
  Gdi().ReleaseDC(0, screen);
  Gdi().DeleteDC(other);
  Gdi().DeleteObject(loose);
}

TEST(DeviceContextsTest, ADeletedBitmapStaysWhileItIsSelected) {
  const GdiHandle dc = Gdi().CreateCompatibleDC(0);
  std::uint8_t* bits = nullptr;
  const GdiHandle bitmap = Gdi().CreateDIBSection(0, Header(2, 2, 24), 0, &bits, 0, 0);
  const GdiHandle old = Gdi().SelectObject(dc, bitmap);
  EXPECT_NE(Gdi().DeleteObject(bitmap), 0);
  EXPECT_NE(Gdi().BitBlt(dc, 0, 0, 2, 2, 0, 0, 0, gdi::kWhiteness), 0);
  EXPECT_EQ(bits[0], 0xFF);
  EXPECT_EQ(Gdi().SelectObject(dc, old), bitmap);
  Gdi().DeleteDC(dc);
}

TEST(DeviceContextsTest, CompatibleBitmapsTakeTheFormatOfTheContext) {
  const GdiHandle screen = Gdi().GetDC(0);
  const GdiHandle colour = Gdi().CreateCompatibleBitmap(screen, 5, 3);
  ASSERT_NE(colour, 0u);
  BitmapObject object;
  ASSERT_NE(Gdi().GetObjectA(colour, object), 0);
  EXPECT_EQ(object.bmWidth, 5);
  EXPECT_EQ(object.bmHeight, 3);
  EXPECT_EQ(object.bmBitsPixel, 32);
  EXPECT_EQ(object.bmWidthBytes, 20);
  EXPECT_EQ(object.bmBits, nullptr);

  const GdiHandle empty = Gdi().CreateCompatibleBitmap(screen, 0, 0);
  ASSERT_NE(empty, 0u);
  ASSERT_NE(Gdi().GetObjectA(empty, object), 0);
  EXPECT_EQ(object.bmWidth, 1);
  EXPECT_EQ(object.bmBitsPixel, 1);

  const GdiHandle memory = Gdi().CreateCompatibleDC(0);
  const GdiHandle mono = Gdi().CreateCompatibleBitmap(memory, 5, 3);
  ASSERT_NE(Gdi().GetObjectA(mono, object), 0);
  EXPECT_EQ(object.bmBitsPixel, 1) << "a new memory context holds a monochrome bitmap";
  EXPECT_EQ(object.bmWidthBytes, 2);

  Gdi().DeleteObject(colour);
  Gdi().DeleteObject(mono);
  Gdi().DeleteDC(memory);
  Gdi().ReleaseDC(0, screen);
}

// --- blits ----------------------------------------------------------------------------------------

TEST(DeviceContextsTest, BlitsCopyOnlyWhatLiesInsideBothBitmaps) {
  Dib source(2, 2);
  Dib target(4, 4);
  ASSERT_TRUE(source.Made());
  ASSERT_TRUE(target.Made());
  for (int i = 0; i < 16; ++i) source.bits()[i] = static_cast<std::uint8_t>(0x10 + i);

  std::memset(target.bits(), 0xEE, 48);
  EXPECT_NE(Gdi().BitBlt(target.dc(), 0, 0, 4, 4, source.dc(), 1, 1, gdi::kSrcCopy), 0);
  // Only the source's bottom right pixel, to the top left: the last row of the target's bytes.
  for (int i = 0; i < 36; ++i) EXPECT_EQ(target.bits()[i], 0xEE) << i;
  EXPECT_EQ(BytesOf(target.bits() + 36, 12),
            (std::vector<int>{0x13, 0x14, 0x15, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE,
                              0xEE}));

  std::memset(target.bits(), 0xEE, 48);
  EXPECT_NE(Gdi().BitBlt(target.dc(), 1, 1, 3, 3, source.dc(), -1, -1, gdi::kSrcCopy), 0);
  EXPECT_EQ(BytesOf(target.bits(), 12),
            (std::vector<int>{0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0x10, 0x11, 0x12, 0x13, 0x14,
                              0x15}));
  EXPECT_EQ(BytesOf(target.bits() + 12, 12),
            (std::vector<int>{0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0x18, 0x19, 0x1A, 0x1B, 0x1C,
                              0x1D}));
  for (int i = 24; i < 48; ++i) EXPECT_EQ(target.bits()[i], 0xEE) << i;

  // Entirely outside: nothing to do, and no failure.
  EXPECT_NE(Gdi().BitBlt(target.dc(), 10, 10, 2, 2, source.dc(), 0, 0, gdi::kSrcCopy), 0);
}

TEST(DeviceContextsTest, RasterOperationsCombineSourceDestinationAndTheWhiteBrush) {
  Dib source(1, 1);
  Dib target(1, 1);
  struct Case {
    std::uint32_t rop;
    int expected;  // for source 0x5C and destination 0xA6
  };
  const int s = 0x5C;
  const int d = 0xA6;
  const std::vector<Case> cases = {
      {gdi::kSrcCopy, s},        {gdi::kSrcPaint, s | d},           {gdi::kSrcAnd, s & d},
      {gdi::kSrcInvert, s ^ d},  {gdi::kSrcErase, s & ~d & 0xFF},   {gdi::kNotSrcCopy, ~s & 0xFF},
      {gdi::kNotSrcErase, ~(s | d) & 0xFF}, {gdi::kMergeCopy, s},   {gdi::kMergePaint, (~s | d) & 0xFF},
      {gdi::kPatCopy, 0xFF},     {gdi::kPatPaint, 0xFF},            {gdi::kPatInvert, ~d & 0xFF},
      {gdi::kDstInvert, ~d & 0xFF}, {gdi::kBlackness, 0},           {gdi::kWhiteness, 0xFF}};
  for (const Case& c : cases) {
    std::memset(source.bits(), s, 3);
    std::memset(target.bits(), d, 3);
    EXPECT_NE(Gdi().BitBlt(target.dc(), 0, 0, 1, 1, source.dc(), 0, 0, c.rop), 0);
    EXPECT_EQ(BytesOf(target.bits(), 3), (std::vector<int>{c.expected, c.expected, c.expected}))
        << std::hex << c.rop;
  }
}

TEST(DeviceContextsTest, OperationsWithoutASourceNeedNone) {
  Dib target(1, 1);
  std::memset(target.bits(), 0x0F, 3);
  EXPECT_NE(Gdi().BitBlt(target.dc(), 0, 0, 1, 1, 0, 0, 0, gdi::kDstInvert), 0);
  EXPECT_EQ(BytesOf(target.bits(), 3), (std::vector<int>{0xF0, 0xF0, 0xF0}));
  EXPECT_EQ(Gdi().BitBlt(target.dc(), 0, 0, 1, 1, 0, 0, 0, gdi::kSrcCopy), 0)
      << "a copy needs a source";
}

TEST(DeviceContextsTest, TwentyFourBitPixelsGainAZeroFourthByte) {
  Dib source(2, 1);
  Dib target(2, 1, 32);
  const std::uint8_t pixels[6] = {0xFF, 0xFF, 0xFF, 0x10, 0x20, 0x30};
  std::memcpy(source.bits(), pixels, 6);
  std::memset(target.bits(), 0x77, 8);
  EXPECT_NE(Gdi().BitBlt(target.dc(), 0, 0, 2, 1, source.dc(), 0, 0, gdi::kSrcCopy), 0);
  EXPECT_EQ(BytesOf(target.bits(), 8),
            (std::vector<int>{0xFF, 0xFF, 0xFF, 0x00, 0x10, 0x20, 0x30, 0x00}));
  std::memset(target.bits(), 0x77, 8);
  EXPECT_NE(Gdi().BitBlt(target.dc(), 0, 0, 2, 1, source.dc(), 0, 0, gdi::kSrcInvert), 0);
  EXPECT_EQ(BytesOf(target.bits(), 8),
            (std::vector<int>{0x88, 0x88, 0x88, 0x77, 0x67, 0x57, 0x47, 0x77}));

  // And back: the fourth byte is dropped.
  Dib back(2, 1);
  EXPECT_NE(Gdi().BitBlt(back.dc(), 0, 0, 2, 1, target.dc(), 0, 0, gdi::kSrcCopy), 0);
  EXPECT_EQ(BytesOf(back.bits(), 6), (std::vector<int>{0x88, 0x88, 0x88, 0x67, 0x57, 0x47}));
}

TEST(DeviceContextsTest, MonochromeIsWhiteForOneAndBlackForZero) {
  const GdiHandle mono = Gdi().CreateCompatibleDC(0);
  const GdiHandle monoBitmap = Gdi().CreateCompatibleBitmap(mono, 8, 2);
  const GdiHandle old = Gdi().SelectObject(mono, monoBitmap);
  Dib colour(2, 2);
  // Into the monochrome bitmap: white becomes 1, any other colour 0.
  const std::uint8_t bottomRow[6] = {0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF};
  std::memcpy(colour.bits(), bottomRow, 6);
  std::memset(colour.bits() + 8, 0xFF, 6);
  EXPECT_NE(Gdi().BitBlt(mono, 0, 0, 2, 2, colour.dc(), 0, 0, gdi::kSrcCopy), 0);
  // And back into a colour bitmap.
  Dib back(2, 2);
  std::memset(back.bits(), 0x33, 16);
  EXPECT_NE(Gdi().BitBlt(back.dc(), 0, 0, 2, 2, mono, 0, 0, gdi::kSrcCopy), 0);
  EXPECT_EQ(BytesOf(back.bits(), 6), (std::vector<int>{0xFF, 0xFF, 0xFF, 0, 0, 0}));
  EXPECT_EQ(BytesOf(back.bits() + 8, 6), (std::vector<int>{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));

  // The 1 by 1 monochrome bitmap of a new context is black, and the copy stops at its edge.
  const GdiHandle fresh = Gdi().CreateCompatibleDC(0);
  std::memset(back.bits(), 0x33, 16);
  EXPECT_NE(Gdi().BitBlt(back.dc(), 0, 0, 2, 2, fresh, 0, 0, gdi::kSrcCopy), 0);
  EXPECT_EQ(BytesOf(back.bits() + 8, 6), (std::vector<int>{0, 0, 0, 0x33, 0x33, 0x33}));
  EXPECT_EQ(BytesOf(back.bits(), 6), (std::vector<int>{0x33, 0x33, 0x33, 0x33, 0x33, 0x33}));

  Gdi().DeleteDC(fresh);
  Gdi().SelectObject(mono, old);
  Gdi().DeleteObject(monoBitmap);
  Gdi().DeleteDC(mono);
}

TEST(DeviceContextsTest, ABlitWithinOneBitmapReadsWhatWasThereBefore) {
  Dib dib(4, 1);
  for (int i = 0; i < 12; ++i) dib.bits()[i] = static_cast<std::uint8_t>(i);
  EXPECT_NE(Gdi().BitBlt(dib.dc(), 1, 0, 3, 1, dib.dc(), 0, 0, gdi::kSrcCopy), 0);
  EXPECT_EQ(BytesOf(dib.bits(), 12), (std::vector<int>{0, 1, 2, 0, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(DeviceContextsTest, BlitsToTheScreenSucceed) {
  Dib dib(2, 2);
  const GdiHandle screen = Gdi().GetDC(0);
  EXPECT_NE(Gdi().BitBlt(screen, 0, 0, 2, 2, dib.dc(), 0, 0, gdi::kSrcCopy), 0);
  Gdi().ReleaseDC(0, screen);
}

// --- the clipboard --------------------------------------------------------------------------------

TEST(ClipboardTest, ABitmapPutOnTheClipboardCanBeTakenBack) {
  Dib picture(3, 2);
  for (int i = 0; i < 24; ++i) picture.bits()[i] = static_cast<std::uint8_t>(0x40 + i);
  const GdiHandle screen = Gdi().GetDC(0);
  const GdiHandle copy = Gdi().CreateCompatibleBitmap(screen, 3, 2);
  Gdi().ReleaseDC(0, screen);
  const GdiHandle painter = Gdi().CreateCompatibleDC(0);
  const GdiHandle old = Gdi().SelectObject(painter, copy);
  Gdi().BitBlt(painter, 0, 0, 3, 2, picture.dc(), 0, 0, gdi::kSrcCopy);
  Gdi().SelectObject(painter, old);

  EXPECT_EQ(Clip().SetClipboardData(platform::clipboard::kBitmap, copy), 0u)
      << "not while it is closed";
  ASSERT_NE(Clip().OpenClipboard(0), 0);
  EXPECT_NE(Clip().EmptyClipboard(), 0);
  EXPECT_EQ(Clip().SetClipboardData(platform::clipboard::kBitmap, copy), copy);
  EXPECT_NE(Clip().CloseClipboard(), 0);
  EXPECT_NE(Clip().IsClipboardFormatAvailable(platform::clipboard::kBitmap), 0);

  ASSERT_NE(Clip().OpenClipboard(0), 0);
  const GdiHandle taken = Clip().GetClipboardData(platform::clipboard::kBitmap);
  ASSERT_NE(taken, 0u);
  BitmapObject object;
  ASSERT_NE(Gdi().GetObjectA(taken, object), 0);
  EXPECT_EQ(object.bmWidth, 3);
  EXPECT_EQ(object.bmHeight, 2);
  Dib back(3, 2);
  const GdiHandle before = Gdi().SelectObject(painter, taken);
  EXPECT_NE(Gdi().BitBlt(back.dc(), 0, 0, 3, 2, painter, 0, 0, gdi::kSrcCopy), 0);
  Gdi().SelectObject(painter, before);
  EXPECT_NE(Clip().EmptyClipboard(), 0);
  EXPECT_NE(Clip().CloseClipboard(), 0);
  for (int row = 0; row < 2; ++row) {
    EXPECT_EQ(BytesOf(back.bits() + row * 12, 9), BytesOf(picture.bits() + row * 12, 9));
  }
  EXPECT_EQ(Clip().IsClipboardFormatAvailable(platform::clipboard::kBitmap), 0);
  Gdi().DeleteDC(painter);
}

// --- the clock ------------------------------------------------------------------------------------

TEST(ClockTest, TheTimeOfDayIsWithinOneDay) {
  const double first = platform::Use<platform::Clock>().SecondsSinceMidnight();
  const double second = platform::Use<platform::Clock>().SecondsSinceMidnight();
  EXPECT_GE(first, 0.0);
  EXPECT_LT(first, 86400.0);
  EXPECT_GE(second, 0.0);
  EXPECT_LT(second, 86400.0);
}

}  // namespace
}  // namespace quorvane::testing
