#pragma once
// Thumbnails of pictures: one picture drawn reduced into a 64 by 64 box, and a caption shortened
// to the width a thumbnail has for it.
#include <cstdint>
#include <string>

#include "ui/Controls.h"

namespace quorvane {

// The size of a thumbnail, in pixels, and the fixed factor by which a picture is reduced into
// it. The factor does not depend on the picture: a picture wider (or taller) than about 404
// pixels is cropped evenly on both sides, a smaller one floats with white round it.
inline constexpr std::int32_t kThumbnailSize = 64;
inline constexpr double kThumbnailFactor = 0.1581633;

// Where the reduced picture stands in the thumbnail, in pixels: its place may be negative.
struct ThumbnailPlace {
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
};
ThumbnailPlace ThumbnailPlaceOf(std::int32_t sourceWidth, std::int32_t sourceHeight);

// Draws the picture of `source` reduced by the fixed factor, centred, into `target`, which it
// makes 64 by 64 pixels, white and persistent first, and frames it with a one-pixel black box
// just outside the reduced picture. The reduction is halftone, from the source's own pixels into
// the target's device context: no copy of the full picture is made for it.
void DrawThumbnail(ui::PictureBox& source, ui::PictureBox& target);

// `name` as a thumbnail's caption within `limit` twips of the captions' type: a name that fits
// stays whole; a longer one is cut, letter by letter from its end, to the limit less the width of
// "...", and "..." is added.
std::string ShortenedCaption(const std::string& name, std::int32_t limit);

}  // namespace quorvane
