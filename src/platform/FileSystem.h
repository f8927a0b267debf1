#pragma once
// Whole-file operations the system needs, on paths in the active code page.
#include <string>
#include <vector>

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
  // The names of the files directly in `folder` (not its folders), in the order in which the
  // file system gives them; false when the folder can't be listed.
  virtual bool ListFiles(const std::string& folder, std::vector<std::string>& names) = 0;
  // Deletes the folder with everything in it; false when it is still there afterwards.
  virtual bool RemoveFolderTree(const std::string& path) = 0;
  // Moves (renames) a file to a path where nothing is; false on failure.
  virtual bool RenameFile(const std::string& source, const std::string& target) = 0;
};

}  // namespace quorvane::platform
