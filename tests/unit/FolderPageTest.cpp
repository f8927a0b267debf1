// The folder page over the portable adapters: drives mounted from scratch folders, the tree
// filled and opened, the previews, and the change and default routines with what they leave in
// desktop.ini and the folders' attributes.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "base/Text.h"
#include "core/FrmMain.h"
#include "icons/FolderTree.h"
#include "icons/modextracticon.h"
#include "platform/Drives.h"
#include "platform/Icons.h"
#include "platform/Service.h"
#include "platform/portable/HostPath.h"

#include "PortableServices.h"
#include "ScratchFiles.h"

namespace quorvane {
namespace {

namespace icons = platform::icons;
namespace drives = platform::drives;
using platform::GdiHandle;
using platform::ShFileInfo;

// The shell's icons as a folder page sees them: every path that exists is in one system image
// list, a folder with its closed and open icon, a folder whose desktop.ini names an icon with an
// icon of its own, a drive's root with the drive's icon; every query is written down.
class ShellIcons final : public platform::Icons {
 public:
  static constexpr GdiHandle kList = 0x77;
  static constexpr std::int32_t kDrive = 8;
  static constexpr std::int32_t kFolder = 3;
  static constexpr std::int32_t kOpenFolder = 4;
  static constexpr std::int32_t kFirstOwnIcon = 100;

  std::int32_t ExtractIconExA(const char*, std::int32_t, GdiHandle*, GdiHandle*,
                              std::uint32_t) override {
    return 0;
  }
  std::int32_t DrawIconEx(GdiHandle, std::int32_t, std::int32_t, GdiHandle, std::int32_t,
                          std::int32_t, std::uint32_t, GdiHandle, std::uint32_t) override {
    return 0;
  }
  std::int32_t DestroyIcon(GdiHandle) override { return 0; }
  std::uint32_t SHGetFileInfoA(const char* path, std::uint32_t, ShFileInfo& info, std::uint32_t,
                               std::uint32_t flags) override {
    const std::string p = path;
    queries.push_back(p + "|" + text::HexOf(static_cast<std::int32_t>(flags)));
    const std::string host = platform::portable::HostPath(p);
    std::error_code ec;
    if (p.empty() || !std::filesystem::exists(host, ec)) {
      info.iIcon = 0;
      return 0;
    }
    const bool open = (flags & icons::kShgfiOpenIcon) != 0;
    if (p.size() <= 3) {
      info.iIcon = kDrive;
    } else if (std::filesystem::exists(host + "/desktop.ini", ec)) {
      auto found = own_.find(text::UpperCase(p));
      if (found == own_.end()) {
        found = own_.emplace(text::UpperCase(p), kFirstOwnIcon + static_cast<std::int32_t>(own_.size()))
                    .first;
      }
      info.iIcon = found->second;
    } else {
      info.iIcon = open ? kOpenFolder : kFolder;
    }
    info.hIcon = 0;
    return (flags & icons::kShgfiSysIconIndex) != 0 ? kList : 1u;
  }
  std::int32_t ImageList_Draw(GdiHandle list, std::int32_t index, GdiHandle, std::int32_t,
                              std::int32_t, std::uint32_t) override {
    drawn.push_back(index);
    return list == kList ? 1 : 0;
  }
  std::int32_t ImageList_GetIconSize(GdiHandle list, std::int32_t& width,
                                     std::int32_t& height) override {
    if (list != kList) return 0;
    width = 16;
    height = 16;
    return 1;
  }
  // The picker is the portable one, with its queue of answers.
  explicit ShellIcons(platform::portable::PortableIcons& picker) : picker_(picker) {}
  std::int32_t PickIconDlg(GdiHandle owner, char16_t* path, std::uint32_t size,
                           std::int32_t& index) override {
    return picker_.PickIconDlg(owner, path, size, index);
  }

  std::vector<std::string> queries;
  std::vector<std::int32_t> drawn;

