#pragma once
// The system's wallpaper setting: the text form of the system parameters call, the one the
// program makes (SPI_SETDESKWALLPAPER with the path of a bitmap file).
#include <cstdint>
#include <string>

namespace quorvane::platform {

namespace spi {
inline constexpr std::uint32_t kSetDeskWallpaper = 20;
inline constexpr std::uint32_t kUpdateIniFile = 1;
inline constexpr std::uint32_t kSendWinIniChange = 2;
}  // namespace spi

class Wallpaper {
 public:
  virtual ~Wallpaper() = default;
  // Passes `text` as the call's pointer argument, in the active code page. Returns non-zero when
  // the system took the request, 0 otherwise.
  virtual std::int32_t SystemParametersInfoA(std::uint32_t action, std::uint32_t param,
                                             const std::string& text, std::uint32_t winIni) = 0;
};

}  // namespace quorvane::platform
