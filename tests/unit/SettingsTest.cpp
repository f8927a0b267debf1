// The wallpaper settings dialog over the portable services, with real packed collections in a
// data folder of its own: its controls, creation, load, each step of the activation and of the
// save, the spin edit's lower bound, and the dialog shown from FrmMain's CmdSettings with the
// settings read back from ProductKey when it closes. The option buttons of the control model
// are tested here too.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "platform/Service.h"
#include "core/Regimes.h"
#include "platform/portable/PortableForms.h"
#include "platform/portable/PortableWindowActions.h"
#include "stores/AdvRegistryAccess.h"
#include "stores/iniReadWrite.h"
#include "wallpaper/FrmSettings.h"
#include "wallpaper/MWallpaper.h"

#include "PortableServices.h"
#include "ScratchFiles.h"

namespace quorvane {
namespace {

namespace fs = std::filesystem;

constexpr char kRunText[] = "C:\\Program Files\\Quorvane\\quorvane.exe /background";

using testing::Host;
using testing::ReadFile;

class SettingsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(scratch_ / "data");
    core::gDataFolder = (scratch_ / "data").string() + "\\";
    gWallpaperEnable = kFalse;
    gWallpaperInterval = 0;
    gWallpaperOrder = 0;
    gWallpaperPosition = 0;
  }

  // Packs a collection of small files; their content does not matter to the settings.
  void MakeCollection(const std::string& name, const std::vector<std::string>& files) {
    services_.PackCollection(scratch_ / "sources", name, files,
                             [&](const std::string& file) { return name + "/" + file; });
  }
  // The position of the node of that text, 0 when none.
  static std::int32_t NodeOf(const ui::TreeView& tree, const std::string& text) {
    for (std::int32_t i = 1; i <= tree.Count(); ++i) {
      if (tree.Item(i).Text == text) return i;
    }
    return 0;
  }
  static void Tick(ui::TreeView& tree, const std::string& text) {
    const std::int32_t node = NodeOf(tree, text);
    ASSERT_NE(node, 0) << text;
    tree.Item(node).Checked = true;
  }
  // A dialog as the user sees it: created, loaded and activated.
  std::unique_ptr<FrmSettings> Open() {
    auto form = std::make_unique<FrmSettings>();
    form->Load();
    form->Form_Activate();
    return form;
  }
  std::int32_t Dword(const std::string& name) {
    return reg_.ReadDWORD(core::ProductKey, name, -99);
  }
  // A text value as stored, "<none>" when it is absent. The registry class hands a text back
  // with the terminator it was stored with, which is taken off here.
  std::string Text(const std::string& key, const std::string& name) {
    std::string value = reg_.ReadString(key, name, "<none>");
    if (value == "<none>") return value;
    EXPECT_TRUE(!value.empty() && value.back() == '\0') << name << " has no terminator";
    if (!value.empty() && value.back() == '\0') value.pop_back();
    return value;
  }
  std::string Collections() { return Text(core::ProductKey, "Collections"); }
  std::string RunValue() { return Text(kRunKey, kRunValue); }
  std::string Index() { return core::gDataFolder + "Files.ini"; }

  testing::ScratchFolder scratch_{"settings"};
  testing::PortableServices services_;
  platform::portable::MemoryRegistry& store_ = services_.store;
  platform::portable::PortableWindowActions& actions_ = services_.actions;
  platform::portable::PortableForms& forms_ = services_.forms;
  AdvRegistryAccess reg_{store_};
};

// --- option buttons of the control model -----------------------------------------------------

TEST(OptionButtonTest, SettingOneTrueClearsTheOthersOfItsGroupOnly) {
  ui::OptionButton a("A"), b("B"), c("C"), other("Other");
  ui::OptionButton::Group({&a, &b, &c});
  int clicks = 0;
  b.Click = [&] { ++clicks; };
  other.Value(true);
  a.Value(true);
  EXPECT_TRUE(a.Value());
  b.Value(true);
  EXPECT_FALSE(a.Value());
  EXPECT_TRUE(b.Value());
  EXPECT_FALSE(c.Value());
  EXPECT_TRUE(other.Value()) << "a button of no group is left alone";
  EXPECT_EQ(clicks, 1);
  b.Value(true);  // already set: no second click
  b.Value(false);
  EXPECT_EQ(clicks, 1) << "clearing a button runs no click";
  EXPECT_FALSE(a.Value());
  EXPECT_FALSE(c.Value());
}

