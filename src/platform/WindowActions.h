#pragma once
// The few direct window calls of the main window's title-bar actions: dragging the window by
// its background, and opening a document with the shell.
#include <cstdint>
#include <string>

namespace quorvane::platform {

class WindowActions {
 public:
  virtual ~WindowActions() = default;
  virtual std::int32_t ReleaseCapture() = 0;
  virtual std::intptr_t SendMessageA(std::uint32_t window, std::uint32_t message,
                                     std::uintptr_t wParam, std::intptr_t lParam) = 0;
  // The shell's open of a file; a result above 32 is success.
  virtual std::intptr_t ShellExecuteA(std::uint32_t window, const std::string& verb,
                                      const std::string& file, const std::string& parameters,
                                      const std::string& directory, std::int32_t show) = 0;
  // The folder of the running program, without a trailing backslash.
  virtual std::string ProgramFolder() = 0;
  // The file name of the running program without its folder and its extension ("quorvane").
  virtual std::string ProgramName() = 0;
};

}  // namespace quorvane::platform
