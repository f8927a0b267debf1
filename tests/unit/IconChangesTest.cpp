// The icon page's changes over the portable services: staging a row with the picker, applying
// the staged rows of the visible tree, taking a row back to stock, and dropping a staging; with
// what reaches the registry, the shell, the busy display and the user.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "IcoFiles.h"
#include "base/Failure.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "PortableServices.h"
#include "ScratchFiles.h"
#include "platform/MemorySurface.h"

namespace quorvane {
namespace {

constexpr char kRecycleBin[] =
    "HKEY_CLASSES_ROOT\\CLSID\\{645FF040-5081-101B-9F08-00AA002F954E}\\DefaultIcon";
constexpr char kRecycleBinExplorer[] =
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\CLSID\\"
    "{645FF040-5081-101B-9F08-00AA002F954E}\\DefaultIcon";
constexpr char kMetrics[] = "HKEY_CURRENT_USER\\Control Panel\\Desktop\\WindowMetrics";
constexpr char kShellIcons[] =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons";
constexpr char kWindowsSecurity[] =
    "HKEY_CLASSES_ROOT\\CLSID\\{2559a1f2-21d7-11d4-bdaf-00c04f60b9f0}\\DefaultIcon";
constexpr char kRestart[] = "Please restart to apply the changes";

class IconChangesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    services_.PrepareLoad(root_.Path());
    testing::PreviewsInMemory(form_);
    Put(kMetrics, "Shell Icon Size", "32");
    // Two icon files of the user's: the picker's choices.
    red_ = (root_ / "red.ico").string();
    blue_ = (root_ / "blue.ico").string();
    ASSERT_TRUE(testing::WriteBytes(red_, testing::IcoBytes({testing::SolidImage(32, 24, 0xFF0000)})));
    ASSERT_TRUE(
        testing::WriteBytes(blue_, testing::IcoBytes({testing::SolidImage(32, 24, 0x0000FF)})));
    form_.Form_Load();
    ASSERT_EQ(form_.ILicons.Count(), 65);
    boxes_.Clear();
  }

  void Put(const std::string& key, const std::string& name, const std::string& value) {
    ASSERT_NE(AdvRegistryAccess(store_).WriteString(key, name, value), 0);
  }
  std::string Read(const std::string& key, const std::string& name) {
    return AdvRegistryAccess(store_).ReadString(key, name, "(none)");
  }
  // Selects the node of that text in the tree, as a click on it does, and runs the tree's Click.
  std::int32_t Select(ui::TreeView& tree, const std::string& text) {
    for (std::int32_t i = 1; i <= tree.Count(); ++i) {
      if (tree.Item(i).Text == text) {
        tree.Select(i);
        form_.ClickOf(tree);
        return i;
      }
    }
    ADD_FAILURE() << text << " is not in " << tree.Name();
    return 0;
  }
  IconRecord& Row(const std::string& name) {
    for (IconRecord& record : form_.IconRecords) {
      if (record.Name == name) return record;
    }
    throw std::logic_error("no row " + name);
  }
  // Opens the zone of the tree, as a click on the strip does.
  void OpenZone(std::int16_t x) {
    form_.CategoryClickX = x;
    form_.CategoryClickY = 30;
    form_.CmdWindow_Click();
  }
  std::uint32_t PreviewColour() {
    const ui::Pixels image = form_.lIcon.Image();
    if (image.Empty()) return 0;
    const auto centre = static_cast<std::size_t>(image.height / 2 * image.width + image.width / 2);
    return image.bgra[centre] & 0xFFFFFFu;
  }

  testing::ScratchFolder root_{"changes"};
  std::string red_;
  std::string blue_;
  testing::PortableServices services_;
  platform::portable::MemoryRegistry& store_ = services_.store;
  platform::portable::PortableEventLoop& events_ = services_.events;
  platform::portable::PortableIcons& icons_ = services_.icons;
  platform::portable::PortableSystemInfo& system_ = services_.system;
  platform::portable::PortableTray& tray_ = services_.tray;
  platform::portable::PortableMessageBoxes& boxes_ = services_.boxes;
  platform::portable::PortableNotification& notification_ = services_.notification;
  platform::portable::PortableApplication& application_ = services_.application;
  platform::portable::PortableForms& forms_ = services_.forms;
  platform::portable::RecordingShellRequests& shell_ = services_.shell;
  FrmMain form_;
  MainWindowScope installed_{form_};
};

