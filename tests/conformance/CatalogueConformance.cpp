// The catalogue and its trees over the store of the build: the portable one natively, the real
// registry under Wine, on whichever system the process is told it runs on ("Windows Vista" by
// Wine's default; "Windows XP" when run under the name that the platform's application
// defaults give that version).
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "Support.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "icons/Catalogue.h"
#include "icons/FillTree.h"
#include "platform/MemorySurface.h"

namespace quorvane::testing {
namespace {

constexpr char kMyComputer[] =
    "HKEY_CLASSES_ROOT\\CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\DefaultIcon";

class CatalogueConformance : public ::testing::Test {
 protected:
  void SetUp() override {
    // A machine without "My Computer"'s icon ends the catalogue at that row; give it one, as
    // Windows has, for the time of the test.
    AdvRegistryAccess reg(Store());
    if (reg.ValueExists(kMyComputer, "") == kFalse) {
      reg.WriteString(kMyComputer, "@", "%SystemRoot%\\explorer.exe,0");
      madeMyComputer_ = true;
    }
    core::gSystemFolder = core::GetSpecialFolder(0x29);
    core::gProgramFilesFolder = core::GetSpecialFolder(0x26);
    form_.OSName = core::GetOSName();
    for (ui::PictureBox* box : {&form_.sIcon, &form_.lIcon, &form_.mIcon}) {
      box->UseSurface(std::make_shared<platform::MemorySurface>());
    }
  }
  void TearDown() override {
    if (madeMyComputer_) AdvRegistryAccess(Store()).KillKey(kMyComputer);
  }
  bool Vista() const { return form_.OSName == "Windows Vista"; }

  bool madeMyComputer_ = false;
  FrmMain form_;
  MainWindowScope installed_{form_};
};

TEST_F(CatalogueConformance, EveryRowAndItsImageOnThisSystem) {
  ASSERT_NO_THROW(LoadIconRecords(form_));
  ASSERT_EQ(form_.ILicons.Count(), 65);
  for (std::int16_t i = 1; i <= 65; ++i) {
    EXPECT_EQ(form_.ILicons.Item(i).picture.width, 36) << i;  // the large preview's size
  }
  EXPECT_EQ(form_.IconRecords[27].Name, "My Computer");
  EXPECT_EQ(form_.IconRecords[27].Key, kMyComputer);
  EXPECT_EQ(form_.IconRecords[28].Key,
            Vista() ? "HKEY_CLASSES_ROOT\\CLSID\\{871C5380-42A0-1069-A2EA-08002B30309D}\\DefaultIcon"
                    : "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\"
                      "CLSID\\{871C5380-42A0-1069-A2EA-08002B30309D}\\DefaultIcon");
  EXPECT_EQ(form_.IconRecords[4].Key, Vista() ? "HKEY_CLASSES_ROOT\\WMP11.AssocFile.AVI\\DefaultIcon"
                                              : "HKEY_CLASSES_ROOT\\AVIFile\\DefaultIcon");
  EXPECT_EQ(form_.IconRecords[0].Default,
            Vista() ? "%SystemRoot%\\System32\\imageres.dll,64" : "shimgvw.dll,1");
  EXPECT_EQ(form_.IconRecords[62].Name, Vista() ? "" : "Scanners and Cameras");
  EXPECT_EQ(form_.IconRecords[26].ValueName, "34");
  // Every row that was built has a location with a comma, but the desktop row may lack one.
  for (std::size_t row = 0; row < 65; ++row) {
    const IconRecord& r = form_.IconRecords[row];
    if (r.Name.empty() || row == 26) continue;
    EXPECT_NE(r.Current.find(','), std::string::npos) << row << " " << r.Current;
  }
  // A file-type row that the store doesn't know shows the bare system folder.
  const IconRecord& ace = form_.IconRecords[15];
  if (AdvRegistryAccess(Store()).KeyExists("HKEY_CLASSES_ROOT\\WinRAR\\DefaultIcon") == kFalse) {
    EXPECT_EQ(ace.Current, core::gSystemFolder + "SHELL32.dll,0");
  }
}

#ifdef _WIN32
// Under the real shell the stock rows draw real icons from the system's libraries: the image of
// "Default Icon" (shell32.dll, 0, from the system folder) is more than the box's back colour.
TEST_F(CatalogueConformance, StockRowsDrawTheSystemsOwnIcons) {
  LoadIconRecords(form_);
  const ui::Pixels& image = form_.ILicons.Item(54).picture;  // row 23, "Default Icon"
  int drawn = 0;
  for (const std::uint32_t p : image.bgra) drawn += (p & 0xFFFFFFu) != 0xFFFFFFu ? 1 : 0;
  EXPECT_GT(drawn, 50);
}
#endif

TEST_F(CatalogueConformance, TheTreesOnThisSystem) {
  LoadIconRecords(form_);
  FillCatalogueTrees();
  EXPECT_EQ(form_.TvDesktop.Count(), Vista() ? 5 : 6);
  EXPECT_EQ(form_.TvStartMenu.Count(), Vista() ? 5 : 6);
  EXPECT_EQ(form_.TvExplore.Count(), 16);
  EXPECT_EQ(form_.TvFileType.Count(), 26);
  EXPECT_EQ(form_.TvControlPanel.Count(), Vista() ? 8 : 9);
  // Every node leads to a row by its text.
  for (const ui::TreeView* tree : {&form_.TvDesktop, &form_.TvStartMenu, &form_.TvExplore,
                                   &form_.TvFileType, &form_.TvControlPanel}) {
    for (std::int32_t i = 1; i <= tree->Count(); ++i) {
      EXPECT_GE(FindIconRecord(form_, tree->Item(i).Text), 0) << tree->Item(i).Text;
    }
  }
}

}  // namespace
}  // namespace quorvane::testing
