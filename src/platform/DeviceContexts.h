#pragma once
// Device contexts and bitmaps, as the drawing operations the system calls, with the platform's
// arguments, results and status values. Handles are the 32-bit values the system keeps for
// windows, device contexts and drawing objects; 0 is none, and a failed call gives 0.
//
// Coordinates are device pixels, y going down. A device-independent bitmap whose height is
// positive keeps its rows bottom-up in memory: row 0 of its bytes is the bottom row.
#include <cstdint>

namespace quorvane::platform {

using GdiHandle = std::uint32_t;

namespace gdi {
// Raster operations: the function of pattern, source and destination in bits 16 to 23.
inline constexpr std::uint32_t kSrcCopy = 0x00CC0020;
inline constexpr std::uint32_t kSrcPaint = 0x00EE0086;
inline constexpr std::uint32_t kSrcAnd = 0x008800C6;
inline constexpr std::uint32_t kSrcInvert = 0x00660046;
inline constexpr std::uint32_t kSrcErase = 0x00440328;
inline constexpr std::uint32_t kNotSrcCopy = 0x00330008;
inline constexpr std::uint32_t kNotSrcErase = 0x001100A6;
inline constexpr std::uint32_t kMergeCopy = 0x00C000CA;
inline constexpr std::uint32_t kMergePaint = 0x00BB0226;
inline constexpr std::uint32_t kPatCopy = 0x00F00021;
inline constexpr std::uint32_t kPatPaint = 0x00FB0A09;
inline constexpr std::uint32_t kPatInvert = 0x005A0049;
inline constexpr std::uint32_t kDstInvert = 0x00550009;
inline constexpr std::uint32_t kBlackness = 0x00000042;
inline constexpr std::uint32_t kWhiteness = 0x00FF0062;

// How StretchBlt reduces a picture: halftone averages the source pixels that meet in one.
inline constexpr std::int32_t kColorOnColor = 3;
inline constexpr std::int32_t kHalftone = 4;

// Colour table usage of a device-independent bitmap, and its compression.
inline constexpr std::uint32_t kDibRgbColors = 0;
inline constexpr std::uint32_t kBiRgb = 0;

// Whether the raster operation reads the source at all.
constexpr bool RopUsesSource(std::uint32_t rop) {
  const std::uint32_t index = (rop >> 16) & 0xFFu;
  return (((index >> 2) ^ index) & 0x33u) != 0;
}
}  // namespace gdi

// The header of a device-independent bitmap, field for field.
struct BitmapInfoHeader {
  std::uint32_t biSize = 40;
  std::int32_t biWidth = 0;
  std::int32_t biHeight = 0;
  std::uint16_t biPlanes = 0;
  std::uint16_t biBitCount = 0;
  std::uint32_t biCompression = 0;
  std::int32_t biSizeImage = 0;
  std::int32_t biXPelsPerMeter = 0;
  std::int32_t biYPelsPerMeter = 0;
  std::uint32_t biClrUsed = 0;
  std::uint32_t biClrImportant = 0;
};

// What the platform tells of a bitmap object. `bmBits` is the first byte of the pixels of a
// device-independent bitmap, and null for a device bitmap.
struct BitmapObject {
  std::int32_t bmType = 0;
  std::int32_t bmWidth = 0;
  std::int32_t bmHeight = 0;
  std::int32_t bmWidthBytes = 0;
  std::uint16_t bmPlanes = 0;
  std::uint16_t bmBitsPixel = 0;
  std::uint8_t* bmBits = nullptr;
};

class DeviceContexts {
 public:
  virtual ~DeviceContexts() = default;