 private:
  platform::portable::PortableIcons& picker_;
  std::map<std::string, std::int32_t> own_;
};


class FolderPageTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(scratch_ / "c");
    drives_.Mount('C', (scratch_ / "c").string(), "LOCAL DISK");
  }

  // A folder on the host under drive C, made with its parents: "a\\b".
  void MakeFolder(const std::string& path) {
    std::filesystem::create_directories(scratch_ / "c" / testing::Host(path));
  }
  std::string OnC(const std::string& path) const { return testing::Host((scratch_ / "c").string() + "/" + path); }

  // The texts of a node's children, in the order shown.
  std::vector<std::string> ChildTexts(std::int32_t node) const {
    std::vector<std::string> texts;
    for (std::int32_t child : form_.Tree.Children(node)) texts.push_back(form_.Tree.Item(child).Text);
    return texts;
  }
  // The node of that text among a node's children; 0 when there is none.
  std::int32_t Child(std::int32_t node, const std::string& text) const {
    for (std::int32_t child : form_.Tree.Children(node)) {
      if (form_.Tree.Item(child).Text == text) return child;
    }
    return 0;
  }
  void Fill() {
    form_.FillTreeRoot();
    form_.FillDrives();
  }
  // Fills the tree, opens drive C and selects the node at the end of `texts` under it.
  std::int32_t OpenAndSelect(const std::vector<std::string>& texts) {
    Fill();
    std::int32_t node = Child(1, "Local Disk (C:)");
    for (const std::string& text : texts) {
      form_.Tree_Expand(node);
      node = Child(node, text);
      if (node == 0) return 0;
    }
    form_.Tree.Select(node);
    return node;
  }

  testing::ScratchFolder scratch_{"folders"};
  testing::PortableServices services_;
  platform::portable::PortableDrives& drives_ = services_.adapters.Drives();
  ShellIcons shell_{services_.icons};
  platform::ScopedService<platform::Icons> shellInstalled_{shell_};
  FrmMain form_;
  MainWindowScope installed_{form_};
};

// --- ProperCaseName ---------------------------------------------------------------------------

TEST(ProperCaseNameTest, CapitalisesEveryWordAfterEachOfTheThirteenSeparators) {
  const std::pair<const char*, const char*> cases[] = {
      {"LOCAL DISK (c:)", "Local Disk (C:)"},
      {"my_files.old", "My_Files.Old"},
      {"", ""},
      {"a", "A"},
      {"Z", "Z"},
      {"windows", "Windows"},
      {"PROGRAM FILES", "Program Files"},
      {"a-b_c,d.e(f)g[h]i\\j/k=l+m", "A-B_C,D.E(F)G[H]I\\J/K=L+M"},
      {"x;y:z!w", "X;y:z!w"},
      {"two  blanks", "Two  Blanks"},
      {"ends with a dot.", "Ends With A Dot."},
      {"(c:)", "(C:)"},
      {" lead", " Lead"},
      {"1st folder", "1st Folder"},
      {"mIxEd CaSe-NAME", "Mixed Case-Name"},
      {"..", ".."},
      {"a.b.c.d", "A.B.C.D"},
      {"o'brien", "O'brien"},
      {"tab\tafter", "Tab\tafter"},
  };
  for (const auto& [in, out] : cases) EXPECT_EQ(ProperCaseName(in), out) << in;
}

// --- NodeFolderPath ---------------------------------------------------------------------------

