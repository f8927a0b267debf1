#pragma once
#include "platform/FileDialogs.h"

namespace quorvane::platform::win32 {

// The common dialog's open dialog (GetOpenFileNameA).
class Win32FileDialogs final : public FileDialogs {
 public:
  std::string GetOpenFileNameA(const OpenFileRequest& request) override;
};

}  // namespace quorvane::platform::win32
