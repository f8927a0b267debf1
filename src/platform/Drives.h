#pragma once
// The file-system service's drive and folder queries, and the attributes of files and folders:
// which drive letters exist, what a drive says of itself, the sub-folders of a folder, and the
// platform's attribute calls. Paths are in the active code page, with backslashes; a drive is
// named by its letter and ":" ("C:").
#include <cstdint>
#include <string>
#include <vector>

namespace quorvane::platform {

namespace drives {
// The service's kinds of drive, by number.
inline constexpr std::int32_t kUnknownType = 0;
inline constexpr std::int32_t kRemovable = 1;
inline constexpr std::int32_t kFixed = 2;
inline constexpr std::int32_t kRemote = 3;
inline constexpr std::int32_t kCdRom = 4;
inline constexpr std::int32_t kRamDisk = 5;

// File attributes, as the platform numbers them.
inline constexpr std::uint32_t kReadOnly = 0x01;
inline constexpr std::uint32_t kHidden = 0x02;
inline constexpr std::uint32_t kSystem = 0x04;
inline constexpr std::uint32_t kDirectory = 0x10;
inline constexpr std::uint32_t kArchive = 0x20;
inline constexpr std::uint32_t kNormal = 0x80;
// What GetFileAttributesA gives for a path that isn't there.
inline constexpr std::uint32_t kInvalidAttributes = 0xFFFFFFFF;
}  // namespace drives

// What a drive says of itself.
struct DriveFacts {
  std::int32_t DriveType = drives::kUnknownType;
  // Whether a medium is in the drive and can be read.
  bool IsReady = false;
  // The medium's name; empty when it has none or when the drive isn't ready.
  std::string VolumeName;
  // For a network drive, the share it stands for ("\\server\share"); empty otherwise.
  std::string ShareName;
};

class Drives {
 public:
  virtual ~Drives() = default;

  // Whether the drive letter stands for a drive, with a medium or without one.
  virtual bool DriveExists(const std::string& drive) = 0;
  // What the drive says of itself; false, with `facts` untouched, when there is no such drive.
  virtual bool GetDrive(const std::string& drive, DriveFacts& facts) = 0;
  // The names of the folders directly in `folder` (a drive's root is "C:\"), in the order in
  // which the file system gives them, without "." and ".."; false when the folder can't be
  // read.
  virtual bool SubFolders(const std::string& folder, std::vector<std::string>& names) = 0;
  // The attributes of a file or folder; kInvalidAttributes when it isn't there.
  virtual std::uint32_t GetFileAttributesA(const char* path) = 0;
  // Replaces the attributes of a file or folder (a folder stays a folder). Non-zero on success.
  virtual std::int32_t SetFileAttributesA(const char* path, std::uint32_t attributes) = 0;
};

}  // namespace quorvane::platform