TEST(NodeFolderPathTest, WorksThePathOutFromTheFullPathOfTheNode) {
  ui::TreeView tree("Tree");
  const std::int32_t root = tree.Add("My Computer", 0, 0);
  const std::int32_t c = tree.Add("Local Disk (C:)", 0, 0, "", root);
  const std::int32_t windows = tree.Add("Windows", 0, 0, "", c);
  const std::int32_t fonts = tree.Add("Fonts", 0, 0, "", windows);
  const std::int32_t blank = tree.Add(" (D:)", 0, 0, "", root);
  const std::int32_t a = tree.Add("A", 0, 0, "", blank);
  const std::int32_t colon = tree.Add("Odd: Name", 0, 0, "", a);
  const std::int32_t bare = tree.Add("X:", 0, 0);
  const std::int32_t front = tree.Add(":front", 0, 0);
  const std::int32_t lone = tree.Add("No Drive", 0, 0, "", root);
  const std::int32_t twoColons = tree.Add("E:) (F:)", 0, 0, "", root);
  EXPECT_EQ(NodeFolderPath(tree, root), "");
  EXPECT_EQ(NodeFolderPath(tree, c), "C:");
  EXPECT_EQ(NodeFolderPath(tree, windows), "C:\\Windows");
  EXPECT_EQ(NodeFolderPath(tree, fonts), "C:\\Windows\\Fonts");
  EXPECT_EQ(NodeFolderPath(tree, blank), "D:");
  EXPECT_EQ(NodeFolderPath(tree, a), "D:\\A");
  // Only the first colon counts.
  EXPECT_EQ(NodeFolderPath(tree, colon), "D:\\A\\Odd: Name");
  EXPECT_EQ(NodeFolderPath(tree, bare), "X:");
  // A colon at the very start has nothing before it: a failure, so the empty text.
  EXPECT_EQ(NodeFolderPath(tree, front), "");
  EXPECT_EQ(NodeFolderPath(tree, lone), "");
  EXPECT_EQ(NodeFolderPath(tree, twoColons), "E: (F:)");
  EXPECT_EQ(NodeFolderPath(tree, 0), "");
  EXPECT_EQ(NodeFolderPath(tree, 99), "");
  // Texts change, and the path with them: nothing is kept.
  tree.Item(windows).Text = "Winnt";
  EXPECT_EQ(NodeFolderPath(tree, fonts), "C:\\Winnt\\Fonts");
}

// --- drives -----------------------------------------------------------------------------------

TEST_F(FolderPageTest, DriveNameIsTheVolumeNameWithAMediumAndNothingWithout) {
  std::filesystem::create_directories(scratch_ / "d");
  drives_.Mount('D', (scratch_ / "d").string(), "Backup", drives::kRemovable);
  EXPECT_EQ(DriveName("C:"), "LOCAL DISK");
  EXPECT_EQ(DriveName("D:"), "Backup");
  drives_.Eject('D');
  EXPECT_EQ(DriveExists("D:"), kTrue);
  EXPECT_EQ(DriveName("D:"), "");
  // No drive at all: what it has so far, nothing.
  EXPECT_EQ(DriveExists("Q:"), kFalse);
  EXPECT_EQ(DriveName("Q:"), "");
}

TEST_F(FolderPageTest, ANetworkDriveShowsItsVolumeNameNotItsShare) {
  std::filesystem::create_directories(scratch_ / "n");
  drives_.Mount('N', (scratch_ / "n").string(), "Team", drives::kRemote, "\\\\server\\team");
  EXPECT_EQ(DriveName("N:"), "Team");
}

TEST_F(FolderPageTest, HasSubFoldersCountsFoldersOnlyAndIsFalseOnAnyFailure) {
  MakeFolder("a\\b");
  MakeFolder("empty");
  testing::WriteFile(OnC("empty/file.txt"), "x");
  EXPECT_EQ(HasSubFolders("C:"), kTrue);
  EXPECT_EQ(HasSubFolders("C:\\"), kTrue);
  EXPECT_EQ(HasSubFolders("C:\\a"), kTrue);
  EXPECT_EQ(HasSubFolders("C:\\empty"), kFalse);
  EXPECT_EQ(HasSubFolders("C:\\missing"), kFalse);
  EXPECT_EQ(HasSubFolders("Q:"), kFalse);
  drives_.DenyListing("C:\\a");
  EXPECT_EQ(HasSubFolders("C:\\a"), kFalse);
}

