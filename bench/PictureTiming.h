#pragma once
// The picture timing of both builds: decoding one file, then saving the pixels as a 24-bit
// bitmap, a number of rounds; prints the median and the fastest of each, in milliseconds.
//   PROGRAM PICTURE OUTPUT.bmp [ROUNDS]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "platform/Pictures.h"

namespace quorvane::bench {

inline double Milliseconds(std::chrono::steady_clock::time_point from) {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - from).count();
}

inline void Report(const char* what, std::vector<double> times) {
  std::sort(times.begin(), times.end());
  std::printf("%s: median %.1f ms, fastest %.1f ms over %zu rounds\n", what,
              times[times.size() / 2], times.front(), times.size());
}

// Times `pictures` on the picture named by the command line; the exit status of the program.
inline int TimePictures(quorvane::platform::Pictures& pictures, int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: %s PICTURE OUTPUT.bmp [ROUNDS]\n", argv[0]);
    return 2;
  }
  const int rounds = argc > 3 ? std::max(1, std::atoi(argv[3])) : 5;
  std::vector<double> loads;
  std::vector<double> saves;
  try {
    for (int i = 0; i < rounds; ++i) {
      auto start = std::chrono::steady_clock::now();
      const quorvane::Pixels p = pictures.LoadPicture(argv[1]);
      loads.push_back(Milliseconds(start));
      start = std::chrono::steady_clock::now();
      pictures.SavePicture(p, argv[2]);
      saves.push_back(Milliseconds(start));
      if (i == 0) std::printf("%dx%d\n", p.width, p.height);
    }
  } catch (const quorvane::Failure& failure) {
    std::fprintf(stderr, "failure %d: %s\n", static_cast<int>(failure.Number()), failure.what());
    return 1;
  }
  Report("load", loads);
  Report("save", saves);
  return 0;
}

}  // namespace quorvane::bench
