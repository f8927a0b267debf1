// The collection editor over the portable services: the list's sizes and type names, adding
// files through the open dialog (several, one, none, twice, from a drive's root), removing them,
// the preview, validation in its order, the packing on OK, and FrmMain's create and modify
// commands around the dialog. The report list and the text box of the control model are tested
// here too.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "core/Regimes.h"
#include "platform/FileTypes.h"
#include "platform/MemorySurface.h"
#include "platform/Pictures.h"
#include "platform/Service.h"
#include "ui/ListControls.h"
#include "wallpaper/FrmWallpaperCreateCollection.h"
#include "wallpaper/MWallpaper.h"

#include "PortableServices.h"
#include "ScratchFiles.h"

namespace quorvane {
namespace {

namespace fs = std::filesystem;
using testing::Host;
using testing::WriteFile;

// Pictures from their content: "PIC <w> <h>" decodes to a grey picture of that size; anything
// else is no picture.
class TestPictures final : public platform::Pictures {
 public:
  ui::Pixels LoadPicture(const std::string& path) override { return Decode(path); }
  void LoadPictureSizedInto(const std::string& path, std::int32_t size, std::int32_t /*depth*/,
                            ui::Pixels& picture) override {
    sized.push_back(path + " " + std::to_string(size));
    picture = Decode(path);
  }
  void SavePicture(const ui::Pixels& /*picture*/, const std::string& /*path*/) override {}
  std::vector<std::string> sized;

 private:
  static ui::Pixels Decode(const std::string& path) {
    std::string content;
    if (!platform::Use<platform::FileSystem>().ReadAll(path, content)) {
      throw Failure(FailureNumber::FileNotFound, "File not found");
    }
    int width = 0, height = 0;
    if (std::sscanf(content.c_str(), "PIC %d %d", &width, &height) != 2) {
      throw Failure(FailureNumber::InvalidPicture, "Invalid picture");
    }
    return ui::Pixels{width, height,
                      std::vector<std::uint32_t>(static_cast<std::size_t>(width * height),
                                                 0xFF808080u)};
  }
};

// A shell that pads its type names and knows the lengths of paths that are not on this disk.
class PaddedTypes final : public platform::FileTypes {
 public:
  std::uintptr_t SHGetFileInfoA(const std::string& name, std::uint32_t attributes,
                                std::uint32_t flags, std::string& typeName) override {
    asked.push_back(name + " " + std::to_string(attributes) + " " + std::to_string(flags));
    typeName = "  Padded " + name + "  ";
    return 1;
  }
  std::int64_t FileLen(const std::string& path) override {
    const auto found = lengths.find(path);
    return found == lengths.end() ? -1 : found->second;
  }
  std::vector<std::string> asked;
  std::map<std::string, std::int64_t> lengths;
};

class CollectionEditorTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(scratch_ / "data");
    fs::create_directories(scratch_ / "pictures");
    core::gDataFolder = (scratch_ / "data").string() + "\\";
  }

