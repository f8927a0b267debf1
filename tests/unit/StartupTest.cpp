// The start-up routines (version name, special folders, the data folder with its blank icon and
// the product's key, the error report), the tray icon's add and remove, and the main window's
// close, minimise, show/hide and exit routines, over the portable services.
#include <cerrno>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <regex>
#include <stdexcept>
#include <string>
#include <system_error>
#include <tuple>
#include <vector>

#include "base/Failure.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "core/mdlTray.h"
#include "platform/EventLoop.h"
#include "platform/Service.h"
#include "platform/portable/EmptyIcon.h"
#include "platform/portable/MemoryRegistry.h"
#include "platform/portable/PortableApplication.h"
#include "platform/portable/PortableFileSystem.h"
#include "platform/portable/PortableNotification.h"
#include "platform/portable/PortableSystemInfo.h"
#include "platform/portable/PortableTray.h"

#include "ScratchFiles.h"

namespace quorvane {
namespace {

namespace fs = std::filesystem;
using platform::portable::PortableSystemInfo;
using testing::Host;

// The host's files with the platform's separator: a backslash in a path is a folder separator.
// A folder can be made read-only, as one the user may not write in: nothing is made, written or
// appended under it (a test runs as any user, so the host's permissions can't be relied on).
class WindowsPathFiles final : public platform::FileSystem {
 public:
  bool FileExists(const std::string& path) override { return files_.FileExists(Host(path)); }
  bool FolderExists(const std::string& path) override { return files_.FolderExists(Host(path)); }
  bool ReadAll(const std::string& path, std::string& content) override {
    return files_.ReadAll(Host(path), content);
  }
  bool WriteAll(const std::string& path, const std::string& content) override {
    return !ReadOnly(path) && files_.WriteAll(Host(path), content);
  }
  bool Append(const std::string& path, const std::string& content) override {
    return !ReadOnly(path) && files_.Append(Host(path), content);
  }
  bool CreateFolder(const std::string& path) override {
    return !ReadOnly(path) && files_.CreateFolder(Host(path));
  }
  bool RemoveFile(const std::string& path) override {
    return !ReadOnly(path) && files_.RemoveFile(Host(path));
  }
  bool ListFiles(const std::string& folder, std::vector<std::string>& names) override {
    return files_.ListFiles(Host(folder), names);
  }
  bool RemoveFolderTree(const std::string& path) override {
    return !ReadOnly(path) && files_.RemoveFolderTree(Host(path));
  }
  bool RenameFile(const std::string& source, const std::string& target) override {
    return !ReadOnly(source) && !ReadOnly(target) && files_.RenameFile(Host(source), Host(target));
  }
  platform::Replacement ReplaceWhole(
      const std::string& path,
      const std::function<bool(platform::FileWriter&)>& write) override {
    if (ReadOnly(path)) return Refused();
    return files_.ReplaceWhole(Host(path), write);
  }
  platform::Replacement PutInPlace(const std::string& made, const std::string& path) override {
    if (ReadOnly(made) || ReadOnly(path)) return Refused();
    return files_.PutInPlace(Host(made), Host(path));
  }

  void MakeReadOnly(const fs::path& folder) { readOnly_.push_back(folder.lexically_normal()); }

 private:
  static platform::Replacement Refused() {
    platform::Replacement refused;
    refused.failed = platform::Replacement::Step::Create;
    refused.error = EACCES;
    return refused;
  }
  bool ReadOnly(const std::string& path) const {
    const fs::path target = fs::path(Host(path)).lexically_normal();
    for (const fs::path& folder : readOnly_) {
      const auto [end, unused] =
          std::mismatch(folder.begin(), folder.end(), target.begin(), target.end());
      std::ignore = unused;
      if (end == folder.end()) return true;
    }
    return false;
  }

  platform::portable::PortableFileSystem files_;
  std::vector<fs::path> readOnly_;
};

// The portable store, with every key creation written down and, when asked, a failure at the
// n-th creation.
class WatchedRegistry final : public platform::RegistryStore {
 public:
  using RegHandle = platform::RegHandle;
  using RegStatus = platform::RegStatus;

