#include "codecs/BitmapDecoder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <vector>

#include "codecs/PictureFormats.h"

namespace quorvane::codecs {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint32_t kRgb = 0;
constexpr std::uint32_t kRle8 = 1;
constexpr std::uint32_t kRle4 = 2;
constexpr std::uint32_t kBitFields = 3;
constexpr std::uint32_t kAlphaBitFields = 6;

constexpr std::uint32_t kOpaque = 0xFF000000u;
constexpr std::size_t kFileHeaderSize = 14;

struct DibHeader {
  std::int64_t width = 0;
  std::int64_t height = 0;  // rows of colour, without an icon's mask
  bool topDown = false;
  std::uint16_t bitCount = 0;
  std::uint32_t compression = kRgb;
  std::array<std::uint32_t, 4> masks{};  // red, green, blue, alpha
  std::vector<std::uint32_t> palette;    // 0xFFRRGGBB
  std::size_t end = 0;                   // where the header, masks and palette end
};

bool Has(Bytes bytes, std::size_t at, std::size_t count) {
  return at <= bytes.size() && count <= bytes.size() - at;
}

// Reads the header that begins at `at`, with its masks and palette. An icon's height counts two
// sets of rows; it may use no run-length coding and no top-down rows.
std::optional<DibHeader> ReadHeader(Bytes bytes, std::size_t at, bool icon) {
  if (!Has(bytes, at, 4)) return std::nullopt;
  const std::uint32_t size = Read32(bytes, at);
  DibHeader h;
  std::size_t paletteEntry = 4;
  std::uint32_t used = 0;
  if (size == 12 && !icon) {
    if (!Has(bytes, at, 12)) return std::nullopt;
    h.width = Read16(bytes, at + 4);
    h.height = Read16(bytes, at + 6);
    h.bitCount = Read16(bytes, at + 10);
    paletteEntry = 3;
    if (h.bitCount != 1 && h.bitCount != 4 && h.bitCount != 8 && h.bitCount != 24) {
      return std::nullopt;
    }
  } else if ((!icon && size >= 40) || (icon && size >= 40 && size <= 124)) {
    // Any header of 40 bytes or more begins as the info header does, and is read as one: the
    // later Windows headers, and the 64-byte one of OS/2 2.x, whose fields beyond the 40 bytes
    // change nothing of the pixels. The platform's loader reads them all so.
    if (!Has(bytes, at, size)) return std::nullopt;
    h.width = static_cast<std::int32_t>(Read32(bytes, at + 4));
    const auto height = static_cast<std::int32_t>(Read32(bytes, at + 8));
    h.bitCount = Read16(bytes, at + 14);
    h.compression = Read32(bytes, at + 16);
    used = Read32(bytes, at + 32);
    if (height < 0) {
      if (icon || height == INT32_MIN) return std::nullopt;
      h.topDown = true;
      h.height = -static_cast<std::int64_t>(height);
    } else {
      h.height = height;
    }
    if (icon) h.height /= 2;
  } else {
    return std::nullopt;
  }
  h.end = at + size;

  switch (h.bitCount) {
    case 1: case 4: case 8: case 24:
      if (h.compression == kRle8 && h.bitCount == 8) break;
      if (h.compression == kRle4 && h.bitCount == 4) break;
      if (h.compression != kRgb) return std::nullopt;
      break;
    case 16:
    case 32:
      if (h.compression == kRgb) {
        h.masks = h.bitCount == 16 ? std::array<std::uint32_t, 4>{0x7C00u, 0x03E0u, 0x001Fu, 0}
                                   : std::array<std::uint32_t, 4>{0xFF0000u, 0xFF00u, 0xFFu, 0};
      } else if (h.compression == kBitFields || (icon && h.compression == kAlphaBitFields)) {
        // A bitmap file with masks of four colours (alpha too) is refused, as the platform's
        // loader refuses it.
        const std::size_t count = h.compression == kBitFields ? 3 : 4;
        // A 40-byte header is followed by its masks; later headers hold them.
        const std::size_t masksAt = at + 40;
        if (!Has(bytes, masksAt, 4 * count)) return std::nullopt;
        for (std::size_t i = 0; i < count; ++i) h.masks[i] = Read32(bytes, masksAt + 4 * i);
        if (size == 40) h.end = masksAt + 4 * count;
      } else {
        return std::nullopt;
      }
      break;
    default:
      return std::nullopt;
  }
  if ((h.compression == kRle8 || h.compression == kRle4) && h.topDown) return std::nullopt;
  if (!DecodableSize(h.width, h.height)) return std::nullopt;

  // The palette: as many entries as the header says are used, or all the depth allows. Only the
  // entries a pixel can name are kept; those beyond are skipped over.
  std::size_t entries = used;
  if (h.bitCount <= 8) {
    const std::size_t full = std::size_t{1} << h.bitCount;
    if (entries == 0 || paletteEntry == 3) entries = full;
    const std::size_t kept = std::min(entries, full);
    if (!Has(bytes, h.end, kept * paletteEntry)) return std::nullopt;
    h.palette.resize(full, kOpaque);
    for (std::size_t i = 0; i < kept; ++i) {
      const std::size_t p = h.end + i * paletteEntry;
      h.palette[i] = kOpaque | (std::uint32_t{bytes[p + 2]} << 16) |
                     (std::uint32_t{bytes[p + 1]} << 8) | bytes[p];
    }
  }
  if (entries > bytes.size() / paletteEntry) return std::nullopt;
  h.end += entries * paletteEntry;
  return h;
}

std::uint64_t Stride(std::int64_t width, std::uint16_t bitCount) {
  return ((static_cast<std::uint64_t>(width) * bitCount + 31) / 32) * 4;
}

// A channel of a pixel under its mask, as 8 bits the way the platform widens it: the field's
// bits on top, then the field once more below them (5 bits abcde give abcdeabc); a field of
// more than 8 bits gives its top 8. So a field of 1 or 2 bits all set gives 0xC0 or 0xF0, not
// 0xFF.
std::uint32_t Channel(std::uint32_t value, std::uint32_t mask) {
  if (mask == 0) return 0;
  const int shift = std::countr_zero(mask);
  const auto bits = static_cast<std::uint32_t>(std::popcount(mask >> shift));
  const std::uint32_t v = (value & mask) >> shift;
  if (bits >= 8) return (v >> (bits - 8)) & 0xFFu;
  const std::uint32_t top = (v << (8 - bits)) & 0xFFu;
  return top | (top >> bits);
}

Pixels Blank(const DibHeader& h) {
  Pixels pixels;
  pixels.width = static_cast<std::int32_t>(h.width);
  pixels.height = static_cast<std::int32_t>(h.height);
  pixels.bgra.assign(static_cast<std::size_t>(h.width * h.height), kOpaque);
  return pixels;
}

// Uncompressed rows from `at`: colours with their own alpha byte where 32-bit pixels carry one
// (the caller decides whether it counts).
bool ReadRows(Bytes bytes, std::size_t at, const DibHeader& h, Pixels& out) {
  const std::uint64_t stride = Stride(h.width, h.bitCount);
  const std::uint64_t lastRow = (static_cast<std::uint64_t>(h.width) * h.bitCount + 7) / 8;
  const std::uint64_t needed = stride * static_cast<std::uint64_t>(h.height - 1) + lastRow;
  if (needed > bytes.size() || !Has(bytes, at, static_cast<std::size_t>(needed))) return false;
  const auto width = static_cast<std::size_t>(h.width);
  const auto height = static_cast<std::size_t>(h.height);
  for (std::size_t r = 0; r < height; ++r) {
    const std::uint8_t* row = bytes.data() + at + r * static_cast<std::size_t>(stride);
    const std::size_t y = h.topDown ? r : height - 1 - r;
    std::uint32_t* dst = out.bgra.data() + y * width;
    for (std::size_t x = 0; x < width; ++x) {
      std::uint32_t colour = 0;
      switch (h.bitCount) {
        case 1:
          colour = h.palette[(row[x / 8] >> (7 - x % 8)) & 1u];
          break;
        case 4:
          colour = h.palette[(row[x / 2] >> (x % 2 == 0 ? 4 : 0)) & 0xFu];
          break;
        case 8:
          colour = h.palette[row[x]];
          break;
        case 24:
          colour = kOpaque | (std::uint32_t{row[3 * x + 2]} << 16) |
                   (std::uint32_t{row[3 * x + 1]} << 8) | row[3 * x];
          break;
        default: {
          std::uint32_t value = 0;
          if (h.bitCount == 16) {
            value = static_cast<std::uint32_t>(row[2 * x] | (row[2 * x + 1] << 8));
          } else {
            value = std::uint32_t{row[4 * x]} | (std::uint32_t{row[4 * x + 1]} << 8) |
                    (std::uint32_t{row[4 * x + 2]} << 16) | (std::uint32_t{row[4 * x + 3]} << 24);
          }
          const std::uint32_t alpha =
              h.masks[3] != 0 ? Channel(value, h.masks[3])
                              : (h.bitCount == 32 && h.compression == kRgb ? value >> 24 : 0xFFu);
          colour = (alpha << 24) | (Channel(value, h.masks[0]) << 16) |
                   (Channel(value, h.masks[1]) << 8) | Channel(value, h.masks[2]);
          break;
        }
      }
      dst[x] = colour;
    }
  }
  return true;
}

// Run-length coded rows from `at` to the end of the bytes, bottom-up. Pixels the coding skips
// stay black. The data must end in its end-of-bitmap mark, or fill every row.
bool ReadRunLengthRows(Bytes bytes, std::size_t at, const DibHeader& h, Pixels& out) {
  const bool four = h.compression == kRle4;
  const std::int64_t width = h.width;
  const std::int64_t height = h.height;
  std::int64_t x = 0;
  std::int64_t row = 0;  // counted from the bottom
  const auto put = [&](std::uint32_t index) {
    if (x < width && row < height) {
      const auto y = static_cast<std::size_t>(height - 1 - row);
      out.bgra[y * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)] =
          h.palette[index & (four ? 0xFu : 0xFFu)];
    }
    ++x;
  };
  std::size_t p = at;
  while (row < height) {
    if (!Has(bytes, p, 2)) return false;
    const std::uint8_t count = bytes[p];
    const std::uint8_t value = bytes[p + 1];
    p += 2;
    if (count > 0) {
      for (std::uint32_t i = 0; i < count && x < width; ++i) {
        put(four ? (i % 2 == 0 ? value >> 4 : value & 0xFu) : value);
      }
      continue;
    }
    switch (value) {
      case 0:  // end of the row
        x = 0;
        ++row;
        break;
      case 1:  // end of the bitmap
        return true;
      case 2:  // move right and up
        if (!Has(bytes, p, 2)) return false;
        x += bytes[p];
        row += bytes[p + 1];
        p += 2;
        break;
      default: {  // that many pixels as they are, padded to a whole word
        const std::size_t stored = four ? (value + 1u) / 2u : value;
        if (!Has(bytes, p, stored)) return false;
        for (std::uint32_t i = 0; i < value; ++i) {
          const std::uint8_t b = bytes[p + (four ? i / 2 : i)];
          put(four ? (i % 2 == 0 ? b >> 4 : b & 0xFu) : b);
        }
        p += stored + (stored % 2);
        break;
      }
    }
  }
  return true;
}

}  // namespace

