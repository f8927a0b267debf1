#pragma once
// Text profile (INI) files through the platform's two profile functions. Arguments are C texts as
// the platform takes them: a text ends at its first NUL.
#include <cstdint>

namespace quorvane::platform {

class ProfileFiles {
 public:
  virtual ~ProfileFiles() = default;

  // Copies the value of `key` in `section` of `file` into `buffer` (at most size - 1 characters
  // and a terminator) and returns the number of characters copied, without the terminator.
  // When the file, section or key is missing, copies `defaultValue` instead. With size 0 nothing
  // is copied. A null `section` copies the list of section names, a null `key` the list of the
  // section's key names: each name ended by a NUL, and the list by one more.
  virtual std::uint32_t GetPrivateProfileStringA(const char* section, const char* key,
                                                 const char* defaultValue, char* buffer,
                                                 std::uint32_t size, const char* file) = 0;
  // Writes `key`=`value` into `section` of `file`, creating the file, the section and the key
  // as needed, but not a missing folder. Non-zero on success. A null `value` deletes the key,
  // a null `key` the whole section.
  virtual std::int32_t WritePrivateProfileStringA(const char* section, const char* key,
                                                  const char* value, const char* file) = 0;
};

}  // namespace quorvane::platform
