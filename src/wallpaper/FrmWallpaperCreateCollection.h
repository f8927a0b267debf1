#pragma once
// FrmWallpaperCreateCollection: the modal dialog that makes a collection, or changes one. The
// user names the collection, puts picture files on the list with Add (the platform's own open
// dialog, several files at a time) and takes them off with Remove; the preview shows the
// selected one. OK packs every listed file into <Name>.RXS in the data folder.
//
// It is one dialog for both jobs: its Tag holds "Modify" when FrmMain opened it on a collection
// it unpacked for the purpose, and nothing when it makes a new one.
//
// Where each control stands is the design's table, FrmWallpaperCreateCollectionLayout.cpp.
#include <cstdint>
#include <string>

#include "platform/FileDialogs.h"
#include "ui/Controls.h"
#include "ui/Form.h"
#include "ui/Layout.h"
#include "ui/ListControls.h"
#include "ui/StripControls.h"

namespace quorvane {

extern const ui::FormLayout kFrmWallpaperCreateCollectionLayout;

// The shell's name for files of `extension` (".jpg"): asked with the normal file attribute and
// the flag word 0x6614, the file itself never opened, its type field with spaces trimmed.
std::string FileTypeName(const std::string& extension);
// A length in bytes as the list shows it: divided by 1024 and formatted "#######.00", then
// " KB". So "1.50 KB" for 1,536 bytes, ".50 KB" for 512 and ".00 KB" for none.
std::string FileSizeText(std::int64_t bytes);

// The file picker of the dialog: the properties of the open dialog, set before each showing,
// and the names it gave back.
struct CommonDialog {
  std::string FileName;
  std::string Filter;
  std::int32_t FilterIndex = 0;
  std::string InitDir;
  std::int32_t MaxFileSize = 260;
  std::uint32_t Flags = 0;
  // Shows the open dialog owned by `owner`; FileName takes what it gave back, empty when
  // cancelled.
  void ShowOpen(std::uint32_t owner);
};

class FrmWallpaperCreateCollection : public ui::Form {
 public:
  FrmWallpaperCreateCollection();

  // "Modify" while the dialog changes a collection that FrmMain unpacked; empty otherwise.
  std::string Tag;

  // --- controls -------------------------------------------------------------------------------
  ui::Label Label1{*this, "Label1"};
  ui::TextBox TxtCollectionName{*this, "TxtCollectionName"};
  ui::Label Label2{*this, "Label2"};
  ui::ListView LvFileList{*this, "LvFileList"};
  ui::CommandButton CmdAddFile{*this, "CmdAddFile"};
  ui::CommandButton CmdRemoveFile{*this, "CmdRemoveFile"};
  ui::CommandButton CmdOK{*this, "CmdOK"};
  ui::CommandButton CmdCancel{*this, "CmdCancel"};
  ui::Label Label3{*this, "Label3"};
  // The preview: a white sheet holding one graphical option button, and the two hidden boxes
  // a picture is decoded and reduced in.
  ui::PictureBox picSlide{*this, "picSlide"};
  ui::LoadedOptionArray<ui::GraphicalOptionButton> optThumb{*this, "optThumb"};
  ui::PictureBox picLoad{*this, "picLoad"};
  ui::PictureBox picThumb{*this, "picThumb"};
  CommonDialog CommonDialog1;

  // The preview's tool tip (optThumb(0)'s ToolTipText).
  static constexpr const char* kPreviewTip = "Double click to Browse";

  // --- routines -------------------------------------------------------------------------------
  // Puts the files chosen in the open dialog on the list, each once.
  void CmdAddFile_Click();
  // Takes the selected items off the list, after asking; each statement's failure is passed over.
  void CmdRemoveFile_Click();
  // Validates, packs every listed file into the collection's archive and closes the dialog.
  void CmdOK_Click();
  void CmdCancel_Click();
  // The preview in line with the list; each statement's failure is passed over.
  void RefreshEditorList();
  void LvFileList_ItemClick();
  void LvFileList_KeyUp();
  // The preview never stands checked.
  void optThumb_Click(std::int16_t Index);
  // Opens the listed file itself in the shell.
  void optThumb_DblClick(std::int16_t Index);
  // Whether the name and the list can be packed: each refusal says why and moves the focus.
  bool ValidateCollection();

  // Puts one file on the list with its type name and size, and selects it, unless an item of
  // that text is there already.
  void AddListedFile(const std::string& path);
  // The preview shows the one picture at `path`. Has no failure handling of its own: a picture
  // that can't be loaded ends it at once, with the sheet still hidden.
  void UpdatePreview(const std::string& path);
};

}  // namespace quorvane
