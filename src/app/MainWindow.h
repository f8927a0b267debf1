#pragma once
// The main window of quorvane.exe: one top-level, borderless window, centred on the screen, found
// from outside by its class "QuorvaneMain" and its text "Quorvane". It lives as long as the
// process; destroying it ends the message loop.
#include <windows.h>

#include "core/MainModule.h"

namespace quorvane::app {

inline constexpr const char* kMainWindowClass = "QuorvaneMain";
inline constexpr const char* kMainWindowText = "Quorvane";
inline constexpr int kMainWindowWidth = 676;
inline constexpr int kMainWindowHeight = 480;

class MainWindow final : public core::MainForm {
 public:
  explicit MainWindow(HINSTANCE instance);
  ~MainWindow() override;
  MainWindow(const MainWindow&) = delete;
  MainWindow& operator=(const MainWindow&) = delete;

  // Creates the window, hidden. Fails with std::runtime_error when the system refuses it.
  void Load() override;
  // Creates the window when needed, then shows it.
  void Show() override;

  // Whether the window exists: from Load until it is destroyed.
  bool IsLoaded() const { return window_ != nullptr; }

 private:
  static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam,
                                          LPARAM lParam);
  LRESULT Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  void RegisterClassOnce();

  HINSTANCE instance_;
  HWND window_ = nullptr;
};

// Dispatches the thread's messages until the quit message comes; returns its exit code.
int RunMessageLoop();

}  // namespace quorvane::app
