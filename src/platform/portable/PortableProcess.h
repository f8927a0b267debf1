#pragma once
// A process whose command line is whatever it was last set to; empty at first.
#include <string>

#include "platform/Process.h"

namespace quorvane::platform::portable {

class PortableProcess final : public Process {
 public:
  PortableProcess() = default;
  explicit PortableProcess(std::string arguments);

  std::string CommandLine() override;

  // Sets the arguments as they would come behind the program's name.
  void SetCommandLine(std::string arguments);
  // Sets a whole command line, program name first, and keeps its arguments part.
  void SetWholeCommandLine(std::string_view wholeCommandLine);

 private:
  std::string arguments_;
};

}  // namespace quorvane::platform::portable
