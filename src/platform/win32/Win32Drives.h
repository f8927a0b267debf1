#pragma once
// Drives, folders and attributes over the real Windows API: the logical drives' bit mask, the
// drive's type and volume information, FindFirstFileA for sub-folders, the attribute calls, and
// the network's connection of a remote drive.
#include "platform/Drives.h"

namespace quorvane::platform::win32 {

class Win32Drives final : public Drives {
 public:
  bool DriveExists(const std::string& drive) override;
  bool GetDrive(const std::string& drive, DriveFacts& facts) override;
  bool SubFolders(const std::string& folder, std::vector<std::string>& names) override;
  std::uint32_t GetFileAttributesA(const char* path) override;
  std::int32_t SetFileAttributesA(const char* path, std::uint32_t attributes) override;
};

}  // namespace quorvane::platform::win32
