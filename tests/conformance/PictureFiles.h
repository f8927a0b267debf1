#pragma once
// Picture files made by the tests byte by byte: bitmaps of 1 to 32 bits, run-length coded ones,
// GIF (written with plain LZW codes, cleared often enough that their width stays 9 bits), PNG
// (zlib's stored blocks, so no compressor is needed) and icon files that hold PNG images.
// Pixels are given top-down as 0xRRGGBB colours, or palette indices for palette pictures.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace quorvane::testing::picture_files {

inline void Put16(std::string& out, std::uint32_t v) {
  out.push_back(static_cast<char>(v & 0xFFu));
  out.push_back(static_cast<char>((v >> 8) & 0xFFu));
}
inline void Put32(std::string& out, std::uint32_t v) {
  Put16(out, v & 0xFFFFu);
  Put16(out, v >> 16);
}
inline void PutBig32(std::string& out, std::uint32_t v) {
  for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<char>((v >> shift) & 0xFFu));
}

inline std::uint32_t Get32(const std::string& bytes, std::size_t at) {
  std::uint32_t v = 0;
  for (int i = 3; i >= 0; --i) v = (v << 8) | static_cast<std::uint8_t>(bytes[at + static_cast<std::size_t>(i)]);
  return v;
}
inline std::uint16_t Get16(const std::string& bytes, std::size_t at) {
  return static_cast<std::uint16_t>(static_cast<std::uint8_t>(bytes[at]) |
                                    (static_cast<std::uint8_t>(bytes[at + 1]) << 8));
}

// BITMAPFILEHEADER and a BITMAPINFOHEADER with `compression`, the palette, then `data`.
inline std::string BitmapWithData(std::int32_t width, std::int32_t height, std::uint16_t bitCount,
                                  std::uint32_t compression,
                                  const std::vector<std::uint32_t>& palette,
                                  const std::string& data) {
  const auto offset = static_cast<std::uint32_t>(14 + 40 + 4 * palette.size());
  std::string out = "BM";
  Put32(out, offset + static_cast<std::uint32_t>(data.size()));
  Put32(out, 0);
  Put32(out, offset);
  Put32(out, 40);
  Put32(out, static_cast<std::uint32_t>(width));
  Put32(out, static_cast<std::uint32_t>(height));
  Put16(out, 1);
  Put16(out, bitCount);
  Put32(out, compression);
  Put32(out, static_cast<std::uint32_t>(data.size()));
  Put32(out, 2835);
  Put32(out, 2835);
  Put32(out, static_cast<std::uint32_t>(palette.size()));
  Put32(out, 0);
  for (std::uint32_t c : palette) Put32(out, c & 0xFFFFFFu);
  return out + data;
}

// A bitmap whose header has `headerSize` bytes (12 for the core header, 40 or more for the info
// header and those that begin as it does): the first 40 bytes as the info header has them, then
// the masks of bit fields (`masks`, which lie inside a header of 52 bytes or more and after one
// of 40), zeros up to the header's size, the palette (three bytes an entry after a core header,
// four after any other) and `data`. The file header's offset of the pixels counts all of it.
inline std::string BitmapWithHeader(std::uint32_t headerSize, std::int32_t width, std::int32_t height,
                                    std::uint16_t bitCount, std::uint32_t compression,
                                    const std::vector<std::uint32_t>& palette,
                                    const std::vector<std::uint32_t>& masks, const std::string& data) {
  std::string header;
  Put32(header, headerSize);
  if (headerSize == 12) {
    Put16(header, static_cast<std::uint32_t>(width));
    Put16(header, static_cast<std::uint32_t>(height));
    Put16(header, 1);
    Put16(header, bitCount);
  } else {
    Put32(header, static_cast<std::uint32_t>(width));
    Put32(header, static_cast<std::uint32_t>(height));
    Put16(header, 1);
    Put16(header, bitCount);
    Put32(header, compression);
    Put32(header, static_cast<std::uint32_t>(data.size()));
    Put32(header, 2835);
    Put32(header, 2835);
    Put32(header, static_cast<std::uint32_t>(palette.size()));
    Put32(header, 0);
    for (const std::uint32_t m : masks) Put32(header, m);
    if (header.size() < headerSize) header.resize(headerSize, '\0');
  }
  for (const std::uint32_t c : palette) {
    header.push_back(static_cast<char>(c & 0xFFu));
    header.push_back(static_cast<char>((c >> 8) & 0xFFu));
    header.push_back(static_cast<char>((c >> 16) & 0xFFu));
    if (headerSize != 12) header.push_back(0);
  }
  const auto offset = static_cast<std::uint32_t>(14 + header.size());
  std::string out = "BM";
  Put32(out, offset + static_cast<std::uint32_t>(data.size()));
  Put32(out, 0);
  Put32(out, offset);
  return out + header + data;
}

