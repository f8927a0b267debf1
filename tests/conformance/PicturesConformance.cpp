// Picture files decoded into pixels and pixels saved as bitmap files, by the decoder this build
// has: the program's own readers with libjpeg-turbo, libpng and giflib natively, the platform's
// OLE loader on Windows. Every picture is made here, byte by byte, or is one of the two JPEG
// files in tests/data that were made for these tests; none comes from elsewhere.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "IcoFiles.h"
#include "PictureFiles.h"
#include "Support.h"
#include "base/Failure.h"
#include "platform/Pictures.h"
#include "platform/Service.h"

namespace quorvane::testing {
namespace {

namespace pf = picture_files;
using platform::Pictures;
using platform::Use;

constexpr std::uint32_t kOpaque = 0xFF000000u;

// A path of the machine the tests were built on, as this build reaches it: under Wine through
// the drive Z:, which shows the host's root.
std::string HostFile(const std::string& path) {
#ifdef _WIN32
  std::string out = "Z:" + path;
  std::replace(out.begin(), out.end(), '/', '\\');
  return out;
#else
  return path;
#endif
}

std::string ReadBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

std::string DataFile(const std::string& name) {
  return HostFile(std::string(QUORVANE_SOURCE_DIR) + "/tests/data/" + name);
}

std::uint32_t At(const Pixels& p, std::int32_t x, std::int32_t y) {
  return p.bgra[static_cast<std::size_t>(y) * static_cast<std::size_t>(p.width) +
                static_cast<std::size_t>(x)];
}

// Each channel, alpha too, within `tolerance` of the expected value.
::testing::AssertionResult Near(std::uint32_t actual, std::uint32_t expected, int tolerance) {
  for (int shift = 0; shift < 32; shift += 8) {
    const int a = static_cast<int>((actual >> shift) & 0xFFu);
    const int e = static_cast<int>((expected >> shift) & 0xFFu);
    if (std::abs(a - e) > tolerance) {
      return ::testing::AssertionFailure()
             << std::hex << "0x" << actual << " is not within " << std::dec << tolerance
             << " of 0x" << std::hex << expected;
    }
  }
  return ::testing::AssertionSuccess();
}

class PicturesConformance : public ::testing::Test {
 protected:
  std::string folder_ = FreshTempFolder();

