#pragma once
// The rows of a bilinear resampling of 24-bit pixels: across first in each of two source rows,
// rounded, then down between the two results, rounded again; all in single precision, a half
// rounded to the even neighbour. The weights of the columns are worked out once for a whole
// picture; each target row is then one pass over two source rows. The processor's vector units
// are used where it has them, with results equal to the bit to the plain routine's.
#include <cstdint>
#include <vector>

namespace quorvane::drawing {

// Where each target column reads, and with what weights.
struct BilinearColumns {
  std::vector<std::int64_t> left;  // byte offset of the left source pixel in its row
  std::vector<float> keep;         // the left pixel's weight, 1 less `take`
  std::vector<float> take;         // the right pixel's weight
};

// The columns for a target `targetWidth` pixels wide from a source `sourceWidth` wide: the step
// is (sourceWidth less 1) / targetWidth in double precision, kept in single; each column's
// position is the step times its number in double precision, its weight the fraction in single.
BilinearColumns ColumnsFor(std::int32_t sourceWidth, std::int32_t targetWidth);

// The row's position in the source by the same rule: the upper source row and the weight of the
// lower one.
struct BilinearRow {
  std::int64_t upper;
  float keep;  // the upper row's weight, 1 less `take`
  float take;  // the lower row's weight
};
BilinearRow RowFor(float step, std::int64_t y);
float StepFor(std::int32_t sourceSize, std::int32_t targetSize);

// How many channel values one step of the blend works on: one at a time (the plain routine),
// a pixel in four lanes, or a pixel of both source rows in eight.
enum class Lanes { One, Four, Eight };

// Whether this build and this processor can blend in these lanes.
bool CanBlendIn(Lanes lanes);

// One target row of `columns.left.size()` pixels from the source rows `upper` and `lower`, in the
// widest lanes there are. Each column reads the six bytes from its `left` offset in both rows,
// and nothing else; the results are the same to the bit in any lanes.
void BlendRow(const std::uint8_t* upper, const std::uint8_t* lower, const BilinearRow& row,
              const BilinearColumns& columns, std::uint8_t* target);
// The same in the lanes given, which must be there.
void BlendRowIn(Lanes lanes, const std::uint8_t* upper, const std::uint8_t* lower,
                const BilinearRow& row, const BilinearColumns& columns, std::uint8_t* target);

}  // namespace quorvane::drawing
