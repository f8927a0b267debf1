#pragma once
// Device contexts and bitmaps through gdi32 and user32.
#include "platform/DeviceContexts.h"

namespace quorvane::platform::win32 {

class Win32DeviceContexts final : public DeviceContexts {
 public:
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
  // GetObjectA with the platform's whole bitmap description, for bitmaps only.
  std::int32_t GetObjectA(GdiHandle object, BitmapObject& description) override;
  std::int32_t BitBlt(GdiHandle destination, std::int32_t x, std::int32_t y, std::int32_t width,
                      std::int32_t height, GdiHandle source, std::int32_t sourceX,
                      std::int32_t sourceY, std::uint32_t rop) override;
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
};

}  // namespace quorvane::platform::win32
