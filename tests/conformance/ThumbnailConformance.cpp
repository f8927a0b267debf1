// DrawThumbnail on the build's device contexts: into a real device context on Windows, into the
// memory ones of the portable adapter natively. Where the drawing's geometry is fixed (the frame's
// place, the white margins round a small picture, the even crop of a large one) both give the
// same pixels; inside the picture halftone may blend differently, so only colours far from an
// edge are compared there.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "platform/DeviceContexts.h"
#include "platform/MemorySurface.h"
#include "platform/Service.h"
#include "ui/Controls.h"
#include "wallpaper/Thumbnails.h"

namespace quorvane::testing {
namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kBlack = 0x000000;

class ThumbnailConformance : public ::testing::Test {
 protected:
  // Draws a picture whose pixel at (x, y) is colourAt(x, y) (0xRRGGBB) and gives the thumbnail.
  template <class ColourAt>
  ui::Pixels Draw(std::int32_t width, std::int32_t height, ColourAt colourAt) {
    ui::Pixels picture{width, height,
                       std::vector<std::uint32_t>(static_cast<std::size_t>(width) * height)};
    for (std::int32_t y = 0; y < height; ++y) {
      for (std::int32_t x = 0; x < width; ++x) {
        picture.bgra[static_cast<std::size_t>(y) * width + x] = 0xFF000000u | colourAt(x, y);
      }
    }
    source_.Picture(std::move(picture));
    target_.UseSurface(std::make_shared<platform::MemorySurface>());
    DrawThumbnail(source_, target_);
    return target_.Image();
  }
  static std::uint32_t At(const ui::Pixels& image, int x, int y) {
    return image.bgra[static_cast<std::size_t>(y) * image.width + x] & 0xFFFFFFu;
  }
  static bool Near(std::uint32_t a, std::uint32_t b, int tolerance) {
    for (int shift = 0; shift < 24; shift += 8) {
      const int d = static_cast<int>((a >> shift) & 0xFF) - static_cast<int>((b >> shift) & 0xFF);
      if (d > tolerance || d < -tolerance) return false;
    }
    return true;
  }

