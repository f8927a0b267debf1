// The form of the control model: controls that register themselves, its events and their order,
// its layout table, the runner every event goes through, and the portable forms adapter that
// plays a user's actions on any form.
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "core/FrmMain.h"
#include "core/FrmWorking.h"
#include "platform/portable/PortableForms.h"
#include "platform/portable/PortableResourcePictures.h"
#include "platform/Service.h"
#include "ui/Controls.h"
#include "ui/Form.h"
#include "ui/Layout.h"
#include "wallpaper/FrmSettings.h"

namespace quorvane {
namespace {

// A form with a few controls and events that write down what ran.
class FrmSample : public ui::Form {
 public:
  FrmSample() : ui::Form("FrmSample") {}

  ui::PictureBox Page{*this, "Page"};
  ui::Label Title{*this, "Title"};
  ui::ControlArray<ui::CommandButton, 2> CmdGo{*this, "CmdGo"};
  ui::Timer Clock{*this, "Clock"};
  ui::Frame Box{*this, "Box"};

  void Form_Load() override { ran.push_back("load"); }
  void Form_Activate() override { ran.push_back("activate"); }
  void Form_QueryUnload(std::int16_t& Cancel, std::int16_t UnloadMode) override {
    ran.push_back("query " + std::to_string(UnloadMode));
    Cancel = cancelQuery;
  }
  void Form_Unload(std::int16_t& Cancel) override {
    ran.push_back("unload");
    Cancel = cancelUnload;
  }

