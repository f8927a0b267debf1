// The module Desktop over the portable store and the recording shell: the exact requests of the
// three refresh routines, the Shell Icon Size toggle with its terminator and its failures, and
// the two raw registry routines with every message they show.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RecordingRegistry.h"
#include "ShellJournal.h"
#include "appearance/Desktop.h"
#include "base/Failure.h"
#include "platform/Service.h"
#include "platform/portable/MemoryRegistry.h"
#include "platform/portable/PortableMessageBoxes.h"
#include "platform/portable/RecordingShellRequests.h"
#include "stores/AdvRegistryAccess.h"

namespace quorvane {
namespace {

using platform::portable::ShellRequest;
namespace reg = platform::reg;

constexpr char kMetrics[] = "Control Panel\\Desktop\\WindowMetrics";
constexpr char kMetricsPath[] = "HKEY_CURRENT_USER\\Control Panel\\Desktop\\WindowMetrics";
constexpr char kSize[] = "Shell Icon Size";
const std::string kSend = "SendMessageTimeoutA(0xFFFF, 0x1A, 0x2A, 0, 2, 10000)";

class DesktopTest : public ::testing::Test {
 protected:
  // A value as the store keeps it: its kind and its bytes, terminator included.
  std::string Stored(const std::string& key, const std::string& name, std::uint32_t* kind = nullptr) {
    platform::RegHandle h = 0;
    if (store_.RegOpenKeyExA(reg::kCurrentUser, key, 0, reg::kRead, h) != reg::kSuccess) return "?";
    char data[64] = {};
    std::uint32_t size = sizeof data;
    std::uint32_t k = 0;
    const auto s = store_.RegQueryValueExA(h, name, nullptr, &k, reinterpret_cast<std::uint8_t*>(data), &size);
    store_.RegCloseKey(h);
    if (kind != nullptr) *kind = k;
    return s == reg::kSuccess ? std::string(data, size) : "?";
  }
  void PutRaw(const std::string& key, const std::string& name, std::uint32_t kind,
              const std::string& bytes) {
    platform::RegHandle h = 0;
    ASSERT_EQ(store_.RegCreateKeyA(reg::kCurrentUser, key, h), reg::kSuccess);
    ASSERT_EQ(store_.RegSetValueExA(h, name, 0, kind,
                                    reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                    static_cast<std::uint32_t>(bytes.size())),
              reg::kSuccess);
    store_.RegCloseKey(h);
  }
  // The shell icon size as the program's registry class writes it: no terminator given.
  void PutSize(const std::string& value) {
    AdvRegistryAccess(store_).WriteString(kMetricsPath, kSize, value);
    recorder_.ClearJournal();
    recorder_.opens.clear();
  }
  std::vector<std::string> Prompts() const {
    std::vector<std::string> p;
    for (const auto& box : boxes_.Boxes()) {
      EXPECT_EQ(box.buttons, platform::msgbox::kOkOnly);  // OK only, no icon
      EXPECT_EQ(box.title, "");                           // the application's title
      p.push_back(box.prompt);
    }
    return p;
  }
  static std::string Set(const std::string& value) {
    return std::string("set ") + kMetricsPath + " [" + kSize + "] = " +
           testing::RecordingRegistry::Quoted(value);
  }