  std::string Write(const std::string& name, const std::string& bytes) {
    const std::string path = folder_ + name;
    EXPECT_TRUE(WriteBytes(path, bytes));
    return path;
  }
  Pixels Load(const std::string& name, const std::string& bytes) {
    return Use<Pictures>().LoadPicture(Write(name, bytes));
  }
  // The failure number of loading `path`, or 0 when it loads.
  static std::int32_t LoadFailure(const std::string& path) {
    try {
      Use<Pictures>().LoadPicture(path);
    } catch (const Failure& failure) {
      return static_cast<std::int32_t>(failure.Number());
    }
    return 0;
  }
  std::vector<std::string> FolderNames() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
};

// Six colours in three columns and two rows, so that the rows need padding at 24 bits.
const std::vector<std::uint32_t> kSix = {0xFF0000, 0x00FF00, 0x0000FF,
                                         0x123456, 0xFEDCBA, 0x808080};

void ExpectColours(const Pixels& p, std::int32_t width, std::int32_t height,
                   const std::vector<std::uint32_t>& colours) {
  ASSERT_EQ(p.width, width);
  ASSERT_EQ(p.height, height);
  ASSERT_EQ(p.bgra.size(), colours.size());
  for (std::int32_t y = 0; y < height; ++y) {
    for (std::int32_t x = 0; x < width; ++x) {
      EXPECT_EQ(At(p, x, y), kOpaque | colours[static_cast<std::size_t>(y * width + x)])
          << "at " << x << "," << y;
    }
  }
}

// --- bitmaps ----------------------------------------------------------------------------------

TEST_F(PicturesConformance, A24BitBitmapGivesItsPixelsOpaqueAndTopDown) {
  ExpectColours(Load("six.bmp", pf::BitmapFile(3, 2, 24, kSix)), 3, 2, kSix);
}

TEST_F(PicturesConformance, ABitmapWhoseRowsAreStoredTopDownReadsTheSame) {
  ExpectColours(Load("down.bmp", pf::BitmapFile(3, -2, 24, kSix)), 3, 2, kSix);
}

TEST_F(PicturesConformance, A32BitBitmapIsOpaqueWhateverItsFourthByte) {
  ExpectColours(Load("wide.bmp", pf::BitmapFile(3, 2, 32, kSix)), 3, 2, kSix);
}

TEST_F(PicturesConformance, PaletteBitmapsOf8And4And1BitsLookTheirIndicesUp) {
  const std::vector<std::uint32_t> palette = {0x000000, 0xFF0000, 0x00FF00, 0x0000FF,
                                              0xFFFF00, 0x00FFFF, 0xFF00FF, 0xFFFFFF};
  std::vector<std::uint32_t> indices;
  for (std::uint32_t i = 0; i < 5 * 3; ++i) indices.push_back((i * 3) % 8);
  std::vector<std::uint32_t> colours;
  for (std::uint32_t i : indices) colours.push_back(palette[i]);
  ExpectColours(Load("eight.bmp", pf::BitmapFile(5, 3, 8, indices, palette)), 5, 3, colours);
  ExpectColours(Load("four.dib", pf::BitmapFile(5, 3, 4, indices, palette)), 5, 3, colours);

  std::vector<std::uint32_t> bits;
  std::vector<std::uint32_t> mono;
  for (std::uint32_t i = 0; i < 11 * 2; ++i) {
    bits.push_back(i % 3 == 0 ? 1 : 0);
    mono.push_back(i % 3 == 0 ? 0x00FF00 : 0x800000);
  }
  ExpectColours(Load("one.bmp", pf::BitmapFile(11, 2, 1, bits, {0x800000, 0x00FF00})), 11, 2,
                mono);
}

TEST_F(PicturesConformance, RunLengthBitmapsOf8And4BitsUnpackRunsAndAbsoluteStretches) {
  const std::vector<std::uint32_t> palette = {0x000000, 0xFF0000, 0x00FF00, 0x0000FF,
                                              0xFFFFFF, 0x808080};
  const std::int32_t width = 12;
  const std::int32_t height = 4;
  std::vector<std::uint32_t> indices;
  for (std::int32_t y = 0; y < height; ++y) {
    for (std::int32_t x = 0; x < width; ++x) {
      // Runs on the left, a stretch of different pixels on the right.
      indices.push_back(static_cast<std::uint32_t>(x < 6 ? 1 + y % 3 : 1 + (x + y) % 5));
    }
  }
  std::vector<std::uint32_t> colours;
  for (std::uint32_t i : indices) colours.push_back(palette[i]);
  const std::string rle8 = pf::RunLengthBitmap(width, height, false, indices, palette);
  ASSERT_EQ(pf::Get32(rle8, 30), 1u);  // BI_RLE8
  ExpectColours(Load("runs.rle", rle8), width, height, colours);
  const std::string rle4 = pf::RunLengthBitmap(width, height, true, indices, palette);
  ASSERT_EQ(pf::Get32(rle4, 30), 2u);  // BI_RLE4
  ExpectColours(Load("runs4.bmp", rle4), width, height, colours);
}

// Which bitmaps load, and how, is what the platform's loader decides.

// Rows of 8-bit palette indices, bottom-up, padded to whole words.
std::string IndexRows(std::int32_t width, std::int32_t height, const std::vector<std::uint32_t>& indices) {
  std::string data;
  const auto stride = (static_cast<std::size_t>(width) + 3) / 4 * 4;
  for (std::int32_t r = height - 1; r >= 0; --r) {
    std::string row(stride, '\0');
    for (std::int32_t x = 0; x < width; ++x) {
      row[static_cast<std::size_t>(x)] = static_cast<char>(indices[static_cast<std::size_t>(r * width + x)]);
    }
    data += row;
  }
  return data;
}

TEST_F(PicturesConformance, EveryHeaderOfFortyBytesOrMoreReadsAsAnInfoHeader) {
  // The core header of 12 bytes, the info header and the later ones of 52, 56, 108 and 124
  // bytes, and the 64 bytes of OS/2 2.x: the same palette picture from each.
  const std::vector<std::uint32_t> palette = {0x102030, 0xF0E0D0, 0x00FF00, 0x123456, 0xABCDEF};
  std::vector<std::uint32_t> indices;
  std::vector<std::uint32_t> colours;
  for (std::uint32_t i = 0; i < 7 * 3; ++i) {
    indices.push_back((i * 3 + 1) % 5);
    colours.push_back(palette[indices.back()]);
  }
  const std::string data = IndexRows(7, 3, indices);
  for (const std::uint32_t size : {12u, 40u, 52u, 56u, 64u, 108u, 124u, 200u}) {
    SCOPED_TRACE(size);
    std::vector<std::uint32_t> full = palette;
    if (size == 12) full.resize(256, 0);  // a core header's palette is always whole
    ExpectColours(Load("header.bmp", pf::BitmapWithHeader(size, 7, 3, 8, 0, full, {}, data)), 7, 3,
                  colours);
  }
  // Headers shorter than 40 bytes, other than the core header's 12, are none the loader knows:
  // OS/2 2.x allows 16 of its 64 bytes.
  for (const std::uint32_t size : {16u, 24u, 39u}) {
    SCOPED_TRACE(size);
    std::string file = pf::BitmapWithHeader(40, 7, 3, 8, 0, palette, {}, data);
    file[14] = static_cast<char>(size);
    EXPECT_EQ(LoadFailure(Write("short.bmp", file)), 481);
  }
}

TEST_F(PicturesConformance, BitFieldsWidenAsThePlatformWidensThem) {
  // Each field's bits on top, then the field once more below them: 1 bit set gives 0xC0, 2 bits
  // 0xF0, the 3 bits 101 give 0xB4, the 5 bits 00011 give 0x18; 8 bits or more give their top 8.
  std::string data;
  const auto pixel16 = [&](std::uint32_t v) { pf::Put16(data, v); };
  // Red 2 bits, green 3 bits, blue 1 bit, at the top of the 16.
  pixel16((3u << 14) | (7u << 11) | (1u << 10));
  pixel16((2u << 14) | (5u << 11));
  pixel16((1u << 14) | (2u << 11) | (1u << 10));
  pixel16(0);  // padding of the row
  ExpectColours(Load("fields231.bmp", pf::BitmapWithHeader(40, 3, 1, 16, 3, {}, {0xC000, 0x3800, 0x0400}, data)),
                3, 1, {0xF0FCC0, 0xA0B400, 0x5048C0});
  data.clear();
  // 5-6-5.
  pixel16((3u << 11) | (1u << 5) | 20u);
  pixel16((31u << 11) | (63u << 5) | 31u);
  ExpectColours(Load("fields565.bmp", pf::BitmapWithHeader(40, 2, 1, 16, 3, {}, {0xF800, 0x07E0, 0x001F}, data)),
                2, 1, {0x1804A5, 0xFFFFFF});
  data.clear();
  // 32 bits: 10-10-10, and a field of 6 bits.
  pf::Put32(data, (0x3FFu << 20) | (0x155u << 10) | 0x0FFu);
  pf::Put32(data, (0x2Au << 26) | (0x3FFFu << 12) | 0x3u);
  ExpectColours(Load("fields32.bmp", pf::BitmapWithHeader(40, 1, 2, 32, 3, {}, {0x3FF00000, 0x000FFC00, 0x000003FF}, data.substr(0, 4) + data.substr(0, 4))),
                1, 2, {0xFF553F, 0xFF553F});
  ExpectColours(Load("fields6.bmp", pf::BitmapWithHeader(108, 1, 1, 32, 3, {}, {0xFC000000, 0x03FFF000, 0x00000003}, data.substr(4, 4))),
                1, 1, {0xAAFFF0});
}

TEST_F(PicturesConformance, BitmapsThePlatformDoesNotLoadAreInvalidPictures) {
  const std::string rows(16, '\x5A');
  // Two bits a pixel.
  EXPECT_EQ(LoadFailure(Write("two.bmp", pf::BitmapWithHeader(40, 4, 2, 2, 0, {0, 0x555555, 0xAAAAAA, 0xFFFFFF}, {}, rows))), 481);
  // Sixty-four bits a pixel.
  EXPECT_EQ(LoadFailure(Write("wide.bmp", pf::BitmapWithHeader(40, 2, 2, 64, 0, {}, {}, std::string(32, '\x40')))), 481);
  // Masks of four colours, alpha among them.
  EXPECT_EQ(LoadFailure(Write("alpha.bmp", pf::BitmapWithHeader(40, 2, 2, 32, 6, {}, {0xFF0000, 0xFF00, 0xFF, 0xFF000000}, rows))), 481);
  EXPECT_EQ(LoadFailure(Write("alpha5.bmp", pf::BitmapWithHeader(124, 2, 2, 32, 6, {}, {0xFF0000, 0xFF00, 0xFF, 0xFF000000}, rows))), 481);
  // A JPEG or a PNG inside, and run-length coding of 24 bits.
  EXPECT_EQ(LoadFailure(Write("jpeg.bmp", pf::BitmapWithHeader(40, 2, 2, 24, 4, {}, {}, ReadBytes(DataFile("quadrants.jpg"))))), 481);
  EXPECT_EQ(LoadFailure(Write("png.bmp", pf::BitmapWithHeader(40, 3, 2, 24, 5, {}, {}, pf::PngFile(3, 2, kSix)))), 481);
  EXPECT_EQ(LoadFailure(Write("rle24.bmp", pf::BitmapWithHeader(64, 2, 2, 24, 4, {}, {}, rows))), 481);
  // The same picture as it is loadable, so that the refusals above are for what they show.
  ExpectColours(Load("plain.bmp", pf::BitmapWithHeader(40, 2, 2, 32, 0, {}, {}, std::string(16, '\0'))), 2, 2,
                {0, 0, 0, 0});
}

// --- GIF --------------------------------------------------------------------------------------

TEST_F(PicturesConformance, AGifGivesItsFrameInItsColours) {
  const std::vector<std::uint32_t> palette = {0x000000, 0xFF0000, 0x00FF00, 0x0000FF, 0xABCDEF};
  std::vector<std::uint32_t> indices;
  std::vector<std::uint32_t> colours;
  for (std::uint32_t i = 0; i < 20 * 15; ++i) {
    indices.push_back(i % 5);
    colours.push_back(palette[i % 5]);
  }
  ExpectColours(Load("frame.gif", pf::GifFile(20, 15, palette, indices)), 20, 15, colours);
  ExpectColours(Load("laced.gif", pf::GifFile(20, 15, palette, indices, true)), 20, 15, colours);
}

TEST_F(PicturesConformance, AnAnimatedGifGivesItsFirstFrame) {
  const std::vector<std::uint32_t> palette = {0x000000, 0xFF0000, 0x0000FF};
  const std::string first = pf::GifFile(6, 4, palette, std::vector<std::uint32_t>(24, 1));
  const std::string second = pf::GifFile(6, 4, palette, std::vector<std::uint32_t>(24, 2));
  // The second file's frame, from its image descriptor on, after the first's frame.
  const std::size_t frame = 13 + 3 * 256;
  ASSERT_EQ(second[frame], ',');
  const std::string both = first.substr(0, first.size() - 1) + second.substr(frame);
  ExpectColours(Load("two.gif", both), 6, 4, std::vector<std::uint32_t>(24, 0xFF0000));
}

TEST_F(PicturesConformance, AGifsTransparentColourComesOutTransparent) {
  const std::vector<std::uint32_t> palette = {0x000000, 0xFF0000, 0x00FF00};
  std::vector<std::uint32_t> indices(8 * 8, 1);
  for (std::size_t i = 0; i < indices.size(); i += 3) indices[i] = 2;
  const Pixels p = Load("clear.gif", pf::GifFile(8, 8, palette, indices, false, 2));
  ASSERT_EQ(p.width, 8);
  ASSERT_EQ(p.height, 8);
  for (std::size_t i = 0; i < indices.size(); ++i) {
    if (indices[i] == 2) {
      EXPECT_EQ(p.bgra[i] >> 24, 0u) << "pixel " << i;
    } else {
      EXPECT_EQ(p.bgra[i], 0xFFFF0000u) << "pixel " << i;
    }
  }
}

// --- JPEG -------------------------------------------------------------------------------------

void ExpectQuadrants(const Pixels& p) {
  ASSERT_EQ(p.width, 32);
  ASSERT_EQ(p.height, 32);
  EXPECT_TRUE(Near(At(p, 8, 8), 0xFFFF0000u, 12));
  EXPECT_TRUE(Near(At(p, 24, 8), 0xFF00FF00u, 12));
  EXPECT_TRUE(Near(At(p, 8, 24), 0xFF0000FFu, 12));
  EXPECT_TRUE(Near(At(p, 24, 24), 0xFFFFFFFFu, 12));
  EXPECT_TRUE(Near(At(p, 2, 29), 0xFF0000FFu, 24));
}

TEST_F(PicturesConformance, AJpegDecodesToItsSizeAndColoursWithinTheLossOfItsCoding) {
  ExpectQuadrants(Use<Pictures>().LoadPicture(DataFile("quadrants.jpg")));
  ExpectQuadrants(Use<Pictures>().LoadPicture(DataFile("quadrants-progressive.jpg")));
}

TEST_F(PicturesConformance, TheKindOfPictureIsToldByItsContentNotItsName) {
  ExpectQuadrants(Load("photo.bmp", ReadBytes(DataFile("quadrants.jpg"))));
  ExpectColours(Load("bitmap.jpg", pf::BitmapFile(3, 2, 24, kSix)), 3, 2, kSix);
  ExpectColours(Load("bitmap", pf::BitmapFile(3, 2, 24, kSix)), 3, 2, kSix);
  ExpectColours(Load("png.gif", pf::PngFile(3, 2, kSix)), 3, 2, kSix);
}

// --- PNG --------------------------------------------------------------------------------------

TEST_F(PicturesConformance, APngGivesItsPixels) {
  std::vector<std::uint32_t> colours;
  for (std::uint32_t i = 0; i < 7 * 5; ++i) colours.push_back((i * 0x071B3Fu) & 0xFFFFFFu);
  ExpectColours(Load("seven.png", pf::PngFile(7, 5, colours)), 7, 5, colours);
}

// 16-bit samples that are exactly an 8-bit level (the level times 257), so that scaling them
// to 8 bits, by rounding or by their high byte, gives the level itself.
std::vector<std::uint32_t> Levels(std::int32_t width, std::int32_t height) {
  std::vector<std::uint32_t> colours;
  for (std::int32_t i = 0; i < width * height; ++i) {
    const auto u = static_cast<std::uint32_t>(i);
    colours.push_back((((u * 37u + 16u) & 0xFFu) << 16) | (((u * 91u + 64u) & 0xFFu) << 8) |
                      ((u * 53u + 200u) & 0xFFu));
  }
  return colours;
}

std::vector<std::uint16_t> Samples16(const std::vector<std::uint32_t>& colours) {
  std::vector<std::uint16_t> samples;
  for (const std::uint32_t c : colours) {
    for (const int shift : {16, 8, 0}) samples.push_back(static_cast<std::uint16_t>(((c >> shift) & 0xFFu) * 257u));
  }
  return samples;
}

TEST_F(PicturesConformance, ASixteenBitPngWithoutGammaIsSrgbNotLinearLight) {
  // Taken for linear light, a quarter level (0x40) would show as 0x89: far too bright.
  const std::vector<std::uint32_t> colours = Levels(5, 3);
  ExpectColours(Load("deep.png", pf::SixteenBitPngFile(5, 3, 3, Samples16(colours))), 5, 3, colours);
  const std::vector<std::uint32_t> quarter(4, 0x404040);
  ExpectColours(Load("quarter.png", pf::SixteenBitPngFile(2, 2, 3, Samples16(quarter))), 2, 2, quarter);

  // Grey, and grey with alpha (opaque here).
  std::vector<std::uint16_t> grey;
  std::vector<std::uint16_t> greyAlpha;
  std::vector<std::uint32_t> greys;
  for (std::uint32_t i = 0; i < 12; ++i) {
    const std::uint32_t level = (i * 23u + 5u) & 0xFFu;
    grey.push_back(static_cast<std::uint16_t>(level * 257u));
    greyAlpha.push_back(static_cast<std::uint16_t>(level * 257u));
    greyAlpha.push_back(0xFFFF);
    greys.push_back(level * 0x010101u);
  }
  ExpectColours(Load("grey.png", pf::SixteenBitPngFile(4, 3, 1, grey)), 4, 3, greys);
  ExpectColours(Load("greyalpha.png", pf::SixteenBitPngFile(4, 3, 2, greyAlpha)), 4, 3, greys);
}

TEST_F(PicturesConformance, AnInterlacedSixteenBitPngGivesTheSamePixelsAsAPlainOne) {
  // Sizes that leave some of the seven passes short or empty.
  for (const auto& [width, height] : std::vector<std::pair<std::int32_t, std::int32_t>>{
           {13, 11}, {1, 1}, {3, 2}, {9, 1}, {1, 9}}) {
    SCOPED_TRACE(::testing::Message() << width << "x" << height);
    const std::vector<std::uint32_t> colours = Levels(width, height);
    const std::vector<std::uint16_t> samples = Samples16(colours);
    ExpectColours(Load("plain.png", pf::SixteenBitPngFile(width, height, 3, samples)), width, height,
                  colours);
    ExpectColours(Load("interlaced.png", pf::SixteenBitPngFile(width, height, 3, samples, true)),
                  width, height, colours);
  }
  // With alpha: the transparent pixels are transparent, the others keep their colour.
  const std::vector<std::uint32_t> colours = Levels(10, 7);
  std::vector<std::uint16_t> samples;
  for (std::size_t i = 0; i < colours.size(); ++i) {
    for (const int shift : {16, 8, 0}) {
      samples.push_back(static_cast<std::uint16_t>(((colours[i] >> shift) & 0xFFu) * 257u));
    }
    samples.push_back(i % 3 == 0 ? 0 : 0xFFFF);
  }
  const Pixels p = Load("alpha.png", pf::SixteenBitPngFile(10, 7, 4, samples, true));
  ASSERT_EQ(p.width, 10);
  ASSERT_EQ(p.height, 7);
  for (std::size_t i = 0; i < colours.size(); ++i) {
    if (i % 3 == 0) {
      EXPECT_EQ(p.bgra[i] >> 24, 0u) << "pixel " << i;
    } else {
      EXPECT_EQ(p.bgra[i], kOpaque | colours[i]) << "pixel " << i;
    }
  }
}

TEST_F(PicturesConformance, APngsTransparentPixelsAreTransparentAndTheOthersKeepTheirColour) {
  const std::vector<std::uint32_t> colours(6 * 4, 0x2080C0);
  std::vector<std::uint8_t> alpha(colours.size(), 0xFF);
  for (std::size_t i = 0; i < alpha.size(); i += 5) alpha[i] = 0;
  const Pixels p = Load("holes.png", pf::PngFile(6, 4, colours, alpha));
  ASSERT_EQ(p.width, 6);
  ASSERT_EQ(p.height, 4);
  for (std::size_t i = 0; i < alpha.size(); ++i) {
    if (alpha[i] == 0) {
      EXPECT_EQ(p.bgra[i] >> 24, 0u) << "pixel " << i;
    } else {
      EXPECT_EQ(p.bgra[i], 0xFF2080C0u) << "pixel " << i;
    }
  }
}

// --- icons and cursors ------------------------------------------------------------------------

TEST_F(PicturesConformance, AnIconGivesItsLargestImageWithTheMaskTransparent) {
  IcoImage small = SolidImage(16, 8, 1, {0x000000, 0xFF0000});
  IcoImage large = SolidImage(48, 24, 0x00FF00);
  for (std::int32_t y = 0; y < 48; ++y) {
    for (std::int32_t x = 0; x < 48; ++x) {
      if (x < 8 && y < 8) large.mask[static_cast<std::size_t>(y * 48 + x)] = 1;
      if (x < 8 && y < 8) large.pixels[static_cast<std::size_t>(y * 48 + x)] = 0;
    }
  }
  IcoImage middle = SolidImage(32, 24, 0x0000FF);
  const Pixels p = Load("three.ico", IcoBytes({small, large, middle}));
  ASSERT_EQ(p.width, 48);
  ASSERT_EQ(p.height, 48);
  EXPECT_EQ(At(p, 20, 20), 0xFF00FF00u);
  EXPECT_EQ(At(p, 47, 47), 0xFF00FF00u);
  EXPECT_EQ(At(p, 3, 3) >> 24, 0u);
  EXPECT_EQ(At(p, 8, 3), 0xFF00FF00u);
}

TEST_F(PicturesConformance, AtTheLargeShellSizeAnIconGivesItsImageNearestThatSize) {
  // The large shell icon size is 32 pixels on both builds' systems.
  const std::string path = Write("sizes.ico", IcoBytes({SolidImage(16, 24, 0xFF0000),
                                                        SolidImage(48, 24, 0x00FF00),
                                                        SolidImage(32, 24, 0x0000FF)}));
  Pixels p;
  Use<Pictures>().LoadPictureSizedInto(path, platform::kLargeShellSize, platform::kDefaultDepth,
                                       p);
  ASSERT_EQ(p.width, 32);
  ASSERT_EQ(p.height, 32);
  EXPECT_EQ(At(p, 10, 10), 0xFF0000FFu);
  // An icon's only image is taken whatever its size.
  const std::string single = Write("single.ico", IcoBytes({SolidImage(48, 24, 0x00FF00)}));
  Use<Pictures>().LoadPictureSizedInto(single, platform::kLargeShellSize, platform::kDefaultDepth,
                                       p);
  EXPECT_EQ(p.width, 48);
}

TEST_F(PicturesConformance, ACursorFileReadsAsAnIcon) {
  std::string bytes = IcoBytes({SolidImage(32, 8, 1, {0x000000, 0x3366CC})});
  bytes[2] = 2;  // a cursor file
  const Pixels p = Load("pointer.cur", bytes);
  ASSERT_EQ(p.width, 32);
  ASSERT_EQ(p.height, 32);
  EXPECT_EQ(At(p, 10, 10), 0xFF3366CCu);
}

TEST_F(PicturesConformance, AnIconMayHoldItsLargestImageAsPng) {
  std::vector<std::uint32_t> colours(40 * 40, 0xC08040);
  const std::string icon =
      pf::IconFileOf({pf::PngFile(40, 40, colours), ico_detail::EntryData(SolidImage(16, 24, 0x0000FF))},
                     {{{40, 40}}, {{16, 16}}});
  const Pixels p = Load("png.ico", icon);
  ASSERT_EQ(p.width, 40);
  ASSERT_EQ(p.height, 40);
  EXPECT_EQ(At(p, 39, 0), 0xFFC08040u);
}

// --- loading into a picture held already ------------------------------------------------------

TEST_F(PicturesConformance, LoadingIntoALargerPictureGivesExactlyTheNewPicture) {
  const std::string file = Write("six.bmp", pf::BitmapFile(3, 2, 24, kSix));
  Pixels picture{40, 30, std::vector<std::uint32_t>(40 * 30, 0xFFABCDEFu)};
  Use<Pictures>().LoadPictureInto(file, picture);
  ExpectColours(picture, 3, 2, kSix);
  EXPECT_EQ(picture, Use<Pictures>().LoadPicture(file));
}

TEST_F(PicturesConformance, LoadingIntoASmallerPictureGrowsIt) {
  std::vector<std::uint32_t> colours(64 * 48);
  for (std::size_t i = 0; i < colours.size(); ++i) colours[i] = static_cast<std::uint32_t>(i * 37);
  const std::string file = Write("grown.bmp", pf::BitmapFile(64, 48, 24, colours));
  Pixels picture{2, 1, {0xFF010203u, 0xFF040506u}};
  Use<Pictures>().LoadPictureInto(file, picture);
  ExpectColours(picture, 64, 48, colours);
}

TEST_F(PicturesConformance, AFailedLoadIntoAPictureLeavesItAsItWas) {
  const Pixels before{2, 1, {0xFF010203u, 0xFF040506u}};
  Pixels picture = before;
  const auto failure = [&](const std::string& path) {
    try {
      Use<Pictures>().LoadPictureInto(path, picture);
    } catch (const Failure& failed) {
      return static_cast<std::int32_t>(failed.Number());
    }
    return 0;
  };
  EXPECT_EQ(failure(Write("words.jpg", "no picture here")), 481);
  EXPECT_EQ(picture, before);
  EXPECT_EQ(failure(folder_ + "absent.jpg"), 53);
  EXPECT_EQ(picture, before);
  const std::string bmp = pf::BitmapFile(64, 64, 24, std::vector<std::uint32_t>(64 * 64, 0x204060));
  EXPECT_EQ(failure(Write("half.bmp", bmp.substr(0, bmp.size() / 2))), 481);
  EXPECT_EQ(picture, before);
}

// --- failures ---------------------------------------------------------------------------------

TEST_F(PicturesConformance, AMissingFileIsFileNotFound) {
  EXPECT_EQ(LoadFailure(folder_ + "absent.bmp"), 53);
  EXPECT_EQ(LoadFailure(folder_ + "no folder" + (folder_.back() == '/' ? "/" : "\\") + "x.jpg"),
            53);
}

TEST_F(PicturesConformance, WhatIsNoPictureIsAnInvalidPicture) {
  std::string garbage;
  for (int i = 0; i < 4000; ++i) garbage.push_back(static_cast<char>((i * 7919 + 13) % 251));
  EXPECT_EQ(LoadFailure(Write("garbage.bmp", garbage)), 481);
  EXPECT_EQ(LoadFailure(Write("empty.jpg", "")), 481);
  EXPECT_EQ(LoadFailure(Write("text.gif", "Just some words, no picture at all.\r\n")), 481);
  EXPECT_EQ(LoadFailure(Write("header.bmp", pf::BitmapFile(3, 2, 24, kSix).substr(0, 20))), 481);
  EXPECT_EQ(LoadFailure(Write("magic.png", std::string("\x89PNG\r\n\x1A\n", 8))), 481);
  EXPECT_EQ(LoadFailure(Write("magic.gif", "GIF89a")), 481);
}

TEST_F(PicturesConformance, PicturesCutShortAreInvalidPictures) {
  std::vector<std::uint32_t> colours(64 * 64, 0x204060);
  const std::string bmp = pf::BitmapFile(64, 64, 24, colours);
  EXPECT_EQ(LoadFailure(Write("half.bmp", bmp.substr(0, bmp.size() / 2))), 481);
  const std::string png = pf::PngFile(64, 64, colours);
  EXPECT_EQ(LoadFailure(Write("half.png", png.substr(0, png.size() / 2))), 481);
  std::vector<std::uint32_t> indices(64 * 64, 1);
  const std::string gif = pf::GifFile(64, 64, {0, 0xFF0000}, indices);
  EXPECT_EQ(LoadFailure(Write("half.gif", gif.substr(0, gif.size() / 2))), 481);
  const std::string jpeg = ReadBytes(DataFile("quadrants.jpg"));
  EXPECT_EQ(LoadFailure(Write("head.jpg", jpeg.substr(0, 100))), 481);
  const std::string progressive = ReadBytes(DataFile("quadrants-progressive.jpg"));
  EXPECT_EQ(LoadFailure(Write("most.jpg", jpeg.substr(0, jpeg.size() - 40))), 481);
  EXPECT_EQ(LoadFailure(Write("scans.jpg", progressive.substr(0, progressive.size() * 3 / 4))),
            481);
  const std::string icon = IcoBytes({SolidImage(32, 24, 0x00FF00)});
  EXPECT_EQ(LoadFailure(Write("half.ico", icon.substr(0, icon.size() / 2))), 481);
}

// --- saving -----------------------------------------------------------------------------------

TEST_F(PicturesConformance, SavingWritesAn24BitBitmapBottomUpWithPaddedRows) {
  const Pixels loaded = Load("six.bmp", pf::BitmapFile(3, 2, 24, kSix));
  const std::string saved = folder_ + "WP.bmp";
  Use<Pictures>().SavePicture(loaded, saved);
  const std::string bytes = ReadBytes(saved);
  const std::size_t rowBytes = 12;  // three pixels of three bytes, padded to four
  ASSERT_EQ(bytes.size(), 54u + 2 * rowBytes);
  EXPECT_EQ(bytes.substr(0, 2), "BM");
  EXPECT_EQ(pf::Get32(bytes, 2), bytes.size());  // bfSize
  EXPECT_EQ(pf::Get32(bytes, 10), 54u);          // bfOffBits
  EXPECT_EQ(pf::Get32(bytes, 14), 40u);          // biSize
  EXPECT_EQ(pf::Get32(bytes, 18), 3u);           // biWidth
  EXPECT_EQ(pf::Get32(bytes, 22), 2u);           // biHeight: positive, so bottom-up
  EXPECT_EQ(pf::Get16(bytes, 26), 1u);           // biPlanes
  EXPECT_EQ(pf::Get16(bytes, 28), 24u);          // biBitCount
  EXPECT_EQ(pf::Get32(bytes, 30), 0u);           // BI_RGB
  EXPECT_EQ(pf::Get32(bytes, 34), 2 * rowBytes);  // biSizeImage
  EXPECT_EQ(pf::Get32(bytes, 46), 0u);           // no palette
  // The first row in the file is the picture's bottom row, blue first in each pixel.
  const std::string bottom = bytes.substr(54, rowBytes);
  EXPECT_EQ(bottom, std::string("\x56\x34\x12\xBA\xDC\xFE\x80\x80\x80\0\0\0", 12));
  const std::string top = bytes.substr(54 + rowBytes, rowBytes);
  EXPECT_EQ(top, std::string("\0\0\xFF\0\xFF\0\xFF\0\0\0\0\0", 12));

  EXPECT_EQ(Use<Pictures>().LoadPicture(saved), loaded);
}

TEST_F(PicturesConformance, EveryKindOfPictureSavesAsABitmapThatLoadsBackTheSame) {
  const std::vector<std::string> made = {
      Write("a.gif", pf::GifFile(5, 3, {0x102030, 0x405060, 0x708090},
                                 {0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2})),
      Write("b.png", pf::PngFile(3, 2, kSix)),
      DataFile("quadrants.jpg"),
  };
  for (const std::string& path : made) {
    const Pixels loaded = Use<Pictures>().LoadPicture(path);
    Use<Pictures>().SavePicture(loaded, folder_ + "WP.bmp");
    EXPECT_EQ(Use<Pictures>().LoadPicture(folder_ + "WP.bmp"), loaded) << path;
  }
}

TEST_F(PicturesConformance, SavingReplacesAFileAndLeavesNothingElse) {
  const std::string saved = Write("WP.bmp", std::string(5000, 'x'));
  Pixels picture;
  picture.width = 2;
  picture.height = 2;
  picture.bgra = {0xFF010203u, 0x80040506u, 0x00070809u, 0xFFFFFFFFu};
  Use<Pictures>().SavePicture(picture, saved);
  const std::string bytes = ReadBytes(saved);
  ASSERT_EQ(bytes.size(), 54u + 2 * 8);
  EXPECT_EQ(bytes.substr(54, 8), std::string("\x09\x08\x07\xFF\xFF\xFF\0\0", 8));
  EXPECT_EQ(bytes.substr(62, 8), std::string("\x03\x02\x01\x06\x05\x04\0\0", 8));
  EXPECT_EQ(FolderNames(), std::vector<std::string>{"WP.bmp"});
}

TEST_F(PicturesConformance, SavingIntoAMissingFolderFailsAndMakesNothing) {
  const char sep = folder_.back();
  const std::string missing = folder_ + "nowhere" + sep + "WP.bmp";
  Pixels picture;
  picture.width = 1;
  picture.height = 1;
  picture.bgra = {0xFF000000u};
  try {
    Use<Pictures>().SavePicture(picture, missing);
    ADD_FAILURE() << "saved into a missing folder";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::PathNotFound);
  }
  EXPECT_TRUE(FolderNames().empty());
}

TEST_F(PicturesConformance, SavingAnEmptyPictureIsAnInvalidCall) {
  try {
    Use<Pictures>().SavePicture(Pixels{}, folder_ + "WP.bmp");
    ADD_FAILURE() << "saved an empty picture";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::InvalidProcedureCall);
  }
  EXPECT_TRUE(FolderNames().empty());
}

