#pragma once
// Whole-file operations the system needs, on paths in the active code page.
#include <string>

namespace quorvane::platform {

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  virtual bool FileExists(const std::string& path) = 0;
  virtual bool FolderExists(const std::string& path) = 0;
  // Reads the whole file; false when it can't be opened or read.
  virtual bool ReadAll(const std::string& path, std::string& content) = 0;
  // Creates or truncates the file and writes `content`; false on failure.
  virtual bool WriteAll(const std::string& path, const std::string& content) = 0;
  // Appends to the file, creating it when missing; false on failure.
  virtual bool Append(const std::string& path, const std::string& content) = 0;
  virtual bool CreateFolder(const std::string& path) = 0;
  virtual bool RemoveFile(const std::string& path) = 0;
};

}  // namespace quorvane::platform
