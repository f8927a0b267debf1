#pragma once
// What the notification makes of its numbered settings, and where it stands. Both builds'
// notifications follow it.
//
//   0x68030064  the seconds it stays once it has risen (the window sets 4)
//   0x68030062  the milliseconds between two steps of its rise and of its fall (45)
//   0x68030055  the corner of the work area it stands in: 0 the bottom right, beside the
//               notification area; 1 the bottom left, 2 the top right, 3 the top left (0)
//   0x6803005A  the steps in which it rises and falls (6)
//
// Any other number is kept and does nothing; a value out of its range leaves the default.
#include <cstdint>
#include <map>

namespace quorvane::platform::notification {

inline constexpr std::int32_t kSeconds = 0x68030064;
inline constexpr std::int32_t kStepMilliseconds = 0x68030062;
inline constexpr std::int32_t kCorner = 0x68030055;
inline constexpr std::int32_t kSteps = 0x6803005A;

struct Plan {
  std::int32_t seconds = 4;
  std::int32_t stepMilliseconds = 45;
  std::int32_t corner = 0;
  std::int32_t steps = 6;
};

Plan PlanOf(const std::map<std::int32_t, std::int32_t>& options);

struct Box {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;
  bool operator==(const Box&) const = default;
};

// Where the window of `width` by `height` stands in `workArea` at `step` of its rise (0 gone,
// plan.steps fully up), a margin away from the corner's edges. It rises out of the edge nearer
// its corner: at a step only the part of the window that has come out shows.
Box PlaceAt(const Plan& plan, const Box& workArea, std::int32_t width, std::int32_t height,
            std::int32_t margin, std::int32_t step);

}  // namespace quorvane::platform::notification
