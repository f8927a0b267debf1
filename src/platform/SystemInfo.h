#pragma once
// Facts of the system the program runs on, as the calls it makes for them, with the platform's
// arguments, results and status values: the version record, the special folders, the program's
// own raw resources and the folder of its executable.
#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace quorvane::platform {

// The version record in its 148-byte form. The caller sets the size field before the call.
struct OsVersionInfo {
  std::uint32_t dwOSVersionInfoSize = 0;
  std::uint32_t dwMajorVersion = 0;
  std::uint32_t dwMinorVersion = 0;
  std::uint32_t dwBuildNumber = 0;
  std::uint32_t dwPlatformId = 0;
  std::array<char, 128> szCSDVersion{};  // service pack text, NUL-terminated
};
static_assert(sizeof(OsVersionInfo) == 148, "the version record is 148 bytes");

namespace osversion {
inline constexpr std::uint32_t kRecordSize = 148;
// Platform ids.
inline constexpr std::uint32_t kWin32s = 0;
inline constexpr std::uint32_t kWin32Windows = 1;
inline constexpr std::uint32_t kWin32Nt = 2;
}  // namespace osversion

// An item list of the shell, as the value the platform hands out; 0 is none.
using ItemIdList = std::uint64_t;

namespace folder {
// Special folder ids.
inline constexpr std::int32_t kAppData = 0x1A;       // the user's application data
inline constexpr std::int32_t kWindows = 0x24;       // the Windows folder
inline constexpr std::int32_t kProgramFiles = 0x26;  // program files
inline constexpr std::int32_t kMyPictures = 0x27;    // the user's pictures
inline constexpr std::int32_t kSystemX86 = 0x29;     // the system folder

// Results of SHGetSpecialFolderLocation.
inline constexpr std::int32_t kOk = 0;
inline constexpr std::int32_t kFail = static_cast<std::int32_t>(0x80004005u);
inline constexpr std::int32_t kInvalidArg = static_cast<std::int32_t>(0x80070057u);
}  // namespace folder

class SystemInfo {
 public:
  virtual ~SystemInfo() = default;

  // Fills the record, whose size field the caller set; 1 on success, 0 when the call fails (a
  // size field the platform does not know fails).
  virtual std::int32_t GetVersionExA(OsVersionInfo& info) = 0;

  // The item list of a special folder. `owner` is a window handle, 0 for none. 0 on success,
  // with `idList` set; a failure status otherwise. The platform never frees the list for the
  // caller.
  virtual std::int32_t SHGetSpecialFolderLocation(std::uint32_t owner, std::int32_t folderId,
                                                  ItemIdList& idList) = 0;

  // The file-system path of an item list, written with its NUL at the start of `path`, which is
  // the caller's buffer: its size is the room the caller made, and a longer path is cut to fit.
  // Non-zero on success, 0 when the list is no file-system folder.
  virtual std::int32_t SHGetPathFromIDListA(ItemIdList idList, std::string& path) = 0;

  // The raw data of the program's own resource of that type and name (both compared without
  // regard to case); nothing when the program carries none.
  virtual std::optional<std::string> LoadResourceData(const std::string& type,
                                                      const std::string& name) = 0;

  // The folder of the program's executable, without a trailing separator.
  virtual std::string ExecutableFolder() = 0;
};

}  // namespace quorvane::platform
