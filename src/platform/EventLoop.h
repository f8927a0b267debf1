#pragma once
// Yielding to the event loop: queued messages, timers and handlers run before the call returns.

namespace quorvane::platform {

class EventLoop {
 public:
  virtual ~EventLoop() = default;
  virtual void DoEvents() = 0;
};

}  // namespace quorvane::platform
