// Thumbnail strip benchmark (not a test): how long quorvane.exe takes to fill the wallpaper page's
// strip with the thumbnails of one collection, from a click on the collection's node, as the user
// makes it, to the last thumbnail drawn; and how much memory the program holds while it does.
//
//   win_thumbnails <runs> <result file> <pictures>
//
// The program's data folder must hold one collection of <pictures> decodable pictures and no
// other. quorvane.exe is started from this program's folder in the same desktop; opening the
// wallpaper page (CmdMenu(3)) selects the first collection and fills the strip once: that fill is
// the warm-up and is not counted. Then <runs> times: the pointer is moved onto the node, the
// clock starts just before one SendInput call that carries the press and the release, and stops
// when
//   1. the tree, disabled while the strip fills, is enabled again (polled with IsWindowEnabled,
//      which asks the program nothing), and
//   2. the program is back at its message loop (WM_NULL answered) with nothing left to paint in
//      any of its windows (GetUpdateRect over the main window and every visible window in it),
//      checked twice around a second WM_NULL, as the page switch benchmark does.
// The strip is then checked: optThumb(<pictures> - 1) is a new window and optThumb(<pictures>)
// does not exist.
//
// Memory: the working set of quorvane.exe's process, as GetProcessMemoryInfo reports it to this
// process (under Wine the resident set, VmRSS, of the process's /proc entry; Wine reports no
// private bytes for another process). Sampled just before each click ("before"), and at every
// poll step of the fill, about each millisecond; the highest sample is the fill's peak. The
// process's own peak working set (its high-water mark since it started, VmHWM) is printed too.
#include <windows.h>
#include <psapi.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "WinTiming.h"
#include "driving/Controls.h"
#include "driving/Processes.h"
#include "driving/Program.h"

