// What a picture box shows of its picture: the picture over the box's back colour.
#include "ui/RenderedImage.h"

#include <gtest/gtest.h>

#include <vector>

namespace quorvane::ui {
namespace {

Pixels PictureOf(std::vector<std::uint32_t> bgra, std::int32_t width) {
  Pixels picture;
  picture.width = width;
  picture.height = static_cast<std::int32_t>(bgra.size()) / width;
  picture.bgra = std::move(bgra);
  return picture;
}

TEST(RenderedImageTest, AnOpaquePictureIsItsOwnRenderedImageWithoutACopy) {
  PictureBox box("PBTempWallpaper");
  box.Picture(PictureOf({0xFF102030u, 0xFFFFFFFFu, 0xFF000000u, 0xFFABCDEFu}, 2));
  Pixels scratch;
  const Pixels& rendered = RenderedImage(box, scratch);
  EXPECT_EQ(&rendered, &box.Picture());
  EXPECT_TRUE(scratch.bgra.empty());
}

TEST(RenderedImageTest, WhereThePictureIsTransparentTheBackColorShows) {
  PictureBox box("PBTempWallpaper");
  box.BackColor = 0x40C020;  // 0xBBGGRR: red 0x20, green 0xC0, blue 0x40
  box.Picture(PictureOf({0xFFFF0000u, 0x00000000u, 0x00FFFFFFu, 0xFF0000FFu}, 2));
  Pixels scratch;
  const Pixels& rendered = RenderedImage(box, scratch);
  EXPECT_EQ(&rendered, &scratch);
  EXPECT_EQ(rendered.width, 2);
  EXPECT_EQ(rendered.height, 2);
  // Pixels are 0xAARRGGBB: the back colour as a pixel is 0xFF20C040.
  EXPECT_EQ(rendered.bgra, (std::vector<std::uint32_t>{0xFFFF0000u, 0xFF20C040u, 0xFF20C040u,
                                                       0xFF0000FFu}));
  // The box keeps the picture it loaded.
  EXPECT_EQ(box.Picture().bgra[1], 0x00000000u);
}

TEST(RenderedImageTest, APartlyTransparentPixelMixesWithTheBackColor) {
  // Half of white over black, and a quarter of red over white, rounded to the nearest level.
  EXPECT_EQ(OverBackColor(0x80FFFFFFu, 0x000000), 0xFF808080u);
  EXPECT_EQ(OverBackColor(0x40FF0000u, 0xFFFFFF), 0xFFFFBFBFu);
  EXPECT_EQ(OverBackColor(0xFF123456u, 0xFFFFFF), 0xFF123456u);
  EXPECT_EQ(OverBackColor(0x00123456u, 0x563412), 0xFF123456u);
}

TEST(RenderedImageTest, ABoxWithoutAPictureRendersNothing) {
  PictureBox box("PBTempWallpaper");
  Pixels scratch;
  EXPECT_TRUE(RenderedImage(box, scratch).Empty());
}

}  // namespace
}  // namespace quorvane::ui
