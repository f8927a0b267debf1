#include "app/MainWindow.h"

#include <stdexcept>
#include <string>

#include "app/Resources.h"

namespace quorvane::app {

namespace {

std::runtime_error SystemFailure(const std::string& what) {
  return std::runtime_error(what + " (system error " + std::to_string(::GetLastError()) + ")");
}

}  // namespace

MainWindow::MainWindow(HINSTANCE instance) : instance_(instance) {}

MainWindow::~MainWindow() {
  if (window_ != nullptr) {
    HWND window = window_;
    window_ = nullptr;
    ::SetWindowLongPtrA(window, GWLP_USERDATA, 0);
    ::DestroyWindow(window);
  }
}

void MainWindow::RegisterClassOnce() {
  WNDCLASSEXA existing{};
  existing.cbSize = sizeof existing;
  if (::GetClassInfoExA(instance_, kMainWindowClass, &existing) != 0) {
    return;
  }
  WNDCLASSEXA windowClass{};
  windowClass.cbSize = sizeof windowClass;
  windowClass.style = CS_HREDRAW | CS_VREDRAW;
  windowClass.lpfnWndProc = &MainWindow::WindowProcedure;
  windowClass.hInstance = instance_;
  windowClass.hIcon = ::LoadIconA(instance_, MAKEINTRESOURCEA(QUORVANE_PROGRAM_ICON));
  windowClass.hIconSm = static_cast<HICON>(
      ::LoadImageA(instance_, MAKEINTRESOURCEA(QUORVANE_PROGRAM_ICON), IMAGE_ICON,
                   ::GetSystemMetrics(SM_CXSMICON), ::GetSystemMetrics(SM_CYSMICON), LR_SHARED));
  windowClass.hCursor = ::LoadCursorA(nullptr, IDC_ARROW);
  windowClass.hbrBackground = ::GetSysColorBrush(COLOR_BTNFACE);
  windowClass.lpszClassName = kMainWindowClass;
  if (::RegisterClassExA(&windowClass) == 0) {
    throw SystemFailure("The main window's class could not be registered");
  }
}

void MainWindow::Load() {
  if (window_ != nullptr) {
    return;
  }
  RegisterClassOnce();
  const int left = (::GetSystemMetrics(SM_CXSCREEN) - kMainWindowWidth) / 2;
  const int top = (::GetSystemMetrics(SM_CYSCREEN) - kMainWindowHeight) / 2;
  HWND window = ::CreateWindowExA(WS_EX_APPWINDOW, kMainWindowClass, kMainWindowText,
                                  WS_POPUP | WS_CLIPCHILDREN, left, top, kMainWindowWidth,
                                  kMainWindowHeight, nullptr, nullptr, instance_, this);
  if (window == nullptr) {
    throw SystemFailure("The main window could not be created");
  }
  window_ = window;
}

void MainWindow::Show() {
  Load();
  ::ShowWindow(window_, SW_SHOW);
  ::UpdateWindow(window_);
}

LRESULT CALLBACK MainWindow::WindowProcedure(HWND window, UINT message, WPARAM wParam,
                                             LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* creation = reinterpret_cast<const CREATESTRUCTA*>(lParam);
    ::SetWindowLongPtrA(window, GWLP_USERDATA,
                        reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
  }
  auto* self = reinterpret_cast<MainWindow*>(::GetWindowLongPtrA(window, GWLP_USERDATA));
  if (self == nullptr) {
    return ::DefWindowProcA(window, message, wParam, lParam);
  }
  return self->Handle(window, message, wParam, lParam);
}

LRESULT MainWindow::Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CLOSE:
      // A close request unloads the window, and that ends the process.
      ::DestroyWindow(window);
      return 0;
    case WM_DESTROY:
      window_ = nullptr;
      ::SetWindowLongPtrA(window, GWLP_USERDATA, 0);
      ::PostQuitMessage(0);
      return 0;
    default:
      return ::DefWindowProcA(window, message, wParam, lParam);
  }
}

int RunMessageLoop() {
  MSG message{};
  for (;;) {
    const BOOL result = ::GetMessageA(&message, nullptr, 0, 0);
    if (result == 0) {
      return static_cast<int>(message.wParam);
    }
    if (result == -1) {
      return 1;
    }
    ::TranslateMessage(&message);
    ::DispatchMessageA(&message);
  }
}

}  // namespace quorvane::app
