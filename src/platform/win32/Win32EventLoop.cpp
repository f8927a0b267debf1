#include "platform/win32/Win32EventLoop.h"

namespace quorvane::platform::win32 {

namespace {

MessagePreview gPreview = nullptr;

}  // namespace

void SetMessagePreview(MessagePreview preview) { gPreview = preview; }

void Win32EventLoop::DoEvents() {
  MSG msg;
  while (::PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
    if (msg.message == WM_QUIT) {
      ::PostQuitMessage(static_cast<int>(msg.wParam));  // leave it for the main loop
      return;
    }
    if (gPreview != nullptr && gPreview(msg)) continue;
    ::TranslateMessage(&msg);
    ::DispatchMessageA(&msg);
  }
}

}  // namespace quorvane::platform::win32
