#pragma once
// Owners of the handles the binding makes: the platform's owners, each closed once, by its owner.
#include "platform/win32/Handles.h"

namespace quorvane::ui::win32 {

using platform::win32::UniqueHandle;

using platform::win32::UniqueBitmap;
using platform::win32::UniqueBrush;
using platform::win32::UniqueFont;
using platform::win32::UniqueImageList;
using platform::win32::UniqueMemoryDC;

}  // namespace quorvane::ui::win32
