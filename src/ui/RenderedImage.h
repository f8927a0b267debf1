#pragma once
// What a picture box shows of its picture: the picture at its own size over the box's back
// colour, so that where the picture lets the background through, the back colour shows. A picture
// that lets nothing through is its own rendered image.
#include "ui/Controls.h"

namespace quorvane::ui {

// The rendered image of the box's picture. For an opaque picture this is the picture itself, with
// no copy made (a wallpaper's pixels are tens of megabytes); otherwise it is drawn into `scratch`,
// which is returned. Every pixel of the result is opaque.
const Pixels& RenderedImage(const PictureBox& box, Pixels& scratch);

// One pixel of a picture, 0xAARRGGBB with straight alpha, over an opaque back colour given as
// 0xBBGGRR; the result is opaque.
std::uint32_t OverBackColor(std::uint32_t pixel, std::uint32_t backColor);

}  // namespace quorvane::ui