TEST(OptionButtonTest, ItsObserverHearsOfEveryButtonThatChanges) {
  struct Watch : ui::ControlObserver {
    void Changed(ui::Control& control, ui::Property property) override {
      if (property == ui::Property::Value) seen.push_back(control.Name());
    }
    std::vector<std::string> seen;
  } watch;
  ui::OptionButton a("A"), b("B");
  ui::OptionButton::Group({&a, &b});
  a.Observe(&watch);
  b.Observe(&watch);
  a.Value(true);
  watch.seen.clear();
  b.Value(true);
  EXPECT_EQ(watch.seen, (std::vector<std::string>{"A", "B"}));
}

// --- the form ---------------------------------------------------------------------------------

TEST_F(SettingsTest, EveryControlHasItsCaptionLetterForLetter) {
  FrmSettings form;
  EXPECT_EQ(form.ChkEnable.Caption(), "Enable automatic Wallpaper change");
  EXPECT_EQ(form.Label2.Caption(), "Change wallpaper every ");
  EXPECT_EQ(form.Label3.Caption(), "minutes");
  EXPECT_EQ(form.Frame1.Caption(), "Wallpaper Changing Options");
  EXPECT_EQ(form.OptSequentially.Caption(), "Change Sequentially");
  EXPECT_EQ(form.OptRandomally.Caption(), "Change Randomally");
  EXPECT_EQ(form.Frame2.Caption(), "Wallpaper Position");
  EXPECT_EQ(form.Label5.Caption(), "Wallpaper Position:");
  EXPECT_EQ(form.OptTileImages.Caption(), "Tile images");
  EXPECT_EQ(form.OptCenterImage.Caption(), "Center image on desktop");
  EXPECT_EQ(form.OptStrechImage.Caption(), "Strech the image to fit desktop");
  EXPECT_EQ(form.Label4.Caption(), "Collections:");
  EXPECT_EQ(form.ChkLoadWallpaper.Caption(), "Load Quorvane during Windows startup");
  EXPECT_EQ(form.CmdSave.Caption(), "Save");
  EXPECT_EQ(form.Label1.Caption(),
            "Quorvane will change wallpapers from the selected collections below. If you do "
            "not want to include a collection uncheck it.");
  EXPECT_EQ(form.CboMinutes.Min, 0);
  EXPECT_EQ(form.CboMinutes.Max, 0);
  for (const char* name :
       {"ChkEnable", "Label2", "CboMinutes", "Label3", "Frame1", "OptSequentially",
        "OptRandomally", "Frame2", "Label5", "OptTileImages", "OptCenterImage", "OptStrechImage",
        "Label4", "TvCollections", "ChkLoadWallpaper", "CmdSave", "Label1", "Picture1",
        "Picture2"}) {
    ui::Control* control = form.FindControl(name);
    ASSERT_NE(control, nullptr) << name;
    EXPECT_EQ(control->Name(), name);
  }
  EXPECT_EQ(form.Controls().size(), 19u);
  EXPECT_EQ(form.FindControl("CmdCancel"), nullptr) << "there is no Cancel";
}