// --- filling the tree -------------------------------------------------------------------------

TEST_F(FolderPageTest, TheRootComesFirstWithItsTwoImagesThenDrivesCToUOnly) {
  for (const char letter : {'A', 'B', 'D', 'U', 'V', 'Z'}) {
    const std::string folder = std::string("drive-") + letter;
    std::filesystem::create_directories(scratch_ / folder);
    drives_.Mount(letter, (scratch_ / folder).string(), std::string("VOL ") + letter);
  }
  MakeFolder("windows");
  form_.Image2.Picture(ui::Pixels{1, 1, {0xFF102030u}});
  Fill();
  EXPECT_EQ(form_.Im16.ImageWidth, 16);
  EXPECT_EQ(form_.Im16.ImageHeight, 16);
  ASSERT_GE(form_.Im16.Count(), 2);
  EXPECT_EQ(form_.Im16.Item(1).key, "Start Icon");
  EXPECT_EQ(form_.Im16.Item(2).key, "Start Icon1");
  EXPECT_EQ(form_.Im16.Item(1).picture, form_.Image2.Picture());
  EXPECT_EQ(form_.Pi1.Width(), 240);
  EXPECT_EQ(form_.Pi1.Height(), 240);
  const ui::Node& root = form_.Tree.Item(1);
  EXPECT_EQ(root.Text, "My Computer");
  EXPECT_EQ(root.Image, 1);
  EXPECT_EQ(root.SelectedImage, 1);
  EXPECT_TRUE(root.Expanded);
  EXPECT_EQ(root.Parent, 0);
  EXPECT_EQ(ChildTexts(1), (std::vector<std::string>{"Local Disk (C:)", "Vol D (D:)", "Vol U (U:)"}));
  // The drive's closed icon is both its images; its children are sorted.
  const ui::Node& c = form_.Tree.Item(Child(1, "Local Disk (C:)"));
  ASSERT_EQ(form_.Im16.Item(c.Image).key, "Icon8");
  EXPECT_EQ(c.SelectedImage, c.Image);
  EXPECT_TRUE(c.Sorted);
  EXPECT_FALSE(form_.Tree.Item(1).Sorted);
  // The placeholder only below a drive with sub-folders.
  EXPECT_EQ(ChildTexts(Child(1, "Local Disk (C:)")), (std::vector<std::string>{"Dummy"}));
  EXPECT_TRUE(ChildTexts(Child(1, "Vol D (D:)")).empty());
  const ui::Node& dummy = form_.Tree.Item(form_.Tree.FirstChild(Child(1, "Local Disk (C:)")));
  EXPECT_EQ(dummy.Image, 0);
  EXPECT_EQ(dummy.SelectedImage, 0);
  // One pass over the drives: no folder is read for its icon.
  for (const std::string& query : shell_.queries) EXPECT_LE(query.find('|'), 3u) << query;
}

TEST_F(FolderPageTest, ADriveWithoutAMediumShowsNothingBeforeTheParenthesis) {
  std::filesystem::create_directories(scratch_ / "e");
  drives_.Mount('E', (scratch_ / "e").string(), "DISC");
  drives_.Eject('E');
  Fill();
  EXPECT_NE(Child(1, " (E:)"), 0);
  EXPECT_TRUE(ChildTexts(Child(1, " (E:)")).empty());
}

// --- opening a node ---------------------------------------------------------------------------

