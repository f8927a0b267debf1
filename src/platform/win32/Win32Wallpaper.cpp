#include "platform/win32/Win32Wallpaper.h"

#include <windows.h>

#include <vector>

namespace quorvane::platform::win32 {

std::int32_t Win32Wallpaper::SystemParametersInfoA(std::uint32_t action, std::uint32_t param,
                                                   const std::string& text,
                                                   std::uint32_t winIni) {
  // The call takes a writable pointer; the text is handed over in a copy of its own.
  std::vector<char> buffer(text.begin(), text.end());
  buffer.push_back('\0');
  return ::SystemParametersInfoA(action, param, buffer.data(), winIni);
}

}  // namespace quorvane::platform::win32
