#pragma once
// Owners of the handles the binding makes: each is closed once, by its owner.
#include <windows.h>
#include <commctrl.h>

#include "platform/win32/UniqueHandle.h"

namespace quorvane::ui::win32 {

using platform::win32::UniqueHandle;

inline void CloseGdiObject(HGDIOBJ object) { ::DeleteObject(object); }
inline void CloseFont(HFONT font) { CloseGdiObject(font); }
inline void CloseBrush(HBRUSH brush) { CloseGdiObject(brush); }
inline void CloseBitmap(HBITMAP bitmap) { CloseGdiObject(bitmap); }
inline void CloseImageList(HIMAGELIST list) { ::ImageList_Destroy(list); }
inline void CloseMemoryDC(HDC dc) { ::DeleteDC(dc); }

using UniqueFont = UniqueHandle<HFONT, &CloseFont>;
using UniqueBrush = UniqueHandle<HBRUSH, &CloseBrush>;
using UniqueBitmap = UniqueHandle<HBITMAP, &CloseBitmap>;
using UniqueImageList = UniqueHandle<HIMAGELIST, &CloseImageList>;
using UniqueMemoryDC = UniqueHandle<HDC, &CloseMemoryDC>;

}  // namespace quorvane::ui::win32