  std::vector<std::string> journal_;
  platform::portable::MemoryRegistry store_;
  testing::RecordingRegistry recorder_{store_, &journal_};
  platform::portable::RecordingShellRequests shell_;
  testing::ShellJournal shellJournal_{shell_, journal_};
  platform::portable::PortableMessageBoxes boxes_;
  platform::ScopedService<platform::RegistryStore> storeInstalled_{recorder_};
  platform::ScopedService<platform::ShellRequests> shellInstalled_{shellJournal_};
  platform::ScopedService<platform::MessageBoxes> boxesInstalled_{boxes_};
};

FailureNumber FailureOf(void (*routine)()) {
  try {
    routine();
  } catch (const Failure& f) {
    return f.Number();
  }
  ADD_FAILURE() << "no failure";
  return FailureNumber::InvalidProcedureCall;
}

TEST_F(DesktopTest, RefreshDesktopViewPostsF5ToTheDesktopListView) {
  shell_.AddWindow(0, "Shell_TrayWnd", 0x08);
  shell_.AddWindow(0, "Progman", 0x10, "Program Manager");
  shell_.AddWindow(0x10, "SHELLDLL_DefView", 0x20);
  shell_.AddWindow(0x20, "SysListView32", 0x30, "FolderView");
  RefreshDesktopView();
  EXPECT_EQ(shell_.Texts(), (std::vector<std::string>{
                                "FindWindowExA(0, 0, \"Progman\", null) = 0x10",
                                "FindWindowExA(0x10, 0, \"SHELLDLL_DefView\", null) = 0x20",
                                "FindWindowExA(0x20, 0, \"SysListView32\", null) = 0x30",
                                "PostMessageA(0x30, 0x100, 0x74, 0x3F0001)",
                            }));
  // The window name is null, not an empty name, on every lookup.
  for (std::size_t i = 0; i < 3; ++i) EXPECT_FALSE(shell_.Requests()[i].windowName.has_value());
  const ShellRequest& post = shell_.Requests()[3];
  EXPECT_EQ(post.kind, ShellRequest::Kind::PostMessageA);
  EXPECT_EQ(post.window, 0x30u);
  EXPECT_EQ(post.message, 0x100u);
  EXPECT_EQ(post.wParam, 0x74u);
  EXPECT_EQ(post.lParam, 0x3F0001);
  EXPECT_TRUE(journal_.size() == 4 && boxes_.Boxes().empty());
}

TEST_F(DesktopTest, WithoutTheDefaultViewUnderProgmanThePostGoesToWindowZero) {
  // Another shell window hosts the desktop's view.
  shell_.AddWindow(0, "Progman", 0x10);
  shell_.AddWindow(0, "WorkerW", 0x40);
  shell_.AddWindow(0x40, "SHELLDLL_DefView", 0x20);
  shell_.AddWindow(0x20, "SysListView32", 0x30);
  RefreshDesktopView();
  EXPECT_EQ(shell_.Texts(), (std::vector<std::string>{
                                "FindWindowExA(0, 0, \"Progman\", null) = 0x10",
                                "FindWindowExA(0x10, 0, \"SHELLDLL_DefView\", null) = 0",
                                "FindWindowExA(0, 0, \"SysListView32\", null) = 0",
                                "PostMessageA(0, 0x100, 0x74, 0x3F0001)",
                            }));
  EXPECT_TRUE(boxes_.Boxes().empty());
}

TEST_F(DesktopTest, WithNoDesktopAtAllEveryLookupIsZeroAndNothingIsReported) {
  RefreshDesktopView();
  EXPECT_EQ(shell_.Texts(), (std::vector<std::string>{
                                "FindWindowExA(0, 0, \"Progman\", null) = 0",
                                "FindWindowExA(0, 0, \"SHELLDLL_DefView\", null) = 0",
                                "FindWindowExA(0, 0, \"SysListView32\", null) = 0",
                                "PostMessageA(0, 0x100, 0x74, 0x3F0001)",
                            }));
  EXPECT_TRUE(boxes_.Boxes().empty());
}

TEST_F(DesktopTest, BroadcastShellChangeNotifiesPostsAndSends) {
  BroadcastShellChange();
  EXPECT_EQ(shell_.Texts(), (std::vector<std::string>{
                                "SHChangeNotify(0x8000000, 0, 0, 0)",
                                "PostMessageA(0xFFFF, 0x1A, 0, 0)",
                                kSend,
                            }));
  const ShellRequest& send = shell_.Requests()[2];
  EXPECT_EQ(send.window, platform::shell::kBroadcast);
  EXPECT_EQ(send.sendFlags, 2u);
  EXPECT_EQ(send.timeout, 10000u);
  EXPECT_EQ(journal_.size(), 3u);  // no registry change
}

TEST_F(DesktopTest, ToggleWrites33Then32AndSendsAfterEach) {
  PutSize("32");
  ToggleShellIconSize();
  EXPECT_EQ(journal_, (std::vector<std::string>{Set(std::string("33") + '\0'), kSend,
                                                Set(std::string("32") + '\0'), kSend}));
  std::uint32_t kind = 0;
  EXPECT_EQ(Stored(kMetrics, kSize, &kind), std::string("32") + '\0');  // with its terminator
  EXPECT_EQ(kind, reg::kSz);
  EXPECT_TRUE(boxes_.Boxes().empty());
  EXPECT_EQ(store_.OpenHandleCount(), 0u);
  // One read opened for querying only, two writes opened to set values and make sub-keys.
  EXPECT_EQ(recorder_.opens, (std::vector<std::string>{
                                 std::string(kMetricsPath) + " access 0x1",
                                 std::string(kMetricsPath) + " access 0x6",
                                 std::string(kMetricsPath) + " access 0x6",
                             }));
}

TEST_F(DesktopTest, ToggleKeepsTheOldTextAsItWas) {
  PutSize(" -5 ");
  ToggleShellIconSize();
  EXPECT_EQ(journal_, (std::vector<std::string>{Set(std::string("-4") + '\0'), kSend,
                                                Set(std::string(" -5 ") + '\0'), kSend}));
}

TEST_F(DesktopTest, ToggleOf32767OverflowsAtTheAdditionBeforeAnyWrite) {
  PutSize("32767");
  EXPECT_EQ(FailureOf(&ToggleShellIconSize), FailureNumber::Overflow);
  EXPECT_TRUE(journal_.empty());
  EXPECT_EQ(Stored(kMetrics, kSize), std::string("32767") + '\0');
}

TEST_F(DesktopTest, ToggleOf32766WritesTheLargest16BitNumber) {
  PutSize("32766");
  ToggleShellIconSize();
  EXPECT_EQ(journal_.front(), Set(std::string("32767") + '\0'));
}

TEST_F(DesktopTest, ToggleOfANumberBeyond16BitsOverflows) {
  PutSize("40000");
  EXPECT_EQ(FailureOf(&ToggleShellIconSize), FailureNumber::Overflow);
  EXPECT_TRUE(journal_.empty());
}

TEST_F(DesktopTest, ToggleOfATextThatIsNoNumberIsATypeMismatch) {
  PutSize("large");
  EXPECT_EQ(FailureOf(&ToggleShellIconSize), FailureNumber::TypeMismatch);
  EXPECT_TRUE(journal_.empty());
  EXPECT_TRUE(boxes_.Boxes().empty());
}

TEST_F(DesktopTest, AMissingValueShowsTwoMessagesThenFailsUpToTheCaller) {
  PutRaw(kMetrics, "Other", reg::kSz, "x");
  recorder_.ClearJournal();
  EXPECT_EQ(FailureOf(&ToggleShellIconSize), FailureNumber::TypeMismatch);
  EXPECT_EQ(Prompts(), (std::vector<std::string>{"Error getting subkey length.",
                                                 "Error getting subkey value."}));
  EXPECT_TRUE(journal_.empty());  // nothing written, nothing sent
  EXPECT_EQ(store_.OpenHandleCount(), 0u);
}

TEST_F(DesktopTest, AMissingKeyShowsTheOpeningMessageThenFails) {
  EXPECT_EQ(FailureOf(&ToggleShellIconSize), FailureNumber::TypeMismatch);
  EXPECT_EQ(Prompts(), (std::vector<std::string>{"Error opening key."}));
  EXPECT_TRUE(journal_.empty());
}

TEST_F(DesktopTest, GetRegistryTextGivesTheTextWithoutItsTerminator) {
  PutSize("32");  // written without a terminator; the store keeps one
  EXPECT_EQ(GetRegistryText(reg::kCurrentUser, kMetrics, kSize), "32");
  SetRegistryText(reg::kCurrentUser, kMetrics, kSize, "48");
  EXPECT_EQ(GetRegistryText(reg::kCurrentUser, kMetrics, kSize), "48");
  EXPECT_TRUE(boxes_.Boxes().empty());
  EXPECT_EQ(store_.OpenHandleCount(), 0u);
}

TEST_F(DesktopTest, GetRegistryTextDropsTheLastByteOfDataWithoutATerminator) {
  PutRaw(kMetrics, "Raw", reg::kBinary, "abcd");
  EXPECT_EQ(GetRegistryText(reg::kCurrentUser, kMetrics, "Raw"), "abc");
}

TEST_F(DesktopTest, GetRegistryTextOfAnEmptyBinaryValueFailsAtTheCut) {
  PutRaw(kMetrics, "Empty", reg::kBinary, "");
  try {
    GetRegistryText(reg::kCurrentUser, kMetrics, "Empty");
    ADD_FAILURE() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), FailureNumber::InvalidProcedureCall);
  }
  EXPECT_TRUE(boxes_.Boxes().empty());
}