// Every control lies inside what holds it, and no two controls of one container overlap.
TEST_F(SettingsTest, TheControlsArePlacedInsideTheirContainersWithoutOverlapping) {
  FrmSettings form;
  struct Box {
    std::int32_t left, top, right, bottom;
  };
  const auto box = [](const ui::Control& c) {
    return Box{c.Left(), c.Top(), c.Left() + c.Width(), c.Top() + c.Height()};
  };
  for (ui::Control* control : form.Controls()) {
    EXPECT_GT(control->Width(), 0) << control->Name();
    EXPECT_GT(control->Height(), 0) << control->Name();
    const Box own = box(*control);
    const Box outer = control->Container != nullptr
                          ? Box{0, 0, control->Container->Width(), control->Container->Height()}
                          : Box{0, 0, form.Width, form.Height};
    EXPECT_TRUE(own.left >= outer.left && own.top >= outer.top && own.right <= outer.right &&
                own.bottom <= outer.bottom)
        << control->Name() << " lies outside what holds it";
    for (ui::Control* other : form.Controls()) {
      if (other == control || other->Container != control->Container) continue;
      const Box them = box(*other);
      const bool apart = own.right <= them.left || them.right <= own.left ||
                         own.bottom <= them.top || them.bottom <= own.top;
      EXPECT_TRUE(apart) << control->Name() << " overlaps " << other->Name();
    }
  }
  // The option buttons stand in their frames, and the frames in the settings' picture.
  EXPECT_EQ(form.OptSequentially.Container, &form.Frame1);
  EXPECT_EQ(form.OptRandomally.Container, &form.Frame1);
  for (ui::Control* c : {static_cast<ui::Control*>(&form.OptTileImages), static_cast<ui::Control*>(&form.OptCenterImage),
                         static_cast<ui::Control*>(&form.OptStrechImage), static_cast<ui::Control*>(&form.Label5)}) {
    EXPECT_EQ(c->Container, &form.Frame2) << c->Name();
  }
}

TEST_F(SettingsTest, CreatingTheFormInitialisesTheCommonControls) {
  EXPECT_TRUE(forms_.Requests().empty());
  FrmSettings form;
  EXPECT_EQ(forms_.Requests(), (std::vector<std::string>{"InitCommonControls"}));
}

TEST_F(SettingsTest, LoadMakesTheOptionButtonsAndBothPicturesWhite) {
  FrmSettings form;
  std::vector<ui::OptionButton*> options = {&form.OptSequentially, &form.OptRandomally,
                                            &form.OptTileImages, &form.OptCenterImage,
                                            &form.OptStrechImage};
  for (auto* option : options) EXPECT_NE(option->BackColor(), 0xFFFFFFu) << option->Name();
  EXPECT_NE(form.Picture1.BackColor, 0xFFFFFFu);
  EXPECT_NE(form.Picture2.BackColor, 0xFFFFFFu);
  form.Form_Load();
  for (auto* option : options) EXPECT_EQ(option->BackColor(), 0xFFFFFFu) << option->Name();
  EXPECT_EQ(form.Picture1.BackColor, 0xFFFFFFu);
  EXPECT_EQ(form.Picture2.BackColor, 0xFFFFFFu);
  // Load reads nothing: the tree is filled on activation.
  MakeCollection("Sea", {"bay.jpg"});
  FrmSettings other;
  other.Form_Load();
  EXPECT_EQ(other.TvCollections.Count(), 0);
}

// --- activation ----------------------------------------------------------------------------------

TEST_F(SettingsTest, ActivationWithoutStoredSettingsShowsTheDefaults) {
  MakeCollection("Sea", {"bay.jpg"});
  MakeCollection("Town", {"night.jpg"});
  auto form = Open();
  ASSERT_EQ(form->TvCollections.Count(), 2);
  EXPECT_NE(NodeOf(form->TvCollections, "Sea"), 0);
  EXPECT_NE(NodeOf(form->TvCollections, "Town"), 0);
  for (std::int32_t i = 1; i <= 2; ++i) EXPECT_FALSE(form->TvCollections.Item(i).Checked);
  EXPECT_EQ(form->TvCollections.SelectedItem(), 0);
  EXPECT_EQ(form->ChkEnable.Value(), 1);
  EXPECT_EQ(form->CboMinutes.Value(), 5);
  EXPECT_TRUE(form->OptSequentially.Value());
  EXPECT_FALSE(form->OptRandomally.Value());
  EXPECT_TRUE(form->OptTileImages.Value());
  EXPECT_FALSE(form->OptCenterImage.Value());
  EXPECT_FALSE(form->OptStrechImage.Value());
  // AutoStart's default is 1, but without a run value the box is unticked.
  EXPECT_EQ(form->ChkLoadWallpaper.Value(), 0);
}