  RegStatus RegOpenKeyExA(RegHandle key, const std::string& subKey, std::uint32_t options,
                          std::uint32_t samDesired, RegHandle& result) override {
    return store.RegOpenKeyExA(key, subKey, options, samDesired, result);
  }
  RegStatus RegOpenKeyA(RegHandle key, const std::string& subKey, RegHandle& result) override {
    return store.RegOpenKeyA(key, subKey, result);
  }
  RegStatus RegCreateKeyA(RegHandle key, const std::string& subKey, RegHandle& result) override {
    created.push_back(subKey);
    if (static_cast<int>(created.size()) == failAtCreation) {
      throw std::runtime_error("the store broke down");
    }
    return store.RegCreateKeyA(key, subKey, result);
  }
  RegStatus RegCloseKey(RegHandle key) override { return store.RegCloseKey(key); }
  RegStatus RegDeleteKeyA(RegHandle key, const std::string& subKey) override {
    return store.RegDeleteKeyA(key, subKey);
  }
  RegStatus RegDeleteValueA(RegHandle key, const std::string& valueName) override {
    return store.RegDeleteValueA(key, valueName);
  }
  RegStatus RegSetValueExA(RegHandle key, const std::string& valueName, std::uint32_t reserved,
                           std::uint32_t kind, const std::uint8_t* data,
                           std::uint32_t size) override {
    return store.RegSetValueExA(key, valueName, reserved, kind, data, size);
  }
  RegStatus RegQueryValueExA(RegHandle key, const std::string& valueName,
                             std::uint32_t* reserved, std::uint32_t* kind, std::uint8_t* data,
                             std::uint32_t* size) override {
    return store.RegQueryValueExA(key, valueName, reserved, kind, data, size);
  }
  RegStatus RegEnumKeyExA(RegHandle key, std::uint32_t index, char* name,
                          std::uint32_t* nameSize) override {
    return store.RegEnumKeyExA(key, index, name, nameSize);
  }
  RegStatus RegEnumValueA(RegHandle key, std::uint32_t index, char* name,
                          std::uint32_t* nameSize, std::uint32_t* kind, std::uint8_t* data,
                          std::uint32_t* dataSize) override {
    return store.RegEnumValueA(key, index, name, nameSize, kind, data, dataSize);
  }

  bool Exists(const std::string& subKey) {
    RegHandle key = 0;
    if (store.RegOpenKeyA(platform::reg::kCurrentUser, subKey, key) != platform::reg::kSuccess) {
      return false;
    }
    store.RegCloseKey(key);
    return true;
  }

  platform::portable::MemoryRegistry store;
  std::vector<std::string> created;
  int failAtCreation = 0;
};

// Yields, written into the journal the other recorders share.
class JournalEventLoop final : public platform::EventLoop {
 public:
  explicit JournalEventLoop(std::vector<std::string>& journal) : journal_(journal) {}
  void DoEvents() override { journal_.push_back("yield"); }

 private:
  std::vector<std::string>& journal_;
};

std::string ReadHostFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteHostFile(const fs::path& path, const std::string& content) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << content;
}

class StartupTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(root_ / "AppData");
    system_.SetFolder(platform::folder::kAppData, (root_ / "AppData").string());
    system_.SetExecutableFolder("/opt/quorvane/bin");
    core::gSystemFolder.clear();
    core::gWindowsFolder.clear();
    core::gProgramFilesFolder.clear();
    core::gPicturesFolder.clear();
    core::gDataFolder.clear();
    core::gTrayIcon = platform::NotifyIconData{};
    tray_.Journal(&journal_);
    application_.Journal(&journal_);
    notification_.Journal(&journal_);
  }

  // The program's folder under the application data folder, on the host.
  fs::path ProgramFolder() const { return root_ / "AppData" / "Talvenor" / "Mirefold" / "Quorvane"; }

  testing::ScratchFolder scratch_{"startup"};
  const fs::path root_ = scratch_.Path();
  std::vector<std::string> journal_;
  PortableSystemInfo system_;
  WindowsPathFiles files_;
  WatchedRegistry registry_;
  JournalEventLoop events_{journal_};
  platform::portable::PortableTray tray_;
  platform::portable::PortableApplication application_;
  platform::portable::PortableNotification notification_;
  FrmMain form_;
  MainWindowScope scope_{form_};
  platform::ScopedService<platform::SystemInfo> s1_{system_};
  platform::ScopedService<platform::FileSystem> s2_{files_};
  platform::ScopedService<platform::RegistryStore> s3_{registry_};
  platform::ScopedService<platform::EventLoop> s4_{events_};
  platform::ScopedService<platform::Tray> s5_{tray_};
  platform::ScopedService<platform::Application> s6_{application_};
  platform::ScopedService<platform::Notification> s7_{notification_};
};

// --- GetOSName and IsVista ------------------------------------------------------------------

struct VersionCase {
  std::uint32_t platformId;
  std::uint32_t major;
  std::uint32_t minor;
  const char* name;
};

void PrintTo(const VersionCase& c, std::ostream* out) {
  *out << "platform " << c.platformId << ", " << c.major << "." << c.minor << ": \"" << c.name
       << "\"";
}

class OSNameTest : public StartupTest, public ::testing::WithParamInterface<VersionCase> {};

TEST_P(OSNameTest, NamesTheVersion) {
  const VersionCase& c = GetParam();
  system_.SetVersion(c.platformId, c.major, c.minor, 1234, "Service Pack 9");
  EXPECT_EQ(core::GetOSName(), c.name);
}

