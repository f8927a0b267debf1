#include "platform/portable/PortableDrives.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <system_error>

#include "platform/portable/HostPath.h"

namespace quorvane::platform::portable {

namespace {

// The drives every portable adapter sees: the newest PortableDrives alive.
PortableDrives* gCurrent = nullptr;
std::vector<PortableDrives*> gEarlier;

char LetterOf(const std::string& drive) {
  if (drive.size() < 2 || drive[1] != ':') return '\0';
  return static_cast<char>(std::toupper(static_cast<unsigned char>(drive[0])));
}

// A path as the system writes it, made comparable: backslashes, upper case, no trailing
// separator.
std::string Normal(std::string path) {
  for (char& c : path) {
    c = c == '/' ? '\\' : static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  while (path.size() > 3 && path.back() == '\\') path.pop_back();
  if (path.size() == 2 && path[1] == ':') path += '\\';
  return path;
}

}  // namespace

bool MountedHostPath(const std::string& path, std::string& host) {
  const std::string* root = gCurrent != nullptr ? gCurrent->RootOf(path[0]) : nullptr;
  if (root == nullptr) return false;
  std::filesystem::path found(*root);
  std::string rest = path.substr(2);
  for (char& c : rest) {
    if (c == '/') c = '\\';
  }
  std::size_t at = 0;
  while (at <= rest.size()) {
    std::size_t end = rest.find('\\', at);
    if (end == std::string::npos) end = rest.size();
    const std::string part = rest.substr(at, end - at);
    at = end + 1;
    if (part.empty() || part == ".") continue;
    std::error_code ec;
    std::filesystem::path next = found / part;
    if (!std::filesystem::exists(next, ec)) {
      // The platform's names don't tell case apart: the first entry that matches stands.
      for (const auto& entry : std::filesystem::directory_iterator(found, ec)) {
        const std::string name = entry.path().filename().string();
        if (name.size() == part.size() &&
            std::equal(name.begin(), name.end(), part.begin(), [](char a, char b) {
              return std::toupper(static_cast<unsigned char>(a)) ==
                     std::toupper(static_cast<unsigned char>(b));
            })) {
          next = entry.path();
          break;
        }
      }
    }
    found = next;
  }
  host = found.string();
  if (!rest.empty() && (rest.back() == '\\') && host.back() != '/') host += '/';
  return true;
}

PortableDrives::PortableDrives() {
  if (gCurrent != nullptr) gEarlier.push_back(gCurrent);
  gCurrent = this;
}

PortableDrives::~PortableDrives() {
  if (gCurrent == this) {
    gCurrent = gEarlier.empty() ? nullptr : gEarlier.back();
    if (!gEarlier.empty()) gEarlier.pop_back();
  } else {
    gEarlier.erase(std::remove(gEarlier.begin(), gEarlier.end(), this), gEarlier.end());
  }
}

void PortableDrives::Mount(char letter, const std::string& root, const std::string& volumeName,
                           std::int32_t driveType, const std::string& shareName) {
  Drive drive;
  drive.root = root;
  drive.facts.DriveType = driveType;
  drive.facts.IsReady = true;
  drive.facts.VolumeName = volumeName;
  drive.facts.ShareName = shareName;
  drives_[static_cast<char>(std::toupper(static_cast<unsigned char>(letter)))] = drive;
}

void PortableDrives::Eject(char letter) {
  const auto found = drives_.find(static_cast<char>(std::toupper(static_cast<unsigned char>(letter))));
  if (found == drives_.end()) return;
  found->second.facts.IsReady = false;
  found->second.facts.VolumeName.clear();
}

void PortableDrives::Unmount(char letter) {
  drives_.erase(static_cast<char>(std::toupper(static_cast<unsigned char>(letter))));
}

void PortableDrives::DenyListing(const std::string& folder) { denied_.insert(Normal(folder)); }

const std::string* PortableDrives::RootOf(char letter) const {
  const auto found = drives_.find(static_cast<char>(std::toupper(static_cast<unsigned char>(letter))));
  return found == drives_.end() ? nullptr : &found->second.root;
}

bool PortableDrives::DriveExists(const std::string& drive) {
  return drives_.count(LetterOf(drive)) != 0;
}

bool PortableDrives::GetDrive(const std::string& drive, DriveFacts& facts) {
  const auto found = drives_.find(LetterOf(drive));
  if (found == drives_.end()) return false;
  facts = found->second.facts;
  return true;
}

bool PortableDrives::SubFolders(const std::string& folder, std::vector<std::string>& names) {
  names.clear();
  if (denied_.count(Normal(folder)) != 0) return false;
  // A drive without its medium has nothing to read.
  const auto drive = drives_.find(LetterOf(folder));
  if (drive != drives_.end() && !drive->second.facts.IsReady) return false;
  std::error_code ec;
  std::filesystem::directory_iterator it(HostPath(folder), ec);
  if (ec) return false;
  for (const auto& entry : it) {
    std::error_code kind;
    if (entry.is_directory(kind)) names.push_back(entry.path().filename().string());
  }
  return true;
}

std::uint32_t PortableDrives::GetFileAttributesA(const char* path) {
  if (path == nullptr) return drives::kInvalidAttributes;
  std::error_code ec;
  const std::filesystem::path host(HostPath(path));
  const auto status = std::filesystem::status(host, ec);
  if (ec || !std::filesystem::exists(status)) return drives::kInvalidAttributes;
  const bool folder = std::filesystem::is_directory(status);
  const auto kept = attributes_.find(Normal(path));
  std::uint32_t attributes = kept != attributes_.end() ? kept->second
                                                        : (folder ? 0 : drives::kArchive);
  if (folder) return attributes | drives::kDirectory;
  return attributes == 0 ? drives::kNormal : attributes;
}

std::int32_t PortableDrives::SetFileAttributesA(const char* path, std::uint32_t attributes) {
  if (path == nullptr) return 0;
  std::error_code ec;
  if (!std::filesystem::exists(std::filesystem::path(HostPath(path)), ec) || ec) return 0;
  attributes_[Normal(path)] = attributes & ~(drives::kDirectory | drives::kNormal);
  return 1;
}

}  // namespace quorvane::platform::portable
