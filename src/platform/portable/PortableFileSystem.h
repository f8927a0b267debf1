#pragma once
// Whole-file operations over the host's file system. A backslash in a path separates folders,
// as on the platform.
#include "platform/FileSystem.h"

namespace quorvane::platform::portable {

class PortableFileSystem final : public FileSystem {
 public:
  bool FileExists(const std::string& path) override;
  bool FolderExists(const std::string& path) override;
  bool ReadAll(const std::string& path, std::string& content) override;
  bool WriteAll(const std::string& path, const std::string& content) override;
  bool Append(const std::string& path, const std::string& content) override;
  bool CreateFolder(const std::string& path) override;
  bool RemoveFile(const std::string& path) override;
  bool ListFiles(const std::string& folder, std::vector<std::string>& names) override;
  bool RemoveFolderTree(const std::string& path) override;
  bool RenameFile(const std::string& source, const std::string& target) override;
  Replacement ReplaceWhole(const std::string& path,
                           const std::function<bool(FileWriter&)>& write) override;
  Replacement PutInPlace(const std::string& made, const std::string& path) override;
};

}  // namespace quorvane::platform::portable