TEST_F(DesktopTest, GetRegistryTextReadsAnyRootItIsGiven) {
  AdvRegistryAccess(store_).WriteString("HKEY_LOCAL_MACHINE\\SOFTWARE\\Q", "v", "machine");
  EXPECT_EQ(GetRegistryText(reg::kLocalMachine, "SOFTWARE\\Q", "v"), "machine");
  EXPECT_EQ(GetRegistryText(reg::kCurrentUser, "SOFTWARE\\Q", "v"), "");
  EXPECT_EQ(Prompts(), (std::vector<std::string>{"Error opening key."}));
}

TEST_F(DesktopTest, SetRegistryTextStoresTheTerminatorAsPartOfTheData) {
  PutSize("32");
  SetRegistryText(reg::kCurrentUser, kMetrics, kSize, "");
  EXPECT_EQ(journal_, (std::vector<std::string>{Set(std::string(1, '\0'))}));
  EXPECT_EQ(Stored(kMetrics, kSize), std::string(1, '\0'));
  EXPECT_EQ(GetRegistryText(reg::kCurrentUser, kMetrics, kSize), "");
}

TEST_F(DesktopTest, SetRegistryTextMakesNoMissingKey) {
  SetRegistryText(reg::kCurrentUser, kMetrics, kSize, "32");
  EXPECT_EQ(Prompts(), (std::vector<std::string>{"Error opening key."}));
  EXPECT_TRUE(journal_.empty());
  EXPECT_EQ(Stored(kMetrics, kSize), "?");
}