TEST_F(SettingsTest, ActivationSetsTheControlsFromProductKeyAndNotFromThePredecessor) {
  MakeCollection("Sea", {"bay.jpg"});
  MakeCollection("Town", {"night.jpg"});
  reg_.WriteDWORD(core::ProductKey, "Enable", 0);
  reg_.WriteDWORD(core::ProductKey, "TimeInterval", 12);
  reg_.WriteDWORD(core::ProductKey, "ChangeOrder", 2);
  reg_.WriteDWORD(core::ProductKey, "Position", 3);
  reg_.WriteString(core::ProductKey, "Collections", "Town;");
  reg_.WriteDWORD(kPredecessorKey, "TimeInterval", 44);
  reg_.WriteDWORD(kPredecessorKey, "Position", 2);
  auto form = Open();
  EXPECT_EQ(form->ChkEnable.Value(), 0);
  EXPECT_EQ(form->CboMinutes.Value(), 12);
  EXPECT_FALSE(form->OptSequentially.Value());
  EXPECT_TRUE(form->OptRandomally.Value());
  EXPECT_FALSE(form->OptTileImages.Value());
  EXPECT_FALSE(form->OptCenterImage.Value());
  EXPECT_TRUE(form->OptStrechImage.Value());
  const std::int32_t town = NodeOf(form->TvCollections, "Town");
  EXPECT_TRUE(form->TvCollections.Item(town).Checked);
  EXPECT_FALSE(form->TvCollections.Item(NodeOf(form->TvCollections, "Sea")).Checked);
  EXPECT_EQ(form->TvCollections.SelectedItem(), town);
}

TEST_F(SettingsTest, AnOrderOrPositionOfAnotherValueChecksNoButton) {
  reg_.WriteDWORD(core::ProductKey, "ChangeOrder", 7);
  reg_.WriteDWORD(core::ProductKey, "Position", 0);
  auto form = Open();
  EXPECT_FALSE(form->OptSequentially.Value());
  EXPECT_FALSE(form->OptRandomally.Value());
  EXPECT_FALSE(form->OptTileImages.Value());
  EXPECT_FALSE(form->OptCenterImage.Value());
  EXPECT_FALSE(form->OptStrechImage.Value());
  // Saved so, the order is random and the position 0, which the change takes for the centre.
  form->CmdSave_Click();
  EXPECT_EQ(Dword("ChangeOrder"), 2);
  EXPECT_EQ(Dword("Position"), 0);
}

TEST_F(SettingsTest, EveryMatchingNameIsTickedAndTheLastOneStaysSelected) {
  MakeCollection("Sea", {"bay.jpg"});
  MakeCollection("Town", {"night.jpg"});
  MakeCollection("Lake", {"still.jpg"});
  reg_.WriteString(core::ProductKey, "Collections", "Town;Gone;Sea;");
  auto form = Open();
  ASSERT_EQ(form->TvCollections.Count(), 3) << "a name with no node adds none";
  EXPECT_TRUE(form->TvCollections.Item(NodeOf(form->TvCollections, "Town")).Checked);
  EXPECT_TRUE(form->TvCollections.Item(NodeOf(form->TvCollections, "Sea")).Checked);
  EXPECT_FALSE(form->TvCollections.Item(NodeOf(form->TvCollections, "Lake")).Checked);
  EXPECT_EQ(form->TvCollections.SelectedItem(), NodeOf(form->TvCollections, "Sea"));
}

TEST_F(SettingsTest, ANameWithoutItsClosingSemicolonIsTheLastPieceAndTicksNothing) {
  MakeCollection("Sea", {"bay.jpg"});
  reg_.WriteString(core::ProductKey, "Collections", "Sea");
  auto form = Open();
  EXPECT_FALSE(form->TvCollections.Item(1).Checked);
  EXPECT_EQ(form->TvCollections.SelectedItem(), 0);
}

TEST_F(SettingsTest, ACollectionWhoseNameHoldsASemicolonIsSavedButNeverTickedAgain) {
  MakeCollection("Sea;Shore", {"bay.jpg"});
  auto form = Open();
  ASSERT_EQ(form->TvCollections.Count(), 1);
  EXPECT_EQ(form->TvCollections.Item(1).Text, "Sea;Shore");
  form->TvCollections.Item(1).Checked = true;
  form->CmdSave_Click();
  EXPECT_EQ(Collections(), "Sea;Shore;");
  EXPECT_EQ(ReadIniValue("Files", "1", Index()), "Sea;Shore\\bay.jpg");
  // Read back, the value falls apart into "Sea" and "Shore", and neither names the node.
  auto again = Open();
  EXPECT_FALSE(again->TvCollections.Item(1).Checked);
  EXPECT_EQ(again->TvCollections.SelectedItem(), 0);
}

