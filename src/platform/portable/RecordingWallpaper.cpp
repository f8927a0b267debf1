#include "platform/portable/RecordingWallpaper.h"

namespace quorvane::platform::portable {

std::int32_t RecordingWallpaper::SystemParametersInfoA(std::uint32_t action, std::uint32_t param,
                                                       const std::string& text,
                                                       std::uint32_t winIni) {
  calls_.push_back(WallpaperCall{action, param, text, winIni});
  if (action != spi::kSetDeskWallpaper) return 0;
  current_ = text;
  return 1;
}

void RecordingWallpaper::Clear() {
  calls_.clear();
  current_.clear();
}

}  // namespace quorvane::platform::portable
