#pragma once
// What the Windows timing programs share: the clock, their own folder, and the statistics of a
// series of times.
#include <windows.h>

#include <algorithm>
#include <string>
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

// The folder of the running program, with its trailing separator.
inline std::string OwnFolder() {
  char path[MAX_PATH] = {};
  const DWORD length = ::GetModuleFileNameA(nullptr, path, MAX_PATH);
  std::string folder(path, length);
  const std::size_t slash = folder.find_last_of("\\/");
  return slash == std::string::npos ? std::string() : folder.substr(0, slash + 1);
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
