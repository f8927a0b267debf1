#include "platform/win32/Win32Registry.h"

#include <windows.h>

#include <vector>

namespace quorvane::platform::win32 {

namespace {

// Registry handles, the predefined roots included, are 32-bit values sign-extended to the
// pointer's width; the system keeps the low 32 bits.
HKEY ToHkey(RegHandle key) {
  return reinterpret_cast<HKEY>(static_cast<INT_PTR>(static_cast<std::int32_t>(key)));
}

RegHandle FromHkey(HKEY key) {
  return static_cast<RegHandle>(reinterpret_cast<UINT_PTR>(key) & 0xFFFFFFFFu);
}

RegStatus Status(LONG status) { return static_cast<RegStatus>(status); }

}  // namespace

Win32Registry::Win32Registry() : KeyReusingRegistry(calls, [] { return ::GetTickCount64(); }) {}

RegStatus Win32RegistryCalls::RegOpenKeyExA(RegHandle key, const std::string& subKey,
                                            std::uint32_t options, std::uint32_t samDesired,
                                            RegHandle& result) {
  HKEY opened = nullptr;
  const LONG s = ::RegOpenKeyExA(ToHkey(key), subKey.c_str(), options, samDesired, &opened);
  if (s == ERROR_SUCCESS) result = FromHkey(opened);
  return Status(s);
}

RegStatus Win32RegistryCalls::RegOpenKeyA(RegHandle key, const std::string& subKey,
                                          RegHandle& result) {
  HKEY opened = nullptr;
  const LONG s = ::RegOpenKeyA(ToHkey(key), subKey.c_str(), &opened);
  if (s == ERROR_SUCCESS) result = FromHkey(opened);
  return Status(s);
}

RegStatus Win32RegistryCalls::RegCreateKeyA(RegHandle key, const std::string& subKey,
                                            RegHandle& result) {
  HKEY created = nullptr;
  const LONG s = ::RegCreateKeyA(ToHkey(key), subKey.c_str(), &created);
  if (s == ERROR_SUCCESS) result = FromHkey(created);
  return Status(s);
}

RegStatus Win32RegistryCalls::RegCloseKey(RegHandle key) {
  return Status(::RegCloseKey(ToHkey(key)));
}

RegStatus Win32RegistryCalls::RegDeleteKeyA(RegHandle key, const std::string& subKey) {
  return Status(::RegDeleteKeyA(ToHkey(key), subKey.c_str()));
}

RegStatus Win32RegistryCalls::RegDeleteValueA(RegHandle key, const std::string& valueName) {
  return Status(::RegDeleteValueA(ToHkey(key), valueName.c_str()));
}

RegStatus Win32RegistryCalls::RegSetValueExA(RegHandle key, const std::string& valueName,
                                             std::uint32_t reserved, std::uint32_t kind,
                                             const std::uint8_t* data, std::uint32_t size) {
  // A text value is stored with its terminator even when the size leaves it out: the system
  // passes the length of its text and reads the terminator back as part of the value.
  if ((kind == REG_SZ || kind == REG_EXPAND_SZ) && data != nullptr &&
      (size == 0 || data[size - 1] != 0)) {
    std::vector<BYTE> terminated(data, data + size);
    terminated.push_back(0);
    return Status(::RegSetValueExA(ToHkey(key), valueName.c_str(), reserved, kind,
                                   terminated.data(), size + 1));
  }
  return Status(::RegSetValueExA(ToHkey(key), valueName.c_str(), reserved, kind, data, size));
}

RegStatus Win32RegistryCalls::RegQueryValueExA(RegHandle key, const std::string& valueName,
                                               std::uint32_t* reserved, std::uint32_t* kind,
                                               std::uint8_t* data, std::uint32_t* size) {
  DWORD k = kind ? *kind : 0;
  DWORD n = size ? *size : 0;
  const LONG s = ::RegQueryValueExA(ToHkey(key), valueName.c_str(),
                                    reinterpret_cast<LPDWORD>(reserved), kind ? &k : nullptr,
                                    data, size ? &n : nullptr);
  if (kind) *kind = k;
  if (size) *size = n;
  return Status(s);
}

RegStatus Win32RegistryCalls::RegEnumKeyExA(RegHandle key, std::uint32_t index, char* name,
                                            std::uint32_t* nameSize) {
  DWORD n = nameSize ? *nameSize : 0;
  const LONG s = ::RegEnumKeyExA(ToHkey(key), index, name, nameSize ? &n : nullptr, nullptr,
                                 nullptr, nullptr, nullptr);
  if (nameSize) *nameSize = n;
  return Status(s);
}

RegStatus Win32RegistryCalls::RegEnumValueA(RegHandle key, std::uint32_t index, char* name,
                                            std::uint32_t* nameSize, std::uint32_t* kind,
                                            std::uint8_t* data, std::uint32_t* dataSize) {
  DWORD n = nameSize ? *nameSize : 0;
  DWORD k = 0;
  DWORD d = dataSize ? *dataSize : 0;
  const LONG s = ::RegEnumValueA(ToHkey(key), index, name, nameSize ? &n : nullptr, nullptr,
                                 kind ? &k : nullptr, data, dataSize ? &d : nullptr);
  if (nameSize) *nameSize = n;
  if (kind) *kind = k;
  if (dataSize) *dataSize = d;
  return Status(s);
}

}  // namespace quorvane::platform::win32
