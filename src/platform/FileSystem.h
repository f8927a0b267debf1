#pragma once
// Whole-file operations the system needs, on paths in the active code page.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane::platform {

// What the writer of a file that replaces another writes through, piece by piece, in order.
class FileWriter {
 public:
  // Writes all `count` bytes after those written before; false on failure.
  virtual bool Write(const void* data, std::size_t count) = 0;

 protected:
  ~FileWriter() = default;
};

// How replacing a file whole ended: done, or the step that failed, with the platform's number
// for the failure (GetLastError's on Windows, errno elsewhere; 0 where the writer gave up).
struct Replacement {
  enum class Step : std::uint8_t {
    Done,
    Create,  // no new file could be made beside the old one
    Write,   // the new content couldn't be written, or made durable
    Commit,  // the new file couldn't take the old one's place
  };
  Step failed = Step::Done;
  // When the new file couldn't be made: its folder is missing, or the path names none.
  bool noFolder = false;
  std::uint32_t error = 0;

  explicit operator bool() const { return failed == Step::Done; }
};

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

  // Replaces the file at `path` whole, or makes it: what `write` writes goes into a new file
  // beside it, named for this process, which is made durable and then takes the old file's place
  // in one step. When any step fails, or `write` returns false, the new file is removed and the
  // old one stays exactly as it was. Every writer of a whole file goes through here.
  virtual Replacement ReplaceWhole(const std::string& path,
                                   const std::function<bool(FileWriter&)>& write) = 0;
  // The last step of ReplaceWhole, for a file that another writer (a compressor that makes its
  // own files) made beside `path`: makes it durable, then puts it in the place of `path` in one
  // step, replacing the file there. On failure `made` is left where it is for its maker to remove.
  virtual Replacement PutInPlace(const std::string& made, const std::string& path) = 0;

  // ReplaceWhole with content at hand.
  Replacement ReplaceContent(const std::string& path, std::string_view content) {
    return ReplaceWhole(path, [content](FileWriter& file) {
      return content.empty() || file.Write(content.data(), content.size());
    });
  }
};

}  // namespace quorvane::platform
