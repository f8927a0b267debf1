#pragma once
// What the system asks of the application as a whole: showing and hiding its main window,
// unloading that window, and ending the process.
namespace quorvane::platform {

class Application {
 public:
  virtual ~Application() = default;

  // Shows or hides the main window. Its load routine does not run again for either.
  virtual void SetMainWindowVisible(bool visible) = 0;
  // Brings the main window to the front and gives it the keyboard focus.
  virtual void FocusMainWindow() = 0;
  // Unloads the main window: its real window is destroyed.
  virtual void UnloadMainWindow() = 0;
  // Ends the process at once, without unloading anything that is still loaded. On the platform
  // it does not return.
  virtual void EndProcess() = 0;
};

}  // namespace quorvane::platform