INSTANTIATE_TEST_SUITE_P(
    EveryBranch, OSNameTest,
    ::testing::Values(VersionCase{1, 4, 0, "Windows 95"}, VersionCase{1, 4, 90, "Windows Me"},
                      VersionCase{1, 4, 10, "Windows 98"}, VersionCase{1, 4, 1, "Windows 98"},
                      VersionCase{1, 4, 91, "Windows 98"}, VersionCase{1, 5, 0, "Windows 98"},
                      VersionCase{1, 5, 90, "Windows 98"}, VersionCase{1, 3, 0, ""},
                      VersionCase{1, 3, 95, ""}, VersionCase{2, 3, 51, "Windows NT"},
                      VersionCase{2, 4, 0, "Windows NT"}, VersionCase{2, 4, 90, "Windows NT"},
                      VersionCase{2, 5, 0, "Windows 2000"}, VersionCase{2, 5, 1, "Windows XP"},
                      VersionCase{2, 5, 2, "Windows XP"}, VersionCase{2, 6, 0, "Windows Vista"},
                      VersionCase{2, 6, 1, "Windows Vista"}, VersionCase{2, 6, 3, "Windows Vista"},
                      VersionCase{2, 7, 0, "Newer than Windows Vista"},
                      VersionCase{2, 10, 0, "Newer than Windows Vista"},
                      VersionCase{2, 2, 0, "Newer than Windows Vista"},
                      VersionCase{0, 3, 10, "Unknown or Windows 3.x with Win32s installed"},
                      VersionCase{3, 6, 1, "Unknown or Windows 3.x with Win32s installed"},
                      VersionCase{7, 5, 1, "Unknown or Windows 3.x with Win32s installed"}),
    [](const ::testing::TestParamInfo<VersionCase>& param) {
      return "Platform" + std::to_string(param.param.platformId) + "_" +
             std::to_string(param.param.major) + "_" + std::to_string(param.param.minor);
    });

TEST_F(StartupTest, AFailedVersionCallGivesNoName) {
  system_.SetVersion(2, 5, 1);
  system_.SetVersionCallResult(0);
  EXPECT_EQ(core::GetOSName(), "");
}

TEST_F(StartupTest, AVersionCallThatGivesOtherThanOneGivesNoName) {
  system_.SetVersion(2, 6, 1);
  system_.SetVersionCallResult(2);
  EXPECT_EQ(core::GetOSName(), "");
  EXPECT_EQ(core::IsVista(), kFalse);
}

TEST_F(StartupTest, TheVersionCallGetsThe148ByteRecord) {
  // The portable call refuses any other size field, as the platform does.
  system_.SetVersion(2, 5, 1);
  ASSERT_EQ(core::GetOSName(), "Windows XP");
  platform::OsVersionInfo wrongSize{};
  wrongSize.dwOSVersionInfoSize = 156;
  EXPECT_EQ(system_.GetVersionExA(wrongSize), 0);
}

TEST_F(StartupTest, IsVistaForEverySixOfTheNtLine) {
  for (std::uint32_t minor : {0u, 1u, 2u, 3u}) {
    system_.SetVersion(2, 6, minor);
    EXPECT_EQ(core::IsVista(), kTrue) << "6." << minor;
  }
}

TEST_F(StartupTest, IsVistaFalseOtherwise) {
  system_.SetVersion(2, 5, 1);
  EXPECT_EQ(core::IsVista(), kFalse);
  system_.SetVersion(2, 10, 0);
  EXPECT_EQ(core::IsVista(), kFalse);
  system_.SetVersion(1, 6, 0);  // a six of the other line
  EXPECT_EQ(core::IsVista(), kFalse);
  system_.SetVersion(2, 6, 1);
  system_.SetVersionCallResult(0);
  EXPECT_EQ(core::IsVista(), kFalse);
}

TEST_F(StartupTest, IsVistaMakesItsOwnVersionCall) {
  const int before = system_.VersionCalls();
  core::GetOSName();
  EXPECT_EQ(system_.VersionCalls(), before + 1);
  core::IsVista();
  EXPECT_EQ(system_.VersionCalls(), before + 2);
}

TEST_F(StartupTest, NewerSystemsTakeNoVistaBranch) {
  system_.SetVersion(2, 10, 0);
  EXPECT_EQ(core::GetOSName(), "Newer than Windows Vista");
  EXPECT_NE(core::GetOSName(), "Windows Vista");
  EXPECT_EQ(core::IsVista(), kFalse);
}

// --- GetSpecialFolder -------------------------------------------------------------------------

TEST_F(StartupTest, SpecialFolderIsThePathWithABackslash) {
  const fs::path pictures = root_ / "My Pictures";
  fs::create_directories(pictures);
  system_.SetFolder(platform::folder::kMyPictures, pictures.string());
  EXPECT_EQ(core::GetSpecialFolder(platform::folder::kMyPictures), pictures.string() + "\\");
  EXPECT_EQ(core::GetSpecialFolder(platform::folder::kAppData),
            (root_ / "AppData").string() + "\\");
}

TEST_F(StartupTest, EveryDefaultFolderIsFound) {
  PortableSystemInfo fresh;
  platform::ScopedService<platform::SystemInfo> installed(fresh);
  for (std::int32_t id : {platform::folder::kAppData, platform::folder::kWindows,
                          platform::folder::kProgramFiles, platform::folder::kMyPictures,
                          platform::folder::kSystemX86}) {
    const std::string folder = core::GetSpecialFolder(id);
    ASSERT_FALSE(folder.empty()) << id;
    EXPECT_EQ(folder.back(), '\\');
    EXPECT_TRUE(fs::is_directory(folder.substr(0, folder.size() - 1))) << folder;
  }
}

