#pragma once
// Without a window system there is nothing queued: a yield runs what tests queued for it and
// counts itself, so tests can see where a routine yields.
#include <functional>
#include <vector>

#include "platform/EventLoop.h"

namespace quorvane::platform::portable {

class PortableEventLoop final : public EventLoop {
 public:
  void DoEvents() override;

  // Runs at the next yield, once.
  void Post(std::function<void()> work);
  int Yields() const { return yields_; }

 private:
  std::vector<std::function<void()>> queued_;
  int yields_ = 0;
};

}  // namespace quorvane::platform::portable
