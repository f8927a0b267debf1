#pragma once
// Icon files made by the tests themselves: a directory of entries, each a device-independent
// bitmap of 1, 4, 8, 24 or 32 bits a pixel with its AND mask, or a PNG stand-in. Everything the
// tests draw comes from files written here, so no test depends on pictures it did not make.
#include <cstdint>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace quorvane::testing {

struct IcoImage {
  std::int32_t width = 32;
  std::int32_t height = 32;
  std::uint16_t bitCount = 24;
  // Colours of a palette image as 0x00RRGGBB.
  std::vector<std::uint32_t> palette;
  // Top-down, row by row: palette indices for 1, 4 and 8 bits, a 5-5-5 word for 16 bits,
  // 0xAARRGGBB otherwise (the alpha byte is written only for 32 bits).
  std::vector<std::uint32_t> pixels;
  // Top-down, one entry a pixel: 1 where the mask is set (the picture is transparent there).
  std::vector<std::uint8_t> mask;
  // An entry that holds PNG data instead of a bitmap.
  bool png = false;
};

namespace ico_detail {

inline void Put16(std::string& out, std::uint32_t value) {
  out.push_back(static_cast<char>(value & 0xFFu));
  out.push_back(static_cast<char>((value >> 8) & 0xFFu));
}

inline void Put32(std::string& out, std::uint32_t value) {
  Put16(out, value & 0xFFFFu);
  Put16(out, value >> 16);
}

inline std::size_t RowBytes(std::int32_t width, std::uint32_t bits) {
  return ((static_cast<std::size_t>(width) * bits + 31) / 32) * 4;
}

inline std::string EntryData(const IcoImage& image) {
  std::string out;
  if (image.png) {
    out = std::string("\x89PNG\r\n\x1a\n", 8);
    out += std::string(24, '\0');
    return out;
  }
  const auto w = image.width;
  const auto h = image.height;
  const std::size_t xorRow = RowBytes(w, image.bitCount);
  const std::size_t andRow = RowBytes(w, 1);
  Put32(out, 40);
  Put32(out, static_cast<std::uint32_t>(w));
  Put32(out, static_cast<std::uint32_t>(h * 2));
  Put16(out, 1);
  Put16(out, image.bitCount);
  Put32(out, 0);
  Put32(out, static_cast<std::uint32_t>((xorRow + andRow) * static_cast<std::size_t>(h)));
  Put32(out, 0);
  Put32(out, 0);
  Put32(out, static_cast<std::uint32_t>(image.palette.size()));
  Put32(out, 0);
  for (std::uint32_t colour : image.palette) Put32(out, colour & 0x00FFFFFFu);
  for (std::int32_t y = h - 1; y >= 0; --y) {
    std::string row(xorRow, '\0');
    for (std::int32_t x = 0; x < w; ++x) {
      const std::uint32_t value = image.pixels[static_cast<std::size_t>(y * w + x)];
      const auto ux = static_cast<std::size_t>(x);
      switch (image.bitCount) {
        case 1:
          if (value & 1u) row[ux / 8] = static_cast<char>(row[ux / 8] | (0x80 >> (ux % 8)));
          break;
        case 4:
          row[ux / 2] = static_cast<char>(row[ux / 2] |
                                          ((value & 0xFu) << (ux % 2 == 0 ? 4 : 0)));
          break;
        case 8:
          row[ux] = static_cast<char>(value & 0xFFu);
          break;
        case 16:
          row[ux * 2] = static_cast<char>(value & 0xFFu);
          row[ux * 2 + 1] = static_cast<char>((value >> 8) & 0xFFu);
          break;
        case 24:
          row[ux * 3] = static_cast<char>(value & 0xFFu);
          row[ux * 3 + 1] = static_cast<char>((value >> 8) & 0xFFu);
          row[ux * 3 + 2] = static_cast<char>((value >> 16) & 0xFFu);
          break;
        default:
          row[ux * 4] = static_cast<char>(value & 0xFFu);
          row[ux * 4 + 1] = static_cast<char>((value >> 8) & 0xFFu);
          row[ux * 4 + 2] = static_cast<char>((value >> 16) & 0xFFu);
          row[ux * 4 + 3] = static_cast<char>((value >> 24) & 0xFFu);
          break;
      }
    }
    out += row;
  }
  for (std::int32_t y = h - 1; y >= 0; --y) {
    std::string row(andRow, '\0');
    for (std::int32_t x = 0; x < w; ++x) {
      const auto ux = static_cast<std::size_t>(x);
      if (!image.mask.empty() && image.mask[static_cast<std::size_t>(y * w + x)] != 0) {
        row[ux / 8] = static_cast<char>(row[ux / 8] | (0x80 >> (ux % 8)));
      }
    }
    out += row;
  }
  return out;
}

}  // namespace ico_detail

// The bytes of an icon file with these entries, in this order.
inline std::string IcoBytes(const std::vector<IcoImage>& images) {
  std::string out;
  ico_detail::Put16(out, 0);
  ico_detail::Put16(out, 1);
  ico_detail::Put16(out, static_cast<std::uint32_t>(images.size()));
  std::vector<std::string> data;
  for (const IcoImage& image : images) data.push_back(ico_detail::EntryData(image));
  std::uint32_t offset = 6 + 16 * static_cast<std::uint32_t>(images.size());
  for (std::size_t i = 0; i < images.size(); ++i) {
    const IcoImage& image = images[i];
    out.push_back(static_cast<char>(image.width >= 256 ? 0 : image.width));
    out.push_back(static_cast<char>(image.height >= 256 ? 0 : image.height));
    out.push_back(static_cast<char>(image.bitCount < 8 ? (1 << image.bitCount) : 0));
    out.push_back('\0');
    ico_detail::Put16(out, 1);
    ico_detail::Put16(out, image.bitCount);
    ico_detail::Put32(out, static_cast<std::uint32_t>(data[i].size()));
    ico_detail::Put32(out, offset);
    offset += static_cast<std::uint32_t>(data[i].size());
  }
  for (const std::string& d : data) out += d;
  return out;
}

inline bool WriteBytes(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return static_cast<bool>(file);
}

// A square image of one colour (0xAARRGGBB, or a palette index) with an empty mask.
inline IcoImage SolidImage(std::int32_t size, std::uint16_t bitCount, std::uint32_t value,
                           std::vector<std::uint32_t> palette = {}) {
  IcoImage image;
  image.width = size;
  image.height = size;
  image.bitCount = bitCount;
  image.palette = std::move(palette);
  image.pixels.assign(static_cast<std::size_t>(size) * static_cast<std::size_t>(size), value);
  image.mask.assign(image.pixels.size(), 0);
  return image;
}

}  // namespace quorvane::testing
