#pragma once
// The collection packer over cabinet.dll: FCI compresses the files, each into a folder of its
// own, and FDI expands the entries; the shared cabinet code checks every archive first and lays
// the folders of an archive that is added to side by side in one new file. Names are in the
// active code page, and go into the cabinet as UTF-8 when they are not plain ASCII.
#include <memory>
#include <string>

#include "platform/CabinetPacker.h"
#include "platform/win32/Win32FileSystem.h"

namespace quorvane::platform::win32 {

class Win32CollectionPacker final : public CabinetPacker {
 public:
  Win32CollectionPacker() = default;
  ~Win32CollectionPacker() override;

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
  Win32FileSystem files_;
  unsigned long lastError_ = 0;
};

class Win32CollectionPackers final : public CollectionPackers {
 public:
  std::unique_ptr<CollectionPacker> Create() override;
};

}  // namespace quorvane::platform::win32
