#pragma once
// Code page conversions through kernel32: the system's own tables, for its ANSI code page.
#include "platform/CodePages.h"

namespace quorvane::platform::win32 {

class Win32CodePages final : public CodePages {
 public:
  std::uint32_t GetACP() override;
  std::int32_t MultiByteToWideChar(std::uint32_t codePage, std::uint32_t flags, const char* text,
                                   std::int32_t length, char16_t* wide,
                                   std::int32_t room) override;
  std::int32_t WideCharToMultiByte(std::uint32_t codePage, std::uint32_t flags,
                                   const char16_t* wide, std::int32_t length, char* text,
                                   std::int32_t room) override;
};

}  // namespace quorvane::platform::win32
