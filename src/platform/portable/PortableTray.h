#pragma once
// A notification area without a screen: it keeps the icons present, by window and id, as the
// platform's does (an icon added twice, or deleted when absent, is refused), and writes down
// every call in order. It can also stand for a shell that has no notification area at all.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/Tray.h"

namespace quorvane::platform::portable {

class PortableTray final : public Tray {
 public:
  struct Call {
    std::uint32_t message = 0;
    NotifyIconData data;
    std::int32_t result = 0;
  };

  std::int32_t Shell_NotifyIconA(std::uint32_t message, const NotifyIconData& data) override;

  const std::vector<Call>& Calls() const { return calls_; }
  // The icons present now, in the order they were added.
  const std::vector<NotifyIconData>& Icons() const { return icons_; }
  // Without a notification area every call gives 0 and changes nothing.
  void SetNotificationArea(bool present) { present_ = present; }
  // Also writes each call as "tray add", "tray modify", "tray delete" or "tray <n>" into a
  // journal shared with other recorders, so tests can see the order across services.
  void Journal(std::vector<std::string>* journal) { journal_ = journal; }

 private:
  std::vector<NotifyIconData>::iterator Find(const NotifyIconData& data);

  std::vector<Call> calls_;
  std::vector<NotifyIconData> icons_;
  bool present_ = true;
  std::vector<std::string>* journal_ = nullptr;
};

}  // namespace quorvane::platform::portable
