// The folder page's platform: drives, volume names, the sub-folders of a folder, attributes and
// desktop.ini through the profile functions; then the page's routines over real folders. The
// same cases run over the portable adapters and over the real Windows API.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "Support.h"
#include "base/Failure.h"
#include "core/FrmMain.h"
#include "icons/FolderTree.h"
#include "icons/modextracticon.h"
#include "platform/Drives.h"
#include "platform/FileSystem.h"
#include "platform/MemorySurface.h"
#include "platform/Service.h"

namespace quorvane {
namespace {

namespace drives = platform::drives;
using testing::FreshTempFolder;

platform::Drives& Drives() { return platform::Use<platform::Drives>(); }
platform::FileSystem& Files() { return platform::Use<platform::FileSystem>(); }

// A fresh folder as the system names it, on drive C, without a trailing backslash.
std::string FreshFolder() {
  std::string folder = FreshTempFolder();
  if (!folder.empty() && folder.front() == '/') folder = "C:" + folder;
  std::replace(folder.begin(), folder.end(), '/', '\\');
  while (folder.size() > 3 && folder.back() == '\\') folder.pop_back();
  return folder;
}

std::vector<std::string> Sorted(std::vector<std::string> names) {
  std::sort(names.begin(), names.end());
  return names;
}

// --- drives -----------------------------------------------------------------------------------

TEST(DrivesConformance, DriveCExistsIsReadyAndFixedAndAnUnusedLetterIsNoDrive) {
  EXPECT_TRUE(Drives().DriveExists("C:"));
  EXPECT_TRUE(Drives().DriveExists("c:"));
  platform::DriveFacts facts;
  ASSERT_TRUE(Drives().GetDrive("C:", facts));
  EXPECT_TRUE(facts.IsReady);
  EXPECT_EQ(facts.DriveType, drives::kFixed);
  EXPECT_TRUE(facts.ShareName.empty());
  EXPECT_FALSE(Drives().DriveExists("Q:"));
  platform::DriveFacts untouched;
  untouched.VolumeName = "kept";
  EXPECT_FALSE(Drives().GetDrive("Q:", untouched));
  EXPECT_EQ(untouched.VolumeName, "kept");
  EXPECT_FALSE(Drives().DriveExists("1:"));
  EXPECT_FALSE(Drives().DriveExists(""));
}

TEST(DrivesConformance, DriveNameIsTheVolumeNameOfAReadyDriveAndEmptyForNoDrive) {
  platform::DriveFacts facts;
  ASSERT_TRUE(Drives().GetDrive("C:", facts));
  EXPECT_EQ(DriveName("C:"), facts.VolumeName);
  EXPECT_EQ(DriveName("Q:"), "");
  EXPECT_EQ(DriveExists("C:"), kTrue);
  EXPECT_EQ(DriveExists("Q:"), kFalse);
}

// --- sub-folders --------------------------------------------------------------------------------

TEST(DrivesConformance, SubFoldersListsTheFoldersOnlyWithOrWithoutATrailingBackslash) {
  const std::string folder = FreshFolder();
  for (const char* name : {"alpha", "Beta", "with blank", "RECYCLED"}) {
    ASSERT_TRUE(Files().CreateFolder(folder + "\\" + name));
  }
  ASSERT_TRUE(Files().WriteAll(folder + "\\file.txt", "x"));
  std::vector<std::string> names;
  ASSERT_TRUE(Drives().SubFolders(folder, names));
  EXPECT_EQ(Sorted(names), (std::vector<std::string>{"Beta", "RECYCLED", "alpha", "with blank"}));
  ASSERT_TRUE(Drives().SubFolders(folder + "\\", names));
  EXPECT_EQ(names.size(), 4u);
  EXPECT_EQ(HasSubFolders(folder), kTrue);
}

TEST(DrivesConformance, AnEmptyFolderListsNothingAndAMissingOneCannotBeListed) {
  const std::string folder = FreshFolder();
  ASSERT_TRUE(Files().WriteAll(folder + "\\file.txt", "x"));
  std::vector<std::string> names{"stale"};
  EXPECT_TRUE(Drives().SubFolders(folder, names));
  EXPECT_TRUE(names.empty());
  EXPECT_EQ(HasSubFolders(folder), kFalse);
  EXPECT_FALSE(Drives().SubFolders(folder + "\\missing", names));
  EXPECT_EQ(HasSubFolders(folder + "\\missing"), kFalse);
  EXPECT_FALSE(Drives().SubFolders(folder + "\\file.txt", names));
}

TEST(DrivesConformance, TheRootOfDriveCHasSubFolders) {
  std::vector<std::string> names;
  ASSERT_TRUE(Drives().SubFolders("C:\\", names));
  EXPECT_FALSE(names.empty());
  EXPECT_EQ(HasSubFolders("C:"), kTrue);
}

// --- attributes ---------------------------------------------------------------------------------

TEST(DrivesConformance, AttributesReplaceTheFoldersOwnAndAFolderStaysAFolder) {
  const std::string folder = FreshFolder();
  EXPECT_EQ(Drives().GetFileAttributesA(folder.c_str()), drives::kDirectory);
  EXPECT_EQ(Drives().SetFileAttributesA(folder.c_str(), drives::kSystem), 1);
  EXPECT_EQ(Drives().GetFileAttributesA(folder.c_str()), drives::kSystem | drives::kDirectory);
  // The archive attribute takes the system and hidden ones away. (Whether a folder then reads
  // back with its archive mark differs between systems: Wine keeps none on folders.)
  EXPECT_EQ(Drives().SetFileAttributesA(folder.c_str(), drives::kSystem | drives::kHidden), 1);
  EXPECT_EQ(Drives().GetFileAttributesA(folder.c_str()),
            drives::kSystem | drives::kHidden | drives::kDirectory);
  EXPECT_EQ(Drives().SetFileAttributesA(folder.c_str(), drives::kArchive), 1);
  const std::uint32_t after = Drives().GetFileAttributesA(folder.c_str());
  EXPECT_EQ(after & ~drives::kArchive, drives::kDirectory);
  const std::string file = folder + "\\file.txt";
  ASSERT_TRUE(Files().WriteAll(file, "x"));
  EXPECT_EQ(Drives().GetFileAttributesA(file.c_str()), drives::kArchive);
  const std::string missing = folder + "\\missing";
  EXPECT_EQ(Drives().GetFileAttributesA(missing.c_str()), drives::kInvalidAttributes);
  EXPECT_EQ(Drives().SetFileAttributesA(missing.c_str(), drives::kSystem), 0);
}

// --- desktop.ini --------------------------------------------------------------------------------

TEST(DesktopIniConformance, TheIconIsWrittenUnderOneNameAndReadUnderTheOtherKeepingTheRest) {
  const std::string folder = FreshFolder();
  const std::string file = folder + "\\desktop.ini";
  ASSERT_TRUE(Files().WriteAll(file,
                               "[.ShellClassInfo]\r\nInfoTip=kept\r\nIconIndex=1\r\n"
                               "[Other]\r\nx=1\r\n"));
  WriteIniEntry(".ShellClassInfo", "iconfile", "C:\\icons\\blue.ico", file);
  WriteIniEntry(".ShellClassInfo", "iconindex", "-12", file);
  std::string value;
  EXPECT_EQ(ReadIniEntry(".ShellClassInfo", "iconfile", file, value), kTrue);
  EXPECT_EQ(value, "C:\\icons\\blue.ico");
  EXPECT_EQ(ReadIniEntry(".ShellClassInfo", "IconIndex", file, value), kTrue);
  EXPECT_EQ(value, "-12");
  EXPECT_EQ(ReadIniEntry(".ShellClassInfo", "InfoTip", file, value), kTrue);
  EXPECT_EQ(value, "kept");
  EXPECT_EQ(ReadIniEntry("Other", "x", file, value), kTrue);
  EXPECT_EQ(value, "1");
  EXPECT_EQ(ReadIniEntry(".ShellClassInfo", "IconFile", folder + "\\none.ini", value), kFalse);
}

// --- the page's routines over real folders -------------------------------------------------------

class FolderPageConformance : public ::testing::Test {
 protected:
  FolderPageConformance() {
    for (ui::PictureBox* box : {&form_.Pi1, &form_.PicSmall, &form_.PicLarge}) {
      box->UseSurface(std::make_shared<platform::MemorySurface>());
    }
  }

