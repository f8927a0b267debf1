#include "platform/win32/Win32FileTypes.h"

#include <windows.h>
#include <shellapi.h>

#include <cstring>

namespace quorvane::platform::win32 {

namespace {

constexpr std::uint32_t kExeType = 0x2000;

DWORD_PTR Ask(const std::string& name, std::uint32_t attributes, std::uint32_t flags,
              SHFILEINFOA& info) {
  return ::SHGetFileInfoA(name.c_str(), attributes, &info, sizeof info, flags);
}

}  // namespace

std::uintptr_t Win32FileTypes::SHGetFileInfoA(const std::string& name, std::uint32_t attributes,
                                              std::uint32_t flags, std::string& typeName) {
  SHFILEINFOA info{};
  DWORD_PTR result = Ask(name, attributes, flags, info);
  // Some shells answer the executable-type bit only on its own and refuse the whole request
  // when it comes with others; the type name is then asked for without it, so that the name
  // comes back all the same.
  if (result == 0 && (flags & kExeType) != 0 && (flags & filetypes::kTypeName) != 0) {
    info = SHFILEINFOA{};
    result = Ask(name, attributes,
                 flags & (filetypes::kTypeName | filetypes::kUseFileAttributes), info);
  }
  info.szTypeName[sizeof info.szTypeName - 1] = '\0';
  typeName.assign(info.szTypeName, ::strnlen(info.szTypeName, sizeof info.szTypeName));
  // The system image list's handle, the executable's type or 1: non-zero is an answer.
  return static_cast<std::uintptr_t>(result);
}

std::int64_t Win32FileTypes::FileLen(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (::GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data) == FALSE ||
      (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return -1;
  }
  return (static_cast<std::int64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
}

}  // namespace quorvane::platform::win32
