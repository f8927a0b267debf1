#include "platform/win32/Win32Drives.h"

#include <windows.h>
#include <winnetwk.h>

#include <cctype>
#include <cstring>

#include "platform/win32/Handles.h"

namespace quorvane::platform::win32 {

namespace {

// The drive's letter in upper case; 0 for a text that names no drive.
char LetterOf(const std::string& drive) {
  if (drive.size() < 2 || drive[1] != ':') return '\0';
  const char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(drive[0])));
  return letter >= 'A' && letter <= 'Z' ? letter : '\0';
}

// The service's number for the platform's kind of drive.
std::int32_t TypeOf(UINT type) {
  switch (type) {
    case DRIVE_REMOVABLE: return drives::kRemovable;
    case DRIVE_FIXED: return drives::kFixed;
    case DRIVE_REMOTE: return drives::kRemote;
    case DRIVE_CDROM: return drives::kCdRom;
    case DRIVE_RAMDISK: return drives::kRamDisk;
    default: return drives::kUnknownType;
  }
}

}  // namespace

bool Win32Drives::DriveExists(const std::string& drive) {
  const char letter = LetterOf(drive);
  if (letter == '\0') return false;
  return (::GetLogicalDrives() & (DWORD{1} << (letter - 'A'))) != 0;
}

bool Win32Drives::GetDrive(const std::string& drive, DriveFacts& facts) {
  if (!DriveExists(drive)) return false;
  const char letter = LetterOf(drive);
  const std::string root = std::string(1, letter) + ":\\";
  DriveFacts made;
  made.DriveType = TypeOf(::GetDriveTypeA(root.c_str()));
  // A drive without a medium refuses its volume information: it isn't ready.
  const UINT previous = ::SetErrorMode(SEM_FAILCRITICALERRORS);
  char volume[MAX_PATH + 1] = {};
  made.IsReady = ::GetVolumeInformationA(root.c_str(), volume, sizeof volume, nullptr, nullptr,
                                         nullptr, nullptr, 0) != 0;
  ::SetErrorMode(previous);
  if (made.IsReady) made.VolumeName = volume;
  if (made.DriveType == drives::kRemote) {
    const std::string local = std::string(1, letter) + ":";
    char share[MAX_PATH + 1] = {};
    DWORD size = sizeof share;
    if (::WNetGetConnectionA(local.c_str(), share, &size) == NO_ERROR) made.ShareName = share;
  }
  facts = made;
  return true;
}

bool Win32Drives::SubFolders(const std::string& folder, std::vector<std::string>& names) {
  names.clear();
  std::string pattern = folder;
  if (pattern.empty() || pattern.back() != '\\') pattern += '\\';
  pattern += '*';
  WIN32_FIND_DATAA found{};
  const UINT previous = ::SetErrorMode(SEM_FAILCRITICALERRORS);
  const UniqueSearch search = AdoptSearch(::FindFirstFileA(pattern.c_str(), &found));
  ::SetErrorMode(previous);
  if (!search) {
    // A folder with nothing in it lists nothing; one that can't be read can't be listed.
    if (::GetLastError() != ERROR_FILE_NOT_FOUND) return false;
    const DWORD a = ::GetFileAttributesA(folder.c_str());
    return a != INVALID_FILE_ATTRIBUTES && (a & FILE_ATTRIBUTE_DIRECTORY) != 0;
  }
  do {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) continue;
    if (std::strcmp(found.cFileName, ".") == 0 || std::strcmp(found.cFileName, "..") == 0) {
      continue;
    }
    names.emplace_back(found.cFileName);
  } while (::FindNextFileA(search.Get(), &found) != 0);
  return true;
}

std::uint32_t Win32Drives::GetFileAttributesA(const char* path) {
  return ::GetFileAttributesA(path);
}

std::int32_t Win32Drives::SetFileAttributesA(const char* path, std::uint32_t attributes) {
  return ::SetFileAttributesA(path, attributes) != 0 ? 1 : 0;
}

}  // namespace quorvane::platform::win32
