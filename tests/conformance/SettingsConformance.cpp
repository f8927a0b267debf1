// The settings dialog shown modal through the build's Forms adapter, over the build's
// registry, files and packer. On Windows the dialog is a real window: the test acts on it from
// a timer of the thread while the dialog's own loop runs, as the user would (a tick put into the
// tree view, a press of CmdSave found by its system name, the title bar's close). Natively the
// same actions are queued for the portable adapter. Either way the dialog must run its load and
// activation, save what the user left in it, write the run value with this program's own path,
// and save nothing when closed by its title bar. Every registry value touched is put back.
#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <string>

#include "RegistrySnapshot.h"
#include "Support.h"
#include "core/MainModule.h"
#include "platform/CollectionPacker.h"
#include "platform/Forms.h"
#include "platform/Service.h"
#include "stores/AdvRegistryAccess.h"
#include "stores/iniReadWrite.h"
#include "wallpaper/FrmSettings.h"
#include "wallpaper/MWallpaper.h"

#ifdef _WIN32
#include <windows.h>
#include <commctrl.h>
#else
#include "platform/WindowActions.h"
#include "platform/portable/PortableForms.h"
#endif

namespace quorvane::testing {
namespace {

const char* const kValues[] = {"Enable", "TimeInterval", "ChangeOrder", "Position", "AutoStart",
                               "Collections"};

// What the user does in the dialog once it is up.
enum class Act { CloseByTitleBar, TickFirstAndSave };

#ifdef _WIN32
FrmSettings* gShown = nullptr;
Act gAct = Act::CloseByTitleBar;
std::string gFound;  // what the lookups by name gave, for the test to check

HWND Lookup(HWND dialog, const char* name) {
  const UINT find = ::RegisterWindowMessageA("Quorvane.FindControl");
  const ATOM atom = ::GlobalAddAtomA(name);
  const auto window = reinterpret_cast<HWND>(::SendMessageA(dialog, find, atom, 0));
  ::GlobalDeleteAtom(atom);
  return window;
}

std::string TextOf(HWND window) {
  char text[256] = {};
  ::GetWindowTextA(window, text, static_cast<int>(sizeof text));
  return text;
}

void CALLBACK ActOnDialog(HWND, UINT, UINT_PTR timer, DWORD) {
  ::KillTimer(nullptr, timer);
  if (gShown == nullptr || gShown->hWnd == 0) return;
  const auto dialog = reinterpret_cast<HWND>(static_cast<INT_PTR>(static_cast<int>(gShown->hWnd)));
  HWND tree = Lookup(dialog, "TvCollections");
  HWND save = Lookup(dialog, "CmdSave");
  HWND enable = Lookup(dialog, "ChkEnable");
  gFound = "tree \"" + TextOf(tree) + "\", save \"" + TextOf(save) + "\", enable \"" +
           TextOf(enable) + "\", none " + (Lookup(dialog, "NoSuchControl") == nullptr ? "0" : "1");
  if (gAct == Act::CloseByTitleBar || tree == nullptr || save == nullptr) {
    ::PostMessageA(dialog, WM_CLOSE, 0, 0);
    return;
  }
  // The first node's tick box, as a click on it leaves it.
  TVITEMA tick{};
  tick.mask = TVIF_HANDLE | TVIF_STATE;
  tick.hItem = reinterpret_cast<HTREEITEM>(::SendMessageA(tree, TVM_GETNEXTITEM, TVGN_ROOT, 0));
  tick.state = INDEXTOSTATEIMAGEMASK(2);
  tick.stateMask = TVIS_STATEIMAGEMASK;
  ::SendMessageA(tree, TVM_SETITEMA, 0, reinterpret_cast<LPARAM>(&tick));
  ::SendMessageA(save, BM_CLICK, 0, 0);
}

void CALLBACK GiveUp(HWND, UINT, UINT_PTR timer, DWORD) {
  ::KillTimer(nullptr, timer);
  if (gShown != nullptr && gShown->hWnd != 0) {
    ::PostMessageA(reinterpret_cast<HWND>(static_cast<INT_PTR>(static_cast<int>(gShown->hWnd))),
                   WM_CLOSE, 0, 0);
  }
}

void Show(FrmSettings& form, Act act) {
  gShown = &form;
  gAct = act;
  gFound.clear();
  const UINT_PTR acting = ::SetTimer(nullptr, 0, 300, &ActOnDialog);
  const UINT_PTR limit = ::SetTimer(nullptr, 0, 15000, &GiveUp);
  platform::Use<platform::Forms>().Show(form, true, 0);
  ::KillTimer(nullptr, acting);
  ::KillTimer(nullptr, limit);
  gShown = nullptr;
}

// This program's run value: its own folder and name, as the system names the running file.
std::string ExpectedRunValue() {
  char path[MAX_PATH + 1] = {};
  const DWORD n = ::GetModuleFileNameA(nullptr, path, MAX_PATH);
  std::string file(path, n);
  const std::size_t point = file.rfind('.');
  return file.substr(0, point) + ".exe /background";
}
#else
void Show(FrmSettings& form, Act act) {
  auto& forms =
      dynamic_cast<platform::portable::PortableForms&>(platform::Use<platform::Forms>());
  if (act == Act::TickFirstAndSave) {
    forms.Queue<FrmSettings>([](FrmSettings& shown) {
      shown.TvCollections.Item(1).Checked = true;
      shown.CmdSave.Click();
    });
  }
  forms.Show(form, true, 0);
}

std::string ExpectedRunValue() {
  auto& program = platform::Use<platform::WindowActions>();
  return program.ProgramFolder() + "\\" + program.ProgramName() + ".exe /background";
}
#endif

class SettingsConformance : public ::testing::Test {
 protected:
  void SetUp() override {
#ifdef _WIN32
    if (!HasScreen()) FAIL() << "no screen to show the dialog on: these cases run on a virtual one (scripts/gtest-on-screen.sh, settings_on_screen in make test)";
#endif
    for (const char* value : kValues) kept_.Keep(core::ProductKey, value);
    kept_.Keep(kRunKey, kRunValue);
    for (const char* value : kValues) reg_.KillValue(core::ProductKey, value);
    reg_.KillValue(kRunKey, kRunValue);
    previousData_ = core::gDataFolder;
    core::gDataFolder = FreshTempFolder();
    // One collection of two small files, packed by this build's packer.
    const std::string sources = FreshTempFolder();
    auto packer = platform::Use<platform::CollectionPackers>().Create();
    for (const char* file : {"one.jpg", "two.jpg"}) {
      std::ofstream(sources + file, std::ios::binary) << "not decoded here: " << file;
      packer->PackFile(sources + file, core::gDataFolder + "Harbour.RXS", 0, "", true);
    }
    packer->Release();
  }
  void TearDown() override {
    if (previousData_) core::gDataFolder = *previousData_;
  }