TEST_F(SettingsTest, ASecondActivationWithoutClosingListsEachCollectionTwice) {
  MakeCollection("Sea", {"bay.jpg"});
  MakeCollection("Town", {"night.jpg"});
  reg_.WriteString(core::ProductKey, "Collections", "Sea;");
  forms_.Queue<FrmSettings>([](FrmSettings& form) { form.Form_Activate(); });
  std::int32_t seen = 0;
  std::int32_t ticked = 0;
  forms_.Queue<FrmSettings>([&](FrmSettings& form) {
    seen = form.TvCollections.Count();
    for (std::int32_t i = 1; i <= form.TvCollections.Count(); ++i) {
      ticked += form.TvCollections.Item(i).Checked ? 1 : 0;
    }
  });
  FrmSettings form;
  forms_.Show(form, true, 0);
  EXPECT_EQ(seen, 4);
  EXPECT_EQ(ticked, 2) << "both nodes named Sea are ticked";
  std::vector<std::string> names;
  for (std::int32_t i = 1; i <= form.TvCollections.Count(); ++i) {
    names.push_back(form.TvCollections.Item(i).Text);
  }
  EXPECT_EQ(names[0], names[2]);
  EXPECT_EQ(names[1], names[3]);
}

TEST_F(SettingsTest, AnEnableOrAutoStartThatNoCheckBoxCanShowIsAFailure) {
  reg_.WriteDWORD(core::ProductKey, "Enable", 5);
  FrmSettings form;
  form.Form_Load();
  try {
    form.Form_Activate();
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(static_cast<int>(failure.Number()), 380);
  }
  reg_.WriteDWORD(core::ProductKey, "Enable", 2);
  auto greyed = Open();
  EXPECT_EQ(greyed->ChkEnable.Value(), 2);
}

// --- the start with Windows --------------------------------------------------------------------

TEST_F(SettingsTest, AutoStartIsWrittenButTheRunValueDecidesTheBox) {
  reg_.WriteDWORD(core::ProductKey, "AutoStart", 1);
  EXPECT_EQ(Open()->ChkLoadWallpaper.Value(), 0) << "AutoStart 1, no run value";
  reg_.WriteDWORD(core::ProductKey, "AutoStart", 0);
  reg_.WriteString(kRunKey, kRunValue, "anything at all");
  EXPECT_EQ(Open()->ChkLoadWallpaper.Value(), 1) << "AutoStart 0, a run value";
  // A run value that is there but empty still reads as its terminator, which is not empty.
  reg_.WriteString(kRunKey, kRunValue, "");
  EXPECT_EQ(Open()->ChkLoadWallpaper.Value(), 1) << "an empty run value";
  reg_.KillValue(kRunKey, kRunValue);
  EXPECT_EQ(Open()->ChkLoadWallpaper.Value(), 0) << "no run value";
}

TEST_F(SettingsTest, TheRunValueIsTheProgramsPathUnquotedWithBackground) {
  MakeCollection("Sea", {"bay.jpg"});
  auto form = Open();
  form->TvCollections.Item(1).Checked = true;
  form->ChkLoadWallpaper.Value(1);
  form->CmdSave_Click();
  EXPECT_EQ(RunValue(), kRunText) << "the folder holds a space, and no quotes are added";
  EXPECT_EQ(Dword("AutoStart"), 1);

  actions_.programFolder = "D:\\Tools";
  actions_.programName = "qv";
  auto other = Open();
  other->CmdSave_Click();  // Sea is ticked from the value saved before
  EXPECT_EQ(RunValue(), "D:\\Tools\\qv.exe /background");
}

