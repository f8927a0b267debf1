#include "platform/win32/Win32EventLoop.h"

#include <windows.h>

namespace quorvane::platform::win32 {

void Win32EventLoop::DoEvents() {
  MSG msg;
  while (::PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
    if (msg.message == WM_QUIT) {
      ::PostQuitMessage(static_cast<int>(msg.wParam));  // leave it for the main loop
      return;
    }
    ::TranslateMessage(&msg);
    ::DispatchMessageA(&msg);
  }
}

}  // namespace quorvane::platform::win32
