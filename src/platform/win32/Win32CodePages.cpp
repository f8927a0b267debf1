#include "platform/win32/Win32CodePages.h"

#include <windows.h>

namespace quorvane::platform::win32 {

static_assert(sizeof(char16_t) == sizeof(WCHAR), "the platform's wide characters are UTF-16");

std::uint32_t Win32CodePages::GetACP() { return ::GetACP(); }

std::int32_t Win32CodePages::MultiByteToWideChar(std::uint32_t codePage, std::uint32_t flags,
                                                 const char* text, std::int32_t length,
                                                 char16_t* wide, std::int32_t room) {
  return ::MultiByteToWideChar(codePage, flags, text, length, reinterpret_cast<LPWSTR>(wide),
                               room);
}

std::int32_t Win32CodePages::WideCharToMultiByte(std::uint32_t codePage, std::uint32_t flags,
                                                 const char16_t* wide, std::int32_t length,
                                                 char* text, std::int32_t room) {
  return ::WideCharToMultiByte(codePage, flags, reinterpret_cast<LPCWSTR>(wide), length, text,
                               room, nullptr, nullptr);
}

}  // namespace quorvane::platform::win32