  RegistrySnapshot kept_;
  AdvRegistryAccess reg_;
  std::optional<std::string> previousData_;
};

TEST_F(SettingsConformance, TheTitleBarsCloseSavesNothingAfterLoadAndActivation) {
  FrmSettings form;
  Show(form, Act::CloseByTitleBar);
  EXPECT_FALSE(form.Loaded());
  ASSERT_EQ(form.TvCollections.Count(), 1) << "the activation lists the collections once";
  EXPECT_EQ(form.TvCollections.Item(1).Text, "Harbour");
  EXPECT_EQ(form.OptTileImages.BackColor(), 0xFFFFFFu) << "load ran";
  EXPECT_EQ(form.CboMinutes.Value(), 5);
  for (const char* value : kValues) {
    EXPECT_EQ(reg_.ValueExists(core::ProductKey, value), kFalse) << value;
  }
  EXPECT_EQ(PathExists(core::gDataFolder + "Files.ini"), kFalse);
#ifdef _WIN32
  EXPECT_EQ(gFound, "tree \"TvCollections\", save \"Save\", enable \"Enable automatic Wallpaper "
                    "change\", none 0");
  EXPECT_EQ(form.hWnd, 0u) << "the window is gone";
#endif
}

TEST_F(SettingsConformance, APressOfSaveWritesTheSettingsTheRunValueAndFilesIni) {
  FrmSettings form;
  Show(form, Act::TickFirstAndSave);
  EXPECT_FALSE(form.Loaded());
  EXPECT_TRUE(form.TvCollections.Item(1).Checked);
  EXPECT_EQ(reg_.ReadDWORD(core::ProductKey, "Enable", -1), 1);
  EXPECT_EQ(reg_.ReadDWORD(core::ProductKey, "TimeInterval", -1), 5);
  EXPECT_EQ(reg_.ReadDWORD(core::ProductKey, "ChangeOrder", -1), 1);
  EXPECT_EQ(reg_.ReadDWORD(core::ProductKey, "Position", -1), 1);
  EXPECT_EQ(reg_.ReadDWORD(core::ProductKey, "AutoStart", -1), 0);
  // The registry class gives a text back with its stored terminator.
  EXPECT_EQ(reg_.ReadString(core::ProductKey, "Collections", "<none>"), std::string("Harbour;\0", 9));
  // Nothing ran the program with Windows before, so the box showed unticked and stays so.
  EXPECT_EQ(reg_.ValueExists(kRunKey, kRunValue), kFalse);
  const std::string index = core::gDataFolder + "Files.ini";
  EXPECT_EQ(ReadIniValue("Count", "Total", index), "2");
  const std::string first = ReadIniValue("Files", "1", index);
  const std::string second = ReadIniValue("Files", "2", index);
  EXPECT_TRUE((first == "Harbour\\one.jpg" && second == "Harbour\\two.jpg") ||
              (first == "Harbour\\two.jpg" && second == "Harbour\\one.jpg"))
      << first << ", " << second;

  // Once it starts with Windows, a save writes the run value with this program's own path.
  reg_.WriteString(kRunKey, kRunValue, "set before");
  FrmSettings again;
  Show(again, Act::TickFirstAndSave);
  EXPECT_EQ(again.ChkLoadWallpaper.Value(), 1);
  EXPECT_EQ(reg_.ReadString(kRunKey, kRunValue, "<none>"), ExpectedRunValue() + '\0');
  EXPECT_EQ(reg_.ReadDWORD(core::ProductKey, "AutoStart", -1), 1);
}

}  // namespace
}  // namespace quorvane::testing
