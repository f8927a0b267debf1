#pragma once
// Device contexts and bitmaps kept in memory, with the platform's rules: a memory context starts
// with the shared 1 by 1 monochrome bitmap; a bitmap is selected into one context at a time; a
// selected bitmap that is deleted goes when it is selected out; bitmaps are device-independent
// (24 or 32 bits a pixel, rows bottom-up for a positive height) or device bitmaps in the
// screen's format (32 bits) or monochrome; blits are clipped to both bitmaps, convert between
// the formats (a monochrome 1 is the background colour, white, and 0 the text colour, black) and
// apply any of the 256 raster operations with the default white brush as the pattern.
//
// The desktop window's context draws on a screen of 32 bits a pixel. Every call is written to a
// journal, and any operation can be made to fail once, so that tests can follow what a routine
// asked of the platform.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/DeviceContexts.h"

namespace quorvane::platform::portable {

class PortableDeviceContexts final : public DeviceContexts {
 public:
  // A black screen of the size.
  explicit PortableDeviceContexts(std::int32_t screenWidth = 1024,
                                  std::int32_t screenHeight = 768);
  ~PortableDeviceContexts() override;
  PortableDeviceContexts(const PortableDeviceContexts&) = delete;
  PortableDeviceContexts& operator=(const PortableDeviceContexts&) = delete;

  GdiHandle GetDesktopWindow() override;
  GdiHandle GetDC(GdiHandle window) override;
  std::int32_t ReleaseDC(GdiHandle window, GdiHandle dc) override;
  GdiHandle CreateCompatibleDC(GdiHandle dc) override;
  std::int32_t DeleteDC(GdiHandle dc) override;
  GdiHandle CreateDIBSection(GdiHandle dc, const BitmapInfoHeader& header, std::uint32_t usage,
                             std::uint8_t** bits, GdiHandle section,
                             std::uint32_t offset) override;
  GdiHandle CreateCompatibleBitmap(GdiHandle dc, std::int32_t width,
                                   std::int32_t height) override;
  GdiHandle SelectObject(GdiHandle dc, GdiHandle object) override;
  std::int32_t DeleteObject(GdiHandle object) override;
  std::int32_t GetObjectA(GdiHandle object, BitmapObject& description) override;
  std::int32_t BitBlt(GdiHandle destination, std::int32_t x, std::int32_t y, std::int32_t width,
                      std::int32_t height, GdiHandle source, std::int32_t sourceX,
                      std::int32_t sourceY, std::uint32_t rop) override;
  // Stretching: halftone averages every source pixel that meets a destination pixel; any other
  // mode takes the one nearest its centre. Brushes of one colour, selected one to a context (a
  // new context holds the white stock brush).
  std::int32_t SetStretchBltMode(GdiHandle dc, std::int32_t mode) override;
  std::int32_t SetBrushOrgEx(GdiHandle dc, std::int32_t x, std::int32_t y,
                             std::int32_t* previousX, std::int32_t* previousY) override;
  GdiHandle CreateSolidBrush(std::uint32_t color) override;
  std::int32_t UnrealizeObject(GdiHandle object) override;
  std::int32_t StretchBlt(GdiHandle destination, std::int32_t x, std::int32_t y,
                          std::int32_t width, std::int32_t height, GdiHandle source,
                          std::int32_t sourceX, std::int32_t sourceY, std::int32_t sourceWidth,
                          std::int32_t sourceHeight, std::uint32_t rop) override;
  std::int32_t StretchDIBits(GdiHandle dc, std::int32_t x, std::int32_t y, std::int32_t width,
                             std::int32_t height, std::int32_t sourceX, std::int32_t sourceY,
                             std::int32_t sourceWidth, std::int32_t sourceHeight,
                             const void* bits, const BitmapInfoHeader& header,
                             std::uint32_t usage, std::uint32_t rop) override;
  // Brushes not yet deleted (the stock one not counted).
  std::size_t LiveBrushes() const { return brushes_.size(); }
  // The stretch mode and brush origin a context holds.
  std::int32_t StretchModeOf(GdiHandle dc) const;

