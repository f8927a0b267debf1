#pragma once
// The 32-bit handle values the system keeps, and the platform's handles. Window and drawing
// object handles carry their whole value in the low 32 bits, and the platform widens such a
// value with its sign, so the conversion is exact both ways.
#include <windows.h>

#include <cstdint>

#include "platform/DeviceContexts.h"

namespace quorvane::platform::win32 {

template <class NativeHandle>
NativeHandle ToNative(GdiHandle handle) {
  return reinterpret_cast<NativeHandle>(
      static_cast<std::intptr_t>(static_cast<std::int32_t>(handle)));
}

inline GdiHandle FromNative(const void* handle) {
  return static_cast<GdiHandle>(reinterpret_cast<std::uintptr_t>(handle));
}

}  // namespace quorvane::platform::win32