TEST_F(FolderPageTest, OpeningANodeReplacesItsPlaceholderWithItsSortedSubFolders) {
  MakeFolder("zeta\\inner");
  MakeFolder("alpha");
  MakeFolder("MIDDLE NAME");
  testing::WriteFile(OnC("file.txt"), "x");
  Fill();
  const std::int32_t c = Child(1, "Local Disk (C:)");
  form_.Tree_Expand(c);
  EXPECT_EQ(ChildTexts(c), (std::vector<std::string>{"Alpha", "Middle Name", "Zeta"}));
  const ui::Node& zeta = form_.Tree.Item(Child(c, "Zeta"));
  EXPECT_EQ(form_.Im16.Item(zeta.Image).key, "Icon3");
  EXPECT_EQ(form_.Im16.Item(zeta.SelectedImage).key, "Icon4");
  EXPECT_TRUE(zeta.Sorted);
  EXPECT_EQ(ChildTexts(Child(c, "Zeta")), (std::vector<std::string>{"Dummy"}));
  EXPECT_TRUE(ChildTexts(Child(c, "Alpha")).empty());
  // Images are shared: one per system icon.
  EXPECT_EQ(form_.Im16.Item(form_.Tree.Item(Child(c, "Alpha")).Image).key, "Icon3");
  EXPECT_EQ(form_.Im16.Count(), 5);
  // A second opening adds nothing.
  const std::int32_t count = form_.Tree.Count();
  form_.Tree_Expand(c);
  EXPECT_EQ(form_.Tree.Count(), count);
  form_.Tree_Expand(Child(c, "Zeta"));
  EXPECT_EQ(ChildTexts(Child(c, "Zeta")), (std::vector<std::string>{"Inner"}));
  EXPECT_EQ(NodeFolderPath(form_.Tree, Child(Child(c, "Zeta"), "Inner")), "C:\\Zeta\\Inner");
}

TEST_F(FolderPageTest, ARecycledFolderInAnyCaseIsListedButNeverOpens) {
  MakeFolder("box\\RECYCLED\\inside");
  MakeFolder("box\\recycled2\\inside");
  MakeFolder("other\\Recycled\\inside");
  MakeFolder("third\\recycled\\inside");
  OpenAndSelect({});
  const std::int32_t c = Child(1, "Local Disk (C:)");
  form_.Tree_Expand(c);
  for (const char* parent : {"Box", "Other", "Third"}) {
    const std::int32_t node = Child(c, parent);
    form_.Tree_Expand(node);
    const std::int32_t recycled = Child(node, "Recycled");
    ASSERT_NE(recycled, 0) << parent;
    EXPECT_TRUE(ChildTexts(recycled).empty()) << parent;
  }
  EXPECT_EQ(ChildTexts(Child(Child(c, "Box"), "Recycled2")), (std::vector<std::string>{"Dummy"}));
}

TEST_F(FolderPageTest, AnUnreadableFolderFailsTheOpeningAndLosesItsPlaceholderForGood) {
  MakeFolder("locked\\inside");
  Fill();
  const std::int32_t c = Child(1, "Local Disk (C:)");
  form_.Tree_Expand(c);
  const std::int32_t locked = Child(c, "Locked");
  ASSERT_EQ(ChildTexts(locked), (std::vector<std::string>{"Dummy"}));
  drives_.DenyListing("C:\\locked");
  EXPECT_THROW(form_.Tree_Expand(locked), Failure);
  EXPECT_TRUE(ChildTexts(locked).empty());
  // Nothing brings it back: the node has no child to open any more.
  try {
    form_.Tree_Expand(locked);
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::ObjectVariableNotSet);
  }
  EXPECT_TRUE(ChildTexts(locked).empty());
}

TEST_F(FolderPageTest, OpeningTheRootDoesNothing) {
  Fill();
  const std::int32_t count = form_.Tree.Count();
  form_.Tree_Expand(1);
  EXPECT_EQ(form_.Tree.Count(), count);
}

// --- the previews -----------------------------------------------------------------------------

