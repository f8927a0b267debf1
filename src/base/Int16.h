#pragma once
// The system's 16-bit integers. A value kept in one, or a sum or product worked out in one, must
// lie in -32768 to 32767; beyond, the routine fails with the overflow failure (6, "Overflow")
// instead of wrapping round.
#include <cstdint>
#include <limits>

#include "base/Failure.h"

namespace quorvane {

// The value as a 16-bit integer; outside -32768 to 32767, the overflow failure.
constexpr std::int16_t CheckedInt16(std::int64_t value) {
  if (value < std::numeric_limits<std::int16_t>::min() ||
      value > std::numeric_limits<std::int16_t>::max()) {
    RaiseOverflow();
  }
  return static_cast<std::int16_t>(value);
}

}  // namespace quorvane
