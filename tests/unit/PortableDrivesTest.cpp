// The portable drives: host folders mounted as drive letters, found without regard to case by
// every portable adapter, drives without their medium, folders that can't be listed, and the
// attributes kept in memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/portable/HostPath.h"
#include "platform/portable/PortableDrives.h"
#include "platform/portable/PortableFileSystem.h"

#include "ScratchFiles.h"

namespace quorvane {
namespace {

namespace drives = platform::drives;
using platform::portable::HostPath;
using platform::portable::PortableDrives;

TEST(PortableDrivesTest, AMountedLetterLeadsEveryPathToItsHostFolderWhateverTheCase) {
  testing::ScratchFolder scratch("drives");
  std::filesystem::create_directories(scratch / "Data" / "Sub");
  const std::string root = scratch.Path().string();
  EXPECT_EQ(HostPath("K:\\data"), "K:/data");  // no drive K yet: as it stands
  PortableDrives drives;
  drives.Mount('k', root, "STORE");
  EXPECT_EQ(HostPath("K:\\data\\sub"), (scratch / "Data" / "Sub").string());
  EXPECT_EQ(HostPath("k:/DATA/SUB/new.txt"), (scratch / "Data" / "Sub" / "new.txt").string());
  EXPECT_EQ(HostPath("K:"), root);
  platform::portable::PortableFileSystem files;
  EXPECT_TRUE(files.WriteAll("K:\\DATA\\file.txt", "x"));
  EXPECT_TRUE(std::filesystem::exists(scratch / "Data" / "file.txt"));
  drives.Unmount('K');
  EXPECT_FALSE(drives.DriveExists("K:"));
  EXPECT_EQ(HostPath("K:\\data"), "K:/data");
}

TEST(PortableDrivesTest, ADriveWithoutItsMediumExistsButIsNotReadyAndListsNothing) {
  testing::ScratchFolder scratch("drives");
  std::filesystem::create_directories(scratch / "a");
  PortableDrives drives;
  drives.Mount('E', scratch.Path().string(), "DISC", drives::kCdRom);
  std::vector<std::string> names;
  EXPECT_TRUE(drives.SubFolders("E:\\", names));
  EXPECT_EQ(names, (std::vector<std::string>{"a"}));
  drives.Eject('E');
  EXPECT_TRUE(drives.DriveExists("E:"));
  platform::DriveFacts facts;
  ASSERT_TRUE(drives.GetDrive("e:", facts));
  EXPECT_FALSE(facts.IsReady);
  EXPECT_EQ(facts.VolumeName, "");
  EXPECT_EQ(facts.DriveType, drives::kCdRom);
  EXPECT_FALSE(drives.SubFolders("E:\\", names));
}

TEST(PortableDrivesTest, AFolderMadeUnreadableCannotBeListedAnyMore) {
  testing::ScratchFolder scratch("drives");
  std::filesystem::create_directories(scratch / "locked" / "in");
  PortableDrives drives;
  drives.Mount('C', scratch.Path().string(), "");
  std::vector<std::string> names;
  EXPECT_TRUE(drives.SubFolders("C:\\locked", names));
  drives.DenyListing("c:\\LOCKED\\");
  EXPECT_FALSE(drives.SubFolders("C:\\locked", names));
  EXPECT_FALSE(drives.SubFolders("C:\\Locked\\", names));
  EXPECT_TRUE(drives.SubFolders("C:\\", names));
}

TEST(PortableDrivesTest, AttributesAreKeptByPathWithoutRegardToCase) {
  testing::ScratchFolder scratch("drives");
  std::filesystem::create_directories(scratch / "f");
  PortableDrives drives;
  drives.Mount('C', scratch.Path().string(), "");
  EXPECT_EQ(drives.GetFileAttributesA("C:\\f"), drives::kDirectory);
  EXPECT_EQ(drives.SetFileAttributesA("C:\\F", drives::kSystem | drives::kDirectory), 1);
  EXPECT_EQ(drives.GetFileAttributesA("c:\\f\\"), drives::kSystem | drives::kDirectory);
  EXPECT_EQ(drives.GetFileAttributesA("C:\\none"), drives::kInvalidAttributes);
  EXPECT_EQ(drives.GetFileAttributesA(nullptr), drives::kInvalidAttributes);
  EXPECT_EQ(drives.SetFileAttributesA("C:\\none", drives::kSystem), 0);
}

TEST(PortableDrivesTest, TheNewestDrivesAreTheOnesThePathsSee) {
  testing::ScratchFolder scratch("drives");
  std::filesystem::create_directories(scratch / "one");
  std::filesystem::create_directories(scratch / "two");
  PortableDrives first;
  first.Mount('X', (scratch / "one").string(), "");
  {
    PortableDrives second;
    second.Mount('X', (scratch / "two").string(), "");
    EXPECT_EQ(HostPath("X:"), (scratch / "two").string());
  }
  EXPECT_EQ(HostPath("X:"), (scratch / "one").string());
}

}  // namespace
}  // namespace quorvane
