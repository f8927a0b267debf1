#pragma once
// The notification as a small window of the program's own in a corner of the work area, beside
// the notification area: a title, the text, and the picture at its left when there is one. It
// rises in steps, stays a few seconds and falls again, or goes at once on a click. It never takes
// the activation or the focus. Its settings are read as NotificationPlan.h says. The window is
// of the class "QuorvaneNotification", and its text is the notification's text.
#include <windows.h>

#include <cstdint>
#include <map>
#include <string>

#include "base/Pixels.h"
#include "platform/Notification.h"
#include "platform/NotificationPlan.h"

namespace quorvane::platform::win32 {

class Win32Notification final : public Notification {
 public:
  Win32Notification() = default;
  ~Win32Notification() override;
  Win32Notification(const Win32Notification&) = delete;
  Win32Notification& operator=(const Win32Notification&) = delete;

  void SetOption(std::int32_t number, std::int32_t value) override;
  void SetPicture(const Pixels& picture) override;
  void SetText(const std::string& text) override;
  // Shows the window anew with the text and picture set last; one still up is replaced.
  void Show() override;

  // The window while it is up; null otherwise.
  HWND Window() const { return window_; }

 private:
  enum class Phase { Rising, Staying, Falling };

  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT Message(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  void Measure(int dpi);
  void Place();
  void Paint(HDC dc);
  void Close();

  std::map<std::int32_t, std::int32_t> options_;
  Pixels picture_;
  std::string text_;

  // What the window shows, fixed at Show.
  HWND window_ = nullptr;
  HWND owner_ = nullptr;  // hidden, made with the first window and kept
  notification::Plan plan_;
  Pixels shownPicture_;
  std::string shownText_;
  int dpi_ = 96;
  int width_ = 0;
  int height_ = 0;
  int step_ = 0;
  Phase phase_ = Phase::Rising;
};

}  // namespace quorvane::platform::win32
