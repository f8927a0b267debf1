// FrmMain: the wallpaper page's commands that make and change collections, through the
// collection editor.
#include <string>
#include <vector>

#include "base/Failure.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "platform/CollectionPacker.h"
#include "platform/FileSystem.h"
#include "platform/FileTypes.h"
#include "platform/Forms.h"
#include "platform/MessageBoxes.h"
#include "platform/Service.h"
#include "wallpaper/FrmWallpaperCreateCollection.h"
#include "wallpaper/MWallpaper.h"

namespace quorvane {

void FrmMain::CreateCollection() {
  FrmWallpaperCreateCollection editor;
  platform::Use<platform::Forms>().Show(editor, true, hWnd);
  TvCollections.Clear();
  RefreshCollections();
  TvCollections.SetFocus();
}

// No failure handling of its own: a failure goes to the window's top-level report.
void FrmMain::ModifyCollection() {
  if (TvCollections.SelectedItem() == 0) {
    platform::Use<platform::MessageBoxes>().MsgBox("Select a collection first!");
    return;
  }
  const std::string name = TvCollections.Item(TvCollections.SelectedItem()).Text;
  const std::string folder = core::gDataFolder + name;
  FrmWallpaperCreateCollection editor;
  editor.TxtCollectionName.Text(name);
  {
    auto packer = platform::Use<platform::CollectionPackers>().Create();
    packer->UnpackFiles(folder + ".RXS", folder, "");
    packer->Release();
  }
  std::vector<std::string> files;
  if (!platform::Use<platform::FileSystem>().ListFiles(folder, files)) {
    Raise(FailureNumber::PathNotFound, "Path not found: " + folder);
  }
  auto& types = platform::Use<platform::FileTypes>();
  for (const std::string& file : files) {
    if (file == "Thumbs.db") continue;
    const std::string path = folder + "\\" + file;
    const std::int32_t item = editor.LvFileList.Add(path);
    editor.LvFileList.SubItem(item, 1, FileTypeName("." + FileExtensionOf(path)));
    const std::int64_t length = types.FileLen(path);
    if (length < 0) Raise(FailureNumber::FileNotFound, "File not found: " + path);
    editor.LvFileList.SubItem(item, 2, FileSizeText(length));
  }
  editor.Tag = "Modify";
  platform::Use<platform::Forms>().Show(editor, true, hWnd);
  // The strip afresh, and the unpacked folder gone: after a Cancel too.
  if (TvCollections.Click) TvCollections.Click();
}

}  // namespace quorvane