TEST_F(SettingsTest, AnUntickedBoxRemovesTheRunValueAndAMissingOneIsNoFailure) {
  MakeCollection("Sea", {"bay.jpg"});
  reg_.WriteString(kRunKey, kRunValue, kRunText);
  reg_.WriteString(kRunKey, "Other program", "other.exe");
  auto form = Open();
  EXPECT_EQ(form->ChkLoadWallpaper.Value(), 1);
  form->TvCollections.Item(1).Checked = true;
  form->ChkLoadWallpaper.Value(0);
  form->CmdSave_Click();
  EXPECT_EQ(RunValue(), "<none>");
  EXPECT_EQ(Text(kRunKey, "Other program"), "other.exe");
  EXPECT_EQ(Dword("AutoStart"), 0);
  auto again = Open();
  again->CmdSave_Click();
  EXPECT_EQ(RunValue(), "<none>");
  EXPECT_FALSE(again->Loaded());
}

// --- saving ----------------------------------------------------------------------------------------

TEST_F(SettingsTest, SaveWritesEveryValueRebuildsFilesIniAndUnloads) {
  MakeCollection("Sea", {"bay.jpg", "cliff.jpg"});
  MakeCollection("Lake", {"still.jpg"});
  MakeCollection("Town", {"night.jpg"});
  auto form = Open();
  // The tree's order decides the order of Collections and of Files.ini.
  std::vector<std::string> order;
  for (std::int32_t i = 1; i <= form->TvCollections.Count(); ++i) {
    order.push_back(form->TvCollections.Item(i).Text);
  }
  Tick(form->TvCollections, "Sea");
  Tick(form->TvCollections, "Town");
  form->ChkEnable.Value(0);
  form->CboMinutes.Value(17);
  form->OptRandomally.Value(true);
  form->OptCenterImage.Value(true);
  form->ChkLoadWallpaper.Value(1);
  EXPECT_TRUE(form->Loaded());
  form->CmdSave_Click();

  EXPECT_EQ(Dword("Enable"), 0);
  EXPECT_EQ(Dword("TimeInterval"), 17);
  EXPECT_EQ(Dword("ChangeOrder"), 2);
  EXPECT_EQ(Dword("Position"), 2);
  EXPECT_EQ(Dword("AutoStart"), 1);
  std::string expected;
  for (const std::string& name : order) {
    if (name != "Lake") expected += name + ";";
  }
  EXPECT_EQ(Collections(), expected);
  EXPECT_EQ(RunValue(), kRunText);
  // Files.ini lists the ticked collections' pictures, and only theirs.
  EXPECT_EQ(ReadIniValue("Count", "Total", Index()), "3");
  std::vector<std::string> entries;
  for (int i = 1; i <= 3; ++i) entries.push_back(ReadIniValue("Files", std::to_string(i), Index()));
  for (const std::string& entry : entries) {
    EXPECT_TRUE(entry.rfind("Sea\\", 0) == 0 || entry == "Town\\night.jpg") << entry;
  }
  EXPECT_TRUE(fs::is_directory(Host(core::gDataFolder + "Sea")));
  EXPECT_FALSE(fs::exists(Host(core::gDataFolder + "Lake")));
  EXPECT_FALSE(form->Loaded());
  // Nothing goes to the predecessor's key.
  EXPECT_EQ(reg_.KeyExists(kPredecessorKey), kFalse);
}

TEST_F(SettingsTest, SaveWithNoCollectionTickedStoresNothingRemovesTheRunValueAndKeepsAutoStart) {
  MakeCollection("Sea", {"bay.jpg"});
  reg_.WriteString(kRunKey, kRunValue, kRunText);
  reg_.WriteString(core::ProductKey, "Collections", "Sea;");
  std::ofstream(Host(Index()), std::ios::binary) << "[Files]\r\n1=Sea\\bay.jpg\r\n";
  auto form = Open();
  EXPECT_EQ(form->ChkLoadWallpaper.Value(), 1);
  form->TvCollections.Item(1).Checked = false;
  form->CmdSave_Click();
  EXPECT_EQ(Collections(), "");
  EXPECT_EQ(RunValue(), "<none>");
  // AutoStart keeps what the box showed a moment before the save unticked it.
  EXPECT_EQ(Dword("AutoStart"), 1);
  EXPECT_EQ(form->ChkLoadWallpaper.Value(), 0);
  EXPECT_EQ(ReadFile(Index()), "[Count]\r\nTotal=0\r\n");
}

