// The end-to-end driver. It runs inside the same virtual desktop as the program it drives, starts
// quorvane.exe from its own folder, and looks at it from outside, the way another program or a
// person would: through its top-level window and its process.
//
//   e2e_driver run-modes <result file> <screenshot folder>
//       Starts quorvane.exe once per run-mode case, checks it, closes it through WM_CLOSE, and
//       writes one line per case to the result file, then "N passed, M failed".
//   e2e_driver wait-window <result file> <seconds>
//       Waits until the main window is shown; writes "shown", or "not shown" after the time.
//   e2e_driver close-window <result file> <seconds>
//       Sends WM_CLOSE to the main window and waits for its process to end; writes "closed",
//       "not found" or "still running".
//
// The result goes to a file because a program started into a virtual desktop has neither the
// caller's standard output nor an exit code the caller can read.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "Desktop.h"

namespace {

using namespace quorvane::e2e;

const std::string kClass = "QuorvaneMain";
const std::string kText = "Quorvane";
constexpr int kWidth = 676;
constexpr int kHeight = 480;
constexpr DWORD kAppearTimeout = 20000;
constexpr DWORD kResidentWait = 3000;
constexpr DWORD kEndTimeout = 10000;

class ResultFile {
 public:
  explicit ResultFile(const std::string& path) : file_(std::fopen(path.c_str(), "wb")) {}
  ~ResultFile() {
    if (file_ != nullptr) {
      std::fclose(file_);
    }
  }
  ResultFile(const ResultFile&) = delete;
  ResultFile& operator=(const ResultFile&) = delete;

  bool IsOpen() const { return file_ != nullptr; }
  void Line(const std::string& text) {
    if (file_ != nullptr) {
      std::fputs((text + "\n").c_str(), file_);
      std::fflush(file_);
    }
  }

 private:
  std::FILE* file_;
};

bool WaitUntil(DWORD milliseconds, const std::function<bool()>& condition) {
  const ULONGLONG deadline = ::GetTickCount64() + milliseconds;
  for (;;) {
    if (condition()) {
      return true;
    }
    if (::GetTickCount64() >= deadline) {
      return false;
    }
    ::Sleep(100);
  }
}

struct RunModeCase {
  std::string name;
  std::string tail;        // what follows the program's name on its command line
  bool shown;              // interactive mode: the window is shown
  std::string screenshot;  // file name without extension, or empty for none
};

// One case: every failed check is kept with its reason.
class Verdict {
 public:
  void Check(bool condition, const std::string& failure) {
    if (!condition) {
      failures_.push_back(failure);
    }
  }
  void Note(const std::string& note) { notes_.push_back(note); }
  bool Passed() const { return failures_.empty(); }
  std::string Summary() const {
    std::string text;
    for (const std::string& part : Passed() ? notes_ : failures_) {
      text += (text.empty() ? "" : "; ") + part;
    }
    return text;
  }

