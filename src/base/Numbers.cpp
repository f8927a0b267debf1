#include "base/Numbers.h"

#include <charconv>
#include <cmath>
#include <string>
#include <system_error>

#include "base/Failure.h"
#include "base/Text.h"

namespace quorvane {

namespace {

[[noreturn]] void RaiseTypeMismatch() { Raise(FailureNumber::TypeMismatch, "Type mismatch"); }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsHexDigit(char c) {
  return IsDigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

// A decimal number text (sign, digits, point, fraction, exponent in "e") as a double; the
// overflow failure when it lies beyond the range of one.
double DecimalValue(const std::string& number) {
  double value = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (error == std::errc::result_out_of_range) {
    // Too small is 0; too large is an overflow.
    const std::size_t e = number.find('e');
    if (e != std::string::npos && number.find('-', e) != std::string::npos) return 0;
    RaiseOverflow();
  }
  if (error != std::errc() || end != number.data() + number.size()) return 0;
  return value;
}

// The value of octal digits: up to 177777 a 16-bit number, above it a 32-bit one.
// A number text is read as the platform reads a C text: it ends at its first NUL, so a value
// that kept its terminator, "3" and a NUL, reads as 3.
std::string_view AsCText(std::string_view text) {
  const std::size_t nul = text.find('\0');
  return nul == std::string_view::npos ? text : text.substr(0, nul);
}

std::int32_t OctalValue(std::string_view digits) {
  std::uint64_t value = 0;
  for (const char c : digits) {
    value = value * 8 + static_cast<std::uint64_t>(c - '0');
    if (value > 0xFFFFFFFFull) RaiseOverflow();
  }
  if (value <= 0xFFFFu) return static_cast<std::int16_t>(static_cast<std::uint16_t>(value));
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

std::int32_t RoundToLong(double value) {
  // Within the range once rounded: -2147483648.5 rounds to even, 2147483647.5 does not fit.
  if (!std::isfinite(value) || value < -2147483648.5 || value >= 2147483647.5) RaiseOverflow();
  return static_cast<std::int32_t>(text::RoundHalfEven(value));
}

// The decimal number at the start of `s` (blanks already gone), normalised for from_chars: the
// sign, the digits, the point and fraction, an exponent written with "e". Empty when none.
std::string LeadingDecimal(std::string_view s) {
  std::size_t i = 0;
  std::string number;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) {
    if (s[i] == '-') number += '-';
    ++i;
  }
  bool digits = false;
  while (i < s.size() && IsDigit(s[i])) {
    number += s[i++];
    digits = true;
  }
  if (i < s.size() && s[i] == '.') {
    number += s[i++];
    while (i < s.size() && IsDigit(s[i])) {
      number += s[i++];
      digits = true;
    }
  }
  if (!digits) return std::string();
  if (i < s.size() && (s[i] == 'E' || s[i] == 'e' || s[i] == 'D' || s[i] == 'd')) {
    std::size_t j = i + 1;
    std::string exponent = "e";
    if (j < s.size() && (s[j] == '+' || s[j] == '-')) exponent += s[j++];
    if (j < s.size() && IsDigit(s[j])) {
      while (j < s.size() && IsDigit(s[j])) exponent += s[j++];
      number += exponent;
    }
  }
  // For from_chars, a point has a digit on both sides.
  std::size_t point = number.find('.');
  if (point != std::string::npos) {
    if (point == 0 || !IsDigit(number[point - 1])) number.insert(point++, "0");
    if (point + 1 >= number.size() || !IsDigit(number[point + 1])) number.insert(point + 1, "0");
  }
  return number;
}

}  // namespace

double LeadingNumber(std::string_view text) {
  text = AsCText(text);
  std::string s;
  s.reserve(text.size());
  for (const char c : text) {
    if (c != ' ' && c != '\t' && c != '\n') s += c;
  }
  if (s.size() >= 2 && s[0] == '&' && (s[1] == 'H' || s[1] == 'h')) {
    return text::ValHex(std::string_view(s).substr(2));
  }
  if (s.size() >= 2 && s[0] == '&' && (s[1] == 'O' || s[1] == 'o')) {
    std::size_t end = 2;
    while (end < s.size() && s[end] >= '0' && s[end] <= '7') ++end;
    return OctalValue(std::string_view(s).substr(2, end - 2));
  }
  const std::string number = LeadingDecimal(s);
  return number.empty() ? 0.0 : DecimalValue(number);
}

std::int32_t LenientLong(std::string_view text) { return RoundToLong(LeadingNumber(text)); }

std::int32_t StrictLong(std::string_view text) {
  text = AsCText(text);
  std::size_t first = 0;
  std::size_t last = text.size();
  while (first < last && text[first] == ' ') ++first;
  while (last > first && text[last - 1] == ' ') --last;
  const std::string_view s = text.substr(first, last - first);
  if (s.empty()) RaiseTypeMismatch();

  if (s.size() >= 2 && s[0] == '&' && (s[1] == 'H' || s[1] == 'h')) {
    const std::string_view digits = s.substr(2);
    if (digits.empty()) RaiseTypeMismatch();
    for (const char c : digits) {
      if (!IsHexDigit(c)) RaiseTypeMismatch();
    }
    // Leading zeros don't count towards the 32 bits.
    const std::size_t significant = digits.find_first_not_of('0');
    if (significant != std::string_view::npos && digits.size() - significant > 8) RaiseOverflow();
    return text::ValHex(digits);
  }

  // The whole text must be the decimal number that reading it finds.
  std::size_t i = 0;
  if (s[i] == '+' || s[i] == '-') ++i;
  bool digits = false;
  while (i < s.size() && IsDigit(s[i])) {
    ++i;
    digits = true;
  }
  if (i < s.size() && s[i] == '.') {
    ++i;
    while (i < s.size() && IsDigit(s[i])) {
      ++i;
      digits = true;
    }
  }
  if (!digits) RaiseTypeMismatch();
  if (i < s.size() && (s[i] == 'E' || s[i] == 'e')) {
    ++i;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
    if (i >= s.size() || !IsDigit(s[i])) RaiseTypeMismatch();
    while (i < s.size() && IsDigit(s[i])) ++i;
  }
  if (i != s.size()) RaiseTypeMismatch();
  return RoundToLong(DecimalValue(LeadingDecimal(s)));
}

}  // namespace quorvane
