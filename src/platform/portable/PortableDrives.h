#pragma once
// Drives without the platform: tests mount host folders as drive letters, each with its kind,
// its volume name and whether a medium is in it; every portable adapter then finds "C:\..." in
// the folder mounted as C (see HostPath.h). Folders are listed from the host; a folder can be
// made unreadable for the listing. Attributes are kept in memory for paths that exist on the
// host, as the platform keeps them: a folder always has the directory attribute, a file with
// none has the normal one.
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/Drives.h"

namespace quorvane::platform::portable {

class PortableDrives final : public Drives {
 public:
  PortableDrives();
  ~PortableDrives() override;
  PortableDrives(const PortableDrives&) = delete;
  PortableDrives& operator=(const PortableDrives&) = delete;

  bool DriveExists(const std::string& drive) override;
  bool GetDrive(const std::string& drive, DriveFacts& facts) override;
  bool SubFolders(const std::string& folder, std::vector<std::string>& names) override;
  std::uint32_t GetFileAttributesA(const char* path) override;
  std::int32_t SetFileAttributesA(const char* path, std::uint32_t attributes) override;

  // --- for tests ------------------------------------------------------------------------------
  // Makes host folder `root` drive `letter`, with a medium named `volumeName`.
  void Mount(char letter, const std::string& root, const std::string& volumeName,
             std::int32_t driveType = drives::kFixed, const std::string& shareName = {});
  // The drive stays, without its medium: not ready, no volume name, nothing to list.
  void Eject(char letter);
  void Unmount(char letter);
  // Listing `folder` (a path as the system writes it) fails from now on.
  void DenyListing(const std::string& folder);

  // The host folder of a mounted drive; null for any other letter.
  const std::string* RootOf(char letter) const;

 private:
  struct Drive {
    std::string root;
    DriveFacts facts;
  };
  std::map<char, Drive> drives_;
  std::set<std::string> denied_;
  std::map<std::string, std::uint32_t> attributes_;
};

}  // namespace quorvane::platform::portable
