#pragma once
// The wallpaper call for the build without Windows: every call is kept, in order, and a call
// that sets the wallpaper keeps its path as the wallpaper now shown.
#include <string>
#include <vector>

#include "platform/Wallpaper.h"

namespace quorvane::platform::portable {

struct WallpaperCall {
  std::uint32_t action = 0;
  std::uint32_t param = 0;
  std::string text;
  std::uint32_t winIni = 0;
  bool operator==(const WallpaperCall&) const = default;
};

class RecordingWallpaper final : public Wallpaper {
 public:
  // Records the call. Setting the wallpaper succeeds, as the platform takes any path without
  // looking at the file; any other action is one this stand-in doesn't know, and returns 0.
  std::int32_t SystemParametersInfoA(std::uint32_t action, std::uint32_t param,
                                     const std::string& text, std::uint32_t winIni) override;

  const std::vector<WallpaperCall>& Calls() const { return calls_; }
  // The path of the last wallpaper set; empty before any.
  const std::string& Current() const { return current_; }
  void Clear();

 private:
  std::vector<WallpaperCall> calls_;
  std::string current_;
};

}  // namespace quorvane::platform::portable
