#pragma once
// System facts without the platform: a version record, a table of special folders, a table of
// resources and an executable folder, each of which tests may set. Out of the box it answers as
// a fresh Wine prefix does (version 6.1, build 7601, "Service Pack 1"), keeps its special folders
// under one folder of the machine's temporary folder, made when missing, carries the program's
// blank icon EMPTY.ICO, and names the folder of the running executable.
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/SystemInfo.h"

namespace quorvane::platform::portable {

class PortableSystemInfo final : public SystemInfo {
 public:
  PortableSystemInfo();

  std::int32_t GetVersionExA(OsVersionInfo& info) override;
  std::int32_t SHGetSpecialFolderLocation(std::uint32_t owner, std::int32_t folderId,
                                          ItemIdList& idList) override;
  std::int32_t SHGetPathFromIDListA(ItemIdList idList, std::string& path) override;
  std::optional<std::string> LoadResourceData(const std::string& type,
                                              const std::string& name) override;
  std::string ExecutableFolder() override;

  // The record the version call gives from now on (its size field is not looked at).
  void SetVersion(std::uint32_t platformId, std::uint32_t major, std::uint32_t minor,
                  std::uint32_t build = 0, const std::string& servicePack = std::string());
  // What the version call gives from now on: 1, as the platform does on success, by default; 0
  // fails the call and leaves the record as it was; any other value fills the record all the
  // same.
  void SetVersionCallResult(std::int32_t result) { versionResult_ = result; }
  // How many version calls were made.
  int VersionCalls() const { return versionCalls_; }

  // The path of a special folder, without a trailing separator. A folder id the table does not
  // hold is refused as an invalid argument; a folder that does not exist on disk fails.
  void SetFolder(std::int32_t folderId, std::string path);
  void RemoveFolder(std::int32_t folderId);
  std::optional<std::string> Folder(std::int32_t folderId) const;
  // The folder under which the default special folders live.
  static std::string DefaultFolderRoot();

  // Puts or removes a resource of the program.
  void PutResource(const std::string& type, const std::string& name, std::string bytes);
  void RemoveResource(const std::string& type, const std::string& name);

  void SetExecutableFolder(std::string folder) { executableFolder_ = std::move(folder); }

 private:
  static std::pair<std::string, std::string> ResourceKey(const std::string& type,
                                                         const std::string& name);

  OsVersionInfo version_;
  std::int32_t versionResult_ = 1;
  int versionCalls_ = 0;
  std::map<std::int32_t, std::string> folders_;
  std::map<ItemIdList, std::string> itemLists_;  // never freed, as on the platform
  ItemIdList nextItemList_ = 1;
  std::map<std::pair<std::string, std::string>, std::string> resources_;
  std::string executableFolder_;
};

}  // namespace quorvane::platform::portable