std::u16string Wide(const std::string& text) { return std::u16string(text.begin(), text.end()); }

// A text value as the registry gives it back: with the terminator it was stored with.
std::string Stored(const std::string& text) { return text + std::string(1, '\0'); }

// --- staging ------------------------------------------------------------------------------------

TEST_F(IconChangesTest, ADoubleClickStagesTheChosenIconInTheRowAndTheNode) {
  const std::int32_t node = Select(form_.TvDesktop, "Recycle Bin (Empty)");
  const std::string before = Row("Recycle Bin (Empty)").Current;
  const std::string storedBefore = Read(kRecycleBin, "");
  icons_.AnswerPicker(Wide(red_), 0);
  form_.TvDesktop_DblClick();

  // The picker opened on the row's Current.
  ASSERT_EQ(icons_.PickerCalls().size(), 1u);
  const std::string path = before.substr(0, before.find(','));
  EXPECT_EQ(icons_.PickerCalls()[0].path, Wide(path));

  const IconRecord& row = Row("Recycle Bin (Empty)");
  EXPECT_EQ(row.Pending, red_ + ",0");
  EXPECT_EQ(row.Current, red_ + ",0");
  EXPECT_EQ(row.Backup, before);
  EXPECT_EQ(form_.ILicons.Count(), 66);
  EXPECT_EQ(row.ImageNumber, 66);
  const ui::Node& staged = form_.TvDesktop.Item(node);
  EXPECT_TRUE(staged.Bold);
  EXPECT_EQ(staged.Image, 66);
  EXPECT_EQ(staged.SelectedImage, 66);
  // The Tag keeps the number of the last fill, for CmdReset.
  EXPECT_NE(std::get<std::int32_t>(staged.Tag), 66);
  // The preview shows the new icon, red.
  EXPECT_EQ(PreviewColour(), 0xFF0000u);
  // Nothing left the program.
  EXPECT_EQ(Read(kRecycleBin, ""), storedBefore);
  EXPECT_TRUE(shell_.Requests().empty());
}

TEST_F(IconChangesTest, ACancelledPickerChangesNothing) {
  const std::int32_t node = Select(form_.TvDesktop, "Briefcase");
  const IconRecord before = Row("Briefcase");
  icons_.CancelPicker();
  form_.TvDesktop_DblClick();
  EXPECT_EQ(icons_.PickerCalls().size(), 1u);
  EXPECT_FALSE(form_.TvDesktop.Item(node).Bold);
  EXPECT_EQ(Row("Briefcase").Current, before.Current);
  EXPECT_EQ(Row("Briefcase").Pending, before.Pending);
  EXPECT_EQ(Row("Briefcase").Backup, "");
  EXPECT_EQ(form_.ILicons.Count(), 65);
}

TEST_F(IconChangesTest, TwoStagingsKeepTheFirstBackupAndAddAnImageEach) {
  Select(form_.TvDesktop, "Briefcase");
  const std::string original = Row("Briefcase").Current;
  icons_.AnswerPicker(Wide(red_), 0);
  form_.TvDesktop_DblClick();
  icons_.AnswerPicker(Wide(blue_), 0);
  form_.TvDesktop_DblClick();
  EXPECT_EQ(Row("Briefcase").Backup, original);
  EXPECT_EQ(Row("Briefcase").Current, blue_ + ",0");
  EXPECT_EQ(form_.ILicons.Count(), 67);
  EXPECT_EQ(PreviewColour(), 0x0000FFu);
}

