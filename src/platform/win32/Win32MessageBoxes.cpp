#include "platform/win32/Win32MessageBoxes.h"

#include <windows.h>

#include <utility>

namespace quorvane::platform::win32 {

Win32MessageBoxes::Win32MessageBoxes(std::string applicationTitle)
    : applicationTitle_(std::move(applicationTitle)) {}

std::int32_t Win32MessageBoxes::MsgBox(const std::string& prompt, std::int32_t buttons,
                                       const std::string& title) {
  const std::string& caption = title.empty() ? applicationTitle_ : title;
  return ::MessageBoxA(::GetActiveWindow(), prompt.c_str(), caption.c_str(),
                       static_cast<UINT>(buttons));
}

}  // namespace quorvane::platform::win32
