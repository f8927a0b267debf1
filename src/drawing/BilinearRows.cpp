#include "drawing/BilinearRows.h"

#include <cmath>
#include <cstring>

#if defined(__x86_64__) || defined(_M_X64)
#include <immintrin.h>
#define QUORVANE_BILINEAR_SSE2 1
// GCC for 64-bit Windows does not align its stack to the 32 bytes that a spilled 256-bit value
// needs, so the wide path is built only where the stack is aligned for it.
#if defined(__GNUC__) && !defined(_WIN32)
#define QUORVANE_BILINEAR_AVX2 1
#endif
#endif

namespace quorvane::drawing {

namespace {

// 2^23: a float of 0 up to 2^23 plus it has no bits below the units, so the sum is rounded to a
// whole number there (a half to the even neighbour), and taking it away again is exact.
constexpr float kUnitsOnly = 8388608.0f;

inline float RoundWhole(float value) { return (value + kUnitsOnly) - kUnitsOnly; }

inline std::uint32_t Word(const std::uint8_t* bytes) {
  std::uint32_t word;
  std::memcpy(&word, bytes, 4);
  return word;
}

}  // namespace

float StepFor(std::int32_t sourceSize, std::int32_t targetSize) {
  // With the one pixel taken off, the last source pixel is never quite reached, so the right
  // and lower neighbours stay inside.
  return static_cast<float>((static_cast<double>(sourceSize) - 1.0) /
                            static_cast<double>(targetSize));
}

BilinearRow RowFor(float step, std::int64_t y) {
  const double fy = static_cast<double>(step) * static_cast<double>(y);
  const auto iy = static_cast<std::int64_t>(std::floor(fy));
  const auto wy = static_cast<float>(fy - static_cast<double>(iy));
  return {iy, 1.0f - wy, wy};
}

BilinearColumns ColumnsFor(std::int32_t sourceWidth, std::int32_t targetWidth) {
  const float step = StepFor(sourceWidth, targetWidth);
  BilinearColumns columns;
  const auto count = static_cast<std::size_t>(targetWidth < 0 ? 0 : targetWidth);
  columns.left.resize(count);
  columns.keep.resize(count);
  columns.take.resize(count);
  for (std::size_t x = 0; x < count; ++x) {
    const BilinearRow at = RowFor(step, static_cast<std::int64_t>(x));
    columns.left[x] = at.upper * 3;
    columns.keep[x] = at.keep;
    columns.take[x] = at.take;
  }
  return columns;
}

namespace {

void BlendRowPlainly(const std::uint8_t* upper, const std::uint8_t* lower, const BilinearRow& row,
                     const BilinearColumns& columns, std::uint8_t* target) {
  const std::size_t width = columns.left.size();
  for (std::size_t x = 0; x < width; ++x) {
    const std::uint8_t* u = upper + columns.left[x];
    const std::uint8_t* l = lower + columns.left[x];
    const float keep = columns.keep[x];
    const float take = columns.take[x];
    for (std::size_t channel = 0; channel < 3; ++channel) {
      const float top = RoundWhole(keep * static_cast<float>(u[channel]) +
                                   take * static_cast<float>(u[channel + 3]));
      const float bottom = RoundWhole(keep * static_cast<float>(l[channel]) +
                                      take * static_cast<float>(l[channel + 3]));
      target[x * 3 + channel] = static_cast<std::uint8_t>(
          static_cast<int>(RoundWhole(row.keep * top + row.take * bottom)));
    }
  }
}

}  // namespace

#ifdef QUORVANE_BILINEAR_SSE2
namespace {

inline __m128 RoundWhole(__m128 value) {
  const __m128 units = _mm_set1_ps(kUnitsOnly);
  return _mm_sub_ps(_mm_add_ps(value, units), units);
}

// The four bytes of a word as four floats.
inline __m128 Floats(std::uint32_t word) {
  const __m128i zero = _mm_setzero_si128();
  __m128i lanes = _mm_cvtsi32_si128(static_cast<int>(word));
  lanes = _mm_unpacklo_epi8(lanes, zero);
  lanes = _mm_unpacklo_epi16(lanes, zero);
  return _mm_cvtepi32_ps(lanes);
}

// The first three lanes, whole numbers of 0 to 255, as the three bytes of a word (and a fourth).
inline std::uint32_t Bytes(__m128 whole) {
  __m128i lanes = _mm_cvttps_epi32(whole);
  lanes = _mm_packs_epi32(lanes, lanes);
  lanes = _mm_packus_epi16(lanes, lanes);
  return static_cast<std::uint32_t>(_mm_cvtsi128_si32(lanes));
}

// One pixel in four lanes, blue, green, red and one spare: the spare lane carries a byte of the
// next pixel along and is never stored.
void BlendRowInLanes(const std::uint8_t* upper, const std::uint8_t* lower, const BilinearRow& row,
                     const BilinearColumns& columns, std::uint8_t* target) {
  const std::size_t width = columns.left.size();
  const __m128 rowKeep = _mm_set1_ps(row.keep);
  const __m128 rowTake = _mm_set1_ps(row.take);
  for (std::size_t x = 0; x < width; ++x) {
    const std::uint8_t* u = upper + columns.left[x];
    const std::uint8_t* l = lower + columns.left[x];
    const __m128 keep = _mm_set1_ps(columns.keep[x]);
    const __m128 take = _mm_set1_ps(columns.take[x]);
    // Bytes 0-3 give the left pixel, bytes 2-5 shifted by one the right one: six bytes read.
    const __m128 top = RoundWhole(
        _mm_add_ps(_mm_mul_ps(keep, Floats(Word(u))), _mm_mul_ps(take, Floats(Word(u + 2) >> 8))));
    const __m128 bottom = RoundWhole(
        _mm_add_ps(_mm_mul_ps(keep, Floats(Word(l))), _mm_mul_ps(take, Floats(Word(l + 2) >> 8))));
    const std::uint32_t pixel =
        Bytes(RoundWhole(_mm_add_ps(_mm_mul_ps(rowKeep, top), _mm_mul_ps(rowTake, bottom))));
    // The fourth byte lands on the next pixel, which is written after; not so on the last.
    std::memcpy(target + x * 3, &pixel, x + 1 < width ? 4 : 3);
  }
}

#ifdef QUORVANE_BILINEAR_AVX2
// Across, for one pixel: the two source rows side by side in eight lanes, so that one set of
// operations blends both; the upper row's result in the low four lanes, the lower row's in the
// high four.
__attribute__((target("avx2"))) inline __m256 AcrossBothRows(const std::uint8_t* u,
                                                             const std::uint8_t* l, float keep,
                                                             float take) {
  const __m256 units = _mm256_set1_ps(kUnitsOnly);
  const __m128i lefts = _mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int>(Word(u))),
                                           _mm_cvtsi32_si128(static_cast<int>(Word(l))));
  const __m128i rights = _mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int>(Word(u + 2) >> 8)),
                                            _mm_cvtsi32_si128(static_cast<int>(Word(l + 2) >> 8)));
  const __m256 blend = _mm256_add_ps(
      _mm256_mul_ps(_mm256_set1_ps(keep), _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(lefts))),
      _mm256_mul_ps(_mm256_set1_ps(take), _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(rights))));
  return _mm256_sub_ps(_mm256_add_ps(blend, units), units);
}

