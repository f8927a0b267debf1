// Page and zone switch benchmark (not a test): how long the main window of quorvane.exe takes
// from a click, as the user makes it, to the window repainted, for two kinds of switch:
//
//   page switch   a click at the centre of CmdMenu(1), then of CmdMenu(0): the page box
//                 PBFileSystem, then PBPelmoraMain, comes up
//   zone switch   a click in a zone of the strip CmdWindow (centres at 2350, 4000, 5750 and 750
//                 twips from its left edge, 180 from its top, 15 twips a pixel): its tree comes up
//
//   win_switch <rounds> [<result file>]
//
// starts the normal quorvane.exe from its own folder in the same desktop, waits for its main
// window, makes one warm-up round that is not counted, then <rounds> rounds of two page switches
// and four zone switches, and ends the program through "Quorvane.Exit". The figures go to the
// result file when one is given (a program started into a Wine virtual desktop has no standard
// output its caller can read), else to the standard output.
//
// How "repainted" is told, from outside the program's process, without touching its painting:
//   1. The pointer is moved onto the target first and the window left to settle (steps 3 to 5
//      below), so that what the move itself repaints (hover) is not counted.
//   2. The clock starts just before one SendInput call that carries the button's press and
//      release together.
//   3. The target's window (the page box or the tree, found by its system name through
//      "Quorvane.FindControl" before the click) is polled with IsWindowVisible, which asks the
//      program nothing, until it is visible: the "shown" time.
//   4. WM_NULL is sent to the main window with SendMessageTimeout: it is answered only when the
//      program's thread is back at its message loop, so the click's handler has returned: the
//      "handled" time (what the handler does, and any painting it forces on its way).
//   5. GetUpdateRect is polled over the main window and every visible window inside it, until
//      none has anything left to paint; then WM_NULL once more, so that a WM_PAINT begun (whose
//      BeginPaint already emptied the region) has also ended, and the regions are checked again.
//      The clock stops when they are all empty after that: the "repainted" time.
// This is the time until the program has drawn everything into Wine's window surfaces; Wine's
// copy of those surfaces to the X server comes after and is not counted.
// Resolution: QueryPerformanceCounter (its frequency is printed), polled with Sleep(1) between
// looks, so each figure may be late by about one poll step (the step measured is printed too).
#include <windows.h>

#include "WinTiming.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "driving/Controls.h"
#include "driving/Processes.h"
#include "driving/Program.h"

