#pragma once
// The bytes of a Windows bitmap file as both builds save a picture: a BITMAPFILEHEADER, a
// BITMAPINFOHEADER of 40 bytes, no palette, 24 bits a pixel without compression (BI_RGB), rows
// bottom-up, each padded with zeros to a multiple of 4 bytes.
#include <cstdint>
#include <span>
#include <vector>

#include "base/Pixels.h"

namespace quorvane::codecs {

namespace bitmap_file {
inline constexpr std::uint32_t kFileHeaderSize = 14;
inline constexpr std::uint32_t kInfoHeaderSize = 40;
inline constexpr std::uint32_t kHeadersSize = kFileHeaderSize + kInfoHeaderSize;
}  // namespace bitmap_file

// Bytes of one row of `width` pixels at 24 bits, padded to 4 bytes.
std::uint64_t BitmapRowBytes(std::int64_t width);

// The file for a picture, made a piece at a time into a buffer of the caller's, so that a large
// picture is written out without the whole file ever lying in memory. The picture must outlive
// the encoder and stay unchanged while it is used.
class BitmapFileEncoder {
 public:
  // Throws a Failure: InvalidProcedureCall for an empty picture or one whose pixels don't match
  // its size, Overflow when the file would pass the 4 GB its header can count.
  explicit BitmapFileEncoder(const Pixels& picture);

  // The length of the whole file.
  std::uint64_t Size() const { return fileBytes_; }
  bool Done() const { return at_ == fileBytes_; }

  // The next bytes of the file, written at the start of `out`; returns how many, 0 once the
  // file is complete. Only whole rows are given while at least one fits in `out`.
  std::size_t Next(std::span<std::uint8_t> out);

 private:
  void PutHeaders(std::uint8_t* out) const;

  const Pixels& picture_;
  std::uint64_t rowBytes_ = 0;
  std::uint64_t fileBytes_ = 0;
  std::uint64_t at_ = 0;  // bytes given so far
};

// The whole file for `picture` at once; its alpha is dropped. Throws as the encoder does.
std::vector<std::uint8_t> BitmapFileBytes(const Pixels& picture);

}  // namespace quorvane::codecs
