#include "platform/win32/Win32ResourcePictures.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <utility>

#include "platform/win32/Handles.h"

namespace quorvane::platform::win32 {

namespace {

// A 32-bit bitmap that carries alpha (the preview icons of the appearance page) keeps it: its
// pixels are taken as they are stored, alpha and all. False for any other bitmap, which is opaque.
bool CopyAlpha(HBITMAP bitmap, Pixels& pixels) {
  DIBSECTION section{};
  if (::GetObjectA(bitmap, sizeof section, &section) != sizeof section ||
      section.dsBm.bmBitsPixel != 32 || section.dsBm.bmBits == nullptr ||
      section.dsBm.bmWidth != pixels.width || section.dsBm.bmHeight != pixels.height) {
    return false;
  }
  const auto* bits = static_cast<const std::uint32_t*>(section.dsBm.bmBits);
  const bool bottomUp = section.dsBmih.biHeight > 0;
  const auto width = static_cast<std::size_t>(pixels.width);
  Pixels stored = pixels;
  bool alpha = false;
  for (std::int32_t row = 0; row < pixels.height; ++row) {
    const auto from = static_cast<std::size_t>(bottomUp ? pixels.height - 1 - row : row);
    for (std::size_t column = 0; column < width; ++column) {
      const std::uint32_t p = bits[from * width + column];
      stored.bgra[static_cast<std::size_t>(row) * width + column] = p;
      alpha = alpha || (p >> 24) != 0;
    }
  }
  if (!alpha) return false;
  pixels = std::move(stored);
  return true;
}

}  // namespace

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
    } else if (!CopyAlpha(bitmap.Get(), pixels)) {
      for (std::uint32_t& p : pixels.bgra) p |= 0xFF000000u;  // resource bitmaps are opaque
    }
  }
  return pixels;
}

}  // namespace quorvane::platform::win32
