#pragma once
// The module iniReadWrite: one value of a text INI file, read or written through the platform's
// profile functions. Files.ini is kept with these. A missing file, section or key and an empty
// value all read as "".
#include <cstdint>
#include <string>

namespace quorvane {

// The value of `key` in `section` of `file`, cut by the platform at 254 characters.
std::string ReadIniValue(const std::string& section, const std::string& key,
                         const std::string& file);

// Writes `key`=`value` into `section` of `file`, making the file, section and key as needed.
// The platform's result as a 16-bit number: non-zero on success, 0 on failure.
std::int16_t WriteIniValue(const std::string& section, const std::string& key,
                           const std::string& value, const std::string& file);

}  // namespace quorvane
