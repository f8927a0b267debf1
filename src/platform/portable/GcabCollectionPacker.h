#pragma once
// The collection packer for the build without Windows, over Debian's libgcab: libgcab compresses
// each file into a cabinet of one folder and expands the entries of any cabinet; the folders are
// laid side by side in one file by the shared cabinet code. Paths use backslashes or slashes;
// names are in the active code page, Windows-1252, and go into the cabinet as UTF-8 when they
// are not plain ASCII.
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/CabinetPacker.h"
#include "platform/portable/PortableFileSystem.h"

namespace quorvane::platform::portable {

class GcabCollectionPacker final : public CabinetPacker {
 public:
  GcabCollectionPacker() = default;
  ~GcabCollectionPacker() override;

 protected:
  std::unique_ptr<cabinet::RandomFile> OpenForReading(const std::string& path) override;
  std::unique_ptr<cabinet::RandomFile> CreateNew(const std::string& path) override;
  bool IsFile(const std::string& path) override;
  bool IsFolder(const std::string& path) override;
  bool RemoveFile(const std::string& path) override;
  void RemoveFolderTree(const std::string& path) override;
  FileSystem& Files() override { return files_; }
  bool MakeFolders(const std::string& path) override;
  void SetModified(const std::string& path, std::uint16_t date, std::uint16_t time) override;
  std::string LastErrorText() override;
  std::string ErrorText(std::uint32_t error) override;
  std::string ScratchFolder() override;
  std::string ProcessTag() override;
  std::optional<std::string> NameOfEntry(const cabinet::Entry& entry) override;
  cabinet::Entry EntryForEmptyFile(const Item& item) override;
  void Compress(const std::vector<Item>& items, const std::string& scratch,
                std::vector<std::string>& made) override;
  void Expand(const std::string& archive, const cabinet::Layout& layout,
              const std::vector<Target>& targets) override;

 private:
  // A copy of the archive with each given sum in the checksum field of the block that begins at
  // its offset. Returns what went wrong, or nothing.
  std::optional<std::string> CopyWithChecksums(
      const std::string& archive, const std::string& copy,
      const std::vector<std::pair<std::uint64_t, std::uint32_t>>& sums);

  PortableFileSystem files_;
  int lastError_ = 0;
};

class GcabCollectionPackers final : public CollectionPackers {
 public:
  std::unique_ptr<CollectionPacker> Create() override;
};

// Windows-1252 text as UTF-8, and back; nothing when a character has no place in the target.
std::string Windows1252ToUtf8(const std::string& text);
std::optional<std::string> Utf8ToWindows1252(const std::string& text);

}  // namespace quorvane::platform::portable
