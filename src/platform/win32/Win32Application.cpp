#include "platform/win32/Win32Application.h"

#include <windows.h>

#include "platform/win32/GdiHandles.h"

namespace quorvane::platform::win32 {

void Win32Application::SetMainWindowVisible(bool visible) {
  if (mainWindow_ == 0) return;
  ::ShowWindow(ToNative<HWND>(mainWindow_), visible ? SW_SHOW : SW_HIDE);
}

void Win32Application::FocusMainWindow() {
  if (mainWindow_ == 0) return;
  HWND window = ToNative<HWND>(mainWindow_);
  ::SetForegroundWindow(window);
  ::SetFocus(window);
}

void Win32Application::UnloadMainWindow() {
  if (mainWindow_ == 0) return;
  HWND window = ToNative<HWND>(mainWindow_);
  mainWindow_ = 0;
  ::DestroyWindow(window);
}

void Win32Application::EndProcess() { ::ExitProcess(0); }

namespace {

std::int16_t gPointer = kDefaultPointer;

}  // namespace

std::int16_t MainWindowPointer() { return gPointer; }

void Win32Application::SetMousePointer(std::int16_t pointer) {
  gPointer = pointer;
  ::SetCursor(::LoadCursorA(nullptr, pointer == kHourglassPointer ? MAKEINTRESOURCEA(32514)
                                                                   : MAKEINTRESOURCEA(32512)));
}

}  // namespace quorvane::platform::win32
