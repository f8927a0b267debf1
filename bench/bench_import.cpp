// Times ImportFromReg natively over the portable adapters (the store in memory): what the import
// costs of its own, reading and taking the file apart, without a system beneath. Set beside the
// import under Wine (scripts/bench.sh import), it tells how much of that is the system's.
//
//   bench_import FILE.reg [runs=5]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "platform/portable/PortablePlatform.h"
#include "stores/AdvRegistryAccess.h"

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: bench_import FILE.reg [runs]\n");
    return 2;
  }
  const int runs = argc > 2 ? std::max(1, std::atoi(argv[2])) : 5;
  std::vector<double> times;
  for (int run = 0; run < runs; ++run) {
    quorvane::platform::portable::PortablePlatform platform;
    quorvane::AdvRegistryAccess reg;
    const auto start = std::chrono::steady_clock::now();
    const auto result = reg.ImportFromReg(argv[1]);
    const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
    if (result != 1) {
      std::fprintf(stderr, "ImportFromReg gave %d\n", static_cast<int>(result));
      return 1;
    }
    times.push_back(spent.count());
  }
  std::sort(times.begin(), times.end());
  std::printf("ImportFromReg natively, store in memory: best %.1f ms, median %.1f ms (%d runs)\n",
              times.front(), times[times.size() / 2], runs);
  return 0;
}
