#include "platform/portable/EmptyIcon.h"

#include <array>
#include <cstdint>

namespace quorvane::platform::portable {

namespace {

constexpr std::uint32_t kSide = 32;
constexpr std::uint32_t kBitsPerPixel = 4;
constexpr std::uint32_t kColours = 16;
constexpr std::uint32_t kDirectorySize = 6 + 16;
constexpr std::uint32_t kHeaderSize = 40;
constexpr std::uint32_t kColourRowBytes = (kSide * kBitsPerPixel + 31) / 32 * 4;  // 16
constexpr std::uint32_t kMaskRowBytes = (kSide + 31) / 32 * 4;                    // 4
constexpr std::uint32_t kImageSize =
    kHeaderSize + kColours * 4 + kSide * kColourRowBytes + kSide * kMaskRowBytes;  // 744
constexpr std::size_t kFileSize = 768;

// The usual 16 colours, as red, green, blue. Index 0, black, is the one every pixel uses; with
// the mask set it leaves the screen as it is.
constexpr std::array<std::array<std::uint8_t, 3>, kColours> kPalette = {{
    {0x00, 0x00, 0x00}, {0x80, 0x00, 0x00}, {0x00, 0x80, 0x00}, {0x80, 0x80, 0x00},
    {0x00, 0x00, 0x80}, {0x80, 0x00, 0x80}, {0x00, 0x80, 0x80}, {0xC0, 0xC0, 0xC0},
    {0x80, 0x80, 0x80}, {0xFF, 0x00, 0x00}, {0x00, 0xFF, 0x00}, {0xFF, 0xFF, 0x00},
    {0x00, 0x00, 0xFF}, {0xFF, 0x00, 0xFF}, {0x00, 0xFF, 0xFF}, {0xFF, 0xFF, 0xFF},
}};

void Put16(std::string& out, std::uint32_t value) {
  out.push_back(static_cast<char>(value & 0xFFu));
  out.push_back(static_cast<char>((value >> 8) & 0xFFu));
}

void Put32(std::string& out, std::uint32_t value) {
  Put16(out, value & 0xFFFFu);
  Put16(out, value >> 16);
}

}  // namespace

std::string EmptyIconFile() {
  std::string out;
  out.reserve(kFileSize);
  // The directory: one image.
  Put16(out, 0);  // reserved
  Put16(out, 1);  // an icon
  Put16(out, 1);  // one image
  out.push_back(static_cast<char>(kSide));
  out.push_back(static_cast<char>(kSide));
  out.push_back(static_cast<char>(kColours));
  out.push_back(0);
  Put16(out, 1);  // planes
  Put16(out, kBitsPerPixel);
  Put32(out, kImageSize);
  Put32(out, kDirectorySize);
  // The image: a bitmap header whose height counts the colour rows and the mask rows.
  Put32(out, kHeaderSize);
  Put32(out, kSide);
  Put32(out, kSide * 2);
  Put16(out, 1);
  Put16(out, kBitsPerPixel);
  Put32(out, 0);  // no compression
  Put32(out, kSide * (kColourRowBytes + kMaskRowBytes));
  Put32(out, 0);
  Put32(out, 0);
  Put32(out, 0);
  Put32(out, 0);
  for (const auto& colour : kPalette) {
    out.push_back(static_cast<char>(colour[2]));
    out.push_back(static_cast<char>(colour[1]));
    out.push_back(static_cast<char>(colour[0]));
    out.push_back(0);
  }
  out.append(kSide * kColourRowBytes, '\0');                     // every pixel colour 0
  out.append(kSide * kMaskRowBytes, static_cast<char>(0xFF));    // and transparent
  out.resize(kFileSize, '\0');                                   // padding
  return out;
}

}  // namespace quorvane::platform::portable
