// Searching and replacing in text: the same results as the plain way, a position at a time,
// over many texts, capitals and small letters alike or not.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "base/Failure.h"
#include "base/Text.h"

namespace quorvane::text {
namespace {

bool SameAt(const std::string& s, std::size_t at, const std::string& sought, bool ignoreCase) {
  if (at + sought.size() > s.size()) return false;
  for (std::size_t i = 0; i < sought.size(); ++i) {
    const char a = ignoreCase ? UpperChar(s[at + i]) : s[at + i];
    const char b = ignoreCase ? UpperChar(sought[i]) : sought[i];
    if (a != b) return false;
  }
  return true;
}

// The plain way: left to right, the search going on after the whole of a replaced piece.
std::string PlainReplace(const std::string& s, const std::string& find, const std::string& with,
                         bool ignoreCase) {
  if (find.empty()) return s;
  std::string out;
  for (std::size_t i = 0; i < s.size();) {
    if (SameAt(s, i, find, ignoreCase)) {
      out += with;
      i += find.size();
    } else {
      out += s[i++];
    }
  }
  return out;
}

std::int64_t PlainInStr(std::int64_t start, const std::string& s, const std::string& sought,
                        bool ignoreCase) {
  const auto from = static_cast<std::size_t>(start - 1);
  if (from > s.size()) return 0;
  if (sought.empty()) return start;
  for (std::size_t at = from; at + sought.size() <= s.size(); ++at) {
    if (SameAt(s, at, sought, ignoreCase)) return static_cast<std::int64_t>(at) + 1;
  }
  return 0;
}

std::string RandomText(std::mt19937& random, std::size_t most) {
  static const char kLetters[] = "aAbB\\\\,\" hK";
  std::uniform_int_distribution<std::size_t> length(0, most);
  std::uniform_int_distribution<std::size_t> letter(0, sizeof kLetters - 2);
  std::string s(length(random), ' ');
  for (char& c : s) c = kLetters[letter(random)];
  return s;
}

TEST(TextSearchTest, ReplaceAndInStrGiveWhatThePlainWayGives) {
  std::mt19937 random(11);
  for (int round = 0; round < 20000; ++round) {
    const std::string s = RandomText(random, 24);
    const std::string sought = RandomText(random, 3);
    const std::string with = RandomText(random, 3);
    for (const bool ignoreCase : {false, true}) {
      ASSERT_EQ(Replace(s, sought, with, ignoreCase), PlainReplace(s, sought, with, ignoreCase))
          << "'" << s << "' '" << sought << "' '" << with << "' " << ignoreCase;
      for (std::int64_t start = 1; start <= static_cast<std::int64_t>(s.size()) + 2; ++start) {
        ASSERT_EQ(InStr(start, s, sought, ignoreCase), PlainInStr(start, s, sought, ignoreCase))
            << "'" << s << "' '" << sought << "' from " << start << " " << ignoreCase;
      }
    }
  }
}

TEST(TextSearchTest, ALongRootNameIsReplacedWhereverItStandsInAnyCase) {
  EXPECT_EQ(Replace("hkey_current_user\\Software\\HKEY_CURRENT_USER", "HKEY_CURRENT_USER", "HKCU",
                    true),
            "HKCU\\Software\\HKCU");
  EXPECT_EQ(Replace("aaa", "aa", "b", false), "ba");
  EXPECT_EQ(InStr(2, "abcabc", "ABC", true), 4);
  EXPECT_EQ(InStr(2, "abcabc", "ABC", false), 0);
  EXPECT_THROW(InStr(0, "abc", "a", false), Failure);
}

}  // namespace
}  // namespace quorvane::text