TEST_F(DesktopTest, SetRegistryTextOnAKeyThatRefusesChangesCannotOpenIt) {
  PutSize("32");
  ASSERT_TRUE(store_.DenyChanges(reg::kCurrentUser, kMetrics));
  SetRegistryText(reg::kCurrentUser, kMetrics, kSize, "33");
  EXPECT_EQ(Prompts(), (std::vector<std::string>{"Error opening key."}));
  EXPECT_EQ(Stored(kMetrics, kSize), std::string("32") + '\0');
}

TEST_F(DesktopTest, AFailedSaveIsReportedAndLeavesTheKeyOpen) {
  PutSize("32");
  recorder_.refuseSets = reg::kAccessDenied;
  SetRegistryText(reg::kCurrentUser, kMetrics, kSize, "33");
  EXPECT_EQ(Prompts(), (std::vector<std::string>{"Error saving value."}));
  EXPECT_EQ(store_.OpenHandleCount(), 1u);
  EXPECT_EQ(Stored(kMetrics, kSize), std::string("32") + '\0');
}

TEST_F(DesktopTest, AFailedCloseIsReportedAfterTheWorkIsDone) {
  PutSize("32");
  recorder_.refuseCloses = reg::kInvalidHandle;
  EXPECT_EQ(GetRegistryText(reg::kCurrentUser, kMetrics, kSize), "32");
  SetRegistryText(reg::kCurrentUser, kMetrics, kSize, "33");
  EXPECT_EQ(Prompts(), (std::vector<std::string>{"Error closing key.", "Error closing key."}));
  EXPECT_EQ(Stored(kMetrics, kSize), std::string("33") + '\0');
}

TEST_F(DesktopTest, TheToggleGoesOnPastMessagesOfItsWrites) {
  PutSize("32");
  recorder_.refuseSets = reg::kAccessDenied;
  ToggleShellIconSize();
  EXPECT_EQ(Prompts(), (std::vector<std::string>{"Error saving value.", "Error saving value."}));
  EXPECT_EQ(journal_, (std::vector<std::string>{kSend, kSend}));
}

}  // namespace
}  // namespace quorvane
