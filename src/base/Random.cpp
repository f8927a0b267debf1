#include "base/Random.h"

#include <bit>
#include <cstdint>

namespace quorvane::random {
namespace {

// The state of a 64-bit linear congruential generator; its start value is fixed so that an
// unseeded run repeats itself.
constexpr std::uint64_t kStartState = 0x2545F4914F6CDD1DULL;
std::uint64_t gState = kStartState;

// Spreads the bits of a seed over the whole state, so that seeds that differ in their lowest
// bits start far apart.
std::uint64_t Mix(std::uint64_t value) {
  value += 0x9E3779B97F4A7C15ULL;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9ULL;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EBULL;
  return value ^ (value >> 31);
}

}  // namespace

float Rnd() {
  gState = gState * 6364136223846793005ULL + 1442695040888963407ULL;
  // The upper 24 bits: exact in single precision, so the result stays below 1.
  const auto high = static_cast<std::uint32_t>(gState >> 40);
  return static_cast<float>(high) * (1.0f / 16777216.0f);
}

void Randomize(double seed) {
  // 0 and -0 are the same seed.
  if (seed == 0.0) seed = 0.0;
  gState = Mix(std::bit_cast<std::uint64_t>(seed));
}

}  // namespace quorvane::random
