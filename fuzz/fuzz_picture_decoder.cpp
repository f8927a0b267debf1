// The portable picture decoder over arbitrary bytes: decoded in memory and loaded from a file
// through the adapter. The only failure either may raise is InvalidPicture (481); a picture
// that decodes has a pixel for each place of its size, and the same pixels both ways. Seeded
// with pictures of every kind the tests make, and the JPEG files in tests/data.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "FuzzSeeds.h"
#include "FuzzSupport.h"
#include "conformance/IcoFiles.h"
#include "conformance/PictureFiles.h"
#include "base/Failure.h"
#include "codecs/PictureFormats.h"
#include "platform/portable/DecodedPictures.h"

namespace {

using quorvane::fuzzing::Require;
using quorvane::fuzzing::ScratchFile;

namespace pf = quorvane::testing::picture_files;
using quorvane::Failure;
using quorvane::FailureNumber;
using quorvane::Pixels;

// The pixels, or nothing when the decoder refused the bytes as it must: with 481.
template <class Decode>
std::optional<Pixels> Attempt(Decode decode) {
  try {
    Pixels p = decode();
    Require(!p.Empty(), "an empty picture");
    Require(quorvane::codecs::DecodableSize(p.width, p.height), "a picture beyond the limit");
    Require(p.bgra.size() == static_cast<std::size_t>(p.width) * static_cast<std::size_t>(p.height),
            "pixels that don't match the size");
    return p;
  } catch (const Failure& failure) {
    Require(failure.Number() == FailureNumber::InvalidPicture, "a failure other than 481");
  } catch (...) {
    Require(false, "something other than a Failure thrown");
  }
  return std::nullopt;
}

std::string JpegSeed(const char* name) {
  const std::filesystem::path here(__FILE__);
  std::ifstream file(here.parent_path().parent_path() / "tests" / "data" / name, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

}  // namespace

std::vector<std::string> QuorvaneFuzzSeeds() {
  using namespace quorvane::testing;
  const std::vector<std::uint32_t> palette = {0x000000, 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF};
  std::vector<std::uint32_t> indices;
  for (std::uint32_t i = 0; i < 9 * 5; ++i) indices.push_back(i < 20 ? 1 + i / 7 % 4 : i % 5);
  std::vector<std::uint32_t> colours;
  for (std::uint32_t i : indices) colours.push_back(palette[i] ^ (i * 0x030507u));
  std::vector<std::uint8_t> alpha(colours.size(), 0xFF);
  alpha[3] = 0;
  alpha[7] = 0x80;
  IcoImage masked = SolidImage(16, 8, 2, {0, 0x112233, 0x445566});
  for (std::size_t i = 0; i < masked.mask.size(); i += 5) masked.mask[i] = 1;
  std::vector<std::string> seeds = {
      pf::BitmapFile(9, 5, 24, colours),
      pf::BitmapFile(9, -5, 32, colours),
      pf::BitmapFile(9, 5, 8, indices, palette),
      pf::BitmapFile(9, 5, 4, indices, palette),
      pf::BitmapFile(9, 5, 1, indices, {0x000000, 0xFFFFFF}),
      pf::RunLengthBitmap(9, 5, false, indices, palette),
      pf::RunLengthBitmap(9, 5, true, indices, palette),
      pf::GifFile(9, 5, palette, indices),
      pf::GifFile(9, 5, palette, indices, true, 2),
      pf::PngFile(9, 5, colours),
      pf::PngFile(9, 5, colours, alpha),
      IcoBytes({masked, SolidImage(8, 32, 0x80FF0000)}),
      pf::IconFileOf({pf::PngFile(9, 5, colours)}, {{{9, 5}}}, 2),
  };
  // 16-bit PNGs, plain and interlaced, with and without alpha and gamma; headers of OS/2 2.x
  // and of the later Windows kinds, and narrow bit fields.
  std::vector<std::uint16_t> deep;
  for (std::size_t i = 0; i < colours.size() * 4; ++i) deep.push_back(static_cast<std::uint16_t>(i * 0x1357u));
  seeds.push_back(pf::SixteenBitPngFile(9, 5, 3, deep));
  seeds.push_back(pf::SixteenBitPngFile(9, 5, 4, deep, true));
  seeds.push_back(pf::SixteenBitPngFile(9, 5, 2, deep, true, 100000));
  std::string rows;
  for (std::uint32_t i : indices) rows.push_back(static_cast<char>(i));
  seeds.push_back(pf::BitmapWithHeader(64, 9, 5, 8, 0, palette, {}, rows));
  seeds.push_back(pf::BitmapWithHeader(124, 9, 5, 8, 0, palette, {}, rows));
  seeds.push_back(pf::BitmapWithHeader(40, 9, 5, 16, 3, {}, {0xC000, 0x3800, 0x0400}, rows + rows));
  for (const char* name : {"quadrants.jpg", "quadrants-progressive.jpg"}) {
    std::string jpeg = JpegSeed(name);
    if (!jpeg.empty()) seeds.push_back(std::move(jpeg));
  }
  return seeds;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorvane::platform;
  namespace codecs = quorvane::codecs;
  const std::span<const std::uint8_t> bytes(data, size);
  const std::optional<Pixels> inMemory = Attempt([&] { return portable::DecodePicture(bytes); });

  static ScratchFile scratch(".bmp");
  scratch.Fill(data, size);
  portable::DecodedPictures pictures;
  const std::optional<Pixels> fromFile = Attempt([&] { return pictures.LoadPicture(scratch.Path()); });
  Require(inMemory.has_value() == fromFile.has_value(), "memory and file disagree");
  if (inMemory) Require(*inMemory == *fromFile, "memory and file give other pixels");
  if (inMemory) Require(codecs::KindOfPicture(bytes) != codecs::PictureKind::Unknown, "a picture of no kind");
  return 0;
}
