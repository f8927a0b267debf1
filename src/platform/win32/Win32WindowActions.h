#pragma once
#include "platform/WindowActions.h"

namespace quorvane::platform::win32 {

class Win32WindowActions final : public WindowActions {
 public:
  std::int32_t ReleaseCapture() override;
  std::intptr_t SendMessageA(std::uint32_t window, std::uint32_t message, std::uintptr_t wParam,
                             std::intptr_t lParam) override;
  std::intptr_t ShellExecuteA(std::uint32_t window, const std::string& verb,
                              const std::string& file, const std::string& parameters,
                              const std::string& directory, std::int32_t show) override;
  std::string ProgramFolder() override;
  std::string ProgramName() override;
};

}  // namespace quorvane::platform::win32
