#include "wallpaper/MWallpaper.h"

#include <memory>
#include <vector>

#include "base/Failure.h"
#include "base/Int16.h"
#include "core/MainModule.h"
#include "base/Text.h"
#include "platform/CollectionPacker.h"
#include "platform/EventLoop.h"
#include "platform/FileSystem.h"
#include "platform/Icons.h"
#include "platform/Service.h"
#include "stores/AdvRegistryAccess.h"
#include "stores/iniReadWrite.h"

namespace quorvane {

Boolean gWallpaperEnable = kFalse;
std::int16_t gWallpaperInterval = 0;
std::int16_t gWallpaperOrder = 0;
std::int16_t gWallpaperPosition = 0;

namespace {

platform::FileSystem& Files() { return platform::Use<platform::FileSystem>(); }

}  // namespace

std::string FileNameOf(const std::string& path) {
  const std::size_t slash = path.rfind('\\');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string FileExtensionOf(const std::string& name) {
  const std::size_t point = name.rfind('.');
  if (point == std::string::npos) return "(NONE)";
  std::string extension = name.substr(point + 1);
  for (char& c : extension) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return extension;
}

Boolean PathExists(const std::string& path) {
  platform::ShFileInfo info;
  return ToBoolean(platform::Use<platform::Icons>().SHGetFileInfoA(
                       path.c_str(), 0, info, platform::icons::kShFileInfoSize,
                       platform::icons::kShgfiDisplayName) != 0);
}

void DeleteFolderIfPresent(const std::string& path) {
  if (Files().FolderExists(path)) Files().RemoveFolderTree(path);
}

void MoveFileOver(const std::string& source, const std::string& target) {
  if (!Files().FileExists(source)) return;
  if (Files().FileExists(target)) Files().RemoveFile(target);
  Files().RenameFile(source, target);
}

void ListCollections(ui::TreeView& tree) {
  std::vector<std::string> names;
  if (!Files().ListFiles(core::gDataFolder, names)) return;
  for (const std::string& file : names) {
    const std::string name = FileNameOf(file);
    if (FileExtensionOf(name) != "RXS") continue;
    tree.Add(name.substr(0, name.size() - 4), 1, 1);
  }
}

void RebuildFilesIni(ui::TreeView& tree) {
  const std::string index = core::gDataFolder + "Files.ini";
  if (PathExists(index) != kFalse) Files().RemoveFile(index);
  Files().WriteAll(index, std::string());

  auto packer = platform::Use<platform::CollectionPackers>().Create();
  std::int16_t counter = 1;
  for (std::int32_t node = 1; node <= tree.Count(); ++node) {
    if (!tree.Item(node).Checked) continue;
    const std::string name = tree.Item(node).Text;
    const std::string folder = core::gDataFolder + name;
    if (PathExists(folder) == kFalse) {
      packer->UnpackFiles(core::gDataFolder + name + ".RXS", folder, "");
    }
    std::vector<std::string> files;
    if (!Files().ListFiles(folder, files)) {
      Raise(FailureNumber::PathNotFound, "Path not found: " + folder);
    }
    for (const std::string& file : files) {
      if (file != "Thumbs.db") {
        WriteIniValue("Files", std::to_string(counter), name + "\\" + file, index);
        counter = CheckedInt16(counter + 1);
      }
      platform::Use<platform::EventLoop>().DoEvents();
    }
  }
  packer->Release();
  WriteIniValue("Count", "Total", std::to_string(counter - 1), index);
}

void LoadWallpaperSettings(const std::string& key) {
  AdvRegistryAccess reg;
  gWallpaperEnable = ToBoolean(reg.ReadDWORD(key, "Enable", 1) != 0);
  gWallpaperInterval = CheckedInt16(reg.ReadDWORD(key, "TimeInterval", 5));
  gWallpaperOrder = CheckedInt16(reg.ReadDWORD(key, "ChangeOrder", 1));
  gWallpaperPosition = CheckedInt16(reg.ReadDWORD(key, "Position", 1));
}

}  // namespace quorvane