TEST_F(IconChangesTest, OtherTreesStageWithoutTheImageNumber) {
  OpenZone(1800);
  ASSERT_TRUE(form_.TvStartMenu.Visible());
  const std::int32_t node = Select(form_.TvStartMenu, "Windows Security");
  const std::int16_t numberBefore = Row("Windows Security").ImageNumber;
  icons_.AnswerPicker(Wide(red_), 0);
  form_.TvStartMenu_DblClick();
  EXPECT_TRUE(form_.TvStartMenu.Item(node).Bold);
  EXPECT_EQ(form_.TvStartMenu.Item(node).Image, 66);
  EXPECT_EQ(Row("Windows Security").ImageNumber, numberBefore);
  EXPECT_EQ(Row("Windows Security").Pending, red_ + ",0");
}

TEST_F(IconChangesTest, AFileWithoutIconsStillStagesWithImageZero) {
  const std::int32_t node = Select(form_.TvDesktop, "Briefcase");
  const std::string nothing = (root_ / "nothing.txt").string();
  ASSERT_TRUE(testing::WriteBytes(nothing, "not an icon"));
  icons_.AnswerPicker(Wide(nothing), 0);
  form_.TvDesktop_DblClick();
  EXPECT_TRUE(form_.TvDesktop.Item(node).Bold);
  EXPECT_EQ(form_.TvDesktop.Item(node).Image, 0);
  EXPECT_EQ(Row("Briefcase").Pending, nothing + ",0");
}

TEST_F(IconChangesTest, APathWithACommaIsCutThereAndItsNumberReadLeniently) {
  Select(form_.TvDesktop, "Briefcase");
  Row("Briefcase").Current = "C:\\odd,7name.ico,3";
  icons_.CancelPicker();
  form_.TvDesktop_DblClick();
  ASSERT_EQ(icons_.PickerCalls().size(), 1u);
  EXPECT_EQ(icons_.PickerCalls()[0].path, u"C:\\odd");
  EXPECT_EQ(icons_.PickerCalls()[0].index, 7);
}

TEST_F(IconChangesTest, AnEmptyCurrentIsPassedOverOnTheDesktopTreeOnlyWhenClicked) {
  Select(form_.TvDesktop, "Briefcase");
  Row("Briefcase").Current = "";
  EXPECT_NO_THROW(form_.TvDesktop_Click());
  OpenZone(1800);
  Select(form_.TvStartMenu, "Windows Security");
  Row("Windows Security").Current = "";
  EXPECT_THROW(form_.TvStartMenu_Click(), Failure);
}

TEST_F(IconChangesTest, ClickOnATextWithoutARowLeavesThePreview) {
  const std::uint32_t before = PreviewColour();
  const std::int32_t stray = form_.TvDesktop.Add("Not a row", 1, 1);
  form_.TvDesktop.Select(stray);
  form_.TvDesktop_Click();
  EXPECT_EQ(PreviewColour(), before);
}

TEST_F(IconChangesTest, CmdChangeOpensThePickerOfTheSelectedRowOnlyOnTheIconPage) {
  form_.TvDesktop.Select(0);
  form_.CmdChange_Click();
  EXPECT_TRUE(icons_.PickerCalls().empty());

  Select(form_.TvDesktop, "Briefcase");
  icons_.AnswerPicker(Wide(red_), 0);
  form_.CmdChange_Click();
  EXPECT_EQ(icons_.PickerCalls().size(), 1u);
  EXPECT_EQ(Row("Briefcase").Pending, red_ + ",0");

  int folderChanges = 0;
  form_.ChangeFolderIcon = [&] { ++folderChanges; };
  form_.CmdMenu_Click(1);
  form_.CmdChange_Click();
  EXPECT_EQ(folderChanges, 1);
  form_.CmdMenu_Click(3);
  form_.CmdChange_Click();
  EXPECT_EQ(folderChanges, 1);
  EXPECT_EQ(icons_.PickerCalls().size(), 1u);
}

// --- applying ---------------------------------------------------------------------------------

