#include "ui/RenderedImage.h"

#include <algorithm>

namespace quorvane::ui {

namespace {

constexpr std::uint32_t kOpaque = 0xFF000000u;

bool IsOpaque(const Pixels& picture) {
  return std::all_of(picture.bgra.begin(), picture.bgra.end(),
                     [](std::uint32_t p) { return (p & kOpaque) == kOpaque; });
}

}  // namespace

std::uint32_t OverBackColor(std::uint32_t pixel, std::uint32_t backColor) {
  const std::uint32_t alpha = pixel >> 24;
  // The back colour is 0xBBGGRR; pixels are blue in the low byte.
  const std::uint32_t back[3] = {(backColor >> 16) & 0xFFu, (backColor >> 8) & 0xFFu,
                                 backColor & 0xFFu};
  std::uint32_t out = kOpaque;
  for (int channel = 0; channel < 3; ++channel) {
    const std::uint32_t front = (pixel >> (8 * channel)) & 0xFFu;
    const std::uint32_t mixed = (front * alpha + back[channel] * (255u - alpha) + 127u) / 255u;
    out |= mixed << (8 * channel);
  }
  return out;
}

const Pixels& RenderedImage(const PictureBox& box, Pixels& scratch) {
  const Pixels& picture = box.Picture();
  if (IsOpaque(picture)) return picture;
  scratch.width = picture.width;
  scratch.height = picture.height;
  scratch.bgra.resize(picture.bgra.size());
  std::transform(picture.bgra.begin(), picture.bgra.end(), scratch.bgra.begin(),
                 [&](std::uint32_t p) { return OverBackColor(p, box.BackColor); });
  return scratch;
}

}  // namespace quorvane::ui
