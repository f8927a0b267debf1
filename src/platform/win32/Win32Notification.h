#pragma once
// The notification as a balloon of the program's tray icon (the icon Win32Tray added last). With
// no icon present nothing is shown.
#include <cstdint>
#include <map>
#include <string>

#include "platform/Notification.h"

namespace quorvane::platform::win32 {

class Win32Notification final : public Notification {
 public:
  void SetOption(std::int32_t number, std::int32_t value) override;
  void SetPicture(const Pixels& picture) override;
  void SetText(const std::string& text) override;
  void Show() override;

 private:
  std::map<std::int32_t, std::int32_t> options_;  // kept; the balloon uses none of them
  bool hasPicture_ = false;
  std::string text_;
};

}  // namespace quorvane::platform::win32
