// What the notification makes of the numbered settings the main window gives it at load, and
// where it stands while it rises.
#include <gtest/gtest.h>

#include <map>

#include "platform/NotificationPlan.h"

namespace quorvane::platform::notification {
namespace {

// The five settings of the main window's load, in their order; the picture is the fourth and
// no number.
const std::map<std::int32_t, std::int32_t> kAtLoad = {
    {0x68030064, 4}, {0x68030062, 45}, {0x68030055, 0}, {0x6803005A, 6}};

TEST(NotificationPlanTest, TheLoadsSettingsMapToSecondsPaceCornerAndSteps) {
  const Plan plan = PlanOf(kAtLoad);
  EXPECT_EQ(plan.seconds, 4);
  EXPECT_EQ(plan.stepMilliseconds, 45);
  EXPECT_EQ(plan.corner, 0);
  EXPECT_EQ(plan.steps, 6);
}

TEST(NotificationPlanTest, EachNumberSetsItsOwnField) {
  EXPECT_EQ(PlanOf({{kSeconds, 9}}).seconds, 9);
  EXPECT_EQ(PlanOf({{kStepMilliseconds, 10}}).stepMilliseconds, 10);
  EXPECT_EQ(PlanOf({{kCorner, 3}}).corner, 3);
  EXPECT_EQ(PlanOf({{kSteps, 12}}).steps, 12);
  const Plan untouched = PlanOf({{kSeconds, 9}});
  EXPECT_EQ(untouched.stepMilliseconds, 45);
  EXPECT_EQ(untouched.corner, 0);
  EXPECT_EQ(untouched.steps, 6);
}

TEST(NotificationPlanTest, OtherNumbersAndValuesOutOfRangeChangeNothing) {
  const Plan plan = PlanOf({{0x68030057, 99}, {kSeconds, 0}, {kSteps, -1}, {kCorner, 4},
                            {kStepMilliseconds, 5000}});
  EXPECT_EQ(plan.seconds, 4);
  EXPECT_EQ(plan.steps, 6);
  EXPECT_EQ(plan.corner, 0);
  EXPECT_EQ(plan.stepMilliseconds, 45);
}

TEST(NotificationPlanTest, ItRisesOutOfTheBottomRightCornerInItsSteps) {
  const Plan plan = PlanOf(kAtLoad);
  const Box work{0, 0, 1280, 780};
  EXPECT_EQ(PlaceAt(plan, work, 280, 60, 8, 6), (Box{992, 712, 1272, 772}));
  EXPECT_EQ(PlaceAt(plan, work, 280, 60, 8, 3), (Box{992, 742, 1272, 772}));
  EXPECT_EQ(PlaceAt(plan, work, 280, 60, 8, 1), (Box{992, 762, 1272, 772}));
  EXPECT_EQ(PlaceAt(plan, work, 280, 60, 8, 0), (Box{992, 772, 1272, 772}));
  // Past its last step it stays up.
  EXPECT_EQ(PlaceAt(plan, work, 280, 60, 8, 9), (Box{992, 712, 1272, 772}));
}

TEST(NotificationPlanTest, TheOtherCorners) {
  const Box work{10, 20, 810, 620};
  Plan plan;
  plan.corner = 1;
  EXPECT_EQ(PlaceAt(plan, work, 200, 60, 8, 6), (Box{18, 552, 218, 612}));
  plan.corner = 2;
  EXPECT_EQ(PlaceAt(plan, work, 200, 60, 8, 3), (Box{602, 28, 802, 58}));
  plan.corner = 3;
  EXPECT_EQ(PlaceAt(plan, work, 200, 60, 8, 6), (Box{18, 28, 218, 88}));
}

}  // namespace
}  // namespace quorvane::platform::notification