// An uncompressed bitmap; a negative height stores the rows top-down.
inline std::string BitmapFile(std::int32_t width, std::int32_t height, std::uint16_t bitCount,
                              const std::vector<std::uint32_t>& pixels,
                              const std::vector<std::uint32_t>& palette = {}) {
  const bool topDown = height < 0;
  const std::int32_t rows = topDown ? -height : height;
  const std::size_t stride = ((static_cast<std::size_t>(width) * bitCount + 31) / 32) * 4;
  std::string data;
  for (std::int32_t r = 0; r < rows; ++r) {
    const std::int32_t y = topDown ? r : rows - 1 - r;
    std::string row(stride, '\0');
    for (std::int32_t x = 0; x < width; ++x) {
      const std::uint32_t v = pixels[static_cast<std::size_t>(y * width + x)];
      const auto ux = static_cast<std::size_t>(x);
      switch (bitCount) {
        case 1: if (v & 1u) row[ux / 8] = static_cast<char>(row[ux / 8] | (0x80 >> (ux % 8))); break;
        case 4: row[ux / 2] = static_cast<char>(row[ux / 2] | ((v & 0xFu) << (ux % 2 == 0 ? 4 : 0))); break;
        case 8: row[ux] = static_cast<char>(v); break;
        case 24:
          row[3 * ux] = static_cast<char>(v & 0xFFu);
          row[3 * ux + 1] = static_cast<char>((v >> 8) & 0xFFu);
          row[3 * ux + 2] = static_cast<char>((v >> 16) & 0xFFu);
          break;
        default:
          row[4 * ux] = static_cast<char>(v & 0xFFu);
          row[4 * ux + 1] = static_cast<char>((v >> 8) & 0xFFu);
          row[4 * ux + 2] = static_cast<char>((v >> 16) & 0xFFu);
          break;
      }
    }
    data += row;
  }
  return BitmapWithData(width, height, bitCount, 0, palette, data);
}

// A run-length coded bitmap of 8 (or 4) bits: each row bottom-up, repeats as runs, stretches of
// three or more different pixels in absolute mode, then the end of the row; the end of the
// bitmap last.
inline std::string RunLengthBitmap(std::int32_t width, std::int32_t height, bool fourBits,
                                   const std::vector<std::uint32_t>& indices,
                                   const std::vector<std::uint32_t>& palette) {
  std::string data;
  for (std::int32_t r = height - 1; r >= 0; --r) {
    const auto at = [&](std::int32_t x) {
      return static_cast<std::uint8_t>(indices[static_cast<std::size_t>(r * width + x)]);
    };
    std::int32_t x = 0;
    while (x < width) {
      std::int32_t same = 1;
      while (x + same < width && same < 255 && at(x + same) == at(x)) ++same;
      if (same >= 2 || width - x < 3) {
        data.push_back(static_cast<char>(same));
        data.push_back(static_cast<char>(fourBits ? (at(x) << 4) | at(x) : at(x)));
        x += same;
        continue;
      }
      std::int32_t n = 1;
      while (x + n < width && n < 255 && (x + n + 1 >= width || at(x + n) != at(x + n + 1))) ++n;
      if (n < 3) {
        data.push_back(1);
        data.push_back(static_cast<char>(fourBits ? at(x) << 4 : at(x)));
        x += 1;
        continue;
      }
      data.push_back(0);
      data.push_back(static_cast<char>(n));
      std::string stored;
      for (std::int32_t i = 0; i < n; ++i) {
        if (!fourBits) {
          stored.push_back(static_cast<char>(at(x + i)));
        } else if (i % 2 == 0) {
          stored.push_back(static_cast<char>(at(x + i) << 4));
        } else {
          stored.back() = static_cast<char>(stored.back() | at(x + i));
        }
      }
      if (stored.size() % 2 != 0) stored.push_back(0);
      data += stored;
      x += n;
    }
    data.push_back(0);
    data.push_back(0);
  }
  data.push_back(0);
  data.push_back(1);
  return BitmapWithData(width, height, fourBits ? 4 : 8, fourBits ? 2 : 1, palette, data);
}

