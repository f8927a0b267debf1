#include "platform/portable/PortableDeviceContexts.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <new>

namespace quorvane::platform::portable {
namespace {

constexpr std::uint32_t kWhite = 0x00FFFFFFu;

std::string CallText(const char* name, std::initializer_list<std::int64_t> arguments,
                     std::int64_t result) {
  std::string text = name;
  text += '(';
  bool first = true;
  for (std::int64_t argument : arguments) {
    if (!first) text += ',';
    text += std::to_string(argument);
    first = false;
  }
  text += ")=";
  text += std::to_string(result);
  return text;
}

// Bytes in one row of a device-independent bitmap (to 4 bytes) or of a device bitmap (to 2).
std::int64_t StrideOf(std::int32_t width, std::uint16_t bitsPixel, bool deviceIndependent) {
  const std::int64_t bits = static_cast<std::int64_t>(width) * bitsPixel;
  return deviceIndependent ? ((bits + 31) / 32) * 4 : ((bits + 15) / 16) * 2;
}

// The raster operation `index` (bits 16 to 23 of the operation) applied bit by bit: each set
// bit i of the index adds the bits where pattern, source and destination are (i >> 2, i >> 1,
// i) & 1.
std::uint32_t ApplyRop(std::uint32_t index, std::uint32_t pattern, std::uint32_t source,
                       std::uint32_t destination) {
  std::uint32_t result = 0;
  for (std::uint32_t i = 0; i < 8; ++i) {
    if (((index >> i) & 1u) == 0) continue;
    const std::uint32_t p = (i & 4u) != 0 ? pattern : ~pattern;
    const std::uint32_t s = (i & 2u) != 0 ? source : ~source;
    const std::uint32_t d = (i & 1u) != 0 ? destination : ~destination;
    result |= p & s & d;
  }
  return result;
}

// A pixel as the format keeps it: B, G, R and the fourth byte of a colour pixel in the low to
// high bytes, or the bit of a monochrome one.
std::uint32_t ReadPixel(const std::uint8_t* row, std::int32_t x, std::uint16_t bitsPixel) {
  switch (bitsPixel) {
    case 1:
      return (row[x / 8] >> (7 - x % 8)) & 1u;
    case 24: {
      const std::uint8_t* p = row + static_cast<std::ptrdiff_t>(x) * 3;
      return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
             static_cast<std::uint32_t>(p[2]) << 16;
    }
    default: {
      const std::uint8_t* p = row + static_cast<std::ptrdiff_t>(x) * 4;
      return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
             static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
    }
  }
}

void WritePixel(std::uint8_t* row, std::int32_t x, std::uint16_t bitsPixel, std::uint32_t value) {
  switch (bitsPixel) {
    case 1: {
      const auto mask = static_cast<std::uint8_t>(0x80u >> (x % 8));
      std::uint8_t& byte = row[x / 8];
      byte = static_cast<std::uint8_t>((value & 1u) != 0 ? (byte | mask) : (byte & ~mask));
      break;
    }
    case 24: {
      std::uint8_t* p = row + static_cast<std::ptrdiff_t>(x) * 3;
      p[0] = static_cast<std::uint8_t>(value);
      p[1] = static_cast<std::uint8_t>(value >> 8);
      p[2] = static_cast<std::uint8_t>(value >> 16);
      break;
    }
    default: {
      std::uint8_t* p = row + static_cast<std::ptrdiff_t>(x) * 4;
      p[0] = static_cast<std::uint8_t>(value);
      p[1] = static_cast<std::uint8_t>(value >> 8);
      p[2] = static_cast<std::uint8_t>(value >> 16);
      p[3] = static_cast<std::uint8_t>(value >> 24);
      break;
    }
  }
}

// A pixel of one format in another. Monochrome 1 is the background colour (white) and 0 the
// text colour (black); a colour becomes 1 only when it is the background colour.
std::uint32_t ConvertPixel(std::uint32_t value, std::uint16_t from, std::uint16_t to) {
  if (from == 1 && to == 1) return value;
  if (from == 1) return value != 0 ? kWhite : 0u;
  if (to == 1) return (value & kWhite) == kWhite ? 1u : 0u;
  // A 24-bit pixel has no fourth byte: it comes as 0.
  return from == 24 ? (value & kWhite) : value;
}

}  // namespace

std::uint8_t* PortableDeviceContexts::Surface::Row(std::int32_t deviceY) const {
  const std::int64_t row = bottomUp ? static_cast<std::int64_t>(height) - 1 - deviceY : deviceY;
  return pixels.get() + row * stride;
}

PortableDeviceContexts::PortableDeviceContexts(std::int32_t screenWidth,
                                               std::int32_t screenHeight) {
  desktopWindow_ = NewHandle();
  screen_.width = std::max<std::int32_t>(1, screenWidth);
  screen_.height = std::max<std::int32_t>(1, screenHeight);
  screen_.bitsPixel = 32;
  screen_.stride = StrideOf(screen_.width, 32, false);
  screen_.pixels.reset(new std::uint8_t[static_cast<std::size_t>(screen_.stride * screen_.height)]());
  stockBitmap_ = MakeSurface(1, 1, 1, false, false);
  stockBrush_ = NewHandle();
}

PortableDeviceContexts::~PortableDeviceContexts() = default;

std::size_t PortableDeviceContexts::LiveBitmaps() const { return bitmaps_.size() - 1; }

bool PortableDeviceContexts::Failing(const char* operation) {
  const auto it = std::find(failNext_.begin(), failNext_.end(), operation);
  if (it == failNext_.end()) return false;
  failNext_.erase(it);
  return true;
}

void PortableDeviceContexts::FailNext(const std::string& operation) {
  failNext_.push_back(operation);
}

std::vector<std::string> PortableDeviceContexts::JournalNames() const {
  std::vector<std::string> names;
  names.reserve(journal_.size());
  for (const std::string& call : journal_) names.push_back(call.substr(0, call.find('(')));
  return names;
}

GdiHandle PortableDeviceContexts::MakeSurface(std::int32_t width, std::int32_t height,
                                              std::uint16_t bitsPixel, bool deviceIndependent,
                                              bool bottomUp) {
  const std::int64_t stride = StrideOf(width, bitsPixel, deviceIndependent);
  if (stride <= 0 || height <= 0) return 0;
  // Within the limit, asked without multiplying first, so no size can overflow.
  if (static_cast<std::uint64_t>(stride) > memoryLimit_ / static_cast<std::uint64_t>(height)) {
    return 0;
  }
  const std::int64_t size = stride * height;
  std::unique_ptr<std::uint8_t[]> pixels(new (std::nothrow)
                                             std::uint8_t[static_cast<std::size_t>(size)]());
  if (!pixels) return 0;
  Surface surface;
  surface.width = width;
  surface.height = height;
  surface.bitsPixel = bitsPixel;
  surface.stride = stride;
  surface.deviceIndependent = deviceIndependent;
  surface.bottomUp = bottomUp;
  surface.pixels = std::move(pixels);
  const GdiHandle handle = NewHandle();
  bitmaps_.emplace(handle, std::move(surface));
  return handle;
}

PortableDeviceContexts::Surface* PortableDeviceContexts::SurfaceOf(GdiHandle bitmap) {
  const auto it = bitmaps_.find(bitmap);
  return it == bitmaps_.end() ? nullptr : &it->second;
}

PortableDeviceContexts::Surface* PortableDeviceContexts::TargetOf(const Context& context) {
  return context.memory ? SurfaceOf(context.bitmap) : &screen_;
}

void PortableDeviceContexts::Deselect(GdiHandle bitmap) {
  if (bitmap == stockBitmap_) return;
  Surface* surface = SurfaceOf(bitmap);
  if (surface == nullptr) return;
  surface->selectedInto = 0;
  if (surface->deletePending) bitmaps_.erase(bitmap);
}

GdiHandle PortableDeviceContexts::GetDesktopWindow() {
  Record(CallText("GetDesktopWindow", {}, desktopWindow_));
  return desktopWindow_;
}

GdiHandle PortableDeviceContexts::GetDC(GdiHandle window) {
  GdiHandle dc = 0;
  if (!Failing("GetDC") && (window == 0 || window == desktopWindow_)) {
    dc = NewHandle();
    Context context;
    context.window = window;
    contexts_.emplace(dc, context);
  }
  Record(CallText("GetDC", {window}, dc));
  return dc;
}

std::int32_t PortableDeviceContexts::ReleaseDC(GdiHandle window, GdiHandle dc) {
  std::int32_t result = 0;
  const auto it = contexts_.find(dc);
  if (!Failing("ReleaseDC") && it != contexts_.end() && !it->second.memory) {
    contexts_.erase(it);
    result = 1;
  }
  Record(CallText("ReleaseDC", {window, dc}, result));
  return result;
}

GdiHandle PortableDeviceContexts::CreateCompatibleDC(GdiHandle dc) {
  GdiHandle made = 0;
  if (!Failing("CreateCompatibleDC") && (dc == 0 || contexts_.count(dc) != 0)) {
    made = NewHandle();
    Context context;
    context.memory = true;
    context.bitmap = stockBitmap_;
    contexts_.emplace(made, context);
  }
  Record(CallText("CreateCompatibleDC", {dc}, made));
  return made;
}

std::int32_t PortableDeviceContexts::DeleteDC(GdiHandle dc) {
  std::int32_t result = 0;
  const auto it = contexts_.find(dc);
  if (!Failing("DeleteDC") && it != contexts_.end()) {
    const GdiHandle selected = it->second.memory ? it->second.bitmap : 0;
    contexts_.erase(it);
    Deselect(selected);
    result = 1;
  }
  Record(CallText("DeleteDC", {dc}, result));
  return result;
}

GdiHandle PortableDeviceContexts::CreateDIBSection(GdiHandle dc, const BitmapInfoHeader& header,
                                                   std::uint32_t usage, std::uint8_t** bits,
                                                   GdiHandle section, std::uint32_t offset) {
  GdiHandle made = 0;
  const bool acceptable =
      header.biSize >= 40 && header.biWidth > 0 && header.biHeight != 0 &&
      header.biHeight != INT32_MIN && header.biPlanes == 1 &&
      (header.biBitCount == 24 || header.biBitCount == 32) &&
      header.biCompression == gdi::kBiRgb && usage == gdi::kDibRgbColors && section == 0;
  if (!Failing("CreateDIBSection") && acceptable) {
    const std::int32_t rows = header.biHeight < 0 ? -header.biHeight : header.biHeight;
    made = MakeSurface(header.biWidth, rows, header.biBitCount, true, header.biHeight > 0);
  }
  if (bits != nullptr) *bits = made != 0 ? bitmaps_.at(made).pixels.get() : nullptr;
  Record(CallText("CreateDIBSection", {dc, header.biWidth, header.biHeight, header.biBitCount,
                                       usage, section, offset},
                  made));
  return made;
}

GdiHandle PortableDeviceContexts::CreateCompatibleBitmap(GdiHandle dc, std::int32_t width,
                                                         std::int32_t height) {
  GdiHandle made = 0;
  const auto it = contexts_.find(dc);
  if (!Failing("CreateCompatibleBitmap") && it != contexts_.end() && width >= 0 && height >= 0) {
    if (width == 0 || height == 0) {
      made = stockBitmap_;
    } else if (!it->second.memory) {
      made = MakeSurface(width, height, 32, false, false);
    } else {
      // In the format of the bitmap the memory context holds.
      const Surface* held = SurfaceOf(it->second.bitmap);
      const std::uint16_t bitsPixel = held != nullptr ? held->bitsPixel : std::uint16_t{1};
      const bool deviceIndependent = held != nullptr && held->deviceIndependent;
      made = MakeSurface(width, height, bitsPixel, deviceIndependent, deviceIndependent);
    }
  }
  Record(CallText("CreateCompatibleBitmap", {dc, width, height}, made));
  return made;
}

GdiHandle PortableDeviceContexts::SelectObject(GdiHandle dc, GdiHandle object) {
  GdiHandle previous = 0;
  const auto it = contexts_.find(dc);
  if (object == stockBrush_ || brushes_.count(object) != 0) {
    if (!Failing("SelectObject") && it != contexts_.end()) {
      previous = it->second.brush != 0 ? it->second.brush : stockBrush_;
      it->second.brush = object == stockBrush_ ? 0 : object;
    }
    Record(CallText("SelectObject", {dc, object}, previous));
    return previous;
  }
  Surface* surface = SurfaceOf(object);
  if (!Failing("SelectObject") && it != contexts_.end() && it->second.memory &&
      surface != nullptr) {
    Context& context = it->second;
    const bool stock = object == stockBitmap_;
    if (stock || surface->selectedInto == 0 || surface->selectedInto == dc) {
      previous = context.bitmap;
      if (previous != object) {
        context.bitmap = object;
        if (!stock) surface->selectedInto = dc;
        Deselect(previous);
      }
    }
  }
  Record(CallText("SelectObject", {dc, object}, previous));
  return previous;
}

std::int32_t PortableDeviceContexts::DeleteObject(GdiHandle object) {
  std::int32_t result = 0;
  if (!Failing("DeleteObject")) {
    if (object == stockBitmap_ || object == stockBrush_) {
      // Shared objects are never deleted, and that is no failure.
      result = 1;
    } else if (brushes_.count(object) != 0) {
      brushes_.erase(object);
      for (auto& [handle, context] : contexts_) {
        if (context.brush == object) context.brush = 0;
      }
      result = 1;
    } else if (Surface* surface = SurfaceOf(object)) {
      if (surface->selectedInto != 0) {
        surface->deletePending = true;
      } else {
        bitmaps_.erase(object);
      }
      result = 1;
    } else if (const auto it = contexts_.find(object); it != contexts_.end()) {
      const GdiHandle selected = it->second.memory ? it->second.bitmap : 0;
      contexts_.erase(it);
      Deselect(selected);
      result = 1;
    }
  }
  Record(CallText("DeleteObject", {object}, result));
  return result;
}

std::int32_t PortableDeviceContexts::GetObjectA(GdiHandle object, BitmapObject& description) {
  std::int32_t result = 0;
  const Surface* surface = SurfaceOf(object);
  if (!Failing("GetObjectA") && surface != nullptr) {
    description.bmType = 0;
    description.bmWidth = surface->width;
    description.bmHeight = surface->height;
    description.bmWidthBytes = static_cast<std::int32_t>(surface->stride);
    description.bmPlanes = 1;
    description.bmBitsPixel = surface->bitsPixel;
    description.bmBits = surface->deviceIndependent ? surface->pixels.get() : nullptr;
    result = static_cast<std::int32_t>(sizeof(BitmapObject));
  }
  Record(CallText("GetObjectA", {object}, result));
  return result;
}

std::int32_t PortableDeviceContexts::BitBlt(GdiHandle destination, std::int32_t x, std::int32_t y,
                                            std::int32_t width, std::int32_t height,
                                            GdiHandle source, std::int32_t sourceX,
                                            std::int32_t sourceY, std::uint32_t rop) {
  const std::int32_t result =
      Failing("BitBlt") ? 0 : Blit(destination, x, y, width, height, source, sourceX, sourceY, rop);
  Record(CallText("BitBlt", {destination, x, y, width, height, source, sourceX, sourceY, rop},
                  result));
  return result;
}

std::int32_t PortableDeviceContexts::Blit(GdiHandle destination, std::int32_t x, std::int32_t y,
                                          std::int32_t width, std::int32_t height,
                                          GdiHandle source, std::int32_t sourceX,
                                          std::int32_t sourceY, std::uint32_t rop) {
  const auto destinationContext = contexts_.find(destination);
  if (destinationContext == contexts_.end()) return 0;
  Surface* target = TargetOf(destinationContext->second);
  if (target == nullptr) return 0;

  const bool usesSource = gdi::RopUsesSource(rop);
  const Surface* origin = nullptr;
  if (usesSource) {
    const auto sourceContext = contexts_.find(source);
    if (sourceContext == contexts_.end()) return 0;
    origin = TargetOf(sourceContext->second);
    if (origin == nullptr) return 0;
  }

  // A negative extent runs from the other side, on both rectangles alike.
  std::int64_t dx = x, dy = y, w = width, h = height, sx = sourceX, sy = sourceY;
  if (w < 0) {
    dx += w + 1;
    sx += w + 1;
    w = -w;
  }
  if (h < 0) {
    dy += h + 1;
    sy += h + 1;
    h = -h;
  }
  // Only what lies inside the source and inside the destination is copied.
  if (origin != nullptr) {
    if (sx < 0) { dx -= sx; w += sx; sx = 0; }
    if (sy < 0) { dy -= sy; h += sy; sy = 0; }
    w = std::min<std::int64_t>(w, origin->width - sx);
    h = std::min<std::int64_t>(h, origin->height - sy);
  }
  if (dx < 0) { sx -= dx; w += dx; dx = 0; }
  if (dy < 0) { sy -= dy; h += dy; dy = 0; }
  w = std::min<std::int64_t>(w, target->width - dx);
  h = std::min<std::int64_t>(h, target->height - dy);
  if (w <= 0 || h <= 0) return 1;

  const auto columns = static_cast<std::int32_t>(w);
  const auto rows = static_cast<std::int32_t>(h);
  const auto left = static_cast<std::int32_t>(dx);
  const auto top = static_cast<std::int32_t>(dy);
  const auto sourceLeft = static_cast<std::int32_t>(sx);
  const auto sourceTop = static_cast<std::int32_t>(sy);
  const std::uint32_t index = (rop >> 16) & 0xFFu;

  // A plain copy between like colour bitmaps moves whole rows.
  if (index == 0xCCu && origin != target && origin->bitsPixel == target->bitsPixel &&
      target->bitsPixel != 1) {
    const std::size_t bytesPerPixel = target->bitsPixel / 8u;
    for (std::int32_t row = 0; row < rows; ++row) {
      std::memcpy(target->Row(top + row) + static_cast<std::size_t>(left) * bytesPerPixel,
                  origin->Row(sourceTop + row) +
                      static_cast<std::size_t>(sourceLeft) * bytesPerPixel,
                  static_cast<std::size_t>(columns) * bytesPerPixel);
    }
    return 1;
  }

  // The source's pixels in the destination's format, taken before anything is written, so a
  // blit within one bitmap reads what was there.
  std::vector<std::uint32_t> incoming;
  if (origin != nullptr) {
    incoming.resize(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
    std::size_t at = 0;
    for (std::int32_t row = 0; row < rows; ++row) {
      const std::uint8_t* line = origin->Row(sourceTop + row);
      for (std::int32_t column = 0; column < columns; ++column) {
        incoming[at++] = ConvertPixel(ReadPixel(line, sourceLeft + column, origin->bitsPixel),
                                      origin->bitsPixel, target->bitsPixel);
      }
    }
  }
  // The default brush is white.
  const std::uint32_t pattern = target->bitsPixel == 1 ? 1u : 0xFFFFFFFFu;
  const std::uint32_t keep = target->bitsPixel == 1 ? 1u : target->bitsPixel == 24 ? kWhite
                                                                                    : 0xFFFFFFFFu;
  std::size_t at = 0;
  for (std::int32_t row = 0; row < rows; ++row) {
    std::uint8_t* line = target->Row(top + row);
    for (std::int32_t column = 0; column < columns; ++column) {
      const std::uint32_t present = ReadPixel(line, left + column, target->bitsPixel);
      const std::uint32_t from = origin != nullptr ? incoming[at++] : 0u;
      WritePixel(line, left + column, target->bitsPixel,
                 ApplyRop(index, pattern, from, present) & keep);
    }
  }
  return 1;
}

std::int32_t PortableDeviceContexts::SetStretchBltMode(GdiHandle dc, std::int32_t mode) {
  std::int32_t previous = 0;
  const auto it = contexts_.find(dc);
  if (!Failing("SetStretchBltMode") && it != contexts_.end() && mode >= 1 && mode <= 4) {
    previous = it->second.stretchMode;
    it->second.stretchMode = mode;
  }
  Record(CallText("SetStretchBltMode", {dc, mode}, previous));
  return previous;
}

std::int32_t PortableDeviceContexts::StretchModeOf(GdiHandle dc) const {
  const auto it = contexts_.find(dc);
  return it == contexts_.end() ? 0 : it->second.stretchMode;
}

std::int32_t PortableDeviceContexts::SetBrushOrgEx(GdiHandle dc, std::int32_t x, std::int32_t y,
                                                   std::int32_t* previousX,
                                                   std::int32_t* previousY) {
  std::int32_t result = 0;
  const auto it = contexts_.find(dc);
  if (!Failing("SetBrushOrgEx") && it != contexts_.end()) {
    if (previousX != nullptr) *previousX = it->second.brushX;
    if (previousY != nullptr) *previousY = it->second.brushY;
    it->second.brushX = x;
    it->second.brushY = y;
    result = 1;
  }
  Record(CallText("SetBrushOrgEx", {dc, x, y}, result));
  return result;
}

GdiHandle PortableDeviceContexts::CreateSolidBrush(std::uint32_t color) {
  GdiHandle made = 0;
  if (!Failing("CreateSolidBrush")) {
    made = NewHandle();
    brushes_.emplace(made, color & kWhite);
  }
  Record(CallText("CreateSolidBrush", {color}, made));
  return made;
}

std::int32_t PortableDeviceContexts::UnrealizeObject(GdiHandle object) {
  const std::int32_t result =
      !Failing("UnrealizeObject") && (object == stockBrush_ || brushes_.count(object) != 0) ? 1
                                                                                             : 0;
  Record(CallText("UnrealizeObject", {object}, result));
  return result;
}

void PortableDeviceContexts::Stretch(Surface& target, std::int32_t mode, std::int32_t x,
                                     std::int32_t y, std::int32_t width, std::int32_t height,
                                     const Surface& source, std::int32_t sourceX,
                                     std::int32_t sourceY, std::int32_t sourceWidth,
                                     std::int32_t sourceHeight, std::uint32_t rop) {
  const Surface* origin = &source;
  const bool halftone = mode == gdi::kHalftone;
  const std::uint32_t index = (rop >> 16) & 0xFFu;
  const std::uint32_t keep = target.bitsPixel == 24 ? kWhite : 0xFFFFFFFFu;
  const double scaleX = static_cast<double>(sourceWidth) / width;
  const double scaleY = static_cast<double>(sourceHeight) / height;
  const std::int32_t firstColumn = std::max(0, -x);
  const std::int32_t lastColumn = std::min(width, target.width - x);
  const std::int32_t firstRow = std::max(0, -y);
  const std::int32_t lastRow = std::min(height, target.height - y);
  // The source span of one destination pixel along one axis, within the source bitmap.
  auto span = [](double start, double extent, std::int32_t limit, bool average,
                 std::int32_t& low, std::int32_t& high) {
    if (average && extent > 1.0) {
      low = static_cast<std::int32_t>(start);
      high = static_cast<std::int32_t>(start + extent - 1e-9);
    } else {
      low = high = static_cast<std::int32_t>(start + extent / 2);
    }
    low = std::max(low, 0);
    high = std::min(high, limit - 1);
  };
  for (std::int32_t row = firstRow; row < lastRow; ++row) {
    std::int32_t top = 0, bottom = 0;
    span(sourceY + row * scaleY, scaleY, origin->height, halftone, top, bottom);
    if (top > bottom) continue;
    std::uint8_t* line = target.Row(y + row);
    for (std::int32_t column = firstColumn; column < lastColumn; ++column) {
      std::int32_t left = 0, right = 0;
      span(sourceX + column * scaleX, scaleX, origin->width, halftone, left, right);
      if (left > right) continue;
      std::uint64_t sum[3] = {0, 0, 0};
      std::uint64_t count = 0;
      for (std::int32_t sy = top; sy <= bottom; ++sy) {
        const std::uint8_t* sourceLine = origin->Row(sy);
        for (std::int32_t sx = left; sx <= right; ++sx) {
          const std::uint32_t pixel = ReadPixel(sourceLine, sx, origin->bitsPixel);
          for (int channel = 0; channel < 3; ++channel) {
            sum[channel] += (pixel >> (8 * channel)) & 0xFFu;
          }
          ++count;
        }
      }
      std::uint32_t colour = 0;
      for (int channel = 0; channel < 3; ++channel) {
        colour |= static_cast<std::uint32_t>((sum[channel] + count / 2) / count)
                  << (8 * channel);
      }
      const std::uint32_t present = ReadPixel(line, x + column, target.bitsPixel);
      WritePixel(line, x + column, target.bitsPixel,
                 ApplyRop(index, 0xFFFFFFFFu, colour, present) & keep);
    }
  }
}

std::int32_t PortableDeviceContexts::StretchBlt(GdiHandle destination, std::int32_t x,
                                                std::int32_t y, std::int32_t width,
                                                std::int32_t height, GdiHandle source,
                                                std::int32_t sourceX, std::int32_t sourceY,
                                                std::int32_t sourceWidth,
                                                std::int32_t sourceHeight, std::uint32_t rop) {
  std::int32_t result = 0;
  const auto to = contexts_.find(destination);
  const auto from = contexts_.find(source);
  if (!Failing("StretchBlt") && to != contexts_.end() && from != contexts_.end() && width > 0 &&
      height > 0 && sourceWidth > 0 && sourceHeight > 0) {
    Surface* target = TargetOf(to->second);
    const Surface* origin = TargetOf(from->second);
    if (target != nullptr && origin != nullptr && target->bitsPixel != 1 &&
        origin->bitsPixel != 1) {
      result = 1;
      Stretch(*target, to->second.stretchMode, x, y, width, height, *origin, sourceX, sourceY,
              sourceWidth, sourceHeight, rop);
    }
  }
  Record(CallText("StretchBlt", {destination, x, y, width, height, source, sourceX, sourceY,
                                 sourceWidth, sourceHeight, rop},
                  result));
  return result;
}

std::int32_t PortableDeviceContexts::StretchDIBits(
    GdiHandle dc, std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
    std::int32_t sourceX, std::int32_t sourceY, std::int32_t sourceWidth,
    std::int32_t sourceHeight, const void* bits, const BitmapInfoHeader& header,
    std::uint32_t usage, std::uint32_t rop) {
  std::int32_t result = 0;
  const auto to = contexts_.find(dc);
  const bool acceptable =
      bits != nullptr && header.biSize >= 40 && header.biWidth > 0 && header.biHeight != 0 &&
      header.biHeight != INT32_MIN && header.biPlanes == 1 &&
      (header.biBitCount == 24 || header.biBitCount == 32) &&
      header.biCompression == gdi::kBiRgb && usage == gdi::kDibRgbColors;
  if (!Failing("StretchDIBits") && to != contexts_.end() && acceptable && width > 0 &&
      height > 0 && sourceWidth > 0 && sourceHeight > 0) {
    Surface* target = TargetOf(to->second);
    if (target != nullptr && target->bitsPixel != 1) {
      // The caller's pixels, seen as a bitmap of their own for the one stretch.
      Surface origin;
      origin.width = header.biWidth;
      origin.height = header.biHeight < 0 ? -header.biHeight : header.biHeight;
      origin.bitsPixel = header.biBitCount;
      origin.stride = StrideOf(origin.width, origin.bitsPixel, true);
      origin.deviceIndependent = true;
      origin.bottomUp = header.biHeight > 0;
      const auto size = static_cast<std::size_t>(origin.stride * origin.height);
      origin.pixels.reset(new std::uint8_t[size]);
      std::memcpy(origin.pixels.get(), bits, size);
      Stretch(*target, to->second.stretchMode, x, y, width, height, origin, sourceX, sourceY,
              sourceWidth, sourceHeight, rop);
      result = origin.height;
    }
  }
  Record(CallText("StretchDIBits", {dc, x, y, width, height, sourceX, sourceY, sourceWidth,
                                    sourceHeight, header.biWidth, header.biHeight,
                                    header.biBitCount, usage, rop},
                  result));
  return result;
}

std::uint32_t PortableDeviceContexts::ScreenPixel(std::int32_t x, std::int32_t y) const {
  if (x < 0 || y < 0 || x >= screen_.width || y >= screen_.height) return 0;
  return ReadPixel(screen_.Row(y), x, 32) & kWhite;
}

}  // namespace quorvane::platform::portable
