// The appearance page over the portable services: the slider's table and its mismatch, the
// spacings' bounds and the preview they lay out, the reading at load, the apply with what reaches
// the registry, the shell and the busy display, the defaults, the restart message, and the
// slider's background through the replaced procedure of its parent.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "appearance/AppearancePage.h"
#include "appearance/ChangeSliderBG.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "PortableServices.h"
#include "ScratchFiles.h"
#include "platform/MemorySurface.h"
#include "platform/portable/PortablePageBackgrounds.h"

namespace quorvane {
namespace {

constexpr char kMetrics[] = "HKEY_CURRENT_USER\\Control Panel\\Desktop\\WindowMetrics";
constexpr char kShellIcons[] =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons";
constexpr std::uint32_t kCtlColorStatic = 0x138;
constexpr std::uint32_t kDestroy = 0x2;
constexpr std::intptr_t kDefaultBrush = 0xDEF;

// Where a preview control stands, in the preview's pixels (twips over 15).
double Px(std::int32_t twips) { return twips / 15.0; }
// A pixel position as the controls keep it: in twips, the nearer one, the even one halfway.
std::int32_t Twips(double pixels) { return static_cast<std::int32_t>(std::nearbyint(pixels * 15)); }

// The slider's brush and subclass are the module's globals: each test starts without them.
void ForgetSliderBackground() {
  gSliderBrush = 0;
  gSliderOldProc = 0;
  gSliderHwnd = 0;
}

class AppearanceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ForgetSliderBackground();
    services_.PrepareLoad(root_.Path());
    testing::PreviewsInMemory(form_);
    // Picture1 and the slider as windows of the platform: Picture1's own procedure answers a
    // colour request with the default brush and counts what reaches it.
    picture1_ = backgrounds_.MakeWindow(
        [this](std::uint32_t, std::uint32_t message, std::uintptr_t, std::intptr_t) {
          reachedPicture1_.push_back(message);
          return message == kCtlColorStatic ? kDefaultBrush : std::intptr_t{0};
        });
    slider_ = backgrounds_.MakeWindow([](auto...) { return std::intptr_t{0}; });
    otherStatic_ = backgrounds_.MakeWindow([](auto...) { return std::intptr_t{0}; });
    form_.Picture1.hWnd = picture1_;
    form_.Slider.hWnd = slider_;
  }
  void TearDown() override { ForgetSliderBackground(); }

  void Put(const std::string& key, const std::string& name, const std::string& value) {
    ASSERT_NE(AdvRegistryAccess(store_).WriteString(key, name, value), 0);
  }
  // A text value as it reads back, without the terminator the store keeps with it.
  std::string Read(const std::string& key, const std::string& name) {
    std::string value = AdvRegistryAccess(store_).ReadString(key, name, "(none)");
    if (!value.empty() && value.back() == '\0') value.pop_back();
    return value;
  }
  void Load(const std::string& osVersion = "xp") {
    if (osVersion == "xp") services_.system.SetVersion(2, 5, 1);
    form_.Form_Load();
    ASSERT_EQ(form_.ILicons.Count(), 65) << "the load ran to its end";
  }
  std::intptr_t ColourRequest(std::uint32_t from) {
    return backgrounds_.SendMessageA(picture1_, kCtlColorStatic, 0x5DC,
                                     static_cast<std::intptr_t>(from));
  }

