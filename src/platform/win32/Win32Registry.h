#pragma once
// The registry store over advapi32: each operation one call of the system, and
// above them the store the program uses, which reuses the keys it has just
// closed.
#include "platform/KeyReusingRegistry.h"
#include "platform/RegistryStore.h"

namespace quorvane::platform::win32 {

class Win32RegistryCalls final : public RegistryStore {
 public:
  RegStatus RegOpenKeyExA(RegHandle key, const std::string& subKey, std::uint32_t options,
                          std::uint32_t samDesired, RegHandle& result) override;
  RegStatus RegOpenKeyA(RegHandle key, const std::string& subKey, RegHandle& result) override;
  RegStatus RegCreateKeyA(RegHandle key, const std::string& subKey, RegHandle& result) override;
  RegStatus RegCloseKey(RegHandle key) override;
  RegStatus RegDeleteKeyA(RegHandle key, const std::string& subKey) override;
  RegStatus RegDeleteValueA(RegHandle key, const std::string& valueName) override;
  RegStatus RegSetValueExA(RegHandle key, const std::string& valueName, std::uint32_t reserved,
                           std::uint32_t kind, const std::uint8_t* data,
                           std::uint32_t size) override;
  RegStatus RegQueryValueExA(RegHandle key, const std::string& valueName, std::uint32_t* reserved,
                             std::uint32_t* kind, std::uint8_t* data, std::uint32_t* size) override;
  RegStatus RegEnumKeyExA(RegHandle key, std::uint32_t index, char* name,
                          std::uint32_t* nameSize) override;
  RegStatus RegEnumValueA(RegHandle key, std::uint32_t index, char* name, std::uint32_t* nameSize,
                          std::uint32_t* kind, std::uint8_t* data,
                          std::uint32_t* dataSize) override;
};

namespace detail {
// Holds the calls, so that they exist before the store built over them.
struct RegistryCallsHolder {
  Win32RegistryCalls calls;
};
}  // namespace detail

class Win32Registry final : private detail::RegistryCallsHolder, public KeyReusingRegistry {
 public:
  Win32Registry();
};

}  // namespace quorvane::platform::win32
