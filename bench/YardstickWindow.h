#pragma once
// What the start-up benchmark's yardstick programs share: a window procedure that ends the
// program with its window, and the "--startup-benchmark <event name>" flag, whose event is set
// once the window is shown and painted.
#include <windows.h>

#include <cstring>
#include <string>

namespace quorvane::bench {

inline LRESULT CALLBACK YardstickWindowProcedure(HWND window, UINT message, WPARAM wParam,
                                                 LPARAM lParam) {
  if (message == WM_DESTROY) {
    ::PostQuitMessage(0);
    return 0;
  }
  return ::DefWindowProcA(window, message, wParam, lParam);
}

// The event name behind the flag, or the empty text.
inline std::string BenchmarkEvent(const char* commandLine) {
  constexpr const char* kFlag = "--startup-benchmark";
  const char* flag = commandLine != nullptr ? std::strstr(commandLine, kFlag) : nullptr;
  if (flag == nullptr) return std::string();
  std::string rest(flag + std::strlen(kFlag));
  const std::size_t start = rest.find_first_not_of(' ');
  if (start == std::string::npos) return std::string();
  const std::size_t end = rest.find(' ', start);
  return rest.substr(start, end == std::string::npos ? std::string::npos : end - start);
}

// The window of the main window's size and kind (borderless, centred), of a class registered here.
inline HWND MakeYardstickWindow(HINSTANCE instance, const char* className, const char* title) {
  constexpr int kWidth = 750;
  constexpr int kHeight = 570;
  WNDCLASSEXA windowClass{};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = &YardstickWindowProcedure;
  windowClass.hInstance = instance;
  windowClass.hCursor = ::LoadCursorA(nullptr, IDC_ARROW);
  windowClass.hbrBackground = ::GetSysColorBrush(COLOR_BTNFACE);
  windowClass.lpszClassName = className;
  if (::RegisterClassExA(&windowClass) == 0) return nullptr;
  const int left = (::GetSystemMetrics(SM_CXSCREEN) - kWidth) / 2;
  const int top = (::GetSystemMetrics(SM_CYSCREEN) - kHeight) / 2;
  return ::CreateWindowExA(WS_EX_APPWINDOW, className, title,
                           WS_POPUP | WS_CLIPCHILDREN | WS_SYSMENU | WS_MINIMIZEBOX, left, top,
                           kWidth, kHeight, nullptr, nullptr, instance, nullptr);
}

// Shows and paints the window; then, with the flag, sets its event and ends the window, or
// without it keeps the window until it is closed. The program's exit code.
inline int ShowYardstick(HWND window, const char* commandLine) {
  ::ShowWindow(window, SW_SHOW);
  ::RedrawWindow(window, nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
  const std::string event = BenchmarkEvent(commandLine);
  if (!event.empty()) {
    HANDLE shown = ::OpenEventA(EVENT_MODIFY_STATE, FALSE, event.c_str());
    if (shown != nullptr) {
      ::SetEvent(shown);
      ::CloseHandle(shown);
    }
    ::DestroyWindow(window);
    return 0;
  }
  MSG message{};
  while (::GetMessageA(&message, nullptr, 0, 0) > 0) {
    ::TranslateMessage(&message);
    ::DispatchMessageA(&message);
  }
  return static_cast<int>(message.wParam);
}

}  // namespace quorvane::bench