  // A dialog ready to be clicked, its preview drawing in memory.
  void Prepare(FrmWallpaperCreateCollection& form) {
    for (ui::PictureBox* box : {&form.picThumb, &form.picLoad, &form.picSlide}) {
      box->UseSurface(std::make_shared<platform::MemorySurface>());
    }
  }
  // A file among the pictures, with that content; its path as the system writes it.
  std::string Picture(const std::string& name, const std::string& content = "PIC 200 100") {
    const std::string path = Folder() + "\\" + name;
    WriteFile(path, content);
    return path;
  }
  std::string Folder() const { return (scratch_ / "pictures").string(); }
  std::vector<std::string> Texts(const ui::ListView& list) {
    std::vector<std::string> texts;
    for (std::int32_t i = 1; i <= list.Count(); ++i) texts.push_back(list.Item(i).Text);
    return texts;
  }
  // The entries of an archive, unpacked into a folder of their own, sorted.
  std::vector<std::string> Entries(const std::string& name) {
    const fs::path into = scratch_ / ("entries-" + name);
    fs::remove_all(into);
    auto packer = services_.packers.Create();
    packer->UnpackFiles(core::gDataFolder + name + ".RXS", into.string(), "");
    packer->Release();
    std::vector<std::string> names;
    if (fs::exists(into)) {
      for (const auto& entry : fs::directory_iterator(into)) {
        names.push_back(entry.path().filename().string());
      }
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  std::vector<std::string> Prompts() {
    std::vector<std::string> prompts;
    for (const auto& box : services_.boxes.Boxes()) prompts.push_back(box.prompt);
    return prompts;
  }

  testing::ScratchFolder scratch_{"editor"};
  testing::PortableServices services_;
  platform::portable::PortableFileDialogs& dialogs_ = services_.adapters.FileDialogs();
  TestPictures pictures_;
  platform::ScopedService<platform::Pictures> ownPictures_{pictures_};
};

// --- the list's columns -------------------------------------------------------------------------

TEST(FileSizeTextTest, KilobytesWithTwoDecimalsAndNoLeadingZero) {
  EXPECT_EQ(FileSizeText(0), ".00 KB");
  EXPECT_EQ(FileSizeText(512), ".50 KB");
  EXPECT_EQ(FileSizeText(1023), "1.00 KB");
  EXPECT_EQ(FileSizeText(1024), "1.00 KB");
  EXPECT_EQ(FileSizeText(1536), "1.50 KB");
  EXPECT_EQ(FileSizeText(10 * 1024 * 1024), "10240.00 KB");
  // An eighth of a kilobyte is .125: the half goes up.
  EXPECT_EQ(FileSizeText(128), ".13 KB");
  EXPECT_EQ(FileSizeText(5), ".00 KB");
  EXPECT_EQ(FileSizeText(6), ".01 KB");
  // More than the seven places of the format still shows every digit.
  EXPECT_EQ(FileSizeText(std::int64_t{20000000} * 1024), "20000000.00 KB");
}

TEST_F(CollectionEditorTest, FileTypeNameIsTheShellsNameOfTheKindNotTheExtension) {
  EXPECT_EQ(FileTypeName(".jpg"), "JPEG Image");
  EXPECT_EQ(FileTypeName(".JPG"), "JPEG Image");
  EXPECT_EQ(FileTypeName(".bmp"), "Bitmap Image");
  EXPECT_EQ(FileTypeName(".txt"), "Text Document");
  EXPECT_EQ(FileTypeName(".pcx"), "PCX File");
  EXPECT_EQ(FileTypeName(".(NONE)"), "(NONE) File");
  EXPECT_EQ(services_.adapters.FileTypes().Queries().back(), ".(NONE)");
}

TEST_F(CollectionEditorTest, FileTypeNameAsksWithTheNormalAttributeAndTheFlagWordAndTrims) {
  PaddedTypes types;
  platform::ScopedService<platform::FileTypes> own(types);
  EXPECT_EQ(FileTypeName(".jpg"), "Padded .jpg");
  EXPECT_EQ(types.asked, (std::vector<std::string>{".jpg 128 26132"}));
}

// --- adding -------------------------------------------------------------------------------------

TEST_F(CollectionEditorTest, AddAsksThePickerWithItsFilterBufferAndFlags) {
  FrmWallpaperCreateCollection form;
  form.hWnd = 0x77;
  form.CmdAddFile.Click();
  ASSERT_EQ(dialogs_.Requests().size(), 1u);
  const platform::OpenFileRequest& request = dialogs_.Requests()[0];
  EXPECT_EQ(request.owner, 0x77u);
  EXPECT_EQ(request.fileName, "");
  EXPECT_EQ(request.filter, "All image files (*.bmp,*.jpg,*.pcx)|*.bmp;*.jpg;*.pcx");
  EXPECT_EQ(request.filterIndex, 1);
  EXPECT_EQ(request.initialFolder, "");
  EXPECT_EQ(request.maxFileSize, 32767);
  EXPECT_EQ(request.flags, 0x80A04u);
  EXPECT_EQ(request.flags, 526852u);
  // Cancelled: nothing happens.
  EXPECT_EQ(form.LvFileList.Count(), 0);
}

TEST_F(CollectionEditorTest, SeveralFilesComeAsTheFolderAndTheirNamesEachListedAndSelected) {
  Picture("bay.jpg", std::string(1536, 'x'));
  Picture("cliff.bmp", std::string(512, 'x'));
  FrmWallpaperCreateCollection form;
  dialogs_.AnswerMany(Folder(), {"bay.jpg", "cliff.bmp"});
  form.CmdAddFile_Click();
  ASSERT_EQ(form.LvFileList.Count(), 2);
  EXPECT_EQ(Texts(form.LvFileList),
            (std::vector<std::string>{Folder() + "\\bay.jpg", Folder() + "\\cliff.bmp"}));
  EXPECT_EQ(form.LvFileList.SubItem(1, 1), "JPEG Image");
  EXPECT_EQ(form.LvFileList.SubItem(1, 2), "1.50 KB");
  EXPECT_EQ(form.LvFileList.SubItem(2, 1), "Bitmap Image");
  EXPECT_EQ(form.LvFileList.SubItem(2, 2), ".50 KB");
  EXPECT_TRUE(form.LvFileList.Item(1).Selected);
  EXPECT_TRUE(form.LvFileList.Item(2).Selected);
  EXPECT_EQ(form.LvFileList.SelectedItem(), 2);
  // Adding does not touch the preview.
  EXPECT_EQ(form.optThumb[0].Tag(), "");
}

TEST_F(CollectionEditorTest, OneFileIsTheWholePath) {
  const std::string path = Picture("bay.jpg");
  FrmWallpaperCreateCollection form;
  dialogs_.Answer(path);
  form.CmdAddFile_Click();
  EXPECT_EQ(Texts(form.LvFileList), (std::vector<std::string>{path}));
}

TEST_F(CollectionEditorTest, TheSameFileTwiceLeavesOneItemFoundByTheListsOwnSearch) {
  const std::string path = Picture("bay.jpg");
  Picture("cliff.jpg");
  FrmWallpaperCreateCollection form;
  dialogs_.Answer(path);
  dialogs_.AnswerMany(Folder(), {"cliff.jpg", "bay.jpg"});
  form.CmdAddFile_Click();
  form.CmdAddFile_Click();
  EXPECT_EQ(Texts(form.LvFileList),
            (std::vector<std::string>{path, Folder() + "\\cliff.jpg"}));
  // The search knows no letter case, as the platform's list does not.
  std::string upper = path;
  std::transform(upper.begin(), upper.end(), upper.begin(), ::toupper);
  EXPECT_EQ(form.LvFileList.FindItem(upper), 1);
}

TEST_F(CollectionEditorTest, AChoiceInADrivesRootGivesTwoBackslashesBehindTheDrive) {
  PaddedTypes types;
  types.lengths["C:\\\\a.jpg"] = 2048;
  types.lengths["C:\\\\b.jpg"] = 1024;
  platform::ScopedService<platform::FileTypes> own(types);
  FrmWallpaperCreateCollection form;
  dialogs_.AnswerMany("C:\\", {"a.jpg", "b.jpg"});
  form.CmdAddFile_Click();
  EXPECT_EQ(Texts(form.LvFileList), (std::vector<std::string>{"C:\\\\a.jpg", "C:\\\\b.jpg"}));
  EXPECT_EQ(form.LvFileList.SubItem(1, 2), "2.00 KB");
  // The type name is asked of the extension alone.
  EXPECT_EQ(types.asked.front(), ".JPG 128 26132");
}

TEST_F(CollectionEditorTest, AFileThatIsGoneWhenListedIsAFailureForTheTopLevel) {
  FrmWallpaperCreateCollection form;
  dialogs_.Answer(Folder() + "\\gone.jpg");
  EXPECT_THROW(form.CmdAddFile_Click(), Failure);
}

// --- removing -----------------------------------------------------------------------------------

TEST_F(CollectionEditorTest, RemoveWithNothingSelectedSaysSoAndRemovesNothing) {
  Picture("a.jpg");
  FrmWallpaperCreateCollection form;
  dialogs_.AnswerMany(Folder(), {"a.jpg"});
  form.CmdAddFile_Click();
  form.LvFileList.Select(1, false);
  form.CmdRemoveFile.Click();
  ASSERT_EQ(services_.boxes.Boxes().size(), 1u);
  EXPECT_EQ(services_.boxes.Boxes()[0].prompt, "Select an item from the list first!");
  EXPECT_EQ(services_.boxes.Boxes()[0].buttons, 48);
  EXPECT_EQ(form.LvFileList.Count(), 1);
}

TEST_F(CollectionEditorTest, RemoveAsksAndOnNoKeepsEverything) {
  Picture("a.jpg");
  FrmWallpaperCreateCollection form;
  dialogs_.AnswerMany(Folder(), {"a.jpg"});
  form.CmdAddFile_Click();
  services_.boxes.Answer(platform::msgbox::kNo);
  form.CmdRemoveFile_Click();
  ASSERT_EQ(services_.boxes.Boxes().size(), 1u);
  EXPECT_EQ(services_.boxes.Boxes()[0].prompt, "Are you sure?");
  EXPECT_EQ(services_.boxes.Boxes()[0].buttons, 4 + 32);
  EXPECT_EQ(services_.boxes.Boxes()[0].title, "Confirm");
  EXPECT_EQ(form.LvFileList.Count(), 1);
}

TEST_F(CollectionEditorTest, RemoveTakesEverySelectedItemFromTheLastToTheFirst) {
  for (const char* name : {"a.jpg", "b.jpg", "c.jpg", "d.jpg"}) Picture(name);
  FrmWallpaperCreateCollection form;
  Prepare(form);
  dialogs_.AnswerMany(Folder(), {"a.jpg", "b.jpg", "c.jpg", "d.jpg"});
  form.CmdAddFile_Click();
  form.LvFileList.Select(1, false);
  form.LvFileList.Select(3, false);
  // b and d selected, d last.
  services_.boxes.Answer(platform::msgbox::kYes);
  form.CmdRemoveFile_Click();
  EXPECT_EQ(Texts(form.LvFileList),
            (std::vector<std::string>{Folder() + "\\a.jpg", Folder() + "\\c.jpg"}));
  // The focus went from d to c, which took no selection: the preview shows c.
  EXPECT_EQ(form.LvFileList.SelectedItem(), 2);
  EXPECT_FALSE(form.LvFileList.Item(2).Selected);
  EXPECT_EQ(form.optThumb[0].Tag(), Folder() + "\\c.jpg");
}

TEST_F(CollectionEditorTest, RemovingAllItemsClearsThePreview) {
  Picture("a.jpg");
  FrmWallpaperCreateCollection form;
  Prepare(form);
  dialogs_.AnswerMany(Folder(), {"a.jpg"});
  form.CmdAddFile_Click();
  form.LvFileList.ItemClick();
  ASSERT_EQ(form.optThumb[0].Tag(), Folder() + "\\a.jpg");
  ASSERT_FALSE(form.optThumb[0].Picture().Empty());
  services_.boxes.Answer(platform::msgbox::kYes);
  form.CmdRemoveFile_Click();
  EXPECT_EQ(form.LvFileList.Count(), 0);
  EXPECT_EQ(form.optThumb[0].Tag(), "");
  EXPECT_EQ(form.optThumb[0].Caption(), "");
  EXPECT_FALSE(form.optThumb[0].Value());
  EXPECT_TRUE(form.optThumb[0].Picture().Empty());
}

// --- the preview --------------------------------------------------------------------------------

TEST_F(CollectionEditorTest, ThePreviewShowsTheSelectedItemWholeNamedAndUnchecked) {
  Picture("a long name of a picture.jpg", "PIC 400 300");
  FrmWallpaperCreateCollection form;
  Prepare(form);
  dialogs_.AnswerMany(Folder(), {"a long name of a picture.jpg"});
  form.CmdAddFile_Click();
  form.LvFileList.KeyUp();
  const auto& preview = form.optThumb[0];
  EXPECT_EQ(preview.Tag(), Folder() + "\\a long name of a picture.jpg");
  EXPECT_EQ(preview.Caption(), "a long name of a picture.jpg") << "not shortened";
  EXPECT_EQ(preview.Picture().width, 64);
  EXPECT_EQ(preview.Picture().height, 64);
  EXPECT_TRUE(preview.Visible());
  // Checked at the end, and its click unchecks it at once.
  EXPECT_FALSE(preview.Value());
  EXPECT_TRUE(form.picSlide.Visible());
  EXPECT_TRUE(form.picLoad.Picture().Empty());
  EXPECT_TRUE(form.picThumb.Picture().Empty());
  const auto& requests = services_.application.Requests();
  ASSERT_GE(requests.size(), 2u);
  EXPECT_EQ(requests[requests.size() - 2], "pointer 11");
  EXPECT_EQ(requests.back(), "pointer 0");
  EXPECT_EQ(form.optThumb.size(), 1u);
}

TEST_F(CollectionEditorTest, AClickOnThePreviewUnchecksIt) {
  FrmWallpaperCreateCollection form;
  form.optThumb[0].Value(true);
  EXPECT_FALSE(form.optThumb[0].Value());
}

TEST_F(CollectionEditorTest, AnIconIsLoadedAtTheLargeShellSize) {
  Picture("star.ico.jpg", "PIC 32 32");
  FrmWallpaperCreateCollection form;
  Prepare(form);
  dialogs_.AnswerMany(Folder(), {"star.ico.jpg"});
  form.CmdAddFile_Click();
  form.RefreshEditorList();
  ASSERT_EQ(pictures_.sized.size(), 1u);
  EXPECT_EQ(pictures_.sized[0], Folder() + "\\star.ico.jpg " + std::to_string(platform::kLargeShellSize));
}

TEST_F(CollectionEditorTest, AnUnreadablePictureLeavesThePreviewHiddenAndStillGoesIntoTheArchive) {
  Picture("good.jpg");
  Picture("broken.jpg", "not a picture");
  FrmWallpaperCreateCollection form;
  Prepare(form);
  dialogs_.AnswerMany(Folder(), {"good.jpg", "broken.jpg"});
  form.CmdAddFile_Click();
  EXPECT_NO_THROW(form.LvFileList.ItemClick());
  EXPECT_FALSE(form.picSlide.Visible());
  EXPECT_EQ(services_.application.Requests().back(), "pointer 11") << "the hourglass stays";
  EXPECT_EQ(form.optThumb[0].Tag(), "");
  // The next selection that loads puts it right.
  form.LvFileList.Select(1);
  form.LvFileList.ItemClick();
  EXPECT_TRUE(form.picSlide.Visible());
  EXPECT_EQ(services_.application.Requests().back(), "pointer 0");

  form.TxtCollectionName.Text("Sea");
  form.CmdOK_Click();
  EXPECT_EQ(Entries("Sea"), (std::vector<std::string>{"broken.jpg", "good.jpg"}));
}

TEST_F(CollectionEditorTest, APcxGoesInUnchecked) {
  Picture("old.pcx", "PCX data the loader can't read");
  FrmWallpaperCreateCollection form;
  Prepare(form);
  dialogs_.AnswerMany(Folder(), {"old.pcx"});
  form.CmdAddFile_Click();
  EXPECT_EQ(form.LvFileList.SubItem(1, 1), "PCX File");
  form.RefreshEditorList();
  EXPECT_FALSE(form.picSlide.Visible());
  form.TxtCollectionName.Text("Old");
  form.CmdOK_Click();
  EXPECT_EQ(Entries("Old"), (std::vector<std::string>{"old.pcx"}));
}

TEST_F(CollectionEditorTest, ADoubleClickOpensTheListedFileItselfWithShowStateZero) {
  Picture("a.jpg");
  FrmWallpaperCreateCollection form;
  Prepare(form);
  form.hWnd = 0x55;
  form.optThumb[0].DblClick();
  EXPECT_TRUE(services_.actions.calls.empty()) << "an empty Tag opens nothing";
  dialogs_.AnswerMany(Folder(), {"a.jpg"});
  form.CmdAddFile_Click();
  form.RefreshEditorList();
  form.optThumb[0].DblClick();
  EXPECT_EQ(services_.actions.calls,
            (std::vector<std::string>{"ShellExecuteA Open " + Folder() + "\\a.jpg 0 0 0"}));
}

// --- validation and OK --------------------------------------------------------------------------

TEST_F(CollectionEditorTest, AnEmptyNameIsToldFirstEvenWithAnEmptyList) {
  FrmWallpaperCreateCollection form;
  form.CmdOK.Click();
  ASSERT_EQ(services_.boxes.Boxes().size(), 1u);
  EXPECT_EQ(services_.boxes.Boxes()[0].prompt, "Please enter collection name");
  EXPECT_EQ(services_.boxes.Boxes()[0].buttons, 64);
  EXPECT_EQ(form.ActiveControl(), &form.TxtCollectionName);
}

TEST_F(CollectionEditorTest, AnEmptyListIsToldAndTheFocusGoesToAdd) {
  FrmWallpaperCreateCollection form;
  form.TxtCollectionName.Text("Sea");
  EXPECT_FALSE(form.ValidateCollection());
  EXPECT_EQ(Prompts(), (std::vector<std::string>{"Please add at least one image file to continue!"}));
  EXPECT_EQ(services_.boxes.Boxes()[0].buttons, 48);
  EXPECT_EQ(form.ActiveControl(), &form.CmdAddFile);
}

TEST_F(CollectionEditorTest, AnUnpackedFolderOfTheNameIsADuplicateUnlessModifying) {
  Picture("a.jpg");
  fs::create_directories(scratch_ / "data" / "Sea");
  FrmWallpaperCreateCollection form;
  dialogs_.AnswerMany(Folder(), {"a.jpg"});
  form.CmdAddFile_Click();
  form.TxtCollectionName.Text("Sea");
  form.CmdOK_Click();
  EXPECT_EQ(Prompts(), (std::vector<std::string>{"Collection with the same name already exists!"}));
  EXPECT_EQ(services_.boxes.Boxes()[0].buttons, 48);
  EXPECT_EQ(form.ActiveControl(), &form.TxtCollectionName);
  EXPECT_FALSE(fs::exists(scratch_ / "data" / "Sea.RXS"));
  form.Tag = "Modify";
  EXPECT_TRUE(form.ValidateCollection());
}

TEST_F(CollectionEditorTest, ANameThatIsOnlyAnArchiveSilentlyMergesIntoIt) {
  services_.PackCollection(scratch_ / "sources", "Sea", {"old.jpg"},
                           [](const std::string&) { return "PIC 10 10"; });
  Picture("new.jpg");
  FrmWallpaperCreateCollection form;
  dialogs_.AnswerMany(Folder(), {"new.jpg"});
  form.CmdAddFile_Click();
  form.TxtCollectionName.Text("Sea");
  form.CmdOK_Click();
  EXPECT_TRUE(services_.boxes.Boxes().empty());
  EXPECT_EQ(Entries("Sea"), (std::vector<std::string>{"new.jpg", "old.jpg"}));
}

TEST_F(CollectionEditorTest, OkPacksEveryItemRemovesTheFolderAndUnloads) {
  Picture("a.jpg");
  Picture("b.bmp");
  FrmWallpaperCreateCollection form;
  services_.forms.Queue<FrmWallpaperCreateCollection>([&](FrmWallpaperCreateCollection& shown) {
    dialogs_.AnswerMany(Folder(), {"a.jpg", "b.bmp"});
    shown.CmdAddFile.Click();
    shown.TxtCollectionName.Text("Town");
    shown.CmdOK.Click();
  });
  platform::Use<platform::Forms>().Show(form, true, 0);
  EXPECT_EQ(services_.forms.Requests().back(), "FrmWallpaperCreateCollection unloaded");
  EXPECT_EQ(Entries("Town"), (std::vector<std::string>{"a.jpg", "b.bmp"}));
  EXPECT_FALSE(fs::exists(scratch_ / "data" / "Town"));
}

TEST_F(CollectionEditorTest, CancelClosesAndDoesNothingElse) {
  Picture("a.jpg");
  FrmWallpaperCreateCollection form;
  services_.forms.Queue<FrmWallpaperCreateCollection>([&](FrmWallpaperCreateCollection& shown) {
    dialogs_.AnswerMany(Folder(), {"a.jpg"});
    shown.CmdAddFile.Click();
    shown.TxtCollectionName.Text("Town");
    shown.CmdCancel.Click();
  });
  platform::Use<platform::Forms>().Show(form, true, 0);
  EXPECT_EQ(services_.forms.Requests().back(), "FrmWallpaperCreateCollection unloaded");
  EXPECT_FALSE(fs::exists(scratch_ / "data" / "Town.RXS"));
}

TEST_F(CollectionEditorTest, TheLayoutHasEveryControlAndCaption) {
  FrmWallpaperCreateCollection form;
  EXPECT_EQ(form.Label1.Caption(), "Collection Name:");
  EXPECT_EQ(form.Label2.Caption(),
            "Select images that you want to add in your collection. Click Add to add files in "
            "the collection and Remove to remove files from the collection.");
  EXPECT_EQ(form.Label3.Caption(), "Preview : Double click to view full screen");
  EXPECT_EQ(form.CmdAddFile.Caption(), "Add");
  EXPECT_EQ(form.CmdRemoveFile.Caption(), "Remove");
  EXPECT_EQ(form.CmdOK.Caption(), "OK");
  EXPECT_EQ(form.CmdCancel.Caption(), "Cancel");
  ASSERT_EQ(form.LvFileList.ColumnHeaders.size(), 3u);
  EXPECT_EQ(form.LvFileList.ColumnHeaders[0].Text, "Selected File Name");
  EXPECT_EQ(form.LvFileList.ColumnHeaders[1].Text, "File Extension");
  EXPECT_EQ(form.LvFileList.ColumnHeaders[2].Text, "File Size");
  EXPECT_EQ(form.optThumb[0].ToolTipText, "Double click to Browse");
  EXPECT_EQ(form.optThumb[0].Container, &form.picSlide);
  EXPECT_FALSE(form.picLoad.Visible());
  EXPECT_FALSE(form.picThumb.Visible());
  EXPECT_EQ(form.Tag, "");
}

// --- FrmMain's commands -------------------------------------------------------------------------

class CollectionCommandsTest : public CollectionEditorTest {
 protected:
  void SetUp() override {
    CollectionEditorTest::SetUp();
    for (ui::PictureBox* box : {&main_.picThumb, &main_.picLoad, &main_.picSlide}) {
      box->UseSurface(std::make_shared<platform::MemorySurface>());
    }
  }
  void Pack(const std::string& name, const std::vector<std::string>& files) {
    services_.PackCollection(scratch_ / "sources", name, files,
                             [](const std::string&) { return "PIC 100 80"; });
  }
  void SelectNode(const std::string& name) {
    for (std::int32_t i = 1; i <= main_.TvCollections.Count(); ++i) {
      if (main_.TvCollections.Item(i).Text == name) main_.TvCollections.Select(i);
    }
  }
  std::vector<std::string> Nodes() {
    std::vector<std::string> nodes;
    for (std::int32_t i = 1; i <= main_.TvCollections.Count(); ++i) {
      nodes.push_back(main_.TvCollections.Item(i).Text);
    }
    std::sort(nodes.begin(), nodes.end());
    return nodes;
  }
  std::vector<std::string> StripTags() {
    std::vector<std::string> tags;
    for (std::size_t i = 0; i < main_.optThumb.size(); ++i) tags.push_back(main_.optThumb[i].Tag());
    return tags;
  }

  FrmMain main_;
  MainWindowScope installed_{main_};
};

TEST_F(CollectionCommandsTest, CreateShowsTheEditorOwnedByTheMainWindowThenListsAgain) {
  Picture("a.jpg");
  main_.hWnd = 0x1234;
  Pack("Sea", {"bay.jpg"});
  main_.RefreshCollections();
  std::vector<std::string> during;
  services_.forms.Queue<FrmWallpaperCreateCollection>([&](FrmWallpaperCreateCollection& shown) {
    during = services_.forms.Requests();
    EXPECT_EQ(shown.Tag, "");
    dialogs_.AnswerMany(Folder(), {"a.jpg"});
    shown.CmdAddFile.Click();
    shown.TxtCollectionName.Text("Town");
    shown.CmdOK.Click();
  });
  main_.CmdWallpaperControl[0].Click();
  EXPECT_EQ(during.back(), "Show FrmWallpaperCreateCollection modal, owner 4660");
  EXPECT_EQ(Nodes(), (std::vector<std::string>{"Sea", "Town"}));
  EXPECT_EQ(main_.ActiveControl(), &main_.TvCollections);
  EXPECT_EQ(Entries("Town"), (std::vector<std::string>{"a.jpg"}));
}

TEST_F(CollectionCommandsTest, ModifyWithNoCollectionSelectedSaysSo) {
  main_.CmdWallpaperControl[1].Click();
  EXPECT_EQ(Prompts(), (std::vector<std::string>{"Select a collection first!"}));
  EXPECT_TRUE(services_.forms.Requests().empty());
}

TEST_F(CollectionCommandsTest, ModifyUnpacksListsMarksAndAfterOkTheArchiveHoldsTheNewList) {
  Pack("Sea", {"bay.jpg", "cliff.jpg", "Thumbs.db"});
  Picture("wave.jpg");
  main_.RefreshCollections();
  SelectNode("Sea");
  const std::string folder = core::gDataFolder + "Sea";
  std::vector<std::string> listed;
  services_.forms.Queue<FrmWallpaperCreateCollection>([&](FrmWallpaperCreateCollection& shown) {
    EXPECT_EQ(shown.Tag, "Modify");
    EXPECT_EQ(shown.TxtCollectionName.Text(), "Sea");
    listed = Texts(shown.LvFileList);
    std::sort(listed.begin(), listed.end());
    for (std::int32_t i = 1; i <= shown.LvFileList.Count(); ++i) {
      EXPECT_EQ(shown.LvFileList.SubItem(i, 1), "JPEG Image");
      EXPECT_EQ(shown.LvFileList.SubItem(i, 2), ".01 KB");  // "PIC 100 80", 10 bytes
    }
    // One added, one removed.
    dialogs_.AnswerMany(Folder(), {"wave.jpg"});
    shown.CmdAddFile.Click();
    for (std::int32_t i = 1; i <= shown.LvFileList.Count(); ++i) {
      shown.LvFileList.Select(i, shown.LvFileList.Item(i).Text == folder + "\\bay.jpg");
    }
    services_.boxes.Answer(platform::msgbox::kYes);
    shown.CmdRemoveFile.Click();
    shown.CmdOK.Click();
    EXPECT_EQ(shown.Tag, "");
  });
  main_.CmdWallpaperControl[1].Click();
  EXPECT_EQ(listed, (std::vector<std::string>{folder + "\\bay.jpg", folder + "\\cliff.jpg"}));
  EXPECT_EQ(Entries("Sea"), (std::vector<std::string>{"cliff.jpg", "wave.jpg"}));
  EXPECT_FALSE(fs::exists(Host(folder)));
  // The node click ran again: the strip shows the collection as it is now.
  EXPECT_EQ(StripTags(), (std::vector<std::string>{"cliff.jpg", "wave.jpg"}));
}

TEST_F(CollectionCommandsTest, ModifyThenCancelLeavesTheArchiveAndTheNodeClickRemovesTheFolder) {
  Pack("Sea", {"bay.jpg"});
  main_.RefreshCollections();
  SelectNode("Sea");
  bool folderWhileOpen = false;
  services_.forms.Queue<FrmWallpaperCreateCollection>([&](FrmWallpaperCreateCollection& shown) {
    folderWhileOpen = fs::exists(scratch_ / "data" / "Sea" / "bay.jpg");
    shown.CmdCancel.Click();
  });
  main_.CmdWallpaperControl[1].Click();
  EXPECT_TRUE(folderWhileOpen);
  EXPECT_FALSE(fs::exists(scratch_ / "data" / "Sea"));
  EXPECT_EQ(Entries("Sea"), (std::vector<std::string>{"bay.jpg"}));
}

TEST_F(CollectionCommandsTest, RenamingWhileModifyingFailsAtTheDeleteAndLosesNothing) {
  Pack("Sea", {"bay.jpg"});
  main_.RefreshCollections();
  SelectNode("Sea");
  bool failed = false;
  services_.forms.Queue<FrmWallpaperCreateCollection>([&](FrmWallpaperCreateCollection& shown) {
    shown.TxtCollectionName.Text("Ocean");
    try {
      shown.CmdOK.Click();
    } catch (const Failure& failure) {
      failed = failure.Number() == FailureNumber::FileNotFound;
    }
    EXPECT_EQ(shown.Tag, "Modify") << "the failure came before the Tag was cleared";
    EXPECT_TRUE(shown.Loaded()) << "the dialog stays";
    shown.CmdCancel.Click();
  });
  main_.CmdWallpaperControl[1].Click();
  EXPECT_TRUE(failed);
  EXPECT_FALSE(fs::exists(scratch_ / "data" / "Ocean.RXS"));
  EXPECT_EQ(Entries("Sea"), (std::vector<std::string>{"bay.jpg"}));
}

TEST_F(CollectionCommandsTest, TheRenamingsFailureReachesTheTopLevelReportAndTheDialogStays) {
  Pack("Sea", {"bay.jpg"});
  main_.RefreshCollections();
  SelectNode("Sea");
  core::InstallTopLevelReport();
  struct Restore {
    ~Restore() { ui::InstallEventRunner(nullptr); }
  } restore;
  bool stayed = false;
  services_.forms.Queue<FrmWallpaperCreateCollection>([&](FrmWallpaperCreateCollection& shown) {
    shown.TxtCollectionName.Text("Ocean");
    // The press of OK, as the dialog's window runs it.
    ui::RunEvent(shown, shown.CmdOK.Click);
    stayed = shown.Loaded();
  });
  main_.CmdWallpaperControl[1].Click();
  EXPECT_TRUE(stayed);
  ASSERT_EQ(services_.boxes.Boxes().size(), 1u);
  EXPECT_NE(services_.boxes.Boxes()[0].prompt.find("Ocean.RXS"), std::string::npos)
      << services_.boxes.Boxes()[0].prompt;
  const std::string log = testing::ReadFile(core::gDataFolder + "Quorvane.log");
  EXPECT_NE(log.find("FrmWallpaperCreateCollection"), std::string::npos) << log;
  // Nothing lost: the old archive is whole, no new one was made, and the node click after the
  // dialog removed the unpacked folder.
  EXPECT_EQ(Entries("Sea"), (std::vector<std::string>{"bay.jpg"}));
  EXPECT_FALSE(fs::exists(scratch_ / "data" / "Ocean.RXS"));
  EXPECT_FALSE(fs::exists(scratch_ / "data" / "Sea"));
}

// --- the control kinds --------------------------------------------------------------------------

TEST(ListViewTest, ItemsSubItemsSelectionAndRemoval) {
  ui::ListView list("LvTest");
  EXPECT_EQ(list.Add("one"), 1);
  EXPECT_EQ(list.Add("two"), 2);
  EXPECT_EQ(list.Add("three"), 3);
  list.SubItem(2, 2, "x");
  EXPECT_EQ(list.SubItem(2, 1), "");
  EXPECT_EQ(list.SubItem(2, 2), "x");
  list.Select(3);
  list.Select(1);
  EXPECT_EQ(list.SelectedItem(), 1);
  list.Remove(1);
  EXPECT_EQ(list.SelectedItem(), 1) << "the focus goes to the item in the removed one's place";
  EXPECT_EQ(list.Item(1).Text, "two");
  EXPECT_FALSE(list.Item(1).Selected);
  EXPECT_TRUE(list.Item(2).Selected);
  list.Select(2);
  list.Remove(1);
  EXPECT_EQ(list.SelectedItem(), 1) << "the focused item moved up";
  list.Remove(1);
  EXPECT_EQ(list.SelectedItem(), 0) << "none left";
  list.Add("three");
  EXPECT_THROW(list.Item(2), Failure);
  EXPECT_THROW(list.Remove(0), Failure);
  EXPECT_EQ(list.FindItem("THREE"), 1);
  EXPECT_EQ(list.FindItem("thre"), 0);
  list.MultiSelect = false;
  list.Add("four");
  list.Select(2);
  EXPECT_FALSE(list.Item(1).Selected);
  list.Clear();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.SelectedItem(), 0);
}

TEST(TextBoxTest, ChangeRunsOnlyWhenTheTextChanges) {
  ui::TextBox box("TxtTest");
  int changes = 0;
  box.Change = [&] { ++changes; };
  box.Text("a");
  box.Text("a");
  box.Text("b");
  EXPECT_EQ(changes, 2);
  EXPECT_EQ(box.Text(), "b");
}

}  // namespace
}  // namespace quorvane
