#pragma once
// Pixels of the control model on real device contexts and in real bitmaps.
#include <windows.h>

#include <cstdint>

#include "ui/Controls.h"
#include "ui/win32/Handles.h"

namespace quorvane::ui::win32 {

// Whether any pixel carries an alpha value. Pictures from 24-bit sources carry none, and are
// then taken as opaque.
bool HasAlpha(const Pixels& pixels);

// The pixels as they look over a plain background of `backColor` (0xBBGGRR): each pixel blended
// by its alpha, or, in a picture without alpha, taken as it is. Alpha of the result is 0xFF.
Pixels OverBackground(const Pixels& pixels, std::uint32_t backColor);

// Draws the pixels at (x, y) at their own size, blended over `backColor` as above. Nothing is
// stretched; what lies outside the context's clip is left out by the platform.
void DrawPixels(HDC dc, const Pixels& pixels, int x, int y, std::uint32_t backColor);

// The pixels fitted to `width` by `height`: each pixel the average of the part of the picture it
// covers, weighed by alpha, so that a large drawing keeps its lines when made small.
Pixels Fitted(const Pixels& pixels, int width, int height);

// Draws the pixels at (0, 0) over what `dc` already shows in that place, each pixel blended by
// its alpha; a picture without alpha covers it.
void DrawPixelsOver(HDC dc, const Pixels& pixels);

// A 32-bit device-independent bitmap of `width` by `height` holding the pixels with their alpha,
// for an image list. A picture of another size is fitted to it, pixel by nearest pixel. An
// empty bitmap (no handle) when the system refuses one.
UniqueBitmap MakeBitmap(const Pixels& pixels, int width, int height);

}  // namespace quorvane::ui::win32
