// FrmMain: the folder page. Tree shows the drives and, read only when a node is first opened,
// their folders; a placeholder child ("Dummy") makes a node with sub-folders openable until
// then. No node keeps its path: it is worked out from the node's full path each time. A click
// shows the path's icon as the shell sees it; CmdChange writes a chosen icon into the folder's
// desktop.ini at once (there is no staging on this page), CmdDefault deletes the file.
#include <string>
#include <vector>

#include "base/Failure.h"
#include "base/Int16.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "core/FrmMain.h"
#include "core/Regimes.h"
#include "icons/FolderTree.h"
#include "icons/modextracticon.h"
#include "platform/Drives.h"
#include "platform/FileSystem.h"
#include "platform/Service.h"

namespace quorvane {

namespace {

constexpr const char* kPlaceholder = "Dummy";
constexpr const char* kShellClassInfo = ".ShellClassInfo";
// The picker opens on the stock folder icon for a folder that has none of its own.
constexpr const char* kStockFolderFile = "%SystemRoot%\\System32\\Shell32.dll";
constexpr std::int32_t kStockFolderIcon = 3;

platform::Drives& Drives() { return platform::Use<platform::Drives>(); }

std::int16_t ImageNumber(std::int32_t number) { return CheckedInt16(number); }

}  // namespace

void FrmMain::ConnectFolderPage() {
  Tree.Click = [this] { Tree_Click(); };
  Tree.Expand = [this](std::int32_t node) { Tree_Expand(node); };
  ChangeFolderIcon = [this] { ChangeSelectedFolderIcon(); };
  RestoreFolderIcon = [this] { RestoreSelectedFolderIcon(); };
}

void FrmMain::FillTreeRoot() {
  Tree.Clear();
  Im16.Clear();
  Im16.ImageWidth = 16;
  Im16.ImageHeight = 16;
  Pi1.Width(240);
  Pi1.Height(240);
  Pi1.Picture(Image2.Picture());
  const std::int16_t root = Im16.Add("Start Icon", Pi1.Picture());
  Im16.Add("Start Icon1", Pi1.Picture());
  const std::int32_t node = Tree.Add("My Computer", root, root);
  Tree.Item(node).Expanded = true;
  Tree.NodeChanged(node);
}

void FrmMain::FillDrives() {
  // Drives C to U only, in the order of their letters.
  for (char letter = 'C'; letter <= 'U'; ++letter) {
    const std::string drive = std::string(1, letter) + ":";
    if (DriveExists(drive) == kFalse) continue;
    const std::int16_t image = ImageNumber(GetNodeImage(drive + "\\", kFalse));
    const std::string text = ProperCaseName(DriveName(drive) + " (" + drive + ")");
    const std::int32_t node = Tree.Add(text, image, image, "", 1);
    Tree.Item(node).Sorted = true;
    if (HasSubFolders(drive) != kFalse) Tree.Add(kPlaceholder, 0, 0, "", node);
  }
}

void FrmMain::Tree_Expand(std::int32_t Node) {
  const std::string path = NodeFolderPath(Tree, Node);
  // Only a node that still has its placeholder is read; a node without children is a failure.
  const std::int32_t first = Tree.FirstChild(Node);
  if (first == 0) RaiseObjectVariableNotSet();
  if (Tree.Item(first).Text != kPlaceholder) return;
  Tree.Remove(first);

  // A folder that can't be read fails here, with its placeholder gone for good.
  std::vector<std::string> names;
  if (!Drives().SubFolders(path + "\\", names)) Raise(FailureNumber::PathNotFound, "Path not found");
  for (const std::string& name : names) {
    const std::string full = path + "\\" + name;
    const std::int16_t closed = ImageNumber(GetNodeImage(full, kFalse));
    const std::int16_t open = ImageNumber(GetNodeImage(full, kTrue));
    const std::int32_t child = Tree.Add(ProperCaseName(name), closed, open, "", Node);
    Tree.Item(child).Sorted = true;
    // The recycle folder is listed but never opened.
    if (HasSubFolders(full) != kFalse && text::UpperCase(name) != "RECYCLED") {
      Tree.Add(kPlaceholder, 0, 0, "", child);
    }
  }
}

void FrmMain::Tree_Click() {
  const std::string path = NodeFolderPath(Tree, Tree.SelectedItem());
  std::int16_t small = 16;
  DrawShellIcon(path, PicSmall, small);
  std::int16_t large = 32;
  DrawShellIcon(path, PicLarge, large);
}

void FrmMain::ChangeSelectedFolderIcon() {
  const std::string path = NodeFolderPath(Tree, Tree.SelectedItem());
  // Drives and the root have no folder icon.
  if (path.size() <= 3) return;
  const std::string file = path + "\\desktop.ini";

  std::string chosen;
  std::string iconFile;
  if (ReadIniEntry(kShellClassInfo, "iconfile", file, iconFile) != kFalse) {
    std::string indexText;
    std::int32_t number = kStockFolderIcon;
    if (ReadIniEntry(kShellClassInfo, "IconIndex", file, indexText) != kFalse) {
      number = LenientLong(indexText);
    }
    chosen = PickIcon(iconFile, number);
  } else {
    std::string stock = kStockFolderFile;
    std::int32_t number = kStockFolderIcon;
    chosen = PickIcon(stock, number);
  }
  if (chosen.empty()) return;

  const std::vector<std::string> pieces = text::Split(chosen, ",");
  WriteIniEntry(kShellClassInfo, "iconfile", text::Piece(pieces, 0), file);
  WriteIniEntry(kShellClassInfo, "iconindex", text::Piece(pieces, 1), file);
  // The shell reads a folder's desktop.ini only when the folder has the system attribute; the
  // folder's other attributes go.
  Drives().SetFileAttributesA(path.c_str(), platform::drives::kSystem);

  Tree.SetFocus();
  const std::int32_t node = Tree.SelectedItem();
  GetNodeImage(path, kFalse);
  Tree.Select(node);
  // The number one below the newest image, read afresh each time.
  Tree.Item(node).Image = ImageNumber(Im16.Count() - 1);
  Tree.NodeChanged(node);
  Tree.Item(node).SelectedImage = ImageNumber(Im16.Count() - 1);
  Tree.NodeChanged(node);
  Tree.SetFocus();
  Tree_Click();
}

void FrmMain::RestoreSelectedFolderIcon() {
  // Every failure here is passed over, statement by statement.
  std::string path;
  std::int32_t node = 0;
  core::ResumeEach(
      [&] { path = NodeFolderPath(Tree, Tree.SelectedItem()); },
      [&] {
        if (!platform::Use<platform::FileSystem>().RemoveFile(path + "\\desktop.ini")) {
          Raise(FailureNumber::FileNotFound, "File not found");
        }
      },
      [&] { Drives().SetFileAttributesA(path.c_str(), platform::drives::kArchive); },
      [&] { node = Tree.SelectedItem(); }, [&] { Tree.Select(node); },
      // The tree is built anew from its root.
      [&] { FillTreeRoot(); }, [&] { FillDrives(); }, [&] { Tree.SetFocus(); });
}

}  // namespace quorvane