TEST_F(StartupTest, AnUnknownFolderGivesTheEmptyText) {
  system_.RemoveFolder(platform::folder::kMyPictures);
  EXPECT_EQ(core::GetSpecialFolder(platform::folder::kMyPictures), "");
  EXPECT_EQ(core::GetSpecialFolder(0x7777), "");
}

TEST_F(StartupTest, AMissingFolderGivesTheEmptyText) {
  system_.SetFolder(platform::folder::kWindows, (root_ / "no such folder").string());
  EXPECT_EQ(core::GetSpecialFolder(platform::folder::kWindows), "");
}

TEST_F(StartupTest, SpecialFolderWithoutTheServiceGivesTheEmptyText) {
  platform::SystemInfo* previous = platform::Install<platform::SystemInfo>(nullptr);
  const std::string folder = core::GetSpecialFolder(platform::folder::kAppData);
  platform::Install<platform::SystemInfo>(previous);
  EXPECT_EQ(folder, "");
}

TEST_F(StartupTest, ALongPathIsCutAtTheBuffer) {
  fs::path deep = root_;
  while (deep.string().size() < 300) deep /= std::string(40, 'd');
  fs::create_directories(deep);
  system_.SetFolder(platform::folder::kProgramFiles, deep.string());
  EXPECT_EQ(core::GetSpecialFolder(platform::folder::kProgramFiles),
            deep.string().substr(0, 255) + "\\");
}

// --- CreateDefaultFolder, ExtractResourceFile, CreateRegistryPath ------------------------------

TEST_F(StartupTest, CreateDefaultFolderMakesTheFoldersTheIconAndTheKey) {
  core::gDataFolder = core::GetSpecialFolder(platform::folder::kAppData);
  const std::string appData = core::gDataFolder;
  EXPECT_EQ(core::CreateDefaultFolder(), kTrue);
  EXPECT_EQ(core::gDataFolder, appData + "Talvenor\\Mirefold\\Quorvane\\");
  EXPECT_TRUE(fs::is_directory(root_ / "AppData" / "Talvenor"));
  EXPECT_TRUE(fs::is_directory(root_ / "AppData" / "Talvenor" / "Mirefold"));
  EXPECT_TRUE(fs::is_directory(ProgramFolder()));
  const std::string icon = ReadHostFile(ProgramFolder() / "Empty.ico");
  EXPECT_EQ(icon.size(), 768u);
  EXPECT_EQ(icon, platform::portable::EmptyIconFile());
  EXPECT_TRUE(registry_.Exists("Software\\Talvenor\\Mirefold\\Quorvane"));
}

TEST_F(StartupTest, CreateDefaultFolderKeepsFoldersThatExist) {
  fs::create_directories(root_ / "AppData" / "Talvenor" / "Mirefold");
  WriteHostFile(root_ / "AppData" / "Talvenor" / "Mirefold" / "keep.txt", "kept");
  core::gDataFolder = core::GetSpecialFolder(platform::folder::kAppData);
  EXPECT_EQ(core::CreateDefaultFolder(), kTrue);
  EXPECT_TRUE(fs::is_directory(ProgramFolder()));
  EXPECT_EQ(ReadHostFile(root_ / "AppData" / "Talvenor" / "Mirefold" / "keep.txt"), "kept");
}

TEST_F(StartupTest, AnExistingIconIsNotWrittenAgainWhateverItHolds) {
  fs::create_directories(ProgramFolder());
  for (const std::string& content : {std::string("not an icon"), std::string(), std::string(2000, 'x')}) {
    WriteHostFile(ProgramFolder() / "Empty.ico", content);
    core::gDataFolder = core::GetSpecialFolder(platform::folder::kAppData);
    EXPECT_EQ(core::CreateDefaultFolder(), kTrue);
    EXPECT_EQ(ReadHostFile(ProgramFolder() / "Empty.ico"), content);
  }
}

TEST_F(StartupTest, AReadOnlyApplicationDataFolderFails) {
  files_.MakeReadOnly(root_ / "AppData");
  core::gDataFolder = core::GetSpecialFolder(platform::folder::kAppData);
  EXPECT_EQ(core::CreateDefaultFolder(), kFalse);
  EXPECT_EQ(core::gDataFolder, "/opt/quorvane/bin");
  EXPECT_FALSE(fs::exists(root_ / "AppData" / "Talvenor"));
  EXPECT_FALSE(registry_.Exists("Software\\Talvenor"));
}

TEST_F(StartupTest, AReadOnlyProgramFolderFailsAtTheIcon) {
  fs::create_directories(ProgramFolder());
  files_.MakeReadOnly(ProgramFolder());
  core::gDataFolder = core::GetSpecialFolder(platform::folder::kAppData);
  EXPECT_EQ(core::CreateDefaultFolder(), kFalse);
  EXPECT_EQ(core::gDataFolder, "/opt/quorvane/bin");
  EXPECT_FALSE(fs::exists(ProgramFolder() / "Empty.ico"));
  EXPECT_FALSE(registry_.Exists("Software\\Talvenor"));  // the key comes after the icon
}

