#include "platform/MemorySurface.h"

#include <algorithm>
#include <cstddef>

#include "platform/Service.h"

namespace quorvane::platform {

namespace {

constexpr std::size_t kBytesPerPixel = 4;

}  // namespace

MemorySurface::~MemorySurface() { Release(); }

void MemorySurface::Release() {
  if (gdi_ == nullptr) return;
  if (dc_ != 0 && previous_ != 0) gdi_->SelectObject(dc_, previous_);
  if (bitmap_ != 0) gdi_->DeleteObject(bitmap_);
  if (dc_ != 0) gdi_->DeleteDC(dc_);
  dc_ = 0;
  bitmap_ = 0;
  previous_ = 0;
  width_ = 0;
  height_ = 0;
}

std::uint8_t* MemorySurface::Bits() {
  if (gdi_ == nullptr || bitmap_ == 0) return nullptr;
  // Asking for the description also finishes any drawing the platform still holds back.
  platform::BitmapObject description;
  if (gdi_->GetObjectA(bitmap_, description) == 0) return nullptr;
  return description.bmBits;
}

void MemorySurface::Fill(std::uint32_t backColor) {
  std::uint8_t* bits = Bits();
  if (bits == nullptr) return;
  const std::size_t pixels = static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
  for (std::size_t i = 0; i < pixels; ++i) {
    std::uint8_t* p = bits + i * kBytesPerPixel;
    p[0] = static_cast<std::uint8_t>(backColor >> 16);  // blue
    p[1] = static_cast<std::uint8_t>(backColor >> 8);   // green
    p[2] = static_cast<std::uint8_t>(backColor);        // red
    p[3] = 0;
  }
}

bool MemorySurface::Ensure(ui::PictureBox& box) {
  const std::int32_t width = box.Width() / ui::kTwipsPerPixel;
  const std::int32_t height = box.Height() / ui::kTwipsPerPixel;
  if (width <= 0 || height <= 0) return false;
  if (bitmap_ != 0 && width == width_ && height == height_) return true;
  if (gdi_ == nullptr) gdi_ = &platform::Use<platform::DeviceContexts>();

  platform::BitmapInfoHeader header;
  header.biWidth = width;
  header.biHeight = -height;  // top-down
  header.biPlanes = 1;
  header.biBitCount = 32;
  header.biCompression = platform::gdi::kBiRgb;
  const platform::GdiHandle dc = gdi_->CreateCompatibleDC(0);
  if (dc == 0) return false;
  std::uint8_t* bits = nullptr;
  const platform::GdiHandle bitmap =
      gdi_->CreateDIBSection(dc, header, platform::gdi::kDibRgbColors, &bits, 0, 0);
  const platform::GdiHandle previous = bitmap != 0 ? gdi_->SelectObject(dc, bitmap) : 0;
  if (previous == 0) {
    if (bitmap != 0) gdi_->DeleteObject(bitmap);
    gdi_->DeleteDC(dc);
    return false;
  }

  // The new image starts in the back colour, with what the old one held at its top left.
  const platform::GdiHandle oldDc = dc_;
  const platform::GdiHandle oldBitmap = bitmap_;
  const platform::GdiHandle oldPrevious = previous_;
  const std::int32_t oldWidth = width_;
  const std::int32_t oldHeight = height_;
  dc_ = dc;
  bitmap_ = bitmap;
  previous_ = previous;
  width_ = width;
  height_ = height;
  Fill(box.BackColor);
  if (oldDc != 0) {
    gdi_->BitBlt(dc_, 0, 0, std::min(oldWidth, width), std::min(oldHeight, height), oldDc, 0, 0,
                 platform::gdi::kSrcCopy);
    gdi_->SelectObject(oldDc, oldPrevious);
    gdi_->DeleteObject(oldBitmap);
    gdi_->DeleteDC(oldDc);
  }
  return true;
}

std::uint32_t MemorySurface::hDC(ui::PictureBox& box) { return Ensure(box) ? dc_ : 0; }

void MemorySurface::Cls(ui::PictureBox& box) {
  if (Ensure(box)) Fill(box.BackColor);
}

Pixels MemorySurface::Image(ui::PictureBox& box) {
  Pixels image;
  if (!Ensure(box)) return image;
  const std::uint8_t* bits = Bits();
  if (bits == nullptr) return image;
  image.width = width_;
  image.height = height_;
  const std::size_t pixels = static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
  image.bgra.resize(pixels);
  for (std::size_t i = 0; i < pixels; ++i) {
    const std::uint8_t* p = bits + i * kBytesPerPixel;
    image.bgra[i] = static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
                    static_cast<std::uint32_t>(p[2]) << 16 | 0xFF000000u;
  }
  return image;
}

}  // namespace quorvane::platform
