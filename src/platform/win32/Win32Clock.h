#pragma once
// The time of day from kernel32's local time.
#include "platform/Clock.h"

namespace quorvane::platform::win32 {

class Win32Clock final : public Clock {
 public:
  double SecondsSinceMidnight() override;
};

}  // namespace quorvane::platform::win32