TEST_F(StartupTest, AFileWhereTheFolderShouldBeFails) {
  fs::create_directories(root_ / "AppData" / "Talvenor");
  WriteHostFile(root_ / "AppData" / "Talvenor" / "Mirefold", "a file");
  core::gDataFolder = core::GetSpecialFolder(platform::folder::kAppData);
  EXPECT_EQ(core::CreateDefaultFolder(), kFalse);
  EXPECT_EQ(core::gDataFolder, "/opt/quorvane/bin");
  EXPECT_EQ(ReadHostFile(root_ / "AppData" / "Talvenor" / "Mirefold"), "a file");
}

TEST_F(StartupTest, AMissingIconResourceFailsAndKeepsTheFolders) {
  system_.RemoveResource("ICO", "EMPTY.ICO");
  core::gDataFolder = core::GetSpecialFolder(platform::folder::kAppData);
  EXPECT_EQ(core::CreateDefaultFolder(), kFalse);
  EXPECT_EQ(core::gDataFolder, "/opt/quorvane/bin");
  EXPECT_TRUE(fs::is_directory(ProgramFolder()));
  EXPECT_FALSE(fs::exists(ProgramFolder() / "Empty.ico"));
}

TEST_F(StartupTest, TheErrorPathTakesTheExecutablesFolderAsItIs) {
  system_.SetExecutableFolder((root_ / "bin").string());
  files_.MakeReadOnly(root_ / "AppData");
  core::gDataFolder = core::GetSpecialFolder(platform::folder::kAppData);
  EXPECT_EQ(core::CreateDefaultFolder(), kFalse);
  EXPECT_EQ(core::gDataFolder, (root_ / "bin").string());
  EXPECT_NE(core::gDataFolder.back(), '\\');
}

TEST_F(StartupTest, ExtractResourceFileWritesTheResourceBytes) {
  core::gDataFolder = (root_ / "AppData").string() + "\\";
  system_.PutResource("ICO", "OTHER.ICO", std::string("\0\1\2three", 8));
  core::ExtractResourceFile("other.ico");
  EXPECT_EQ(ReadHostFile(root_ / "AppData" / "other.ico"), std::string("\0\1\2three", 8));
  core::ExtractResourceFile("Empty.ico");
  EXPECT_EQ(ReadHostFile(root_ / "AppData" / "Empty.ico"), platform::portable::EmptyIconFile());
}

TEST_F(StartupTest, ExtractResourceFileOverwritesInPlace) {
  core::gDataFolder = (root_ / "AppData").string() + "\\";
  WriteHostFile(root_ / "AppData" / "Empty.ico", std::string(1000, 'x'));
  core::ExtractResourceFile("Empty.ico");
  const std::string written = ReadHostFile(root_ / "AppData" / "Empty.ico");
  ASSERT_EQ(written.size(), 1000u);
  EXPECT_EQ(written.substr(0, 768), platform::portable::EmptyIconFile());
  EXPECT_EQ(written.substr(768), std::string(232, 'x'));
}

TEST_F(StartupTest, ExtractResourceFileFailuresGoUp) {
  core::gDataFolder = (root_ / "AppData").string() + "\\";
  try {
    core::ExtractResourceFile("Missing.ico");
    FAIL() << "a missing resource must fail";
  } catch (const Failure& failure) {
    EXPECT_EQ(static_cast<int>(failure.Number()), 326);
  }
  files_.MakeReadOnly(root_ / "AppData");
  try {
    core::ExtractResourceFile("Empty.ico");
    FAIL() << "a file that can't be written must fail";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::PathFileAccessError);
  }
}

TEST_F(StartupTest, CreateRegistryPathMakesEachMissingKeyFromTheRootDown) {
  ASSERT_TRUE(registry_.Exists("Software"));  // the store has it from the start
  EXPECT_EQ(core::CreateRegistryPath(core::ProductKey), kTrue);
  // The root itself and Software are found, so they are never made.
  EXPECT_THAT(registry_.created,
              ::testing::ElementsAre("Software\\Talvenor\\", "Software\\Talvenor\\Mirefold\\",
                                     "Software\\Talvenor\\Mirefold\\Quorvane\\"));
  EXPECT_TRUE(registry_.Exists("Software\\Talvenor\\Mirefold\\Quorvane"));
}

TEST_F(StartupTest, CreateRegistryPathLeavesExistingKeys) {
  ASSERT_EQ(core::CreateRegistryPath("HKEY_CURRENT_USER\\Software\\Talvenor"), kTrue);
  registry_.created.clear();
  EXPECT_EQ(core::CreateRegistryPath(core::ProductKey), kTrue);
  EXPECT_THAT(registry_.created, ::testing::ElementsAre("Software\\Talvenor\\Mirefold\\",
                                                        "Software\\Talvenor\\Mirefold\\Quorvane\\"));
  registry_.created.clear();
  EXPECT_EQ(core::CreateRegistryPath(core::ProductKey), kTrue);
  EXPECT_TRUE(registry_.created.empty());
}

TEST_F(StartupTest, CreateRegistryPathStopsAtAFailureKeepingWhatItMade) {
  registry_.failAtCreation = 2;
  EXPECT_EQ(core::CreateRegistryPath(core::ProductKey), kFalse);
  EXPECT_EQ(registry_.created.size(), 2u);
  EXPECT_TRUE(registry_.Exists("Software\\Talvenor"));
  EXPECT_FALSE(registry_.Exists("Software\\Talvenor\\Mirefold"));
}

