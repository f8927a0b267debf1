#pragma once
// Whole-file operations over kernel32, on paths in the active code page.
#include "platform/FileSystem.h"

namespace quorvane::platform {

class Win32FileSystem final : public FileSystem {
 public:
  bool FileExists(const std::string& path) override;
  bool FolderExists(const std::string& path) override;
  bool ReadAll(const std::string& path, std::string& content) override;
  bool WriteAll(const std::string& path, const std::string& content) override;
  bool Append(const std::string& path, const std::string& content) override;
  bool CreateFolder(const std::string& path) override;
  bool RemoveFile(const std::string& path) override;
};

}  // namespace quorvane::platform