TEST_F(FolderPageTest, AClickDrawsTheSelectedPathsIconAtBothSizes) {
  MakeFolder("photos");
  OpenAndSelect({"Photos"});
  shell_.queries.clear();
  form_.Tree.Click();
  EXPECT_EQ(shell_.queries,
            (std::vector<std::string>{"C:\\Photos|6605", "C:\\Photos|6604"}));
  EXPECT_EQ(shell_.drawn, (std::vector<std::int32_t>{ShellIcons::kFolder, ShellIcons::kFolder}));
  EXPECT_EQ(form_.PicSmall.Width(), 240);
  EXPECT_EQ(form_.PicLarge.Width(), 480);
  EXPECT_EQ(form_.PicLarge.ScaleHeight, 480);
}

// --- CmdChange ----------------------------------------------------------------------------------

TEST_F(FolderPageTest, ChangeOnAFolderWithoutDesktopIniOpensTheStockFolderIconAndWrites) {
  MakeFolder("a");
  const std::int32_t node = OpenAndSelect({"A"});
  ASSERT_NE(node, 0);
  services_.icons.AnswerPicker(u"C:\\icons\\blue.ico", 5);
  form_.CmdMenu[1].Click();
  form_.CmdChange.Click();
  ASSERT_EQ(services_.icons.PickerCalls().size(), 1u);
  EXPECT_EQ(services_.icons.PickerCalls()[0].path, u"%SystemRoot%\\System32\\Shell32.dll");
  EXPECT_EQ(services_.icons.PickerCalls()[0].index, 3);
  EXPECT_EQ(testing::ReadFile(OnC("a/desktop.ini")),
            "[.ShellClassInfo]\r\niconfile=C:\\icons\\blue.ico\r\niconindex=5\r\n");
  // The system attribute replaces the folder's attributes.
  EXPECT_EQ(drives_.GetFileAttributesA("C:\\A"), drives::kSystem | drives::kDirectory);
  // The node shows the image one below the newest, both images.
  EXPECT_EQ(form_.Tree.SelectedItem(), node);
  EXPECT_EQ(form_.Im16.Item(form_.Im16.Count()).key, "Icon100");
  EXPECT_EQ(form_.Tree.Item(node).Image, form_.Im16.Count() - 1);
  EXPECT_EQ(form_.Tree.Item(node).SelectedImage, form_.Im16.Count() - 1);
  EXPECT_EQ(form_.ActiveControl(), &form_.Tree);
  // The previews show the folder's new icon.
  EXPECT_EQ(shell_.drawn.back(), ShellIcons::kFirstOwnIcon);
  EXPECT_TRUE(services_.boxes.Boxes().empty());
}

TEST_F(FolderPageTest, ChangeReadsTheFoldersIconUnderOneNameAndWritesUnderAnotherKeepingTheRest) {
  MakeFolder("b");
  testing::WriteFile(OnC("b/desktop.ini"),
                     "[.ShellClassInfo]\r\nIconFile=D:\\mine.dll\r\nIconIndex=7abc\r\n"
                     "InfoTip=kept\r\n[Other]\r\nx=1\r\n");
  const std::int32_t node = OpenAndSelect({"B"});
  services_.icons.AnswerPicker(u"D:\\other.dll", -12);
  form_.ChangeSelectedFolderIcon();
  ASSERT_EQ(services_.icons.PickerCalls().size(), 1u);
  EXPECT_EQ(services_.icons.PickerCalls()[0].path, u"D:\\mine.dll");
  EXPECT_EQ(services_.icons.PickerCalls()[0].index, 7);
  std::string value;
  EXPECT_EQ(ReadIniEntry(".ShellClassInfo", "iconfile", "C:\\B\\desktop.ini", value), kTrue);
  EXPECT_EQ(value, "D:\\other.dll");
  EXPECT_EQ(ReadIniEntry(".ShellClassInfo", "IconIndex", "C:\\B\\desktop.ini", value), kTrue);
  EXPECT_EQ(value, "-12");
  EXPECT_EQ(ReadIniEntry(".ShellClassInfo", "InfoTip", "C:\\B\\desktop.ini", value), kTrue);
  EXPECT_EQ(value, "kept");
  EXPECT_EQ(ReadIniEntry("Other", "x", "C:\\B\\desktop.ini", value), kTrue);
  EXPECT_EQ(value, "1");
  EXPECT_EQ(form_.Tree.Item(node).Image, form_.Im16.Count() - 1);
}

