#include "platform/win32/Win32ProfileFiles.h"

#include <windows.h>

namespace quorvane::platform::win32 {

std::uint32_t Win32ProfileFiles::GetPrivateProfileStringA(const char* section, const char* key,
                                                          const char* defaultValue, char* buffer,
                                                          std::uint32_t size, const char* file) {
  const DWORD copied = ::GetPrivateProfileStringA(section, key, defaultValue, buffer,
                                                  static_cast<DWORD>(size), file);
  return static_cast<std::uint32_t>(copied);
}

std::int32_t Win32ProfileFiles::WritePrivateProfileStringA(const char* section, const char* key,
                                                           const char* value, const char* file) {
  return static_cast<std::int32_t>(::WritePrivateProfileStringA(section, key, value, file));
}

}  // namespace quorvane::platform::win32
