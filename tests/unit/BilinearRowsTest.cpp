// The rows of the bilinear resampling against the plain routine it replaces, worked out one
// pixel and one channel at a time: every byte equal, over many sizes and pictures.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "drawing/BilinearRows.h"

namespace quorvane::drawing {
namespace {

struct Picture {
  std::int32_t width;
  std::int32_t height;
  std::int64_t stride;
  std::vector<std::uint8_t> bytes;

  Picture(std::int32_t w, std::int32_t h)
      : width(w),
        height(h),
        stride((std::int64_t{w} * 3 + 3) / 4 * 4),
        bytes(static_cast<std::size_t>(stride * h)) {}
  std::uint8_t* Row(std::int64_t y) { return bytes.data() + y * stride; }
};

std::uint8_t Round(float value) {
  const float rounded = (value + 8388608.0f) - 8388608.0f;
  return static_cast<std::uint8_t>(static_cast<int>(rounded));
}

// The plain routine: the scales in double precision kept in single, each pixel's position in
// double precision, its weights in single, across then down, a half to the even neighbour.
void ResamplePlainly(Picture& source, Picture& target) {
  const auto xScale = static_cast<float>((static_cast<double>(source.width) - 1.0) /
                                         static_cast<double>(target.width));
  const auto yScale = static_cast<float>((static_cast<double>(source.height) - 1.0) /
                                         static_cast<double>(target.height));
  for (std::int64_t y = 0; y < target.height; ++y) {
    const double fy = static_cast<double>(yScale) * static_cast<double>(y);
    const auto iy = static_cast<std::int64_t>(std::floor(fy));
    const auto wy = static_cast<float>(fy - static_cast<double>(iy));
    for (std::int64_t x = 0; x < target.width; ++x) {
      const double fx = static_cast<double>(xScale) * static_cast<double>(x);
      const auto ix = static_cast<std::int64_t>(std::floor(fx));
      const auto wx = static_cast<float>(fx - static_cast<double>(ix));
      const std::uint8_t* upper = source.Row(iy) + ix * 3;
      const std::uint8_t* lower = source.Row(iy + 1) + ix * 3;
      for (int c = 0; c < 3; ++c) {
        const float top = Round((1.0f - wx) * static_cast<float>(upper[c]) +
                                wx * static_cast<float>(upper[c + 3]));
        const float bottom = Round((1.0f - wx) * static_cast<float>(lower[c]) +
                                   wx * static_cast<float>(lower[c + 3]));
        target.Row(y)[x * 3 + c] = Round((1.0f - wy) * top + wy * bottom);
      }
    }
  }
}

template <class Blend>
void ResampleByRows(Picture& source, Picture& target, Blend blend) {
  const BilinearColumns columns = ColumnsFor(source.width, target.width);
  const float step = StepFor(source.height, target.height);
  for (std::int64_t y = 0; y < target.height; ++y) {
    const BilinearRow row = RowFor(step, y);
    blend(source.Row(row.upper), source.Row(row.upper + 1), row, columns, target.Row(y));
  }
}

// Bytes outside the pixels (the rows' padding) are left alone by all three.
void ExpectSameBytes(const Picture& expected, const Picture& actual, const char* what) {
  for (std::int64_t y = 0; y < expected.height; ++y) {
    for (std::int64_t i = 0; i < expected.stride; ++i) {
      const auto at = static_cast<std::size_t>(y * expected.stride + i);
      if (expected.bytes[at] != actual.bytes[at]) {
        ADD_FAILURE() << what << ": byte " << i << " of row " << y << " is "
                      << int{actual.bytes[at]} << ", not " << int{expected.bytes[at]} << " ("
                      << expected.width << "x" << expected.height << ")";
        return;
      }
    }
  }
}

void Compare(Picture& source, std::int32_t width, std::int32_t height) {
  Picture plain(width, height);
  ResamplePlainly(source, plain);
  for (const Lanes lanes : {Lanes::One, Lanes::Four, Lanes::Eight}) {
    if (!CanBlendIn(lanes)) continue;
    Picture rows(width, height);
    ResampleByRows(
        source, rows,
        [lanes](const std::uint8_t* upper, const std::uint8_t* lower, const BilinearRow& row,
                const BilinearColumns& columns,
                std::uint8_t* target) { BlendRowIn(lanes, upper, lower, row, columns, target); });
    ExpectSameBytes(plain, rows,
                    lanes == Lanes::One    ? "one lane"
                    : lanes == Lanes::Four ? "four lanes"
                                           : "eight lanes");
  }
  Picture widest(width, height);
  ResampleByRows(source, widest, BlendRow);
  ExpectSameBytes(plain, widest, "the widest lanes");
}

TEST(BilinearRowsTest, ThisMachineBlendsInFourLanesAndInEightWhereItHasThem) {
#if defined(__x86_64__)
  EXPECT_TRUE(CanBlendIn(Lanes::Four));
#if !defined(_WIN32)
  EXPECT_EQ(CanBlendIn(Lanes::Eight), __builtin_cpu_supports("avx2") != 0);
#endif
#endif
  EXPECT_TRUE(CanBlendIn(Lanes::One));
}

TEST(BilinearRowsTest, EveryByteEqualsThePlainRoutineOverManySizesAndPictures) {
  std::mt19937 random(20261125);
  for (int round = 0; round < 300; ++round) {
    std::uniform_int_distribution<std::int32_t> sourceSize(2, 160), targetSize(1, 200);
    Picture source(sourceSize(random), sourceSize(random));
    std::uniform_int_distribution<int> byte(0, 255);
    for (auto& b : source.bytes) b = static_cast<std::uint8_t>(byte(random));
    Compare(source, targetSize(random), targetSize(random));
  }
}

TEST(BilinearRowsTest, HalvesGoToTheEvenNeighbourAsInThePlainRoutine) {
  // Three pixels to four: the step is one half, so every other column is an exact half.
  Picture source(3, 3);
  for (std::size_t i = 0; i < source.bytes.size(); ++i) {
    source.bytes[i] = static_cast<std::uint8_t>(i * 37 + 1);
  }
  Compare(source, 4, 4);
  Picture plain(4, 4), rows(4, 4);
  ResamplePlainly(source, plain);
  ResampleByRows(source, rows, BlendRow);
  // Column 1 lies halfway between source pixels 0 and 1 of row 0: 1 and 112 blend to 56.5, and
  // the half goes to the even 56.
  EXPECT_EQ(int{source.Row(0)[0]}, 1);
  EXPECT_EQ(int{source.Row(0)[3]}, 112);
  EXPECT_EQ(int{rows.Row(0)[3]}, 56);
}

TEST(BilinearRowsTest, LargePicturesBothWaysEqualThePlainRoutine) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> byte(0, 255);
  Picture large(1027, 263);
  for (auto& b : large.bytes) b = static_cast<std::uint8_t>(byte(random));
  Compare(large, 500, 131);
  Compare(large, 2053, 527);
  Compare(large, 1027, 263);
}

TEST(BilinearRowsTest, AColumnReadsOnlyTheSixBytesOfItsTwoPixels) {
  // A source exactly two pixels across and down, its rows without padding, in a buffer of its
  // own: reading a byte beyond it would show under the address sanitizer.
  Picture source(4, 2);
  std::vector<std::uint8_t> exact(source.bytes.begin(), source.bytes.end());
  for (std::size_t i = 0; i < exact.size(); ++i) exact[i] = static_cast<std::uint8_t>(i * 11);
  source.bytes = exact;
  Compare(source, 9, 5);
}

}  // namespace
}  // namespace quorvane::drawing
