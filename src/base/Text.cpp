#include "base/Text.h"

#include <cfenv>
#include <cmath>

#include "base/Failure.h"
#include "base/Int16.h"

namespace quorvane::text {

std::string TrimLeft(std::string_view s) {
  std::size_t first = 0;
  while (first < s.size() && s[first] == ' ') ++first;
  return std::string(s.substr(first));
}

std::string TrimRight(std::string_view s) {
  std::size_t last = s.size();
  while (last > 0 && s[last - 1] == ' ') --last;
  return std::string(s.substr(0, last));
}

std::string Trim(std::string_view s) { return TrimLeft(TrimRight(s)); }

char UpperChar(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

static char LowerChar(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string UpperCase(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = UpperChar(c);
  return out;
}

std::string LowerCase(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = LowerChar(c);
  return out;
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (UpperChar(a[i]) != UpperChar(b[i])) return false;
  }
  return true;
}

std::string Left(std::string_view s, std::int64_t length) {
  if (length < 0) RaiseInvalidProcedureCall();
  return std::string(s.substr(0, static_cast<std::size_t>(length)));
}

std::string Right(std::string_view s, std::int64_t length) {
  if (length < 0) RaiseInvalidProcedureCall();
  const auto n = static_cast<std::size_t>(length);
  return n >= s.size() ? std::string(s) : std::string(s.substr(s.size() - n));
}

std::string Mid(std::string_view s, std::int64_t start) {
  if (start < 1) RaiseInvalidProcedureCall();
  const auto from = static_cast<std::size_t>(start - 1);
  return from >= s.size() ? std::string() : std::string(s.substr(from));
}

std::string Mid(std::string_view s, std::int64_t start, std::int64_t length) {
  if (length < 0) RaiseInvalidProcedureCall();
  return Left(Mid(s, start), length);
}

// Where `sought` (not empty) first stands in `s` from `from` on, capitals and small letters
// alike or not; npos when nowhere.
static std::size_t Find(std::string_view s, std::string_view sought, std::size_t from,
                        bool ignoreCase) {
  if (!ignoreCase) return s.find(sought, from);
  if (sought.size() > s.size()) return std::string_view::npos;
  const char first = UpperChar(sought.front());
  for (std::size_t at = from; at + sought.size() <= s.size(); ++at) {
    if (UpperChar(s[at]) == first && EqualsNoCase(s.substr(at, sought.size()), sought)) {
      return at;
    }
  }
  return std::string_view::npos;
}

std::string Replace(std::string_view s, std::string_view find, std::string_view with,
                    bool ignoreCase) {
  if (find.empty()) return std::string(s);
  std::string out;
  out.reserve(s.size());
  std::size_t i = 0;
  while (i < s.size()) {
    const std::size_t at = Find(s, find, i, ignoreCase);
    if (at == std::string_view::npos) {
      out.append(s.substr(i));
      break;
    }
    out.append(s.substr(i, at - i));
    out.append(with);
    i = at + find.size();
  }
  return out;
}

std::int64_t InStr(std::int64_t start, std::string_view s, std::string_view sought,
                   bool ignoreCase) {
  if (start < 1) RaiseInvalidProcedureCall();
  const auto from = static_cast<std::size_t>(start - 1);
  if (from > s.size()) return 0;
  if (sought.empty()) return start;
  const std::size_t at = Find(s, sought, from, ignoreCase);
  return at == std::string_view::npos ? 0 : static_cast<std::int64_t>(at) + 1;
}

std::vector<std::string> Split(std::string_view s, std::string_view delimiter) {
  std::vector<std::string> pieces;
  if (s.empty()) return pieces;
  if (delimiter.empty()) {
    pieces.emplace_back(s);
    return pieces;
  }
  std::size_t from = 0;
  for (;;) {
    const std::size_t at = s.find(delimiter, from);
    if (at == std::string_view::npos) {
      pieces.emplace_back(s.substr(from));
      return pieces;
    }
    pieces.emplace_back(s.substr(from, at - from));
    from = at + delimiter.size();
  }
}

const std::string& Piece(const std::vector<std::string>& pieces, std::size_t index) {
  if (index >= pieces.size()) RaiseSubscriptOutOfRange();
  return pieces[index];
}

std::string Repeat(char c, std::size_t count) { return std::string(count, c); }

std::string HexOf(std::int32_t value) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  auto bits = static_cast<std::uint32_t>(value);
  if (bits == 0) return "0";
  std::string out;
  while (bits != 0) {
    out.insert(out.begin(), kDigits[bits & 0xFu]);
    bits >>= 4;
  }
  return out;
}

static int HexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

std::int32_t ValHex(std::string_view digits) {
  std::uint64_t value = 0;
  for (const char c : digits) {
    if (c == ' ' || c == '\t' || c == '\n') continue;
    const int digit = HexDigitValue(c);
    if (digit < 0) break;
    value = value * 16 + static_cast<std::uint64_t>(digit);
    if (value > 0xFFFFFFFFull) RaiseOverflow();
  }
  if (value <= 0xFFFFu) return static_cast<std::int16_t>(static_cast<std::uint16_t>(value));
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

std::int16_t CheckedLength16(std::string_view s) {
  return CheckedInt16(static_cast<std::int64_t>(s.size()));
}

std::int64_t RoundHalfEven(double value) {
  return static_cast<std::int64_t>(std::nearbyint(value));
}

}  // namespace quorvane::text