TEST(CreateRegistryPathAloneTest, WithoutTheMainWindowGivesZero) {
  WatchedRegistry registry;
  platform::ScopedService<platform::RegistryStore> installed(registry);
  EXPECT_EQ(core::CreateRegistryPath(core::ProductKey), kFalse);
  EXPECT_TRUE(registry.created.empty());
}

// --- ReportError ---------------------------------------------------------------------------------

const std::regex kLogLine(
    R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\tFrmMain\tForm_Load\tline (\d+)\terror (\d+)\t(.*)\r\n$)");

TEST_F(StartupTest, ReportErrorWritesOneLineInTheDataFolder) {
  core::gDataFolder = (root_ / "AppData").string() + "\\";
  try {
    RaiseInvalidProcedureCall();
  } catch (const std::exception&) {
    core::ReportError("FrmMain", "Form_Load");
  }
  const std::string log = ReadHostFile(root_ / "AppData" / "Quorvane.log");
  std::smatch m;
  ASSERT_TRUE(std::regex_match(log, m, kLogLine)) << log;
  EXPECT_EQ(m[1], "0");
  EXPECT_EQ(m[2], "5");
  EXPECT_EQ(m[3], "Invalid procedure call or argument");
}

TEST_F(StartupTest, ReportErrorAppendsAndKeepsTheLineGiven) {
  core::gDataFolder = (root_ / "AppData").string() + "\\";
  try {
    Raise(FailureNumber::SubscriptOutOfRange, "Subscript\r\nout of range");
  } catch (const Failure&) {
    core::ReportError("FrmMain", "Form_Load", 70);
  }
  try {
    throw std::runtime_error("not a numbered failure");
  } catch (const std::exception&) {
    core::ReportError("FrmMain", "Form_Load");
  }
  const std::string log = ReadHostFile(root_ / "AppData" / "Quorvane.log");
  const std::size_t firstEnd = log.find("\r\n");
  ASSERT_NE(firstEnd, std::string::npos);
  const std::string first = log.substr(0, firstEnd + 2);
  const std::string second = log.substr(firstEnd + 2);
  std::smatch m;
  ASSERT_TRUE(std::regex_match(first, m, kLogLine)) << first;
  EXPECT_EQ(m[1], "70");
  EXPECT_EQ(m[2], "9");
  EXPECT_EQ(m[3], "Subscript  out of range");
  ASSERT_TRUE(std::regex_match(second, m, kLogLine)) << second;
  EXPECT_EQ(m[2], "0");
  EXPECT_EQ(m[3], "not a numbered failure");
}

TEST_F(StartupTest, ReportErrorInTheExecutablesFolderAddsTheSeparator) {
  core::gDataFolder = (root_ / "AppData").string();  // as the error path of the folders leaves it
  try {
    RaiseOverflow();
  } catch (const Failure&) {
    core::ReportError("FrmMain", "Form_Load");
  }
  EXPECT_TRUE(fs::exists(root_ / "AppData" / "Quorvane.log"));
}

TEST_F(StartupTest, ReportErrorNeverFails) {
  core::gDataFolder = (root_ / "AppData").string() + "\\";
  files_.MakeReadOnly(root_ / "AppData");
  try {
    RaiseOverflow();
  } catch (const Failure&) {
    EXPECT_NO_THROW(core::ReportError("FrmMain", "Form_Load"));
  }
  EXPECT_FALSE(fs::exists(root_ / "AppData" / "Quorvane.log"));
  platform::FileSystem* previous = platform::Install<platform::FileSystem>(nullptr);
  EXPECT_NO_THROW(core::ReportError("FrmMain", "Form_Load"));
  platform::Install<platform::FileSystem>(previous);
}

// --- the tray icon -------------------------------------------------------------------------------

std::array<char, 64> Tip(const std::string& text) {
  std::array<char, 64> tip;
  tip.fill(' ');
  std::copy(text.begin(), text.end(), tip.begin());
  return tip;
}

TEST_F(StartupTest, AddToTrayFillsTheShortRecord) {
  std::uint32_t window = 0x1234;
  core::AddToTray(window, 0x5678, "Quorvane", 0x200);
  ASSERT_EQ(tray_.Calls().size(), 1u);
  const auto& call = tray_.Calls()[0];
  EXPECT_EQ(call.message, platform::tray::kAdd);
  EXPECT_EQ(call.data.cbSize, 88u);
  EXPECT_EQ(call.data.hWnd, 0x1234u);
  EXPECT_EQ(call.data.uID, 1u);
  EXPECT_EQ(call.data.uFlags, 7u);
  EXPECT_EQ(call.data.uCallbackMessage, 0x200u);
  EXPECT_EQ(call.data.hIcon, 0x5678u);
  EXPECT_EQ(call.data.szTip, Tip(std::string("Quorvane\0", 9)));
  EXPECT_EQ(tray_.Icons().size(), 1u);
}

