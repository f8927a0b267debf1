#include "wallpaper/Thumbnails.h"

#include <cmath>
#include <cstring>

#include "platform/DeviceContexts.h"
#include "platform/Service.h"
#include "ui/RenderedImage.h"
#include "ui/StripControls.h"

namespace quorvane {

namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kFillColor = 0x000000;  // the box's fill colour: black

// A memory context that shows a picture box's picture over its back colour, as the box's own
// context does: the source of a stretch. Everything it made goes with it.
class PictureContext {
 public:
  PictureContext(platform::DeviceContexts& gdi, const ui::PictureBox& box) : gdi_(gdi) {
    ui::Pixels scratch;
    const ui::Pixels& picture = ui::RenderedImage(box, scratch);
    if (picture.Empty()) return;
    dc_ = gdi_.CreateCompatibleDC(0);
    if (dc_ == 0) return;
    platform::BitmapInfoHeader header;
    header.biWidth = picture.width;
    header.biHeight = -picture.height;  // top-down, as the pixels are
    header.biPlanes = 1;
    header.biBitCount = 32;
    std::uint8_t* bits = nullptr;
    bitmap_ = gdi_.CreateDIBSection(dc_, header, platform::gdi::kDibRgbColors, &bits, 0, 0);
    if (bitmap_ == 0 || bits == nullptr) return;
    std::memcpy(bits, picture.bgra.data(), picture.bgra.size() * sizeof(std::uint32_t));
    previous_ = gdi_.SelectObject(dc_, bitmap_);
    width_ = picture.width;
    height_ = picture.height;
  }
  ~PictureContext() {
    if (previous_ != 0) gdi_.SelectObject(dc_, previous_);
    if (bitmap_ != 0) gdi_.DeleteObject(bitmap_);
    if (dc_ != 0) gdi_.DeleteDC(dc_);
  }
  PictureContext(const PictureContext&) = delete;
  PictureContext& operator=(const PictureContext&) = delete;

  platform::GdiHandle hDC() const { return previous_ != 0 ? dc_ : 0; }
  std::int32_t Width() const { return width_; }
  std::int32_t Height() const { return height_; }

 private:
  platform::DeviceContexts& gdi_;
  platform::GdiHandle dc_ = 0;
  platform::GdiHandle bitmap_ = 0;
  platform::GdiHandle previous_ = 0;
  std::int32_t width_ = 0;
  std::int32_t height_ = 0;
};

// A whole number from a reduced size, the even one at a half.
std::int32_t Rounded(double value) { return static_cast<std::int32_t>(std::nearbyint(value)); }

}  // namespace

ThumbnailPlace ThumbnailPlaceOf(std::int32_t sourceWidth, std::int32_t sourceHeight) {
  ThumbnailPlace place;
  place.width = Rounded(sourceWidth * kThumbnailFactor);
  place.height = Rounded(sourceHeight * kThumbnailFactor);
  // The integer part, downwards also below zero.
  place.x = static_cast<std::int32_t>(std::floor((kThumbnailSize - place.width) / 2.0));
  place.y = static_cast<std::int32_t>(std::floor((kThumbnailSize - place.height) / 2.0));
  return place;
}

void DrawThumbnail(ui::PictureBox& source, ui::PictureBox& target) {
  auto& gdi = platform::Use<platform::DeviceContexts>();
  target.Width(kThumbnailSize * ui::kTwipsPerPixel);
  target.Height(kThumbnailSize * ui::kTwipsPerPixel);
  target.BackColor = kWhite;
  target.AutoRedraw(true);
  target.Cls();

  const PictureContext from(gdi, source);
  const ThumbnailPlace place = ThumbnailPlaceOf(from.Width(), from.Height());
  const platform::GdiHandle dc = target.hDC();

  // Halftone stretching needs the brush origin set; the brush of the fill colour is selected for
  // it and the one it displaced unrealised, then put back.
  const std::int32_t oldMode = gdi.SetStretchBltMode(dc, platform::gdi::kHalftone);
  const platform::GdiHandle brush = gdi.CreateSolidBrush(kFillColor);
  platform::GdiHandle displaced = gdi.SelectObject(dc, brush);
  gdi.UnrealizeObject(displaced);
  std::int32_t oldX = 0, oldY = 0;
  gdi.SetBrushOrgEx(dc, place.x, place.y, &oldX, &oldY);
  gdi.SelectObject(dc, displaced);

  gdi.StretchBlt(dc, place.x, place.y, place.width, place.height, from.hDC(), 0, 0, from.Width(),
                 from.Height(), platform::gdi::kSrcCopy);

  gdi.SetStretchBltMode(dc, oldMode);
  displaced = gdi.SelectObject(dc, brush);
  gdi.UnrealizeObject(displaced);
  gdi.SetBrushOrgEx(dc, oldX, oldY, nullptr, nullptr);
  gdi.SelectObject(dc, displaced);
  gdi.DeleteObject(brush);

  // The frame: a black box through (x - 1, y - 1) and (x + w, y + h).
  const std::int32_t left = place.x - 1, top = place.y - 1;
  const std::int32_t right = place.x + place.width, bottom = place.y + place.height;
  const std::int32_t across = right - left + 1, down = bottom - top + 1;
  gdi.BitBlt(dc, left, top, across, 1, 0, 0, 0, platform::gdi::kBlackness);
  gdi.BitBlt(dc, left, bottom, across, 1, 0, 0, 0, platform::gdi::kBlackness);
  gdi.BitBlt(dc, left, top, 1, down, 0, 0, 0, platform::gdi::kBlackness);
  gdi.BitBlt(dc, right, top, 1, down, 0, 0, 0, platform::gdi::kBlackness);
  target.Refresh();
}

std::string ShortenedCaption(const std::string& name, std::int32_t limit) {
  std::string caption = name;
  bool lowered = false;
  if (ui::CaptionTextWidth(caption) > limit) {
    limit -= ui::CaptionTextWidth("...");
    lowered = true;
  }
  while (!caption.empty() && ui::CaptionTextWidth(caption) > limit) caption.pop_back();
  if (lowered) caption += "...";
  return caption;
}

}  // namespace quorvane