std::optional<Pixels> DecodeBitmapFile(std::span<const std::uint8_t> bytes) {
  if (!Has(bytes, 0, kFileHeaderSize) || bytes[0] != 'B' || bytes[1] != 'M') return std::nullopt;
  const std::optional<DibHeader> h = ReadHeader(bytes, kFileHeaderSize, false);
  if (!h) return std::nullopt;
  // The pixels lie where the file header says; a header that says nothing means right after
  // the palette.
  const std::uint32_t offBits = Read32(bytes, 10);
  const std::size_t at = offBits == 0 ? h->end : offBits;
  if (at > bytes.size()) return std::nullopt;

  Pixels pixels = Blank(*h);
  const bool ok = (h->compression == kRle8 || h->compression == kRle4)
                      ? ReadRunLengthRows(bytes, at, *h, pixels)
                      : ReadRows(bytes, at, *h, pixels);
  if (!ok) return std::nullopt;
  for (std::uint32_t& p : pixels.bgra) p |= kOpaque;
  return pixels;
}

std::optional<Pixels> DecodeIconBitmap(std::span<const std::uint8_t> data) {
  const std::optional<DibHeader> h = ReadHeader(data, 0, true);
  if (!h) return std::nullopt;
  Pixels pixels = Blank(*h);
  if (!ReadRows(data, h->end, *h, pixels)) return std::nullopt;

  const bool ownAlpha =
      h->bitCount == 32 &&
      std::any_of(pixels.bgra.begin(), pixels.bgra.end(), [](std::uint32_t p) { return (p >> 24) != 0; });
  const std::uint64_t maskStride = Stride(h->width, 1);
  const std::uint64_t maskAt = h->end + Stride(h->width, h->bitCount) * static_cast<std::uint64_t>(h->height);
  const std::uint64_t maskBytes = maskStride * static_cast<std::uint64_t>(h->height);
  const bool hasMask = maskAt <= data.size() && maskBytes <= data.size() - maskAt;
  if (ownAlpha) return pixels;
  if (!hasMask) {
    if (h->bitCount != 32) return std::nullopt;
    for (std::uint32_t& p : pixels.bgra) p |= kOpaque;
    return pixels;
  }
  const auto width = static_cast<std::size_t>(h->width);
  const auto height = static_cast<std::size_t>(h->height);
  for (std::size_t r = 0; r < height; ++r) {
    const std::uint8_t* row = data.data() + maskAt + r * maskStride;
    std::uint32_t* dst = pixels.bgra.data() + (height - 1 - r) * width;
    for (std::size_t x = 0; x < width; ++x) {
      dst[x] = ((row[x / 8] >> (7 - x % 8)) & 1u) != 0 ? 0u : (dst[x] | kOpaque);
    }
  }
  return pixels;
}

}  // namespace quorvane::codecs
