#include "platform/win32/Win32ResourcePictures.h"

#include <windows.h>

#include "platform/win32/Handles.h"

namespace quorvane::platform::win32 {

Pixels Win32ResourcePictures::LoadResPicture(std::int32_t number) {
  Pixels pixels;
  const UniqueBitmap bitmap(static_cast<HBITMAP>(
      ::LoadImageA(::GetModuleHandleA(nullptr), MAKEINTRESOURCEA(number), IMAGE_BITMAP, 0, 0,
                   LR_CREATEDIBSECTION)));
  if (!bitmap) return pixels;
  BITMAP description{};
  if (::GetObjectA(bitmap.Get(), sizeof description, &description) != 0 && description.bmWidth > 0 &&
      description.bmHeight > 0) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = description.bmWidth;
    info.bmiHeader.biHeight = -description.bmHeight;  // rows top-down
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    pixels.width = description.bmWidth;
    pixels.height = description.bmHeight;
    pixels.bgra.resize(static_cast<std::size_t>(pixels.width) *
                       static_cast<std::size_t>(pixels.height));
    const WindowDC screen;
    const int rows = ::GetDIBits(screen.Get(), bitmap.Get(), 0, static_cast<UINT>(pixels.height),
                                 pixels.bgra.data(), &info, DIB_RGB_COLORS);
    if (rows != pixels.height) {
      pixels = Pixels{};
    } else {
      for (std::uint32_t& p : pixels.bgra) p |= 0xFF000000u;  // resource bitmaps are opaque
    }
  }
  return pixels;
}

}  // namespace quorvane::platform::win32