  // The preview as the page's routines lay it out, computed here from its rules in the
  // preview's pixels: the slider's size, then the horizontal spacing, then the vertical one.
  struct Preview {
    double left[3], top[3], size;        // My Computer, My Documents, Recycle Bin
    double labelLeft[3], labelTop[3];
  };
  void ExpectPreview(const Preview& p) {
    const ui::Image* images[] = {&form_.ImgMyComputer, &form_.ImgMyDocuments,
                                 &form_.ImgRecycleBin};
    const ui::Label* labels[] = {&form_.LblMyComputer, &form_.LblMyDocuments,
                                 &form_.LblRecycleBin};
    for (int i = 0; i < 3; ++i) {
      SCOPED_TRACE(images[i]->Name());
      EXPECT_EQ(images[i]->Left(), Twips(p.left[i]));
      EXPECT_EQ(images[i]->Top(), Twips(p.top[i]));
      EXPECT_EQ(images[i]->Width(), Twips(p.size));
      EXPECT_EQ(images[i]->Height(), Twips(p.size));
      EXPECT_TRUE(images[i]->Stretch());
      EXPECT_EQ(labels[i]->Left(), Twips(p.labelLeft[i]));
      EXPECT_EQ(labels[i]->Top(), Twips(p.labelTop[i]));
    }
  }

  testing::ScratchFolder root_{"appearance"};
  testing::PortableServices services_;
  platform::portable::MemoryRegistry& store_ = services_.store;
  platform::portable::PortablePageBackgrounds& backgrounds_ =
      services_.adapters.PageBackgrounds();
  FrmMain form_;
  MainWindowScope installed_{form_};
  std::uint32_t picture1_ = 0, slider_ = 0, otherStatic_ = 0;
  std::vector<std::uint32_t> reachedPicture1_;
};

// --- the design --------------------------------------------------------------------------------

TEST_F(AppearanceTest, TheDesignGivesTheControlsTheirBoundsAndCaptions) {
  EXPECT_EQ(form_.Slider.Min, 1);
  EXPECT_EQ(form_.Slider.Max, 7);
  EXPECT_EQ(form_.TxtHorizontal.Min, 1);
  EXPECT_EQ(form_.TxtHorizontal.Max, 500);
  EXPECT_EQ(form_.TxtHorizontal.Value(), 1);
  EXPECT_EQ(form_.TxtVertical.Min, 1);
  EXPECT_EQ(form_.TxtVertical.Max, 500);
  EXPECT_EQ(form_.TxtVertical.Value(), 1);
  EXPECT_EQ(form_.LblStatus.Caption(), "32x32");
  EXPECT_EQ(form_.Label8.Caption(), "Icon Size");
  EXPECT_EQ(form_.Label9.Caption(), "Icon Spacing");
  EXPECT_EQ(form_.Label17.Caption(), "Shortcut Overlay");
  EXPECT_EQ(form_.LblSmall.Caption(), "Small");
  EXPECT_EQ(form_.LblLarge.Caption(), "Large");
  EXPECT_EQ(form_.Label14.Caption(), "Show Shortcut Arrow");
  EXPECT_EQ(form_.LblAppearanceMsg.Caption(),
            "Icon Size and Icon Spacing has been blocked in Vista");
  EXPECT_EQ(form_.LblMyComputer.Caption(), "My Computer");
  EXPECT_EQ(form_.LblMyDocuments.Caption(), "My Documents");
  EXPECT_EQ(form_.LblRecycleBin.Caption(), "Recycle Bin");
  EXPECT_EQ(form_.Slider.Container, &form_.Picture1);
  EXPECT_EQ(form_.ImgMyComputer.Container, &form_.PBDesktop);
  // The design's preview is the one the routines give for size 32 and spacings 82 and 43.
  ExpectPreview({{41, 145, 41}, {10, 10, 86}, 32, {18.25, 134, 18.25}, {43, 43, 123}});
}

// --- the slider --------------------------------------------------------------------------------

