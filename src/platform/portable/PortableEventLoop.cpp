#include "platform/portable/PortableEventLoop.h"

namespace quorvane::platform::portable {

void PortableEventLoop::DoEvents() {
  ++yields_;
  std::vector<std::function<void()>> work;
  work.swap(queued_);
  for (auto& w : work) w();
}

void PortableEventLoop::Post(std::function<void()> work) { queued_.push_back(std::move(work)); }

}  // namespace quorvane::platform::portable
