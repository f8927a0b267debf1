#pragma once
// The two readings of a number text, which differ on bad input.
//
// The strict one converts a text that is a number as a whole, and fails on any other:
//   - spaces (only spaces) may stand before and after the number;
//   - one sign, "+" or "-", may stand right before the digits;
//   - decimal digits, with a decimal point and a fraction, and an exponent ("E" or "e", a sign,
//     digits), or "&H" and 1 to 8 hexadecimal digits; "&HFFFF" and below are 16-bit numbers,
//     so "&HFFFF" is -1, as "&HFFFFFFFF" is;
//   - a fraction is rounded half to even ("2.5" is 2);
//   - anything else, an empty text included, is the type mismatch failure (13), and a number
//     beyond 32 bits the overflow failure (6).
//
// The lenient one reads the number at the start of the text: spaces, tabs and line
// feeds anywhere are passed over, then a sign and digits with a decimal point, a fraction and an
// exponent ("E" or "D"), or "&H" and hexadecimal or "&O" and octal digits, as far as they go.
// No number at all is 0. The result is rounded half to even to 32 bits; beyond them is the
// overflow failure.
#include <cstdint>
#include <string_view>

namespace quorvane {

std::int32_t StrictLong(std::string_view text);
std::int32_t LenientLong(std::string_view text);

// The number at the start of the text, as the lenient reading finds it, unrounded.
double LeadingNumber(std::string_view text);

}  // namespace quorvane
