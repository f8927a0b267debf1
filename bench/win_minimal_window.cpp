// The start-up benchmark's yardstick: a minimal Win32 program that only opens one window, of the
// main window's size and kind (borderless, centred), and keeps it until it is closed.
//
// With "--startup-benchmark <event name>" it sets that event once the window is shown and
// painted, and ends there, as the benchmark build of quorvane.exe does.
#include <windows.h>

#include <cstring>
#include <string>

namespace {

constexpr const char* kClass = "QuorvaneMinimalWindow";
constexpr int kWidth = 750;
constexpr int kHeight = 570;

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_DESTROY) {
    ::PostQuitMessage(0);
    return 0;
  }
  return ::DefWindowProcA(window, message, wParam, lParam);
}

// The event name behind the flag, or the empty text.
std::string BenchmarkEvent(const char* commandLine) {
  constexpr const char* kFlag = "--startup-benchmark";
  const char* flag = commandLine != nullptr ? std::strstr(commandLine, kFlag) : nullptr;
  if (flag == nullptr) return std::string();
  std::string rest(flag + std::strlen(kFlag));
  const std::size_t start = rest.find_first_not_of(' ');
  if (start == std::string::npos) return std::string();
  const std::size_t end = rest.find(' ', start);
  return rest.substr(start, end == std::string::npos ? std::string::npos : end - start);
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE /*previous*/, LPSTR commandLine,
                   int /*showCommand*/) {
  WNDCLASSEXA windowClass{};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = &WindowProcedure;
  windowClass.hInstance = instance;
  windowClass.hCursor = ::LoadCursorA(nullptr, IDC_ARROW);
  windowClass.hbrBackground = ::GetSysColorBrush(COLOR_BTNFACE);
  windowClass.lpszClassName = kClass;
  if (::RegisterClassExA(&windowClass) == 0) return 1;
  const int left = (::GetSystemMetrics(SM_CXSCREEN) - kWidth) / 2;
  const int top = (::GetSystemMetrics(SM_CYSCREEN) - kHeight) / 2;
  HWND window = ::CreateWindowExA(WS_EX_APPWINDOW, kClass, "Minimal window",
                                  WS_POPUP | WS_CLIPCHILDREN | WS_SYSMENU | WS_MINIMIZEBOX, left,
                                  top, kWidth, kHeight, nullptr, nullptr, instance, nullptr);
  if (window == nullptr) return 1;
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