// The same as the four lanes, two pixels a step: each pixel across in eight lanes, then down for
// both pixels at once.
__attribute__((target("avx2"))) void BlendRowInWideLanes(const std::uint8_t* upper,
                                                         const std::uint8_t* lower,
                                                         const BilinearRow& row,
                                                         const BilinearColumns& columns,
                                                         std::uint8_t* target) {
  const std::size_t width = columns.left.size();
  const __m256 units = _mm256_set1_ps(kUnitsOnly);
  const __m256 rowKeep = _mm256_set1_ps(row.keep);
  const __m256 rowTake = _mm256_set1_ps(row.take);
  std::size_t x = 0;
  for (; x + 1 < width; x += 2) {
    const __m256 first = AcrossBothRows(upper + columns.left[x], lower + columns.left[x],
                                        columns.keep[x], columns.take[x]);
    const __m256 second = AcrossBothRows(upper + columns.left[x + 1], lower + columns.left[x + 1],
                                         columns.keep[x + 1], columns.take[x + 1]);
    // The two pixels' upper results side by side, and their lower ones.
    const __m256 tops = _mm256_permute2f128_ps(first, second, 0x20);
    const __m256 bottoms = _mm256_permute2f128_ps(first, second, 0x31);
    const __m256 down = _mm256_sub_ps(
        _mm256_add_ps(_mm256_add_ps(_mm256_mul_ps(rowKeep, tops), _mm256_mul_ps(rowTake, bottoms)),
                      units),
        units);
    __m256i lanes = _mm256_cvttps_epi32(down);
    lanes = _mm256_packs_epi32(lanes, lanes);
    lanes = _mm256_packus_epi16(lanes, lanes);
    const auto pixel = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm256_castsi256_si128(lanes)));
    const auto next =
        static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm256_extracti128_si256(lanes, 1)));
    // Each fourth byte lands on the next pixel, which is written after; not so on the last.
    std::memcpy(target + x * 3, &pixel, 4);
    std::memcpy(target + x * 3 + 3, &next, x + 2 < width ? 4 : 3);
  }
  if (x < width) {
    const __m256 across = AcrossBothRows(upper + columns.left[x], lower + columns.left[x],
                                         columns.keep[x], columns.take[x]);
    const __m128 rowUnits = _mm_set1_ps(kUnitsOnly);
    const __m128 down = _mm_sub_ps(
        _mm_add_ps(_mm_add_ps(_mm_mul_ps(_mm_set1_ps(row.keep), _mm256_castps256_ps128(across)),
                              _mm_mul_ps(_mm_set1_ps(row.take), _mm256_extractf128_ps(across, 1))),
                   rowUnits),
        rowUnits);
    __m128i lanes = _mm_cvttps_epi32(down);
    lanes = _mm_packs_epi32(lanes, lanes);
    lanes = _mm_packus_epi16(lanes, lanes);
    const auto pixel = static_cast<std::uint32_t>(_mm_cvtsi128_si32(lanes));
    std::memcpy(target + x * 3, &pixel, 3);
  }
}