TEST_F(StartupTest, ATipOf64CharactersOrMoreIsCut) {
  std::uint32_t window = 7;
  const std::string long70(70, 'q');
  core::AddToTray(window, 1, long70, 0x200);
  EXPECT_EQ(core::gTrayIcon.szTip, Tip(std::string(64, 'q')));
  core::RemoveFromTray();
  const std::string exactly63(63, 'r');
  core::AddToTray(window, 1, exactly63, 0x200);
  EXPECT_EQ(core::gTrayIcon.szTip, Tip(exactly63 + '\0'));
}

TEST_F(StartupTest, RemoveBeforeAnyAddNamesNoIcon) {
  core::RemoveFromTray();
  ASSERT_EQ(tray_.Calls().size(), 1u);
  EXPECT_EQ(tray_.Calls()[0].message, platform::tray::kDelete);
  EXPECT_EQ(tray_.Calls()[0].data.cbSize, 0u);
  EXPECT_EQ(tray_.Calls()[0].result, 0);
}

TEST_F(StartupTest, RemoveThenAddAtEachLoadNeverDoubles) {
  std::uint32_t window = form_.PicPopup.hWnd = 0x4242;
  for (int load = 0; load < 3; ++load) {
    core::RemoveFromTray();
    core::AddToTray(window, 0x99, "Quorvane", 0x200);
    ASSERT_EQ(tray_.Icons().size(), 1u) << "load " << load;
    EXPECT_EQ(tray_.Icons()[0].hWnd, 0x4242u);
  }
  ASSERT_EQ(tray_.Calls().size(), 6u);
  EXPECT_EQ(tray_.Calls()[0].result, 0);  // nothing to remove at the first load
  for (std::size_t i = 1; i < 6; ++i) EXPECT_EQ(tray_.Calls()[i].result, 1) << i;
}

TEST_F(StartupTest, AnAddWithoutRemoveIsRefusedByTheArea) {
  std::uint32_t window = 3;
  core::AddToTray(window, 0x99, "Quorvane", 0x200);
  core::AddToTray(window, 0x99, "Quorvane", 0x200);
  EXPECT_EQ(tray_.Calls().back().result, 0);
  EXPECT_EQ(tray_.Icons().size(), 1u);
}

TEST_F(StartupTest, RemoveUsesTheRecordTheAddLeft) {
  std::uint32_t window = 0x77;
  core::AddToTray(window, 0x88, "tip", 0x200);
  core::RemoveFromTray();
  ASSERT_EQ(tray_.Calls().size(), 2u);
  const auto& added = tray_.Calls()[0].data;
  const auto& removed = tray_.Calls()[1].data;
  EXPECT_EQ(removed.hWnd, added.hWnd);
  EXPECT_EQ(removed.uID, added.uID);
  EXPECT_EQ(removed.hIcon, added.hIcon);
  EXPECT_EQ(removed.szTip, added.szTip);
  EXPECT_TRUE(tray_.Icons().empty());
}

TEST_F(StartupTest, WithoutANotificationAreaTheProgramGoesOn) {
  tray_.SetNotificationArea(false);
  std::uint32_t window = 3;
  EXPECT_NO_THROW(core::RemoveFromTray());
  EXPECT_NO_THROW(core::AddToTray(window, 1, "Quorvane", 0x200));
  EXPECT_TRUE(tray_.Icons().empty());
}

// --- closing, minimising, show/hide, exit ---------------------------------------------------------

TEST_F(StartupTest, TheCloseFromTheSystemMenuIsRefused) {
  form_.Visible(true);
  std::int16_t cancel = 0;
  form_.Form_QueryUnload(cancel, 0);
  EXPECT_NE(cancel, 0);
  EXPECT_TRUE(form_.Visible());
  EXPECT_TRUE(application_.Requests().empty());
}

TEST_F(StartupTest, EveryOtherUnloadHidesTheWindowAndGoesOn) {
  for (std::int16_t mode : {std::int16_t{1}, std::int16_t{2}, std::int16_t{3}, std::int16_t{4}}) {
    form_.Visible(true);
    std::int16_t cancel = 0;
    form_.Form_QueryUnload(cancel, mode);
    EXPECT_EQ(cancel, 0) << mode;
    EXPECT_FALSE(form_.Visible()) << mode;
    EXPECT_EQ(application_.Requests().back(), "hide") << mode;
  }
}

TEST_F(StartupTest, PicCloseRemovesTheIconTwiceThenUnloadsAndEnds) {
  std::uint32_t window = 5;
  core::AddToTray(window, 6, "Quorvane", 0x200);
  form_.Visible(true);
  journal_.clear();
  form_.PicClose_Click();
  EXPECT_THAT(journal_, ::testing::ElementsAre("yield", "tray delete", "yield", "yield",
                                               "tray delete", "yield", "application hide",
                                               "application unload", "application end"));
  EXPECT_TRUE(tray_.Icons().empty());
  EXPECT_EQ(tray_.Calls()[1].result, 1);
  EXPECT_EQ(tray_.Calls()[2].result, 0);
  EXPECT_FALSE(form_.Visible());
  EXPECT_FALSE(application_.MainWindowLoaded());
  EXPECT_TRUE(application_.Ended());
  EXPECT_TRUE(notification_.ShownSoFar().empty());  // no question, no notification
}

