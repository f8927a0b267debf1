#include "platform/portable/PortableSystemInfo.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/portable/EmptyIcon.h"

namespace quorvane::platform::portable {

namespace {

std::string Upper(std::string s) {
  for (char& c : s) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return s;
}

std::string RunningExecutableFolder() {
  std::error_code ec;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (!ec && self.has_parent_path()) return self.parent_path().string();
  const std::filesystem::path here = std::filesystem::current_path(ec);
  return ec ? std::string() : here.string();
}

}  // namespace

PortableSystemInfo::PortableSystemInfo() {
  SetVersion(osversion::kWin32Nt, 6, 1, 7601, "Service Pack 1");
  const std::filesystem::path root = DefaultFolderRoot();
  const std::pair<std::int32_t, const char*> defaults[] = {
      {folder::kAppData, "AppData/Roaming"},
      {folder::kWindows, "Windows"},
      {folder::kProgramFiles, "Program Files"},
      {folder::kMyPictures, "Pictures"},
      {folder::kSystemX86, "Windows/system32"},
  };
  for (const auto& [id, relative] : defaults) {
    const std::filesystem::path path = root / relative;
    std::error_code ec;
    std::filesystem::create_directories(path, ec);
    folders_[id] = path.string();
  }
  PutResource("ICO", "EMPTY.ICO", EmptyIconFile());
  executableFolder_ = RunningExecutableFolder();
}

std::string PortableSystemInfo::DefaultFolderRoot() {
  std::error_code ec;
  std::filesystem::path temp = std::filesystem::temp_directory_path(ec);
  if (ec) temp = "/tmp";
  return (temp / "quorvane-machine").string();
}

std::int32_t PortableSystemInfo::GetVersionExA(OsVersionInfo& info) {
  ++versionCalls_;
  if (versionResult_ == 0 || info.dwOSVersionInfoSize != osversion::kRecordSize) return 0;
  const std::uint32_t size = info.dwOSVersionInfoSize;
  info = version_;
  info.dwOSVersionInfoSize = size;
  return versionResult_;
}

void PortableSystemInfo::SetVersion(std::uint32_t platformId, std::uint32_t major,
                                    std::uint32_t minor, std::uint32_t build,
                                    const std::string& servicePack) {
  version_ = OsVersionInfo{};
  version_.dwOSVersionInfoSize = osversion::kRecordSize;
  version_.dwMajorVersion = major;
  version_.dwMinorVersion = minor;
  version_.dwBuildNumber = build;
  version_.dwPlatformId = platformId;
  const std::size_t n = std::min(servicePack.size(), version_.szCSDVersion.size() - 1);
  std::copy_n(servicePack.begin(), n, version_.szCSDVersion.begin());
}

std::int32_t PortableSystemInfo::SHGetSpecialFolderLocation(std::uint32_t /*owner*/,
                                                            std::int32_t folderId,
                                                            ItemIdList& idList) {
  idList = 0;
  const auto found = folders_.find(folderId);
  if (found == folders_.end()) return folder::kInvalidArg;
  std::error_code ec;
  if (!std::filesystem::is_directory(found->second, ec)) return folder::kFail;
  idList = nextItemList_++;
  itemLists_[idList] = found->second;
  return folder::kOk;
}

std::int32_t PortableSystemInfo::SHGetPathFromIDListA(ItemIdList idList, std::string& path) {
  const auto found = itemLists_.find(idList);
  if (found == itemLists_.end()) return 0;
  const std::string& text = found->second;
  const std::size_t n = std::min(text.size() + 1, path.size());
  std::copy_n(text.c_str(), n, path.begin());
  return 1;
}

std::optional<std::string> PortableSystemInfo::LoadResourceData(const std::string& type,
                                                                const std::string& name) {
  const auto found = resources_.find(ResourceKey(type, name));
  if (found == resources_.end()) return std::nullopt;
  return found->second;
}

std::string PortableSystemInfo::ExecutableFolder() { return executableFolder_; }

void PortableSystemInfo::SetFolder(std::int32_t folderId, std::string path) {
  folders_[folderId] = std::move(path);
}

void PortableSystemInfo::RemoveFolder(std::int32_t folderId) { folders_.erase(folderId); }

std::optional<std::string> PortableSystemInfo::Folder(std::int32_t folderId) const {
  const auto found = folders_.find(folderId);
  if (found == folders_.end()) return std::nullopt;
  return found->second;
}

void PortableSystemInfo::PutResource(const std::string& type, const std::string& name,
                                     std::string bytes) {
  resources_[ResourceKey(type, name)] = std::move(bytes);
}

void PortableSystemInfo::RemoveResource(const std::string& type, const std::string& name) {
  resources_.erase(ResourceKey(type, name));
}

std::pair<std::string, std::string> PortableSystemInfo::ResourceKey(const std::string& type,
                                                                    const std::string& name) {
  return {Upper(type), Upper(name)};
}

}  // namespace quorvane::platform::portable