TEST_F(AppearanceTest, EverySliderPositionFollowsTheTableButStoresPositionTimesSixteen) {
  Load();
  struct Row {
    std::int32_t position;
    const char* status;
    double size;
  };
  for (const Row& row : {Row{1, "16x16", 16}, Row{2, "32x32", 32}, Row{3, "48x48", 48},
                         Row{4, "64x64", 64}, Row{5, "72x72", 72}, Row{6, "96x96", 96},
                         Row{7, "128x128", 128}}) {
    SCOPED_TRACE(row.position);
    form_.Slider.Value(row.position);
    EXPECT_EQ(form_.LblStatus.Caption(), row.status);
    EXPECT_EQ(form_.mIconSize, row.position * 16);
    // The first icon keeps its place (h = 82 from the load's default: left 41, top 10).
    const double l = 41, t = 10, s = row.size;
    ExpectPreview({{l, s + l + 50, l},
                   {t, t, s + t + 50},
                   s,
                   {(s + l) / 4, s / 8 + (s + l + 50) - 15, (s + l) / 4},
                   {s + t + 1, s + t + 1, s + (s + t + 50) + 1}});
  }
  // The mismatch: 72 is shown at position 5 and 80 stored; 128 shown at 7 and 112 stored.
  form_.Slider.Value(7);
  EXPECT_EQ(form_.LblStatus.Caption(), "128x128");
  form_.CmdMenu_Click(2);
  form_.CmdApply_Click();
  EXPECT_EQ(Read(kMetrics, "Shell Icon Size"), "112");
  form_.Slider.Value(5);
  EXPECT_EQ(form_.LblStatus.Caption(), "72x72");
  form_.CmdApply_Click();
  EXPECT_EQ(Read(kMetrics, "Shell Icon Size"), "80");
}

TEST_F(AppearanceTest, APositionOutsideTheTableChangesOnlyTheStoredSize) {
  Load();
  form_.Slider.Value(3);
  const std::int32_t width = form_.ImgMyComputer.Width();
  form_.Slider.Value(8);
  EXPECT_EQ(form_.LblStatus.Caption(), "48x48");
  EXPECT_EQ(form_.ImgMyComputer.Width(), width);
  EXPECT_EQ(form_.mIconSize, 128);
  form_.Slider.Value(0);
  EXPECT_EQ(form_.LblStatus.Caption(), "48x48");
  EXPECT_EQ(form_.mIconSize, 0);
}

// --- the spacings ------------------------------------------------------------------------------

TEST_F(AppearanceTest, HorizontalSpacingLaysOutTheColumnsWithinItsBounds) {
  Load();
  form_.mRestartNeeded = 0;
  const auto expectColumns = [&](double h, double s, double t) {
    const double l = h / 2;
    const double docs = s + Px(Twips(l)) + h - 10;
    ExpectPreview({{l, docs, l},
                   {t, t, Px(form_.ImgRecycleBin.Top())},
                   s,
                   {(s + Px(Twips(l))) / 4, s / 8 + Px(Twips(docs)) - 15, (s + Px(Twips(l))) / 4},
                   {s + t + 1, s + t + 1, Px(form_.LblRecycleBin.Top())}});
  };
  for (std::int32_t h : {10, 11, 29, 30, 31, 43, 82, 499, 500}) {
    SCOPED_TRACE(h);
    form_.mRestartNeeded = 0;
    form_.TxtHorizontal.Value(h);
    expectColumns(h, 32, 10);
    EXPECT_EQ(form_.LblMyComputer.Visible(), h >= 30);
    EXPECT_EQ(form_.LblMyDocuments.Visible(), h >= 30);
    EXPECT_EQ(form_.mRestartNeeded, -1);
  }
  // 43: the first icon at 21.5 pixels, kept as 322 twips; the second after it.
  form_.TxtHorizontal.Value(43);
  EXPECT_EQ(form_.ImgMyComputer.Left(), 322);
  EXPECT_EQ(form_.ImgMyDocuments.Left(), Twips(32 + 322 / 15.0 + 33));
}

TEST_F(AppearanceTest, HorizontalSpacingBeyondItsBoundsChangesNothingAndAsksForNoRestart) {
  Load();
  form_.TxtHorizontal.Value(40);
  const std::int32_t computer = form_.ImgMyComputer.Left();
  const std::int32_t documents = form_.ImgMyDocuments.Left();
  const std::int32_t label = form_.LblMyDocuments.Left();
  for (std::int32_t h : {9, 5, 1, 501, 1000}) {
    SCOPED_TRACE(h);
    form_.mRestartNeeded = 0;
    form_.TxtHorizontal.Value(h);
    EXPECT_EQ(form_.ImgMyComputer.Left(), computer);
    EXPECT_EQ(form_.ImgMyDocuments.Left(), documents);
    EXPECT_EQ(form_.LblMyDocuments.Left(), label);
    EXPECT_TRUE(form_.LblMyComputer.Visible());
    EXPECT_EQ(form_.mRestartNeeded, 0);
  }
}

