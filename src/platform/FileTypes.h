#pragma once
// What a list of files shows of each: the shell's name of its kind ("JPEG Image", "Text
// Document"), asked for by a name whose extension decides, without the file being opened
// (SHGetFileInfoA with the attributes and flag word given, of which only the type name is read);
// and the file's length.
#include <cstdint>
#include <string>

namespace quorvane::platform {

namespace filetypes {
inline constexpr std::uint32_t kNormalAttributes = 128;  // FILE_ATTRIBUTE_NORMAL
inline constexpr std::uint32_t kUseFileAttributes = 0x10;
inline constexpr std::uint32_t kTypeName = 0x400;
// The type size in characters of the shell's record, terminator included.
inline constexpr std::size_t kTypeNameSize = 80;
}  // namespace filetypes

class FileTypes {
 public:
  virtual ~FileTypes() = default;
  // The shell's record of `name` with these attributes and flags; `typeName` takes its type
  // field as the shell filled it (up to its terminator, at most 79 characters; empty when the
  // shell left it). Non-zero when the shell answered.
  virtual std::uintptr_t SHGetFileInfoA(const std::string& name, std::uint32_t attributes,
                                        std::uint32_t flags, std::string& typeName) = 0;
  // The length of the file in bytes; -1 when there is no such file or it can't be read.
  virtual std::int64_t FileLen(const std::string& path) = 0;
};

}  // namespace quorvane::platform
