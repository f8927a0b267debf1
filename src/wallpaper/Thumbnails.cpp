#include "wallpaper/Thumbnails.h"

#include <cmath>

#include "platform/DeviceContexts.h"
#include "platform/Service.h"
#include "ui/RenderedImage.h"
#include "ui/StripControls.h"

namespace quorvane {

namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kFillColor = 0x000000;  // the box's fill colour: black

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

  // The picture as the box shows it over its back colour. An opaque one is the box's own pixels,
  // which the stretch reads where they lie: a full picture is never copied for it.
  ui::Pixels scratch;
  const ui::Pixels& picture = ui::RenderedImage(source, scratch);
  const ThumbnailPlace place = ThumbnailPlaceOf(picture.width, picture.height);
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

  platform::BitmapInfoHeader header;
  header.biWidth = picture.width;
  header.biHeight = -picture.height;  // top-down, as the pixels are
  header.biPlanes = 1;
  header.biBitCount = 32;
  gdi.StretchDIBits(dc, place.x, place.y, place.width, place.height, 0, 0, picture.width,
                    picture.height, picture.Empty() ? nullptr : picture.bgra.data(), header,
                    platform::gdi::kDibRgbColors, platform::gdi::kSrcCopy);

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
