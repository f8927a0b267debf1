#pragma once
// The two backgrounds of the appearance page that come from the platform itself: the slider's,
// which its parent window answers with a solid brush once that window's procedure is replaced,
// and the preview's, which is the desktop's own background painted on a context.
//
// Handles are the 32-bit values the system keeps for windows, device contexts and drawing
// objects (0 is none). A window procedure is a pointer-sized value, as the platform's window
// long of a 64-bit program holds it.
#include <cstdint>

#include "platform/DeviceContexts.h"

namespace quorvane::platform {

// A window procedure of the system: window, message, wParam, lParam, and its result.
using WindowProcedure = std::intptr_t (*)(std::uint32_t window, std::uint32_t message,
                                          std::uintptr_t wParam, std::intptr_t lParam);

namespace window_long {
// The index of a window's procedure among its window longs.
inline constexpr std::int32_t kWndProc = -4;
}  // namespace window_long

namespace window_message {
inline constexpr std::uint32_t kDestroy = 0x0002;
// A static control, or a trackbar, asks its parent for the brush of its background: wParam is
// its device context, lParam its window.
inline constexpr std::uint32_t kCtlColorStatic = 0x0138;
}  // namespace window_message

class PageBackgrounds {
 public:
  virtual ~PageBackgrounds() = default;

  // A solid brush of the colour 0xBBGGRR; 0 when the platform gives none.
  virtual GdiHandle CreateSolidBrush(std::uint32_t color) = 0;
  // Deletes a drawing object; non-zero on success, 0 for a handle that is none (any more).
  virtual std::int32_t DeleteObject(GdiHandle object) = 0;

  // The value by which the platform calls `procedure` as a window procedure: what
  // SetWindowLongPtrA takes for kWndProc.
  virtual std::intptr_t ProcedureAddress(WindowProcedure procedure) = 0;
  // Sets a window long of `window` and gives the value it held: for kWndProc the window's
  // procedure until now. 0 when the window is none or the index is not one of it.
  virtual std::intptr_t SetWindowLongPtrA(std::uint32_t window, std::int32_t index,
                                          std::intptr_t newLong) = 0;
  // Passes a message on to a procedure that SetWindowLongPtrA gave, and gives its result.
  virtual std::intptr_t CallWindowProcA(std::intptr_t procedure, std::uint32_t window,
                                        std::uint32_t message, std::uintptr_t wParam,
                                        std::intptr_t lParam) = 0;

  // Paints the desktop's own background (its pattern or colour and its wallpaper) on `dc`.
  // Non-zero on success.
  virtual std::int32_t PaintDesktop(GdiHandle dc) = 0;
};

}  // namespace quorvane::platform
