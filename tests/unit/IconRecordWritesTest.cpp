// WriteIconRecord and RestoreIconRecord over the portable store and the recording shell: for
// every one of the 65 row names, both routines, on "Windows Vista" and on any other version,
// the exact registry changes in order, then the shell refresh's requests in order. Then the
// rows whose two sides differ, the names that match nothing, and the catalogue's names against
// the chain.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "IconRecordChain.h"
#include "RecordingRegistry.h"
#include "ShellJournal.h"
#include "base/Failure.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "icons/Catalogue.h"
#include "icons/IconRecordWrites.h"
#include "platform/Service.h"
#include "platform/portable/MemoryRegistry.h"
#include "platform/portable/PortableDeviceContexts.h"
#include "platform/portable/PortableIcons.h"
#include "platform/portable/PortableMessageBoxes.h"
#include "platform/portable/RecordingShellRequests.h"
#include "stores/AdvRegistryAccess.h"
#include "platform/MemorySurface.h"

#include "PortableServices.h"

namespace quorvane {
namespace {

using namespace testing::chain;

// The shell refresh after every row: the desktop's F5, the broadcast, the icon-size toggle of
// a store that holds "32".
const std::string kMetrics = "HKEY_CURRENT_USER\\Control Panel\\Desktop\\WindowMetrics";
const std::string kSend = "SendMessageTimeoutA(0xFFFF, 0x1A, 0x2A, 0, 2, 10000)";
const std::vector<std::string> kRefresh = {
    "FindWindowExA(0, 0, \"Progman\", null) = 0",
    "FindWindowExA(0, 0, \"SHELLDLL_DefView\", null) = 0",
    "FindWindowExA(0, 0, \"SysListView32\", null) = 0",
    "PostMessageA(0, 0x100, 0x74, 0x3F0001)",
    "SHChangeNotify(0x8000000, 0, 0, 0)",
    "PostMessageA(0xFFFF, 0x1A, 0, 0)",
    kSend,
    "set " + kMetrics + " [Shell Icon Size] = \"33\\0\"",
    kSend,
    "set " + kMetrics + " [Shell Icon Size] = \"32\\0\"",
    kSend,
};

// --- a store and a shell for one run -----------------------------------------------------------

const std::string kNul(1, '\0');

struct World {
  World() {
    AdvRegistryAccess(store).WriteString(kMetrics, "Shell Icon Size", "32");
    journal.clear();
  }
  AdvRegistryAccess reg() { return AdvRegistryAccess(recorder); }
  std::vector<std::string> Prompts() const {
    std::vector<std::string> p;
    for (const auto& box : boxes.Boxes()) p.push_back(box.prompt);
    return p;
  }

