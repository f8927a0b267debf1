// Start-up benchmark (not a test): how long quorvane.exe takes from the start of its process to
// its main window shown, with every catalogue row read and the trees filled, against two
// yardsticks: a minimal program that only opens one window, and one that also loads what any
// window of the main window's kind loads (common controls 6 with a tree view, shell32, ole32,
// oleaut32). All run in turn, in the same Wine prefix and the same session, each as a whole new
// process, and each signals "shown" through a named event:
//
//   win_startup <runs> [<result file>]
//
// runs quorvane_startup.exe (the benchmark build of quorvane.exe), win_minimal_window.exe and
// win_common_window.exe from its own folder with "--startup-benchmark <event>", after one
// warm-up start of each, in turns that change which goes first. It prints each program's times
// to "shown", the ratios, and the load routine's own time, which the benchmark build reports on
// its standard output. The figures go to the result file when one is given (a program started
// into a Wine virtual desktop has no standard output its caller can read), else to the standard
// output.
#include <windows.h>

#include "WinTiming.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "driving/Processes.h"

namespace {

using quorvane::bench::Mean;
using quorvane::bench::Median;
using quorvane::bench::Now;
namespace driving = quorvane::driving;

struct Program {
  std::string label;
  std::string path;
  std::vector<double> shownMs;
  std::vector<double> loadMs;
  std::vector<double> rebuildMs;
  std::string lastReport;
};

// One start: the milliseconds from just before the process is made to the "shown" event, or a
// negative value when the program did not signal within a minute. What it wrote goes to `output`.
double StartOnce(const std::string& program, const std::string& eventName, std::string& output) {
  output.clear();
  const driving::OwnedHandle shown(::CreateEventA(nullptr, TRUE, FALSE, eventName.c_str()));
  if (!shown) return -1.0;
  driving::Child child;
  driving::OwnedHandle written;
  std::string error;
  const double begin = Now();
  if (!driving::StartProgramWithOutput(program, " --startup-benchmark " + eventName, child,
                                       written, error)) {
    return -1.0;
  }
  double elapsed = -1.0;
  HANDLE waits[2] = {shown.Get(), child.process.Get()};
  const DWORD which = ::WaitForMultipleObjects(2, waits, FALSE, 60000);
  if (which == WAIT_OBJECT_0) elapsed = Now() - begin;
  DWORD exitCode = 0;
  if (!driving::WaitForEnd(child, 30000, exitCode)) driving::Terminate(child);
  output = driving::ReadToEnd(written);
  return elapsed;
}

void Print(std::FILE* out, const Program& program) {
  if (program.shownMs.empty()) {
    std::fprintf(out, "%-30s no start signalled \"shown\"\n", program.label.c_str());
    return;
  }
  std::fprintf(out,
               "%-30s median %7.1f ms  mean %7.1f ms  min %7.1f ms  max %7.1f ms  (%zu runs)\n",
               program.label.c_str(), Median(program.shownMs), Mean(program.shownMs),
              *std::min_element(program.shownMs.begin(), program.shownMs.end()),
              *std::max_element(program.shownMs.begin(), program.shownMs.end()),
              program.shownMs.size());
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
  const std::string folder = driving::OwnFolder();
  std::FILE* out = argc > 2 ? std::fopen(argv[2], "w") : stdout;
  if (out == nullptr) return 2;
  std::vector<Program> programs = {
      {"minimal window", folder + "win_minimal_window.exe", {}, {}, {}, {}},
      {"quorvane.exe (benchmark build)", folder + "quorvane_startup.exe", {}, {}, {}, {}},
      {"window, controls 6, shell, OLE", folder + "win_common_window.exe", {}, {}, {}, {}},
  };
  for (const Program& program : programs) {
    if (::GetFileAttributesA(program.path.c_str()) == INVALID_FILE_ATTRIBUTES) {
      std::fprintf(out, "missing: %s\n", program.path.c_str());
      if (out != stdout) std::fclose(out);
      return 2;
    }
  }
  const DWORD self = ::GetCurrentProcessId();
  std::string output;
  for (Program& program : programs) {  // warm-up: file caches, the prefix's first loads
    StartOnce(program.path, "QuorvaneStartupWarmUp" + std::to_string(self), output);
  }
  for (int run = 0; run < runs; ++run) {
    for (std::size_t k = 0; k < programs.size(); ++k) {
      Program& program = programs[(k + static_cast<std::size_t>(run)) % programs.size()];
      const std::string eventName = "QuorvaneStartupShown" + std::to_string(self) + "_" +
                                    std::to_string(run) + "_" + std::to_string(k);
      const double ms = StartOnce(program.path, eventName, output);
      if (ms >= 0.0) program.shownMs.push_back(ms);
      const std::size_t load = output.find("load_ms=");
      if (load != std::string::npos) {
        program.loadMs.push_back(std::atof(output.c_str() + load + 8));
        const std::size_t rebuild = output.find("rebuild_ms=");
        if (rebuild != std::string::npos) {
          program.rebuildMs.push_back(std::atof(output.c_str() + rebuild + 11));
        }
        program.lastReport = output.substr(0, output.find_first_of("\r\n"));
      }
    }
  }
  std::fprintf(out, "start-up to the main window shown, %d runs each, alternating:\n", runs);
  for (const Program& program : programs) Print(out, program);
  const Program& minimal = programs[0];
  const Program& quorvane = programs[1];
  const Program& common = programs[2];
  if (!minimal.shownMs.empty() && !quorvane.shownMs.empty()) {
    std::fprintf(out, "ratio of medians: %.2fx the minimal window\n",
                Median(quorvane.shownMs) / Median(minimal.shownMs));
  }
  if (!common.shownMs.empty() && !quorvane.shownMs.empty()) {
    std::fprintf(out,
                 "ratio of medians: %.2fx the window with common controls 6, a tree, shell32, "
                 "ole32 and oleaut32\n",
                 Median(quorvane.shownMs) / Median(common.shownMs));
  }
  if (!quorvane.loadMs.empty()) {
    std::fprintf(out,
                 "load routine inside the process: median %.1f ms, mean %.1f ms (last: %s)\n",
                 Median(quorvane.loadMs), Mean(quorvane.loadMs), quorvane.lastReport.c_str());
  }
  if (!quorvane.rebuildMs.empty() && !quorvane.loadMs.empty()) {
    std::fprintf(out,
                 "rebuild after a write of icons, same processes: median %.1f ms, mean %.1f ms: "
                 "%.2fx the first load routine\n",
                 Median(quorvane.rebuildMs), Mean(quorvane.rebuildMs),
                 Median(quorvane.rebuildMs) / Median(quorvane.loadMs));
  }
  bool complete = true;
  for (const Program& program : programs) {
    complete = complete && program.shownMs.size() == static_cast<std::size_t>(runs);
  }
  std::fprintf(out, "done\n");
  if (out != stdout) std::fclose(out);
  return complete ? 0 : 1;
}