  // Opens the tree down to `path` ("C:\...") a folder at a time, as a user would, and gives the
  // node of its last folder; 0 when a folder isn't there.
  std::int32_t Open(const std::string& path) {
    std::int32_t node = 0;
    for (std::int32_t child : form_.Tree.Children(1)) {
      if (NodeFolderPath(form_.Tree, child) == "C:") node = child;
    }
    std::size_t at = 3;
    while (node != 0 && at <= path.size()) {
      std::size_t end = path.find('\\', at);
      if (end == std::string::npos) end = path.size();
      const std::string name = ProperCaseName(path.substr(at, end - at));
      at = end + 1;
      form_.Tree_Expand(node);
      std::int32_t found = 0;
      for (std::int32_t child : form_.Tree.Children(node)) {
        if (form_.Tree.Item(child).Text == name) found = child;
      }
      node = found;
    }
    return node;
  }

  // Whether the box holds anything but its back colour.
  static bool Drawn(const ui::Pixels& image) {
    return std::any_of(image.bgra.begin(), image.bgra.end(),
                       [&](std::uint32_t p) { return p != image.bgra.front(); });
  }

  FrmMain form_;
  MainWindowScope scope_{form_};
};

TEST_F(FolderPageConformance, TheTreeOpensDownToAFolderAndListsItsSubFolders) {
  const std::string folder = FreshFolder();
  for (const char* name : {"photos", "photos\\2024", "RECYCLED", "RECYCLED\\inside", "empty"}) {
    ASSERT_TRUE(Files().CreateFolder(folder + "\\" + name)) << name;
  }
  form_.FillTreeRoot();
  form_.FillDrives();
  const std::int32_t node = Open(folder);
  ASSERT_NE(node, 0) << folder;
  form_.Tree_Expand(node);
  std::vector<std::string> texts;
  for (std::int32_t child : form_.Tree.Children(node)) texts.push_back(form_.Tree.Item(child).Text);
  EXPECT_EQ(texts, (std::vector<std::string>{"Empty", "Photos", "Recycled"}));
  const auto childNamed = [&](const std::string& text) {
    for (std::int32_t child : form_.Tree.Children(node)) {
      if (form_.Tree.Item(child).Text == text) return child;
    }
    return 0;
  };
  EXPECT_EQ(form_.Tree.Children(childNamed("Photos")).size(), 1u);
  EXPECT_TRUE(form_.Tree.Children(childNamed("Recycled")).empty());
  EXPECT_TRUE(form_.Tree.Children(childNamed("Empty")).empty());
  // A folder's closed and open icons are two images of Im16, shared by the folders.
  const ui::Node& photos = form_.Tree.Item(childNamed("Photos"));
  EXPECT_NE(photos.Image, photos.SelectedImage);
  EXPECT_EQ(form_.Tree.Item(childNamed("Empty")).Image, photos.Image);
  EXPECT_EQ(form_.Im16.Item(photos.Image).key.rfind("Icon", 0), 0u);
}

TEST_F(FolderPageConformance, AClickDrawsTheFoldersIconInBothPreviews) {
  const std::string folder = FreshFolder();
  form_.FillTreeRoot();
  form_.FillDrives();
  const std::int32_t node = Open(folder);
  ASSERT_NE(node, 0);
  form_.Tree.Select(node);
  form_.Tree.Click();
  EXPECT_EQ(form_.PicSmall.Width(), 240);
  EXPECT_EQ(form_.PicLarge.Width(), 480);
  EXPECT_TRUE(Drawn(form_.PicSmall.Image()));
  EXPECT_TRUE(Drawn(form_.PicLarge.Image()));
  EXPECT_EQ(form_.PicSmall.Image().width, 16);
  EXPECT_EQ(form_.PicLarge.Image().width, 32);
}

TEST_F(FolderPageConformance, DefaultDeletesDesktopIniAndLeavesTheArchiveAttribute) {
  const std::string folder = FreshFolder();
  const std::string file = folder + "\\desktop.ini";
  WriteIniEntry(".ShellClassInfo", "iconfile", "C:\\x.ico", file);
  ASSERT_EQ(Drives().SetFileAttributesA(folder.c_str(), drives::kSystem), 1);
  form_.FillTreeRoot();
  form_.FillDrives();
  const std::int32_t node = Open(folder);
  ASSERT_NE(node, 0);
  form_.Tree.Select(node);
  form_.RestoreSelectedFolderIcon();
  EXPECT_FALSE(Files().FileExists(file));
  // The system attribute is gone (the archive mark itself is not kept on folders by Wine).
  EXPECT_EQ(Drives().GetFileAttributesA(folder.c_str()) & ~drives::kArchive, drives::kDirectory);
  EXPECT_EQ(form_.Tree.Item(1).Text, "My Computer");
  EXPECT_EQ(form_.Tree.SelectedItem(), 0);
}

}  // namespace
}  // namespace quorvane
