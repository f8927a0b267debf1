#pragma once
// Message boxes without a screen: each one is written down in order and answered at once, with
// the answers queued beforehand, or OK when none is left.
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "platform/MessageBoxes.h"

namespace quorvane::platform::portable {

class PortableMessageBoxes final : public MessageBoxes {
 public:
  struct Shown {
    std::string prompt;
    std::int32_t buttons = 0;
    std::string title;
  };

  std::int32_t MsgBox(const std::string& prompt, std::int32_t buttons,
                      const std::string& title) override;

  // The button that closes the next box not yet shown.
  void Answer(std::int32_t button) { answers_.push_back(button); }
  const std::vector<Shown>& Boxes() const { return shown_; }
  void Clear() { shown_.clear(); }

 private:
  std::vector<Shown> shown_;
  std::deque<std::int32_t> answers_;
};

}  // namespace quorvane::platform::portable
