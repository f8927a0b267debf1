#include "platform/win32/Win32ShellRequests.h"

#include <windows.h>
#include <shlobj.h>

namespace quorvane::platform::win32 {

namespace {

// A window handle as the platform takes it. Handles of windows fit in 32 bits and are widened
// with their sign; the broadcast value is the platform's own.
HWND ToHwnd(std::uint32_t window) {
  if (window == shell::kBroadcast) return HWND_BROADCAST;
  return reinterpret_cast<HWND>(static_cast<INT_PTR>(static_cast<std::int32_t>(window)));
}

std::uint32_t FromHwnd(HWND window) {
  return static_cast<std::uint32_t>(reinterpret_cast<UINT_PTR>(window));
}

}  // namespace

std::uint32_t Win32ShellRequests::FindWindowExA(std::uint32_t parent, std::uint32_t childAfter,
                                                const std::string& className,
                                                const std::optional<std::string>& windowName) {
  return FromHwnd(::FindWindowExA(ToHwnd(parent), ToHwnd(childAfter), className.c_str(),
                                  windowName ? windowName->c_str() : nullptr));
}

std::int32_t Win32ShellRequests::PostMessageA(std::uint32_t window, std::uint32_t message,
                                              std::uintptr_t wParam, std::intptr_t lParam) {
  return ::PostMessageA(ToHwnd(window), message, wParam, lParam) ? 1 : 0;
}

void Win32ShellRequests::SHChangeNotify(std::int32_t eventId, std::uint32_t flags,
                                        std::uintptr_t item1, std::uintptr_t item2) {
  ::SHChangeNotify(eventId, flags, reinterpret_cast<LPCVOID>(item1),
                   reinterpret_cast<LPCVOID>(item2));
}

std::intptr_t Win32ShellRequests::SendMessageTimeoutA(std::uint32_t window, std::uint32_t message,
                                                      std::uintptr_t wParam, std::intptr_t lParam,
                                                      std::uint32_t flags, std::uint32_t timeout,
                                                      std::uintptr_t& result) {
  DWORD_PTR answer = 0;
  const LRESULT sent =
      ::SendMessageTimeoutA(ToHwnd(window), message, wParam, lParam, flags, timeout, &answer);
  result = answer;
  return sent;
}

}  // namespace quorvane::platform::win32
