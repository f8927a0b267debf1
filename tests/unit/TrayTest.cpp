// The tray icon's events as PicPopup decodes them, the menu of FrmMenu that a right click pops
// up, its three items handing over to the main window, and the close of the program from
// PicClose, over the portable services.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <string>
#include <vector>

#include "appearance/ChangeSliderBG.h"
#include "core/FrmMain.h"
#include "core/FrmMainTray.h"
#include "core/FrmMenu.h"
#include "core/MainModule.h"
#include "core/mdlTray.h"
#include "platform/EventLoop.h"
#include "platform/Service.h"
#include "stores/iniReadWrite.h"
#include "ui/Menu.h"
#include "wallpaper/MWallpaper.h"

#include "PortableServices.h"
#include "ScratchFiles.h"

namespace quorvane {
namespace {

using ::testing::ElementsAre;

// Yields written into the journal the tray and the application share.
class JournalEvents final : public platform::EventLoop {
 public:
  explicit JournalEvents(std::vector<std::string>& journal) : journal_(journal) {}
  void DoEvents() override { journal_.push_back("yield"); }

 private:
  std::vector<std::string>& journal_;
};

// The platform's mouse messages and the program's word for each, in the order they are compared.
struct Expected {
  int message;
  const char* name;
  core::TrayAction action;
};
const Expected kTable[] = {
    {512, "MouseMove", core::TrayAction::None},       {514, "Left Up", core::TrayAction::None},
    {513, "LeftDown", core::TrayAction::None},        {515, "LeftDbClick", core::TrayAction::ShowMain},
    {520, "MiddleUp", core::TrayAction::None},        {519, "MiddleDown", core::TrayAction::None},
    {521, "MiddleDbClick", core::TrayAction::None},   {517, "RightUp", core::TrayAction::PopupMenu},
    {516, "RightDown", core::TrayAction::None},       {518, "RightDbClick", core::TrayAction::None},
};

// X as the binding gives it for a callback whose mouse message is `message`: pixels at 15 twips.
float TwipsFor(int message) { return static_cast<float>(message * 15); }

TEST(TrayDecodingTest, TheTableInItsOrder) {
  const auto events = core::TrayEvents();
  ASSERT_EQ(events.size(), std::size(kTable));
  for (std::size_t i = 0; i < events.size(); ++i) {
    EXPECT_EQ(events[i].message, static_cast<float>(kTable[i].message)) << i;
    EXPECT_STREQ(events[i].name, kTable[i].name) << i;
    EXPECT_EQ(events[i].action, kTable[i].action) << i;
  }
}

TEST(TrayDecodingTest, EveryMessageOfTheTableIsFoundFromItsTwips) {
  for (const Expected& entry : kTable) {
    const float message = core::TrayMessageOf(TwipsFor(entry.message));
    EXPECT_EQ(message, static_cast<float>(entry.message));
    const core::TrayEvent* event = core::DecodeTrayEvent(message);
    ASSERT_NE(event, nullptr) << entry.message;
    EXPECT_STREQ(event->name, entry.name);
  }
}

TEST(TrayDecodingTest, PositionsThatAreNoWholePixelMatchNothing) {
  for (const Expected& entry : kTable) {
    for (float offset : {1.0F, 7.0F, 7.5F, 14.0F, -1.0F, -8.0F}) {
      const float message = core::TrayMessageOf(TwipsFor(entry.message) + offset);
      EXPECT_NE(std::floor(message), message) << entry.message << " + " << offset;
      EXPECT_EQ(core::DecodeTrayEvent(message), nullptr) << entry.message << " + " << offset;
    }
  }
}

TEST(TrayDecodingTest, ValuesJustBesideAnEntryMatchNothing) {
  for (const Expected& entry : kTable) {
    const float value = static_cast<float>(entry.message);
    EXPECT_EQ(core::DecodeTrayEvent(std::nextafter(value, 0.0F)), nullptr) << entry.message;
    EXPECT_EQ(core::DecodeTrayEvent(std::nextafter(value, 10000.0F)), nullptr) << entry.message;
  }
  for (int other : {0, 1, 511, 522, 0x204 + 0x100, 0x400, -517}) {
    EXPECT_EQ(core::DecodeTrayEvent(static_cast<float>(other)), nullptr) << other;
  }
  EXPECT_EQ(core::DecodeTrayEvent(std::nanf("")), nullptr);
}

TEST(TrayDecodingTest, TheComparisonIsOfBitPatterns) {
  // Every entry matches only itself; negative zero and zero are two patterns, and neither is in
  // the table.
  for (const Expected& entry : kTable) {
    const core::TrayEvent* event = core::DecodeTrayEvent(static_cast<float>(entry.message));
    ASSERT_NE(event, nullptr);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(event->message),
              std::bit_cast<std::uint32_t>(static_cast<float>(entry.message)));
  }
  EXPECT_EQ(core::DecodeTrayEvent(-0.0F), nullptr);
}

// --- the main window's answers -----------------------------------------------------------------

class TrayTest : public ::testing::Test {
 protected:
  void SetUp() override {
    core::gTrayIcon = platform::NotifyIconData{};
    services_.tray.Journal(&journal_);
    services_.application.Journal(&journal_);
    services_.notification.Journal(&journal_);
  }

