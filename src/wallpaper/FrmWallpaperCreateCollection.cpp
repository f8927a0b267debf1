// FrmWallpaperCreateCollection: adding and removing files, the preview, validation, and the
// packing on OK.
#include "wallpaper/FrmWallpaperCreateCollection.h"

#include <cctype>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "base/Text.h"
#include "base/Types.h"
#include "core/MainModule.h"
#include "core/Regimes.h"
#include "platform/Application.h"
#include "platform/CollectionPacker.h"
#include "platform/EventLoop.h"
#include "platform/FileDialogs.h"
#include "platform/FileSystem.h"
#include "platform/FileTypes.h"
#include "platform/MessageBoxes.h"
#include "platform/Pictures.h"
#include "platform/Service.h"
#include "platform/WindowActions.h"
#include "wallpaper/MWallpaper.h"
#include "wallpaper/Thumbnails.h"

namespace quorvane {

namespace {

void DoEvents() { platform::Use<platform::EventLoop>().DoEvents(); }

constexpr char kModify[] = "Modify";
constexpr char kPickerFilter[] = "All image files (*.bmp,*.jpg,*.pcx)|*.bmp;*.jpg;*.pcx";
constexpr std::int32_t kPickerBuffer = 32767;
// The explorer-style dialog, an existing folder, several files at once, no read-only box.
constexpr std::uint32_t kPickerFlags = platform::ofn::kExplorer | platform::ofn::kPathMustExist |
                                       platform::ofn::kAllowMultiSelect |
                                       platform::ofn::kHideReadOnly;
// The flag word of the type-name query: the shell icon size, the display name, the type name,
// the executable type and the system image list's index, from the attributes given alone.
constexpr std::uint32_t kTypeNameFlags = 0x6614;
constexpr std::int32_t kHidden = 0;  // the shell's show state for the viewer it opens

// Whether the name holds ".ico" or ".cur" anywhere, in any case: such a file is loaded at the
// large shell icon size.
bool LoadsAsIcon(const std::string& name) {
  const std::string lower = text::LowerCase(name);
  return lower.find(".ico") != std::string::npos || lower.find(".cur") != std::string::npos;
}

}  // namespace

std::string FileTypeName(const std::string& extension) {
  std::string typeName;
  platform::Use<platform::FileTypes>().SHGetFileInfoA(
      extension, platform::filetypes::kNormalAttributes, kTypeNameFlags, typeName);
  return text::Trim(typeName);
}

std::string FileSizeText(std::int64_t bytes) {
  // Hundredths of a kilobyte, the half rounded away from zero.
  const bool negative = bytes < 0;
  const std::int64_t magnitude = negative ? -bytes : bytes;
  const std::int64_t hundredths = (magnitude * 100 + 512) / 1024;
  const std::int64_t whole = hundredths / 100;
  const std::int64_t part = hundredths % 100;
  std::string shown = negative && hundredths != 0 ? "-" : "";
  // "#" shows no digit for a whole part of 0.
  if (whole != 0) shown += std::to_string(whole);
  shown += '.';
  shown += static_cast<char>('0' + part / 10);
  shown += static_cast<char>('0' + part % 10);
  return shown + " KB";
}

void CommonDialog::ShowOpen(std::uint32_t owner) {
  platform::OpenFileRequest request;
  request.owner = owner;
  request.fileName = FileName;
  request.filter = Filter;
  request.filterIndex = FilterIndex;
  request.initialFolder = InitDir;
  request.maxFileSize = MaxFileSize;
  request.flags = Flags;
  FileName = platform::Use<platform::FileDialogs>().GetOpenFileNameA(request);
}

FrmWallpaperCreateCollection::FrmWallpaperCreateCollection() : ui::Form("FrmWallpaperCreateCollection") {
  LvFileList.ColumnHeaders = {{"Selected File Name", 2880}, {"File Extension", 1560},
                              {"File Size", 1200}};
  optThumb[0].Container = &picSlide;
  ui::ApplyLayout(*this, kFrmWallpaperCreateCollectionLayout);
  picSlide.BackColor = 0xFFFFFF;
  optThumb[0].BackColor(0xFFFFFF);
  optThumb[0].ToolTipText = kPreviewTip;
  picLoad.AutoRedraw(true);
  picThumb.AutoRedraw(true);

  CmdAddFile.Click = [this] { CmdAddFile_Click(); };
  CmdRemoveFile.Click = [this] { CmdRemoveFile_Click(); };
  CmdOK.Click = [this] { CmdOK_Click(); };
  CmdCancel.Click = [this] { CmdCancel_Click(); };
  LvFileList.ItemClick = [this] { LvFileList_ItemClick(); };
  LvFileList.KeyUp = [this] { LvFileList_KeyUp(); };
  optThumb.OnConnect([this](ui::GraphicalOptionButton& element, std::int16_t index) {
    element.Click = [this, index] { optThumb_Click(index); };
    element.DblClick = [this, index] { optThumb_DblClick(index); };
  });
}

// --- adding and removing ------------------------------------------------------------------------

void FrmWallpaperCreateCollection::CmdAddFile_Click() {
  CommonDialog1.FileName = "";
  CommonDialog1.Filter = kPickerFilter;
  CommonDialog1.FilterIndex = 1;
  CommonDialog1.InitDir = "";
  CommonDialog1.MaxFileSize = kPickerBuffer;
  CommonDialog1.Flags = kPickerFlags;
  CommonDialog1.ShowOpen(hWnd);

  const std::vector<std::string> pieces = text::Split(CommonDialog1.FileName, std::string(1, '\0'));
  if (pieces.size() > 1) {
    // The folder first, then each name chosen in it. A drive's root already ends in its
    // backslash, and gets a second one here.
    for (std::size_t i = 1; i < pieces.size(); ++i) AddListedFile(pieces[0] + "\\" + pieces[i]);
  } else if (pieces.size() == 1) {
    AddListedFile(pieces[0]);
  }
}

void FrmWallpaperCreateCollection::AddListedFile(const std::string& path) {
  if (LvFileList.FindItem(path) != 0) return;
  const std::int32_t item = LvFileList.Add(path);
  LvFileList.SubItem(item, 1, FileTypeName("." + FileExtensionOf(path)));
  const std::int64_t length = platform::Use<platform::FileTypes>().FileLen(path);
  if (length < 0) Raise(FailureNumber::FileNotFound, "File not found: " + path);
  LvFileList.SubItem(item, 2, FileSizeText(length));
  LvFileList.Select(item);
}

void FrmWallpaperCreateCollection::CmdRemoveFile_Click() {
  auto& boxes = platform::Use<platform::MessageBoxes>();
  bool anySelected = false;
  std::int32_t answer = platform::msgbox::kYes;
  core::ResumeEach([&] {
    for (std::int32_t i = 1; i <= LvFileList.Count(); ++i) {
      if (LvFileList.Item(i).Selected) anySelected = true;
    }
  });
  if (!anySelected) {
    core::ResumeEach([&] {
      boxes.MsgBox("Select an item from the list first!", platform::msgbox::kExclamation);
    });
    return;
  }
  core::ResumeEach([&] {
    answer = boxes.MsgBox("Are you sure?",
                          platform::msgbox::kYesNo | platform::msgbox::kQuestion, "Confirm");
  });
  if (answer == platform::msgbox::kNo) return;
  // From the last to the first, so that each removal leaves the positions still to visit.
  for (std::int32_t i = LvFileList.Count(); i >= 1; --i) {
    core::ResumeEach([&] {
      if (LvFileList.Item(i).Selected) LvFileList.Remove(i);
    });
  }
  core::ResumeEach([&] { RefreshEditorList(); });
}

// --- the preview --------------------------------------------------------------------------------

void FrmWallpaperCreateCollection::RefreshEditorList() {
  if (LvFileList.Count() == 0) {
    core::ResumeEach([&] { optThumb[0].Caption(""); },
                     [&] { optThumb[0].Tag(""); },
                     [&] { optThumb[0].Value(false); },
                     [&] { optThumb[0].Picture(ui::Pixels{}); });
    return;
  }
  core::ResumeEach([&] {
    // With no item selected there is no text to show: the preview stays as it was.
    if (LvFileList.SelectedItem() == 0) RaiseObjectVariableNotSet();
    UpdatePreview(LvFileList.Item(LvFileList.SelectedItem()).Text);
  });
}

void FrmWallpaperCreateCollection::LvFileList_ItemClick() { RefreshEditorList(); }

void FrmWallpaperCreateCollection::LvFileList_KeyUp() { RefreshEditorList(); }

void FrmWallpaperCreateCollection::UpdatePreview(const std::string& path) {
  auto& application = platform::Use<platform::Application>();
  application.SetMousePointer(platform::kHourglassPointer);
  MousePointer = ui::kHourglassPointer;
  // The sheet is hidden while it changes; it has the preview's type, as the captions are
  // measured in it.
  picSlide.Visible(false);
  while (optThumb.size() > 1) optThumb.UnloadLast();
  DoEvents();
  picLoad.Picture(ui::Pixels{});
  picLoad.Width(0);
  picLoad.Height(0);
  picLoad.Cls();

  ui::Pixels picture = picLoad.TakePicture();
  auto& pictures = platform::Use<platform::Pictures>();
  if (LoadsAsIcon(path)) {
    pictures.LoadPictureSizedInto(path, platform::kLargeShellSize, platform::kDefaultDepth,
                                  picture);
  } else {
    pictures.LoadPictureInto(path, picture);
  }
  // The box sizes itself to its picture.
  picLoad.Width(picture.width * ui::kTwipsPerPixel);
  picLoad.Height(picture.height * ui::kTwipsPerPixel);
  picLoad.Picture(std::move(picture));

  DrawThumbnail(picLoad, picThumb);
  optThumb[0].Tag(path);
  optThumb[0].Picture(picThumb.Image());
  // The whole name: the preview has the width for it.
  optThumb[0].Caption(FileNameOf(path));
  optThumb[0].Visible(true);

  picLoad.Picture(ui::Pixels{});
  picThumb.Picture(ui::Pixels{});
  picThumb.Cls();
  optThumb[0].Value(true);
  picSlide.Visible(true);
  MousePointer = ui::kDefaultPointer;
  application.SetMousePointer(platform::kDefaultPointer);
}

void FrmWallpaperCreateCollection::optThumb_Click(std::int16_t Index) {
  optThumb[static_cast<std::size_t>(Index)].Value(false);
}

void FrmWallpaperCreateCollection::optThumb_DblClick(std::int16_t Index) {
  const std::string tag = optThumb[static_cast<std::size_t>(Index)].Tag();
  if (tag.empty()) return;
  // The listed file itself, in the shell's viewer, with the show state 0.
  platform::Use<platform::WindowActions>().ShellExecuteA(hWnd, "Open", tag, "0", "0", kHidden);
}

// --- validation and packing ---------------------------------------------------------------------

bool FrmWallpaperCreateCollection::ValidateCollection() {
  auto& boxes = platform::Use<platform::MessageBoxes>();
  if (TxtCollectionName.Text().empty()) {
    boxes.MsgBox("Please enter collection name", platform::msgbox::kInformation);
    TxtCollectionName.SetFocus();
    return false;
  }
  if (LvFileList.Count() == 0) {
    boxes.MsgBox("Please add at least one image file to continue!",
                 platform::msgbox::kExclamation);
    CmdAddFile.SetFocus();
    return false;
  }
  // The test is on the unpacked folder, not on the archive: a collection that is not unpacked
  // now is no duplicate, and its archive takes the new files on top of its own.
  if (PathExists(core::gDataFolder + TxtCollectionName.Text()) == kFalse) return true;
  // The modify flow unpacked the folder itself.
  if (Tag == kModify) return true;
  boxes.MsgBox("Collection with the same name already exists!", platform::msgbox::kExclamation);
  TxtCollectionName.SetFocus();
  return false;
}

// No failure handling of its own: a failure goes to the top-level report, the dialog stays.
void FrmWallpaperCreateCollection::CmdOK_Click() {
  if (!ValidateCollection()) return;
  const std::string name = TxtCollectionName.Text();
  const std::string archive = core::gDataFolder + name + ".RXS";
  if (Tag == kModify) {
    // Only now that the name is good: the listed files of a collection being changed lie in
    // its unpacked folder, which stays until the new archive is packed.
    if (!platform::Use<platform::FileSystem>().RemoveFile(archive)) {
      Raise(FailureNumber::FileNotFound, "File not found: " + archive);
    }
    Tag.clear();
  }
  {
    auto packer = platform::Use<platform::CollectionPackers>().Create();
    for (std::int32_t i = 1; i <= LvFileList.Count(); ++i) {
      packer->PackFile(LvFileList.Item(i).Text, archive, 0, "", true);
    }
    packer->Release();
  }
  DeleteFolderIfPresent(core::gDataFolder + name);
  Unload();
}

void FrmWallpaperCreateCollection::CmdCancel_Click() {
  Unload();
}

}  // namespace quorvane