// --- real wallpapers --------------------------------------------------------------------------

// The size a JPEG's frame header or a PNG's IHDR gives, or 0 by 0.
std::pair<std::int32_t, std::int32_t> DeclaredSize(const std::string& bytes) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(bytes[i]); };
  const auto big16 = [&](std::size_t i) { return static_cast<std::int32_t>((byte(i) << 8) | byte(i + 1)); };
  if (bytes.size() >= 24 && bytes.compare(0, 8, std::string("\x89PNG\r\n\x1A\n", 8)) == 0) {
    return {(big16(16) << 16) | big16(18), (big16(20) << 16) | big16(22)};
  }
  std::size_t at = 2;
  while (at + 9 < bytes.size()) {
    if (byte(at) != 0xFF) return {0, 0};
    const std::uint8_t marker = byte(at + 1);
    if (marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC) {
      return {big16(at + 7), big16(at + 5)};
    }
    at += 2 + static_cast<std::size_t>(big16(at + 2));
  }
  return {0, 0};
}

// Pictures nobody here made: those of Debian's ukui-wallpapers, which puts its JPEGs and PNGs in
// the top level of /usr/share/backgrounds (scripts/setup.sh installs it).
TEST_F(PicturesConformance, DebiansWallpapersDecodeToTheirTrueSize) {
  const std::string folder = "/usr/share/backgrounds";
  const std::string missing = " (Debian's wallpaper pictures: `make setup`, or apt-get install "
                              "ukui-wallpapers)";
  std::error_code ec;
  ASSERT_TRUE(std::filesystem::is_directory(HostFile(folder), ec))
      << folder << " is not there" << missing;
  int seen = 0;
  for (const auto& entry : std::filesystem::directory_iterator(HostFile(folder), ec)) {
    const std::string name = entry.path().filename().string();
    const std::string ext = entry.path().extension().string();
    if (ext != ".jpg" && ext != ".png") continue;
    const std::string path = HostFile(folder + "/" + name);
    const auto [width, height] = DeclaredSize(ReadBytes(path));
    ASSERT_GT(width, 0) << name;
    const Pixels p = Use<Pictures>().LoadPicture(path);
    EXPECT_EQ(p.width, width) << name;
    EXPECT_EQ(p.height, height) << name;
    EXPECT_EQ(p.bgra.size(), static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    ++seen;
  }
  EXPECT_GT(seen, 0) << folder << " holds no JPEG or PNG file" << missing;
}

}  // namespace
}  // namespace quorvane::testing
