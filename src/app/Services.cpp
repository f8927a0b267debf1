#include "app/Services.h"

#include "platform/Process.h"
#include "platform/Service.h"
#include "platform/win32/Win32Process.h"

namespace quorvane::app {

void InstallWin32Services() {
  // The adapters live as long as the process.
  static platform::Win32Process process;
  platform::Install<platform::Process>(&process);
}

}  // namespace quorvane::app
