#pragma once
// The appearance page's backgrounds without a screen: brushes that are counted until deleted,
// and windows that are a procedure each, made by tests, with the platform's rules for replacing
// a window's procedure and passing messages on. Painting the desktop's background is written
// down for tests to read.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include "platform/PageBackgrounds.h"

namespace quorvane::platform::portable {

class PortablePageBackgrounds final : public PageBackgrounds {
 public:
  using Procedure = std::function<std::intptr_t(std::uint32_t window, std::uint32_t message,
                                                std::uintptr_t wParam, std::intptr_t lParam)>;

  GdiHandle CreateSolidBrush(std::uint32_t color) override;
  std::int32_t DeleteObject(GdiHandle object) override;
  std::intptr_t ProcedureAddress(WindowProcedure procedure) override;
  std::intptr_t SetWindowLongPtrA(std::uint32_t window, std::int32_t index,
                                  std::intptr_t newLong) override;
  // An unknown procedure value gives 0, as a call nobody answers.
  std::intptr_t CallWindowProcA(std::intptr_t procedure, std::uint32_t window,
                                std::uint32_t message, std::uintptr_t wParam,
                                std::intptr_t lParam) override;
  std::int32_t PaintDesktop(GdiHandle dc) override;

  // A new window whose procedure is `procedure`; its handle.
  std::uint32_t MakeWindow(Procedure procedure);
  // Sends a message to a window: its present procedure answers. 0 for a window that is none.
  std::intptr_t SendMessageA(std::uint32_t window, std::uint32_t message, std::uintptr_t wParam,
                             std::intptr_t lParam);
  // The value of a window's present procedure; 0 for a window that is none.
  std::intptr_t ProcedureOf(std::uint32_t window) const;

  // Brushes made and not yet deleted, and the colour of one of them (0 for none).
  std::size_t LiveBrushes() const { return brushes_.size(); }
  std::uint32_t ColorOf(GdiHandle brush) const;
  // Every context the desktop's background was painted on, in order.
  const std::vector<GdiHandle>& DesktopPaints() const { return desktopPaints_; }

 private:
  std::map<GdiHandle, std::uint32_t> brushes_;
  GdiHandle nextBrush_ = 0x1A00;
  std::map<std::intptr_t, Procedure> procedures_;  // by the value the platform calls them by
  std::intptr_t nextProcedure_ = 0x7000;
  std::map<std::uint32_t, std::intptr_t> windows_;  // each window's present procedure
  std::uint32_t nextWindow_ = 0x30000;
  std::vector<GdiHandle> desktopPaints_;
};

}  // namespace quorvane::platform::portable
