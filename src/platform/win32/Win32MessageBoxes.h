#pragma once
// Message boxes through user32, owned by the window that is active in this process.
#include <string>

#include "platform/MessageBoxes.h"

namespace quorvane::platform::win32 {

class Win32MessageBoxes final : public MessageBoxes {
 public:
  // `applicationTitle` is the caption of a box that is given none.
  explicit Win32MessageBoxes(std::string applicationTitle = "Quorvane");

  std::int32_t MsgBox(const std::string& prompt, std::int32_t buttons,
                      const std::string& title) override;

 private:
  std::string applicationTitle_;
};

}  // namespace quorvane::platform::win32
