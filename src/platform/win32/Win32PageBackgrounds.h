#pragma once
// The appearance page's backgrounds over user32 and gdi32.
#include "platform/PageBackgrounds.h"

namespace quorvane::platform::win32 {

class Win32PageBackgrounds final : public PageBackgrounds {
 public:
  GdiHandle CreateSolidBrush(std::uint32_t color) override;
  std::int32_t DeleteObject(GdiHandle object) override;
  // The system's procedures are called through a small fixed set of real window procedures,
  // one each; a procedure beyond that set gets 0.
  std::intptr_t ProcedureAddress(WindowProcedure procedure) override;
  std::intptr_t SetWindowLongPtrA(std::uint32_t window, std::int32_t index,
                                  std::intptr_t newLong) override;
  std::intptr_t CallWindowProcA(std::intptr_t procedure, std::uint32_t window,
                                std::uint32_t message, std::uintptr_t wParam,
                                std::intptr_t lParam) override;
  std::int32_t PaintDesktop(GdiHandle dc) override;
};

}  // namespace quorvane::platform::win32
