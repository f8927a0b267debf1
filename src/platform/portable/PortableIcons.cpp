#include "platform/portable/PortableIcons.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>

#include "platform/portable/HostPath.h"

namespace quorvane::platform::portable {

namespace {

constexpr std::size_t kDirectorySize = 6;
constexpr std::size_t kEntrySize = 16;
constexpr std::size_t kInfoHeaderSize = 40;
// No entry larger than this is decoded; the platform's icons are at most 256 pixels a side.
constexpr std::int32_t kMaxSide = 1024;
// Files beyond this size are not read for icons.
constexpr std::uintmax_t kMaxFileSize = std::uintmax_t{64} * 1024 * 1024;

constexpr std::int32_t kLargeSize = 32;
constexpr std::int32_t kSmallSize = 16;

// The portable system image lists, small and large, and the numbers of their icons.
constexpr GdiHandle kSmallList = 0x00600001;
constexpr GdiHandle kLargeList = 0x00600002;
constexpr std::int32_t kDocumentIcon = 0;
constexpr std::int32_t kFolderIcon = 3;
constexpr std::int32_t kOpenFolderIcon = 4;

std::uint32_t Read16(std::span<const std::uint8_t> bytes, std::size_t at) {
  return static_cast<std::uint32_t>(bytes[at]) | static_cast<std::uint32_t>(bytes[at + 1]) << 8;
}

std::uint32_t Read32(std::span<const std::uint8_t> bytes, std::size_t at) {
  return Read16(bytes, at) | Read16(bytes, at + 2) << 16;
}

// Bytes in one row of a bitmap of `bits` a pixel, to 4 bytes.
std::size_t RowBytes(std::int32_t width, std::uint32_t bits) {
  return ((static_cast<std::size_t>(width) * bits + 31) / 32) * 4;
}

// A 5-bit colour part widened to 8 bits.
std::uint32_t Widen5(std::uint32_t part) { return (part << 3) | (part >> 2); }

std::size_t PaletteCount(std::span<const std::uint8_t> data, std::uint32_t bits) {
  if (bits > 8) return 0;
  const std::size_t full = std::size_t{1} << bits;
  const std::uint32_t used = Read32(data, 32);
  return used != 0 && used < full ? used : full;
}

// One entry of the directory, as its bitmap header describes it.
struct Candidate {
  std::span<const std::uint8_t> data;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::uint32_t bits = 0;
};

// The entry's bitmap header, when it is one this adapter can decode and its colours are all in
// the data. The mask may be cut short: what is missing of it counts as not set.
std::optional<Candidate> Describe(std::span<const std::uint8_t> data) {
  if (data.size() < kInfoHeaderSize) return std::nullopt;  // also a PNG entry's signature
  const std::uint32_t headerSize = Read32(data, 0);
  if (headerSize < kInfoHeaderSize || headerSize > data.size()) return std::nullopt;
  const auto width = static_cast<std::int32_t>(Read32(data, 4));
  const auto doubleHeight = static_cast<std::int32_t>(Read32(data, 8));
  const std::uint32_t bits = Read16(data, 14);
  const std::uint32_t compression = Read32(data, 16);
  if (width < 1 || width > kMaxSide || doubleHeight < 2 || doubleHeight > 2 * kMaxSide) {
    return std::nullopt;
  }
  if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32) {
    return std::nullopt;
  }
  if (compression != 0) return std::nullopt;
  const std::size_t colourEnd = headerSize + PaletteCount(data, bits) * 4 +
                                RowBytes(width, bits) * static_cast<std::size_t>(doubleHeight / 2);
  if (colourEnd > data.size()) return std::nullopt;
  Candidate candidate;
  candidate.data = data;
  candidate.width = width;
  candidate.height = doubleHeight / 2;
  candidate.bits = bits;
  return candidate;
}

// The picture of an entry that Describe accepted.
IconPicture Decode(const Candidate& c) {
  const std::span<const std::uint8_t> data = c.data;
  const std::size_t headerSize = Read32(data, 0);
  const std::size_t paletteCount = PaletteCount(data, c.bits);
  const std::size_t xorRow = RowBytes(c.width, c.bits);
  const std::size_t andRow = RowBytes(c.width, 1);
  const auto rows = static_cast<std::size_t>(c.height);
  const std::size_t paletteAt = headerSize;
  const std::size_t xorAt = paletteAt + paletteCount * 4;
  const std::size_t andAt = xorAt + xorRow * rows;

  std::vector<std::uint32_t> palette(paletteCount);
  for (std::size_t i = 0; i < paletteCount; ++i) {
    palette[i] = Read32(data, paletteAt + i * 4) & 0x00FFFFFFu;
  }
  const auto columns = static_cast<std::size_t>(c.width);
  IconPicture picture;
  picture.width = c.width;
  picture.height = c.height;
  picture.colour.assign(columns * rows, 0);
  picture.mask.assign(columns * rows, 0);
  bool anyAlpha = false;
  for (std::size_t y = 0; y < rows; ++y) {
    // Rows are stored bottom-up.
    const std::size_t line = xorAt + (rows - 1 - y) * xorRow;
    std::uint32_t* out = picture.colour.data() + y * columns;
    for (std::size_t x = 0; x < columns; ++x) {
      std::uint32_t value = 0;
      switch (c.bits) {
        case 1:
        case 4:
        case 8: {
          const std::size_t bit = x * c.bits;
          const std::uint32_t byte = data[line + bit / 8];
          const std::uint32_t shift = 8 - c.bits - static_cast<std::uint32_t>(bit % 8);
          const std::uint32_t index = (byte >> shift) & ((1u << c.bits) - 1);
          value = index < palette.size() ? palette[index] : 0u;
          break;
        }
        case 16: {
          const std::uint32_t word = Read16(data, line + x * 2);
          value = Widen5((word >> 10) & 31u) << 16 | Widen5((word >> 5) & 31u) << 8 |
                  Widen5(word & 31u);
          break;
        }
        case 24:
          value = Read16(data, line + x * 3) | static_cast<std::uint32_t>(data[line + x * 3 + 2])
                                                   << 16;
          break;
        default:
          value = Read32(data, line + x * 4);
          anyAlpha = anyAlpha || (value >> 24) != 0;
          break;
      }
      out[x] = value;
    }
    const std::size_t maskLine = andAt + (rows - 1 - y) * andRow;
    std::uint8_t* maskOut = picture.mask.data() + y * columns;
    for (std::size_t x = 0; x < columns; ++x) {
      const std::size_t at = maskLine + x / 8;
      if (at < data.size()) maskOut[x] = static_cast<std::uint8_t>((data[at] >> (7 - x % 8)) & 1u);
    }
  }
  picture.alpha = anyAlpha;
  return picture;
}

// The entries of the directory that can be decoded, in the directory's order.
std::vector<Candidate> Candidates(std::span<const std::uint8_t> bytes) {
  std::vector<Candidate> found;
  if (!IsIconFile(bytes)) return found;
  const std::size_t count = Read16(bytes, 4);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t at = kDirectorySize + i * kEntrySize;
    if (at + kEntrySize > bytes.size()) break;
    const std::size_t length = Read32(bytes, at + 8);
    const std::size_t offset = Read32(bytes, at + 12);
    if (offset >= bytes.size()) continue;
    const std::size_t available = std::min(length, bytes.size() - offset);
    if (std::optional<Candidate> c = Describe(bytes.subspan(offset, available))) {
      found.push_back(*c);
    }
  }
  return found;
}

