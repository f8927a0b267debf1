#pragma once
// Yielding on the window's message loop.
#include "platform/EventLoop.h"

namespace quorvane::platform::win32 {

class Win32EventLoop final : public EventLoop {
 public:
  void DoEvents() override;
};

}  // namespace quorvane::platform::win32
