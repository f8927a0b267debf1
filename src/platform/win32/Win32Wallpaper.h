#pragma once
// The wallpaper call of the platform: SystemParametersInfoA with a text argument.
#include "platform/Wallpaper.h"

namespace quorvane::platform::win32 {

class Win32Wallpaper final : public Wallpaper {
 public:
  std::int32_t SystemParametersInfoA(std::uint32_t action, std::uint32_t param,
                                     const std::string& text, std::uint32_t winIni) override;
};

}  // namespace quorvane::platform::win32