TEST_F(AppearanceTest, TypedAsFiveTheSpacingChangesNothingYetIsStoredByTheNextApply) {
  Load();
  form_.mRestartNeeded = 0;
  const std::int32_t computer = form_.ImgMyComputer.Left();
  form_.TxtHorizontal.Value(5);
  EXPECT_EQ(form_.ImgMyComputer.Left(), computer);
  EXPECT_EQ(form_.mRestartNeeded, 0);
  ApplyAppearance(form_);
  EXPECT_EQ(Read(kMetrics, "IconSpacing"), "-555");
}

TEST_F(AppearanceTest, VerticalSpacingMovesTheSecondRowUnlessItWouldOverlapTheFirst) {
  Load();
  // The first row ends at 10 + 32 = 42 pixels: 21 is the least spacing that moves the second.
  for (std::int32_t v : {21, 22, 29, 30, 43, 100, 500}) {
    SCOPED_TRACE(v);
    form_.mRestartNeeded = 0;
    form_.TxtVertical.Value(v);
    EXPECT_EQ(form_.ImgRecycleBin.Top(), Twips(2.0 * v));
    EXPECT_EQ(form_.LblRecycleBin.Top(), Twips(32 + 2.0 * v + 5));
    EXPECT_EQ(form_.LblMyComputer.Visible(), v >= 30);
    EXPECT_EQ(form_.LblRecycleBin.Visible(), v >= 30);
    EXPECT_EQ(form_.mRestartNeeded, 0) << "only the horizontal spacing asks for a restart";
  }
  const std::int32_t top = form_.ImgRecycleBin.Top();
  for (std::int32_t v : {20, 10, 1, 501}) {
    SCOPED_TRACE(v);
    form_.TxtVertical.Value(v);
    EXPECT_EQ(form_.ImgRecycleBin.Top(), top);
    EXPECT_TRUE(form_.LblRecycleBin.Visible());
  }
  // At the largest size the first row ends at 138: 69 moves the second row, 68 does not.
  form_.Slider.Value(7);
  form_.TxtVertical.Value(68);
  EXPECT_EQ(form_.ImgRecycleBin.Top(), Twips(128 + 10 + 50));
  form_.TxtVertical.Value(69);
  EXPECT_EQ(form_.ImgRecycleBin.Top(), Twips(138));
}

// --- the load ----------------------------------------------------------------------------------

TEST_F(AppearanceTest, TheLoadReadsStoredValuesThatAreNoMultiples) {
  Put(kMetrics, "Shell Icon Size", "72");
  Put(kMetrics, "IconSpacing", "-1711");
  Put(kMetrics, "IconVerticalspacing", "-1132");
  Load();
  EXPECT_EQ(form_.Slider.Value(), 4) << "4.5 rounds to the even 4";
  EXPECT_EQ(form_.mIconSize, 72) << "the stored number stays until the slider moves";
  EXPECT_EQ(form_.LblStatus.Caption(), "32x32") << "the slider's routine does not run at load";
  EXPECT_EQ(form_.TxtHorizontal.Value(), 82);
  EXPECT_EQ(form_.TxtVertical.Value(), 43);  // (1132 - 495) / 15 + 1 = 43.47
  EXPECT_EQ(form_.mRestartNeeded, -1) << "the horizontal routine ran once at load";
  // The spacings are laid out in the preview.
  EXPECT_EQ(form_.ImgMyComputer.Left(), Twips(41));
  EXPECT_EQ(form_.ImgRecycleBin.Top(), Twips(86));
  // An apply without a slider move writes the stored text back.
  ApplyAppearance(form_);
  EXPECT_EQ(Read(kMetrics, "Shell Icon Size"), "72");
  EXPECT_EQ(Read(kMetrics, "IconSpacing"), "-1710");
  EXPECT_EQ(Read(kMetrics, "IconVerticalspacing"), "-1125");
}

