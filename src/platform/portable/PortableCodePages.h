#pragma once
// Code page conversions without Windows: the C library's iconv, by the code page's number
// ("CP1252", "CP1251", "CP932"...), for the ANSI code page this platform stands for,
// Windows-1252 unless it is told another. Where the library knows no character for a byte, the
// byte stands for the character of the same number, as Windows does for the five bytes that
// Windows-1252 leaves free; a character the code page lacks becomes "?".
#include <cstdint>

#include "platform/CodePages.h"

namespace quorvane::platform::portable {

class PortableCodePages final : public CodePages {
 public:
  explicit PortableCodePages(std::uint32_t ansiCodePage = 1252) : ansi_(ansiCodePage) {}

  std::uint32_t GetACP() override { return ansi_; }
  std::int32_t MultiByteToWideChar(std::uint32_t codePage, std::uint32_t flags, const char* text,
                                   std::int32_t length, char16_t* wide,
                                   std::int32_t room) override;
  std::int32_t WideCharToMultiByte(std::uint32_t codePage, std::uint32_t flags,
                                   const char16_t* wide, std::int32_t length, char* text,
                                   std::int32_t room) override;

 private:
  std::uint32_t ansi_;
};

}  // namespace quorvane::platform::portable
