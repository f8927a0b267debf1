#include "platform/portable/PortableClock.h"

#include <chrono>
#include <cmath>
#include <ctime>

namespace quorvane::platform::portable {

double PortableClock::SecondsSinceMidnight() {
  if (stopped_) return *stopped_;
  using namespace std::chrono;
  const auto now = system_clock::now();
  const std::time_t whole = system_clock::to_time_t(now);
  std::tm local{};
  localtime_r(&whole, &local);
  const double fraction =
      static_cast<double>(duration_cast<microseconds>(now.time_since_epoch()).count() % 1000000) /
      1e6;
  const double seconds = local.tm_hour * 3600.0 + local.tm_min * 60.0 + local.tm_sec +
                        (fraction < 0 ? fraction + 1.0 : fraction);
  // A leap second still belongs to the day.
  return std::fmin(seconds, 86399.999999);
}

void PortableClock::Stop(double seconds) {
  double day = std::fmod(seconds, 86400.0);
  if (day < 0) day += 86400.0;
  stopped_ = day;
}

}  // namespace quorvane::platform::portable