TEST_F(IconChangesTest, ApplyWritesTheStagedRowRefreshesTheShellAndRebuilds) {
  Select(form_.TvDesktop, "Recycle Bin (Empty)");
  icons_.AnswerPicker(Wide(red_), 0);
  form_.TvDesktop_DblClick();
  const int yieldsBefore = events_.Yields();
  form_.CmdApply_Click();

  // The row's keys, in the apply order: A default, A "Empty", C default, C "Empty".
  EXPECT_EQ(Read(kRecycleBin, ""), Stored(red_ + ",0"));
  EXPECT_EQ(Read(kRecycleBin, "Empty"), Stored(red_ + ",0"));
  EXPECT_EQ(Read(kRecycleBinExplorer, ""), Stored(red_ + ",0"));
  EXPECT_EQ(Read(kRecycleBinExplorer, "Empty"), Stored(red_ + ",0"));
  // One full shell refresh for the one row.
  const std::vector<std::string> texts = shell_.Texts();
  ASSERT_FALSE(texts.empty());
  EXPECT_EQ(texts.front(), "FindWindowExA(0, 0, \"Progman\", null) = 0");
  EXPECT_EQ(std::count_if(texts.begin(), texts.end(),
                          [](const std::string& t) { return t.rfind("SHChangeNotify", 0) == 0; }),
            1);
  // The busy display around it, and the message at the end.
  EXPECT_EQ(application_.Requests(), (std::vector<std::string>{"pointer 11", "pointer 0"}));
  EXPECT_EQ(forms_.Requests(),
            (std::vector<std::string>{"Show FrmWorking modeless, owner 0", "Unload FrmWorking"}));
  EXPECT_FALSE(forms_.Showing("FrmWorking"));
  ASSERT_EQ(boxes_.Boxes().size(), 1u);
  EXPECT_EQ(boxes_.Boxes()[0].prompt, kRestart);
  EXPECT_EQ(boxes_.Boxes()[0].buttons, platform::msgbox::kInformation);
  EXPECT_GE(events_.Yields() - yieldsBefore, 3);
  // The rebuild: the row reads the new location, nothing is bold, one image a row again.
  EXPECT_EQ(Row("Recycle Bin (Empty)").Current, Stored(red_ + ",0"));
  EXPECT_EQ(Row("Recycle Bin (Empty)").Backup, "");
  EXPECT_EQ(form_.ILicons.Count(), 65);
  ASSERT_EQ(form_.TvDesktop.Count(), 5);
  for (std::int32_t i = 1; i <= form_.TvDesktop.Count(); ++i) {
    EXPECT_FALSE(form_.TvDesktop.Item(i).Bold);
  }
  EXPECT_TRUE(form_.TvDesktop.Visible());
  EXPECT_EQ(form_.CategoryClickX, 30);
  EXPECT_EQ(form_.CategoryClickY, 30);
  EXPECT_EQ(tray_.Icons().size(), 1u);
}

TEST_F(IconChangesTest, ApplyWritesOnlyTheVisibleTreeAndTheOtherStagingIsLost) {
  OpenZone(1800);
  Select(form_.TvStartMenu, "Windows Security");
  const std::string securityBefore = Read(kWindowsSecurity, "");
  icons_.AnswerPicker(Wide(red_), 0);
  form_.TvStartMenu_DblClick();
  OpenZone(30);
  Select(form_.TvDesktop, "Recycle Bin (Empty)");
  icons_.AnswerPicker(Wide(blue_), 0);
  form_.TvDesktop_DblClick();
  form_.CmdApply_Click();
  EXPECT_EQ(Read(kRecycleBin, ""), Stored(blue_ + ",0"));
  EXPECT_EQ(Read(kWindowsSecurity, ""), securityBefore);
  EXPECT_NE(Row("Windows Security").Current, red_ + ",0");
}

TEST_F(IconChangesTest, ApplyFromTheStartMenuReopensItsZone) {
  OpenZone(1800);
  Select(form_.TvStartMenu, "Windows Security");
  icons_.AnswerPicker(Wide(red_), 0);
  form_.TvStartMenu_DblClick();
  form_.CmdApply_Click();
  EXPECT_EQ(Read(kWindowsSecurity, ""), Stored(red_ + ",0"));
  EXPECT_EQ(form_.CategoryClickX, 1800);
  EXPECT_TRUE(form_.TvStartMenu.Visible());
  EXPECT_FALSE(form_.TvDesktop.Visible());
}