TEST_F(SettingsTest, TheMinutesBelowZeroTurnIntoZeroAtOnceAndHaveNoUpperBound) {
  FrmSettings form;
  form.CboMinutes.Value(-3);
  EXPECT_EQ(form.CboMinutes.Value(), 0);
  form.CboMinutes.Value(9);
  form.CboMinutes.Value(0);
  EXPECT_EQ(form.CboMinutes.Value(), 0);
  form.CboMinutes.Value(40000);
  EXPECT_EQ(form.CboMinutes.Value(), 40000);
  // A stored interval below 0 shows as 0 too.
  reg_.WriteDWORD(core::ProductKey, "TimeInterval", -3);
  EXPECT_EQ(Open()->CboMinutes.Value(), 0);
}

TEST_F(SettingsTest, ATickedCollectionWhoseArchiveIsGoneFailsTheSaveAfterTheValuesAreWritten) {
  MakeCollection("Sea", {"bay.jpg"});
  auto form = Open();
  form->TvCollections.Item(1).Checked = true;
  fs::remove(Host(core::gDataFolder + "Sea.RXS"));
  EXPECT_THROW(form->CmdSave_Click(), Failure);
  EXPECT_EQ(Collections(), "Sea;");
  EXPECT_TRUE(form->Loaded()) << "the dialog stays when the rebuild fails";
}

// --- shown from the main window ------------------------------------------------------------------

class SettingsFromMainTest : public SettingsTest {
 protected:
  FrmMain main_;
  MainWindowScope installed_{main_};
};

TEST_F(SettingsFromMainTest, CmdSettingsShowsTheDialogOwnedByTheMainWindow) {
  main_.hWnd = 0x1234;
  std::vector<std::string> during;
  forms_.Queue<FrmSettings>([&](FrmSettings&) { during = forms_.Requests(); });
  ASSERT_TRUE(main_.CmdSettings.Click);
  main_.CmdSettings.Click();
  EXPECT_EQ(during,
            (std::vector<std::string>{"InitCommonControls", "Show FrmSettings modal, owner 4660"}));
  EXPECT_EQ(forms_.Requests().back(), "FrmSettings closed by the title bar");
  EXPECT_FALSE(forms_.Showing("FrmSettings"));
}

TEST_F(SettingsFromMainTest, ASaveChangesTheIntervalWhenTheDialogClosesAndTheMinuteCountGoesOn) {
  MakeCollection("Sea", {"bay.jpg"});
  reg_.WriteDWORD(kPredecessorKey, "TimeInterval", 9);
  reg_.WriteDWORD(kPredecessorKey, "Position", 1);
  main_.RefreshCollections();
  ASSERT_EQ(gWallpaperInterval, 9);
  main_.mTickCount = 3;
  main_.mCurrentIndex = 2;
  bool droppedRan = false;
  forms_.Queue<FrmSettings>([](FrmSettings& form) {
    form.TvCollections.Item(1).Checked = true;
    form.CboMinutes.Value(2);
    form.OptStrechImage.Value(true);
    form.CmdSave.Click();
  });
  forms_.Queue<FrmSettings>([&](FrmSettings&) { droppedRan = true; });  // the form is gone by then
  main_.CmdSettings_Click();
  EXPECT_FALSE(droppedRan);
  EXPECT_EQ(forms_.Requests().back(), "FrmSettings unloaded");
  EXPECT_EQ(gWallpaperInterval, 2);
  EXPECT_EQ(gWallpaperPosition, 3);
  EXPECT_EQ(gWallpaperEnable, kTrue);
  EXPECT_EQ(main_.mTickCount, 3);
  EXPECT_EQ(main_.mCurrentIndex, 2);
  EXPECT_EQ(reg_.ReadDWORD(kPredecessorKey, "TimeInterval", -1), 9) << "never written";
  // Creating or removing a collection brings the predecessor's values back.
  main_.RefreshCollections();
  EXPECT_EQ(gWallpaperInterval, 9);
  EXPECT_EQ(gWallpaperPosition, 1);
}

