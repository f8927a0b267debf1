#pragma once
// The start-up benchmark's hooks in quorvane.exe, compiled only into its benchmark build
// (QUORVANE_STARTUP_BENCHMARK; bench/win_startup.cpp drives it).
//
// That build takes "--startup-benchmark <event name>" on its command line. The flag and its value
// are taken off before the entry reads the command line, so the start is the interactive one.
// Once the window is shown, loaded, filled and painted, the build sets the named event, times
// the rebuild that follows a write of icons (trees and catalogue emptied, the load routine run
// again, the category reopened), writes one line to its standard output:
//     load_ms=<first load routine> rebuild_ms=<the rebuild> TvDesktop=<nodes> ILicons=<images>
// and ends through the tray menu's "Exit". Without the flag it behaves as quorvane.exe.
#ifdef QUORVANE_STARTUP_BENCHMARK
#include <memory>
#include <string>

#include "platform/Process.h"

namespace quorvane {
class FrmMain;
}

namespace quorvane::app {

class MainWindow;

class StartupBenchmark {
 public:
  // Reads the flag from the process's command line and, when it is there, installs a process
  // service whose command line lacks it.
  StartupBenchmark();
  ~StartupBenchmark();
  StartupBenchmark(const StartupBenchmark&) = delete;
  StartupBenchmark& operator=(const StartupBenchmark&) = delete;

  bool Active() const { return !eventName_.empty(); }
  // Signals "shown", reports, and ends the process.
  [[noreturn]] void Shown(MainWindow& window, FrmMain& form);

 private:
  std::string eventName_;
  std::unique_ptr<platform::Process> process_;
  platform::Process* previous_ = nullptr;
};

}  // namespace quorvane::app
#endif