TEST_F(FolderPageTest, ChangeWithAnIconFileButNoNumberOpensOnNumberThree) {
  MakeFolder("c");
  testing::WriteFile(OnC("c/desktop.ini"), "[.ShellClassInfo]\r\niconfile=x.ico\r\n");
  OpenAndSelect({"C"});
  form_.ChangeSelectedFolderIcon();  // cancelled: no answer queued
  ASSERT_EQ(services_.icons.PickerCalls().size(), 1u);
  EXPECT_EQ(services_.icons.PickerCalls()[0].path, u"x.ico");
  EXPECT_EQ(services_.icons.PickerCalls()[0].index, 3);
}

TEST_F(FolderPageTest, ACancelledPickerChangesNothing) {
  MakeFolder("a");
  const std::int32_t node = OpenAndSelect({"A"});
  const ui::Node before = form_.Tree.Item(node);
  const std::int16_t images = form_.Im16.Count();
  services_.icons.CancelPicker();
  form_.ChangeSelectedFolderIcon();
  EXPECT_FALSE(std::filesystem::exists(OnC("a/desktop.ini")));
  EXPECT_EQ(drives_.GetFileAttributesA("C:\\A"), drives::kDirectory);
  EXPECT_EQ(form_.Tree.Item(node).Image, before.Image);
  EXPECT_EQ(form_.Im16.Count(), images);
}

TEST_F(FolderPageTest, ChangeOnADriveOrTheRootChangesNothing) {
  Fill();
  services_.icons.AnswerPicker(u"x.ico", 1);
  form_.Tree.Select(Child(1, "Local Disk (C:)"));
  form_.ChangeSelectedFolderIcon();
  form_.Tree.Select(1);
  form_.ChangeSelectedFolderIcon();
  form_.Tree.Select(0);
  form_.ChangeSelectedFolderIcon();
  EXPECT_TRUE(services_.icons.PickerCalls().empty());
  EXPECT_FALSE(std::filesystem::exists(OnC("desktop.ini")));
}

TEST_F(FolderPageTest, AFolderPathOfFourCharactersPassesTheLengthTest) {
  MakeFolder("a");
  OpenAndSelect({"A"});
  ASSERT_EQ(NodeFolderPath(form_.Tree, form_.Tree.SelectedItem()), "C:\\A");
  services_.icons.AnswerPicker(u"y.ico", 2);
  form_.ChangeSelectedFolderIcon();
  EXPECT_EQ(services_.icons.PickerCalls().size(), 1u);
  EXPECT_TRUE(std::filesystem::exists(OnC("a/desktop.ini")));
}

TEST_F(FolderPageTest, ChangeOnAnotherPageDoesNotReachTheFolder) {
  MakeFolder("a");
  OpenAndSelect({"A"});
  services_.icons.AnswerPicker(u"y.ico", 2);
  form_.CmdMenu[2].Click();
  form_.CmdChange.Click();
  form_.CmdDefault.Click();
  EXPECT_TRUE(services_.icons.PickerCalls().empty());
}

// --- CmdDefault ---------------------------------------------------------------------------------

