#pragma once
// The shell requests through user32 and shell32, window handles widened to the platform's and
// back.
#include <cstdint>
#include <optional>
#include <string>

#include "platform/ShellRequests.h"

namespace quorvane::platform::win32 {

class Win32ShellRequests final : public ShellRequests {
 public:
  std::uint32_t FindWindowExA(std::uint32_t parent, std::uint32_t childAfter,
                              const std::string& className,
                              const std::optional<std::string>& windowName) override;
  std::int32_t PostMessageA(std::uint32_t window, std::uint32_t message, std::uintptr_t wParam,
                            std::intptr_t lParam) override;
  void SHChangeNotify(std::int32_t eventId, std::uint32_t flags, std::uintptr_t item1,
                      std::uintptr_t item2) override;
  std::intptr_t SendMessageTimeoutA(std::uint32_t window, std::uint32_t message,
                                    std::uintptr_t wParam, std::intptr_t lParam,
                                    std::uint32_t flags, std::uint32_t timeout,
                                    std::uintptr_t& result) override;
};

}  // namespace quorvane::platform::win32