TEST_F(AppearanceTest, TheLoadRoundsHalvesToEven) {
  for (const auto& [stored, position] :
       std::vector<std::pair<std::string, std::int32_t>>{{"24", 2}, {"40", 2}, {"56", 4},
                                                         {"8", 0}, {"112", 7}, {"120", 8}}) {
    SCOPED_TRACE(stored);
    Put(kMetrics, "Shell Icon Size", stored);
    form_.Form_Load();
    EXPECT_EQ(form_.Slider.Value(), position);
    EXPECT_EQ(form_.mIconSize, std::stoi(stored));
  }
  // Spacings halfway between two steps: 502.5 and 517.5 are 1.5 and 2.5 steps.
  Put(kMetrics, "IconSpacing", "-517");
  Put(kMetrics, "IconVerticalspacing", "-1117");
  form_.Form_Load();
  EXPECT_EQ(form_.TxtHorizontal.Value(), 2);   // 2.4667
  EXPECT_EQ(form_.TxtVertical.Value(), 42);    // 42.4667
}

TEST_F(AppearanceTest, StoredMultiplesOfSixteenComeBackAtTheirPosition) {
  Load();
  for (std::int32_t position : {1, 2, 3, 4, 6}) {
    SCOPED_TRACE(position);
    form_.CmdMenu_Click(2);  // the load shows the first page again
    form_.Slider.Value(position);
    form_.CmdApply_Click();
    EXPECT_EQ(Read(kMetrics, "Shell Icon Size"), std::to_string(position * 16));
    form_.Slider.Value(position == 1 ? 7 : 1);
    form_.Form_Load();
    EXPECT_EQ(form_.Slider.Value(), position);
  }
}

TEST_F(AppearanceTest, OnVistaTheControlsAreBlockedAndTheMessageShown) {
  Load("vista");
  EXPECT_EQ(form_.OSName, "Windows Vista");
  EXPECT_TRUE(form_.LblAppearanceMsg.Visible());
  EXPECT_FALSE(form_.Slider.Enabled());
  EXPECT_FALSE(form_.TxtHorizontal.Enabled());
  EXPECT_FALSE(form_.TxtVertical.Enabled());
  EXPECT_TRUE(form_.ChkShowShortCut.Enabled());
  // The apply has no test of the system: it writes what the disabled controls hold.
  ApplyAppearance(form_);
  EXPECT_EQ(Read(kMetrics, "Shell Icon Size"), "32");
  EXPECT_EQ(Read(kMetrics, "IconSpacing"), "-1710");
}

// --- the shortcut overlay ------------------------------------------------------------------------

TEST_F(AppearanceTest, TheOverlayValueIsTheBlankIconOrNothing) {
  Load();
  EXPECT_EQ(form_.ChkShowShortCut.Value(), 1);
  // Unticked: 29 points to the blank icon, which the next load takes for an unticked box.
  form_.ChkShowShortCut.Value(0);
  ApplyAppearance(form_);
  EXPECT_EQ(Read(kShellIcons, "29"), core::gDataFolder + "Empty.ico");
  form_.ChkShowShortCut.Value(1);
  form_.Form_Load();
  EXPECT_EQ(form_.ChkShowShortCut.Value(), 0);
  // A foreign icon leaves the box ticked, and the next apply with it ticked deletes the value.
  Put(kShellIcons, "29", "C:\\icons\\arrow.ico,0");
  form_.Form_Load();
  EXPECT_EQ(form_.ChkShowShortCut.Value(), 1);
  ApplyAppearance(form_);
  EXPECT_EQ(Read(kShellIcons, "29"), "(none)");
  // The search is case-sensitive: "empty.ico" is somebody else's.
  Put(kShellIcons, "29", "C:\\x\\empty.ico");
  form_.Form_Load();
  EXPECT_EQ(form_.ChkShowShortCut.Value(), 1);
}

