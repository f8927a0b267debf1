// The start-up benchmark's yardstick: a minimal Win32 program that only opens one window, of the
// main window's size and kind (borderless, centred), and keeps it until it is closed.
//
// With "--startup-benchmark <event name>" it sets that event once the window is shown and
// painted, and ends there, as the benchmark build of quorvane.exe does.
#include <windows.h>

#include "YardstickWindow.h"

int WINAPI WinMain(HINSTANCE instance, HINSTANCE /*previous*/, LPSTR commandLine,
                   int /*showCommand*/) {
  HWND window =
      quorvane::bench::MakeYardstickWindow(instance, "QuorvaneMinimalWindow", "Minimal window");
  if (window == nullptr) return 1;
  return quorvane::bench::ShowYardstick(window, commandLine);
}
