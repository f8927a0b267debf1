#include "platform/win32/Win32PageBackgrounds.h"

#include <windows.h>

#include <array>
#include <cstddef>

#include "platform/win32/GdiHandles.h"

namespace quorvane::platform::win32 {

namespace {

// The system's procedures that real window procedures stand for, by slot.
constexpr std::size_t kSlots = 4;
std::array<WindowProcedure, kSlots> gProcedures{};

// The real window procedure of slot N: it hands the message to the system's procedure. That
// procedure keeps its failures to itself; should one come out all the same, it must not cross
// the platform's message dispatch, and the message gets the default handling.
template <std::size_t N>
LRESULT CALLBACK Trampoline(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  try {
    return gProcedures[N](FromNative(window), message, wParam, lParam);
  } catch (...) {
    return ::DefWindowProcA(window, message, wParam, lParam);
  }
}

constexpr std::array<WNDPROC, kSlots> kTrampolines{&Trampoline<0>, &Trampoline<1>,
                                                   &Trampoline<2>, &Trampoline<3>};

}  // namespace

GdiHandle Win32PageBackgrounds::CreateSolidBrush(std::uint32_t color) {
  return FromNative(::CreateSolidBrush(color & 0xFFFFFFu));
}

std::int32_t Win32PageBackgrounds::DeleteObject(GdiHandle object) {
  return ::DeleteObject(ToNative<HGDIOBJ>(object));
}

std::intptr_t Win32PageBackgrounds::ProcedureAddress(WindowProcedure procedure) {
  if (procedure == nullptr) return 0;
  for (std::size_t i = 0; i < kSlots; ++i) {
    if (gProcedures[i] == nullptr) gProcedures[i] = procedure;
    if (gProcedures[i] == procedure) return reinterpret_cast<std::intptr_t>(kTrampolines[i]);
  }
  return 0;
}

std::intptr_t Win32PageBackgrounds::SetWindowLongPtrA(std::uint32_t window, std::int32_t index,
                                                      std::intptr_t newLong) {
  // This is a 64-bit program: a window procedure is a pointer, which the 32-bit window long
  // calls would cut in half. The pointer-sized calls hold the whole of it.
  return ::SetWindowLongPtrA(ToNative<HWND>(window), index, newLong);
}

std::intptr_t Win32PageBackgrounds::CallWindowProcA(std::intptr_t procedure, std::uint32_t window,
                                                    std::uint32_t message, std::uintptr_t wParam,
                                                    std::intptr_t lParam) {
  if (procedure == 0) return 0;
  return ::CallWindowProcA(reinterpret_cast<WNDPROC>(procedure), ToNative<HWND>(window), message,
                           wParam, lParam);
}

std::int32_t Win32PageBackgrounds::PaintDesktop(GdiHandle dc) {
  HDC context = ToNative<HDC>(dc);
  const BOOL painted = ::PaintDesktop(context);
  // PaintDesktop fills with the desktop window's background brush, then draws the wallpaper. A
  // desktop whose window has no brush of its own (Wine's virtual desktop, which its explorer
  // paints) gets no colour that way: the desktop's colour is filled in instead.
  if (::GetClassLongPtrA(::GetDesktopWindow(), GCLP_HBRBACKGROUND) == 0) {
    RECT area{};
    if (::GetClipBox(context, &area) != ERROR) {
      ::FillRect(context, &area, ::GetSysColorBrush(COLOR_BACKGROUND));
    }
  }
  return painted;
}

}  // namespace quorvane::platform::win32
