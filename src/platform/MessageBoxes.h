#pragma once
// Modal message boxes, as the system shows them: a prompt, the buttons and icon given by the
// platform's style bits, and a caption. An empty caption is the application's title. The result
// is the platform's number of the button that closed the box.
#include <cstdint>
#include <string>

namespace quorvane::platform {

namespace msgbox {
// Buttons.
inline constexpr std::int32_t kOkOnly = 0;
inline constexpr std::int32_t kOkCancel = 1;
inline constexpr std::int32_t kAbortRetryIgnore = 2;
inline constexpr std::int32_t kYesNoCancel = 3;
inline constexpr std::int32_t kYesNo = 4;
inline constexpr std::int32_t kRetryCancel = 5;
// Icons.
inline constexpr std::int32_t kCritical = 16;
inline constexpr std::int32_t kQuestion = 32;
inline constexpr std::int32_t kExclamation = 48;
inline constexpr std::int32_t kInformation = 64;

// The button that closed the box.
inline constexpr std::int32_t kOk = 1;
inline constexpr std::int32_t kCancel = 2;
inline constexpr std::int32_t kAbort = 3;
inline constexpr std::int32_t kRetry = 4;
inline constexpr std::int32_t kIgnore = 5;
inline constexpr std::int32_t kYes = 6;
inline constexpr std::int32_t kNo = 7;
}  // namespace msgbox

class MessageBoxes {
 public:
  virtual ~MessageBoxes() = default;

  // Shows the box and waits until the user closes it.
  virtual std::int32_t MsgBox(const std::string& prompt, std::int32_t buttons = msgbox::kOkOnly,
                              const std::string& title = std::string()) = 0;
};

}  // namespace quorvane::platform
