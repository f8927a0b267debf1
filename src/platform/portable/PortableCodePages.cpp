#include "platform/portable/PortableCodePages.h"

#include <iconv.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace quorvane::platform::portable {

namespace {

static_assert(std::endian::native == std::endian::little, "wide characters as UTF-16LE");

constexpr std::uint32_t kUtf8 = 65001;

// The library's name of a code page.
std::string LibraryName(std::uint32_t codePage) {
  return codePage == kUtf8 ? "UTF-8" : "CP" + std::to_string(codePage);
}

// One conversion descriptor of the library, closed when it goes.
class Converter {
 public:
  Converter(const std::string& to, const std::string& from)
      : handle_(::iconv_open(to.c_str(), from.c_str())) {}
  ~Converter() {
    if (Ready()) ::iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  bool Ready() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  // Converts what `input` holds onto the end of `output`. Stops at the first sequence it can't
  // convert, leaving `input` there; false then.
  bool Convert(const char*& input, std::size_t& left, std::vector<char>& output) {
    char buffer[256];
    while (left > 0) {
      char* in = const_cast<char*>(input);
      char* out = buffer;
      std::size_t room = sizeof buffer;
      const std::size_t result = ::iconv(handle_, &in, &left, &out, &room);
      output.insert(output.end(), buffer, out);
      input = in;
      if (result == static_cast<std::size_t>(-1) && errno != E2BIG) {
        ::iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        return false;
      }
    }
    return true;
  }

 private:
  iconv_t handle_;
};

std::optional<std::u16string> ToUnits(std::uint32_t codePage, const char* text,
                                      std::size_t length) {
  Converter converter("UTF-16LE", LibraryName(codePage));
  if (!converter.Ready()) return std::nullopt;
  std::vector<char> bytes;
  const char* input = text;
  std::size_t left = length;
  while (!converter.Convert(input, left, bytes)) {
    // A byte the library knows no character for stands for the character of its number.
    const auto byte = static_cast<unsigned char>(*input);
    bytes.push_back(static_cast<char>(byte));
    bytes.push_back('\0');
    ++input;
    --left;
  }
  std::u16string units(bytes.size() / 2, u'\0');
  std::memcpy(units.data(), bytes.data(), units.size() * 2);
  return units;
}

// Whether the library knows no character for the byte alone in the code page: the byte then
// stands for the character of its number, both ways.
bool IsFreeByte(std::uint32_t codePage, unsigned char byte) {
  Converter converter("UTF-16LE", LibraryName(codePage));
  if (!converter.Ready()) return false;
  const char text[1] = {static_cast<char>(byte)};
  const char* input = text;
  std::size_t left = 1;
  std::vector<char> bytes;
  return !converter.Convert(input, left, bytes);
}

std::optional<std::string> FromUnits(std::uint32_t codePage, const char16_t* wide,
                                     std::size_t length) {
  Converter converter(LibraryName(codePage), "UTF-16LE");
  if (!converter.Ready()) return std::nullopt;
  std::vector<char> bytes;
  const char* input = reinterpret_cast<const char*>(wide);
  std::size_t left = length * 2;
  while (!converter.Convert(input, left, bytes)) {
    char16_t unit = 0;
    std::memcpy(&unit, input, 2);
    // A character the code page lacks, with both halves of a surrogate pair, is one "?"; one
    // that a free byte stands for is that byte.
    const bool free = unit >= 0x80 && unit <= 0xFF &&
                      IsFreeByte(codePage, static_cast<unsigned char>(unit));
    bytes.push_back(free ? static_cast<char>(unit) : '?');
    std::size_t skip = 2;
    if (unit >= 0xD800 && unit < 0xDC00 && left >= 4) {
      char16_t next = 0;
      std::memcpy(&next, input + 2, 2);
      if (next >= 0xDC00 && next < 0xE000) skip = 4;
    }
    skip = std::min(skip, left);
    input += skip;
    left -= skip;
  }
  return std::string(bytes.begin(), bytes.end());
}

template <class Unit>
std::size_t LengthOf(const Unit* text, std::int32_t length) {
  if (length >= 0) return static_cast<std::size_t>(length);
  std::size_t n = 0;
  while (text[n] != Unit{}) ++n;
  return n + 1;  // with its NUL
}

// Writes `converted` into the caller's room, as the platform does: its count with no room
// asked, 0 when it does not fit.
template <class Text, class Unit>
std::int32_t Deliver(const std::optional<Text>& converted, Unit* out, std::int32_t room) {
  if (!converted || room < 0) return 0;
  const auto count = static_cast<std::int32_t>(converted->size());
  if (room == 0) return count;
  if (count > room || out == nullptr) return 0;
  std::copy(converted->begin(), converted->end(), out);
  return count;
}

}  // namespace

std::int32_t PortableCodePages::MultiByteToWideChar(std::uint32_t codePage,
                                                    std::uint32_t /*flags*/, const char* text,
                                                    std::int32_t length, char16_t* wide,
                                                    std::int32_t room) {
  if (text == nullptr || length == 0) return 0;
  const std::uint32_t page = codePage == codepage::kAnsi ? ansi_ : codePage;
  return Deliver(ToUnits(page, text, LengthOf(text, length)), wide, room);
}

std::int32_t PortableCodePages::WideCharToMultiByte(std::uint32_t codePage,
                                                    std::uint32_t /*flags*/, const char16_t* wide,
                                                    std::int32_t length, char* text,
                                                    std::int32_t room) {
  if (wide == nullptr || length == 0) return 0;
  const std::uint32_t page = codePage == codepage::kAnsi ? ansi_ : codePage;
  return Deliver(FromUnits(page, wide, LengthOf(wide, length)), text, room);
}

}  // namespace quorvane::platform::portable
