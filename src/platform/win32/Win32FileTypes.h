#pragma once
#include "platform/FileTypes.h"

namespace quorvane::platform::win32 {

// The shell's record of a name (SHGetFileInfoA), of which the type field is read.
class Win32FileTypes final : public FileTypes {
 public:
  std::uintptr_t SHGetFileInfoA(const std::string& name, std::uint32_t attributes,
                                std::uint32_t flags, std::string& typeName) override;
  std::int64_t FileLen(const std::string& path) override;
};

}  // namespace quorvane::platform::win32
