// The strict and the lenient reading of a number text.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "base/Failure.h"
#include "base/Numbers.h"

namespace quorvane {
namespace {

FailureNumber StrictFailure(const std::string& text) {
  try {
    StrictLong(text);
  } catch (const Failure& failure) {
    return failure.Number();
  }
  return FailureNumber{0};
}

FailureNumber LenientFailure(const std::string& text) {
  try {
    LenientLong(text);
  } catch (const Failure& failure) {
    return failure.Number();
  }
  return FailureNumber{0};
}

TEST(StrictLongTest, PlainNumbersWithASignAndSpacesAround) {
  EXPECT_EQ(StrictLong("32"), 32);
  EXPECT_EQ(StrictLong("0"), 0);
  EXPECT_EQ(StrictLong("-3"), -3);
  EXPECT_EQ(StrictLong("+17"), 17);
  EXPECT_EQ(StrictLong("  5  "), 5);
  EXPECT_EQ(StrictLong("007"), 7);
  EXPECT_EQ(StrictLong("2147483647"), 2147483647);
  EXPECT_EQ(StrictLong("-2147483648"), INT32_MIN);
}

TEST(StrictLongTest, FractionsRoundHalfToEvenAndExponentsCount) {
  EXPECT_EQ(StrictLong("2.5"), 2);
  EXPECT_EQ(StrictLong("3.5"), 4);
  EXPECT_EQ(StrictLong("-2.5"), -2);
  EXPECT_EQ(StrictLong("2.51"), 3);
  EXPECT_EQ(StrictLong(".5"), 0);
  EXPECT_EQ(StrictLong("7."), 7);
  EXPECT_EQ(StrictLong("1e3"), 1000);
  EXPECT_EQ(StrictLong("15E-1"), 2);
  EXPECT_EQ(StrictLong("-2147483648.5"), INT32_MIN);
}

TEST(StrictLongTest, HexadecimalTextIsSixteenBitUpToFFFF) {
  EXPECT_EQ(StrictLong("&H10"), 16);
  EXPECT_EQ(StrictLong("&h7fff"), 32767);
  EXPECT_EQ(StrictLong("&HFFFF"), -1);
  EXPECT_EQ(StrictLong("&H10000"), 65536);
  EXPECT_EQ(StrictLong("&HFFFFFFFF"), -1);
  EXPECT_EQ(StrictLong("&H000000001"), 1);
  EXPECT_EQ(StrictFailure("&H100000000"), FailureNumber::Overflow);
}

TEST(StrictLongTest, TextThatIsNoNumberIsATypeMismatch) {
  for (const char* text : {"", "   ", "abc", "12abc", "1 2", "--1", "- 1", "+", ".", "1e", "1e+",
                           "&H", "&HG", "\t5", "5\t", "1,000", "1d2", "&O7", "0x10", "-&H1"}) {
    EXPECT_EQ(StrictFailure(text), FailureNumber::TypeMismatch) << '"' << text << '"';
  }
}

TEST(StrictLongTest, BeyondThirtyTwoBitsIsAnOverflow) {
  for (const char* text : {"2147483648", "-2147483649", "2147483647.5", "99999999999999999999",
                           "1e10", "1e400"}) {
    EXPECT_EQ(StrictFailure(text), FailureNumber::Overflow) << text;
  }
}

TEST(LenientLongTest, ReadsTheLeadingNumberAndZeroWhenThereIsNone) {
  EXPECT_EQ(LenientLong("32"), 32);
  EXPECT_EQ(LenientLong("32abc"), 32);
  EXPECT_EQ(LenientLong("-7,1"), -7);
  EXPECT_EQ(LenientLong(""), 0);
  EXPECT_EQ(LenientLong("abc"), 0);
  EXPECT_EQ(LenientLong("-"), 0);
  EXPECT_EQ(LenientLong("--5"), 0);
  EXPECT_EQ(LenientLong(".5x"), 0);
  EXPECT_EQ(LenientLong("1.5"), 2);
  EXPECT_EQ(LenientLong("2.5"), 2);
}

TEST(LenientLongTest, BlanksAnywhereArePassedOver) {
  EXPECT_EQ(LenientLong(" 1 2 3"), 123);
  EXPECT_EQ(LenientLong("- 4\t5\n6"), -456);
  EXPECT_EQ(LenientLong("1\r2"), 1) << "a carriage return is no blank";
}

TEST(LenientLongTest, ExponentsInEOrDAndHexOrOctalText) {
  EXPECT_EQ(LenientLong("1e3"), 1000);
  EXPECT_EQ(LenientLong("1D2"), 100);
  EXPECT_EQ(LenientLong("2e"), 2);
  EXPECT_EQ(LenientLong("2e+x"), 2);
  EXPECT_EQ(LenientLong("&H1F"), 31);
  EXPECT_EQ(LenientLong("&HFFFF"), -1);
  EXPECT_EQ(LenientLong("&H1FZ"), 31);
  EXPECT_EQ(LenientLong("&O17"), 15);
  EXPECT_EQ(LenientLong("&O177777"), -1);
  EXPECT_EQ(LenientLong("&O18"), 1);
  EXPECT_EQ(LenientLong("&"), 0);
  EXPECT_EQ(LeadingNumber("1e-400"), 0.0);
}

TEST(LenientLongTest, BeyondThirtyTwoBitsIsAnOverflow) {
  EXPECT_EQ(LenientFailure("2147483648"), FailureNumber::Overflow);
  EXPECT_EQ(LenientFailure("1e400"), FailureNumber::Overflow);
  EXPECT_EQ(LenientFailure("&H123456789"), FailureNumber::Overflow);
  EXPECT_EQ(LenientLong("2147483647"), 2147483647);
}

TEST(LeadingNumberTest, GivesTheNumberUnrounded) {
  EXPECT_DOUBLE_EQ(LeadingNumber("2.75 apples"), 2.75);
  EXPECT_DOUBLE_EQ(LeadingNumber("-.25"), -0.25);
  EXPECT_DOUBLE_EQ(LeadingNumber("1.5e2"), 150.0);
}

}  // namespace
}  // namespace quorvane

namespace quorvane {
namespace {

// Values read from the registry keep their terminator; a number text ends at its first NUL.
TEST(NumberTextTest, EndsAtItsFirstNul) {
  const std::string three("3\0", 2);
  EXPECT_EQ(StrictLong(three), 3);
  EXPECT_EQ(LenientLong(three), 3);
  EXPECT_EQ(StrictLong(std::string("12\0x", 4)), 12);
  EXPECT_EQ(LenientLong(std::string("\0" "7", 2)), 0);
  EXPECT_THROW(StrictLong(std::string("\0" "7", 2)), Failure);
}

}  // namespace
}  // namespace quorvane
