#pragma once
// What the system asks of the application as a whole: showing and hiding its main window,
// unloading that window, its mouse pointer, and ending the process. (Its other forms, FrmWorking
// among them, are shown and unloaded through the Forms port.)
#include <cstdint>

namespace quorvane::platform {

// The main window's mouse pointers the system uses.
inline constexpr std::int16_t kDefaultPointer = 0;
inline constexpr std::int16_t kHourglassPointer = 11;

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
  // The pointer over the main window and its controls: kDefaultPointer or kHourglassPointer.
  virtual void SetMousePointer(std::int16_t pointer) = 0;
};

}  // namespace quorvane::platform