// A GIF of one frame over the whole logical screen, with a global table of 256 colours (the
// given ones first, black after), optionally interlaced and with a transparent index.
inline std::string GifFile(std::int32_t width, std::int32_t height,
                           const std::vector<std::uint32_t>& palette,
                           const std::vector<std::uint32_t>& indices, bool interlaced = false,
                           int transparent = -1) {
  std::string out = "GIF89a";
  Put16(out, static_cast<std::uint32_t>(width));
  Put16(out, static_cast<std::uint32_t>(height));
  out.push_back(static_cast<char>(0xF7));  // a global table of 2^8 colours, 8 bits a channel
  out.push_back(0);
  out.push_back(0);
  for (std::size_t i = 0; i < 256; ++i) {
    const std::uint32_t c = i < palette.size() ? palette[i] : 0;
    out.push_back(static_cast<char>((c >> 16) & 0xFFu));
    out.push_back(static_cast<char>((c >> 8) & 0xFFu));
    out.push_back(static_cast<char>(c & 0xFFu));
  }
  if (transparent >= 0) {
    out += std::string("\x21\xF9\x04\x01\x00\x00", 6);
    out.push_back(static_cast<char>(transparent));
    out.push_back(0);
  }
  out.push_back(',');
  Put16(out, 0);
  Put16(out, 0);
  Put16(out, static_cast<std::uint32_t>(width));
  Put16(out, static_cast<std::uint32_t>(height));
  out.push_back(static_cast<char>(interlaced ? 0x40 : 0));
  out.push_back(8);  // the smallest code width: codes of 9 bits

  std::vector<std::int32_t> rows;
  if (interlaced) {
    for (int pass = 0; pass < 4; ++pass) {
      const std::array<int, 4> start{0, 4, 2, 1};
      const std::array<int, 4> step{8, 8, 4, 2};
      for (std::int32_t y = start[static_cast<std::size_t>(pass)]; y < height;
           y += step[static_cast<std::size_t>(pass)]) {
        rows.push_back(y);
      }
    }
  } else {
    for (std::int32_t y = 0; y < height; ++y) rows.push_back(y);
  }
  std::vector<std::uint32_t> codes;
  int sinceClear = 0;
  codes.push_back(256);
  for (std::int32_t y : rows) {
    for (std::int32_t x = 0; x < width; ++x) {
      if (sinceClear == 128) {
        codes.push_back(256);
        sinceClear = 0;
      }
      codes.push_back(indices[static_cast<std::size_t>(y * width + x)] & 0xFFu);
      ++sinceClear;
    }
  }
  codes.push_back(257);
  std::string packed;
  std::uint32_t bits = 0;
  int count = 0;
  for (std::uint32_t code : codes) {
    bits |= code << count;
    count += 9;
    while (count >= 8) {
      packed.push_back(static_cast<char>(bits & 0xFFu));
      bits >>= 8;
      count -= 8;
    }
  }
  if (count > 0) packed.push_back(static_cast<char>(bits & 0xFFu));
  for (std::size_t at = 0; at < packed.size(); at += 255) {
    const std::string block = packed.substr(at, 255);
    out.push_back(static_cast<char>(block.size()));
    out += block;
  }
  out.push_back(0);
  out.push_back(';');
  return out;
}

inline std::uint32_t Crc32(const std::string& bytes) {
  std::uint32_t crc = 0xFFFFFFFFu;
  for (char ch : bytes) {
    crc ^= static_cast<std::uint8_t>(ch);
    for (int k = 0; k < 8; ++k) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
  }
  return ~crc;
}

inline std::string PngChunk(const std::string& type, const std::string& data) {
  std::string out;
  PutBig32(out, static_cast<std::uint32_t>(data.size()));
  out += type + data;
  PutBig32(out, Crc32(type + data));
  return out;
}

// `raw` as a zlib stream of stored (uncompressed) blocks, with its Adler-32 check.
inline std::string StoredZlib(const std::string& raw) {
  std::string zlib("\x78\x01", 2);
  for (std::size_t at = 0; at == 0 || at < raw.size(); at += 65535) {
    const std::string block = raw.substr(at, 65535);
    zlib.push_back(at + block.size() >= raw.size() ? 1 : 0);
    Put16(zlib, static_cast<std::uint32_t>(block.size()));
    Put16(zlib, static_cast<std::uint32_t>(~block.size() & 0xFFFFu));
    zlib += block;
  }
  std::uint32_t a = 1;
  std::uint32_t b = 0;
  for (char ch : raw) {
    a = (a + static_cast<std::uint8_t>(ch)) % 65521u;
    b = (b + a) % 65521u;
  }
  PutBig32(zlib, (b << 16) | a);
  return zlib;
}