  std::vector<std::string> ran;
  std::int16_t cancelQuery = 0;
  std::int16_t cancelUnload = 0;
};

class Watch : public ui::FormObserver {
 public:
  void VisibleChanged(ui::Form& form) override {
    seen.push_back(form.Visible() ? "shown" : "hidden");
  }
  void Unloaded(ui::Form& form) override { seen.push_back(form.Name() + " unloaded"); }
  std::vector<std::string> seen;
};

// Restores the runner of events when a test installed one.
class RunnerScope {
 public:
  ~RunnerScope() { ui::InstallEventRunner(nullptr); }
};

TEST(FormTest, ControlsMadeWithTheFormAreItsControlsInTheOrderMade) {
  FrmSample form;
  std::vector<std::string> names;
  for (ui::Control* control : form.Controls()) names.push_back(ui::SystemNameOf(*control));
  EXPECT_EQ(names,
            (std::vector<std::string>{"Page", "Title", "CmdGo(0)", "CmdGo(1)", "Clock", "Box"}));
  EXPECT_EQ(form.FindControl("CmdGo", 1), &form.CmdGo[1]);
  EXPECT_EQ(form.FindControl("CmdGo"), nullptr) << "an element is found by its index only";
  EXPECT_EQ(form.FindControl("Title"), &form.Title);
  EXPECT_EQ(form.Title.Owner(), &form);
  ASSERT_EQ(form.Timers().size(), 1u);
  EXPECT_EQ(form.Timers()[0], &form.Clock);
}

TEST(FormTest, AControlThatGoesLeavesItsForm) {
  FrmSample form;
  {
    ui::Label extra(form, "Extra");
    EXPECT_EQ(form.FindControl("Extra"), &extra);
    EXPECT_EQ(form.Controls().size(), 7u);
  }
  EXPECT_EQ(form.FindControl("Extra"), nullptr);
  EXPECT_EQ(form.Controls().size(), 6u);
  ui::Label alone("Alone");
  EXPECT_EQ(alone.Owner(), nullptr);
  EXPECT_EQ(form.Controls().size(), 6u) << "a control made without a form stands alone";
}

TEST(FormTest, EveryControlOfTheMainWindowIsFoundByItsNameTheThumbnailStripToo) {
  FrmMain form;
  ASSERT_NE(form.FindControl("optThumb", 0), nullptr);
  EXPECT_EQ(form.FindControl("optThumb", 0), &form.optThumb[0]);
  EXPECT_EQ(form.FindControl("Timer1"), &form.Timer1);
  EXPECT_EQ(form.FindControl("CmdMenu", 3), &form.CmdMenu[3]);
  EXPECT_EQ(form.FindControl("imgTopRowHover", 1), &form.imgTopRowHover[1]);
  // Each control is there once, under its own system name.
  std::vector<std::string> names;
  for (ui::Control* control : form.Controls()) names.push_back(ui::SystemNameOf(*control));
  std::vector<std::string> sorted = names;
  std::sort(sorted.begin(), sorted.end());
  EXPECT_EQ(std::adjacent_find(sorted.begin(), sorted.end()), sorted.end());
  for (ui::Control* control : form.Controls()) {
    EXPECT_EQ(form.FindControl(control->Name(), control->Index()), control)
        << ui::SystemNameOf(*control);
  }
}

TEST(FormTest, TheMainWindowsLayoutGivesItsDesign) {
  FrmMain form;
  EXPECT_EQ(form.Name(), "FrmMain");
  EXPECT_EQ(form.Caption, "Quorvane");
  EXPECT_EQ(form.Width, 11250);
  EXPECT_EQ(form.Height, 8550);
  EXPECT_EQ(form.Border, ui::BorderStyle::None);
  EXPECT_EQ(form.CmdMenu[2].Top(), 3840);
  EXPECT_EQ(form.Label4.Container, &form.PBPelmoraMain);
  EXPECT_EQ(form.Label4.Caption(), "Objects");
  EXPECT_EQ(form.Slider.Container, &form.Picture1);
  EXPECT_FALSE(form.PBWallpaper.Visible());
  EXPECT_TRUE(form.FrameCommands.Visible());
  EXPECT_EQ(form.LblCommandName.FontSize(), 14);
  EXPECT_TRUE(form.LblCommandName.FontBold());
  EXPECT_EQ(form.LblCommandName.ForeColor(), 0x52463Fu);
  EXPECT_EQ(form.CmdWallpaperControl[2].Caption(), "Remove Collection");
}

TEST(FormTest, ALayoutRowThatNamesNoControlOrAWrongPropertyIsAFailure) {
  FrmSample form;
  const ui::ControlLayout good[] = {
      {"Page", nullptr, 10, 20, 300, 400},
      {"Title", "Page", 15, 30, 45, 60, "Hello"},
      {"CmdGo(1)", "Box", 1, 2, 3, 4, "Go", false},
      {.name = "Page", .left = 10, .top = 20, .width = 300, .height = 400, .backColor = 0x123456},
  };
  ui::ApplyLayout(form, {.caption = "Sample", .width = 900, .height = 600,
                         .border = ui::BorderStyle::FixedSingle, .controls = good});
  EXPECT_EQ(form.Caption, "Sample");
  EXPECT_EQ(form.Width, 900);
  EXPECT_EQ(form.Border, ui::BorderStyle::FixedSingle);
  EXPECT_EQ(form.Title.Container, &form.Page);
  EXPECT_EQ(form.Title.Left(), 15);
  EXPECT_EQ(form.Title.Height(), 60);
  EXPECT_EQ(form.Title.Caption(), "Hello");
  EXPECT_EQ(form.CmdGo[1].Container, &form.Box);
  EXPECT_EQ(form.CmdGo[1].Caption(), "Go");
  EXPECT_FALSE(form.CmdGo[1].Visible());
  EXPECT_TRUE(form.CmdGo[0].Visible());
  EXPECT_EQ(form.Page.BackColor, 0x123456u);

  const ui::ControlLayout missing[] = {{"Nothing", nullptr, 0, 0, 1, 1}};
  EXPECT_THROW(ui::ApplyLayout(form, {.controls = missing}), Failure);
  const ui::ControlLayout noContainer[] = {{"Title", "Nowhere", 0, 0, 1, 1}};
  EXPECT_THROW(ui::ApplyLayout(form, {.controls = noContainer}), Failure);
  const ui::ControlLayout noCaption[] = {{"Page", nullptr, 0, 0, 1, 1, "A caption"}};
  EXPECT_THROW(ui::ApplyLayout(form, {.controls = noCaption}), Failure);
  const ui::ControlLayout noFont[] = {{.name = "Box", .fontSize = 12}};
  EXPECT_THROW(ui::ApplyLayout(form, {.controls = noFont}), Failure);
}

TEST(FormTest, LoadRunsOnceAndUnloadAsksQueryUnloadThenUnload) {
  FrmSample form;
  Watch watch;
  form.Observe(&watch);
  EXPECT_FALSE(form.Loaded());
  form.Unload();
  EXPECT_TRUE(form.ran.empty()) << "a form that is not loaded stays as it is";
  form.Load();
  form.Load();
  EXPECT_TRUE(form.Loaded());
  form.Visible(true);
  form.Unload();
  EXPECT_EQ(form.ran, (std::vector<std::string>{"load", "query 1", "unload"}));
  EXPECT_FALSE(form.Loaded());
  EXPECT_FALSE(form.Visible());
  EXPECT_EQ(watch.seen, (std::vector<std::string>{"shown", "FrmSample unloaded"}));
}

TEST(FormTest, QueryUnloadOrUnloadMayCancelButNotAtTheEndOfTheSession) {
  FrmSample form;
  form.Load();
  form.cancelQuery = 1;
  EXPECT_FALSE(form.QueryAndUnload(ui::kUnloadFromMenu));
  EXPECT_TRUE(form.Loaded());
  form.cancelQuery = 0;
  form.cancelUnload = 1;
  EXPECT_FALSE(form.QueryAndUnload(ui::kUnloadFromTaskManager));
  EXPECT_TRUE(form.Loaded());
  form.cancelQuery = 1;
  EXPECT_TRUE(form.QueryAndUnload(ui::kUnloadAtSessionEnd));
  EXPECT_FALSE(form.Loaded());
  EXPECT_EQ(form.ran, (std::vector<std::string>{"load", "query 0", "query 3", "unload",
                                                "query 2", "unload"}));
}

TEST(FormTest, WithoutARunnerAnEventsFailureGoesToTheCaller) {
  FrmSample form;
  bool ran = false;
  ui::RunEvent(form, [&] { ran = true; });
  EXPECT_TRUE(ran);
  EXPECT_THROW(ui::RunEvent(form, [] { throw std::runtime_error("broken"); }), std::runtime_error);
  ui::RunEvent(form, nullptr);  // no handler: nothing runs
}

TEST(FormTest, AnInstalledRunnerRunsEveryEventWithItsForm) {
  RunnerScope restore;
  FrmSample form;
  std::vector<std::string> seen;
  ui::InstallEventRunner([&](ui::Form& of, const std::function<void()>& handler) {
    seen.push_back(of.Name());
    try {
      handler();
    } catch (const std::exception& failure) {
      seen.push_back(failure.what());
    }
  });
  int count = 0;
  ui::RunEvent(form, [&] { ++count; });
  ui::RunEvent(form, [] { throw std::runtime_error("broken"); });
  EXPECT_EQ(count, 1);
  EXPECT_EQ(seen, (std::vector<std::string>{"FrmSample", "FrmSample", "broken"}));
}

// --- the portable forms adapter ---------------------------------------------------------------

TEST(PortableFormsTest, AModalShowLoadsActivatesPlaysItsFormsActionsAndClosesByTheTitleBar) {
  platform::portable::PortableForms forms;
  FrmSample form;
  FrmSample other;
  bool otherRan = false;
  forms.Queue("Nobody", [&](ui::Form&) { otherRan = true; });
  forms.Queue("FrmSample", [&](ui::Form& shown) {
    EXPECT_EQ(&shown, &form);
    EXPECT_TRUE(forms.Showing("FrmSample"));
    static_cast<FrmSample&>(shown).ran.push_back("user");
  });
  forms.Show(form, true, 7);
  EXPECT_EQ(form.ran,
            (std::vector<std::string>{"load", "activate", "user", "query 0", "unload"}));
  EXPECT_FALSE(form.Loaded());
  EXPECT_FALSE(forms.Showing("FrmSample"));
  EXPECT_FALSE(otherRan) << "an action for another form waits for it";
  EXPECT_EQ(forms.Requests(), (std::vector<std::string>{"Show FrmSample modal, owner 7",
                                                        "FrmSample closed by the title bar"}));
  other.cancelQuery = 1;
  forms.Show(other, true, 0);
  EXPECT_TRUE(other.Loaded());
  EXPECT_EQ(forms.Requests().back(), "FrmSample kept by its QueryUnload");
}

TEST(PortableFormsTest, ActionsQueuedByTypeMeetTheFormOfThatType) {
  platform::portable::PortableForms forms;
  FrmSample form;
  forms.Queue<FrmSample>([](FrmSample& shown) {
    shown.ran.push_back("typed");
    shown.Unload();
  });
  forms.Queue<FrmSample>([](FrmSample& shown) { shown.ran.push_back("dropped"); });
  forms.Show(form, true, 0);
  EXPECT_EQ(form.ran,
            (std::vector<std::string>{"load", "activate", "typed", "query 1", "unload"}));
  EXPECT_EQ(forms.Requests().back(), "FrmSample unloaded");
  FrmSample again;
  forms.Show(again, true, 0);
  EXPECT_EQ(std::count(again.ran.begin(), again.ran.end(), "dropped"), 0)
      << "what was left once the form unloaded itself is dropped";
}

TEST(PortableFormsTest, AModelessFormStaysUpUntilItIsUnloaded) {
  platform::portable::PortableForms forms;
  FrmSample form;
  forms.Show(form, false, 42);
  EXPECT_TRUE(form.Loaded());
  EXPECT_TRUE(form.Visible());
  EXPECT_TRUE(forms.Showing("FrmSample"));
  forms.Unload(form);
  EXPECT_FALSE(form.Loaded());
  EXPECT_FALSE(forms.Showing("FrmSample"));
  EXPECT_EQ(form.ran, (std::vector<std::string>{"load", "activate", "query 1", "unload"}));
  EXPECT_EQ(forms.Requests(),
            (std::vector<std::string>{"Show FrmSample modeless, owner 42", "Unload FrmSample"}));
}

TEST(PortableFormsTest, AFailingActionWithARunnerIsReportedAndTheShowGoesOn) {
  RunnerScope restore;
  std::vector<std::string> reported;
  ui::InstallEventRunner([&](ui::Form& of, const std::function<void()>& handler) {
    try {
      handler();
    } catch (const std::exception& failure) {
      reported.push_back(of.Name() + ": " + failure.what());
    }
  });
  platform::portable::PortableForms forms;
  FrmSample form;
  forms.Queue("FrmSample", [](ui::Form&) { throw std::runtime_error("broken"); });
  forms.Queue("FrmSample", [](ui::Form& shown) { static_cast<FrmSample&>(shown).ran.push_back("next"); });
  forms.Show(form, true, 0);
  EXPECT_EQ(reported, (std::vector<std::string>{"FrmSample: broken"}));
  EXPECT_EQ(form.ran,
            (std::vector<std::string>{"load", "activate", "next", "query 0", "unload"}));
}

// --- the system's forms -------------------------------------------------------------------------

TEST(FormTest, TheBusyWindowIsABorderedBoxOfItsPictureUnderTheHourglass) {
  platform::portable::PortableResourcePictures pictures;
  pictures.Put(173, Pixels{20, 6, std::vector<std::uint32_t>(120, 0xFF336699)});
  platform::ScopedService<platform::ResourcePictures> installed(pictures);
  FrmWorking form;
  EXPECT_EQ(form.Name(), "FrmWorking");
  EXPECT_EQ(form.Border, ui::BorderStyle::FixedToolWindow);
  EXPECT_EQ(form.Caption, "");
  EXPECT_EQ(form.MousePointer, ui::kHourglassPointer);
  EXPECT_EQ(form.Picture.width, 20);
  EXPECT_EQ(form.Width, 20 * ui::kTwipsPerPixel);
  EXPECT_EQ(form.Height, 6 * ui::kTwipsPerPixel);
  EXPECT_TRUE(form.Controls().empty());
}

TEST(FormTest, TheSettingsDialogIsADialogWithATreeOfTickBoxes) {
  platform::portable::PortableForms forms;
  platform::ScopedService<platform::Forms> installed(forms);
  FrmSettings form;
  EXPECT_EQ(form.Name(), "FrmSettings");
  EXPECT_EQ(form.Caption, "Wallpaper Settings");
  EXPECT_EQ(form.Border, ui::BorderStyle::FixedDialog);
  EXPECT_TRUE(form.TvCollections.Checkboxes);
  EXPECT_EQ(form.Picture1.BackColor, 0xF0F0F0u);
  EXPECT_EQ(form.OptStrechImage.Container, &form.Frame2);
  EXPECT_EQ(forms.Requests(), (std::vector<std::string>{"InitCommonControls"}));
}

}  // namespace
}  // namespace quorvane