 private:
  std::vector<std::string> failures_;
  std::vector<std::string> notes_;
};

std::string Describe(const RECT& r) {
  return std::to_string(r.left) + "," + std::to_string(r.top) + " " +
         std::to_string(r.right - r.left) + "x" + std::to_string(r.bottom - r.top);
}

Verdict RunCase(const RunModeCase& runCase, const std::string& program,
                const std::string& screenshotFolder) {
  Verdict verdict;
  Child child;
  std::string error;
  if (!StartProgram(program, runCase.tail, child, error)) {
    verdict.Check(false, "not started: " + error);
    return verdict;
  }

  HWND window = nullptr;
  const ULONGLONG started = ::GetTickCount64();
  const bool appeared = WaitUntil(kAppearTimeout, [&] {
    window = FindTopLevelWindow(child.id, kClass, kText);
    return window != nullptr || !IsRunning(child);
  }) && window != nullptr;
  verdict.Check(appeared, "no window of class \"" + kClass + "\" with text \"" + kText +
                              "\" within " + std::to_string(kAppearTimeout / 1000) + " s" +
                              (IsRunning(child) ? "" : " (the process ended)"));
  if (appeared) {
    // The window is found from outside by its class and text alone.
    verdict.Check(::FindWindowA(kClass.c_str(), kText.c_str()) != nullptr,
                  "FindWindowA does not find the window by its class and text");
    const LONG_PTR style = ::GetWindowLongPtrA(window, GWL_STYLE);
    verdict.Check((style & WS_POPUP) != 0 && (style & WS_CAPTION) == 0 &&
                      (style & WS_THICKFRAME) == 0,
                  "the window has a frame or a caption");

    if (runCase.shown) {
      const bool visible = WaitUntil(kAppearTimeout, [&] { return ::IsWindowVisible(window) != 0; });
      verdict.Check(visible, "the window exists but is not shown");
      RECT area{};
      ::GetWindowRect(window, &area);
      const int screenWidth = ::GetSystemMetrics(SM_CXSCREEN);
      const int screenHeight = ::GetSystemMetrics(SM_CYSCREEN);
      verdict.Check(area.right - area.left == kWidth && area.bottom - area.top == kHeight,
                    "the window is " + Describe(area) + ", not " + std::to_string(kWidth) + "x" +
                        std::to_string(kHeight));
      verdict.Check(area.left == (screenWidth - kWidth) / 2 &&
                        area.top == (screenHeight - kHeight) / 2,
                    "the window at " + Describe(area) + " is not centred on the screen " +
                        std::to_string(screenWidth) + "x" + std::to_string(screenHeight));
      verdict.Note("shown at " + Describe(area) + " after " +
                   std::to_string(::GetTickCount64() - started) + " ms");
      ::Sleep(700);  // let it paint before the picture is taken
    } else {
      ::Sleep(kResidentWait);
      verdict.Check(::IsWindowVisible(window) == 0, "the window was shown");
      verdict.Check(IsRunning(child), "the process ended although its window is loaded");
      verdict.Note("loaded hidden, still running after " +
                   std::to_string(kResidentWait / 1000) + " s");
    }
    if (!runCase.screenshot.empty()) {
      std::string shotError;
      const std::string path = screenshotFolder + "\\" + runCase.screenshot + ".bmp";
      verdict.Check(SaveScreen(path, shotError), "no screenshot: " + shotError);
    }

    ::PostMessageA(window, WM_CLOSE, 0, 0);
  }

  DWORD exitCode = 0;
  const bool ended = WaitForEnd(child, kEndTimeout, exitCode);
  verdict.Check(ended, "the process did not end within " + std::to_string(kEndTimeout / 1000) +
                           " s of WM_CLOSE");
  if (ended) {
    verdict.Check(exitCode == 0, "the process ended with exit code " + std::to_string(exitCode));
  } else {
    Terminate(child);
  }
  return verdict;
}

int RunModes(const std::string& resultPath, const std::string& screenshotFolder) {
  ResultFile result(resultPath);
  if (!result.IsOpen()) {
    return 2;
  }
  const std::string program = OwnFolder() + "quorvane.exe";
  if (::GetFileAttributesA(program.c_str()) == INVALID_FILE_ATTRIBUTES) {
    result.Line("FAIL setup: " + program + " is missing");
    result.Line("0 passed, 1 failed");
    return 1;
  }
  const std::vector<RunModeCase> cases = {
      {"interactive, empty command line", "", true, "e2e-interactive"},
      {"interactive, blanks only", "     ", true, ""},
      {"resident, /background", " /background", false, "e2e-background"},
      {"resident, x", " x", false, ""},
  };
  int passed = 0;
  int failed = 0;
  for (const RunModeCase& runCase : cases) {
    const Verdict verdict = RunCase(runCase, program, screenshotFolder);
    if (verdict.Passed()) {
      ++passed;
      result.Line("ok   " + runCase.name + ": " + verdict.Summary());
    } else {
      ++failed;
      result.Line("FAIL " + runCase.name + ": " + verdict.Summary());
    }
  }
  result.Line(std::to_string(passed) + " passed, " + std::to_string(failed) + " failed");
  return failed == 0 ? 0 : 1;
}

DWORD Milliseconds(const char* seconds) {
  const long value = std::strtol(seconds, nullptr, 10);
  return value > 0 && value < 3600 ? static_cast<DWORD>(value) * 1000U : 10000U;
}

int WaitWindow(const std::string& resultPath, DWORD timeout) {
  ResultFile result(resultPath);
  const bool shown = WaitUntil(timeout, [] {
    HWND window = ::FindWindowA(kClass.c_str(), kText.c_str());
    return window != nullptr && ::IsWindowVisible(window) != 0;
  });
  result.Line(shown ? "shown" : "not shown");
  return shown ? 0 : 1;
}

int CloseWindow(const std::string& resultPath, DWORD timeout) {
  ResultFile result(resultPath);
  HWND window = ::FindWindowA(kClass.c_str(), kText.c_str());
  if (window == nullptr) {
    result.Line("not found");
    return 1;
  }
  DWORD processId = 0;
  ::GetWindowThreadProcessId(window, &processId);
  OwnedHandle process(::OpenProcess(SYNCHRONIZE, FALSE, processId));
  ::PostMessageA(window, WM_CLOSE, 0, 0);
  const bool ended = process && ::WaitForSingleObject(process.Get(), timeout) == WAIT_OBJECT_0;
  result.Line(ended ? "closed" : "still running");
  return ended ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string command = argc > 1 ? argv[1] : "";
  if (command == "run-modes" && argc == 4) {
    return RunModes(argv[2], argv[3]);
  }
  if (command == "wait-window" && argc == 4) {
    return WaitWindow(argv[2], Milliseconds(argv[3]));
  }
  if (command == "close-window" && argc == 4) {
    return CloseWindow(argv[2], Milliseconds(argv[3]));
  }
  return 2;
}
