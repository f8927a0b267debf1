#ifdef QUORVANE_STARTUP_BENCHMARK
#include "app/StartupBenchmark.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "app/MainWindow.h"
#include "core/FrmMain.h"
#include "platform/Service.h"

namespace quorvane::app {

namespace {

constexpr std::string_view kFlag = "--startup-benchmark";

class ArgumentsWithoutFlag final : public platform::Process {
 public:
  explicit ArgumentsWithoutFlag(const std::string& arguments) : arguments_(arguments) {}
  std::string CommandLine() override { return arguments_; }

 private:
  std::string arguments_;
};

}  // namespace

StartupBenchmark::StartupBenchmark() {
  const char* whole = ::GetCommandLineA();
  std::string arguments = platform::ArgumentsOf(whole != nullptr ? whole : "");
  const std::size_t flag = arguments.find(kFlag);
  if (flag == std::string::npos) return;
  std::size_t start = flag + kFlag.size();
  while (start < arguments.size() && arguments[start] == ' ') ++start;
  std::size_t end = arguments.find(' ', start);
  if (end == std::string::npos) end = arguments.size();
  eventName_ = arguments.substr(start, end - start);
  if (eventName_.empty()) return;
  process_ = std::make_unique<ArgumentsWithoutFlag>(arguments.substr(0, flag) +
                                                    arguments.substr(end));
  previous_ = platform::Install<platform::Process>(process_.get());
}

StartupBenchmark::~StartupBenchmark() {
  if (process_) platform::Install<platform::Process>(previous_);
}

void StartupBenchmark::Shown(MainWindow& window, FrmMain& form) {
  HANDLE shown = ::OpenEventA(EVENT_MODIFY_STATE, FALSE, eventName_.c_str());
  if (shown != nullptr) {
    ::SetEvent(shown);
    ::CloseHandle(shown);
  }
  // Then the rebuild that follows a write of icons, on the live window: the five trees, ILicons
  // and IconRecords emptied, the load routine run again and the category opened anew.
  LARGE_INTEGER frequency{};
  LARGE_INTEGER started{};
  LARGE_INTEGER ended{};
  ::QueryPerformanceFrequency(&frequency);
  ::QueryPerformanceCounter(&started);
  form.EmptyCatalogue();
  form.ReloadKeepingCategory();
  form.CmdWindow_Click();
  ::QueryPerformanceCounter(&ended);
  const double rebuildMs = static_cast<double>(ended.QuadPart - started.QuadPart) * 1000.0 /
                           static_cast<double>(frequency.QuadPart);
  char line[200] = {};
  const int length = std::snprintf(
      line, sizeof line, "load_ms=%.1f rebuild_ms=%.1f TvDesktop=%d ILicons=%d\n",
      window.LoadMilliseconds(), rebuildMs, static_cast<int>(form.TvDesktop.Count()),
      static_cast<int>(form.ILicons.Count()));
  DWORD written = 0;
  HANDLE out = ::GetStdHandle(STD_OUTPUT_HANDLE);
  if (out != nullptr && out != INVALID_HANDLE_VALUE && length > 0) {
    ::WriteFile(out, line, static_cast<DWORD>(length), &written, nullptr);
  }
  form.mnuExit_Click();
  std::exit(0);  // should the tray menu's exit come back
}

}  // namespace quorvane::app
#endif