std::optional<std::vector<std::uint8_t>> ReadFileBytes(const char* path) {
  if (path == nullptr || *path == '\0') return std::nullopt;
  // A folder opens as a stream here, with a size of its own: it is no file to read.
  std::error_code ec;
  if (!std::filesystem::is_regular_file(path, ec)) return std::nullopt;
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) return std::nullopt;
  const std::streamoff end = file.tellg();
  if (end <= 0) return std::nullopt;  // an empty file, or none that can be read
  const auto size = static_cast<std::uintmax_t>(end);
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::min(size, kMaxFileSize)));
  file.seekg(0);
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (!file) return std::nullopt;
  return bytes;
}

// Channel by channel, with the platform's rounding: the colour weighted by its alpha, and the
// background by what the alpha leaves, each rounded down after adding 127 of 255.
std::uint32_t Blend(std::uint32_t colour, std::uint32_t background) {
  const std::uint32_t a = colour >> 24;
  std::uint32_t result = 0;
  for (std::uint32_t shift = 0; shift < 24; shift += 8) {
    const std::uint32_t c = (colour >> shift) & 0xFFu;
    const std::uint32_t d = (background >> shift) & 0xFFu;
    result |= ((c * a + 127) / 255 + (d * (255 - a) + 127) / 255) << shift;
  }
  const std::uint32_t da = background >> 24;
  result |= (a + (da * (255 - a) + 127) / 255) << 24;
  return result;
}

