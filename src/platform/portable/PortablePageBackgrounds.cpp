#include "platform/portable/PortablePageBackgrounds.h"

namespace quorvane::platform::portable {

GdiHandle PortablePageBackgrounds::CreateSolidBrush(std::uint32_t color) {
  const GdiHandle brush = nextBrush_++;
  brushes_[brush] = color & 0xFFFFFFu;
  return brush;
}

std::int32_t PortablePageBackgrounds::DeleteObject(GdiHandle object) {
  return brushes_.erase(object) != 0 ? 1 : 0;
}

std::uint32_t PortablePageBackgrounds::ColorOf(GdiHandle brush) const {
  const auto found = brushes_.find(brush);
  return found == brushes_.end() ? 0 : found->second;
}

std::intptr_t PortablePageBackgrounds::ProcedureAddress(WindowProcedure procedure) {
  if (procedure == nullptr) return 0;
  // One value for each procedure, as a function has one address.
  for (const auto& [value, known] : procedures_) {
    if (const auto* plain = known.target<WindowProcedure>(); plain != nullptr && *plain == procedure) {
      return value;
    }
  }
  const std::intptr_t value = nextProcedure_++;
  procedures_[value] = procedure;
  return value;
}

std::uint32_t PortablePageBackgrounds::MakeWindow(Procedure procedure) {
  const std::intptr_t value = nextProcedure_++;
  procedures_[value] = std::move(procedure);
  const std::uint32_t window = nextWindow_++;
  windows_[window] = value;
  return window;
}

std::intptr_t PortablePageBackgrounds::SetWindowLongPtrA(std::uint32_t window, std::int32_t index,
                                                         std::intptr_t newLong) {
  const auto found = windows_.find(window);
  if (found == windows_.end() || index != window_long::kWndProc) return 0;
  const std::intptr_t previous = found->second;
  found->second = newLong;
  return previous;
}

std::intptr_t PortablePageBackgrounds::CallWindowProcA(std::intptr_t procedure,
                                                       std::uint32_t window,
                                                       std::uint32_t message,
                                                       std::uintptr_t wParam,
                                                       std::intptr_t lParam) {
  const auto found = procedures_.find(procedure);
  if (found == procedures_.end()) return 0;
  // A copy: the procedure may replace procedures while it runs.
  const Procedure call = found->second;
  return call(window, message, wParam, lParam);
}

std::intptr_t PortablePageBackgrounds::SendMessageA(std::uint32_t window, std::uint32_t message,
                                                    std::uintptr_t wParam, std::intptr_t lParam) {
  const auto found = windows_.find(window);
  if (found == windows_.end()) return 0;
  return CallWindowProcA(found->second, window, message, wParam, lParam);
}

std::intptr_t PortablePageBackgrounds::ProcedureOf(std::uint32_t window) const {
  const auto found = windows_.find(window);
  return found == windows_.end() ? 0 : found->second;
}

std::int32_t PortablePageBackgrounds::PaintDesktop(GdiHandle dc) {
  desktopPaints_.push_back(dc);
  return dc != 0 ? 1 : 0;
}

}  // namespace quorvane::platform::portable
