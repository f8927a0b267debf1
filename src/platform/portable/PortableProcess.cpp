#include "platform/portable/PortableProcess.h"

#include <utility>

namespace quorvane::platform::portable {

PortableProcess::PortableProcess(std::string arguments) : arguments_(std::move(arguments)) {}

std::string PortableProcess::CommandLine() { return arguments_; }

void PortableProcess::SetCommandLine(std::string arguments) { arguments_ = std::move(arguments); }

void PortableProcess::SetWholeCommandLine(std::string_view wholeCommandLine) {
  arguments_ = ArgumentsOf(wholeCommandLine);
}

}  // namespace quorvane::platform::portable
