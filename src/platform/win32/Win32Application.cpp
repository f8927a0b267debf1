#include "platform/win32/Win32Application.h"

#include <windows.h>

#include "platform/win32/GdiHandles.h"

namespace quorvane::platform::win32 {

void Win32Application::SetMainWindowVisible(bool visible) {
  if (mainWindow_ == 0) return;
  ::ShowWindow(ToNative<HWND>(mainWindow_), visible ? SW_SHOW : SW_HIDE);
}

void Win32Application::FocusMainWindow() {
  if (mainWindow_ == 0) return;
  HWND window = ToNative<HWND>(mainWindow_);
  ::SetForegroundWindow(window);
  ::SetFocus(window);
}

void Win32Application::UnloadMainWindow() {
  if (mainWindow_ == 0) return;
  HWND window = ToNative<HWND>(mainWindow_);
  mainWindow_ = 0;
  ::DestroyWindow(window);
}

void Win32Application::EndProcess() { ::ExitProcess(0); }

namespace {

std::int16_t gPointer = kDefaultPointer;

constexpr char kWorkingClass[] = "QuorvaneWorking";
constexpr int kWorkingPicture = 173;

LRESULT CALLBACK WorkingProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_NCCREATE: {
      const auto* creation = reinterpret_cast<const CREATESTRUCTA*>(lParam);
      ::SetWindowLongPtrA(window, GWLP_USERDATA,
                          reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
      break;
    }
    case WM_PAINT: {
      PAINTSTRUCT ps{};
      HDC dc = ::BeginPaint(window, &ps);
      auto bitmap = reinterpret_cast<HBITMAP>(::GetWindowLongPtrA(window, GWLP_USERDATA));
      HDC memory = ::CreateCompatibleDC(dc);
      if (memory != nullptr && bitmap != nullptr) {
        BITMAP size{};
        ::GetObjectA(bitmap, sizeof size, &size);
        HGDIOBJ old = ::SelectObject(memory, bitmap);
        ::BitBlt(dc, 0, 0, size.bmWidth, size.bmHeight, memory, 0, 0, SRCCOPY);
        ::SelectObject(memory, old);
      }
      if (memory != nullptr) ::DeleteDC(memory);
      ::EndPaint(window, &ps);
      return 0;
    }
    case WM_SETCURSOR:
      ::SetCursor(::LoadCursorA(nullptr, MAKEINTRESOURCEA(32514)));  // the hourglass
      return TRUE;
    case WM_NCDESTROY: {
      auto bitmap = reinterpret_cast<HBITMAP>(::GetWindowLongPtrA(window, GWLP_USERDATA));
      if (bitmap != nullptr) ::DeleteObject(bitmap);
      ::SetWindowLongPtrA(window, GWLP_USERDATA, 0);
      break;
    }
    default:
      break;
  }
  return ::DefWindowProcA(window, message, wParam, lParam);
}

}  // namespace

std::int16_t MainWindowPointer() { return gPointer; }

void Win32Application::SetMousePointer(std::int16_t pointer) {
  gPointer = pointer;
  ::SetCursor(::LoadCursorA(nullptr, pointer == kHourglassPointer ? MAKEINTRESOURCEA(32514)
                                                                   : MAKEINTRESOURCEA(32512)));
}

void Win32Application::ShowWorking() {
  UnloadWorking();
  HINSTANCE instance = ::GetModuleHandleA(nullptr);
  WNDCLASSEXA type{};
  type.cbSize = sizeof type;
  if (::GetClassInfoExA(instance, kWorkingClass, &type) == 0) {
    type = WNDCLASSEXA{};
    type.cbSize = sizeof type;
    type.lpfnWndProc = WorkingProcedure;
    type.hInstance = instance;
    type.hCursor = ::LoadCursorA(nullptr, MAKEINTRESOURCEA(32514));
    type.hbrBackground = ::GetSysColorBrush(COLOR_WINDOW);
    type.lpszClassName = kWorkingClass;
    ::RegisterClassExA(&type);
  }
  auto bitmap = static_cast<HBITMAP>(
      ::LoadImageA(instance, MAKEINTRESOURCEA(kWorkingPicture), IMAGE_BITMAP, 0, 0, 0));
  BITMAP size{};
  if (bitmap == nullptr || ::GetObjectA(bitmap, sizeof size, &size) == 0) {
    size.bmWidth = 260;
    size.bmHeight = 80;
  }
  HWND owner = ToNative<HWND>(mainWindow_);
  RECT over{0, 0, ::GetSystemMetrics(SM_CXSCREEN), ::GetSystemMetrics(SM_CYSCREEN)};
  if (owner != nullptr && ::IsWindowVisible(owner) != 0) ::GetWindowRect(owner, &over);
  RECT frame{0, 0, size.bmWidth, size.bmHeight};
  ::AdjustWindowRectEx(&frame, WS_POPUP | WS_BORDER, FALSE, WS_EX_TOOLWINDOW);
  const int width = frame.right - frame.left;
  const int height = frame.bottom - frame.top;
  HWND window = ::CreateWindowExA(
      WS_EX_TOOLWINDOW, kWorkingClass, "FrmWorking", WS_POPUP | WS_BORDER,
      (over.left + over.right - width) / 2, (over.top + over.bottom - height) / 2, width, height,
      owner, nullptr, instance, bitmap);
  if (window == nullptr) {
    if (bitmap != nullptr) ::DeleteObject(bitmap);
    return;
  }
  working_ = FromNative(window);
  ::ShowWindow(window, SW_SHOWNOACTIVATE);
  ::UpdateWindow(window);
}

void Win32Application::UnloadWorking() {
  if (working_ == 0) return;
  HWND window = ToNative<HWND>(working_);
  working_ = 0;
  ::DestroyWindow(window);
}

}  // namespace quorvane::platform::win32