TEST_F(StartupTest, ExitRemovesTheIconTwiceAndEndsWithoutUnloading) {
  std::uint32_t window = 5;
  core::AddToTray(window, 6, "Quorvane", 0x200);
  journal_.clear();
  form_.mnuExit_Click();
  EXPECT_THAT(journal_, ::testing::ElementsAre("yield", "tray delete", "yield", "yield",
                                               "tray delete", "yield", "application end"));
  EXPECT_TRUE(tray_.Icons().empty());
  EXPECT_TRUE(application_.MainWindowLoaded());
  EXPECT_TRUE(application_.Ended());
}

TEST_F(StartupTest, PicMinHidesAndTellsTheUser) {
  form_.Visible(true);
  notification_.SetPicture(ui::Pixels{1, 1, {0xFF0000FFu}});  // the picture set at load
  journal_.clear();
  form_.PicMin_Click();
  EXPECT_FALSE(form_.Visible());
  EXPECT_THAT(journal_, ::testing::ElementsAre("application hide", "notification text",
                                               "notification picture", "notification show"));
  ASSERT_EQ(notification_.ShownSoFar().size(), 1u);
  EXPECT_EQ(notification_.ShownSoFar()[0].text,
            "Quorvane is still running, right click on the tray icon to see more options.");
  EXPECT_TRUE(notification_.ShownSoFar()[0].picture.Empty());
  EXPECT_FALSE(application_.Ended());
  EXPECT_TRUE(application_.MainWindowLoaded());
}

TEST_F(StartupTest, ShowHideTogglesByVisibilityAlone) {
  form_.Visible(false);
  form_.mnuShowHide_Click();
  EXPECT_TRUE(form_.Visible());
  EXPECT_THAT(application_.Requests(), ::testing::ElementsAre("show", "focus"));
  form_.mnuShowHide_Click();
  EXPECT_FALSE(form_.Visible());
  EXPECT_THAT(application_.Requests(), ::testing::ElementsAre("show", "focus", "hide"));
  // Shown some other way (a double click on the icon): the next toggle hides.
  form_.Visible(true);
  form_.mnuShowHide_Click();
  EXPECT_FALSE(form_.Visible());
  EXPECT_TRUE(notification_.ShownSoFar().empty());
}

// --- the blank icon ----------------------------------------------------------------------------------

TEST(EmptyIconTest, IsA768ByteTransparentIcon) {
  const std::string icon = platform::portable::EmptyIconFile();
  ASSERT_EQ(icon.size(), 768u);
  auto u16 = [&](std::size_t at) {
    return static_cast<unsigned>(static_cast<unsigned char>(icon[at]) |
                                 static_cast<unsigned char>(icon[at + 1]) << 8);
  };
  auto u32 = [&](std::size_t at) { return u16(at) | u16(at + 2) << 16; };
  EXPECT_EQ(u16(0), 0u);
  EXPECT_EQ(u16(2), 1u);  // an icon
  EXPECT_EQ(u16(4), 1u);  // one image
  EXPECT_EQ(static_cast<unsigned char>(icon[6]), 32);
  EXPECT_EQ(static_cast<unsigned char>(icon[7]), 32);
  const unsigned size = u32(14);
  const unsigned offset = u32(18);
  ASSERT_LE(offset + size, icon.size());
  EXPECT_EQ(u32(offset), 40u);           // header size
  EXPECT_EQ(u32(offset + 8), 64u);       // colour rows and mask rows
  EXPECT_EQ(u16(offset + 14), 4u);       // bits per pixel
  const std::size_t colours = offset + 40 + 16 * 4;
  const std::size_t mask = colours + 32 * 16;
  EXPECT_TRUE(std::all_of(icon.begin() + static_cast<std::ptrdiff_t>(colours),
                          icon.begin() + static_cast<std::ptrdiff_t>(mask),
                          [](char c) { return c == 0; }));
  EXPECT_TRUE(std::all_of(icon.begin() + static_cast<std::ptrdiff_t>(mask),
                          icon.begin() + static_cast<std::ptrdiff_t>(mask + 32 * 4),
                          [](char c) { return static_cast<unsigned char>(c) == 0xFF; }));
}

TEST(EmptyIconTest, TheProgramsResourceFileHoldsTheSameBytes) {
  const fs::path resource = fs::path(__FILE__).parent_path().parent_path().parent_path() / "res" /
                            "Empty.ico";
  ASSERT_TRUE(fs::exists(resource)) << resource;
  EXPECT_EQ(ReadHostFile(resource), platform::portable::EmptyIconFile());
}

TEST(EmptyIconTest, ThePortableProgramCarriesIt) {
  PortableSystemInfo system;
  const auto bytes = system.LoadResourceData("ico", "Empty.Ico");
  ASSERT_TRUE(bytes.has_value());
  EXPECT_EQ(*bytes, platform::portable::EmptyIconFile());
  EXPECT_FALSE(system.LoadResourceData("ICO", "OTHER.ICO").has_value());
  EXPECT_FALSE(system.LoadResourceData("BMP", "EMPTY.ICO").has_value());
}

}  // namespace
}  // namespace quorvane
