// Loading into a picture held already keeps its memory when the new picture fits in it: every
// automatic change decodes a wallpaper of tens of megabytes into the same hidden picture box.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "IcoFiles.h"
#include "PictureFiles.h"
#include "Support.h"
#include "platform/win32/Win32Pictures.h"

namespace quorvane::testing {
namespace {

TEST(PictureMemory, APictureThatFitsIsDecodedIntoTheMemoryAlreadyHeld) {
  const std::string folder = FreshTempFolder();
  const std::vector<std::uint32_t> colours(32 * 16, 0x336699);
  const std::string file = folder + "fits.bmp";
  ASSERT_TRUE(WriteBytes(file, picture_files::BitmapFile(32, 16, 24, colours)));
  platform::win32::Win32Pictures pictures;

  Pixels picture{64, 64, std::vector<std::uint32_t>(64 * 64, 0xFFFFFFFFu)};
  const std::uint32_t* memory = picture.bgra.data();
  pictures.LoadPictureInto(file, picture);
  ASSERT_EQ(picture.width, 32);
  ASSERT_EQ(picture.height, 16);
  EXPECT_EQ(picture.bgra.data(), memory);
  EXPECT_EQ(picture.bgra.size(), 32u * 16u);
  EXPECT_EQ(picture.bgra.front(), 0xFF336699u);
  EXPECT_EQ(picture.bgra.back(), 0xFF336699u);

  // The same again, as the next change of the same wallpaper would.
  pictures.LoadPictureInto(file, picture);
  EXPECT_EQ(picture.bgra.data(), memory);
}

}  // namespace
}  // namespace quorvane::testing
