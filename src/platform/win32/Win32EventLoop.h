#pragma once
// Yielding on the window's message loop.
#include <windows.h>

#include "platform/EventLoop.h"

namespace quorvane::platform::win32 {

// What looks at each message a yield takes, before it is translated and dispatched: true when it
// took the message, which then goes no further. The window binding sets it, so that a key that a
// form previews reaches the form also while one of the form's routines yields.
using MessagePreview = bool (*)(const MSG& message);
void SetMessagePreview(MessagePreview preview);

class Win32EventLoop final : public EventLoop {
 public:
  void DoEvents() override;
};

}  // namespace quorvane::platform::win32
