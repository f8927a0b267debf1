#pragma once
// The application through user32 and kernel32, on the main window whose handle the window's
// binding sets once it made the window.
#include <cstdint>

#include "platform/Application.h"

namespace quorvane::platform::win32 {

class Win32Application final : public Application {
 public:
  // The main window's handle; 0 until the binding made the window, and then every request on
  // the window does nothing.
  void SetMainWindow(std::uint32_t hWnd) { mainWindow_ = hWnd; }
  std::uint32_t MainWindow() const { return mainWindow_; }

  // ShowWindow with SW_SHOW or SW_HIDE.
  void SetMainWindowVisible(bool visible) override;
  // SetForegroundWindow, then SetFocus.
  void FocusMainWindow() override;
  // DestroyWindow; the handle is forgotten.
  void UnloadMainWindow() override;
  // ExitProcess(0).
  void EndProcess() override;
  // Keeps the pointer for the window's binding, which answers WM_SETCURSOR with it, and shows
  // it at once.
  void SetMousePointer(std::int16_t pointer) override;

 private:
  std::uint32_t mainWindow_ = 0;
};

// The pointer the main window shows now: kDefaultPointer or kHourglassPointer.
std::int16_t MainWindowPointer();

}  // namespace quorvane::platform::win32