// --- apply and defaults --------------------------------------------------------------------------

TEST_F(AppearanceTest, ApplyWritesFourTextValuesThenHasTheShellTakeThemUp) {
  Load();
  form_.Slider.Value(3);
  form_.TxtHorizontal.Value(43);
  form_.TxtVertical.Value(1);
  form_.ChkShowShortCut.Value(0);
  services_.shell.Clear();
  const int yields = services_.events.Yields();
  ApplyAppearance(form_);
  EXPECT_EQ(Read(kMetrics, "Shell Icon Size"), "48");
  EXPECT_EQ(Read(kMetrics, "IconSpacing"), "-1125");
  EXPECT_EQ(Read(kMetrics, "IconVerticalspacing"), "-495");
  EXPECT_EQ(Read(kMetrics, "IconTitleWrap"), "1");
  EXPECT_EQ(services_.events.Yields() - yields, 4);
  // The busy display: the hourglass and FrmWorking, then both gone.
  EXPECT_EQ(services_.application.Requests(),
            (std::vector<std::string>{"pointer 11", "pointer 0"}));
  EXPECT_EQ(services_.forms.Requests().back(), "Unload FrmWorking");
  EXPECT_FALSE(services_.forms.Showing("FrmWorking"));
  // The refresh group in the page's order: the view, the size toggle, then the broadcast.
  const auto& requests = services_.shell.Requests();
  ASSERT_FALSE(requests.empty());
  EXPECT_EQ(requests.front().kind, platform::portable::ShellRequest::Kind::FindWindowExA);
  EXPECT_EQ(requests.back().kind, platform::portable::ShellRequest::Kind::SendMessageTimeoutA);
  EXPECT_EQ(Read(kMetrics, "Shell Icon Size"), "48") << "the toggle put the size back";
}

TEST_F(AppearanceTest, CmdApplyOnThePageAsksForTheRestartOnlyWhenNeeded) {
  Load();
  form_.CmdMenu_Click(2);
  services_.boxes.Clear();
  form_.CmdApply_Click();  // the load's layout asked for it
  ASSERT_EQ(services_.boxes.Boxes().size(), 1u);
  EXPECT_EQ(services_.boxes.Boxes()[0].prompt, "Please restart to apply the chages");
  EXPECT_EQ(form_.mRestartNeeded, 0);
  form_.Slider.Value(4);
  form_.TxtVertical.Value(60);
  form_.CmdApply_Click();
  EXPECT_EQ(services_.boxes.Boxes().size(), 1u) << "size and vertical spacing need no restart";
  EXPECT_EQ(Read(kMetrics, "Shell Icon Size"), "64");
  form_.TxtHorizontal.Value(60);
  form_.CmdApply_Click();
  EXPECT_EQ(services_.boxes.Boxes().size(), 2u);
}

TEST_F(AppearanceTest, CmdDefaultRestoresTheDefaultsAndAppliesThemWithoutAMessage) {
  Load();
  form_.CmdMenu_Click(2);
  form_.Slider.Value(6);
  form_.TxtHorizontal.Value(200);
  form_.TxtVertical.Value(300);
  form_.ChkShowShortCut.Value(0);
  services_.boxes.Clear();
  form_.CmdDefault_Click();
  EXPECT_EQ(form_.Slider.Value(), 2);
  EXPECT_EQ(form_.mIconSize, 32);
  EXPECT_EQ(form_.LblStatus.Caption(), "32x32");
  EXPECT_EQ(form_.TxtHorizontal.Value(), 82);
  EXPECT_EQ(form_.TxtVertical.Value(), 43);
  EXPECT_EQ(form_.ChkShowShortCut.Value(), 0) << "the overlay is left as it is";
  EXPECT_EQ(Read(kMetrics, "Shell Icon Size"), "32");
  EXPECT_EQ(Read(kMetrics, "IconSpacing"), "-1710");
  EXPECT_EQ(Read(kMetrics, "IconVerticalspacing"), "-1125");
  EXPECT_EQ(Read(kShellIcons, "29"), core::gDataFolder + "Empty.ico");
  EXPECT_TRUE(services_.boxes.Boxes().empty());
  // The preview follows the defaults.
  ExpectPreview({{41, 145, 41}, {10, 10, 86}, 32, {18.25, 134, 18.25}, {43, 43, 123}});
}

