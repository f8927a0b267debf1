// WriteIconRecord and RestoreIconRecord against the platform's registry: every row of the
// chain, both routines, both sides of the version test, with the exact registry changes in
// order and the values read back. Every value touched is kept beforehand and put back after
// each run, keys that were missing are removed again, so the store is left as it was.
//
// The shell's change notice costs tens of milliseconds a call under Wine, so the run over the
// whole chain lists the shell requests in a stand-in; the other cases make the real requests.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "DrawingDoubles.h"
#include "IconRecordChain.h"
#include "RecordingRegistry.h"
#include "RegistrySnapshot.h"
#include "Support.h"
#include "icons/IconRecordWrites.h"
#include "platform/Service.h"
#include "platform/ShellRequests.h"
#include "stores/AdvRegistryAccess.h"

namespace quorvane::testing {
namespace {

using namespace chain;

// The shell requests by name, in order, answered as by a desktop without windows.
class ListedShell final : public platform::ShellRequests {
 public:
  std::uint32_t FindWindowExA(std::uint32_t, std::uint32_t, const std::string& className,
                              const std::optional<std::string>& windowName) override {
    names.push_back("FindWindowExA " + className + (windowName ? " named" : ""));
    return 0;
  }
  std::int32_t PostMessageA(std::uint32_t window, std::uint32_t, std::uintptr_t,
                            std::intptr_t) override {
    names.push_back("PostMessageA " + std::to_string(window));
    return 1;
  }
  void SHChangeNotify(std::int32_t, std::uint32_t, std::uintptr_t, std::uintptr_t) override {
    names.push_back("SHChangeNotify");
  }
  std::intptr_t SendMessageTimeoutA(std::uint32_t window, std::uint32_t, std::uintptr_t,
                                    std::intptr_t, std::uint32_t, std::uint32_t,
                                    std::uintptr_t& result) override {
    names.push_back("SendMessageTimeoutA " + std::to_string(window));
    result = 0;
    return 1;
  }
  std::vector<std::string> names;
};

const std::vector<std::string> kRefreshRequests = {
    "FindWindowExA Progman",   "FindWindowExA SHELLDLL_DefView", "FindWindowExA SysListView32",
    "PostMessageA 0",          "SHChangeNotify",                 "PostMessageA 65535",
    "SendMessageTimeoutA 65535", "SendMessageTimeoutA 65535",    "SendMessageTimeoutA 65535",
};

const std::string kMetrics = "HKEY_CURRENT_USER\\Control Panel\\Desktop\\WindowMetrics";
const std::string kNul(1, '\0');

class IconRecordWritesConformance : public ::testing::Test {
 protected:
  RecordingMessageBoxes boxes_;
  platform::ScopedService<platform::MessageBoxes> boxesInstalled_{boxes_};
};

// One run of a routine on one row: the store's values kept, the row's keys seeded with an
// earlier value and the icon size with "32", the routine run through a recording store, the
// journal and the values checked, and everything put back.
void CheckRow(const ExpectedRow& row, bool write, bool vista) {
  const Changes& changes = ChangesOf(row, write, vista);
  const std::string location = "%SystemRoot%\\system32\\shell32.dll,-" + row.name;
  std::vector<std::pair<std::string, ValueState>> before;
  {
    RegistrySnapshot snapshot;
    snapshot.Keep(kMetrics, "Shell Icon Size");
    for (const Change& c : changes) snapshot.Keep(c.key, c.valueName);
    before = snapshot.Before();

    AdvRegistryAccess seed(Store());
    seed.WriteString(kMetrics, "Shell Icon Size", "32");
    for (const Change& c : changes) ASSERT_NE(seed.WriteString(c.key, c.valueName, "old.ico,1"), 0) << c.key;

    RecordingRegistry recorder(Store());
    ListedShell shell;
    {
      platform::ScopedService<platform::RegistryStore> installed(recorder);
      platform::ScopedService<platform::ShellRequests> shellInstalled(shell);
      AdvRegistryAccess reg(recorder);
      if (write) {
        WriteIconRecord(reg, vista ? "Windows Vista" : "Windows XP", row.name, location);
      } else {
        RestoreIconRecord(reg, vista ? "Windows Vista" : "Windows XP", row.name, location);
      }
    }
    std::vector<std::string> expected;
    for (const Change& c : changes) expected.push_back(Line(c, location));
    expected.push_back("set " + kMetrics + " [Shell Icon Size] = \"33\\0\"");
    expected.push_back("set " + kMetrics + " [Shell Icon Size] = \"32\\0\"");
    EXPECT_EQ(recorder.Journal(), expected);
    EXPECT_EQ(shell.names, kRefreshRequests);

    for (const Change& c : changes) {
      const ValueState now = CaptureValue(c.key, c.valueName);
      if (c.kill) {
        EXPECT_FALSE(now.value.has_value()) << c.key;
      } else {
        ASSERT_TRUE(now.value.has_value()) << c.key;
        EXPECT_EQ(now.value->first, platform::reg::kSz) << c.key;
        EXPECT_EQ(now.value->second, location + kNul) << c.key;
      }
    }
    const ValueState size = CaptureValue(kMetrics, "Shell Icon Size");
    ASSERT_TRUE(size.value.has_value());
    EXPECT_EQ(size.value->second, "32" + kNul);
  }
  // The snapshot has put everything back.
  for (const auto& [where, state] : before) {
    const std::size_t open = where.rfind(" [");
    EXPECT_EQ(CaptureValue(where.substr(0, open), where.substr(open + 2, where.size() - open - 3)),
              state)
        << where;
  }
}

TEST_F(IconRecordWritesConformance, EveryRowBothRoutinesBothSystems) {
  ASSERT_EQ(Expected().size(), 65u);
  for (const ExpectedRow& row : Expected()) {
    for (bool write : {true, false}) {
      for (bool vista : {true, false}) {
        SCOPED_TRACE(row.name + (write ? " written" : " restored") +
                     (vista ? " on Windows Vista" : " on another system"));
        CheckRow(row, write, vista);
      }
    }
  }
  EXPECT_TRUE(boxes_.prompts.empty());
}

TEST_F(IconRecordWritesConformance, ANameOfNoRowChangesNothingButTheIconSizeToggle) {
  RegistrySnapshot snapshot;
  snapshot.Keep(kMetrics, "Shell Icon Size");
  AdvRegistryAccess(Store()).WriteString(kMetrics, "Shell Icon Size", "32");
  RecordingRegistry recorder(Store());
  {
    platform::ScopedService<platform::RegistryStore> installed(recorder);
    AdvRegistryAccess reg(recorder);
    WriteIconRecord(reg, "Windows Vista", "hard disk", "x.ico,0");
    RestoreIconRecord(reg, "Windows XP", "Nothing", "x.ico,0");
  }
  const std::string up = "set " + kMetrics + " [Shell Icon Size] = \"33\\0\"";
  const std::string down = "set " + kMetrics + " [Shell Icon Size] = \"32\\0\"";
  EXPECT_EQ(recorder.Journal(), (std::vector<std::string>{up, down, up, down}));
}

TEST_F(IconRecordWritesConformance, TheFullRecycleBinKeepsTheUserClassThroughARestore) {
  const std::string bin = "{645FF040-5081-101B-9F08-00AA002F954E}";
  RegistrySnapshot snapshot;
  snapshot.Keep(kMetrics, "Shell Icon Size");
  for (const Change& c : Row("Recycle Bin (Full)").applyOther) snapshot.Keep(c.key, c.valueName);
  AdvRegistryAccess reg(Store());
  reg.WriteString(kMetrics, "Shell Icon Size", "32");
  WriteIconRecord(reg, "Windows XP", "Recycle Bin (Full)", "full.ico,1");
  RestoreIconRecord(reg, "Windows XP", "Recycle Bin (Full)", "shell32.dll,32");
  EXPECT_EQ(reg.ReadString(InClasses(bin), "Full"), "shell32.dll,32" + kNul);
  EXPECT_EQ(reg.ReadString(InExplorer(bin), "Full"), "shell32.dll,32" + kNul);
  EXPECT_EQ(reg.ReadString(InUserClasses(bin), "Full"), "full.ico,1" + kNul);
}

}  // namespace
}  // namespace quorvane::testing
