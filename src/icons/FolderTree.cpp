#include "icons/FolderTree.h"

#include <string_view>
#include <vector>

#include "base/Failure.h"
#include "base/Text.h"
#include "core/Regimes.h"
#include "platform/Drives.h"
#include "platform/Service.h"

namespace quorvane {

namespace {

platform::Drives& Drives() { return platform::Use<platform::Drives>(); }

// The characters after which ProperCaseName starts a word.
constexpr std::string_view kWordSeparators = " -_,.()[]\\/=+";

}  // namespace

std::string ProperCaseName(const std::string& Name) {
  std::string s = text::UpperCase(text::Left(Name, 1)) + text::LowerCase(text::Mid(Name, 2));
  // The length is taken once; a separator at the very end has nothing behind it.
  const std::size_t length = s.size();
  for (std::size_t i = 0; i < length; ++i) {
    if (kWordSeparators.find(s[i]) == std::string_view::npos) continue;
    if (i + 1 < s.size()) s[i + 1] = text::UpperChar(s[i + 1]);
  }
  return s;
}

Boolean DriveExists(const std::string& Drive) { return Drives().DriveExists(Drive) ? kTrue : kFalse; }

std::string DriveName(const std::string& Drive) {
  std::string name;
  core::AsResult([&] {
    platform::DriveFacts drive;
    if (!Drives().GetDrive(Drive, drive)) Raise(FailureNumber::DeviceIOError, "Device unavailable");
    // The kind of drive is a number and this compares it with a text: never equal.
    if (std::to_string(drive.DriveType) == "Remote") {
      name = drive.ShareName;
    } else if (drive.IsReady) {
      name = drive.VolumeName;
    }
  });
  return name;
}

Boolean HasSubFolders(std::string Path) {
  return core::AsResult(
      [&] {
        if (Path.size() < 3) Path += "\\";
        std::vector<std::string> names;
        if (!Drives().SubFolders(Path, names)) {
          Raise(FailureNumber::PathNotFound, "Path not found");
        }
        return names.size() > 0 ? kTrue : kFalse;
      },
      kFalse);
}

std::string NodeFolderPath(const ui::TreeView& tree, std::int32_t Node) {
  return core::AsResult(
      [&] {
        const std::string full = tree.FullPath(Node);
        // From one character before the first colon: the drive letter.
        std::string path = text::Mid(full, text::InStr(1, full, ":") - 1);
        if (text::Mid(path, 3, 1) == ")") path = text::Left(path, 2) + text::Mid(path, 4);
        return path;
      },
      std::string());
}

}  // namespace quorvane