std::uint32_t Combine(const IconPicture& picture, std::size_t at, std::uint32_t background,
                      std::uint32_t flags) {
  const std::uint32_t colour = picture.colour[at];
  const bool maskSet = picture.mask[at] != 0;
  const bool drawMask = (flags & icons::kDiMask) != 0;
  const bool drawImage = (flags & icons::kDiImage) != 0;
  if (drawImage && picture.alpha) return Blend(colour, background);
  if (drawMask && drawImage) return (maskSet ? background : 0u) ^ colour;
  if (drawMask) return maskSet ? 0x00FFFFFFu : 0u;
  return colour;
}

}  // namespace

bool IsIconFile(std::span<const std::uint8_t> bytes) {
  return bytes.size() >= kDirectorySize && Read16(bytes, 0) == 0 && Read16(bytes, 2) == 1 &&
         Read16(bytes, 4) >= 1;
}

std::optional<IconPicture> ReadIconPicture(std::span<const std::uint8_t> bytes,
                                           std::int32_t size) {
  const std::vector<Candidate> candidates = Candidates(bytes);
  // Nearest in size first; of those the most bits a pixel; of those the first.
  const Candidate* best = nullptr;
  std::int64_t bestDistance = 0;
  for (const Candidate& c : candidates) {
    const std::int64_t distance = std::abs(static_cast<std::int64_t>(c.width) - size) +
                                  std::abs(static_cast<std::int64_t>(c.height) - size);
    if (best == nullptr || distance < bestDistance ||
        (distance == bestDistance && c.bits > best->bits)) {
      best = &c;
      bestDistance = distance;
    }
  }
  if (best == nullptr) return std::nullopt;
  IconPicture picture = Decode(*best);
  if (picture.width != size || picture.height != size) {
    picture = ScalePicture(picture, size, size);
  }
  return picture;
}

IconPicture ScalePicture(const IconPicture& picture, std::int32_t width, std::int32_t height) {
  IconPicture scaled;
  scaled.width = std::max(width, 0);
  scaled.height = std::max(height, 0);
  scaled.alpha = picture.alpha;
  const auto columns = static_cast<std::size_t>(scaled.width);
  const auto rows = static_cast<std::size_t>(scaled.height);
  scaled.colour.assign(columns * rows, 0);
  scaled.mask.assign(columns * rows, 0);
  if (picture.width <= 0 || picture.height <= 0) return scaled;
  const auto sourceColumns = static_cast<std::size_t>(picture.width);
  const auto sourceRows = static_cast<std::size_t>(picture.height);
  for (std::size_t y = 0; y < rows; ++y) {
    const std::size_t sy = y * sourceRows / rows;
    for (std::size_t x = 0; x < columns; ++x) {
      const std::size_t sx = x * sourceColumns / columns;
      scaled.colour[y * columns + x] = picture.colour[sy * sourceColumns + sx];
      scaled.mask[y * columns + x] = picture.mask[sy * sourceColumns + sx];
    }
  }
  return scaled;
}

// The pictures of the portable system image list, drawn here: a folder (yellow, its tab at the
// top left, opened a little lighter with its front lowered) and a document (white, framed in
// grey). What lies outside the shape lets the background through.
IconPicture SystemIconPicture(std::int32_t index, std::int32_t size) {
  IconPicture picture;
  picture.width = size;
  picture.height = size;
  const auto count = static_cast<std::size_t>(size) * static_cast<std::size_t>(size);
  picture.colour.assign(count, 0);
  picture.mask.assign(count, 1);
  const auto put = [&](std::int32_t x, std::int32_t y, std::uint32_t colour) {
    const auto at = static_cast<std::size_t>(y) * static_cast<std::size_t>(size) +
                    static_cast<std::size_t>(x);
    picture.colour[at] = colour;
    picture.mask[at] = 0;
  };
  const std::int32_t u = size / 16;  // one sixteenth of the side
  for (std::int32_t y = 0; y < size; ++y) {
    for (std::int32_t x = 0; x < size; ++x) {
      if (index == kDocumentIcon) {
        if (x < 3 * u || x >= 13 * u || y < u || y >= 15 * u) continue;
        const bool edge = x == 3 * u || x == 13 * u - 1 || y == u || y == 15 * u - 1;
        put(x, y, edge ? 0x808080u : 0xFFFFFFu);
        continue;
      }
      const bool tab = y >= 2 * u && y < 4 * u && x >= u && x < 7 * u;
      const std::int32_t top = index == kOpenFolderIcon ? 6 * u : 4 * u;
      const bool body = y >= top && y < 14 * u && x >= u && x < 15 * u;
      if (!tab && !body) continue;
      const bool edge = y == 2 * u || y == 14 * u - 1 || x == u || x == 15 * u - 1 ||
                        (body && y == top);
      put(x, y, edge ? 0x806000u : (index == kOpenFolderIcon ? 0xFFE890u : 0xF0C850u));
    }
  }
  return picture;
}