namespace {

using quorvane::bench::Mean;
using quorvane::bench::Median;
using quorvane::bench::Now;
namespace driving = quorvane::driving;
using driving::FindControl;

constexpr DWORD kAppearTimeout = 60000;
constexpr double kFillTimeoutMs = 600000.0;
constexpr double kMegabyte = 1024.0 * 1024.0;

// Back at its loop with nothing left to paint; false when that did not come within a few seconds.
bool Settled(HWND main) { return quorvane::bench::Settle(main, Now(), 10000.0, 10000); }

struct Memory {
  double workingSet = 0.0;  // MB
  double peakWorkingSet = 0.0;
};

Memory MemoryOf(HANDLE process) {
  PROCESS_MEMORY_COUNTERS counters{};
  counters.cb = sizeof counters;
  Memory memory;
  if (::GetProcessMemoryInfo(process, &counters, sizeof counters) != 0) {
    memory.workingSet = static_cast<double>(counters.WorkingSetSize) / kMegabyte;
    memory.peakWorkingSet = static_cast<double>(counters.PeakWorkingSetSize) / kMegabyte;
  }
  return memory;
}

struct Fill {
  double milliseconds = 0.0;
  Memory before;
  Memory peak;  // the highest samples during the fill
};

// Waits, sampling the memory of `process`, until `tree` has been disabled and is enabled again
// and the program has settled. False, with `error`, when that did not happen in time.
bool WaitForFill(HWND main, HWND tree, HANDLE process, double begin, Fill& fill,
                 std::string& error) {
  bool disabled = false;
  for (;;) {
    const Memory now = MemoryOf(process);
    fill.peak.workingSet = std::max(fill.peak.workingSet, now.workingSet);
    const bool enabled = ::IsWindowEnabled(tree) != 0;
    if (!enabled) disabled = true;
    if (disabled && enabled) break;
    if (!disabled && Now() - begin > 5000.0) {
      error = "the click did not start a fill (TvCollections stayed enabled)";
      return false;
    }
    if (Now() - begin > kFillTimeoutMs) {
      error = "the fill did not end in time";
      return false;
    }
    ::Sleep(1);
  }
  if (!Settled(main)) {
    error = "the window did not settle after the fill";
    return false;
  }
  fill.milliseconds = Now() - begin;
  return true;
}

// Whether the strip holds exactly `pictures` thumbnails, the last of them a window other than
// `previousLast`.
bool StripHolds(HWND main, int pictures, HWND previousLast, std::string& error) {
  HWND last = FindControl(main, "optThumb(" + std::to_string(pictures - 1) + ")");
  if (last == nullptr || ::IsWindowVisible(last) == 0) {
    error = "optThumb(" + std::to_string(pictures - 1) + ") is not shown after the fill";
    return false;
  }
  if (last == previousLast) {
    error = "the last thumbnail is the window of the fill before";
    return false;
  }
  if (FindControl(main, "optThumb(" + std::to_string(pictures) + ")") != nullptr) {
    error = "the strip holds more thumbnails than the collection's " + std::to_string(pictures);
    return false;
  }
  return true;
}

int Measure(std::FILE* out, HWND main, const driving::Child& child, int runs, int pictures) {
  HANDLE process = child.process.Get();
  HWND tree = FindControl(main, "TvCollections");
  HWND page = FindControl(main, "CmdMenu(3)");
  if (tree == nullptr || page == nullptr) {
    std::fprintf(out, "TvCollections or CmdMenu(3) is not found\n");
    return 1;
  }
  ::Sleep(1000);  // the first paint and the start's idle work
  const Memory started = MemoryOf(process);

  // The warm-up: the page opens on its first collection and fills the strip.
  std::string error;
  Fill warmUp;
  warmUp.before = started;
  driving::MoveTo(driving::Centre(driving::ScreenRect(page)));
  ::Sleep(200);
  double begin = Now();
  driving::ClickAtOnce(driving::Centre(driving::ScreenRect(page)));
  if (!WaitForFill(main, tree, process, begin, warmUp, error) ||
      !StripHolds(main, pictures, nullptr, error)) {
    std::fprintf(out, "warm-up: %s\n", error.c_str());
    return 1;
  }

  std::vector<Fill> fills;
  int failed = 0;
  for (int run = 0; run < runs; ++run) {
    RECT node{};
    if (!driving::TreeItemRect(tree, 1, node, error)) {
      std::fprintf(out, "run %d: %s\n", run + 1, error.c_str());
      ++failed;
      continue;
    }
    const POINT at = driving::Centre(node);
    driving::MoveTo(at);
    if (!Settled(main)) {
      std::fprintf(out, "run %d: the window did not settle before the click\n", run + 1);
      ++failed;
      continue;
    }
    HWND previousLast = FindControl(main, "optThumb(" + std::to_string(pictures - 1) + ")");
    Fill fill;
    fill.before = MemoryOf(process);
    begin = Now();
    driving::ClickAtOnce(at);
    if (!WaitForFill(main, tree, process, begin, fill, error) ||
        !StripHolds(main, pictures, previousLast, error)) {
      std::fprintf(out, "run %d: %s\n", run + 1, error.c_str());
      ++failed;
      continue;
    }
    fills.push_back(fill);
  }

  std::vector<double> times;
  std::vector<double> beforeSet;
  double peakSet = 0.0;
  for (const Fill& fill : fills) {
    times.push_back(fill.milliseconds);
    beforeSet.push_back(fill.before.workingSet);
    peakSet = std::max(peakSet, fill.peak.workingSet);
  }
  const Memory end = MemoryOf(process);
  std::fprintf(out, "fill of %d pictures, click on the node to the last thumbnail drawn, %zu runs "
                    "after one warm-up%s:\n",
               pictures, fills.size(),
               failed > 0 ? (" (" + std::to_string(failed) + " failed)").c_str() : "");
  if (times.empty()) return 1;
  const auto [low, high] = std::minmax_element(times.begin(), times.end());
  std::fprintf(out, "  median %.0f ms (min %.0f, max %.0f, mean %.0f): %.1f ms a picture\n",
               Median(times), *low, *high, Mean(times), Median(times) / pictures);
  std::fprintf(out,
               "working set of quorvane.exe, MB:\n"
               "  before the first fill (page not yet opened)   %7.1f\n"
               "  peak during the first fill (warm-up)           %7.1f\n"
               "  before each timed fill (median)                %7.1f\n"
               "  peak during the timed fills                    %7.1f\n"
               "  process's peak working set since its start     %7.1f\n",
               started.workingSet, warmUp.peak.workingSet, Median(beforeSet), peakSet,
               end.peakWorkingSet);
  // For the script's ratios.
  std::fprintf(out, "ms_per_picture %.2f\n", Median(times) / pictures);
  return failed == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
  std::FILE* out = argc > 2 ? std::fopen(argv[2], "w") : stdout;
  if (out == nullptr) return 2;
  const int pictures = argc > 3 ? std::atoi(argv[3]) : 0;
  if (pictures <= 0) {
    std::fprintf(out, "the count of the collection's pictures is missing\ndone\n");
    if (out != stdout) std::fclose(out);
    return 2;
  }
  const std::string program = driving::OwnFolder() + "quorvane.exe";
  driving::Child child;
  std::string startError;
  if (!driving::StartProgram(program, "", child, startError)) {
    std::fprintf(out, "could not start %s (%s)\ndone\n", program.c_str(), startError.c_str());
    if (out != stdout) std::fclose(out);
    return 2;
  }
  HWND main = driving::WaitForShownMainWindow(child, kAppearTimeout);
  int exitCode = 1;
  if (main == nullptr) {
    std::fprintf(out, "the main window of quorvane.exe was not shown\n");
  } else {
    exitCode = Measure(out, main, child, runs, pictures);
    const driving::Verdict end = driving::EndThroughExit(main, child);
    if (!end.Passed()) std::fprintf(out, "the end: %s\n", end.Summary().c_str());
  }
  driving::Terminate(child);
  std::fprintf(out, "done\n");
  if (out != stdout) std::fclose(out);
  return exitCode;
}
