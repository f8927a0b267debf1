// The Windows adapter decodes JPEG files, bitmaps, and GIF files without a transparent colour,
// through the imaging component straight into the caller's memory, and everything else through
// the OLE picture loader. Here both ways, and the OLE loader alone, are run over the same files:
// real pictures of Debian's wallpaper packages, pictures made here of every kind the wallpaper
// page lists, and files damaged, cut short, renamed, absent, locked or of kinds no decoder here
// reads. The same files must be accepted and refused, with the same failure numbers, and the
// pictures accepted must have the same pixels.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "IcoFiles.h"
#include "PictureFiles.h"
#include "Support.h"
#include "base/Failure.h"
#include "platform/win32/Win32Pictures.h"

namespace quorvane::testing {
namespace {

namespace pf = picture_files;
using platform::win32::PictureDecoding;
using platform::win32::Win32Pictures;

// How far two JPEG decoders may put the same sample apart: the rounding of their inverse
// transforms and of their colour conversion, a step or two. Everything else decodes exactly.
constexpr int kJpegTolerance = 2;

std::string HostFile(const std::string& path) {
  std::string out = "Z:" + path;
  std::replace(out.begin(), out.end(), '/', '\\');
  return out;
}

std::string ReadBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

std::span<const std::uint8_t> View(const std::string& bytes) {
  return {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
}

std::string DataFile(const std::string& name) {
  return HostFile(std::string(QUORVANE_SOURCE_DIR) + "/tests/data/" + name);
}

// What one way of decoding made of a file: its failure number (0 when it loaded) and its pixels.
struct Outcome {
  std::int32_t failure = 0;
  Pixels picture;
};

// A picture the caller held before, as the wallpaper's hidden picture box holds the last one.
const Pixels& Before() {
  static const Pixels before{3, 2, std::vector<std::uint32_t>(6, 0xFF0A0B0Cu)};
  return before;
}

Outcome Decode(PictureDecoding decoding, const std::string& path) {
  Win32Pictures pictures(decoding);
  Outcome outcome;
  outcome.picture = Before();
  try {
    pictures.LoadPictureInto(path, outcome.picture);
  } catch (const Failure& failure) {
    outcome.failure = static_cast<std::int32_t>(failure.Number());
  }
  return outcome;
}

// The largest difference of one channel between two pictures of the same size.
int LargestDifference(const Pixels& a, const Pixels& b) {
  int largest = 0;
  for (std::size_t i = 0; i < a.bgra.size(); ++i) {
    const std::uint32_t x = a.bgra[i];
    const std::uint32_t y = b.bgra[i];
    if (x == y) continue;
    for (int shift = 0; shift < 32; shift += 8) {
      largest = std::max(largest, std::abs(static_cast<int>((x >> shift) & 0xFFu) -
                                           static_cast<int>((y >> shift) & 0xFFu)));
    }
  }
  return largest;
}

class PictureLoaderAgreement : public ::testing::Test {
 protected:
  std::string folder_ = FreshTempFolder();

  std::string Write(const std::string& name, const std::string& bytes) {
    const std::string path = folder_ + name;
    EXPECT_TRUE(WriteBytes(path, bytes));
    return path;
  }

  // Decodes `path` both ways and expects the same outcome; `tolerance` is how far a channel of
  // the two pictures may differ. Returns the outcome, and the largest difference through
  // `difference` when given.
  Outcome ExpectAgreement(const std::string& path, int tolerance = 0, int* difference = nullptr) {
    const Outcome straight = Decode(PictureDecoding::Fastest, path);
    const Outcome ole = Decode(PictureDecoding::OleOnly, path);
    EXPECT_EQ(straight.failure, ole.failure) << path;
    if (straight.failure != 0 || ole.failure != 0) {
      // A refused file leaves the caller's picture as it was, both ways.
      EXPECT_EQ(straight.picture, Before()) << path;
      EXPECT_EQ(ole.picture, Before()) << path;
      return ole;
    }
    EXPECT_EQ(straight.picture.width, ole.picture.width) << path;
    EXPECT_EQ(straight.picture.height, ole.picture.height) << path;
    if (straight.picture.bgra.size() != ole.picture.bgra.size()) {
      ADD_FAILURE() << path << ": " << straight.picture.bgra.size() << " pixels against "
                    << ole.picture.bgra.size();
      return ole;
    }
    const int largest = LargestDifference(straight.picture, ole.picture);
    EXPECT_LE(largest, tolerance) << path;
    if (difference != nullptr) *difference = std::max(*difference, largest);
    return ole;
  }
};

// Every picture file of Debian's wallpaper packages whose name ends in one of `extensions`,
// each once (the packages link some pictures under a second name), in the order of their paths.
std::vector<std::string> Wallpapers(const std::vector<std::string>& extensions) {
  std::vector<std::string> files;
  std::error_code ec;
  for (const char* top : {"/usr/share/backgrounds", "/usr/share/wallpapers"}) {
    for (auto it = std::filesystem::recursive_directory_iterator(HostFile(top), ec);
         !ec && it != std::filesystem::recursive_directory_iterator(); it.increment(ec)) {
      std::string ext = it->path().extension().string();
      std::transform(ext.begin(), ext.end(), ext.begin(),
                     [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
      if (it->is_symlink(ec) || !it->is_regular_file(ec)) continue;
      if (std::find(extensions.begin(), extensions.end(), ext) != extensions.end()) {
        files.push_back(it->path().string());
      }
    }
  }
  std::sort(files.begin(), files.end());
  // Under Wine a link reads as the file it points to: the same size and first bytes tell it.
  std::vector<std::string> once;
  std::vector<std::string> seen;
  for (const std::string& file : files) {
    std::error_code e;
    std::ifstream in(file, std::ios::binary);
    std::string head(4096, '\0');
    in.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(in.gcount()));
    std::string key = std::to_string(std::filesystem::file_size(file, e)) + ":" + head;
    if (std::find(seen.begin(), seen.end(), key) != seen.end()) continue;
    seen.push_back(std::move(key));
    once.push_back(file);
  }
  return once;
}

// The smallest of Debian's wallpaper JPEGs, by its file's size; empty when there is none.
std::string SmallestWallpaperJpeg() {
  const std::vector<std::string> jpegs = Wallpapers({".jpg", ".jpeg"});
  if (jpegs.empty()) return {};
  const auto size = [](const std::string& p) {
    std::error_code e;
    return std::filesystem::file_size(p, e);
  };
  return *std::min_element(jpegs.begin(), jpegs.end(),
                           [&](const std::string& a, const std::string& b) {
                             return size(a) < size(b);
                           });
}

// A real picture, small: the smallest of Debian's wallpaper JPEGs decoded and cut down to
// `width` by `height` by taking every so many pixels, as 0xRRGGBB colours.
std::vector<std::uint32_t> RealColours(std::int32_t width, std::int32_t height) {
  const std::string jpeg = SmallestWallpaperJpeg();
  if (jpeg.empty()) return {};
  const Pixels source = Win32Pictures(PictureDecoding::OleOnly).LoadPicture(jpeg);
  std::vector<std::uint32_t> colours;
  for (std::int32_t y = 0; y < height; ++y) {
    for (std::int32_t x = 0; x < width; ++x) {
      const std::size_t sx = static_cast<std::size_t>(x) * static_cast<std::size_t>(source.width) /
                             static_cast<std::size_t>(width);
      const std::size_t sy = static_cast<std::size_t>(y) *
                             static_cast<std::size_t>(source.height) /
                             static_cast<std::size_t>(height);
      colours.push_back(source.bgra[sy * static_cast<std::size_t>(source.width) + sx] & 0xFFFFFFu);
    }
  }
  return colours;
}

// 3 bits of red, 3 of green, 2 of blue: a palette of 256 colours any picture can be put in.
std::vector<std::uint32_t> Palette332() {
  std::vector<std::uint32_t> palette;
  for (std::uint32_t i = 0; i < 256; ++i) {
    const std::uint32_t r = ((i >> 5) & 7u) * 255u / 7u;
    const std::uint32_t g = ((i >> 2) & 7u) * 255u / 7u;
    const std::uint32_t b = (i & 3u) * 255u / 3u;
    palette.push_back((r << 16) | (g << 8) | b);
  }
  return palette;
}

std::vector<std::uint32_t> Indices332(const std::vector<std::uint32_t>& colours) {
  std::vector<std::uint32_t> indices;
  for (std::uint32_t c : colours) {
    indices.push_back((((c >> 16) & 0xFFu) >> 5 << 5) | (((c >> 8) & 0xFFu) >> 5 << 2) |
                      ((c & 0xFFu) >> 6));
  }
  return indices;
}

// A bitmap of 16 bits a pixel with bit fields: 5-6-5, or 5-5-5 when `sixGreen` is false.
std::string SixteenBitBitmap(std::int32_t width, std::int32_t height,
                             const std::vector<std::uint32_t>& colours, bool sixGreen) {
  const std::size_t stride = ((static_cast<std::size_t>(width) * 16 + 31) / 32) * 4;
  std::string data;
  for (std::int32_t y = height - 1; y >= 0; --y) {
    std::string row(stride, '\0');
    for (std::int32_t x = 0; x < width; ++x) {
      const std::uint32_t c = colours[static_cast<std::size_t>(y * width + x)];
      const std::uint32_t r = (c >> 16) & 0xFFu;
      const std::uint32_t g = (c >> 8) & 0xFFu;
      const std::uint32_t b = c & 0xFFu;
      const std::uint32_t v = sixGreen ? ((r >> 3) << 11) | ((g >> 2) << 5) | (b >> 3)
                                       : ((r >> 3) << 10) | ((g >> 3) << 5) | (b >> 3);
      row[2 * static_cast<std::size_t>(x)] = static_cast<char>(v & 0xFFu);
      row[2 * static_cast<std::size_t>(x) + 1] = static_cast<char>(v >> 8);
    }
    data += row;
  }
  const std::vector<std::uint32_t> masks =
      sixGreen ? std::vector<std::uint32_t>{0xF800, 0x07E0, 0x001F}
               : std::vector<std::uint32_t>{0x7C00, 0x03E0, 0x001F};
  return pf::BitmapWithHeader(40, width, height, 16, 3, {}, masks, data);
}

// A GIF of two frames: `first`'s file with the second's image after its first.
std::string TwoFrameGif(const std::string& first, const std::string& second) {
  constexpr std::size_t kImageAt = 13 + 3 * 256;  // after the screen and its colour table
  return first.substr(0, first.size() - 1) + second.substr(kImageAt);
}

// A picture drawn into a metafile, enhanced or placeable, through the platform's own recorder.
std::string RecordedMetafile(const std::string& folder, bool enhanced) {
  const std::string path = folder + (enhanced ? "drawn.emf" : "plain.wmf");
  const auto draw = [](HDC dc) {
    HBRUSH brush = ::CreateSolidBrush(RGB(200, 40, 60));
    const RECT r{10, 10, 90, 50};
    ::FillRect(dc, &r, brush);
    ::DeleteObject(brush);
    ::Ellipse(dc, 20, 5, 70, 45);
  };
  if (enhanced) {
    const RECT frame{0, 0, 2540, 1524};  // hundredths of a millimetre
    HDC dc = ::CreateEnhMetaFileA(nullptr, path.c_str(), &frame, nullptr);
    if (dc == nullptr) return {};
    draw(dc);
    ::DeleteEnhMetaFile(::CloseEnhMetaFile(dc));
    return ReadBytes(path);
  }
  HDC dc = ::CreateMetaFileA(path.c_str());
  if (dc == nullptr) return {};
  ::SetWindowExtEx(dc, 100, 60, nullptr);
  draw(dc);
  ::DeleteMetaFile(::CloseMetaFile(dc));
  const std::string records = ReadBytes(path);
  // The placeable header: its key, no handle, the bounds in units of `inch` a inch, a checksum.
  std::string header;
  pf::Put32(header, 0x9AC6CDD7u);
  const std::vector<std::uint32_t> words = {0, 0, 0, 100, 60, 96};
  for (std::uint32_t w : words) pf::Put16(header, w);
  pf::Put32(header, 0);
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i < header.size(); i += 2) sum ^= pf::Get16(header, i);
  pf::Put16(header, sum);
  return header + records;
}

// A PCX file of 8 bits a pixel with its palette at the end, run-length coded as its kind is.
std::string PcxFile(std::int32_t width, std::int32_t height,
                    const std::vector<std::uint32_t>& indices,
                    const std::vector<std::uint32_t>& palette) {
  std::string out;
  out.push_back(0x0A);
  out.push_back(5);
  out.push_back(1);
  out.push_back(8);
  pf::Put16(out, 0);
  pf::Put16(out, 0);
  pf::Put16(out, static_cast<std::uint32_t>(width - 1));
  pf::Put16(out, static_cast<std::uint32_t>(height - 1));
  pf::Put16(out, 72);
  pf::Put16(out, 72);
  out += std::string(48, '\0');
  out.push_back(0);
  out.push_back(1);  // one plane
  pf::Put16(out, static_cast<std::uint32_t>(width + (width & 1)));
  pf::Put16(out, 1);
  out += std::string(128 - out.size(), '\0');
  for (std::int32_t y = 0; y < height; ++y) {
    for (std::int32_t x = 0; x < width + (width & 1); ++x) {
      const std::uint32_t v = x < width ? indices[static_cast<std::size_t>(y * width + x)] : 0;
      if (v >= 0xC0) out.push_back(static_cast<char>(0xC1));
      out.push_back(static_cast<char>(v));
    }
  }
  out.push_back(0x0C);
  for (std::size_t i = 0; i < 256; ++i) {
    const std::uint32_t c = i < palette.size() ? palette[i] : 0;
    out.push_back(static_cast<char>((c >> 16) & 0xFFu));
    out.push_back(static_cast<char>((c >> 8) & 0xFFu));
    out.push_back(static_cast<char>(c & 0xFFu));
  }
  return out;
}

// Every JPEG and PNG of Debian's wallpaper packages (scripts/setup.sh installs them), decoded
// both ways: the pictures a person most likely shows.
TEST_F(PictureLoaderAgreement, DebiansWallpapersDecodeAlikeBothWays) {
  const std::vector<std::string> files = Wallpapers({".jpg", ".jpeg", ".png"});
  int jpegs = 0;
  int pngs = 0;
  int difference = 0;
  for (const std::string& file : files) {
    const bool jpeg = file.size() > 4 && file.substr(file.size() - 4) != ".png";
    const Outcome outcome = ExpectAgreement(file, jpeg ? kJpegTolerance : 0, &difference);
    EXPECT_EQ(outcome.failure, 0) << file;
    if (jpeg) {
      // The straight path itself takes the file, rather than leaving it to the OLE loader.
      Pixels straight;
      EXPECT_TRUE(platform::win32::DecodeStraightInto(View(ReadBytes(file)), straight)) << file;
      if (straight.bgra.size() == outcome.picture.bgra.size()) {
        difference = std::max(difference, LargestDifference(straight, outcome.picture));
        EXPECT_LE(LargestDifference(straight, outcome.picture), kJpegTolerance) << file;
      } else {
        ADD_FAILURE() << file << ": the straight path gave " << straight.width << "x"
                      << straight.height;
      }
    }
    ++(jpeg ? jpegs : pngs);
  }
  EXPECT_GE(jpegs, 60) << "Debian's wallpaper JPEGs: `make setup`";
  EXPECT_GT(pngs, 0) << "Debian's wallpaper PNGs: `make setup`";
  std::printf("[ corpus   ] %d JPEG and %d PNG wallpapers; largest difference of a channel %d\n",
              jpegs, pngs, difference);
}

// Bitmaps of every depth and coding, GIF (plain, interlaced, two frames, with a transparent
// colour), icons and cursors, metafiles and the test JPEGs, each under the names the wallpaper
// page lists; the bitmaps and GIFs carry a real picture cut down to 97 by 61.
TEST_F(PictureLoaderAgreement, EveryKindTheWallpaperPageListsDecodesAlikeBothWays) {
  constexpr std::int32_t kW = 97;
  constexpr std::int32_t kH = 61;
  const std::vector<std::uint32_t> colours = RealColours(kW, kH);
  ASSERT_EQ(colours.size(), static_cast<std::size_t>(kW * kH))
      << "Debian's wallpaper JPEGs: `make setup`";
  const std::vector<std::uint32_t> palette = Palette332();
  const std::vector<std::uint32_t> indices = Indices332(colours);
  std::vector<std::uint32_t> greys(16);
  std::vector<std::uint32_t> grey(colours.size());
  std::vector<std::uint32_t> mono(colours.size());
  for (std::uint32_t i = 0; i < 16; ++i) greys[i] = (i * 17u) * 0x010101u;
  for (std::size_t i = 0; i < colours.size(); ++i) {
    const std::uint32_t c = colours[i];
    const std::uint32_t level =
        (((c >> 16) & 0xFFu) * 3 + ((c >> 8) & 0xFFu) * 6 + (c & 0xFFu)) / 10;
    grey[i] = level >> 4;
    mono[i] = level >> 7;
  }

  struct Case {
    std::string name;
    std::string bytes;
  };
  std::vector<Case> cases = {
      {"real24.bmp", pf::BitmapFile(kW, kH, 24, colours)},
      {"real24-top-down.bmp", pf::BitmapFile(kW, -kH, 24, colours)},
      {"real32.bmp", pf::BitmapFile(kW, kH, 32, colours)},
      {"real565.bmp", SixteenBitBitmap(kW, kH, colours, true)},
      {"real555.bmp", SixteenBitBitmap(kW, kH, colours, false)},
      {"real8.bmp", pf::BitmapFile(kW, kH, 8, indices, palette)},
      {"real4.bmp", pf::BitmapFile(kW, kH, 4, grey, greys)},
      {"real1.bmp", pf::BitmapFile(kW, kH, 1, mono, {0x000000, 0xFFFFFF})},
      {"real8.rle", pf::RunLengthBitmap(kW, kH, false, indices, palette)},
      {"real4.rle", pf::RunLengthBitmap(kW, kH, true, grey, greys)},
      {"real24.dib", pf::BitmapFile(kW, kH, 24, colours)},
      {"real.gif", pf::GifFile(kW, kH, palette, indices)},
      {"real-interlaced.gif", pf::GifFile(kW, kH, palette, indices, true)},
      {"real-transparent.gif", pf::GifFile(kW, kH, palette, indices, false, 0)},
      {"real-two-frames.gif",
       TwoFrameGif(pf::GifFile(kW, kH, palette, indices), pf::GifFile(kW, kH, palette, grey))},
      {"quadrants.jpg", ReadBytes(DataFile("quadrants.jpg"))},
      {"quadrants-progressive.jpg", ReadBytes(DataFile("quadrants-progressive.jpg"))},
      {"icon.ico", IcoBytes({SolidImage(16, 8, 3, palette), SolidImage(32, 32, 0xFF336699u),
                             SolidImage(48, 24, 0x00CC8844u)})},
      {"png-icon.ico",
       pf::IconFileOf({pf::PngFile(48, 48, std::vector<std::uint32_t>(48 * 48, 0x3366CC))},
                      {{{48, 48}}})},
      {"real.png", pf::PngFile(kW, kH, colours)},
      {"wmf.wmf", RecordedMetafile(folder_, false)},
      {"emf.emf", RecordedMetafile(folder_, true)},
  };
  std::string cursor = IcoBytes({SolidImage(32, 32, 0xFF884422u)});
  cursor[2] = 2;
  cases.push_back({"cursor.cur", cursor});
  // The files the imaging component decodes straight; the OLE loader takes the others.
  const std::vector<std::string> straightNames = {
      "real24.bmp", "real24-top-down.bmp", "real32.bmp", "real565.bmp",
      "real555.bmp", "real8.bmp", "real4.bmp", "real1.bmp",
      "real8.rle", "real4.rle", "real24.dib", "real.gif",
      "real-interlaced.gif", "real-two-frames.gif", "quadrants.jpg", "quadrants-progressive.jpg"};
  int accepted = 0;
  for (const Case& c : cases) {
    ASSERT_FALSE(c.bytes.empty()) << c.name;
    const bool jpeg = c.name.find(".jpg") != std::string::npos;
    const Outcome outcome = ExpectAgreement(Write(c.name, c.bytes), jpeg ? kJpegTolerance : 0);
    EXPECT_EQ(outcome.failure, 0) << c.name;
    if (outcome.failure == 0) ++accepted;
    Pixels straight;
    const bool taken = platform::win32::DecodeStraightInto(View(c.bytes), straight);
    EXPECT_EQ(taken, std::find(straightNames.begin(), straightNames.end(), c.name) !=
                         straightNames.end())
        << c.name;
    if (taken) {
      EXPECT_LE(LargestDifference(straight, outcome.picture), jpeg ? kJpegTolerance : 0) << c.name;
    }
  }
  EXPECT_EQ(accepted, static_cast<int>(cases.size()));
}

// Damaged, cut short, renamed, absent and locked files, and kinds no decoder here reads.
TEST_F(PictureLoaderAgreement, DamagedRenamedAndForeignFilesAreRefusedAlikeBothWays) {
  const std::string jpeg = ReadBytes(DataFile("quadrants.jpg"));
  const std::string progressive = ReadBytes(DataFile("quadrants-progressive.jpg"));
  ASSERT_GT(jpeg.size(), 200u);
  ASSERT_GT(progressive.size(), 200u);
  const std::string wallpaperPath = SmallestWallpaperJpeg();
  ASSERT_FALSE(wallpaperPath.empty()) << "Debian's wallpaper JPEGs: `make setup`";
  const std::string wallpaper = ReadBytes(wallpaperPath);
  const std::vector<std::uint32_t> palette = Palette332();
  std::vector<std::uint32_t> indices(64 * 40);
  for (std::size_t i = 0; i < indices.size(); ++i) {
    indices[i] = static_cast<std::uint32_t>((i * 7) % 251);
  }
  const std::string gif = pf::GifFile(64, 40, palette, indices);
  std::vector<std::uint32_t> colours(64 * 40);
  for (std::size_t i = 0; i < colours.size(); ++i) {
    colours[i] = static_cast<std::uint32_t>(i * 2654435761u) & 0xFFFFFFu;
  }
  const std::string bmp = pf::BitmapFile(64, 40, 24, colours);
  const std::string png = pf::PngFile(64, 40, colours);

  // The scan's bytes scrambled in the middle, and a frame header that claims no width.
  std::string scrambled = jpeg;
  for (std::size_t i = scrambled.size() / 2; i < scrambled.size() / 2 + 64; ++i) {
    scrambled[i] = static_cast<char>(scrambled[i] ^ 0x5A);
  }
  std::string scrambledWallpaper = wallpaper;
  for (std::size_t i = wallpaper.size() / 2; i < wallpaper.size() / 2 + 4096; i += 7) {
    scrambledWallpaper[i] = static_cast<char>(scrambledWallpaper[i] ^ 0xA5);
  }
  std::string noWidth = jpeg;
  for (std::size_t at = 2; at + 9 < noWidth.size();) {
    const auto marker = static_cast<std::uint8_t>(noWidth[at + 1]);
    if (marker == 0xC0 || marker == 0xC2) {
      noWidth[at + 7] = 0;
      noWidth[at + 8] = 0;
      break;
    }
    at += 2 + (static_cast<std::size_t>(static_cast<std::uint8_t>(noWidth[at + 2])) << 8) +
          static_cast<std::uint8_t>(noWidth[at + 3]);
  }
  std::string badGif = gif;
  badGif[13 + 3 * 256 + 10] = 12;  // a smallest code width no GIF has

  struct Case {
    std::string name;
    std::string bytes;
  };
  const std::vector<Case> cases = {
      {"scrambled.jpg", scrambled},
      {"scrambled-wallpaper.jpg", scrambledWallpaper},
      {"half-wallpaper.jpg", wallpaper.substr(0, wallpaper.size() / 2)},
      {"wallpaper-no-end.jpg", wallpaper.substr(0, wallpaper.size() - 2)},
      {"wallpaper.gif", wallpaper},
      {"wallpaper.bmp", wallpaper},
      {"no-width.jpg", noWidth},
      {"head.jpg", jpeg.substr(0, 100)},
      {"half.jpg", jpeg.substr(0, jpeg.size() / 2)},
      {"most.jpg", jpeg.substr(0, jpeg.size() - 40)},
      {"no-end.jpg", jpeg.substr(0, jpeg.size() - 2)},
      {"only-marker.jpg", jpeg.substr(0, 3)},
      {"scans.jpg", progressive.substr(0, progressive.size() * 3 / 4)},
      {"first-scan.jpg", progressive.substr(0, progressive.size() / 3)},
      {"half.gif", gif.substr(0, gif.size() / 2)},
      {"no-trailer.gif", gif.substr(0, gif.size() - 1)},
      {"bad-code.gif", badGif},
      {"header.gif", gif.substr(0, 13)},
      {"half.bmp", bmp.substr(0, bmp.size() / 2)},
      {"half.png", png.substr(0, png.size() / 2)},
      {"photo.bmp", jpeg},
      {"photo.gif", jpeg},
      {"photo.ico", jpeg},
      {"photo.png", jpeg},
      {"animation.jpg", gif},
      {"bitmap.jpg", bmp},
      {"bitmap.gif", bmp},
      {"image.jpg", png},
      {"real.pcx", PcxFile(64, 40, indices, palette)},
      {"picture.jpg", PcxFile(64, 40, indices, palette)},
      {"empty.jpg", ""},
      {"words.jpg", "no picture here"},
  };
  std::string outcomes;
  for (const Case& c : cases) {
    const std::string path = Write(c.name, c.bytes);
    const bool jpegContent = c.bytes.size() > 3 && c.bytes.compare(0, 3, "\xFF\xD8\xFF") == 0;
    outcomes += " " + c.name + "=" +
                std::to_string(ExpectAgreement(path, jpegContent ? kJpegTolerance : 0).failure);
  }
  std::printf("[ corpus   ] failure numbers (0: loaded):%s\n", outcomes.c_str());

  // Absent: no such file, no such folder.
  EXPECT_EQ(ExpectAgreement(folder_ + "absent.jpg").failure, 53);
  EXPECT_EQ(ExpectAgreement(folder_ + "no folder\\absent.jpg").failure, 53);
  // A JPEG another program holds open without sharing it.
  const std::string locked = Write("locked.jpg", jpeg);
  HANDLE held = ::CreateFileA(locked.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  EXPECT_EQ(ExpectAgreement(locked).failure, 75);
  ::CloseHandle(held);
}

// A JPEG decoded into a picture that holds more pixels already keeps that picture's memory, and
// one decoded into a smaller picture grows it with the right pixels.
TEST_F(PictureLoaderAgreement, AJpegIsDecodedIntoTheMemoryAlreadyHeld) {
  const std::string file = Write("quadrants.jpg", ReadBytes(DataFile("quadrants.jpg")));
  Win32Pictures pictures;
  const Pixels expected = Win32Pictures(PictureDecoding::OleOnly).LoadPicture(file);
  ASSERT_FALSE(expected.Empty());
  Pixels picture{expected.width + 50, expected.height + 50,
                 std::vector<std::uint32_t>((expected.bgra.size() + 100) * 2, 0xFFFFFFFFu)};
  const std::uint32_t* memory = picture.bgra.data();
  pictures.LoadPictureInto(file, picture);
  EXPECT_EQ(picture.bgra.data(), memory);
  EXPECT_LE(LargestDifference(picture, expected), kJpegTolerance);
  EXPECT_EQ(picture.width, expected.width);
  EXPECT_EQ(picture.bgra.size(), expected.bgra.size());

  Pixels small{1, 1, {0xFF000000u}};
  pictures.LoadPictureInto(file, small);
  ASSERT_EQ(small.bgra.size(), expected.bgra.size());
  EXPECT_LE(LargestDifference(small, expected), kJpegTolerance);
}

}  // namespace
}  // namespace quorvane::testing
