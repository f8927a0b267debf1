#pragma once
// The requests by which the program makes the shell drop its caches and redraw: finding the
// desktop's windows, posting and sending window messages, and the shell's change notice. The
// arguments are the platform's own; window handles are the 32-bit values the system keeps, 0
// is no window, and 0xFFFF is every top-level window.
#include <cstdint>
#include <optional>
#include <string>

namespace quorvane::platform {

namespace shell {
// Windows.
inline constexpr std::uint32_t kNoWindow = 0;
inline constexpr std::uint32_t kBroadcast = 0xFFFF;

// Messages and their arguments.
inline constexpr std::uint32_t kKeyDown = 0x100;
inline constexpr std::uintptr_t kF5 = 0x74;
inline constexpr std::uint32_t kSettingChange = 0x1A;
inline constexpr std::uintptr_t kSetNonClientMetrics = 0x2A;

// Sending with a time-out: skip windows that do not answer.
inline constexpr std::uint32_t kAbortIfHung = 2;

// Change notices.
inline constexpr std::int32_t kAssociationChanged = 0x8000000;
inline constexpr std::uint32_t kIdList = 0;
}  // namespace shell

class ShellRequests {
 public:
  virtual ~ShellRequests() = default;

  // The first child of `parent` after `childAfter` (0: from the first) with the class name and,
  // when one is given, the window name; 0 when there is none. Parent 0 searches the top-level
  // windows.
  virtual std::uint32_t FindWindowExA(std::uint32_t parent, std::uint32_t childAfter,
                                      const std::string& className,
                                      const std::optional<std::string>& windowName) = 0;
  // Puts a message in the window's queue and returns at once; non-zero when it was queued.
  virtual std::int32_t PostMessageA(std::uint32_t window, std::uint32_t message,
                                    std::uintptr_t wParam, std::intptr_t lParam) = 0;
  // Tells the shell that something it shows has changed. The two items are addresses, 0 for
  // none.
  virtual void SHChangeNotify(std::int32_t eventId, std::uint32_t flags, std::uintptr_t item1,
                              std::uintptr_t item2) = 0;
  // Sends a message and waits for the answer, at most `timeout` milliseconds for each window;
  // `result` takes the answer. Non-zero when the message was delivered.
  virtual std::intptr_t SendMessageTimeoutA(std::uint32_t window, std::uint32_t message,
                                            std::uintptr_t wParam, std::intptr_t lParam,
                                            std::uint32_t flags, std::uint32_t timeout,
                                            std::uintptr_t& result) = 0;
};

}  // namespace quorvane::platform
