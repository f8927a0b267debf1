#pragma once
// Profile (INI) files through kernel32's own profile functions.
#include <cstdint>

#include "platform/ProfileFiles.h"

namespace quorvane::platform::win32 {

class Win32ProfileFiles final : public ProfileFiles {
 public:
  std::uint32_t GetPrivateProfileStringA(const char* section, const char* key,
                                         const char* defaultValue, char* buffer,
                                         std::uint32_t size, const char* file) override;
  std::int32_t WritePrivateProfileStringA(const char* section, const char* key,
                                          const char* value, const char* file) override;
};

}  // namespace quorvane::platform::win32
