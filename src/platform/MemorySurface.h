#pragma once
// The persistent image of a picture box in memory: a memory device context holding a
// device-independent bitmap of 32 bits a pixel, of the box's size in pixels (its width and
// height in twips over 15). It is made when first needed and made anew when the box's size has
// changed, keeping what was drawn, and starts in the box's back colour. It works over whatever
// DeviceContexts port is installed when it is first made, and gives its objects back to that
// port.
#include <cstdint>

#include "platform/DeviceContexts.h"
#include "ui/Controls.h"

namespace quorvane::platform {

class MemorySurface final : public ui::Surface {
 public:
  MemorySurface() = default;
  ~MemorySurface() override;
  MemorySurface(const MemorySurface&) = delete;
  MemorySurface& operator=(const MemorySurface&) = delete;

  // The memory context, of the box's present size; 0 when the box has no area or the platform
  // gives no bitmap.
  std::uint32_t hDC(ui::PictureBox& box) override;
  void Cls(ui::PictureBox& box) override;
  // Every pixel opaque; empty when there is no image.
  Pixels Image(ui::PictureBox& box) override;

 private:
  // Makes the bitmap, or makes it anew at the box's size. False when there is none.
  bool Ensure(ui::PictureBox& box);
  // The first byte of the pixels, rows top-down; null when there are none.
  std::uint8_t* Bits();
  void Fill(std::uint32_t backColor);
  void Release();

  platform::DeviceContexts* gdi_ = nullptr;
  platform::GdiHandle dc_ = 0;
  platform::GdiHandle bitmap_ = 0;
  platform::GdiHandle previous_ = 0;
  std::int32_t width_ = 0;
  std::int32_t height_ = 0;
};

}  // namespace quorvane::platform