TEST_F(IconChangesTest, ApplyWithNothingStagedWritesNothingButStillRebuildsAndTellsTheUser) {
  form_.CmdApply_Click();
  EXPECT_TRUE(shell_.Requests().empty());
  EXPECT_EQ(application_.Requests().size(), 2u);
  EXPECT_EQ(forms_.Requests().size(), 2u);
  ASSERT_EQ(boxes_.Boxes().size(), 1u);
  EXPECT_EQ(boxes_.Boxes()[0].prompt, kRestart);
  EXPECT_EQ(form_.ILicons.Count(), 65);
}

TEST_F(IconChangesTest, ApplyOnTheFolderPageDoesNothingAtAll) {
  form_.CmdMenu_Click(1);
  form_.CmdApply_Click();
  EXPECT_TRUE(application_.Requests().empty());
  EXPECT_TRUE(forms_.Requests().empty());
  EXPECT_TRUE(boxes_.Boxes().empty());
  EXPECT_EQ(form_.CategoryClickY, 30);
}

TEST_F(IconChangesTest, ApplyOnTheAppearancePageHandsOverAndAsksForARestartOnlyWhenNeeded) {
  int applied = 0;
  form_.ApplyAppearance = [&] { ++applied; };
  form_.CmdMenu_Click(2);
  // The load's layout of the spacing asked for a restart already; the first apply shows it.
  EXPECT_EQ(form_.mRestartNeeded, -1);
  form_.mRestartNeeded = 0;
  form_.CmdApply_Click();
  EXPECT_EQ(applied, 1);
  EXPECT_TRUE(boxes_.Boxes().empty());
  form_.mRestartNeeded = -1;
  form_.CmdApply_Click();
  EXPECT_EQ(applied, 2);
  ASSERT_EQ(boxes_.Boxes().size(), 1u);
  EXPECT_EQ(boxes_.Boxes()[0].prompt, "Please restart to apply the chages");
  EXPECT_EQ(form_.mRestartNeeded, 0);
  EXPECT_TRUE(application_.Requests().empty());
}

TEST_F(IconChangesTest, AMissingShellIconSizeStopsApplyAfterTheFirstRowWithItsMessages) {
  ASSERT_NE(AdvRegistryAccess(store_).KillValue(kMetrics, "Shell Icon Size"), 0);
  Select(form_.TvDesktop, "Recycle Bin (Empty)");
  icons_.AnswerPicker(Wide(red_), 0);
  form_.TvDesktop_DblClick();
  EXPECT_THROW(form_.CmdApply_Click(), Failure);
  // The row was written before the refresh failed; no rollback, no rebuild.
  EXPECT_EQ(Read(kRecycleBin, ""), Stored(red_ + ",0"));
  ASSERT_EQ(boxes_.Boxes().size(), 2u);
  EXPECT_EQ(boxes_.Boxes()[0].prompt, "Error getting subkey length.");
  EXPECT_EQ(boxes_.Boxes()[1].prompt, "Error getting subkey value.");
  EXPECT_EQ(form_.ILicons.Count(), 66);
}

// --- default ------------------------------------------------------------------------------------

TEST_F(IconChangesTest, DefaultTakesTheSelectedRowBackToStockEvenUnstaged) {
  Put(kWindowsSecurity, "", "C:\\mine.ico,4");
  form_.CmdMenu_Click(0);
  OpenZone(1800);
  Select(form_.TvStartMenu, "Windows Security");
  form_.CmdDefault_Click();
  EXPECT_EQ(Read(kWindowsSecurity, ""), Stored(Row("Windows Security").Default));
  EXPECT_EQ(Row("Windows Security").Current, Stored(Row("Windows Security").Default));
  EXPECT_EQ(form_.CategoryClickX, 1800);
  EXPECT_TRUE(form_.TvStartMenu.Visible());
  EXPECT_EQ(application_.Requests(), (std::vector<std::string>{"pointer 11", "pointer 0"}));
  EXPECT_EQ(forms_.Requests(),
            (std::vector<std::string>{"Show FrmWorking modeless, owner 0", "Unload FrmWorking"}));
  EXPECT_FALSE(forms_.Showing("FrmWorking"));
  ASSERT_EQ(boxes_.Boxes().size(), 1u);
  EXPECT_EQ(boxes_.Boxes()[0].prompt, kRestart);
}

