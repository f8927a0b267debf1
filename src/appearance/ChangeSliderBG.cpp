#include "appearance/ChangeSliderBG.h"

#include "core/FrmMain.h"
#include "core/Regimes.h"
#include "platform/PageBackgrounds.h"
#include "platform/Service.h"

namespace quorvane {

std::uint32_t gSliderHwnd = 0;
std::intptr_t gSliderOldProc = 0;
platform::GdiHandle gSliderBrush = 0;

namespace {

platform::PageBackgrounds& Platform() { return platform::Use<platform::PageBackgrounds>(); }

}  // namespace

void CreateSliderBrush(std::uint32_t& color, bool& recreate) {
  if (!recreate && gSliderBrush == 0) {
    gSliderBrush = Platform().CreateSolidBrush(color);
    return;
  }
  // Whatever brush there is goes first, so that none is left behind.
  DeleteSliderBrush();
  gSliderBrush = Platform().CreateSolidBrush(color);
}

void DeleteSliderBrush() {
  if (gSliderBrush == 0) return;
  Platform().DeleteObject(gSliderBrush);
  gSliderBrush = 0;
}

void SubclassSliderParent(std::uint32_t& window) {
  core::ResumeEach([&] {
    auto& backgrounds = Platform();
    gSliderOldProc = backgrounds.SetWindowLongPtrA(window, platform::window_long::kWndProc,
                                                   backgrounds.ProcedureAddress(&SliderParentProc));
  });
}

void UnsubclassSliderParent(std::uint32_t& window) {
  if (gSliderOldProc == 0) return;
  Platform().SetWindowLongPtrA(window, platform::window_long::kWndProc, gSliderOldProc);
  gSliderOldProc = 0;
}

std::intptr_t SliderParentProc(std::uint32_t hWnd, std::uint32_t uMsg, std::uintptr_t wParam,
                               std::intptr_t lParam) {
  // The platform calls this from its message dispatch: whatever fails inside is caught, and the
  // message goes on to the old procedure if it can. The old procedure is kept aside first, as
  // the destruction below clears the global.
  const std::intptr_t old = gSliderOldProc;
  const auto passOn = [&] {
    return core::AsResult(
        core::kAnything,
        [&] { return Platform().CallWindowProcA(old, hWnd, uMsg, wParam, lParam); },
        std::intptr_t{0});
  };
  const auto answer = [&]() -> std::intptr_t {
    // Picture1's window is asked for anew with every message.
    if (hWnd != MainWindow().Picture1.hWnd) return passOn();
    switch (uMsg) {
      case platform::window_message::kCtlColorStatic:
        if (static_cast<std::uint32_t>(lParam) == gSliderHwnd && gSliderBrush != 0) {
          return static_cast<std::intptr_t>(gSliderBrush);
        }
        return passOn();
      case platform::window_message::kDestroy: {
        // Not passed on: the brush and the subclass go, and the answer is 0.
        if (gSliderBrush != 0) DeleteSliderBrush();
        std::uint32_t window = hWnd;
        UnsubclassSliderParent(window);
        return 0;
      }
      default:
        return passOn();
    }
  };
  std::intptr_t result = 0;
  const bool answered = core::AsResult(
      core::kAnything,
      [&] {
        result = answer();
        return true;
      },
      false);
  if (!answered) result = passOn();
  return result;
}

}  // namespace quorvane
