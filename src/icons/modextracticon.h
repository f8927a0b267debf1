#pragma once
// The module modextracticon: reading and writing one entry of a folder's desktop.ini through
// the platform's profile functions. Unlike the pair in iniReadWrite, a read tells a missing
// entry from an empty one: the platform is given the stand-in "?!?" for a missing entry.
#include <string>

#include "core/Types.h"

namespace quorvane {

// True, with the value (at most 255 characters) in `value`, when `key` is in `section` of
// `file`. False, with `value` untouched, when the file, section or key is missing, and also
// when the stored value itself begins with "?!?".
Boolean ReadIniEntry(std::string section, const std::string& key, const std::string& file,
                     std::string& value);

// Writes `key`=`value` into `section` of `file`. Whether the platform managed is not looked at.
void WriteIniEntry(std::string section, const std::string& key, const std::string& value,
                   const std::string& file);

}  // namespace quorvane
