#include "ui/win32/PixelDrawing.h"

#include <algorithm>
#include <cstring>

namespace quorvane::ui::win32 {

namespace {

BITMAPINFO TopDownInfo(int width, int height) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;  // rows top-down, as the model keeps them
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  return info;
}

std::size_t PixelCount(const Pixels& pixels) {
  return static_cast<std::size_t>(pixels.width) * static_cast<std::size_t>(pixels.height);
}

// Pixels whose buffer really holds width times height values; anything else is not drawn.
bool Drawable(const Pixels& pixels) {
  return !pixels.Empty() && pixels.bgra.size() >= PixelCount(pixels);
}

std::uint32_t Blend(std::uint32_t pixel, std::uint32_t back) {
  const std::uint32_t alpha = pixel >> 24;
  if (alpha == 0xFF) return pixel;
  std::uint32_t result = 0xFF000000u;
  for (int shift = 0; shift < 24; shift += 8) {
    const std::uint32_t front = (pixel >> shift) & 0xFFu;
    const std::uint32_t behind = (back >> shift) & 0xFFu;
    const std::uint32_t mixed = (front * alpha + behind * (255u - alpha) + 127u) / 255u;
    result |= mixed << shift;
  }
  return result;
}

}  // namespace

bool HasAlpha(const Pixels& pixels) {
  for (std::uint32_t p : pixels.bgra) {
    if ((p >> 24) != 0) return true;
  }
  return false;
}

Pixels OverBackground(const Pixels& pixels, std::uint32_t backColor) {
  Pixels result;
  if (!Drawable(pixels)) return result;
  result.width = pixels.width;
  result.height = pixels.height;
  result.bgra.assign(pixels.bgra.begin(),
                     pixels.bgra.begin() + static_cast<std::ptrdiff_t>(PixelCount(pixels)));
  // The model's colours are 0xBBGGRR; a pixel is 0xAARRGGBB.
  const std::uint32_t back = ((backColor & 0xFFu) << 16) | (backColor & 0xFF00u) |
                             ((backColor >> 16) & 0xFFu);
  if (!HasAlpha(result)) {
    for (std::uint32_t& p : result.bgra) p |= 0xFF000000u;
    return result;
  }
  for (std::uint32_t& p : result.bgra) p = Blend(p, back);
  return result;
}

void DrawPixels(HDC dc, const Pixels& pixels, int x, int y, std::uint32_t backColor) {
  const Pixels shown = OverBackground(pixels, backColor);
  if (shown.Empty()) return;
  const BITMAPINFO info = TopDownInfo(shown.width, shown.height);
  ::SetDIBitsToDevice(dc, x, y, static_cast<DWORD>(shown.width),
                      static_cast<DWORD>(shown.height), 0, 0, 0,
                      static_cast<UINT>(shown.height), shown.bgra.data(), &info, DIB_RGB_COLORS);
}

Pixels Fitted(const Pixels& pixels, int width, int height) {
  Pixels result;
  if (!Drawable(pixels) || width <= 0 || height <= 0) return result;
  result.width = width;
  result.height = height;
  result.bgra.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (int row = 0; row < height; ++row) {
    const int top = static_cast<int>(static_cast<long long>(row) * pixels.height / height);
    const int bottom = std::max(
        top + 1, static_cast<int>((static_cast<long long>(row) + 1) * pixels.height / height));
    for (int column = 0; column < width; ++column) {
      const int left = static_cast<int>(static_cast<long long>(column) * pixels.width / width);
      const int right = std::max(
          left + 1,
          static_cast<int>((static_cast<long long>(column) + 1) * pixels.width / width));
      // Colours are summed weighed by their alpha, so that clear pixels lend no colour.
      std::uint64_t sum[4] = {0, 0, 0, 0};
      std::uint64_t count = 0;
      for (int y = top; y < bottom && y < pixels.height; ++y) {
        for (int x = left; x < right && x < pixels.width; ++x) {
          const std::uint32_t p =
              pixels.bgra[static_cast<std::size_t>(y) * static_cast<std::size_t>(pixels.width) +
                          static_cast<std::size_t>(x)];
          const std::uint32_t alpha = p >> 24;
          for (int c = 0; c < 3; ++c) sum[c] += ((p >> (8 * c)) & 0xFFu) * alpha;
          sum[3] += alpha;
          ++count;
        }
      }
      std::uint32_t out = 0;
      if (sum[3] != 0) {
        for (int c = 0; c < 3; ++c) {
          out |= static_cast<std::uint32_t>((sum[c] + sum[3] / 2) / sum[3]) << (8 * c);
        }
        out |= static_cast<std::uint32_t>((sum[3] + count / 2) / count) << 24;
      }
      result.bgra[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                  static_cast<std::size_t>(column)] = out;
    }
  }
  return result;
}

void DrawPixelsOver(HDC dc, const Pixels& pixels) {
  if (!Drawable(pixels)) return;
  if (!HasAlpha(pixels)) {
    DrawPixels(dc, pixels, 0, 0, 0);
    return;
  }
  // What the context shows is read into a bitmap of our own, blended, and put back.
  const BITMAPINFO info = TopDownInfo(pixels.width, pixels.height);
  void* bits = nullptr;
  UniqueBitmap behind(::CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  UniqueMemoryDC memory(::CreateCompatibleDC(dc));
  if (!behind || bits == nullptr || !memory) return;
  HGDIOBJ previous = ::SelectObject(memory.Get(), behind.Get());
  ::BitBlt(memory.Get(), 0, 0, pixels.width, pixels.height, dc, 0, 0, SRCCOPY);
  ::GdiFlush();
  auto* target = static_cast<std::uint32_t*>(bits);
  for (std::size_t i = 0; i < PixelCount(pixels); ++i) {
    target[i] = Blend(pixels.bgra[i], target[i]);
  }
  ::BitBlt(dc, 0, 0, pixels.width, pixels.height, memory.Get(), 0, 0, SRCCOPY);
  ::SelectObject(memory.Get(), previous);
}

UniqueBitmap MakeBitmap(const Pixels& pixels, int width, int height) {
  if (width <= 0 || height <= 0) return UniqueBitmap{};
  const BITMAPINFO info = TopDownInfo(width, height);
  void* bits = nullptr;
  UniqueBitmap bitmap(::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!bitmap || bits == nullptr) return UniqueBitmap{};
  auto* target = static_cast<std::uint32_t*>(bits);
  const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  if (!Drawable(pixels)) {
    std::memset(target, 0, count * sizeof(std::uint32_t));
    return bitmap;
  }
  if (pixels.width == width && pixels.height == height) {
    std::memcpy(target, pixels.bgra.data(), count * sizeof(std::uint32_t));
  } else {
    for (int row = 0; row < height; ++row) {
      const auto sourceRow = static_cast<std::size_t>(
          static_cast<long long>(row) * pixels.height / height);
      for (int column = 0; column < width; ++column) {
        const auto sourceColumn = static_cast<std::size_t>(
            static_cast<long long>(column) * pixels.width / width);
        target[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
               static_cast<std::size_t>(column)] =
            pixels.bgra[sourceRow * static_cast<std::size_t>(pixels.width) + sourceColumn];
      }
    }
  }
  // A picture without alpha is opaque; an image list would take zero alpha as fully clear.
  if (!HasAlpha(pixels)) {
    for (std::size_t i = 0; i < count; ++i) target[i] |= 0xFF000000u;
  }
  ::GdiFlush();
  return bitmap;
}

}  // namespace quorvane::ui::win32
