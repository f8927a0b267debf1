#pragma once
// Window calls without windows: each call is written down for tests to read.
#include <string>
#include <vector>

#include "platform/WindowActions.h"

namespace quorvane::platform::portable {

class PortableWindowActions final : public WindowActions {
 public:
  std::int32_t ReleaseCapture() override;
  std::intptr_t SendMessageA(std::uint32_t window, std::uint32_t message, std::uintptr_t wParam,
                             std::intptr_t lParam) override;
  std::intptr_t ShellExecuteA(std::uint32_t window, const std::string& verb,
                              const std::string& file, const std::string& parameters,
                              const std::string& directory, std::int32_t show) override;
  std::string ProgramFolder() override { return programFolder; }
  std::string ProgramName() override { return programName; }

  std::string programFolder = "C:\\Program Files\\Quorvane";
  std::string programName = "quorvane";
  // "ReleaseCapture", "SendMessageA window message wParam lParam", "ShellExecuteA verb file
  // parameters directory show", in order.
  std::vector<std::string> calls;
};

}  // namespace quorvane::platform::portable
