#pragma once
// Text between the single-byte strings of the system, in the system's ANSI code page, and the
// platform's wide characters (UTF-16), as the calls it makes for them, with the platform's
// arguments, results and status values. Which code page is the ANSI one is the system's: the
// user's locale decides it.
#include <cstdint>

namespace quorvane::platform {

namespace codepage {
// The system's ANSI code page, as a code page argument (CP_ACP).
inline constexpr std::uint32_t kAnsi = 0;
}  // namespace codepage

class CodePages {
 public:
  virtual ~CodePages() = default;

  // The number of the system's ANSI code page (1252, 1251, 932...).
  virtual std::uint32_t GetACP() = 0;

  // `length` bytes of `text` (-1: up to and with its NUL) in `codePage` as UTF-16 units into
  // `wide`, which has room for `room` of them. The number of units written; with `room` 0,
  // the number needed, nothing written. 0 when the room is too small or the code page unknown.
  // A NUL inside the length is converted like any other character.
  virtual std::int32_t MultiByteToWideChar(std::uint32_t codePage, std::uint32_t flags,
                                           const char* text, std::int32_t length,
                                           char16_t* wide, std::int32_t room) = 0;

  // `length` units of `wide` (-1: up to and with its NUL) as bytes of `codePage` into `text`,
  // which has room for `room` of them; a character the code page lacks becomes its default
  // character, "?". The number of bytes written; with `room` 0, the number needed. 0 when the
  // room is too small or the code page unknown.
  virtual std::int32_t WideCharToMultiByte(std::uint32_t codePage, std::uint32_t flags,
                                           const char16_t* wide, std::int32_t length, char* text,
                                           std::int32_t room) = 0;
};

}  // namespace quorvane::platform
