#pragma once
// Profile (INI) files on disk for the build without Windows (a backslash in a path separates
// folders, as on the platform), with the platform's semantics as
// its profile functions show them:
//
// - A file is read whole on every call and taken apart into sections and entries. Lines end at
//   CR, LF or both; blank lines are dropped. Lines before the first "[...]" line form a nameless
//   section, which is always first. A line that begins with "[" and holds a "]" is a section
//   header: its name is what lies between the "[" and the last "]", trimmed. Any other line is
//   an entry: the key before the first "=", trimmed, and the value behind it, trimmed; a line
//   without "=" is a key without a value, which reads as missing. A name or value ends at its
//   first NUL.
// - Section and key names are compared without regard to the case of A to Z, after the caller's
//   names are trimmed. The first matching section, and in it the first matching key, win.
// - A value or default in matching double or single quotes loses them (with the platform's
//   one-short rule when the buffer only just fits the unquoted text). A default loses its
//   trailing spaces, down to one character.
// - A write that changes something writes the whole file again from its parts: every line
//   ends in CR LF, blank lines are gone, names and values trimmed, and a section without a name
//   has no header line. A new key goes at the end of its section, a new section at the end of
//   the file, as "[section]" and "key=value"; what is written loses its leading blanks at once
//   and its trailing ones at the next read. A write that changes nothing leaves the file alone.
//   A missing folder is a failure (0); a missing file is created. A null value deletes the key
//   and a null key the section; a null section writes nothing and fails.
// - A file that starts with a UTF-8 or UTF-16 byte-order mark is read and written back in that
//   encoding; the texts of the callers are in the active code page, Windows-1252, and
//   characters it has no code for read as "?".
// - A null section reads as the list of section names, a null key as the list of key names of
//   the section, each name ended by a NUL and the list by one more. Nameless sections, keys
//   without a value and keys beginning with ";" are left out of the lists, though a key
//   beginning with ";" still reads by its name. An empty list of keys reads as the default.
#include <cstdint>

#include "platform/ProfileFiles.h"

namespace quorvane::platform::portable {

class PortableProfileFiles final : public ProfileFiles {
 public:
  std::uint32_t GetPrivateProfileStringA(const char* section, const char* key,
                                         const char* defaultValue, char* buffer,
                                         std::uint32_t size, const char* file) override;
  std::int32_t WritePrivateProfileStringA(const char* section, const char* key,
                                          const char* value, const char* file) override;
};

}  // namespace quorvane::platform::portable
