#include "core/MainModule.h"

#include <string>

#include "core/Text.h"
#include "platform/Process.h"
#include "platform/Service.h"

namespace quorvane::core {

RunMode RunModeOf(std::string_view commandLine) {
  return text::Trim(commandLine).empty() ? RunMode::Interactive : RunMode::Resident;
}

void ShowMain() {
  const std::string commandLine = platform::Use<platform::Process>().CommandLine();
  MainForm& frmMain = platform::Use<MainForm>();
  if (RunModeOf(commandLine) == RunMode::Interactive) {
    frmMain.Show();
  } else {
    frmMain.Load();
  }
}

}  // namespace quorvane::core
