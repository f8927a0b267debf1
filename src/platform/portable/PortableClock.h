#pragma once
// The time of day from the local clock of this machine, or a time it was set to.
#include <optional>

#include "platform/Clock.h"

namespace quorvane::platform::portable {

class PortableClock final : public Clock {
 public:
  double SecondsSinceMidnight() override;

  // From now on the clock tells `seconds` (reduced to one day), until Release.
  void Stop(double seconds);
  void Release() { stopped_.reset(); }

 private:
  std::optional<double> stopped_;
};

}  // namespace quorvane::platform::portable
