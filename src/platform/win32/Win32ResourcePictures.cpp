#include "platform/win32/Win32ResourcePictures.h"

#include <windows.h>

namespace quorvane::platform {

Pixels Win32ResourcePictures::LoadResPicture(std::int32_t number) {
  Pixels pixels;
  HBITMAP bitmap = static_cast<HBITMAP>(::LoadImageA(::GetModuleHandleA(nullptr),
                                                     MAKEINTRESOURCEA(number), IMAGE_BITMAP, 0, 0,
                                                     LR_CREATEDIBSECTION));
  if (bitmap == nullptr) return pixels;
  BITMAP description{};
  if (::GetObjectA(bitmap, sizeof description, &description) != 0 && description.bmWidth > 0 &&
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
    HDC screen = ::GetDC(nullptr);
    const int rows = ::GetDIBits(screen, bitmap, 0, static_cast<UINT>(pixels.height),
                                 pixels.bgra.data(), &info, DIB_RGB_COLORS);
    ::ReleaseDC(nullptr, screen);
    if (rows != pixels.height) {
      pixels = Pixels{};
    } else {
      for (std::uint32_t& p : pixels.bgra) p |= 0xFF000000u;  // resource bitmaps are opaque
    }
  }
  ::DeleteObject(bitmap);
  return pixels;
}

}  // namespace quorvane::platform
