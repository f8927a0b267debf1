#pragma once
// Text routines with the exact behaviour the system's string handling has: blanks are spaces
// only, positions count from 1, a negative length is a failure, and hexadecimal text is read
// the way "&H" numbers are read.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane::text {

// Removes spaces (and only spaces) at both ends.
std::string Trim(std::string_view s);
std::string TrimLeft(std::string_view s);
std::string TrimRight(std::string_view s);

// Upper and lower case of the single-byte text (letters A to Z).
std::string UpperCase(std::string_view s);
std::string LowerCase(std::string_view s);
char UpperChar(char c);
bool EqualsNoCase(std::string_view a, std::string_view b);

// Left and right parts; a negative length is an invalid procedure call.
std::string Left(std::string_view s, std::int64_t length);
std::string Right(std::string_view s, std::int64_t length);
// Mid from a 1-based start; a start below 1 or a negative length is an invalid procedure call.
std::string Mid(std::string_view s, std::int64_t start);
std::string Mid(std::string_view s, std::int64_t start, std::int64_t length);

// Every occurrence of `find` replaced by `with`, scanning left to right without rescanning what
// was put in. An empty `find` changes nothing.
std::string Replace(std::string_view s, std::string_view find, std::string_view with,
                    bool ignoreCase = false);

// 1-based position of `sought` in `s` from `start`, 0 when absent. An empty `sought` is found at
// `start` (when start lies inside the text or just behind it).
std::int64_t InStr(std::int64_t start, std::string_view s, std::string_view sought,
                   bool ignoreCase = false);

// Pieces between the delimiters. An empty text gives no pieces at all.
std::vector<std::string> Split(std::string_view s, std::string_view delimiter);

// Piece `index` of a split, counted from 0; an index past the last piece is the subscript out of
// range failure.
const std::string& Piece(const std::vector<std::string>& pieces, std::size_t index);

// A string of `count` copies of `c`.
std::string Repeat(char c, std::size_t count);

// Upper-case hexadecimal of the 32-bit pattern, without leading zeros ("0" for zero).
std::string HexOf(std::int32_t value);

// The number read from "&H" followed by `digits`: blanks, tabs and line feeds are passed over,
// reading stops at the first other character that is not a hexadecimal digit, and nothing read
// gives 0. Values up to FFFF are 16-bit numbers and values above are 32-bit numbers, so both
// "FFFF" and "FFFFFFFF" read as -1. More than 32 bits is an overflow failure.
std::int32_t ValHex(std::string_view digits);

// 16-bit signed length of a text; longer texts are an overflow failure.
std::int16_t CheckedLength16(std::string_view s);

// Rounding of the processor's default mode: a half goes to the even neighbour.
std::int64_t RoundHalfEven(double value);

}  // namespace quorvane::text