PortableIcons::PortableIcons(DeviceContexts& gdi) : gdi_(gdi) {}

GdiHandle PortableIcons::NewIcon(IconPicture picture) {
  const GdiHandle handle = nextIcon_++;
  icons_.emplace(handle, std::move(picture));
  return handle;
}

const IconPicture* PortableIcons::PictureOf(GdiHandle icon) const {
  const auto it = icons_.find(icon);
  return it == icons_.end() ? nullptr : &it->second;
}

std::int32_t PortableIcons::ExtractIconExA(const char* file, std::int32_t index,
                                           GdiHandle* large, GdiHandle* small,
                                           std::uint32_t count) {
  const std::optional<std::vector<std::uint8_t>> bytes = ReadFileBytes(file);
  if (!bytes) return -1;
  if (!IsIconFile(*bytes)) return 0;
  // A file of icons holds one icon.
  if (index == -1) return 1;
  if (index > 0 || count == 0) return 0;
  std::optional<IconPicture> largePicture;
  std::optional<IconPicture> smallPicture;
  if (large != nullptr) {
    largePicture = ReadIconPicture(*bytes, kLargeSize);
    if (!largePicture) return 0;
  }
  if (small != nullptr) {
    smallPicture = ReadIconPicture(*bytes, kSmallSize);
    if (!smallPicture) return 0;
  }
  std::int32_t made = 0;
  if (largePicture) {
    large[0] = NewIcon(std::move(*largePicture));
    ++made;
  }
  if (smallPicture) {
    small[0] = NewIcon(std::move(*smallPicture));
    ++made;
  }
  // Icons after the first don't exist: their places are left as they were.
  return made;
}

std::int32_t PortableIcons::DrawIconEx(GdiHandle dc, std::int32_t x, std::int32_t y,
                                       GdiHandle icon, std::int32_t width, std::int32_t height,
                                       std::uint32_t /*step*/, GdiHandle /*brush*/,
                                       std::uint32_t flags) {
  const IconPicture* picture = PictureOf(icon);
  if (picture == nullptr) return 0;
  // The platform reports success for no context at all, and for nothing to draw.
  if (dc == 0 || (flags & icons::kDiNormal) == 0) return 1;
  const std::int32_t w = width > 0 ? width : picture->width;
  const std::int32_t h = height > 0 ? height : picture->height;
  const IconPicture drawn = (w == picture->width && h == picture->height)
                                ? *picture
                                : ScalePicture(*picture, w, h);

  // The rectangle under the icon, in a bitmap of 32 bits a pixel, top-down.
  BitmapInfoHeader header;
  header.biWidth = w;
  header.biHeight = -h;
  header.biPlanes = 1;
  header.biBitCount = 32;
  header.biCompression = gdi::kBiRgb;
  const GdiHandle scratch = gdi_.CreateCompatibleDC(0);
  if (scratch == 0) return 0;
  std::uint8_t* bits = nullptr;
  const GdiHandle bitmap =
      gdi_.CreateDIBSection(scratch, header, gdi::kDibRgbColors, &bits, 0, 0);
  const GdiHandle previous = bitmap != 0 ? gdi_.SelectObject(scratch, bitmap) : 0;
  std::int32_t result = 0;
  if (previous != 0 && bits != nullptr &&
      gdi_.BitBlt(scratch, 0, 0, w, h, dc, x, y, gdi::kSrcCopy) != 0) {
    const std::size_t pixels = static_cast<std::size_t>(w) * static_cast<std::size_t>(h);
    for (std::size_t i = 0; i < pixels; ++i) {
      std::uint8_t* p = bits + i * 4;
      const std::uint32_t background = static_cast<std::uint32_t>(p[0]) |
                                       static_cast<std::uint32_t>(p[1]) << 8 |
                                       static_cast<std::uint32_t>(p[2]) << 16 |
                                       static_cast<std::uint32_t>(p[3]) << 24;
      const std::uint32_t value = Combine(drawn, i, background, flags);
      p[0] = static_cast<std::uint8_t>(value);
      p[1] = static_cast<std::uint8_t>(value >> 8);
      p[2] = static_cast<std::uint8_t>(value >> 16);
      p[3] = static_cast<std::uint8_t>(value >> 24);
    }
    result = gdi_.BitBlt(dc, x, y, w, h, scratch, 0, 0, gdi::kSrcCopy) != 0 ? 1 : 0;
  }
  if (previous != 0) gdi_.SelectObject(scratch, previous);
  if (bitmap != 0) gdi_.DeleteObject(bitmap);
  gdi_.DeleteDC(scratch);
  return result;
}