// A PNG of 8-bit RGB, or RGBA when `alpha` is given: pixels 0xRRGGBB, alpha one byte a pixel.
inline std::string PngFile(std::int32_t width, std::int32_t height,
                           const std::vector<std::uint32_t>& pixels,
                           const std::vector<std::uint8_t>& alpha = {}) {
  std::string raw;
  for (std::int32_t y = 0; y < height; ++y) {
    raw.push_back(0);  // no filter
    for (std::int32_t x = 0; x < width; ++x) {
      const std::size_t i = static_cast<std::size_t>(y * width + x);
      raw.push_back(static_cast<char>((pixels[i] >> 16) & 0xFFu));
      raw.push_back(static_cast<char>((pixels[i] >> 8) & 0xFFu));
      raw.push_back(static_cast<char>(pixels[i] & 0xFFu));
      if (!alpha.empty()) raw.push_back(static_cast<char>(alpha[i]));
    }
  }
  const std::string zlib = StoredZlib(raw);
  std::string header;
  PutBig32(header, static_cast<std::uint32_t>(width));
  PutBig32(header, static_cast<std::uint32_t>(height));
  header += std::string(alpha.empty() ? "\x08\x02\x00\x00\x00" : "\x08\x06\x00\x00\x00", 5);
  return std::string("\x89PNG\r\n\x1A\n", 8) + PngChunk("IHDR", header) + PngChunk("IDAT", zlib) +
         PngChunk("IEND", "");
}

// A PNG of 16 bits a sample: `channels` samples a pixel (1 grey, 2 grey and alpha, 3 RGB, 4 RGBA),
// row by row from the top; Adam7-interlaced when asked, with a gamma chunk when `gamma` (in
// hundred-thousandths) is not 0.
inline std::string SixteenBitPngFile(std::int32_t width, std::int32_t height, int channels,
                                     const std::vector<std::uint16_t>& samples,
                                     bool interlaced = false, std::uint32_t gamma = 0) {
  const auto w = static_cast<std::size_t>(width);
  const auto h = static_cast<std::size_t>(height);
  const auto n = static_cast<std::size_t>(channels);
  // Each pass's rows, each row with its filter byte (none); one pass of everything when plain.
  struct Pass {
    std::size_t x0, y0, dx, dy;
  };
  const std::vector<Pass> passes =
      interlaced ? std::vector<Pass>{{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                                     {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}}
                 : std::vector<Pass>{{0, 0, 1, 1}};
  std::string raw;
  for (const Pass& pass : passes) {
    if (pass.x0 >= w || pass.y0 >= h) continue;
    for (std::size_t y = pass.y0; y < h; y += pass.dy) {
      raw.push_back(0);
      for (std::size_t x = pass.x0; x < w; x += pass.dx) {
        for (std::size_t c = 0; c < n; ++c) {
          const std::uint16_t v = samples[(y * w + x) * n + c];
          raw.push_back(static_cast<char>(v >> 8));
          raw.push_back(static_cast<char>(v & 0xFFu));
        }
      }
    }
  }
  const std::string zlib = StoredZlib(raw);
  static const char kColourType[] = {0, 0, 4, 2, 6};
  std::string header;
  PutBig32(header, static_cast<std::uint32_t>(width));
  PutBig32(header, static_cast<std::uint32_t>(height));
  header.push_back(16);
  header.push_back(kColourType[n]);
  header.push_back(0);
  header.push_back(0);
  header.push_back(interlaced ? 1 : 0);
  std::string out = std::string("\x89PNG\r\n\x1A\n", 8) + PngChunk("IHDR", header);
  if (gamma != 0) {
    std::string g;
    PutBig32(g, gamma);
    out += PngChunk("gAMA", g);
  }
  return out + PngChunk("IDAT", zlib) + PngChunk("IEND", "");
}

// An icon file whose entries hold the given data (bitmaps or PNG files) as they are.
inline std::string IconFileOf(const std::vector<std::string>& images,
                              const std::vector<std::array<std::uint8_t, 2>>& sizes,
                              std::uint16_t type = 1) {
  std::string out;
  Put16(out, 0);
  Put16(out, type);
  Put16(out, static_cast<std::uint32_t>(images.size()));
  auto offset = static_cast<std::uint32_t>(6 + 16 * images.size());
  for (std::size_t i = 0; i < images.size(); ++i) {
    out.push_back(static_cast<char>(sizes[i][0]));
    out.push_back(static_cast<char>(sizes[i][1]));
    out.push_back(0);
    out.push_back(0);
    Put16(out, 1);
    Put16(out, 32);
    Put32(out, static_cast<std::uint32_t>(images[i].size()));
    Put32(out, offset);
    offset += static_cast<std::uint32_t>(images[i].size());
  }
  for (const std::string& image : images) out += image;
  return out;
}

}  // namespace quorvane::testing::picture_files