  void Event(int message) { form_.PicPopup_MouseMove(0, 0, TwipsFor(message), 0.0F); }

  testing::PortableServices services_;
  std::vector<std::string> journal_;
  JournalEvents events_{journal_};
  platform::ScopedService<platform::EventLoop> eventsInstalled_{events_};
  FrmMain form_;
  MainWindowScope scope_{form_};
};

TEST_F(TrayTest, ALeftDoubleClickShowsTheWindow) {
  form_.Visible(false);
  Event(515);
  EXPECT_TRUE(form_.Visible());
  EXPECT_THAT(services_.application.Requests(), ElementsAre("show", "focus"));
  EXPECT_TRUE(services_.menus.Requests().empty());
  EXPECT_FALSE(form_.TrayMenuFormLoaded());
}

TEST_F(TrayTest, ADoubleClickLeavesShowHideToVisibility) {
  form_.Visible(false);
  Event(515);
  services_.menus.Choose("mnuShowHide");
  Event(517);
  EXPECT_FALSE(form_.Visible());  // shown by the double click, so the item hides
  EXPECT_EQ(services_.application.Requests().back(), "hide");
}

TEST_F(TrayTest, EveryOtherMessageDoesNothing) {
  form_.Visible(false);
  for (int message : {512, 514, 513, 520, 519, 521, 516, 518, 511, 522, 0}) {
    Event(message);
  }
  form_.PicPopup_MouseMove(0, 0, TwipsFor(517) + 1.0F, 0.0F);  // not a whole pixel
  form_.PicPopup_MouseMove(0, 0, TwipsFor(515) - 7.5F, 0.0F);
  EXPECT_FALSE(form_.Visible());
  EXPECT_TRUE(services_.application.Requests().empty());
  EXPECT_TRUE(services_.menus.Requests().empty());
  EXPECT_FALSE(form_.TrayMenuFormLoaded());
  EXPECT_TRUE(journal_.empty());
}

TEST_F(TrayTest, ARightButtonsReleasePopsUpTheMenuFromTheMainWindow) {
  Event(517);
  EXPECT_THAT(services_.menus.Requests(), ElementsAre("PopupMenu mnuFile from FrmMain: none"));
  EXPECT_TRUE(form_.TrayMenuFormLoaded());
  EXPECT_FALSE(form_.TrayMenuForm().Visible());
}

TEST_F(TrayTest, TheMenuFormIsMadeOnceAndKept) {
  EXPECT_FALSE(form_.TrayMenuFormLoaded());
  Event(517);
  FrmMenu* first = &form_.TrayMenuForm();
  Event(517);
  Event(517);
  EXPECT_EQ(&form_.TrayMenuForm(), first);
  EXPECT_TRUE(first->Loaded());
  EXPECT_FALSE(first->Visible());
  EXPECT_EQ(services_.menus.Requests().size(), 3u);
}

TEST_F(TrayTest, ShowHideGoesByVisibilityAlone) {
  form_.Visible(false);
  services_.menus.Choose("mnuShowHide");
  Event(517);
  EXPECT_TRUE(form_.Visible());
  EXPECT_THAT(services_.application.Requests(), ElementsAre("show", "focus"));
  services_.menus.Choose("mnuShowHide");
  Event(517);
  EXPECT_FALSE(form_.Visible());
  EXPECT_THAT(services_.application.Requests(), ElementsAre("show", "focus", "hide"));
  EXPECT_THAT(services_.menus.Requests(),
              ElementsAre("PopupMenu mnuFile from FrmMain: mnuShowHide",
                          "PopupMenu mnuFile from FrmMain: mnuShowHide"));
  EXPECT_TRUE(services_.notification.ShownSoFar().empty());
}

TEST_F(TrayTest, ChangeWallpaperRunsTheTickAtOnce) {
  testing::ScratchFolder scratch{"tray"};
  core::gDataFolder = scratch.Path().string() + "\\";
  const std::string index = core::gDataFolder + "Files.ini";
  WriteIniValue("Count", "Total", "1", index);
  WriteIniValue("Files", "1", " ", index);
  gWallpaperEnable = -1;
  gWallpaperInterval = 30;
  gWallpaperOrder = 1;
  form_.mTickCount = 0;
  form_.mCurrentIndex = 0;
  services_.menus.Choose("mnuChangeWallpaper");
  Event(517);
  // The count reached the interval in this one tick: the change ran and started the count again.
  EXPECT_EQ(form_.mTickCount, 0);
  EXPECT_EQ(form_.mCurrentIndex, 1);
  // A minute's tick alone only counts.
  form_.Timer1_Timer();
  EXPECT_EQ(form_.mTickCount, 1);
  EXPECT_EQ(form_.mCurrentIndex, 1);
  gWallpaperEnable = 0;
}

TEST_F(TrayTest, ExitRemovesTheIconTwiceBetweenYieldsAndEnds) {
  std::uint32_t window = 0x55;
  core::AddToTray(window, 6, "Quorvane", 0x200);
  journal_.clear();
  services_.menus.Choose("mnuExit");
  Event(517);
  EXPECT_THAT(journal_, ElementsAre("yield", "tray delete", "yield", "yield", "tray delete",
                                    "yield", "application end"));
  EXPECT_TRUE(services_.tray.Icons().empty());
  EXPECT_TRUE(services_.application.Ended());
  EXPECT_TRUE(services_.application.MainWindowLoaded());  // nothing unloaded
}

TEST_F(TrayTest, ADismissedMenuRunsNothing) {
  form_.Visible(false);
  services_.menus.Choose("");
  Event(517);
  services_.menus.Choose("mnuSeparator");
  Event(517);
  EXPECT_FALSE(form_.Visible());
  EXPECT_TRUE(services_.application.Requests().empty());
}

TEST_F(TrayTest, AFailureInTheMenuIsPassedOver) {
  // Without a menus service the pop-up fails; the handler goes on and nothing leaves it.
  platform::Menus* previous = platform::Install<platform::Menus>(nullptr);
  EXPECT_NO_THROW(Event(517));
  platform::Install<platform::Menus>(previous);
  EXPECT_TRUE(form_.TrayMenuFormLoaded());
}

// Picture1's window with its procedure replaced and the slider's brush made, as the load leaves
// them; gives the window's own procedure.
std::intptr_t SetUpSliderBackground(FrmMain& form, testing::PortableServices& services) {
  auto& backgrounds = services.adapters.PageBackgrounds();
  std::uint32_t picture1 = backgrounds.MakeWindow([](auto...) { return std::intptr_t{0}; });
  const std::intptr_t own = backgrounds.ProcedureOf(picture1);
  form.Picture1.hWnd = picture1;
  SubclassSliderParent(picture1);
  std::uint32_t white = 0xFFFFFF;
  bool recreate = false;
  CreateSliderBrush(white, recreate);
  return own;
}

TEST_F(TrayTest, PicCloseGivesTheSliderBackgroundBackBeforeTheUnload) {
  std::uint32_t window = 5;
  core::AddToTray(window, 6, "Quorvane", 0x200);
  const std::intptr_t own = SetUpSliderBackground(form_, services_);
  auto& backgrounds = services_.adapters.PageBackgrounds();
  ASSERT_NE(backgrounds.ProcedureOf(form_.Picture1.hWnd), own);
  ASSERT_EQ(backgrounds.LiveBrushes(), 1u);
  journal_.clear();
  form_.PicClose_Click();
  EXPECT_THAT(journal_, ElementsAre("yield", "tray delete", "yield", "yield", "tray delete",
                                    "yield", "application hide", "application unload",
                                    "application end"));
  EXPECT_EQ(backgrounds.ProcedureOf(form_.Picture1.hWnd), own);
  EXPECT_EQ(backgrounds.LiveBrushes(), 0u);
}

TEST_F(TrayTest, ExitLeavesTheSliderBackgroundInPlace) {
  const std::intptr_t own = SetUpSliderBackground(form_, services_);
  auto& backgrounds = services_.adapters.PageBackgrounds();
  services_.menus.Choose("mnuExit");
  Event(517);
  EXPECT_TRUE(services_.application.Ended());
  EXPECT_NE(backgrounds.ProcedureOf(form_.Picture1.hWnd), own);
  EXPECT_EQ(backgrounds.LiveBrushes(), 1u);
  // Given back here, so that the next case starts without them.
  std::uint32_t picture1 = form_.Picture1.hWnd;
  UnsubclassSliderParent(picture1);
  DeleteSliderBrush();
}

// --- FrmMenu's design ---------------------------------------------------------------------------

TEST(FrmMenuTest, TheMenuHoldsThreeItemsWithASeparatorBeforeTheLast) {
  testing::PortableServices services;
  FrmMenu form;
  EXPECT_EQ(form.Name(), "FrmMenu");
  EXPECT_EQ(form.mnuFile.Parent(), nullptr);
  std::vector<std::string> names;
  std::vector<std::string> captions;
  for (const ui::Menu* item : form.mnuFile.Items()) {
    names.push_back(item->Name());
    captions.push_back(item->Caption());
    EXPECT_EQ(item->Parent(), &form.mnuFile);
  }
  EXPECT_THAT(names, ElementsAre("mnuShowHide", "mnuChangeWallpaper", "mnuSeparator", "mnuExit"));
  EXPECT_THAT(captions, ElementsAre("Show/Hide", "Change Wallpaper", "-", "Exit"));
  EXPECT_TRUE(form.mnuSeparator.IsSeparator());
  EXPECT_FALSE(form.mnuExit.IsSeparator());
  EXPECT_EQ(form.FindControl("mnuExit"), &form.mnuExit);
  EXPECT_FALSE(form.Visible());
}

TEST(FrmMenuTest, OfficeMenuCarriesTheStoredFaceAndColours) {
  testing::PortableServices services;
  FrmMenu form;
  const ui::OfficeMenu* style = ui::OfficeMenuOf(form.mnuShowHide);
  ASSERT_EQ(style, &form.OfficeMenu1);
  EXPECT_EQ(style->Font, "Tahoma");
  EXPECT_EQ(style->drawingstyle, 4);
  // 0xBBGGRR, from the design's RGB.
  EXPECT_EQ(style->arrowcolor, 0x000000u);
  EXPECT_EQ(style->backgroundcolor, 0xFAFCFDu);
  EXPECT_EQ(style->bordercolor, 0x7B878Au);
  EXPECT_EQ(style->checkfillcolor, 0xE9E7E3u);
  EXPECT_EQ(style->checkmarkcolor, 0x000000u);
  EXPECT_EQ(style->disabledicontintcolor, 0xA4B1B5u);
  EXPECT_EQ(style->iconshadowcolor, 0xB29E92u);
  EXPECT_EQ(style->menubarbackgroundcolor, 0xD8E9ECu);
  EXPECT_EQ(style->menubartextcolor, 0x000000u);
  EXPECT_EQ(style->selectedarrowcolor, 0x000000u);
  EXPECT_EQ(style->selectedcheckbordercolor, 0xC56A31u);
  EXPECT_EQ(style->selectedcheckfillcolor, 0xE3B599u);
  EXPECT_EQ(style->selectedmenubordercolor, 0xC56A31u);
  EXPECT_EQ(style->selectedmenufillcolor, 0xEED3C2u);
  EXPECT_EQ(style->selectedmenutextcolor, 0x000000u);
  EXPECT_EQ(style->separatorcolor, 0xB8C3C5u);
  EXPECT_EQ(style->sidebargradientcolor1, 0xFEECDDu);
  EXPECT_EQ(style->sidebargradientcolor2, 0xE2A981u);
  EXPECT_EQ(style->toplevelgradientcolor1, 0xFAFCFDu);
  EXPECT_EQ(style->toplevelgradientcolor2, 0xEEF6F7u);
  EXPECT_EQ(style->sidebarcolor, 0x000000u);
}

TEST(FrmMenuTest, EachItemHandsOverToTheMainWindow) {
  testing::PortableServices services;
  FrmMain main;
  MainWindowScope scope(main);
  FrmMenu form;
  main.Visible(false);
  form.mnuShowHide.Click();
  EXPECT_TRUE(main.Visible());
  form.mnuExit.Click();
  EXPECT_TRUE(services.application.Ended());
}

TEST(MenuModelTest, ItemsFollowTheirParentAndLeaveItWhenTheyGo) {
  ui::Form form("FrmTest");
  ui::Menu top(form, "mnuTop");
  ui::Menu first(form, "mnuFirst", top);
  {
    ui::Menu second(form, "mnuSecond", top);
    EXPECT_EQ(top.Items().size(), 2u);
  }
  ASSERT_EQ(top.Items().size(), 1u);
  EXPECT_EQ(top.Items()[0], &first);
  EXPECT_EQ(ui::OfficeMenuOf(first), nullptr);
  first.Checked(true);
  EXPECT_TRUE(first.Checked());
}

TEST(MenuModelTest, FromRgbSwapsRedAndBlue) {
  EXPECT_EQ(ui::FromRgb(0x123456), 0x563412u);
  EXPECT_EQ(ui::FromRgb(0xFF0000), 0x0000FFu);
}

}  // namespace
}  // namespace quorvane
