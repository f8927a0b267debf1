// The bitmap reader on the forms of bitmap the conformance files don't use: core headers, bit
// fields, run-length moves, and headers that claim more than the bytes hold.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "conformance/PictureFiles.h"
#include "codecs/BitmapDecoder.h"
#include "codecs/BitmapFile.h"
#include "codecs/PictureFormats.h"

namespace quorvane::platform {
namespace {

namespace pf = testing::picture_files;

std::span<const std::uint8_t> View(const std::string& bytes) {
  return {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
}

TEST(BitmapDecoderTest, ACoreHeaderWithThreeBytePaletteEntries) {
  std::string out = "BM";
  pf::Put32(out, 0);
  pf::Put32(out, 0);
  pf::Put32(out, 14 + 12 + 6);
  pf::Put32(out, 12);
  pf::Put16(out, 2);   // width
  pf::Put16(out, 1);   // height
  pf::Put16(out, 1);   // planes
  pf::Put16(out, 1);   // bits
  out += std::string("\x10\x20\x30\x40\x50\x60", 6);  // blue, green, red twice
  out += std::string("\x40\0\0\0", 4);                 // pixels 0 then 1
  const auto p = codecs::DecodeBitmapFile(View(out));
  ASSERT_TRUE(p);
  EXPECT_EQ(p->bgra, (std::vector<std::uint32_t>{0xFF302010u, 0xFF605040u}));
}

TEST(BitmapDecoderTest, SixteenBitsWithBitFieldsOf565) {
  std::string data;
  pf::Put16(data, 0xF800);  // red
  pf::Put16(data, 0x07E0);  // green
  std::string masks;
  pf::Put32(masks, 0xF800);
  pf::Put32(masks, 0x07E0);
  pf::Put32(masks, 0x001F);
  std::string file = pf::BitmapWithData(2, 1, 16, 3, {}, masks + data);
  // The masks lie between header and pixels; the offset of the pixels counts them.
  file[10] = static_cast<char>(14 + 40 + 12);
  const auto p = codecs::DecodeBitmapFile(View(file));
  ASSERT_TRUE(p);
  EXPECT_EQ(p->bgra, (std::vector<std::uint32_t>{0xFFFF0000u, 0xFF00FF00u}));
}

TEST(BitmapDecoderTest, SixteenBitsWithoutFieldsAre555) {
  std::string data;
  pf::Put16(data, 0x7C00);
  pf::Put16(data, 0x001F);
  const auto p = codecs::DecodeBitmapFile(View(pf::BitmapWithData(2, 1, 16, 0, {}, data)));
  ASSERT_TRUE(p);
  EXPECT_EQ(p->bgra, (std::vector<std::uint32_t>{0xFFFF0000u, 0xFF0000FFu}));
}

TEST(BitmapDecoderTest, RunLengthMovesLeaveSkippedPixelsBlack) {
  // 3 by 2: bottom row "1 at x=0", then a move of one right and one up, one pixel, the end.
  const std::string data("\x01\x01\x00\x02\x01\x01\x01\x02\x00\x01", 10);
  const auto p = codecs::DecodeBitmapFile(
      View(pf::BitmapWithData(3, 2, 8, 1, {0x000000, 0xFF0000, 0x00FF00}, data)));
  ASSERT_TRUE(p);
  EXPECT_EQ(p->bgra, (std::vector<std::uint32_t>{0xFF000000u, 0xFF000000u, 0xFF00FF00u,
                                                 0xFFFF0000u, 0xFF000000u, 0xFF000000u}));
}

TEST(BitmapDecoderTest, RunLengthDataWithoutItsEndIsRefused) {
  const std::string data("\x03\x01\x00\x00", 4);  // one row of two, then nothing
  EXPECT_FALSE(codecs::DecodeBitmapFile(View(pf::BitmapWithData(3, 2, 8, 1, {0, 0xFF}, data))));
}

TEST(BitmapDecoderTest, HeadersThatClaimMoreThanTheBytesHoldAreRefused) {
  std::vector<std::uint32_t> pixels(4, 0x123456);
  std::string file = pf::BitmapFile(2, 2, 24, pixels);
  ASSERT_TRUE(codecs::DecodeBitmapFile(View(file)));
  std::string wide = file;
  wide[18] = 3;  // three pixels a row where two were written
  EXPECT_FALSE(codecs::DecodeBitmapFile(View(wide)));
  std::string far = file;
  far[13] = 0x40;  // pixels beyond the end of the file
  EXPECT_FALSE(codecs::DecodeBitmapFile(View(far)));
  std::string huge = file;
  huge[21] = 0x40;  // a width of a billion
  EXPECT_FALSE(codecs::DecodeBitmapFile(View(huge)));
  std::string palette = pf::BitmapFile(2, 2, 8, {0, 1, 1, 0}, {0, 0xFFFFFF});
  palette[46] = static_cast<char>(0xFF);  // more palette entries than there are bytes
  palette[47] = static_cast<char>(0xFF);
  EXPECT_FALSE(codecs::DecodeBitmapFile(View(palette)));
  EXPECT_FALSE(codecs::DecodeBitmapFile(View(file.substr(0, 30))));
}

TEST(BitmapDecoderTest, AnIconsThirtyTwoBitImageKeepsItsOwnAlphaAndIgnoresTheMask) {
  std::string dib;
  pf::Put32(dib, 40);
  pf::Put32(dib, 1);
  pf::Put32(dib, 2);  // one row of colour and one of mask
  pf::Put16(dib, 1);
  pf::Put16(dib, 32);
  dib += std::string(24, '\0');
  pf::Put32(dib, 0x80112233);
  pf::Put32(dib, 0x80000000);  // the mask says transparent; alpha wins
  const auto p = codecs::DecodeIconBitmap(View(dib));
  ASSERT_TRUE(p);
  EXPECT_EQ(p->bgra, std::vector<std::uint32_t>{0x80112233u});
}

TEST(BitmapDecoderTest, SavedBitmapsReadBack) {
  Pixels picture;
  picture.width = 5;
  picture.height = 3;
  for (std::uint32_t i = 0; i < 15; ++i) picture.bgra.push_back(0xFF000000u | (i * 0x10203u));
  const std::vector<std::uint8_t> bytes = codecs::BitmapFileBytes(picture);
  EXPECT_EQ(bytes.size(), 54u + 3 * codecs::BitmapRowBytes(5));
  const auto back = codecs::DecodeBitmapFile(bytes);
  ASSERT_TRUE(back);
  EXPECT_EQ(*back, picture);
}

TEST(PictureFormatsTest, TheKindIsToldByTheFirstBytes) {
  const auto kind = [](const std::string& s) { return codecs::KindOfPicture(View(s)); };
  EXPECT_EQ(kind("BM......"), codecs::PictureKind::Bitmap);
  EXPECT_EQ(kind("GIF87a.."), codecs::PictureKind::Gif);
  EXPECT_EQ(kind("GIF88a.."), codecs::PictureKind::Unknown);
  EXPECT_EQ(kind(std::string("\xFF\xD8\xFF\xE0", 4)), codecs::PictureKind::Jpeg);
  EXPECT_EQ(kind(std::string("\x89PNG\r\n\x1A\n", 8)), codecs::PictureKind::Png);
  EXPECT_EQ(kind(std::string("\0\0\1\0\1\0", 6)), codecs::PictureKind::Icon);
  EXPECT_EQ(kind(std::string("\0\0\2\0\1\0", 6)), codecs::PictureKind::Icon);
  EXPECT_EQ(kind(std::string("\0\0\1\0\0\0", 6)), codecs::PictureKind::Unknown);
  EXPECT_EQ(kind(std::string("\xD7\xCD\xC6\x9A", 4)), codecs::PictureKind::Metafile);
  EXPECT_EQ(kind(""), codecs::PictureKind::Unknown);
  EXPECT_EQ(kind("B"), codecs::PictureKind::Unknown);
}

TEST(PictureFormatsTest, TheLargestIconEntryWinsThenTheDeepest) {
  std::vector<codecs::IconDirectoryEntry> entries(3);
  entries[0].width = entries[0].height = 32;
  entries[0].bitCount = 8;
  entries[1].width = entries[1].height = 48;
  entries[1].bitCount = 4;
  entries[2].width = entries[2].height = 48;
  entries[2].bitCount = 32;
  EXPECT_EQ(&codecs::LargestIconEntry(entries), &entries[2]);
}

TEST(PictureFormatsTest, ASingleEntryIconFileKeepsTheEntryAndItsData) {
  const std::string a(40, 'a');
  const std::string b(60, 'b');
  const std::string icon = pf::IconFileOf({a, b}, {{{16, 16}}, {{32, 32}}}, 2);
  const auto entries = codecs::ReadIconDirectory(View(icon));
  ASSERT_TRUE(entries);
  ASSERT_EQ(entries->size(), 2u);
  const std::vector<std::uint8_t> one = codecs::SingleEntryIconFile(View(icon), (*entries)[1]);
  const std::string text(one.begin(), one.end());
  EXPECT_EQ(pf::Get16(text, 2), 2u);  // still a cursor file
  EXPECT_EQ(pf::Get16(text, 4), 1u);
  EXPECT_EQ(static_cast<std::uint8_t>(text[6]), 32u);
  EXPECT_EQ(pf::Get32(text, 14), 60u);
  EXPECT_EQ(pf::Get32(text, 18), 22u);
  EXPECT_EQ(text.substr(22), b);
}

}  // namespace
}  // namespace quorvane::platform
