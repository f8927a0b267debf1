#pragma once
// Device-independent bitmaps, read as the platform reads them: bitmap files (the .bmp, .dib and
// .rle kinds: 1, 4, 8, 16, 24 and 32 bits a pixel, palettes, bit fields, run-length coding of 4
// and 8 bits, rows bottom-up or top-down) and the bitmaps inside icon and cursor files (colour
// rows, then the mask's). Every count and offset is checked against the bytes before use;
// damaged or cut-short data give nothing. The build without Windows decodes bitmaps with it; the
// build for Windows reads each bitmap file with it first, to refuse one that is cut short, which
// the platform's loader would take and fill up with whatever lies beyond the file's bytes.
#include <cstdint>
#include <optional>
#include <span>

#include "base/Pixels.h"

namespace quorvane::codecs {

// A bitmap file: BITMAPFILEHEADER, then a core, info or later header. The pixels are opaque, as
// the platform shows a bitmap, whatever a 32-bit picture holds in its fourth byte.
std::optional<Pixels> DecodeBitmapFile(std::span<const std::uint8_t> bytes);

// The bitmap of one icon or cursor image: an info header whose height counts the colour rows and
// the mask's, a palette, the colour rows, the mask. Where the mask is set the pixel is
// transparent (alpha 0); a 32-bit image that carries alpha keeps its own instead.
std::optional<Pixels> DecodeIconBitmap(std::span<const std::uint8_t> data);

}  // namespace quorvane::codecs
