#pragma once
// Value types shared by every subsystem.
#include <cstdint>

namespace quorvane {

// Booleans of the system are 16-bit: -1 is true and 0 is false. Some flag tests compare with -1
// exactly, so a boolean is never "any non-zero".
using Boolean = std::int16_t;
inline constexpr Boolean kTrue = -1;
inline constexpr Boolean kFalse = 0;

constexpr Boolean ToBoolean(bool value) { return value ? kTrue : kFalse; }

}  // namespace quorvane
