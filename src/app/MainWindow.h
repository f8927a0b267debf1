#pragma once
// FrmMain as the entry uses it: its real windows, made by the binding, and its load routine.
//
// The window closes in these ways:
//   - The close of the system menu (WM_SYSCOMMAND's SC_CLOSE, Alt+F4): asks Form_QueryUnload
//     with unload mode 0, which refuses it; nothing happens.
//   - WM_CLOSE from another program (the task manager's): unload mode 3, not refused; the
//     window is hidden and destroyed, and the process ends.
//   - WM_ENDSESSION at a log-off or shutdown: unload mode 2, not refused; the window is hidden
//     and destroyed, and the process ends.
//   - The registered message "Quorvane.Exit", from this process or another one: runs
//     mnuExit_Click, the tray menu's "Exit", which removes the tray icon and ends the process.
//     Programs that drive Quorvane from outside (the end-to-end test, `make run`) end it so.
//   - The form's own routines (PicClose, the tray menu) through the Application port.
#include <windows.h>

#include <cstdint>

#include "core/MainModule.h"
#include "ui/win32/FormWindow.h"

namespace quorvane {
class FrmMain;
}

namespace quorvane::app {

inline constexpr const char* kMainWindowText = "Quorvane";
// The registered message that ends the program as the tray menu's "Exit" does.
inline constexpr const char* kExitMessage = "Quorvane.Exit";
// Runs the tray menu's "Change Wallpaper" (mnuChangeWallpaper_Click), for drivers from outside.
inline constexpr const char* kChangeWallpaperMessage = "Quorvane.ChangeWallpaper";

class MainWindow final : public core::MainForm {
 public:
  MainWindow(HINSTANCE instance, FrmMain& form);
  ~MainWindow() override;
  MainWindow(const MainWindow&) = delete;
  MainWindow& operator=(const MainWindow&) = delete;

  // Creates the windows, hidden, and runs the form's load routine; once only.
  void Load() override;
  // Load, then shows the window, painted.
  void Show() override;

  // Whether the window exists: from Load until it is destroyed.
  bool IsLoaded() const { return window_.IsCreated(); }
  // How long the load routine took, in milliseconds.
  double LoadMilliseconds() const { return loadMilliseconds_; }
  ui::win32::FormWindow& Window() { return window_; }

 private:
  FrmMain& form_;
  ui::win32::FormWindow window_;
  bool loaded_ = false;
  double loadMilliseconds_ = 0.0;
};

// Dispatches the thread's messages until the quit message comes; returns its exit code.
int RunMessageLoop();

}  // namespace quorvane::app
