#include "platform/NotificationPlan.h"

#include <algorithm>

namespace quorvane::platform::notification {

Plan PlanOf(const std::map<std::int32_t, std::int32_t>& options) {
  Plan plan;
  const auto take = [&](std::int32_t number, std::int32_t& field, std::int32_t low,
                        std::int32_t high) {
    const auto found = options.find(number);
    if (found != options.end() && found->second >= low && found->second <= high) {
      field = found->second;
    }
  };
  take(kSeconds, plan.seconds, 1, 60);
  take(kStepMilliseconds, plan.stepMilliseconds, 1, 1000);
  take(kCorner, plan.corner, 0, 3);
  take(kSteps, plan.steps, 1, 100);
  return plan;
}

Box PlaceAt(const Plan& plan, const Box& workArea, std::int32_t width, std::int32_t height,
            std::int32_t margin, std::int32_t step) {
  const bool bottom = plan.corner == 0 || plan.corner == 1;
  const bool right = plan.corner == 0 || plan.corner == 2;
  const std::int32_t clamped = std::clamp(step, std::int32_t{0}, plan.steps);
  const std::int32_t shown = height * clamped / plan.steps;
  Box box;
  box.left = right ? workArea.right - margin - width : workArea.left + margin;
  box.right = box.left + width;
  if (bottom) {
    box.bottom = workArea.bottom - margin;
    box.top = box.bottom - shown;
  } else {
    box.top = workArea.top + margin;
    box.bottom = box.top + shown;
  }
  return box;
}

}  // namespace quorvane::platform::notification