  // The desktop window, whose context is the whole screen.
  virtual GdiHandle GetDesktopWindow() = 0;
  // The context of a window's client area; window 0 is the screen. 0 for an unknown window.
  virtual GdiHandle GetDC(GdiHandle window) = 0;
  // Gives a context of GetDC back. 1 when it was released, 0 otherwise.
  virtual std::int32_t ReleaseDC(GdiHandle window, GdiHandle dc) = 0;
  // A memory context in the format of `dc` (0: of the screen), holding a 1 by 1 monochrome
  // bitmap until another is selected. 0 when `dc` is not a context.
  virtual GdiHandle CreateCompatibleDC(GdiHandle dc) = 0;
  // Deletes any context, also one that GetDC gave. Non-zero on success.
  virtual std::int32_t DeleteDC(GdiHandle dc) = 0;
  // A device-independent bitmap described by `header` (no colour table), its zeroed pixels
  // reached through `*bits`. 0, and `*bits` null, when the header is refused or there is no
  // memory for it.
  virtual GdiHandle CreateDIBSection(GdiHandle dc, const BitmapInfoHeader& header,
                                     std::uint32_t usage, std::uint8_t** bits, GdiHandle section,
                                     std::uint32_t offset) = 0;
  // A device bitmap in the format of the bitmap selected into `dc` (the screen's for a window's
  // context). A zero width or height gives the shared 1 by 1 monochrome bitmap.
  virtual GdiHandle CreateCompatibleBitmap(GdiHandle dc, std::int32_t width,
                                           std::int32_t height) = 0;
  // Selects a bitmap into a memory context and returns the one it held; 0 when either handle
  // is not what it must be, or the bitmap is selected into another context.
  virtual GdiHandle SelectObject(GdiHandle dc, GdiHandle object) = 0;
  // Deletes a drawing object. One that is still selected goes when it is selected out.
  virtual std::int32_t DeleteObject(GdiHandle object) = 0;
  // Describes a bitmap. The number of bytes of the platform's description, 0 when `object` is
  // not a bitmap.
  virtual std::int32_t GetObjectA(GdiHandle object, BitmapObject& description) = 0;
  // Copies a rectangle from `source` at (sourceX, sourceY) to `destination` at (x, y) through
  // the raster operation. Only what lies inside both bitmaps is touched. Non-zero on success.
  virtual std::int32_t BitBlt(GdiHandle destination, std::int32_t x, std::int32_t y,
                              std::int32_t width, std::int32_t height, GdiHandle source,
                              std::int32_t sourceX, std::int32_t sourceY, std::uint32_t rop) = 0;

  // --- stretching, and the brush that halftone stretching aligns -----------------------------
  // An adapter without them fails each: 0.
  // Sets how StretchBlt reduces on `dc`; gives the mode it replaced.
  virtual std::int32_t SetStretchBltMode(GdiHandle /*dc*/, std::int32_t /*mode*/) { return 0; }
  // Sets the origin of the brush's pattern on `dc`; the old one goes into previousX, previousY
  // when they are given. Non-zero on success.
  virtual std::int32_t SetBrushOrgEx(GdiHandle /*dc*/, std::int32_t /*x*/, std::int32_t /*y*/,
                                     std::int32_t* /*previousX*/, std::int32_t* /*previousY*/) {
    return 0;
  }
  // A brush of one colour, 0xBBGGRR. SelectObject puts a brush into a context and gives the
  // brush it held; DeleteObject deletes it.
  virtual GdiHandle CreateSolidBrush(std::uint32_t /*color*/) { return 0; }
  // Makes a brush take its origin anew when it is next selected. Non-zero on success.
  virtual std::int32_t UnrealizeObject(GdiHandle /*object*/) { return 0; }
  // Copies the source rectangle into the destination rectangle, stretched or shrunk to it
  // through the context's stretch mode; negative destination places are drawn only where they
  // meet the bitmap. Non-zero on success.
  virtual std::int32_t StretchBlt(GdiHandle /*destination*/, std::int32_t /*x*/,
                                  std::int32_t /*y*/, std::int32_t /*width*/,
                                  std::int32_t /*height*/, GdiHandle /*source*/,
                                  std::int32_t /*sourceX*/, std::int32_t /*sourceY*/,
                                  std::int32_t /*sourceWidth*/, std::int32_t /*sourceHeight*/,
                                  std::uint32_t /*rop*/) {
    return 0;
  }
  // The same stretch from pixels that are in no bitmap: those at `bits`, laid out as `header`
  // tells (32 or 24 bits a pixel, no colour table; rows top-down for a negative height). They are
  // read where they lie, with no copy made into a bitmap first. Non-zero on success.
  virtual std::int32_t StretchDIBits(GdiHandle /*dc*/, std::int32_t /*x*/, std::int32_t /*y*/,
                                     std::int32_t /*width*/, std::int32_t /*height*/,
                                     std::int32_t /*sourceX*/, std::int32_t /*sourceY*/,
                                     std::int32_t /*sourceWidth*/, std::int32_t /*sourceHeight*/,
                                     const void* /*bits*/, const BitmapInfoHeader& /*header*/,
                                     std::uint32_t /*usage*/, std::uint32_t /*rop*/) {
    return 0;
  }
};

}  // namespace quorvane::platform
