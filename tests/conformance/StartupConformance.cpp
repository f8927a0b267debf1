// Start-up over the system's facts, files and registry: the version name, the special folders,
// the program's blank icon resource, the data folder, the error log, and the notification area's
// add and delete.
#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "RegistryFixture.h"
#include "Support.h"
#include "base/Failure.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "platform/DeviceContexts.h"
#include "platform/FileSystem.h"
#include "platform/Service.h"
#include "platform/SystemInfo.h"
#include "platform/Tray.h"

namespace quorvane::testing {
namespace {

platform::SystemInfo& System() { return platform::Use<platform::SystemInfo>(); }
platform::FileSystem& Files() { return platform::Use<platform::FileSystem>(); }

std::string WithoutLastSeparator(std::string path) {
  if (!path.empty() && (path.back() == '\\' || path.back() == '/')) path.pop_back();
  return path;
}

bool KeyExists(const std::string& subKey) {
  platform::RegHandle key = 0;
  if (Store().RegOpenKeyA(platform::reg::kCurrentUser, subKey, key) != platform::reg::kSuccess) {
    return false;
  }
  Store().RegCloseKey(key);
  return true;
}

// Keeps the process-wide folders as they were before a test.
class StartupConformance : public ::testing::Test {
 protected:
  void SetUp() override { saved_ = core::gDataFolder; }
  void TearDown() override { core::gDataFolder = saved_; }

