#pragma once
// The process's command line from the Windows API.
#include "platform/Process.h"

namespace quorvane::platform::win32 {

class Win32Process final : public Process {
 public:
  // GetCommandLineA, without the program's path (quoted or not) and the blanks after it.
  std::string CommandLine() override;
};

}  // namespace quorvane::platform::win32
