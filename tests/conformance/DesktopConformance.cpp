// The module Desktop against the platform: the refresh requests go out and return, the icon
// size toggle leaves the value as it found it with its terminator, and the two raw registry
// routines agree with the store about terminators, missing keys and missing values. The icon
// size value is kept and put back.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DrawingDoubles.h"
#include "RecordingRegistry.h"
#include "RegistryFixture.h"
#include "RegistrySnapshot.h"
#include "Support.h"
#include "appearance/Desktop.h"
#include "base/Failure.h"
#include "platform/Service.h"
#include "stores/AdvRegistryAccess.h"

namespace quorvane::testing {
namespace {

namespace reg = platform::reg;

const std::string kMetrics = "HKEY_CURRENT_USER\\Control Panel\\Desktop\\WindowMetrics";
const std::string kMetricsBelow = "Control Panel\\Desktop\\WindowMetrics";
const std::string kNul(1, '\0');

class DesktopConformance : public RegistryTest {
 protected:
  void PutRaw(const std::string& name, std::uint32_t kind, const std::string& bytes) {
    platform::RegHandle key = 0;
    ASSERT_EQ(Store().RegCreateKeyA(reg::kCurrentUser, Base(), key), reg::kSuccess);
    ASSERT_EQ(Store().RegSetValueExA(key, name, 0, kind,
                                     reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                     static_cast<std::uint32_t>(bytes.size())),
              reg::kSuccess);
    Store().RegCloseKey(key);
  }

  RecordingMessageBoxes boxes_;
  platform::ScopedService<platform::MessageBoxes> boxesInstalled_{boxes_};
};

TEST_F(DesktopConformance, TheRefreshRequestsGoOutAndReturn) {
  RefreshDesktopView();
  BroadcastShellChange();
  RefreshDesktopView();
  EXPECT_TRUE(boxes_.prompts.empty());
}

TEST_F(DesktopConformance, TheToggleWritesTheSumThenTheOldTextWithATerminator) {
  RegistrySnapshot snapshot;
  snapshot.Keep(kMetrics, "Shell Icon Size");
  AdvRegistryAccess(Store()).WriteString(kMetrics, "Shell Icon Size", "32");
  RecordingRegistry recorder(Store());
  {
    platform::ScopedService<platform::RegistryStore> installed(recorder);
    ToggleShellIconSize();
  }
  EXPECT_EQ(recorder.Journal(),
            (std::vector<std::string>{"set " + kMetrics + " [Shell Icon Size] = \"33\\0\"",
                                      "set " + kMetrics + " [Shell Icon Size] = \"32\\0\""}));
  const ValueState now = CaptureValue(kMetrics, "Shell Icon Size");
  ASSERT_TRUE(now.value.has_value());
  EXPECT_EQ(now.value->first, reg::kSz);
  EXPECT_EQ(now.value->second, "32" + kNul);
  EXPECT_TRUE(boxes_.prompts.empty());
}

TEST_F(DesktopConformance, TheToggleOf32767OverflowsAndLeavesTheValue) {
  RegistrySnapshot snapshot;
  snapshot.Keep(kMetrics, "Shell Icon Size");
  AdvRegistryAccess(Store()).WriteString(kMetrics, "Shell Icon Size", "32767");
  try {
    ToggleShellIconSize();
    ADD_FAILURE() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), FailureNumber::Overflow);
  }
  EXPECT_EQ(GetRegistryText(reg::kCurrentUser, kMetricsBelow, "Shell Icon Size"), "32767");
}

TEST_F(DesktopConformance, AMissingIconSizeShowsTwoMessagesAndFails) {
  RegistrySnapshot snapshot;
  snapshot.Keep(kMetrics, "Shell Icon Size");
  AdvRegistryAccess(Store()).CreateKey(kMetrics);
  AdvRegistryAccess(Store()).KillValue(kMetrics, "Shell Icon Size");
  try {
    ToggleShellIconSize();
    ADD_FAILURE() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), FailureNumber::TypeMismatch);
  }
  EXPECT_EQ(boxes_.prompts, (std::vector<std::string>{"Error getting subkey length.",
                                                      "Error getting subkey value."}));
  EXPECT_EQ(boxes_.styles, (std::vector<std::int32_t>{0, 0}));
  EXPECT_EQ(boxes_.titles, (std::vector<std::string>{"", ""}));
}

TEST_F(DesktopConformance, SetRegistryTextStoresItsTerminatorAndGetRegistryTextLeavesItOff) {
  PutRaw("Other", reg::kSz, "x");
  SetRegistryText(reg::kCurrentUser, Base(), "Text", "abc");
  const ValueState stored = CaptureValue(Path(), "Text");
  ASSERT_TRUE(stored.value.has_value());
  EXPECT_EQ(stored.value->first, reg::kSz);
  EXPECT_EQ(stored.value->second, "abc" + kNul);
  EXPECT_EQ(GetRegistryText(reg::kCurrentUser, Base(), "Text"), "abc");
  SetRegistryText(reg::kCurrentUser, Base(), "Text", "");
  EXPECT_EQ(GetRegistryText(reg::kCurrentUser, Base(), "Text"), "");
  EXPECT_TRUE(boxes_.prompts.empty());
}

TEST_F(DesktopConformance, ATextWrittenWithoutATerminatorComesBackWhole) {
  AdvRegistryAccess(Store()).WriteString(Path(), "Text", "abc");
  EXPECT_EQ(GetRegistryText(reg::kCurrentUser, Base(), "Text"), "abc");
}

TEST_F(DesktopConformance, BinaryDataWithoutATerminatorLosesItsLastByte) {
  PutRaw("Raw", reg::kBinary, "abcd");
  EXPECT_EQ(GetRegistryText(reg::kCurrentUser, Base(), "Raw"), "abc");
}

TEST_F(DesktopConformance, AMissingKeyIsReportedAndNotMade) {
  EXPECT_EQ(GetRegistryText(reg::kCurrentUser, Base() + "\\Missing", "Text"), "");
  SetRegistryText(reg::kCurrentUser, Base() + "\\Missing", "Text", "abc");
  EXPECT_EQ(boxes_.prompts,
            (std::vector<std::string>{"Error opening key.", "Error opening key."}));
  EXPECT_FALSE(CaptureValue(Path("Missing"), "Text").keyExists);
}

TEST_F(DesktopConformance, AMissingValueIsReportedTwiceAndReadsEmpty) {
  PutRaw("Other", reg::kSz, "x");
  EXPECT_EQ(GetRegistryText(reg::kCurrentUser, Base(), "Text"), "");
  EXPECT_EQ(boxes_.prompts, (std::vector<std::string>{"Error getting subkey length.",
                                                      "Error getting subkey value."}));
}

}  // namespace
}  // namespace quorvane::testing
