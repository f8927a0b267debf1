#pragma once
// What both builds need to know of a picture file's bytes before a decoder sees them: its kind,
// told by its first bytes, and the directory of an icon or cursor file.
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quorvane::codecs {

enum class PictureKind { Unknown, Bitmap, Gif, Jpeg, Png, Icon, Metafile, EnhancedMetafile };

// The kind of picture the bytes begin as; Unknown for anything else, also for too few bytes.
PictureKind KindOfPicture(std::span<const std::uint8_t> bytes);

// The largest pictures either build decodes: this many pixels in all. Larger ones are refused as
// invalid rather than allocated, whatever their header claims.
inline constexpr std::uint64_t kMaxPicturePixels = std::uint64_t{1} << 26;

// True when a picture of that size may be decoded: both sides positive, within the limit.
bool DecodableSize(std::int64_t width, std::int64_t height);

// Little-endian reads; the caller has checked that the bytes are there.
inline std::uint16_t Read16(std::span<const std::uint8_t> bytes, std::size_t at) {
  return static_cast<std::uint16_t>(bytes[at] | (bytes[at + 1] << 8));
}
inline std::uint32_t Read32(std::span<const std::uint8_t> bytes, std::size_t at) {
  return static_cast<std::uint32_t>(Read16(bytes, at)) |
         (static_cast<std::uint32_t>(Read16(bytes, at + 2)) << 16);
}

// One image of an icon or cursor file, with the size and depth its own data declare (its
// bitmap header, or a PNG's header), falling back on the directory's bytes where the data
// don't say.
struct IconDirectoryEntry {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::uint16_t bitCount = 0;
  std::uint32_t offset = 0;
  std::uint32_t size = 0;
  bool png = false;
};

// The entries of an icon (type 1) or cursor (type 2) file whose data lie whole inside the bytes.
// Nothing when the header is damaged or no entry is usable.
std::optional<std::vector<IconDirectoryEntry>> ReadIconDirectory(
    std::span<const std::uint8_t> bytes);

// The entry to show: the most pixels, then the most bits a pixel, then the first in the file.
const IconDirectoryEntry& LargestIconEntry(const std::vector<IconDirectoryEntry>& entries);
// The entry nearest `size` by `size` pixels (the sides' distances added), the deepest among the
// nearest.
const IconDirectoryEntry& IconEntryForSize(const std::vector<IconDirectoryEntry>& entries,
                                           std::int32_t size);

// An icon or cursor file of the same type as `bytes` that holds only `entry`.
std::vector<std::uint8_t> SingleEntryIconFile(std::span<const std::uint8_t> bytes,
                                              const IconDirectoryEntry& entry);

}  // namespace quorvane::codecs
