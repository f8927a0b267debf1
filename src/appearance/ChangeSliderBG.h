#pragma once
// The module ChangeSliderBG: the appearance page's slider stands on a white page, but its control
// paints its background in the dialog colour. Instead of drawing the slider itself, the program
// replaces the window procedure of the slider's parent, Picture1, and answers the slider's
// colour request with a solid brush of its own. Nothing else in the program is subclassed.
//
// Every step tests its global first, so each is safe to repeat, and safe when nothing was made.
#include <cstdint>

#include "platform/DeviceContexts.h"

namespace quorvane {

// The slider's window, set by the load of the main window.
extern std::uint32_t gSliderHwnd;
// The replaced window procedure of Picture1; 0 while no subclassing is active. A procedure is
// a pointer, so the value is pointer-sized in this 64-bit program.
extern std::intptr_t gSliderOldProc;
// The solid brush of the slider's background; 0 when there is none.
extern platform::GdiHandle gSliderBrush;

// Leaves a fresh brush of `color` (0xBBGGRR) in gSliderBrush. Without `recreate` and with no
// brush yet, the brush is simply made; in any other case the one there is deleted first.
void CreateSliderBrush(std::uint32_t& color, bool& recreate);
// Deletes gSliderBrush if there is one, and clears it.
void DeleteSliderBrush();
// Replaces the window procedure of `window` (Picture1's) with SliderParentProc, keeping the old
// one in gSliderOldProc. Failures inside are swallowed.
void SubclassSliderParent(std::uint32_t& window);
// Puts gSliderOldProc back as the procedure of `window`, if it is set, and clears it.
void UnsubclassSliderParent(std::uint32_t& window);
// The replacement procedure of Picture1: the slider's colour request is answered with
// gSliderBrush, the window's destruction takes brush and subclass back, and every other message
// goes on to the old procedure. Nothing that fails inside leaves it.
std::intptr_t SliderParentProc(std::uint32_t hWnd, std::uint32_t uMsg, std::uintptr_t wParam,
                               std::intptr_t lParam);

}  // namespace quorvane
