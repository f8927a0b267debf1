// Times the Windows picture service (the OLE loader) on one file: decoding it, then saving the pixels as a
// 24-bit bitmap. Prints the median and the fastest of each, in milliseconds.
//   win_pictures PICTURE OUTPUT.bmp [ROUNDS]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/Failure.h"
#include "platform/win32/Win32Pictures.h"

namespace {

double Milliseconds(std::chrono::steady_clock::time_point from) {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - from).count();
}

void Report(const char* what, std::vector<double> times) {
  std::sort(times.begin(), times.end());
  std::printf("%s: median %.1f ms, fastest %.1f ms over %zu rounds\n", what,
              times[times.size() / 2], times.front(), times.size());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: %s PICTURE OUTPUT.bmp [ROUNDS]\n", argv[0]);
    return 2;
  }
  const int rounds = argc > 3 ? std::max(1, std::atoi(argv[3])) : 5;
  quorvane::platform::win32::Win32Pictures pictures;
  std::vector<double> loads;
  std::vector<double> saves;
  try {
    for (int i = 0; i < rounds; ++i) {
      auto start = std::chrono::steady_clock::now();
      const quorvane::ui::Pixels p = pictures.LoadPicture(argv[1]);
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
