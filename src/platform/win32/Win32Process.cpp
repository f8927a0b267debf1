#include "platform/win32/Win32Process.h"

#include <windows.h>

namespace quorvane::platform::win32 {

std::string Win32Process::CommandLine() {
  const char* whole = ::GetCommandLineA();
  if (whole == nullptr) {
    return std::string();
  }
  return ArgumentsOf(whole);
}

}  // namespace quorvane::platform::win32
