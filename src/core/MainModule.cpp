#include "core/MainModule.h"

#include <ctime>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "core/FrmMain.h"
#include "core/Regimes.h"
#include "base/Text.h"
#include "platform/FileSystem.h"
#include "platform/Process.h"
#include "platform/Service.h"
#include "platform/SystemInfo.h"

namespace quorvane::core {

std::string gSystemFolder;
std::string gWindowsFolder;
std::string gProgramFilesFolder;
std::string gPicturesFolder;
std::string gDataFolder;

namespace {

// What a failed MkDir or Open reports.
[[noreturn]] void RaisePathFileAccessError() {
  Raise(FailureNumber::PathFileAccessError, "Path/File access error");
}

// The number of a missing resource.
constexpr FailureNumber kResourceNotFound = static_cast<FailureNumber>(326);

// Makes the folder unless a folder of that name is there already.
void MakeFolderIfMissing(platform::FileSystem& files, const std::string& folder) {
  if (!files.FolderExists(folder)) {
    if (!files.CreateFolder(folder)) RaisePathFileAccessError();
  }
}

// The version record, filled by the platform; false when the call does not give 1.
bool ReadVersion(platform::OsVersionInfo& version) {
  version = platform::OsVersionInfo{};
  version.dwOSVersionInfoSize = platform::osversion::kRecordSize;
  return platform::Use<platform::SystemInfo>().GetVersionExA(version) == 1;
}

// The number and description of the failure being handled; 0 and the empty text outside a
// handler.
void DescribeCurrentFailure(std::int32_t& number, std::string& description) {
  number = 0;
  description.clear();
  const std::exception_ptr current = std::current_exception();
  if (!current) return;
  try {
    std::rethrow_exception(current);
  } catch (const Failure& failure) {
    number = static_cast<std::int32_t>(failure.Number());
    description = failure.what();
  } catch (const std::bad_alloc&) {
    number = static_cast<std::int32_t>(FailureNumber::OutOfMemory);
    description = "Out of memory";
  } catch (const std::exception& failure) {
    description = failure.what();
  } catch (...) {
    description = "Unknown failure";
  }
}

// The time of the report, UTC, as "yyyy-mm-dd hh:mm:ss".
std::string TimeStamp() {
  const std::time_t now = std::time(nullptr);
  const std::tm* utc = std::gmtime(&now);
  if (utc == nullptr) return "0000-00-00 00:00:00";
  char text[32];
  if (std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", utc) == 0) {
    return "0000-00-00 00:00:00";
  }
  return text;
}

// A line break inside a field would split the log line.
std::string OneLine(std::string text) {
  for (char& c : text) {
    if (c == '\r' || c == '\n') c = ' ';
  }
  return text;
}

}  // namespace

RunMode RunModeOf(std::string_view commandLine) {
  return text::Trim(commandLine).empty() ? RunMode::Interactive : RunMode::Resident;
}

void ShowMain() {
  const std::string commandLine = platform::Use<platform::Process>().CommandLine();
  MainForm& frmMain = platform::Use<MainForm>();
  if (RunModeOf(commandLine) == RunMode::Interactive) {
    frmMain.Show();
  } else {
    frmMain.Load();
  }
}

std::string GetSpecialFolder(std::int32_t folderId) {
  // Any failure gives the empty text.
  return AsResult(
      [&] {
        platform::SystemInfo& system = platform::Use<platform::SystemInfo>();
        platform::ItemIdList list = 0;
        // The item list is not freed.
        if (system.SHGetSpecialFolderLocation(0, folderId, list) == 0) {
          std::string path(255, '\0');
          if (system.SHGetPathFromIDListA(list, path) != 0) {
            return path.substr(0, path.find('\0')) + "\\";
          }
        }
        return std::string();
      },
      std::string());
}

Boolean CreateDefaultFolder() {
  const bool made = AsResult([] {
    platform::FileSystem& files = platform::Use<platform::FileSystem>();
    const std::string p = gDataFolder;
    MakeFolderIfMissing(files, p + "Talvenor");
    MakeFolderIfMissing(files, p + "Talvenor\\Mirefold");
    MakeFolderIfMissing(files, p + "Talvenor\\Mirefold\\Quorvane");
    gDataFolder = p + "Talvenor\\Mirefold\\Quorvane\\";
    if (!files.FileExists(gDataFolder + "Empty.ico")) ExtractResourceFile("Empty.ico");
    CreateRegistryPath(ProductKey);
  });
  if (made) return kTrue;
  // The executable's folder instead; nothing when even that can't be had.
  gDataFolder = AsResult(
      [] { return platform::Use<platform::SystemInfo>().ExecutableFolder(); }, std::string());
  return kFalse;
}

void ExtractResourceFile(const std::string& fileName) {
  const std::optional<std::string> bytes =
      platform::Use<platform::SystemInfo>().LoadResourceData("ICO", fileName);
  if (!bytes) Raise(kResourceNotFound, "Resource with identifier not found");
  platform::FileSystem& files = platform::Use<platform::FileSystem>();
  const std::string path = gDataFolder + fileName;
  // Binary access writes from the first byte on and cuts nothing: a longer file keeps its tail.
  std::string content;
  if (!files.FileExists(path) || !files.ReadAll(path, content)) content.clear();
  if (content.size() < bytes->size()) content.resize(bytes->size());
  content.replace(0, bytes->size(), *bytes);
  if (!files.WriteAll(path, content)) RaisePathFileAccessError();
}

Boolean CreateRegistryPath(const std::string& fullKey) {
  return ToBoolean(AsResult([&] {
    AdvRegistryAccess& reg = MainWindow().Reg();
    std::string path;
    for (const std::string& segment : text::Split(fullKey, "\\")) {
      path += segment + "\\";
      if (reg.KeyExists(path) == kFalse) reg.CreateKey(path);
    }
  }));
}

std::string GetOSName() {
  platform::OsVersionInfo version;
  if (!ReadVersion(version)) return std::string();
  const std::uint32_t major = version.dwMajorVersion;
  const std::uint32_t minor = version.dwMinorVersion;
  switch (version.dwPlatformId) {
    case platform::osversion::kWin32Windows:
      if (major == 4) {
        if (minor == 0) return "Windows 95";
        if (minor == 90) return "Windows Me";
        return "Windows 98";
      }
      if (major > 4) return "Windows 98";
      return std::string();
    case platform::osversion::kWin32Nt:
      if (major == 3 || major == 4) return "Windows NT";
      if (major == 5) return minor == 0 ? "Windows 2000" : "Windows XP";
      if (major == 6) return "Windows Vista";
      return "Newer than Windows Vista";
    default:
      return "Unknown or Windows 3.x with Win32s installed";
  }
}

Boolean IsVista() {
  platform::OsVersionInfo version;
  if (!ReadVersion(version)) return kFalse;
  return ToBoolean(version.dwMajorVersion == 6 &&
                   version.dwPlatformId == platform::osversion::kWin32Nt);
}

void ReportError(const std::string& moduleName, const std::string& routineName,
                 std::int32_t line) noexcept {
  // The report itself never fails. The failure it describes is still the one being handled.
  ResumeEach(kAnything, [&] {
    std::int32_t number = 0;
    std::string description;
    DescribeCurrentFailure(number, description);
    std::string folder = gDataFolder;
    // The folder of the executable comes without a separator at its end.
    if (!folder.empty() && folder.back() != '\\' && folder.back() != '/') folder += '\\';
    const std::string entry = TimeStamp() + "\t" + OneLine(moduleName) + "\t" +
                              OneLine(routineName) + "\tline " + std::to_string(line) +
                              "\terror " + std::to_string(number) + "\t" +
                              OneLine(description) + "\r\n";
    platform::Use<platform::FileSystem>().Append(folder + kErrorLogName, entry);
  });
}

}  // namespace quorvane::core