std::int32_t PortableIcons::DestroyIcon(GdiHandle icon) {
  return icons_.erase(icon) != 0 ? 1 : 0;
}

std::uint32_t PortableIcons::SHGetFileInfoA(const char* path, std::uint32_t /*attributes*/,
                                            ShFileInfo& info, std::uint32_t /*size*/,
                                            std::uint32_t flags) {
  shellQueries_.push_back({path != nullptr ? std::string(path) : std::string(), flags});
  // A query for the display name alone answers for any file or folder that exists, with its
  // name, as the shell does.
  if (flags == icons::kShgfiDisplayName && path != nullptr) {
    std::error_code ec;
    const std::filesystem::path host(HostPath(path));
    if (std::filesystem::exists(host, ec)) {
      const std::string name = host.filename().string();
      const std::size_t n = std::min(name.size(), sizeof info.szDisplayName - 1);
      std::copy_n(name.data(), n, info.szDisplayName);
      info.szDisplayName[n] = '\0';
      return 1;
    }
  }
  // A path that exists is in the system image list: a folder with its closed or open icon, any
  // other file with the document's. A path that doesn't resolve clears the icon's number, as the
  // platform does, and an icon asked for is none; the rest of the record is left as it was.
  std::error_code ec;
  if (path == nullptr || *path == '\0' || !std::filesystem::exists(HostPath(path), ec)) {
    info.iIcon = 0;
    if ((flags & icons::kShgfiIcon) != 0) info.hIcon = 0;
    return 0;
  }
  const bool folder = std::filesystem::is_directory(HostPath(path), ec);
  const bool open = (flags & icons::kShgfiOpenIcon) != 0;
  info.iIcon = folder ? (open ? kOpenFolderIcon : kFolderIcon) : kDocumentIcon;
  const bool small = (flags & icons::kShgfiSmallIcon) != 0;
  if ((flags & icons::kShgfiIcon) != 0) {
    info.hIcon = NewIcon(SystemIconPicture(info.iIcon, small ? kSmallSize : kLargeSize));
  }
  if ((flags & icons::kShgfiSysIconIndex) != 0) return small ? kSmallList : kLargeList;
  return 1;
}

std::int32_t PortableIcons::ImageList_Draw(GdiHandle list, std::int32_t index, GdiHandle dc,
                                           std::int32_t x, std::int32_t y,
                                           std::uint32_t /*flags*/) {
  if ((list != kSmallList && list != kLargeList) ||
      (index != kFolderIcon && index != kOpenFolderIcon && index != kDocumentIcon)) {
    return 0;
  }
  const GdiHandle icon =
      NewIcon(SystemIconPicture(index, list == kSmallList ? kSmallSize : kLargeSize));
  const std::int32_t drawn = DrawIconEx(dc, x, y, icon, 0, 0, 0, 0, icons::kDiNormal);
  DestroyIcon(icon);
  return drawn;
}

std::int32_t PortableIcons::ImageList_GetIconSize(GdiHandle list, std::int32_t& width,
                                                  std::int32_t& height) {
  if (list != kSmallList && list != kLargeList) return 0;
  width = list == kSmallList ? kSmallSize : kLargeSize;
  height = width;
  return 1;
}

void PortableIcons::AnswerPicker(const std::u16string& path, std::int32_t index) {
  answers_.push_back({true, path, index});
}

void PortableIcons::CancelPicker() { answers_.push_back({}); }

std::int32_t PortableIcons::PickIconDlg(GdiHandle owner, char16_t* path, std::uint32_t size,
                                        std::int32_t& index) {
  PickerCall call;
  call.owner = owner;
  call.size = size;
  call.index = index;
  if (path != nullptr) {
    const char16_t* first = path;
    call.path.assign(first, std::find(first, first + size, u'\0'));
  }
  pickerCalls_.push_back(call);

  Answer answer;
  if (!answers_.empty()) {
    answer = std::move(answers_.front());
    answers_.pop_front();
  }
  if (!answer.confirmed || path == nullptr || size == 0) return 0;
  // The chosen file, cut to the buffer, with its NUL; what lies behind stays.
  const std::size_t length = std::min<std::size_t>(answer.path.size(), size - 1);
  std::copy_n(answer.path.begin(), length, path);
  path[length] = u'\0';
  index = answer.index;
  return 1;
}

}  // namespace quorvane::platform::portable
