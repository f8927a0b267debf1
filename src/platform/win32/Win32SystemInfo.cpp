#include "platform/win32/Win32SystemInfo.h"

#include <windows.h>
#include <shlobj.h>

#include <algorithm>
#include <cstring>

#include "platform/win32/GdiHandles.h"

namespace quorvane::platform::win32 {

Win32SystemInfo::Win32SystemInfo(const std::string& resourceModule)
    : module_(::LoadLibraryExA(resourceModule.c_str(), nullptr,
                               LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE)),
      otherModule_(true) {}

void Win32SystemInfo::FreeDataModule(void* module) { ::FreeLibrary(static_cast<HMODULE>(module)); }

std::int32_t Win32SystemInfo::GetVersionExA(OsVersionInfo& info) {
  // Only the 148-byte record is carried here; any other size is refused, as the platform
  // refuses a size it does not know.
  if (info.dwOSVersionInfoSize != osversion::kRecordSize) {
    ::SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return 0;
  }
  OSVERSIONINFOA native{};
  static_assert(sizeof native == sizeof info, "the platform's version record is 148 bytes");
  native.dwOSVersionInfoSize = sizeof native;
  const BOOL done = ::GetVersionExA(&native);
  if (!done) return 0;
  info.dwMajorVersion = native.dwMajorVersion;
  info.dwMinorVersion = native.dwMinorVersion;
  info.dwBuildNumber = native.dwBuildNumber;
  info.dwPlatformId = native.dwPlatformId;
  std::memcpy(info.szCSDVersion.data(), native.szCSDVersion, info.szCSDVersion.size());
  return static_cast<std::int32_t>(done);
}

std::int32_t Win32SystemInfo::SHGetSpecialFolderLocation(std::uint32_t owner,
                                                         std::int32_t folderId,
                                                         ItemIdList& idList) {
  PIDLIST_ABSOLUTE list = nullptr;
  const HRESULT result = ::SHGetSpecialFolderLocation(ToNative<HWND>(owner), folderId, &list);
  idList = static_cast<ItemIdList>(reinterpret_cast<std::uintptr_t>(list));
  return static_cast<std::int32_t>(result);
}

std::int32_t Win32SystemInfo::SHGetPathFromIDListA(ItemIdList idList, std::string& path) {
  if (idList == 0) return 0;
  char buffer[MAX_PATH + 1] = {};
  const auto list =
      reinterpret_cast<PCIDLIST_ABSOLUTE>(static_cast<std::uintptr_t>(idList));
  const BOOL done = ::SHGetPathFromIDListA(list, buffer);
  if (!done) return 0;
  const std::size_t n = std::min(std::strlen(buffer) + 1, path.size());
  std::copy_n(buffer, n, path.begin());
  return static_cast<std::int32_t>(done);
}

std::optional<std::string> Win32SystemInfo::LoadResourceData(const std::string& type,
                                                             const std::string& name) {
  HMODULE module = otherModule_ ? static_cast<HMODULE>(module_.Get()) : ::GetModuleHandleA(nullptr);
  if (module == nullptr) return std::nullopt;
  HRSRC found = ::FindResourceA(module, name.c_str(), type.c_str());
  if (found == nullptr) return std::nullopt;
  HGLOBAL loaded = ::LoadResource(module, found);
  const DWORD size = ::SizeofResource(module, found);
  const void* bytes = loaded != nullptr ? ::LockResource(loaded) : nullptr;
  if (bytes == nullptr) return std::nullopt;
  return std::string(static_cast<const char*>(bytes), size);
}

std::string Win32SystemInfo::ExecutableFolder() {
  std::string path(MAX_PATH, '\0');
  for (;;) {
    const DWORD n = ::GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (n == 0) return std::string();
    if (n < path.size()) {
      path.resize(n);
      break;
    }
    if (path.size() >= 32768) return std::string();
    path.resize(path.size() * 2);
  }
  const std::size_t slash = path.find_last_of('\\');
  return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

}  // namespace quorvane::platform::win32
