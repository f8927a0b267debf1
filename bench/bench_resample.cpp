// Benchmark (not a test) of cDIBSection's byte work over the portable adapters: bilinear
// Resample of 3840x2160 to 1920x1080 and back, Resample to the same size (a blit), and the grey
// and colour noise of RandomiseBits. It also counts what the heap gives out during each call:
// the class works on the bitmaps' own memory, so RandomiseBits takes nothing and Resample only
// what the new object and its bitmap need.
//
//   bench_resample [runs=5]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "drawing/cDIBSection.h"
#include "platform/Service.h"
#include "platform/portable/PortablePlatform.h"

namespace {

std::size_t gAllocations = 0;
std::size_t gAllocatedBytes = 0;

}  // namespace

void* operator new(std::size_t size) {
  ++gAllocations;
  gAllocatedBytes += size;
  if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++gAllocations;
  gAllocatedBytes += size;
  return std::malloc(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
  return operator new(size, tag);
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

namespace {

using quorvane::cDIBSection;
using quorvane::kFalse;
using quorvane::kTrue;
using Clock = std::chrono::steady_clock;

struct Figures {
  std::vector<double> milliseconds;
  std::size_t allocations = 0;
  std::size_t bytes = 0;
};

Figures Measure(int runs, const std::function<void()>& work) {
  Figures figures;
  for (int run = 0; run < runs; ++run) {
    const std::size_t allocationsBefore = gAllocations;
    const std::size_t bytesBefore = gAllocatedBytes;
    const auto start = Clock::now();
    work();
    const auto end = Clock::now();
    figures.allocations = gAllocations - allocationsBefore;
    figures.bytes = gAllocatedBytes - bytesBefore;
    figures.milliseconds.push_back(
        std::chrono::duration<double, std::milli>(end - start).count());
  }
  std::sort(figures.milliseconds.begin(), figures.milliseconds.end());
  return figures;
}

void Report(const char* what, double megapixels, const Figures& figures) {
  const double best = figures.milliseconds.front();
  const double median = figures.milliseconds[figures.milliseconds.size() / 2];
  std::printf("%-44s best %8.2f ms  median %8.2f ms  %7.1f Mpixel/s  heap: %zu calls, %zu bytes\n",
              what, best, median, megapixels / (best / 1000.0), figures.allocations,
              figures.bytes);
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = std::max(1, argc > 1 ? std::atoi(argv[1]) : 5);

  quorvane::platform::portable::PortablePlatform platform({3840, 2160});
  auto& gdi = platform.DeviceContexts();
  gdi.KeepJournal(false);
  gdi.SetBitmapMemoryLimit(std::size_t{1} << 30);
  platform.Clock().Stop(43200.0);

  cDIBSection large;
  cDIBSection small;
  if (large.Create(3840, 2160) == kFalse || small.Create(1920, 1080) == kFalse) {
    std::fprintf(stderr, "no memory for the bitmaps\n");
    return 1;
  }
  large.RandomiseBits(kFalse);
  small.RandomiseBits(kTrue);

  const double largePixels = 3840.0 * 2160.0 / 1e6;
  const double smallPixels = 1920.0 * 1080.0 / 1e6;
  std::printf("cDIBSection, %d runs each, pixels counted in the result\n", runs);
  Report("RandomiseBits grey, 3840x2160", largePixels,
         Measure(runs, [&] { large.RandomiseBits(kTrue); }));
  Report("RandomiseBits colour, 3840x2160", largePixels,
         Measure(runs, [&] { large.RandomiseBits(kFalse); }));
  std::unique_ptr<cDIBSection> result;
  Report("Resample 3840x2160 -> 1920x1080", smallPixels,
         Measure(runs, [&] { result = large.Resample(1080, 1920); }));
  result.reset();
  Report("Resample 1920x1080 -> 3840x2160", largePixels,
         Measure(runs, [&] { result = small.Resample(2160, 3840); }));
  result.reset();
  Report("Resample 1920x1080 -> 1920x1080 (a copy)", smallPixels,
         Measure(runs, [&] { result = small.Resample(1080, 1920); }));
  result.reset();
  std::printf("(a 1920x1080 bitmap is %d bytes; 3840x2160 is %d bytes)\n",
              small.BytesPerScanLine() * small.Height(), large.BytesPerScanLine() * large.Height());
  return 0;
}