// --- the preview's background ----------------------------------------------------------------------

TEST_F(AppearanceTest, ThePreviewPaintsTheDesktopBetweenTwoYields) {
  form_.PBDesktop.Width(3000);
  form_.PBDesktop.Height(3000);
  form_.PBDesktop.UseSurface(std::make_shared<platform::MemorySurface>());
  const int yields = services_.events.Yields();
  ASSERT_TRUE(form_.PBDesktop.Paint);
  form_.PBDesktop.Paint();
  EXPECT_EQ(services_.events.Yields() - yields, 2);
  ASSERT_EQ(backgrounds_.DesktopPaints().size(), 1u);
  EXPECT_NE(backgrounds_.DesktopPaints()[0], 0u);
  EXPECT_EQ(backgrounds_.DesktopPaints()[0], form_.PBDesktop.hDC());
}

// --- the slider's background -----------------------------------------------------------------------

TEST_F(AppearanceTest, TheLoadSubclassesPicture1OnceAndTheSliderGetsAWhiteBrush) {
  const std::intptr_t own = backgrounds_.ProcedureOf(picture1_);
  Load();
  EXPECT_EQ(form_.mFormLoaded, -1);
  EXPECT_EQ(gSliderHwnd, slider_);
  EXPECT_EQ(gSliderOldProc, own);
  EXPECT_NE(backgrounds_.ProcedureOf(picture1_), own);
  ASSERT_NE(gSliderBrush, 0u);
  EXPECT_EQ(backgrounds_.LiveBrushes(), 1u);
  EXPECT_EQ(backgrounds_.ColorOf(gSliderBrush), 0xFFFFFFu);
  const std::intptr_t answer = ColourRequest(slider_);
  EXPECT_EQ(answer, static_cast<std::intptr_t>(gSliderBrush));
  EXPECT_TRUE(reachedPicture1_.empty()) << "the slider's request is answered, not passed on";

  // A second load (as after icons were written) finds the window loaded: no second subclass.
  const std::intptr_t replaced = backgrounds_.ProcedureOf(picture1_);
  form_.Form_Load();
  EXPECT_EQ(backgrounds_.ProcedureOf(picture1_), replaced);
  EXPECT_EQ(gSliderOldProc, own);
  EXPECT_EQ(backgrounds_.LiveBrushes(), 1u);
}

TEST_F(AppearanceTest, AnotherStaticChildAndOtherMessagesGetTheDefaultAnswer) {
  Load();
  EXPECT_EQ(ColourRequest(otherStatic_), kDefaultBrush);
  EXPECT_EQ(backgrounds_.SendMessageA(picture1_, 0x0F, 0, 0), 0);
  EXPECT_EQ(reachedPicture1_, (std::vector<std::uint32_t>{kCtlColorStatic, 0x0F}));
  // A message for a window that is not Picture1's goes on as it came.
  reachedPicture1_.clear();
  EXPECT_EQ(SliderParentProc(otherStatic_, kCtlColorStatic, 0, slider_), kDefaultBrush);
  EXPECT_EQ(reachedPicture1_.size(), 1u);
}

