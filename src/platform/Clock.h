#pragma once
// The time of day of the local clock.

namespace quorvane::platform {

class Clock {
 public:
  virtual ~Clock() = default;

  // Seconds since midnight, local time, with their fraction: 0 up to but not including 86400.
  virtual double SecondsSinceMidnight() = 0;
};

}  // namespace quorvane::platform
