// Forms shown through the build's Forms adapter: a modeless form loads, shows and stays up until
// the program unloads it. On Windows the form is real windows of the one binding: the busy
// window FrmWorking as a thin-framed tool window with no caption bar, owned and not activated,
// its inside the size of its picture; and every control of the main window, the thumbnail strip
// and the wallpaper page among them, found from outside by its system name.
#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

#include "Support.h"

#include "core/FrmMain.h"
#include "core/FrmWorking.h"
#include "platform/EventLoop.h"
#include "platform/Forms.h"
#include "platform/Pictures.h"
#include "platform/Service.h"
#include "ui/Controls.h"
#include "wallpaper/FrmSlideShow.h"

#ifdef _WIN32
#include <windows.h>

#include "ui/win32/FormWindow.h"
#endif

namespace quorvane::testing {
namespace {

#ifdef _WIN32
HWND Native(std::uint32_t handle) {
  return reinterpret_cast<HWND>(static_cast<INT_PTR>(static_cast<int>(handle)));
}

std::string ClassOf(HWND window) {
  char name[256] = {};
  ::GetClassNameA(window, name, static_cast<int>(sizeof name));
  return name;
}

std::string TextOf(HWND window) {
  char text[256] = {};
  ::GetWindowTextA(window, text, static_cast<int>(sizeof text));
  return text;
}

HWND Lookup(HWND form, const std::string& systemName) {
  const UINT find = ::RegisterWindowMessageA("Quorvane.FindControl");
  const ATOM atom = ::GlobalAddAtomA(systemName.c_str());
  const auto window = reinterpret_cast<HWND>(::SendMessageA(form, find, atom, 0));
  ::GlobalDeleteAtom(atom);
  return window;
}
#endif

class FormsConformance : public ::testing::Test {
 protected:
  void SetUp() override {
#ifdef _WIN32
    if (!HasScreen()) FAIL() << "no screen to show the forms on: these cases run on a virtual one (scripts/gtest-on-screen.sh, settings_on_screen in make test)";
#endif
  }
};

TEST_F(FormsConformance, AModelessFormStaysUpUntilTheProgramUnloadsIt) {
  FrmWorking form;
  auto& forms = platform::Use<platform::Forms>();
  forms.Show(form, false, 0);
  EXPECT_TRUE(form.Loaded());
  EXPECT_TRUE(form.Visible());
#ifdef _WIN32
  const HWND window = Native(form.hWnd);
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(ClassOf(window), "QuorvaneWorking");
  EXPECT_EQ(TextOf(window), "FrmWorking") << "a window without a caption carries its name";
  const auto style = static_cast<DWORD>(::GetWindowLongPtrA(window, GWL_STYLE));
  const auto extended = static_cast<DWORD>(::GetWindowLongPtrA(window, GWL_EXSTYLE));
  EXPECT_NE(style & WS_BORDER, 0u);
  EXPECT_NE(style & WS_VISIBLE, 0u);
  EXPECT_NE(style & WS_POPUP, 0u);
  EXPECT_EQ(style & WS_CAPTION, static_cast<DWORD>(WS_BORDER)) << "no caption bar";
  EXPECT_NE(extended & WS_EX_TOOLWINDOW, 0u);
  RECT inside{};
  ::GetClientRect(window, &inside);
  EXPECT_EQ(inside.right * ui::kTwipsPerPixel, form.Width);
  EXPECT_EQ(inside.bottom * ui::kTwipsPerPixel, form.Height);
#endif
  forms.Unload(form);
  EXPECT_FALSE(form.Loaded());
  EXPECT_FALSE(form.Visible());
#ifdef _WIN32
  EXPECT_EQ(form.hWnd, 0u);
  EXPECT_FALSE(::IsWindow(window));
#endif
}

TEST_F(FormsConformance, AModelessFormThatUnloadsItselfMayGoBeforeItsWindowsBinding) {
  auto& forms = platform::Use<platform::Forms>();
  // The form lives in memory of the test's own, so that what touches it after its end shows.
  alignas(FrmWorking) unsigned char memory[sizeof(FrmWorking)];
  auto* form = new (memory) FrmWorking;
  forms.Show(*form, false, 0);
  ASSERT_TRUE(form->Loaded());
  form->Unload();
  EXPECT_FALSE(form->Loaded());
  form->~FrmWorking();
  std::memset(memory, 0x5A, sizeof memory);
  // The next modeless show lets go of the bindings whose windows are gone.
  FrmWorking next;
  forms.Show(next, false, 0);
  forms.Unload(next);
  for (const unsigned char byte : memory) {
    ASSERT_EQ(byte, 0x5A) << "the binding wrote into the form after the form's end";
  }
}

#ifdef _WIN32
TEST_F(FormsConformance, EveryControlOfTheMainWindowIsFoundByItsSystemName) {
  FrmMain form;
  ui::win32::FormWindow window(form, ::GetModuleHandleA(nullptr));
  window.Create();
  const HWND main = window.Handle();
  ASSERT_NE(main, nullptr);
  EXPECT_EQ(ClassOf(main), "QuorvaneMain");
  EXPECT_EQ(TextOf(main), "Quorvane");
  int found = 0;
  for (ui::Control* control : form.Controls()) {
    const std::string name = ui::SystemNameOf(*control);
    const HWND shown = Lookup(main, name);
    if (dynamic_cast<ui::Timer*>(control) != nullptr) {
      EXPECT_EQ(shown, nullptr) << name << ": a timer has no window";
      continue;
    }
    ASSERT_NE(shown, nullptr) << name;
    EXPECT_EQ(shown, Native(control->hWnd)) << name;
    ++found;
    // Windows that show their text show the caption; the rest carry the system name.
    const auto* button = dynamic_cast<ui::CheckBox*>(control);
    if (button == nullptr && dynamic_cast<ui::OptionButton*>(control) == nullptr) {
      EXPECT_EQ(TextOf(shown), name);
    }
  }
  EXPECT_EQ(found + 1, static_cast<int>(form.Controls().size())) << "all but Timer1 have a window";
  EXPECT_NE(Lookup(main, "optThumb(0)"), nullptr);
  EXPECT_EQ(Lookup(main, "optThumb(1)"), nullptr);
  EXPECT_EQ(Lookup(main, "NoSuchControl"), nullptr);
  window.Destroy();
  EXPECT_EQ(form.hWnd, 0u);
}

// A slide show whose step is made while Escape waits in the queue: the key, meant for the control
// with the focus, is taken by the step's own yield, and must reach the form there as it does at
// any other time.
struct EscapeDuringAStep {
  FrmSlideShow* show = nullptr;
  bool stepped = false;
  bool goneInTheStep = false;
};
EscapeDuringAStep* gEscapeCase = nullptr;

void CALLBACK StepWithEscapeWaiting(HWND, UINT, UINT_PTR timer, DWORD) {
  ::KillTimer(nullptr, timer);
  EscapeDuringAStep& escapeCase = *gEscapeCase;
  FrmSlideShow& show = *escapeCase.show;
  const HWND focused = Native(show.CboInterval.hWnd);
  ::SetFocus(focused);
  ::PostMessageA(focused, WM_KEYDOWN, VK_ESCAPE, 0x00010001);
  ::PostMessageA(focused, WM_KEYUP, VK_ESCAPE, static_cast<LPARAM>(0xC0010001u));
  show.CmdNext_Click();
  escapeCase.stepped = true;
  escapeCase.goneInTheStep = !show.Loaded();
  // Ends the show all the same, so that a key lost on the way fails the case rather than hangs it.
  if (show.Loaded()) show.Unload();
}

TEST_F(FormsConformance, EscapeThatComesWhileTheSlideShowYieldsInAStepClosesIt) {
  const std::string folder = FreshTempFolder();
  ui::Pixels picture{8, 6, std::vector<std::uint32_t>(48, 0xFF336699u)};
  platform::Use<platform::Pictures>().SavePicture(picture, folder + "a.bmp");
  FrmSlideShow show;
  // No folder of that name: the show lists nothing and steps through the one path given.
  show.Tag = "NoSuchCollection";
  show.SlideFiles = {folder + "a.bmp"};
  EscapeDuringAStep escapeCase;
  escapeCase.show = &show;
  gEscapeCase = &escapeCase;
  ASSERT_NE(::SetTimer(nullptr, 0, 200, &StepWithEscapeWaiting), 0u);
  platform::Use<platform::Forms>().Show(show, true, 0);
  gEscapeCase = nullptr;
  EXPECT_TRUE(escapeCase.stepped);
  EXPECT_TRUE(escapeCase.goneInTheStep) << "Escape taken by the step's yield did not reach the form";
  EXPECT_FALSE(show.Loaded());
  EXPECT_EQ(show.LblInformation.Caption(), "a.bmp") << "the step went on to its end";
}
#endif

}  // namespace
}  // namespace quorvane::testing