bool HasWideLanes() {
  static const bool has = [] {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0;
  }();
  return has;
}
#endif

}  // namespace
#endif

bool CanBlendIn(Lanes lanes) {
  switch (lanes) {
    case Lanes::One:
      return true;
    case Lanes::Four:
#if defined(QUORVANE_BILINEAR_SSE2)
      return true;
#else
      return false;
#endif
    case Lanes::Eight:
#if defined(QUORVANE_BILINEAR_AVX2)
      return HasWideLanes();
#else
      return false;
#endif
  }
  return false;
}

void BlendRowIn(Lanes lanes, const std::uint8_t* upper, const std::uint8_t* lower,
                const BilinearRow& row, const BilinearColumns& columns, std::uint8_t* target) {
  switch (lanes) {
#if defined(QUORVANE_BILINEAR_AVX2)
    case Lanes::Eight:
      return BlendRowInWideLanes(upper, lower, row, columns, target);
#endif
#if defined(QUORVANE_BILINEAR_SSE2)
    case Lanes::Four:
      return BlendRowInLanes(upper, lower, row, columns, target);
#endif
    default:
      return BlendRowPlainly(upper, lower, row, columns, target);
  }
}

void BlendRow(const std::uint8_t* upper, const std::uint8_t* lower, const BilinearRow& row,
              const BilinearColumns& columns, std::uint8_t* target) {
  static const Lanes widest = CanBlendIn(Lanes::Eight)  ? Lanes::Eight
                              : CanBlendIn(Lanes::Four) ? Lanes::Four
                                                        : Lanes::One;
  BlendRowIn(widest, upper, lower, row, columns, target);
}

}  // namespace quorvane::drawing
