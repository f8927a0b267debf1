#include "codecs/PictureFormats.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace quorvane::codecs {

namespace {

bool StartsWith(std::span<const std::uint8_t> bytes, const char* magic, std::size_t length) {
  return bytes.size() >= length && std::memcmp(bytes.data(), magic, length) == 0;
}

constexpr std::size_t kPngSignatureSize = 8;

}  // namespace

PictureKind KindOfPicture(std::span<const std::uint8_t> bytes) {
  if (StartsWith(bytes, "BM", 2)) return PictureKind::Bitmap;
  if (StartsWith(bytes, "GIF87a", 6) || StartsWith(bytes, "GIF89a", 6)) return PictureKind::Gif;
  if (StartsWith(bytes, "\xFF\xD8\xFF", 3)) return PictureKind::Jpeg;
  if (StartsWith(bytes, "\x89PNG\r\n\x1A\n", kPngSignatureSize)) return PictureKind::Png;
  if (bytes.size() >= 6 && Read16(bytes, 0) == 0 &&
      (Read16(bytes, 2) == 1 || Read16(bytes, 2) == 2) && Read16(bytes, 4) > 0) {
    return PictureKind::Icon;
  }
  // A placeable metafile's key, or a plain metafile's header (type 1 or 2, 9 words long).
  if (StartsWith(bytes, "\xD7\xCD\xC6\x9A", 4)) return PictureKind::Metafile;
  if (bytes.size() >= 18 && (Read16(bytes, 0) == 1 || Read16(bytes, 0) == 2) &&
      Read16(bytes, 2) == 9) {
    return PictureKind::Metafile;
  }
  // An enhanced metafile begins with its header record, type 1, signed " EMF" at byte 40.
  if (bytes.size() >= 44 && Read32(bytes, 0) == 1 && std::memcmp(bytes.data() + 40, " EMF", 4) == 0) {
    return PictureKind::EnhancedMetafile;
  }
  return PictureKind::Unknown;
}

bool DecodableSize(std::int64_t width, std::int64_t height) {
  if (width <= 0 || height <= 0) return false;
  if (width > static_cast<std::int64_t>(kMaxPicturePixels) ||
      height > static_cast<std::int64_t>(kMaxPicturePixels)) {
    return false;
  }
  return static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) <=
         kMaxPicturePixels;
}

std::optional<std::vector<IconDirectoryEntry>> ReadIconDirectory(
    std::span<const std::uint8_t> bytes) {
  if (KindOfPicture(bytes) != PictureKind::Icon) return std::nullopt;
  const std::size_t count = Read16(bytes, 4);
  std::vector<IconDirectoryEntry> entries;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t at = 6 + 16 * i;
    if (at + 16 > bytes.size()) break;
    IconDirectoryEntry entry;
    entry.width = bytes[at] == 0 ? 256 : bytes[at];
    entry.height = bytes[at + 1] == 0 ? 256 : bytes[at + 1];
    entry.bitCount = Read16(bytes, at + 6);
    entry.size = Read32(bytes, at + 8);
    entry.offset = Read32(bytes, at + 12);
    if (entry.size == 0 || entry.offset > bytes.size() ||
        entry.size > bytes.size() - entry.offset) {
      continue;
    }
    const auto data = bytes.subspan(entry.offset, entry.size);
    if (KindOfPicture(data) == PictureKind::Png) {
      entry.png = true;
      // IHDR follows the signature: length, type, then width and height, big-endian.
      if (data.size() >= 24) {
        const auto big = [&](std::size_t p) {
          return (std::uint32_t{data[p]} << 24) | (std::uint32_t{data[p + 1]} << 16) |
                 (std::uint32_t{data[p + 2]} << 8) | std::uint32_t{data[p + 3]};
        };
        const std::uint32_t w = big(16);
        const std::uint32_t h = big(20);
        if (w > 0 && h > 0 && w <= 0x7FFFFFFFu && h <= 0x7FFFFFFFu) {
          entry.width = static_cast<std::int32_t>(w);
          entry.height = static_cast<std::int32_t>(h);
        }
      }
      entry.bitCount = 32;
    } else if (data.size() >= 16 && Read32(data, 0) >= 40) {
      const auto w = static_cast<std::int32_t>(Read32(data, 4));
      const auto h = static_cast<std::int32_t>(Read32(data, 8));
      if (w > 0 && h > 1) {
        entry.width = w;
        entry.height = h / 2;  // the colour rows and the mask's
      }
      entry.bitCount = Read16(data, 14);
    }
    entries.push_back(entry);
  }
  if (entries.empty()) return std::nullopt;
  return entries;
}

const IconDirectoryEntry& LargestIconEntry(const std::vector<IconDirectoryEntry>& entries) {
  const IconDirectoryEntry* best = &entries.front();
  const auto area = [](const IconDirectoryEntry& e) {
    return static_cast<std::int64_t>(e.width) * static_cast<std::int64_t>(e.height);
  };
  for (const IconDirectoryEntry& e : entries) {
    if (area(e) > area(*best) || (area(e) == area(*best) && e.bitCount > best->bitCount)) {
      best = &e;
    }
  }
  return *best;
}

const IconDirectoryEntry& IconEntryForSize(const std::vector<IconDirectoryEntry>& entries,
                                           std::int32_t size) {
  const IconDirectoryEntry* best = &entries.front();
  const auto distance = [size](const IconDirectoryEntry& e) {
    return std::abs(static_cast<std::int64_t>(e.width) - size) +
           std::abs(static_cast<std::int64_t>(e.height) - size);
  };
  for (const IconDirectoryEntry& e : entries) {
    if (distance(e) < distance(*best) ||
        (distance(e) == distance(*best) && e.bitCount > best->bitCount)) {
      best = &e;
    }
  }
  return *best;
}

std::vector<std::uint8_t> SingleEntryIconFile(std::span<const std::uint8_t> bytes,
                                              const IconDirectoryEntry& entry) {
  constexpr std::uint32_t kDataOffset = 6 + 16;
  const auto data = bytes.subspan(entry.offset, entry.size);
  std::vector<std::uint8_t> out(kDataOffset + data.size(), 0);
  out[2] = bytes[2];  // the type: icon or cursor
  out[3] = bytes[3];
  out[4] = 1;
  // The directory entry as the file had it, but for where its data now lie.
  std::size_t source = 6;
  const std::size_t count = Read16(bytes, 4);
  for (std::size_t i = 0; i < count && 6 + 16 * i + 16 <= bytes.size(); ++i) {
    if (Read32(bytes, 6 + 16 * i + 12) == entry.offset &&
        Read32(bytes, 6 + 16 * i + 8) == entry.size) {
      source = 6 + 16 * i;
      break;
    }
  }
  std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(source), 12, out.begin() + 6);
  for (int i = 0; i < 4; ++i) {
    out[18 + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>((kDataOffset >> (8 * i)) & 0xFFu);
  }
  std::copy(data.begin(), data.end(), out.begin() + kDataOffset);
  return out;
}

}  // namespace quorvane::codecs
