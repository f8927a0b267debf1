#include "platform/BitmapFile.h"

#include <limits>

#include "core/Failure.h"

namespace quorvane::platform {

namespace {

void Put16(std::vector<std::uint8_t>& out, std::size_t at, std::uint32_t value) {
  out[at] = static_cast<std::uint8_t>(value & 0xFFu);
  out[at + 1] = static_cast<std::uint8_t>((value >> 8) & 0xFFu);
}

void Put32(std::vector<std::uint8_t>& out, std::size_t at, std::uint32_t value) {
  Put16(out, at, value & 0xFFFFu);
  Put16(out, at + 2, value >> 16);
}

}  // namespace

std::uint64_t BitmapRowBytes(std::int64_t width) {
  return ((static_cast<std::uint64_t>(width) * 24u + 31u) / 32u) * 4u;
}

std::vector<std::uint8_t> BitmapFileBytes(const ui::Pixels& picture) {
  const auto pixelCount =
      static_cast<std::uint64_t>(picture.width < 0 ? 0 : picture.width) *
      static_cast<std::uint64_t>(picture.height < 0 ? 0 : picture.height);
  if (picture.Empty() || picture.bgra.size() != pixelCount) RaiseInvalidProcedureCall();

  const std::uint64_t rowBytes = BitmapRowBytes(picture.width);
  const std::uint64_t imageBytes = rowBytes * static_cast<std::uint64_t>(picture.height);
  const std::uint64_t offset = bitmap_file::kFileHeaderSize + bitmap_file::kInfoHeaderSize;
  const std::uint64_t fileBytes = offset + imageBytes;
  if (fileBytes > std::numeric_limits<std::uint32_t>::max()) RaiseOverflow();

  std::vector<std::uint8_t> out(static_cast<std::size_t>(fileBytes), 0);
  // BITMAPFILEHEADER
  out[0] = 'B';
  out[1] = 'M';
  Put32(out, 2, static_cast<std::uint32_t>(fileBytes));
  Put32(out, 10, static_cast<std::uint32_t>(offset));
  // BITMAPINFOHEADER: a positive height means the rows are stored bottom-up.
  Put32(out, 14, bitmap_file::kInfoHeaderSize);
  Put32(out, 18, static_cast<std::uint32_t>(picture.width));
  Put32(out, 22, static_cast<std::uint32_t>(picture.height));
  Put16(out, 26, 1);   // planes
  Put16(out, 28, 24);  // bits a pixel
  Put32(out, 30, 0);   // BI_RGB
  Put32(out, 34, static_cast<std::uint32_t>(imageBytes));
  // Resolution and palette counts stay 0: the picture has no resolution of its own.

  const auto width = static_cast<std::size_t>(picture.width);
  const auto height = static_cast<std::size_t>(picture.height);
  for (std::size_t y = 0; y < height; ++y) {
    // The last row of the picture is the first in the file.
    std::size_t at = static_cast<std::size_t>(offset) +
                     static_cast<std::size_t>(rowBytes) * (height - 1 - y);
    const std::uint32_t* row = picture.bgra.data() + y * width;
    for (std::size_t x = 0; x < width; ++x) {
      const std::uint32_t p = row[x];
      out[at++] = static_cast<std::uint8_t>(p & 0xFFu);
      out[at++] = static_cast<std::uint8_t>((p >> 8) & 0xFFu);
      out[at++] = static_cast<std::uint8_t>((p >> 16) & 0xFFu);
    }
  }
  return out;
}

}  // namespace quorvane::platform