 private:
  std::string saved_;
};

TEST_F(StartupConformance, TheSystemIsVista) {
  // A fresh prefix reports 6.1, and so does the portable system out of the box.
  EXPECT_EQ(core::GetOSName(), "Windows Vista");
  EXPECT_EQ(core::IsVista(), kTrue);
}

TEST_F(StartupConformance, TheVersionRecordNeedsItsSize) {
  platform::OsVersionInfo version{};
  version.dwOSVersionInfoSize = 148;
  ASSERT_EQ(System().GetVersionExA(version), 1);
  EXPECT_EQ(version.dwOSVersionInfoSize, 148u);
  EXPECT_EQ(version.dwPlatformId, platform::osversion::kWin32Nt);
  EXPECT_EQ(version.dwMajorVersion, 6u);
  EXPECT_EQ(version.dwMinorVersion, 1u);
  EXPECT_EQ(version.dwBuildNumber, 7601u);
  EXPECT_EQ(std::string(version.szCSDVersion.data()), "Service Pack 1");
  platform::OsVersionInfo wrong{};
  wrong.dwOSVersionInfoSize = 100;
  EXPECT_EQ(System().GetVersionExA(wrong), 0);
}

TEST_F(StartupConformance, SpecialFoldersExistAndEndInABackslash) {
  for (std::int32_t id : {platform::folder::kAppData, platform::folder::kWindows,
                          platform::folder::kProgramFiles, platform::folder::kMyPictures,
                          platform::folder::kSystemX86}) {
    const std::string folder = core::GetSpecialFolder(id);
    ASSERT_GE(folder.size(), 2u) << "folder " << id;
    EXPECT_EQ(folder.back(), '\\') << folder;
    EXPECT_TRUE(Files().FolderExists(folder.substr(0, folder.size() - 1))) << folder;
  }
}

TEST_F(StartupConformance, AnUnknownSpecialFolderFails) {
  platform::ItemIdList list = 0;
  EXPECT_NE(System().SHGetSpecialFolderLocation(0, 0x9999, list), 0);
  EXPECT_EQ(core::GetSpecialFolder(0x9999), "");
}

TEST_F(StartupConformance, ThePathIsCutToTheCallersBuffer) {
  platform::ItemIdList list = 0;
  ASSERT_EQ(System().SHGetSpecialFolderLocation(0, platform::folder::kWindows, list), 0);
  std::string whole(300, '#');
  ASSERT_NE(System().SHGetPathFromIDListA(list, whole), 0);
  const std::size_t end = whole.find('\0');
  ASSERT_NE(end, std::string::npos);
  EXPECT_EQ(whole.substr(end + 1), std::string(300 - end - 1, '#'));  // nothing after the NUL
  std::string small(4, '#');
  ASSERT_NE(System().SHGetPathFromIDListA(list, small), 0);
  EXPECT_EQ(small, whole.substr(0, 4));
}

TEST_F(StartupConformance, TheProgramCarriesTheBlankIcon) {
  const auto icon = System().LoadResourceData("ICO", "EMPTY.ICO");
  ASSERT_TRUE(icon.has_value());
  ASSERT_EQ(icon->size(), 768u);
  EXPECT_EQ(icon->substr(0, 8), std::string("\0\0\1\0\1\0\x20\x20", 8));
  const auto sameAnyCase = System().LoadResourceData("ico", "Empty.ico");
  ASSERT_TRUE(sameAnyCase.has_value());
  EXPECT_EQ(*sameAnyCase, *icon);
  EXPECT_FALSE(System().LoadResourceData("ICO", "NONE.ICO").has_value());
}

TEST_F(StartupConformance, CreateDefaultFolderMakesTheDataFolder) {
  const bool productKeyWasThere = KeyExists("Software\\Talvenor");
  FrmMain form;
  MainWindowScope scope(form);
  const std::string appData = FreshTempFolder();
  core::gDataFolder = appData;
  EXPECT_EQ(core::CreateDefaultFolder(), kTrue);
  EXPECT_EQ(core::gDataFolder, appData + "Talvenor\\Mirefold\\Quorvane\\");
  EXPECT_TRUE(Files().FolderExists(appData + "Talvenor"));
  EXPECT_TRUE(Files().FolderExists(appData + "Talvenor\\Mirefold"));
  EXPECT_TRUE(Files().FolderExists(appData + "Talvenor\\Mirefold\\Quorvane"));
  std::string written;
  ASSERT_TRUE(Files().ReadAll(core::gDataFolder + "Empty.ico", written));
  EXPECT_EQ(written, System().LoadResourceData("ICO", "EMPTY.ICO").value_or(""));
  EXPECT_TRUE(KeyExists("Software\\Talvenor\\Mirefold\\Quorvane"));
  if (!productKeyWasThere) DeleteTree(platform::reg::kCurrentUser, "Software\\Talvenor");
}

TEST_F(StartupConformance, CreateDefaultFolderFailsToTheExecutablesFolder) {
  FrmMain form;
  MainWindowScope scope(form);
  const std::string appData = FreshTempFolder();
  ASSERT_TRUE(Files().WriteAll(appData + "Talvenor", "a file, not a folder"));
  core::gDataFolder = appData;
  EXPECT_EQ(core::CreateDefaultFolder(), kFalse);
  const std::string executableFolder = System().ExecutableFolder();
  ASSERT_FALSE(executableFolder.empty());
  EXPECT_EQ(core::gDataFolder, executableFolder);
  EXPECT_EQ(WithoutLastSeparator(executableFolder), executableFolder);
  EXPECT_TRUE(Files().FolderExists(executableFolder));
}

TEST_F(StartupConformance, TheIconIsWrittenOverAnOldFileInPlace) {
  core::gDataFolder = FreshTempFolder();
  ASSERT_TRUE(Files().WriteAll(core::gDataFolder + "Empty.ico", std::string(1000, 'x')));
  core::ExtractResourceFile("Empty.ico");
  std::string written;
  ASSERT_TRUE(Files().ReadAll(core::gDataFolder + "Empty.ico", written));
  ASSERT_EQ(written.size(), 1000u);
  EXPECT_EQ(written.substr(0, 768), System().LoadResourceData("ICO", "EMPTY.ICO").value_or(""));
  EXPECT_EQ(written.substr(768), std::string(232, 'x'));
}

TEST_F(StartupConformance, AnErrorReportIsALineInTheDataFolder) {
  core::gDataFolder = FreshTempFolder();
  try {
    RaiseOverflow();
  } catch (const Failure&) {
    core::ReportError("FrmMain", "Form_Load");
  }
  std::string log;
  ASSERT_TRUE(Files().ReadAll(core::gDataFolder + "Quorvane.log", log));
  const std::string tail = "\tFrmMain\tForm_Load\tline 0\terror 6\tOverflow\r\n";
  ASSERT_GT(log.size(), tail.size());
  EXPECT_EQ(log.substr(log.size() - tail.size()), tail);
  EXPECT_EQ(log.find('\n'), log.size() - 1);
}

class StartupRegistryConformance : public RegistryTest {};

TEST_F(StartupRegistryConformance, CreateRegistryPathMakesEveryLevel) {
  FrmMain form;
  MainWindowScope scope(form);
  EXPECT_EQ(core::CreateRegistryPath(Path("One\\Two\\Three")), kTrue);
  EXPECT_TRUE(KeyExists(Base() + "\\One\\Two\\Three"));
  // Again over keys that are all there.
  EXPECT_EQ(core::CreateRegistryPath(Path("One\\Two\\Three")), kTrue);
  EXPECT_EQ(core::CreateRegistryPath(ShortPath("One\\Four")), kTrue);
  EXPECT_TRUE(KeyExists(Base() + "\\One\\Four"));
}

// The notification area refuses a second add of one icon and a delete of an absent one. Without
// a notification area every call gives 0; the Windows build is told by QUORVANE_NOTIFICATION_AREA
// when the area must be there.
TEST(TrayConformance, AddThenDelete) {
#ifdef _WIN32
  const bool areaExpected = std::getenv("QUORVANE_NOTIFICATION_AREA") != nullptr;
#else
  const bool areaExpected = true;  // the portable area is there unless a test takes it away
#endif
  platform::Tray& tray = platform::Use<platform::Tray>();
  platform::NotifyIconData icon;
  icon.cbSize = platform::tray::kRecordSize;
  icon.hWnd = platform::Use<platform::DeviceContexts>().GetDesktopWindow();
  icon.uID = 0x5157;
  icon.uFlags = platform::tray::kMessageFlag | platform::tray::kIconFlag | platform::tray::kTipFlag;
  icon.uCallbackMessage = 0x200;
  const std::string tip = std::string("Quorvane conformance") + '\0';
  std::copy(tip.begin(), tip.end(), icon.szTip.begin());

  EXPECT_EQ(tray.Shell_NotifyIconA(platform::tray::kDelete, icon), 0);
  const std::int32_t added = tray.Shell_NotifyIconA(platform::tray::kAdd, icon);
  if (areaExpected) {
    EXPECT_NE(added, 0);
  }
  EXPECT_EQ(tray.Shell_NotifyIconA(platform::tray::kAdd, icon), 0);
  EXPECT_EQ(tray.Shell_NotifyIconA(platform::tray::kModify, icon) != 0, added != 0);
  EXPECT_EQ(tray.Shell_NotifyIconA(platform::tray::kDelete, icon) != 0, added != 0);
  EXPECT_EQ(tray.Shell_NotifyIconA(platform::tray::kDelete, icon), 0);
  EXPECT_EQ(tray.Shell_NotifyIconA(platform::tray::kModify, icon), 0);
}

}  // namespace
}  // namespace quorvane::testing