TEST_F(SettingsFromMainTest, TheIntervalIsStillTheOldOneWhileTheDialogIsUp) {
  reg_.WriteDWORD(kPredecessorKey, "TimeInterval", 9);
  main_.RefreshCollections();
  std::int16_t seenAfterSave = 0;
  forms_.Queue<FrmSettings>([&](FrmSettings& form) {
    form.CboMinutes.Value(1);
    form.CmdSave_Click();
    seenAfterSave = gWallpaperInterval;
  });
  main_.CmdSettings_Click();
  EXPECT_EQ(seenAfterSave, 9);
  EXPECT_EQ(gWallpaperInterval, 1);
}

TEST_F(SettingsFromMainTest, ClosingByTheTitleBarSavesNothingButTheSettingsAreReadAllTheSame) {
  MakeCollection("Sea", {"bay.jpg"});
  reg_.WriteDWORD(kPredecessorKey, "TimeInterval", 9);
  main_.RefreshCollections();
  forms_.Queue<FrmSettings>([](FrmSettings& form) {
    form.TvCollections.Item(1).Checked = true;
    form.CboMinutes.Value(30);
  });
  main_.CmdSettings_Click();
  EXPECT_EQ(forms_.Requests().back(), "FrmSettings closed by the title bar");
  EXPECT_EQ(reg_.ValueExists(core::ProductKey, "TimeInterval"), kFalse);
  EXPECT_EQ(reg_.ValueExists(core::ProductKey, "Collections"), kFalse);
  EXPECT_FALSE(fs::exists(Host(Index())));
  // ProductKey's defaults now, not the predecessor's 9.
  EXPECT_EQ(gWallpaperInterval, 5);
}

TEST_F(SettingsFromMainTest, AnIntervalBeyondSixteenBitsIsSavedAndThenOverflowsOnReading) {
  forms_.Queue<FrmSettings>([](FrmSettings& form) {
    form.CboMinutes.Value(40000);
    form.CmdSave_Click();
  });
  try {
    main_.CmdSettings_Click();
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::Overflow);
  }
  EXPECT_EQ(Dword("TimeInterval"), 40000);
  EXPECT_EQ(forms_.Requests().back(), "FrmSettings unloaded");
}

// With the program's top-level report installed, a failure of the dialog's routine is told in a
// message box and written to the log under the dialog's name, and the dialog stays up.
TEST_F(SettingsFromMainTest, AFailureInTheDialogIsReportedAndTheDialogStays) {
  struct Restore {
    ~Restore() { ui::InstallEventRunner(nullptr); }
  } restore;
  core::InstallTopLevelReport();
  MakeCollection("Sea", {"bay.jpg"});
  forms_.Queue<FrmSettings>([&](FrmSettings& form) {
    form.TvCollections.Item(1).Checked = true;
    fs::remove(Host(core::gDataFolder + "Sea.RXS"));
    form.CmdSave.Click();
  });
  bool stillUp = false;
  forms_.Queue<FrmSettings>([&](FrmSettings& form) { stillUp = form.Loaded(); });
  main_.CmdSettings_Click();
  EXPECT_TRUE(stillUp);
  EXPECT_EQ(forms_.Requests().back(), "FrmSettings closed by the title bar");
  const auto& boxes = services_.boxes.Boxes();
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].buttons, platform::msgbox::kOkOnly | platform::msgbox::kExclamation);
  const std::string log = ReadFile(core::gDataFolder + core::kErrorLogName);
  EXPECT_NE(log.find("\tFrmSettings\tevent\tline 0\terror "), std::string::npos) << log;
}

TEST_F(SettingsFromMainTest, AFailingActionEndsTheShowAndLeavesTheRestQueued) {
  int later = 0;
  forms_.Queue<FrmSettings>([](FrmSettings&) { throw Failure(FailureNumber::FileNotFound, "gone"); });
  forms_.Queue<FrmSettings>([&](FrmSettings&) { ++later; });
  EXPECT_THROW(main_.CmdSettings_Click(), Failure);
  EXPECT_FALSE(forms_.Showing("FrmSettings"));
  EXPECT_EQ(later, 0);
  main_.CmdSettings_Click();
  EXPECT_EQ(later, 1);
}

}  // namespace
}  // namespace quorvane
