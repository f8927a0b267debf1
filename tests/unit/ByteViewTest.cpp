// The checked two-dimensional byte view of the drawing code.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "base/Failure.h"
#include "base/ByteView.h"

namespace quorvane {
namespace {

FailureNumber NumberOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const Failure& failure) {
    return failure.Number();
  }
  return FailureNumber{0};
}

TEST(ByteViewTest, ReachesTheBytesRowAfterRow) {
  std::vector<std::uint8_t> bytes(12);
  const ByteView view(bytes.data(), 4, 3);
  view(0, 0) = 1;
  view(1, 3) = 2;
  view(2, 1) = 3;
  EXPECT_EQ(bytes[0], 1);
  EXPECT_EQ(bytes[7], 2);
  EXPECT_EQ(bytes[9], 3);
  EXPECT_EQ(view.Span(1, 1, 3), bytes.data() + 5);
  EXPECT_EQ(view.Span(2, 0, 4), bytes.data() + 8);
}

TEST(ByteViewTest, AnythingOutsideIsSubscriptOutOfRange) {
  std::vector<std::uint8_t> bytes(12, 7);
  const ByteView view(bytes.data(), 4, 3);
  for (const auto& [row, column] : std::vector<std::pair<int, int>>{
           {-1, 0}, {3, 0}, {0, -1}, {0, 4}, {2, 4}, {100000, 0}}) {
    EXPECT_EQ(NumberOf([&] { view(row, column) = 0; }), FailureNumber::SubscriptOutOfRange)
        << row << "," << column;
  }
  EXPECT_EQ(NumberOf([&] { view.Span(0, 1, 4); }), FailureNumber::SubscriptOutOfRange);
  EXPECT_EQ(NumberOf([&] { view.Span(3, 0, 1); }), FailureNumber::SubscriptOutOfRange);
  EXPECT_EQ(NumberOf([&] { view.Span(0, -1, 2); }), FailureNumber::SubscriptOutOfRange);
  EXPECT_EQ(NumberOf([&] { view.Span(0, 0, -1); }), FailureNumber::SubscriptOutOfRange);
  for (std::uint8_t byte : bytes) EXPECT_EQ(byte, 7) << "nothing was written";
}

TEST(ByteViewTest, AViewOverNothingCannotBeLaid) {
  EXPECT_EQ(NumberOf([] { ByteView view(nullptr, 4, 4); }), FailureNumber::SubscriptOutOfRange);
  std::uint8_t byte = 0;
  const ByteView negative(&byte, -4, -2);
  EXPECT_EQ(negative.Rows(), 0);
  EXPECT_EQ(NumberOf([&] { negative(0, 0) = 1; }), FailureNumber::SubscriptOutOfRange);
}

}  // namespace
}  // namespace quorvane