  ui::PictureBox source_{"picLoad"};
  ui::PictureBox target_{"picThumb"};
};

TEST_F(ThumbnailConformance, ASmallPictureFloatsInWhiteInsideItsBlackFrame) {
  // 200 by 100 reduces to 32 by 16 at (16, 24); the frame runs through 15..48 and 23..40.
  const ui::Pixels image = Draw(200, 100, [](int, int) { return 0x3366CCu; });
  ASSERT_EQ(image.width, 64);
  ASSERT_EQ(image.height, 64);
  for (int y = 0; y < 64; ++y) {
    for (int x = 0; x < 64; ++x) {
      const bool inside = x >= 16 && x < 48 && y >= 24 && y < 40;
      const bool frame = !inside && x >= 15 && x <= 48 && y >= 23 && y <= 40;
      if (inside) {
        ASSERT_TRUE(Near(At(image, x, y), 0x3366CC, 8)) << x << "," << y << " " << std::hex
                                                        << At(image, x, y);
      } else {
        ASSERT_EQ(At(image, x, y), frame ? kBlack : kWhite) << x << "," << y;
      }
    }
  }
}

TEST_F(ThumbnailConformance, ALargePictureIsCroppedEvenlyOnBothSides) {
  // 1024 by 768 reduces to 162 by 121 at (-49, -29): the box shows the picture's middle, with no
  // margin and no frame. Left half red, right half blue: the edge falls at x = 32.
  const ui::Pixels image = Draw(1024, 768, [](int x, int) { return x < 512 ? 0xFF0000u : 0x0000FFu; });
  ASSERT_EQ(image.width, 64);
  for (int y = 0; y < 64; ++y) {
    for (int x = 0; x < 64; ++x) {
      const std::uint32_t p = At(image, x, y);
      ASSERT_NE(p, kWhite) << x << "," << y;
      ASSERT_NE(p, kBlack) << x << "," << y;
    }
  }
  for (int y : {0, 32, 63}) {
    EXPECT_TRUE(Near(At(image, 0, y), 0xFF0000, 8));
    EXPECT_TRUE(Near(At(image, 29, y), 0xFF0000, 8));
    EXPECT_TRUE(Near(At(image, 34, y), 0x0000FF, 8));
    EXPECT_TRUE(Near(At(image, 63, y), 0x0000FF, 8));
  }
}

TEST_F(ThumbnailConformance, APictureOfAboutFourHundredPixelsFillsTheBoxExactly) {
  // 404 reduces to 64 at 0: the frame lies just outside, the corners are the picture's.
  const ui::Pixels image = Draw(404, 404, [](int x, int y) {
    return (x < 202) == (y < 202) ? 0x20A040u : 0xE0E0E0u;
  });
  EXPECT_TRUE(Near(At(image, 0, 0), 0x20A040, 8));
  EXPECT_TRUE(Near(At(image, 63, 63), 0x20A040, 8));
  EXPECT_TRUE(Near(At(image, 63, 0), 0xE0E0E0, 8));
  EXPECT_TRUE(Near(At(image, 0, 63), 0xE0E0E0, 8));
}

TEST_F(ThumbnailConformance, AWiderThanTallPictureIsCroppedAtTheSidesAndFramedAboveAndBelow) {
  // 800 by 200 reduces to 127 by 32 at (-32, 16): white above and below, the frame at rows 15
  // and 48 across the whole box, no frame at the sides.
  const ui::Pixels image = Draw(800, 200, [](int, int) { return 0x808000u; });
  for (int x = 0; x < 64; ++x) {
    ASSERT_EQ(At(image, x, 14), kWhite) << x;
    ASSERT_EQ(At(image, x, 15), kBlack) << x;
    ASSERT_TRUE(Near(At(image, x, 16), 0x808000, 8)) << x;
    ASSERT_TRUE(Near(At(image, x, 47), 0x808000, 8)) << x;
    ASSERT_EQ(At(image, x, 48), kBlack) << x;
    ASSERT_EQ(At(image, x, 49), kWhite) << x;
  }
}

// The thumbnail drawn the plain way, for comparison: the picture copied into a bitmap of its own
// in a memory context, and stretched from there with the same steps around the stretch.
ui::Pixels ThroughABitmapOfItsOwn(const ui::Pixels& picture) {
  auto& gdi = platform::Use<platform::DeviceContexts>();
  ui::PictureBox target{"picReference"};
  target.UseSurface(std::make_shared<platform::MemorySurface>());
  target.Width(64 * ui::kTwipsPerPixel);
  target.Height(64 * ui::kTwipsPerPixel);
  target.BackColor = kWhite;
  target.Cls();
  const ThumbnailPlace place = ThumbnailPlaceOf(picture.width, picture.height);
  const platform::GdiHandle source = gdi.CreateCompatibleDC(0);
  platform::BitmapInfoHeader header;
  header.biWidth = picture.width;
  header.biHeight = -picture.height;
  header.biPlanes = 1;
  header.biBitCount = 32;
  std::uint8_t* bits = nullptr;
  const platform::GdiHandle bitmap =
      gdi.CreateDIBSection(source, header, platform::gdi::kDibRgbColors, &bits, 0, 0);
  if (bitmap == 0 || bits == nullptr) return {};
  std::memcpy(bits, picture.bgra.data(), picture.bgra.size() * sizeof(std::uint32_t));
  const platform::GdiHandle previous = gdi.SelectObject(source, bitmap);
  const platform::GdiHandle dc = target.hDC();
  const std::int32_t oldMode = gdi.SetStretchBltMode(dc, platform::gdi::kHalftone);
  const platform::GdiHandle brush = gdi.CreateSolidBrush(0);
  platform::GdiHandle displaced = gdi.SelectObject(dc, brush);
  gdi.UnrealizeObject(displaced);
  std::int32_t oldX = 0, oldY = 0;
  gdi.SetBrushOrgEx(dc, place.x, place.y, &oldX, &oldY);
  gdi.SelectObject(dc, displaced);
  gdi.StretchBlt(dc, place.x, place.y, place.width, place.height, source, 0, 0, picture.width,
                 picture.height, platform::gdi::kSrcCopy);
  gdi.SetStretchBltMode(dc, oldMode);
  displaced = gdi.SelectObject(dc, brush);
  gdi.UnrealizeObject(displaced);
  gdi.SetBrushOrgEx(dc, oldX, oldY, nullptr, nullptr);
  gdi.SelectObject(dc, displaced);
  gdi.DeleteObject(brush);
  const std::int32_t left = place.x - 1, top = place.y - 1;
  const std::int32_t right = place.x + place.width, bottom = place.y + place.height;
  gdi.BitBlt(dc, left, top, right - left + 1, 1, 0, 0, 0, platform::gdi::kBlackness);
  gdi.BitBlt(dc, left, bottom, right - left + 1, 1, 0, 0, 0, platform::gdi::kBlackness);
  gdi.BitBlt(dc, left, top, 1, bottom - top + 1, 0, 0, 0, platform::gdi::kBlackness);
  gdi.BitBlt(dc, right, top, 1, bottom - top + 1, 0, 0, 0, platform::gdi::kBlackness);
  gdi.SelectObject(source, previous);
  gdi.DeleteObject(bitmap);
  gdi.DeleteDC(source);
  return target.Image();
}

TEST_F(ThumbnailConformance, DrawsExactlyWhatAStretchFromABitmapOfThePictureDraws) {
  // Busy pictures, so that every source pixel a thumbnail's pixel averages counts: large ones
  // cropped, small ones floating, one of the size that fills the box, and odd sizes.
  const auto busy = [](int x, int y) {
    const auto v = static_cast<std::uint32_t>(x * 2654435761u ^ y * 40503u ^ (x * y));
    return (v ^ (v >> 13)) & 0xFFFFFFu;
  };
  const std::pair<std::int32_t, std::int32_t> sizes[] = {
      {1920, 1080}, {1023, 577}, {404, 404}, {300, 200}, {97, 301}, {33, 17}};
  for (const auto& [width, height] : sizes) {
    const ui::Pixels drawn = Draw(width, height, busy);
    const ui::Pixels expected = ThroughABitmapOfItsOwn(source_.Picture());
    ASSERT_EQ(drawn.width, 64);
    ASSERT_EQ(expected.width, 64) << "the reference could not be drawn";
    int differing = 0;
    for (int y = 0; y < 64; ++y) {
      for (int x = 0; x < 64; ++x) {
        if (At(drawn, x, y) != At(expected, x, y)) ++differing;
      }
    }
    EXPECT_EQ(differing, 0) << width << " by " << height << ": " << differing
                            << " pixels differ from the stretch through a bitmap";
  }
}

}  // namespace
}  // namespace quorvane::testing