TEST_F(AppearanceTest, ASecondBrushDeletesTheFirst) {
  std::uint32_t white = 0xFFFFFF;
  bool recreate = false;
  CreateSliderBrush(white, recreate);
  const platform::GdiHandle first = gSliderBrush;
  CreateSliderBrush(white, recreate);
  EXPECT_NE(gSliderBrush, first);
  EXPECT_EQ(backgrounds_.LiveBrushes(), 1u);
  std::uint32_t red = 0x0000FF;
  recreate = true;
  CreateSliderBrush(red, recreate);
  EXPECT_EQ(backgrounds_.LiveBrushes(), 1u);
  EXPECT_EQ(backgrounds_.ColorOf(gSliderBrush), 0x0000FFu);
  DeleteSliderBrush();
  EXPECT_EQ(gSliderBrush, 0u);
  EXPECT_EQ(backgrounds_.LiveBrushes(), 0u);
  DeleteSliderBrush();  // nothing left: nothing happens
  EXPECT_EQ(backgrounds_.LiveBrushes(), 0u);
}

TEST_F(AppearanceTest, WithTheBrushDeletedTheSliderGetsTheDefaultColour) {
  Load();
  DeleteSliderBrush();
  EXPECT_NE(gSliderOldProc, 0) << "the subclassing is still active";
  EXPECT_EQ(ColourRequest(slider_), kDefaultBrush);
}

TEST_F(AppearanceTest, UnsubclassingTwiceDoesNothingTheSecondTime) {
  const std::intptr_t own = backgrounds_.ProcedureOf(picture1_);
  Load();
  std::uint32_t window = picture1_;
  UnsubclassSliderParent(window);
  EXPECT_EQ(backgrounds_.ProcedureOf(picture1_), own);
  EXPECT_EQ(gSliderOldProc, 0);
  // Another procedure put in meanwhile stays: the second call has nothing to give back.
  const std::uint32_t later = backgrounds_.MakeWindow([](auto...) { return std::intptr_t{0}; });
  backgrounds_.SetWindowLongPtrA(picture1_, -4, backgrounds_.ProcedureOf(later));
  UnsubclassSliderParent(window);
  EXPECT_EQ(backgrounds_.ProcedureOf(picture1_), backgrounds_.ProcedureOf(later));
}

TEST_F(AppearanceTest, Picture1sDestructionTakesBrushAndSubclassBackWithoutPassingItOn) {
  const std::intptr_t own = backgrounds_.ProcedureOf(picture1_);
  Load();
  EXPECT_EQ(backgrounds_.SendMessageA(picture1_, kDestroy, 0, 0), 0);
  EXPECT_TRUE(reachedPicture1_.empty());
  EXPECT_EQ(gSliderBrush, 0u);
  EXPECT_EQ(backgrounds_.LiveBrushes(), 0u);
  EXPECT_EQ(gSliderOldProc, 0);
  EXPECT_EQ(backgrounds_.ProcedureOf(picture1_), own);
}

TEST_F(AppearanceTest, NothingThatFailsInsideTheProcedureLeavesIt) {
  Load();
  // Without the platform's service the procedure can neither answer nor pass the message on.
  platform::PageBackgrounds* service = platform::Install<platform::PageBackgrounds>(nullptr);
  std::intptr_t answer = -1;
  EXPECT_NO_THROW(answer = SliderParentProc(picture1_, 0x0F, 0, 0));
  EXPECT_NO_THROW(answer = SliderParentProc(picture1_, kDestroy, 0, 0));
  platform::Install<platform::PageBackgrounds>(service);
  EXPECT_EQ(answer, 0);
}

TEST_F(AppearanceTest, PicCloseGivesSubclassAndBrushBackBeforeTheEnd) {
  const std::intptr_t own = backgrounds_.ProcedureOf(picture1_);
  Load();
  form_.PicClose_Click();
  EXPECT_EQ(backgrounds_.ProcedureOf(picture1_), own);
  EXPECT_EQ(gSliderOldProc, 0);
  EXPECT_EQ(gSliderBrush, 0u);
  EXPECT_EQ(backgrounds_.LiveBrushes(), 0u);
  EXPECT_TRUE(services_.application.Ended());
  // Safe when nothing is there any more.
  std::uint32_t window = picture1_;
  UnsubclassSliderParent(window);
  DeleteSliderBrush();
  EXPECT_EQ(backgrounds_.ProcedureOf(picture1_), own);
}

}  // namespace
}  // namespace quorvane