namespace {

using quorvane::bench::Mean;
using quorvane::bench::Median;
using quorvane::bench::Now;
namespace driving = quorvane::driving;
using driving::FindControl;

constexpr int kTwipsPerPixel = 15;
constexpr int kZoneY = 180;
constexpr DWORD kAppearTimeout = 60000;
constexpr double kSwitchTimeoutMs = 5000.0;

// Waits until the program has handled what it was given and painted all of it (steps 4 and 5).
// False when that did not happen within the timeout measured from `since`. The milliseconds
// from `since` to the first answer go to `answered` when it is given.
bool Settle(HWND main, double since, double* answered = nullptr) {
  return quorvane::bench::Settle(main, since, kSwitchTimeoutMs, 5000, answered);
}

struct Target {
  const char* kind;     // "page" or "zone"
  const char* label;    // what is clicked
  const char* control;  // the window that must come up
  const char* element;  // the page command clicked; null for a zone
  int zoneX;            // the zone's centre in twips from the strip's left edge
};

// In this order each click changes what is shown: the load routine leaves page 0 and the
// "Desktop" zone on.
const Target kTargets[] = {
    {"page", "CmdMenu(1)", "PBFileSystem", "CmdMenu(1)", 0},
    {"page", "CmdMenu(0)", "PBPelmoraMain", "CmdMenu(0)", 0},
    {"zone", "Start Menu (2350)", "TvStartMenu", nullptr, 2350},
    {"zone", "File Type (4000)", "TvFileType", nullptr, 4000},
    {"zone", "Control Panel (5750)", "TvControlPanel", nullptr, 5750},
    {"zone", "Desktop (750)", "TvDesktop", nullptr, 750},
};

struct Times {
  std::vector<double> shown;
  std::vector<double> handled;
  std::vector<double> painted;
  int failed = 0;
};

void Print(std::FILE* out, const char* label, const Times& times) {
  if (times.painted.empty()) {
    std::fprintf(out, "%-30s no switch measured (%d failed)\n", label, times.failed);
    return;
  }
  const auto [low, high] = std::minmax_element(times.painted.begin(), times.painted.end());
  std::fprintf(out,
               "%-30s repainted: median %6.1f ms  min %6.1f ms  max %6.1f ms  (%zu clicks%s)\n"
               "%-30s shown:     median %6.1f ms   handled: median %6.1f ms\n",
               label, Median(times.painted), *low, *high, times.painted.size(),
               times.failed > 0 ? (", " + std::to_string(times.failed) + " failed").c_str() : "",
               "", Median(times.shown), Median(times.handled));
}

// One click on `target` and its times; false when the switch was not seen in time.
bool Switch(HWND main, const Target& target, double& shownMs, double& handledMs,
            double& paintedMs, std::string& error) {
  HWND control = FindControl(main, target.control);
  if (control == nullptr) {
    error = std::string(target.control) + " is not found";
    return false;
  }
  POINT point{};
  if (target.element != nullptr) {
    HWND element = FindControl(main, target.element);
    if (element == nullptr) {
      error = std::string(target.element) + " is not found";
      return false;
    }
    point = driving::Centre(driving::ScreenRect(element));
  } else {
    HWND strip = FindControl(main, "CmdWindow");
    if (strip == nullptr) {
      error = "CmdWindow is not found";
      return false;
    }
    const RECT area = driving::ScreenRect(strip);
    point = POINT{area.left + (target.zoneX + kTwipsPerPixel / 2) / kTwipsPerPixel,
                  area.top + (kZoneY + kTwipsPerPixel / 2) / kTwipsPerPixel};
  }
  driving::MoveTo(point);
  if (!Settle(main, Now())) {
    error = "the window did not settle after the pointer moved onto " + std::string(target.label);
    return false;
  }
  DWORD owner = 0;
  DWORD program = 0;
  ::GetWindowThreadProcessId(::WindowFromPoint(point), &owner);
  ::GetWindowThreadProcessId(main, &program);
  if (owner != program) {
    error = "another window lies over " + std::string(target.label);
    return false;
  }
  if (::IsWindowVisible(control) != 0) {
    error = std::string(target.control) + " is already visible before the click";
    return false;
  }
  const double begin = Now();
  driving::ClickAtOnce(point);
  while (::IsWindowVisible(control) == 0) {
    if (Now() - begin > kSwitchTimeoutMs) {
      error = std::string(target.control) + " did not come up";
      return false;
    }
    ::Sleep(1);
  }
  shownMs = Now() - begin;
  handledMs = -1.0;
  if (!Settle(main, begin, &handledMs)) {
    error = "the window did not finish painting after " + std::string(target.label);
    return false;
  }
  paintedMs = Now() - begin;
  return true;
}

// The length of one poll step: Sleep(1) as this system gives it.
double PollStep() {
  const double begin = Now();
  for (int i = 0; i < 100; ++i) ::Sleep(1);
  return (Now() - begin) / 100.0;
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
  std::FILE* out = argc > 2 ? std::fopen(argv[2], "w") : stdout;
  if (out == nullptr) return 2;
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
    ::Sleep(1000);  // let the first paint and the start's idle work pass
    Times page;
    Times zone;
    std::string lastError;
    for (int round = -1; round < rounds; ++round) {  // round -1: the warm-up
      for (const Target& target : kTargets) {
        double shownMs = 0.0;
        double handledMs = 0.0;
        double paintedMs = 0.0;
        std::string error;
        Times& times = std::string(target.kind) == "page" ? page : zone;
        if (Switch(main, target, shownMs, handledMs, paintedMs, error)) {
          if (round >= 0) {
            times.shown.push_back(shownMs);
            times.handled.push_back(handledMs);
            times.painted.push_back(paintedMs);
          }
        } else {
          if (round >= 0) ++times.failed;
          lastError = error;
          ::Sleep(500);
        }
      }
    }
    LARGE_INTEGER frequency{};
    ::QueryPerformanceFrequency(&frequency);
    std::fprintf(out,
                 "click to the main window repainted (nothing left to paint, the program back at "
                 "its loop), %d rounds after one warm-up:\n",
                 rounds);
    Print(out, "page switch (CmdMenu 1, 0)", page);
    Print(out, "zone switch (four zones)", zone);
    std::fprintf(out, "clock: QueryPerformanceCounter at %lld Hz; poll step Sleep(1) = %.2f ms\n",
                 static_cast<long long>(frequency.QuadPart), PollStep());
    if (!lastError.empty()) std::fprintf(out, "last failure: %s\n", lastError.c_str());
    exitCode = page.failed == 0 && zone.failed == 0 ? 0 : 1;
    const driving::Verdict end = driving::EndThroughExit(main, child);
    if (!end.Passed()) std::fprintf(out, "the end: %s\n", end.Summary().c_str());
  }
  driving::Terminate(child);
  std::fprintf(out, "done\n");
  if (out != stdout) std::fclose(out);
  return exitCode;
}
