// FrmMain: the wallpaper page's slide show command.
#include <string>

#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "platform/CollectionPacker.h"
#include "platform/Forms.h"
#include "platform/MessageBoxes.h"
#include "platform/Service.h"
#include "wallpaper/FrmSlideShow.h"
#include "wallpaper/MWallpaper.h"

namespace quorvane {

// The selected collection is unpacked into its folder for the show, which lists it, and the
// folder goes again once the show is closed. Nothing here is caught: a collection that can't be
// unpacked ends at the top-level report, before the show.
void FrmMain::CmdSlideShow_Click() {
  if (TvCollections.SelectedItem() == 0) {
    platform::Use<platform::MessageBoxes>().MsgBox("Select a collection first!");
    return;
  }
  const std::string name = TvCollections.Item(TvCollections.SelectedItem()).Text;
  auto packer = platform::Use<platform::CollectionPackers>().Create();
  packer->UnpackFiles(core::gDataFolder + name + ".RXS", core::gDataFolder + name, "");

  FrmSlideShow show;
  show.Tag = name;
  show.LblCollectionName.Caption(name);
  platform::Use<platform::Forms>().Show(show, true, hWnd);

  DeleteFolderIfPresent(core::gDataFolder + name);
  packer->Release();
  TvCollections.SetFocus();
}

}  // namespace quorvane