TEST_F(FolderPageTest, DefaultDeletesDesktopIniSetsTheArchiveAttributeAndRebuildsTheTree) {
  MakeFolder("a\\deep");
  const std::int32_t node = OpenAndSelect({"A"});
  services_.icons.AnswerPicker(u"C:\\icons\\blue.ico", 5);
  form_.ChangeSelectedFolderIcon();
  ASSERT_TRUE(std::filesystem::exists(OnC("a/desktop.ini")));
  ASSERT_EQ(form_.Tree.SelectedItem(), node);
  form_.CmdMenu[1].Click();
  form_.CmdDefault.Click();
  EXPECT_FALSE(std::filesystem::exists(OnC("a/desktop.ini")));
  EXPECT_EQ(drives_.GetFileAttributesA("C:\\A"), drives::kArchive | drives::kDirectory);
  // Built anew from the root: the drive closed again with its placeholder, Im16 from the start.
  EXPECT_EQ(form_.Tree.Item(1).Text, "My Computer");
  EXPECT_EQ(ChildTexts(Child(1, "Local Disk (C:)")), (std::vector<std::string>{"Dummy"}));
  EXPECT_EQ(form_.Im16.Count(), 3);
  EXPECT_EQ(form_.ActiveControl(), &form_.Tree);
  EXPECT_TRUE(services_.boxes.Boxes().empty());
}

TEST_F(FolderPageTest, DefaultOnAFolderWithoutDesktopIniOnlyResetsItsAttributesAndRebuilds) {
  MakeFolder("plain");
  testing::WriteFile(OnC("plain/keep.txt"), "x");
  drives_.SetFileAttributesA("C:\\plain", drives::kReadOnly | drives::kHidden | drives::kSystem);
  OpenAndSelect({"Plain"});
  form_.RestoreSelectedFolderIcon();
  EXPECT_EQ(drives_.GetFileAttributesA("C:\\plain"), drives::kArchive | drives::kDirectory);
  EXPECT_TRUE(std::filesystem::exists(OnC("plain/keep.txt")));
  EXPECT_EQ(form_.Tree.Count(), 3);
  EXPECT_TRUE(services_.boxes.Boxes().empty());
}

TEST_F(FolderPageTest, DefaultOnADriveNodeWorksOnTheLetterAndItsDesktopIniAsTheyStand) {
  MakeFolder("a");
  testing::WriteFile(OnC("desktop.ini"), "[.ShellClassInfo]\r\niconfile=x\r\n");
  Fill();
  form_.Tree.Select(Child(1, "Local Disk (C:)"));
  form_.RestoreSelectedFolderIcon();
  EXPECT_FALSE(std::filesystem::exists(OnC("desktop.ini")));
  EXPECT_EQ(drives_.GetFileAttributesA("C:"), drives::kArchive | drives::kDirectory);
  EXPECT_EQ(form_.Tree.Count(), 3);
}

TEST_F(FolderPageTest, DefaultOnTheRootSwallowsEveryFailureAndStillRebuilds) {
  MakeFolder("a");
  Fill();
  form_.Tree_Expand(Child(1, "Local Disk (C:)"));
  ASSERT_EQ(form_.Tree.Count(), 3);
  form_.Tree.Select(1);
  form_.RestoreSelectedFolderIcon();
  EXPECT_EQ(form_.Tree.Count(), 3);  // the root, drive C and its placeholder
  EXPECT_EQ(ChildTexts(Child(1, "Local Disk (C:)")), (std::vector<std::string>{"Dummy"}));
  form_.Tree.Select(0);
  form_.RestoreSelectedFolderIcon();
  EXPECT_EQ(form_.Tree.Count(), 3);
}

// --- the load routine ---------------------------------------------------------------------------

TEST_F(FolderPageTest, TheLoadRoutineBuildsTheTreeAndTheAppearancePageOpensItsRoot) {
  MakeFolder("windows");
  services_.PrepareLoad(scratch_ / "machine");
  form_.Form_Load();
  EXPECT_EQ(form_.Tree.Item(1).Text, "My Computer");
  EXPECT_EQ(ChildTexts(1), (std::vector<std::string>{"Local Disk (C:)"}));
  form_.CmdMenu[2].Click();
  EXPECT_EQ(form_.Tree.SelectedItem(), 1);
  EXPECT_TRUE(form_.Tree.Item(1).Expanded);
}

}  // namespace
}  // namespace quorvane
