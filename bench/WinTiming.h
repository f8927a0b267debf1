#pragma once
// What the Windows timing programs share: the clock and the statistics of a series of times.
// Starting and driving programs from outside is the driving library's (tests/driving).
#include <windows.h>

#include <algorithm>
#include <vector>

namespace quorvane::bench {

// Milliseconds of the performance counter.
inline double Now() {
  static LARGE_INTEGER frequency = [] {
    LARGE_INTEGER f{};
    ::QueryPerformanceFrequency(&f);
    return f;
  }();
  LARGE_INTEGER counter{};
  ::QueryPerformanceCounter(&counter);
  return static_cast<double>(counter.QuadPart) * 1000.0 / static_cast<double>(frequency.QuadPart);
}

inline double Median(std::vector<double> values) {
  if (values.empty()) return 0.0;
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2.0;
}

inline double Mean(const std::vector<double>& values) {
  double sum = 0.0;
  for (double v : values) sum += v;
  return values.empty() ? 0.0 : sum / static_cast<double>(values.size());
}

}  // namespace quorvane::bench
