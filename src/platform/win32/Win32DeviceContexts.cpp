#include "platform/win32/Win32DeviceContexts.h"

#include <windows.h>

#include "platform/win32/GdiHandles.h"

namespace quorvane::platform::win32 {

namespace {

// The platform's own header of a device-independent bitmap, its size field as given.
BITMAPINFO NativeInfo(const BitmapInfoHeader& header, DWORD size) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = size;
  info.bmiHeader.biWidth = header.biWidth;
  info.bmiHeader.biHeight = header.biHeight;
  info.bmiHeader.biPlanes = header.biPlanes;
  info.bmiHeader.biBitCount = header.biBitCount;
  info.bmiHeader.biCompression = header.biCompression;
  info.bmiHeader.biSizeImage = static_cast<DWORD>(header.biSizeImage);
  info.bmiHeader.biXPelsPerMeter = header.biXPelsPerMeter;
  info.bmiHeader.biYPelsPerMeter = header.biYPelsPerMeter;
  info.bmiHeader.biClrUsed = header.biClrUsed;
  info.bmiHeader.biClrImportant = header.biClrImportant;
  return info;
}

}  // namespace

GdiHandle Win32DeviceContexts::GetDesktopWindow() { return FromNative(::GetDesktopWindow()); }

GdiHandle Win32DeviceContexts::GetDC(GdiHandle window) {
  return FromNative(::GetDC(ToNative<HWND>(window)));
}

std::int32_t Win32DeviceContexts::ReleaseDC(GdiHandle window, GdiHandle dc) {
  return ::ReleaseDC(ToNative<HWND>(window), ToNative<HDC>(dc));
}

GdiHandle Win32DeviceContexts::CreateCompatibleDC(GdiHandle dc) {
  return FromNative(::CreateCompatibleDC(ToNative<HDC>(dc)));
}

std::int32_t Win32DeviceContexts::DeleteDC(GdiHandle dc) { return ::DeleteDC(ToNative<HDC>(dc)); }

GdiHandle Win32DeviceContexts::CreateDIBSection(GdiHandle dc, const BitmapInfoHeader& header,
                                                std::uint32_t usage, std::uint8_t** bits,
                                                GdiHandle section, std::uint32_t offset) {
  const BITMAPINFO info = NativeInfo(header, header.biSize);
  void* first = nullptr;
  HBITMAP bitmap = ::CreateDIBSection(ToNative<HDC>(dc), &info, usage, &first,
                                      ToNative<HANDLE>(section), offset);
  if (bits != nullptr) *bits = bitmap != nullptr ? static_cast<std::uint8_t*>(first) : nullptr;
  return FromNative(bitmap);
}

GdiHandle Win32DeviceContexts::CreateCompatibleBitmap(GdiHandle dc, std::int32_t width,
                                                      std::int32_t height) {
  return FromNative(::CreateCompatibleBitmap(ToNative<HDC>(dc), width, height));
}

GdiHandle Win32DeviceContexts::SelectObject(GdiHandle dc, GdiHandle object) {
  return FromNative(::SelectObject(ToNative<HDC>(dc), ToNative<HGDIOBJ>(object)));
}

std::int32_t Win32DeviceContexts::DeleteObject(GdiHandle object) {
  return ::DeleteObject(ToNative<HGDIOBJ>(object));
}

std::int32_t Win32DeviceContexts::GetObjectA(GdiHandle object, BitmapObject& description) {
  const auto native = ToNative<HGDIOBJ>(object);
  // Other objects would fill the buffer with descriptions of another shape.
  if (::GetObjectType(native) != OBJ_BITMAP) return 0;
  BITMAP bitmap{};
  const int size = ::GetObjectA(native, sizeof bitmap, &bitmap);
  if (size == 0) return 0;
  description.bmType = bitmap.bmType;
  description.bmWidth = bitmap.bmWidth;
  description.bmHeight = bitmap.bmHeight;
  description.bmWidthBytes = bitmap.bmWidthBytes;
  description.bmPlanes = bitmap.bmPlanes;
  description.bmBitsPixel = bitmap.bmBitsPixel;
  description.bmBits = static_cast<std::uint8_t*>(bitmap.bmBits);
  return size;
}

std::int32_t Win32DeviceContexts::BitBlt(GdiHandle destination, std::int32_t x, std::int32_t y,
                                         std::int32_t width, std::int32_t height,
                                         GdiHandle source, std::int32_t sourceX,
                                         std::int32_t sourceY, std::uint32_t rop) {
  return ::BitBlt(ToNative<HDC>(destination), x, y, width, height, ToNative<HDC>(source), sourceX,
                  sourceY, rop);
}

std::int32_t Win32DeviceContexts::SetStretchBltMode(GdiHandle dc, std::int32_t mode) {
  return ::SetStretchBltMode(ToNative<HDC>(dc), mode);
}

std::int32_t Win32DeviceContexts::SetBrushOrgEx(GdiHandle dc, std::int32_t x, std::int32_t y,
                                                std::int32_t* previousX,
                                                std::int32_t* previousY) {
  POINT previous{};
  const BOOL done = ::SetBrushOrgEx(ToNative<HDC>(dc), x, y, &previous);
  if (done != 0 && previousX != nullptr) *previousX = previous.x;
  if (done != 0 && previousY != nullptr) *previousY = previous.y;
  return done;
}

GdiHandle Win32DeviceContexts::CreateSolidBrush(std::uint32_t color) {
  return FromNative(::CreateSolidBrush(color & 0xFFFFFFu));
}

std::int32_t Win32DeviceContexts::UnrealizeObject(GdiHandle object) {
  return ::UnrealizeObject(ToNative<HGDIOBJ>(object));
}

std::int32_t Win32DeviceContexts::StretchBlt(GdiHandle destination, std::int32_t x,
                                             std::int32_t y, std::int32_t width,
                                             std::int32_t height, GdiHandle source,
                                             std::int32_t sourceX, std::int32_t sourceY,
                                             std::int32_t sourceWidth,
                                             std::int32_t sourceHeight, std::uint32_t rop) {
  return ::StretchBlt(ToNative<HDC>(destination), x, y, width, height, ToNative<HDC>(source),
                      sourceX, sourceY, sourceWidth, sourceHeight, rop);
}

std::int32_t Win32DeviceContexts::StretchDIBits(
    GdiHandle dc, std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
    std::int32_t sourceX, std::int32_t sourceY, std::int32_t sourceWidth,
    std::int32_t sourceHeight, const void* bits, const BitmapInfoHeader& header,
    std::uint32_t usage, std::uint32_t rop) {
  const BITMAPINFO info = NativeInfo(header, sizeof(BITMAPINFOHEADER));
  return ::StretchDIBits(ToNative<HDC>(dc), x, y, width, height, sourceX, sourceY, sourceWidth,
                         sourceHeight, bits, &info, usage, rop);
}

}  // namespace quorvane::platform::win32
