// The bitmap class over the platform's device contexts and clipboard.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "DrawingDoubles.h"
#include "base/Failure.h"
#include "base/Random.h"
#include "base/Text.h"
#include "drawing/cDIBSection.h"
#include "platform/Clipboard.h"
#include "platform/DeviceContexts.h"
#include "platform/Service.h"

namespace quorvane::testing {
namespace {

using platform::BitmapObject;
using platform::GdiHandle;
namespace gdi = platform::gdi;

platform::DeviceContexts& Gdi() { return platform::Use<platform::DeviceContexts>(); }

std::uint8_t* At(const cDIBSection& dib, int x, int row) {
  return dib.DIBSectionBitsPtr() + static_cast<std::ptrdiff_t>(row) * dib.BytesPerScanLine() +
         x * 3;
}
std::vector<int> Pixel(const cDIBSection& dib, int x, int row) {
  const std::uint8_t* p = At(dib, x, row);
  return {p[0], p[1], p[2]};
}
void SetPixel(cDIBSection& dib, int x, int row, int b, int g, int r) {
  std::uint8_t* p = At(dib, x, row);
  p[0] = static_cast<std::uint8_t>(b);
  p[1] = static_cast<std::uint8_t>(g);
  p[2] = static_cast<std::uint8_t>(r);
}
void FillPattern(cDIBSection& dib) {
  for (int row = 0; row < dib.Height(); ++row) {
    for (int x = 0; x < dib.Width(); ++x) SetPixel(dib, x, row, x * 9 + row, 50 + x, 250 - row);
  }
}
std::vector<std::uint8_t> Bytes(const cDIBSection& dib) {
  const auto size =
      static_cast<std::size_t>(dib.BytesPerScanLine()) * static_cast<std::size_t>(dib.Height());
  return {dib.DIBSectionBitsPtr(), dib.DIBSectionBitsPtr() + size};
}

TEST(cDIBSectionConformance, CreateGivesA24BitBottomUpBitmapInAMemoryContext) {
  cDIBSection dib;
  ASSERT_EQ(dib.Create(5, 3), kTrue);
  ASSERT_NE(dib.hdc(), 0u);
  ASSERT_NE(dib.hDib(), 0u);
  ASSERT_NE(dib.DIBSectionBitsPtr(), nullptr);
  EXPECT_EQ(dib.BytesPerScanLine(), 16);
  BitmapObject object;
  ASSERT_NE(Gdi().GetObjectA(dib.hDib(), object), 0);
  EXPECT_EQ(object.bmWidth, 5);
  EXPECT_EQ(object.bmHeight, 3);
  EXPECT_EQ(object.bmBitsPixel, 24);
  EXPECT_EQ(object.bmWidthBytes, dib.BytesPerScanLine());
  EXPECT_EQ(object.bmBits, dib.DIBSectionBitsPtr());
  for (std::uint8_t byte : Bytes(dib)) EXPECT_EQ(byte, 0);
  // Selected: no other context can take it.
  const GdiHandle other = Gdi().CreateCompatibleDC(0);
  EXPECT_EQ(Gdi().SelectObject(other, dib.hDib()), 0u);
  Gdi().DeleteDC(other);

  dib.ClearUp();
  EXPECT_EQ(dib.hdc(), 0u);
  EXPECT_EQ(dib.hDib(), 0u);
  EXPECT_EQ(dib.DIBSectionBitsPtr(), nullptr);
}

TEST(cDIBSectionConformance, SizesThePlatformRefusesGiveFalse) {
  cDIBSection dib;
  EXPECT_EQ(dib.Create(0, 4), kFalse);
  EXPECT_EQ(dib.Create(4, 0), kFalse);
  EXPECT_EQ(dib.Create(-4, 4), kFalse);
  EXPECT_EQ(dib.hdc(), 0u);
  EXPECT_THROW(dib.Create(100000, 100000), Failure) << "beyond 32-bit arithmetic";
  EXPECT_EQ(dib.hdc(), 0u);
}

TEST(cDIBSectionConformance, PicturesGoOutAndComeBackTheRightWayUp) {
  cDIBSection source;
  ASSERT_EQ(source.Create(4, 3), kTrue);
  FillPattern(source);
  cDIBSection target;
  ASSERT_EQ(target.Create(6, 5), kTrue);
  // To 2,1 from the source's 1,0: the source's device row 0 is its buffer row 2, and the
  // target's device row 1 is its buffer row 3.
  source.PaintPicture(target.hdc(), 2, 1, -1, -1, 1, 0);
  EXPECT_EQ(Pixel(target, 2, 3), Pixel(source, 1, 2));
  EXPECT_EQ(Pixel(target, 4, 1), Pixel(source, 3, 0));
  EXPECT_EQ(Pixel(target, 5, 3), (std::vector<int>{0, 0, 0})) << "the source ends at x = 3";
  EXPECT_EQ(Pixel(target, 2, 0), (std::vector<int>{0, 0, 0})) << "the source ends at its bottom";

  cDIBSection back;
  ASSERT_EQ(back.Create(3, 2), kTrue);
  back.LoadPictureBlt(target.hdc(), 2, 1);
  EXPECT_EQ(Pixel(back, 0, 1), Pixel(source, 1, 2));
  EXPECT_EQ(Pixel(back, 2, 0), Pixel(source, 3, 1));

  back.LoadPictureBlt(source.hdc(), 0, 0, -1, -1, gdi::kNotSrcCopy);
  const auto original = Pixel(source, 0, 2);
  EXPECT_EQ(Pixel(back, 0, 1),
            (std::vector<int>{255 - original[0], 255 - original[1], 255 - original[2]}));
}

TEST(cDIBSectionConformance, CopyToClipboardPutsThePictureThere) {
  cDIBSection dib;
  ASSERT_EQ(dib.Create(5, 4), kTrue);
  FillPattern(dib);
  platform::Clipboard& clipboard = platform::Use<platform::Clipboard>();
  EXPECT_EQ(dib.CopyToClipboard(kFalse), kTrue);
  EXPECT_NE(clipboard.IsClipboardFormatAvailable(platform::clipboard::kBitmap), 0);

  ASSERT_NE(clipboard.OpenClipboard(0), 0);
  const GdiHandle copied = clipboard.GetClipboardData(platform::clipboard::kBitmap);
  ASSERT_NE(copied, 0u);
  BitmapObject object;
  ASSERT_NE(Gdi().GetObjectA(copied, object), 0);
  EXPECT_EQ(object.bmWidth, 5);
  EXPECT_EQ(object.bmHeight, 4);
  cDIBSection back;
  ASSERT_EQ(back.Create(5, 4), kTrue);
  const GdiHandle reader = Gdi().CreateCompatibleDC(0);
  const GdiHandle previous = Gdi().SelectObject(reader, copied);
  back.LoadPictureBlt(reader);
  Gdi().SelectObject(reader, previous);
  Gdi().DeleteDC(reader);
  clipboard.EmptyClipboard();
  clipboard.CloseClipboard();
  EXPECT_EQ(Bytes(back), Bytes(dib));
}

TEST(cDIBSectionConformance, TheIndependentFormOnlyShowsInternalError) {
  RecordingMessageBoxes boxes;
  platform::ScopedService<platform::MessageBoxes> scoped(boxes);
  platform::Clipboard& clipboard = platform::Use<platform::Clipboard>();
  ASSERT_NE(clipboard.OpenClipboard(0), 0);
  clipboard.EmptyClipboard();
  clipboard.CloseClipboard();

  cDIBSection dib;
  ASSERT_EQ(dib.Create(2, 2), kTrue);
  EXPECT_EQ(dib.CopyToClipboard(kTrue), kFalse);
  EXPECT_EQ(boxes.prompts, (std::vector<std::string>{"Internal Error!"}));
  EXPECT_EQ(clipboard.IsClipboardFormatAvailable(platform::clipboard::kBitmap), 0);
}

struct PictureObject {
  GdiHandle handle;
  GdiHandle Handle() const { return handle; }
};

TEST(cDIBSectionConformance, CreateFromPictureCopiesAPicturesBitmap) {
  cDIBSection drawn;
  ASSERT_EQ(drawn.Create(7, 3), kTrue);
  FillPattern(drawn);
  const GdiHandle screen = Gdi().GetDC(0);
  const GdiHandle picture = Gdi().CreateCompatibleBitmap(screen, 7, 3);
  Gdi().ReleaseDC(0, screen);
  const GdiHandle painter = Gdi().CreateCompatibleDC(0);
  const GdiHandle previous = Gdi().SelectObject(painter, picture);
  drawn.PaintPicture(painter);
  Gdi().SelectObject(painter, previous);
  Gdi().DeleteDC(painter);

  cDIBSection dib;
  dib.CreateFromPicture(PictureObject{picture});
  EXPECT_EQ(dib.Width(), 7);
  EXPECT_EQ(dib.Height(), 3);
  EXPECT_EQ(Bytes(dib), Bytes(drawn));
  // Selected out again.
  const GdiHandle again = Gdi().CreateCompatibleDC(0);
  EXPECT_NE(Gdi().SelectObject(again, picture), 0u);
  Gdi().DeleteDC(again);
  Gdi().DeleteObject(picture);

  cDIBSection none;
  none.CreateFromPicture(GdiHandle{0});
  EXPECT_EQ(none.hdc(), 0u);
}

TEST(cDIBSectionConformance, NoiseFollowsTheGeneratorSeededFromTheClock) {
  StoppedClock clock(3723.5);
  platform::ScopedService<platform::Clock> scoped(clock);
  cDIBSection dib;
  ASSERT_EQ(dib.Create(6, 2), kTrue);
  dib.RandomiseBits(kTrue);
  random::Randomize(3723.5);
  for (int row = 0; row < 2; ++row) {
    for (int x = 0; x < 6; ++x) {
      const auto grey = static_cast<int>(text::RoundHalfEven(random::Rnd() * 255.0f));
      EXPECT_EQ(Pixel(dib, x, row), (std::vector<int>{grey, grey, grey}));
    }
  }
  dib.RandomiseBits(kFalse);
  for (int row = 0; row < 2; ++row) {
    for (int x = 0; x < 6; ++x) EXPECT_EQ(Pixel(dib, x, row)[0], 0);
  }
}

TEST(cDIBSectionConformance, ResamplingCopiesBlendsAndKeepsPureColours) {
  cDIBSection source;
  ASSERT_EQ(source.Create(2, 2), kTrue);
  SetPixel(source, 0, 0, 0, 9, 9);
  SetPixel(source, 1, 0, 100, 9, 9);
  SetPixel(source, 0, 1, 200, 9, 9);
  SetPixel(source, 1, 1, 40, 9, 9);

  const auto same = source.Resample(2, 2);
  ASSERT_NE(same, nullptr);
  EXPECT_EQ(Bytes(*same), Bytes(source));

  const auto larger = source.Resample(4, 4);
  ASSERT_NE(larger, nullptr);
  const int blue[4][4] = {{0, 25, 50, 75}, {50, 59, 68, 76}, {100, 92, 85, 78},
                          {150, 126, 102, 79}};
  for (int row = 0; row < 4; ++row) {
    for (int x = 0; x < 4; ++x) {
      EXPECT_EQ(Pixel(*larger, x, row), (std::vector<int>{blue[row][x], 9, 9}));
    }
  }

  EXPECT_EQ(source.Resample(3, 0), nullptr);
  cDIBSection tiny;
  ASSERT_EQ(tiny.Create(1, 1), kTrue);
  EXPECT_THROW(tiny.Resample(2, 2), Failure);
}

}  // namespace
}  // namespace quorvane::testing
