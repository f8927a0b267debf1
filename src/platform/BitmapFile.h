#pragma once
// The bytes of a Windows bitmap file as both builds save a picture: a BITMAPFILEHEADER, a
// BITMAPINFOHEADER of 40 bytes, no palette, 24 bits a pixel without compression (BI_RGB), rows
// bottom-up, each padded with zeros to a multiple of 4 bytes.
#include <cstdint>
#include <vector>

#include "ui/Controls.h"

namespace quorvane::platform {

namespace bitmap_file {
inline constexpr std::uint32_t kFileHeaderSize = 14;
inline constexpr std::uint32_t kInfoHeaderSize = 40;
}  // namespace bitmap_file

// Bytes of one row of `width` pixels at 24 bits, padded to 4 bytes.
std::uint64_t BitmapRowBytes(std::int64_t width);

// The whole file for `picture`; its alpha is dropped. Throws a Failure: InvalidProcedureCall
// for an empty picture or one whose pixels don't match its size, Overflow when the file would
// pass the 4 GB its header can count.
std::vector<std::uint8_t> BitmapFileBytes(const ui::Pixels& picture);

}  // namespace quorvane::platform
