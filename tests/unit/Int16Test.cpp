// The checked 16-bit integer: -32768 to 32767 as they are, one past either end the overflow
// failure.
#include "base/Int16.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "base/Failure.h"

namespace quorvane {
namespace {

FailureNumber NumberOfFailure(std::int64_t value) {
  try {
    CheckedInt16(value);
  } catch (const Failure& failure) {
    EXPECT_STREQ(failure.what(), "Overflow");
    return failure.Number();
  }
  return FailureNumber{};
}

TEST(CheckedInt16Test, TheBoundsAreKept) {
  EXPECT_EQ(CheckedInt16(32767), 32767);
  EXPECT_EQ(CheckedInt16(-32768), -32768);
  EXPECT_EQ(CheckedInt16(0), 0);
  EXPECT_EQ(CheckedInt16(-1), -1);
}

TEST(CheckedInt16Test, OnePastEitherBoundIsAnOverflow) {
  EXPECT_EQ(NumberOfFailure(32768), FailureNumber::Overflow);
  EXPECT_EQ(NumberOfFailure(-32769), FailureNumber::Overflow);
}

TEST(CheckedInt16Test, FarBeyondIsAnOverflowNotAWrapRound) {
  EXPECT_EQ(NumberOfFailure(65536), FailureNumber::Overflow);
  EXPECT_EQ(NumberOfFailure(-65536), FailureNumber::Overflow);
  EXPECT_EQ(NumberOfFailure(INT64_MAX), FailureNumber::Overflow);
  EXPECT_EQ(NumberOfFailure(INT64_MIN), FailureNumber::Overflow);
}

}  // namespace
}  // namespace quorvane
