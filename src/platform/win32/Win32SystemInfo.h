#pragma once
// System facts from kernel32 and shell32: the version record, the special folders, raw
// resources and the executable's folder.
#include <string>

#include "platform/SystemInfo.h"
#include "platform/win32/UniqueHandle.h"

namespace quorvane::platform::win32 {

class Win32SystemInfo final : public SystemInfo {
 public:
  // Resources come from the process's own executable.
  Win32SystemInfo() = default;
  // Resources come from another module file, loaded as data only (a check of what a built
  // program carries). When it can't be loaded, the program has no resources.
  explicit Win32SystemInfo(const std::string& resourceModule);

  std::int32_t GetVersionExA(OsVersionInfo& info) override;
  std::int32_t SHGetSpecialFolderLocation(std::uint32_t owner, std::int32_t folderId,
                                          ItemIdList& idList) override;
  std::int32_t SHGetPathFromIDListA(ItemIdList idList, std::string& path) override;
  std::optional<std::string> LoadResourceData(const std::string& type,
                                              const std::string& name) override;
  std::string ExecutableFolder() override;

 private:
  // A module loaded as data, freed with FreeLibrary (its handle is kept untyped here so that this
  // header needs no windows.h); empty for the executable.
  static void FreeDataModule(void* module);
  UniqueHandle<void*, &FreeDataModule> module_;
  bool otherModule_ = false;
};

}  // namespace quorvane::platform::win32