TEST_F(IconChangesTest, DefaultOnHardDiskRemovesItsShellIconAndKeepsTheCategory) {
  Put(kShellIcons, "8", "C:\\disk.ico,0");
  // The tree of drives shown alone, as the visible tree.
  for (ui::TreeView* tree : {&form_.TvDesktop, &form_.TvStartMenu, &form_.TvExplore,
                             &form_.TvFileType, &form_.TvControlPanel}) {
    tree->Visible(tree == &form_.TvExplore);
  }
  form_.CategoryClickX = 1234;
  Select(form_.TvExplore, "Hard Disk");
  form_.CmdDefault_Click();
  EXPECT_EQ(Read(kShellIcons, "8"), "(none)");
  // TvExplore stores no category: the position from before stays.
  EXPECT_EQ(form_.CategoryClickX, 1234);
}

TEST_F(IconChangesTest, DefaultOnANodeWithoutARowWritesNothingAndStillRebuilds) {
  const std::int32_t stray = form_.TvDesktop.Add("Not a row", 1, 1);
  form_.TvDesktop.Select(stray);
  form_.CmdDefault_Click();
  EXPECT_TRUE(shell_.Requests().empty());
  ASSERT_EQ(boxes_.Boxes().size(), 1u);
  EXPECT_EQ(form_.TvDesktop.Count(), 5);  // rebuilt: the stray node is gone
}

TEST_F(IconChangesTest, DefaultHandsOverOnTheFolderAndAppearancePagesWithoutAMessage) {
  int folder = 0;
  int appearance = 0;
  form_.RestoreFolderIcon = [&] { ++folder; };
  form_.ApplyAppearanceDefaults = [&] { ++appearance; };
  form_.CmdMenu_Click(1);
  form_.CmdDefault_Click();
  form_.CmdMenu_Click(2);
  form_.CmdDefault_Click();
  EXPECT_EQ(folder, 1);
  EXPECT_EQ(appearance, 1);
  EXPECT_TRUE(boxes_.Boxes().empty());
  EXPECT_TRUE(application_.Requests().empty());
}

// --- reset --------------------------------------------------------------------------------------

TEST_F(IconChangesTest, ResetDropsTheStagingOfTheSelectedNodeOnly) {
  const std::int32_t node = Select(form_.TvDesktop, "Briefcase");
  const std::int16_t filled = form_.TvDesktop.Item(node).Image;
  const std::string original = Row("Briefcase").Current;
  const std::uint32_t previewBefore = PreviewColour();
  icons_.AnswerPicker(Wide(red_), 0);
  form_.TvDesktop_DblClick();
  ASSERT_EQ(PreviewColour(), 0xFF0000u);

  form_.CmdReset_Click();
  const ui::Node& reset = form_.TvDesktop.Item(node);
  EXPECT_FALSE(reset.Bold);
  EXPECT_EQ(reset.Image, filled);
  EXPECT_EQ(reset.SelectedImage, filled);
  EXPECT_EQ(Row("Briefcase").Current, original);
  // Pending and Backup stay as the staging left them.
  EXPECT_EQ(Row("Briefcase").Pending, red_ + ",0");
  EXPECT_EQ(Row("Briefcase").Backup, original);
  EXPECT_EQ(PreviewColour(), previewBefore);
  // Nothing but the window: no registry, no shell, no busy display, no message.
  EXPECT_TRUE(shell_.Requests().empty());
  EXPECT_TRUE(application_.Requests().empty());
  EXPECT_TRUE(boxes_.Boxes().empty());
}

TEST_F(IconChangesTest, ResetOnANodeThatIsNotBoldDoesNothing) {
  const std::int32_t node = Select(form_.TvDesktop, "Briefcase");
  form_.TvDesktop.Item(node).Image = 3;
  form_.CmdReset_Click();
  EXPECT_EQ(form_.TvDesktop.Item(node).Image, 3);
}

}  // namespace
}  // namespace quorvane
