// The process's random number generator.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "base/Random.h"

namespace quorvane {
namespace {

std::vector<float> Draw(int count) {
  std::vector<float> values;
  for (int i = 0; i < count; ++i) values.push_back(random::Rnd());
  return values;
}

TEST(RandomTest, NumbersLieFromZeroUpToButNotIncludingOne) {
  random::Randomize(1.0);
  for (float value : Draw(100000)) {
    ASSERT_GE(value, 0.0f);
    ASSERT_LT(value, 1.0f);
  }
}

TEST(RandomTest, TheSameSeedStartsTheSameSequence) {
  random::Randomize(45296.25);
  const auto first = Draw(50);
  random::Randomize(45296.25);
  EXPECT_EQ(Draw(50), first);
  random::Randomize(45296.26);
  EXPECT_NE(Draw(50), first) << "a hundredth of a second apart";
  random::Randomize(-0.0);
  const auto negativeZero = Draw(10);
  random::Randomize(0.0);
  EXPECT_EQ(Draw(10), negativeZero);
}

TEST(RandomTest, DrawsAreSpreadEvenly) {
  random::Randomize(7.0);
  std::array<int, 16> buckets{};
  const int draws = 160000;
  double sum = 0;
  for (float value : Draw(draws)) {
    ++buckets[static_cast<std::size_t>(value * 16.0f)];
    sum += value;
  }
  // Chi-square with 15 degrees of freedom: far beyond 40 happens in fewer than 1 in 2000 runs.
  double chiSquare = 0;
  const double expected = draws / 16.0;
  for (int count : buckets) chiSquare += (count - expected) * (count - expected) / expected;
  EXPECT_LT(chiSquare, 40.0);
  EXPECT_NEAR(sum / draws, 0.5, 0.005);
}

TEST(RandomTest, ConsecutiveDrawsAreNotAlike) {
  random::Randomize(3.0);
  const auto values = Draw(10000);
  // Neighbours fall in the same half about as often as not.
  int same = 0;
  for (std::size_t i = 1; i < values.size(); ++i) {
    same += (values[i] < 0.5f) == (values[i - 1] < 0.5f) ? 1 : 0;
  }
  EXPECT_NEAR(same / 9999.0, 0.5, 0.03);
}

}  // namespace
}  // namespace quorvane