  // Contexts not yet deleted or released, and bitmaps not yet deleted (the shared monochrome
  // one not counted). A deleted bitmap that is still selected is counted until it goes.
  std::size_t LiveContexts() const { return contexts_.size(); }
  std::size_t LiveBitmaps() const;
  // The shared 1 by 1 monochrome bitmap.
  GdiHandle StockBitmap() const { return stockBitmap_; }

  // The screen's pixel at x, y as 0xRRGGBB.
  std::uint32_t ScreenPixel(std::int32_t x, std::int32_t y) const;

  // Every call so far, in order, as "Name(arguments)=result" with handles in decimal.
  const std::vector<std::string>& Journal() const { return journal_; }
  // Only the names of the calls so far.
  std::vector<std::string> JournalNames() const;
  void ClearJournal() { journal_.clear(); }
  // Whether calls are written to the journal from now on (they are at first).
  void KeepJournal(bool keep) { keepJournal_ = keep; }

  // The next call of the named operation fails as the platform's call fails: 0, and nothing
  // made or changed.
  void FailNext(const std::string& operation);
  // The most bytes that one bitmap may take; a larger one is refused for want of memory.
  void SetBitmapMemoryLimit(std::size_t bytes) { memoryLimit_ = bytes; }

 private:
  struct Surface {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint16_t bitsPixel = 0;
    std::int64_t stride = 0;
    bool deviceIndependent = false;
    bool bottomUp = false;
    std::unique_ptr<std::uint8_t[]> pixels;
    GdiHandle selectedInto = 0;
    bool deletePending = false;

    std::uint8_t* Row(std::int32_t deviceY) const;
  };
  struct Context {
    bool memory = false;
    GdiHandle window = 0;
    GdiHandle bitmap = 0;  // for a memory context
    GdiHandle brush = 0;   // 0: the stock white brush
    std::int32_t stretchMode = 1;
    std::int32_t brushX = 0;
    std::int32_t brushY = 0;
  };

  GdiHandle NewHandle() { return nextHandle_++; }
  bool Failing(const char* operation);
  void Record(std::string call) {
    if (keepJournal_) journal_.push_back(std::move(call));
  }
  GdiHandle MakeSurface(std::int32_t width, std::int32_t height, std::uint16_t bitsPixel,
                        bool deviceIndependent, bool bottomUp);
  Surface* SurfaceOf(GdiHandle bitmap);
  // The surface a context draws on: its selected bitmap, or the screen.
  Surface* TargetOf(const Context& context);
  // Takes a bitmap out of the context it was selected into; a deleted one goes then.
  void Deselect(GdiHandle bitmap);
  // The stretch of StretchBlt and StretchDIBits, from one surface into another.
  static void Stretch(Surface& target, std::int32_t mode, std::int32_t x, std::int32_t y,
                      std::int32_t width, std::int32_t height, const Surface& source,
                      std::int32_t sourceX, std::int32_t sourceY, std::int32_t sourceWidth,
                      std::int32_t sourceHeight, std::uint32_t rop);
  std::int32_t Blit(GdiHandle destination, std::int32_t x, std::int32_t y, std::int32_t width,
                    std::int32_t height, GdiHandle source, std::int32_t sourceX,
                    std::int32_t sourceY, std::uint32_t rop);

  GdiHandle nextHandle_ = 0x00010000;
  GdiHandle desktopWindow_ = 0;
  GdiHandle stockBitmap_ = 0;
  Surface screen_;
  std::unordered_map<GdiHandle, Surface> bitmaps_;
  std::unordered_map<GdiHandle, Context> contexts_;
  std::unordered_map<GdiHandle, std::uint32_t> brushes_;
  GdiHandle stockBrush_ = 0;
  std::vector<std::string> journal_;
  bool keepJournal_ = true;
  std::vector<std::string> failNext_;
  std::size_t memoryLimit_ = std::size_t{512} * 1024 * 1024;
};

}  // namespace quorvane::platform::portable
