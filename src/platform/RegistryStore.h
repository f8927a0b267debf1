#pragma once
// The hierarchical settings store, as the ten operations the system uses, with the platform's
// arguments, results and status values. Handles are the 32-bit values the system keeps; the
// predefined roots have their fixed values.
#include <cstdint>
#include <string>

namespace quorvane::platform {

using RegHandle = std::uint32_t;
using RegStatus = std::int32_t;

namespace reg {
inline constexpr RegHandle kClassesRoot = 0x80000000u;
inline constexpr RegHandle kCurrentUser = 0x80000001u;
inline constexpr RegHandle kLocalMachine = 0x80000002u;
inline constexpr RegHandle kUsers = 0x80000003u;
inline constexpr RegHandle kPerformanceData = 0x80000004u;
inline constexpr RegHandle kCurrentConfig = 0x80000005u;
inline constexpr RegHandle kDynData = 0x80000006u;

inline constexpr RegStatus kSuccess = 0;
inline constexpr RegStatus kFileNotFound = 2;
inline constexpr RegStatus kAccessDenied = 5;
inline constexpr RegStatus kInvalidHandle = 6;
inline constexpr RegStatus kInvalidParameter = 87;
inline constexpr RegStatus kBadPathname = 161;
inline constexpr RegStatus kMoreData = 234;
inline constexpr RegStatus kNoMoreItems = 259;
inline constexpr RegStatus kKeyDeleted = 1018;

inline constexpr std::uint32_t kSz = 1;
inline constexpr std::uint32_t kExpandSz = 2;
inline constexpr std::uint32_t kBinary = 3;
inline constexpr std::uint32_t kDword = 4;
inline constexpr std::uint32_t kMultiSz = 7;

inline constexpr std::uint32_t kQueryValue = 0x0001;
inline constexpr std::uint32_t kSetValue = 0x0002;
inline constexpr std::uint32_t kCreateSubKey = 0x0004;
inline constexpr std::uint32_t kEnumerateSubKeys = 0x0008;
inline constexpr std::uint32_t kDelete = 0x10000;
inline constexpr std::uint32_t kAllAccess = 0xF003F;
inline constexpr std::uint32_t kWrite = 0x20006;
inline constexpr std::uint32_t kRead = 0x20019;

constexpr bool IsPredefinedRoot(RegHandle key) { return key >= kClassesRoot && key <= kDynData; }
}  // namespace reg

class RegistryStore {
 public:
  virtual ~RegistryStore() = default;

  // Opens an existing key; fails on a missing key and on root 0. An empty sub-key opens the
  // given key itself.
  virtual RegStatus RegOpenKeyExA(RegHandle key, const std::string& subKey, std::uint32_t options,
                                  std::uint32_t samDesired, RegHandle& result) = 0;
  // The same without an access mask.
  virtual RegStatus RegOpenKeyA(RegHandle key, const std::string& subKey, RegHandle& result) = 0;
  // Opens the key, making it and all its missing ancestors.
  virtual RegStatus RegCreateKeyA(RegHandle key, const std::string& subKey, RegHandle& result) = 0;
  virtual RegStatus RegCloseKey(RegHandle key) = 0;
  // With an empty sub-key, deletes the opened key itself. A key with sub-keys is refused.
  virtual RegStatus RegDeleteKeyA(RegHandle key, const std::string& subKey) = 0;
  virtual RegStatus RegDeleteValueA(RegHandle key, const std::string& valueName) = 0;
  // Creates or replaces a value with `size` bytes of `data`. A text value (kind 1) is kept with
  // its terminator even when `size` leaves it out, and a later query counts the terminator.
  virtual RegStatus RegSetValueExA(RegHandle key, const std::string& valueName,
                                   std::uint32_t reserved, std::uint32_t kind,
                                   const std::uint8_t* data, std::uint32_t size) = 0;
  // Gives kind, data and size. A missing value, or data that does not fit in `*size` bytes, is a
  // non-zero status, and then `*size` still tells the needed size. With a null `data` it
  // succeeds for any existing value. `kind` and `size` may be null.
  virtual RegStatus RegQueryValueExA(RegHandle key, const std::string& valueName,
                                     std::uint32_t* reserved, std::uint32_t* kind,
                                     std::uint8_t* data, std::uint32_t* size) = 0;
  // The sub-key at `index`: `*nameSize` is the buffer's size in characters on entry and the
  // name's length on return. 259 past the last.
  virtual RegStatus RegEnumKeyExA(RegHandle key, std::uint32_t index, char* name,
                                  std::uint32_t* nameSize) = 0;
  // The value at `index`, with the same conventions for the name and those of RegQueryValueExA
  // for the data. 259 past the last.
  virtual RegStatus RegEnumValueA(RegHandle key, std::uint32_t index, char* name,
                                  std::uint32_t* nameSize, std::uint32_t* kind,
                                  std::uint8_t* data, std::uint32_t* dataSize) = 0;
};

}  // namespace quorvane::platform