  std::vector<std::string> journal;
  platform::portable::MemoryRegistry store;
  testing::RecordingRegistry recorder{store, &journal};
  platform::portable::RecordingShellRequests shell;
  testing::ShellJournal shellJournal{shell, journal};
  platform::portable::PortableMessageBoxes boxes;
  platform::ScopedService<platform::RegistryStore> storeInstalled{recorder};
  platform::ScopedService<platform::ShellRequests> shellInstalled{shellJournal};
  platform::ScopedService<platform::MessageBoxes> boxesInstalled{boxes};
};

enum class Routine { Write, Restore };

void RunRoutine(Routine routine, AdvRegistryAccess& reg, const std::string& os, const std::string& name,
         const std::string& location) {
  if (routine == Routine::Write) {
    WriteIconRecord(reg, os, name, location);
  } else {
    RestoreIconRecord(reg, os, name, location);
  }
}

// --- every row, both routines, both sides of the version test -----------------------------------

struct Case {
  Routine routine;
  bool vista;
};

void PrintTo(const Case& c, std::ostream* os) {
  *os << (c.routine == Routine::Write ? "WriteIconRecord" : "RestoreIconRecord") << " on "
      << (c.vista ? "Windows Vista" : "another system");
}

class IconRecordWritesChain : public ::testing::TestWithParam<Case> {
 protected:
  const char* Os() const { return GetParam().vista ? "Windows Vista" : "Windows XP"; }
  const Changes& ChangesOf(const ExpectedRow& r) const {
    const Case c = GetParam();
    if (c.routine == Routine::Write) return c.vista ? r.applyVista : r.applyOther;
    return c.vista ? r.restoreVista : r.restoreOther;
  }
};

TEST_P(IconRecordWritesChain, EveryRowChangesItsKeysInOrderThenRefreshesTheShell) {
  ASSERT_EQ(Expected().size(), 65u);
  for (const ExpectedRow& row : Expected()) {
    SCOPED_TRACE(row.name);
    World world;
    AdvRegistryAccess seed(world.store);
    // Every key of the row holds an earlier value, which a write replaces and a restore of an
    // override deletes.
    for (const Change& c : ChangesOf(row)) seed.WriteString(c.key, c.valueName, "old.ico,1");
    world.journal.clear();

    const std::string location = "%SystemRoot%\\system32\\shell32.dll,-" + row.name;
    AdvRegistryAccess reg = world.reg();
    RunRoutine(GetParam().routine, reg, Os(), row.name, location);

    std::vector<std::string> expected;
    for (const Change& c : ChangesOf(row)) expected.push_back(Line(c, location));
    expected.insert(expected.end(), kRefresh.begin(), kRefresh.end());
    EXPECT_EQ(world.journal, expected);
    EXPECT_TRUE(world.boxes.Boxes().empty());
    EXPECT_EQ(world.store.OpenHandleCount(), 0u);

    for (const Change& c : ChangesOf(row)) {
      if (c.kill) {
        EXPECT_EQ(seed.ValueExists(c.key, c.valueName), kFalse) << c.key;
      } else {
        EXPECT_EQ(seed.ReadString(c.key, c.valueName), location + kNul) << c.key;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    RoutinesAndSystems, IconRecordWritesChain,
    ::testing::Values(Case{Routine::Write, true}, Case{Routine::Write, false},
                      Case{Routine::Restore, true}, Case{Routine::Restore, false}),
    [](const ::testing::TestParamInfo<Case>& p) {
      return std::string(p.param.routine == Routine::Write ? "Write" : "Restore") +
             (p.param.vista ? "Vista" : "Other");
    });

// --- the catalogue's names ------------------------------------------------------------------

// The row names as the catalogue builds them, on a system other than "Windows Vista", where
// all 65 rows have their names.
std::vector<std::string> CatalogueNames() {
  const auto folder = std::filesystem::temp_directory_path() / "quorvane-writes-catalogue";
  std::filesystem::create_directories(folder);
  core::gSystemFolder = folder.string() + "/";
  core::gProgramFilesFolder = folder.string() + "/pf/";
  platform::portable::MemoryRegistry store;
  platform::portable::PortableDeviceContexts gdi;
  platform::portable::PortableIcons icons{gdi};
  platform::ScopedService<platform::RegistryStore> storeInstalled{store};
  platform::ScopedService<platform::DeviceContexts> gdiInstalled{gdi};
  platform::ScopedService<platform::Icons> iconsInstalled{icons};
  AdvRegistryAccess(store).WriteString(
      "HKEY_CLASSES_ROOT\\CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\DefaultIcon", "",
      "Explorer.exe,0");
  FrmMain form;
  MainWindowScope installed(form);
  form.OSName = "Windows XP";
  testing::PreviewsInMemory(form);
  LoadIconRecords(form);
  std::vector<std::string> names;
  for (const IconRecord& r : form.IconRecords) {
    if (!r.Name.empty()) names.push_back(r.Name);
  }
  std::filesystem::remove_all(folder);
  return names;
}

TEST(IconRecordWrites, EveryCatalogueNameIsARowOfBothRoutinesOnBothSystems) {
  const std::vector<std::string> names = CatalogueNames();
  ASSERT_EQ(names.size(), 65u);
  std::set<std::string> expectedNames;
  for (const ExpectedRow& r : Expected()) expectedNames.insert(r.name);
  EXPECT_EQ(std::set<std::string>(names.begin(), names.end()), expectedNames);
  for (const std::string& name : names) {
    for (const char* os : {"Windows Vista", "Windows XP"}) {
      for (Routine routine : {Routine::Write, Routine::Restore}) {
        SCOPED_TRACE(name + " on " + os);
        World world;
        // The overrides a restore deletes are there to be deleted.
        for (const ExpectedRow& r : Expected()) {
          for (const Change& c : r.restoreOther) {
            if (c.kill) AdvRegistryAccess(world.store).WriteString(c.key, c.valueName, "old.ico,1");
          }
        }
        world.journal.clear();
        AdvRegistryAccess reg = world.reg();
        RunRoutine(routine, reg, os, name, "x.ico,0");
        // A name that fell through would give the refresh alone.
        EXPECT_GT(world.journal.size(), kRefresh.size());
      }
    }
  }
}

// --- names that match nothing -----------------------------------------------------------------

TEST(IconRecordWrites, ANameOfNoRowWritesNothingAndStillRefreshes) {
  for (const char* name : {"", "Nothing", "hard disk", "Hard Disk ", " Desktop", "Recycle Bin"}) {
    for (Routine routine : {Routine::Write, Routine::Restore}) {
      SCOPED_TRACE(name);
      World world;
      AdvRegistryAccess reg = world.reg();
      RunRoutine(routine, reg, "Windows Vista", name, "x.ico,0");
      EXPECT_EQ(world.journal, kRefresh);
    }
  }
}

// --- rows whose two sides differ --------------------------------------------------------------

TEST(IconRecordWrites, RestoringHardDiskDeletesValue8AndLeavesTheOtherOverrides) {
  World world;
  AdvRegistryAccess reg = world.reg();
  WriteIconRecord(reg, "Windows XP", "Hard Disk", "disk.ico,0");
  WriteIconRecord(reg, "Windows XP", "CD-ROM", "cd.ico,0");
  RestoreIconRecord(reg, "Windows XP", "Hard Disk", "shell32.dll,8");
  EXPECT_EQ(reg.ValueExists(kShellIcons, "8"), kFalse);
  EXPECT_EQ(reg.ReadString(kShellIcons, "11"), "cd.ico,0" + kNul);
}

TEST(IconRecordWrites, RestoringProgramGroupKeepsTheOverrideWithTheStockLocation) {
  World world;
  AdvRegistryAccess reg = world.reg();
  WriteIconRecord(reg, "Windows XP", "Program Group", "group.ico,3");
  RestoreIconRecord(reg, "Windows XP", "Program Group", "shell32.dll,36");
  EXPECT_EQ(reg.ReadString(kShellIcons, "36"), "shell32.dll,36" + kNul);
}

TEST(IconRecordWrites, RestoringTheFullRecycleBinLeavesTheUserClassAsTheApplyWroteIt) {
  const std::string bin = "{645FF040-5081-101B-9F08-00AA002F954E}";
  World world;
  AdvRegistryAccess reg = world.reg();
  WriteIconRecord(reg, "Windows Vista", "Recycle Bin (Full)", "full.ico,1");
  RestoreIconRecord(reg, "Windows Vista", "Recycle Bin (Full)", "shell32.dll,32");
  EXPECT_EQ(reg.ReadString(InClasses(bin), "Full"), "shell32.dll,32" + kNul);
  EXPECT_EQ(reg.ReadString(InExplorer(bin), "Full"), "shell32.dll,32" + kNul);
  EXPECT_EQ(reg.ReadString(InUserClasses(bin), "Full"), "full.ico,1" + kNul);
}

TEST(IconRecordWrites, OnVistaMyNetworkPlacesIsRestoredUnderInternetExplorersClass) {
  World world;
  AdvRegistryAccess reg = world.reg();
  WriteIconRecord(reg, "Windows Vista", "My Network Places", "net.ico,2");
  RestoreIconRecord(reg, "Windows Vista", "My Network Places", "stock.dll,0");
  EXPECT_EQ(reg.ReadString(InClasses("{F02C1A0D-BE21-4350-88B0-7367FC96EF3C}"), ""),
            "net.ico,2" + kNul);
  EXPECT_EQ(reg.ReadString(InClasses("{871C5380-42A0-1069-A2EA-08002B30309D}"), ""),
            "stock.dll,0" + kNul);
}

TEST(IconRecordWrites, OnlyExactlyWindowsVistaTakesTheVistaSide) {
  for (const char* os : {"windows vista", "Windows Vista ", "Windows 7", "", "Windows XP"}) {
    SCOPED_TRACE(os);
    for (const char* name : {"My Network Places", "EMail"}) {
      World world;
      AdvRegistryAccess reg = world.reg();
      WriteIconRecord(reg, os, name, "n.ico,0");
      std::vector<std::string> expected;
      for (const Change& c : Row(name).applyOther) expected.push_back(Line(c, "n.ico,0"));
      expected.insert(expected.end(), kRefresh.begin(), kRefresh.end());
      EXPECT_EQ(world.journal, expected);
    }
  }
}

TEST(IconRecordWrites, TheTwoArchiveKindsShareOneIcon) {
  World world;
  AdvRegistryAccess reg = world.reg();
  WriteIconRecord(reg, "Windows XP", "ACE Archive (*.ace)", "ace.ico,0");
  WriteIconRecord(reg, "Windows XP", "RAR Archives (*.rar)", "rar.ico,0");
  EXPECT_EQ(reg.ReadString(FileClass("WinRAR"), ""), "rar.ico,0" + kNul);
}

// --- writes to an empty store, and failures ---------------------------------------------------

TEST(IconRecordWrites, WritesMakeMissingKeysEvenInTheFixedUsersHive) {
  World world;
  AdvRegistryAccess reg = world.reg();
  WriteIconRecord(reg, "Windows XP", "My Documents", "docs.ico,0");
  for (const Change& c : Row("My Documents").applyOther) {
    EXPECT_EQ(reg.ReadString(c.key, ""), "docs.ico,0" + kNul) << c.key;
  }
}

TEST(IconRecordWrites, RestoringAnOverrideThatIsNotThereDeletesNothingAndStillRefreshes) {
  World world;
  AdvRegistryAccess reg = world.reg();
  RestoreIconRecord(reg, "Windows XP", "Hard Disk", "shell32.dll,8");
  EXPECT_EQ(world.journal, kRefresh);
}

TEST(IconRecordWrites, AWriteTheStoreRefusesIsNotReportedAndTheRefreshStillRuns) {
  World world;
  AdvRegistryAccess seed(world.store);
  seed.WriteString(kShellIcons, "8", "old.ico,0");
  ASSERT_TRUE(world.store.DenyChanges(platform::reg::kLocalMachine,
                                      "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons"));
  world.journal.clear();
  AdvRegistryAccess reg = world.reg();
  WriteIconRecord(reg, "Windows XP", "Hard Disk", "disk.ico,0");
  RestoreIconRecord(reg, "Windows XP", "Hard Disk", "shell32.dll,8");
  std::vector<std::string> twice = kRefresh;
  twice.insert(twice.end(), kRefresh.begin(), kRefresh.end());
  EXPECT_EQ(world.journal, twice);
  EXPECT_TRUE(world.boxes.Boxes().empty());
  EXPECT_EQ(seed.ReadString(kShellIcons, "8"), "old.ico,0" + kNul);
}

TEST(IconRecordWrites, AFailingRefreshGoesUpToTheCallerAfterTheWritesAreMade) {
  World world;
  AdvRegistryAccess(world.store).KillValue(kMetrics, "Shell Icon Size");
  world.journal.clear();
  AdvRegistryAccess reg = world.reg();
  try {
    WriteIconRecord(reg, "Windows XP", "Text Files (*.txt)", "text.ico,0");
    ADD_FAILURE() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), FailureNumber::TypeMismatch);
  }
  EXPECT_EQ(world.Prompts(), (std::vector<std::string>{"Error getting subkey length.",
                                                       "Error getting subkey value."}));
  // The row was written, and the first two refresh routines ran; nothing is taken back.
  EXPECT_EQ(reg.ReadString(FileClass("txtfile"), ""), "text.ico,0" + kNul);
  EXPECT_EQ(world.journal, (std::vector<std::string>{
                               Line(Set(FileClass("txtfile")), "text.ico,0"), kRefresh[0],
                               kRefresh[1], kRefresh[2], kRefresh[3], kRefresh[4], kRefresh[5],
                               kRefresh[6]}));
}

}  // namespace
}  // namespace quorvane
