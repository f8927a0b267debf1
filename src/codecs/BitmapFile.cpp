#include "codecs/BitmapFile.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "base/Failure.h"

namespace quorvane::codecs {

namespace {

void Put16(std::uint8_t* out, std::size_t at, std::uint32_t value) {
  out[at] = static_cast<std::uint8_t>(value & 0xFFu);
  out[at + 1] = static_cast<std::uint8_t>((value >> 8) & 0xFFu);
}

void Put32(std::uint8_t* out, std::size_t at, std::uint32_t value) {
  Put16(out, at, value & 0xFFFFu);
  Put16(out, at + 2, value >> 16);
}

// Blue, green and red of each pixel of a row, then zeros to the padding.
void PackRow(const std::uint32_t* row, std::size_t width, std::size_t rowBytes,
             std::uint8_t* out) {
  for (std::size_t x = 0; x < width; ++x) {
    const std::uint32_t p = row[x];
    out[0] = static_cast<std::uint8_t>(p & 0xFFu);
    out[1] = static_cast<std::uint8_t>((p >> 8) & 0xFFu);
    out[2] = static_cast<std::uint8_t>((p >> 16) & 0xFFu);
    out += 3;
  }
  std::memset(out, 0, rowBytes - width * 3);
}

}  // namespace

std::uint64_t BitmapRowBytes(std::int64_t width) {
  return ((static_cast<std::uint64_t>(width) * 24u + 31u) / 32u) * 4u;
}

BitmapFileEncoder::BitmapFileEncoder(const Pixels& picture) : picture_(picture) {
  const auto pixelCount =
      static_cast<std::uint64_t>(picture.width < 0 ? 0 : picture.width) *
      static_cast<std::uint64_t>(picture.height < 0 ? 0 : picture.height);
  if (picture.Empty() || picture.bgra.size() != pixelCount) RaiseInvalidProcedureCall();
  rowBytes_ = BitmapRowBytes(picture.width);
  fileBytes_ = bitmap_file::kHeadersSize + rowBytes_ * static_cast<std::uint64_t>(picture.height);
  if (fileBytes_ > std::numeric_limits<std::uint32_t>::max()) RaiseOverflow();
}

void BitmapFileEncoder::PutHeaders(std::uint8_t* out) const {
  std::memset(out, 0, bitmap_file::kHeadersSize);
  // BITMAPFILEHEADER
  out[0] = 'B';
  out[1] = 'M';
  Put32(out, 2, static_cast<std::uint32_t>(fileBytes_));
  Put32(out, 10, bitmap_file::kHeadersSize);
  // BITMAPINFOHEADER: a positive height means the rows are stored bottom-up.
  Put32(out, 14, bitmap_file::kInfoHeaderSize);
  Put32(out, 18, static_cast<std::uint32_t>(picture_.width));
  Put32(out, 22, static_cast<std::uint32_t>(picture_.height));
  Put16(out, 26, 1);   // planes
  Put16(out, 28, 24);  // bits a pixel
  Put32(out, 30, 0);   // BI_RGB
  Put32(out, 34, static_cast<std::uint32_t>(fileBytes_ - bitmap_file::kHeadersSize));
  // Resolution and palette counts stay 0: the picture has no resolution of its own.
}

std::size_t BitmapFileEncoder::Next(std::span<std::uint8_t> out) {
  std::size_t given = 0;
  const auto room = [&] { return out.size() - given; };
  if (at_ < bitmap_file::kHeadersSize) {
    std::uint8_t headers[bitmap_file::kHeadersSize];
    PutHeaders(headers);
    const auto n = std::min<std::size_t>(room(), bitmap_file::kHeadersSize - at_);
    std::memcpy(out.data(), headers + at_, n);
    given += n;
    at_ += n;
  }
  const auto width = static_cast<std::size_t>(picture_.width);
  const auto height = static_cast<std::uint64_t>(picture_.height);
  const auto rowBytes = static_cast<std::size_t>(rowBytes_);
  bool wholeRowGiven = false;
  while (at_ < fileBytes_ && room() > 0) {
    const std::uint64_t inImage = at_ - bitmap_file::kHeadersSize;
    const std::uint64_t fileRow = inImage / rowBytes_;
    const auto column = static_cast<std::size_t>(inImage % rowBytes_);
    // The last row of the picture is the first in the file.
    const std::uint32_t* row =
        picture_.bgra.data() + static_cast<std::size_t>(height - 1 - fileRow) * width;
    if (column == 0 && room() >= rowBytes) {
      PackRow(row, width, rowBytes, out.data() + given);
      given += rowBytes;
      at_ += rowBytes;
      wholeRowGiven = true;
      continue;
    }
    // Part of a row: only where not even one whole row fits, or to finish one begun before.
    if (wholeRowGiven) break;
    const std::size_t n = std::min(room(), rowBytes - column);
    for (std::size_t i = 0; i < n; ++i) {
      const std::size_t c = column + i;
      const std::uint32_t value = c < width * 3 ? row[c / 3] >> (8 * (c % 3)) : 0u;
      out[given + i] = static_cast<std::uint8_t>(value & 0xFFu);
    }
    given += n;
    at_ += n;
    if (column + n < rowBytes) break;  // out is full
  }
  return given;
}

std::vector<std::uint8_t> BitmapFileBytes(const Pixels& picture) {
  BitmapFileEncoder encoder(picture);
  std::vector<std::uint8_t> out(static_cast<std::size_t>(encoder.Size()));
  encoder.Next(out);
  return out;
}

}  // namespace quorvane::codecs
