// The slider's background through the build's page backgrounds: brushes that are deleted once,
// a window procedure replaced and put back. On Windows over the real API and the one binding:
// the main window's Picture1 subclassed with the slider's procedure, the real trackbar's colour
// request answered with the brush, another static child of Picture1 with the old procedure's
// answer, and the slider's background read back from the screen in the brush's colour.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "Support.h"
#include "appearance/ChangeSliderBG.h"
#include "core/FrmMain.h"
#include "platform/PageBackgrounds.h"
#include "platform/Service.h"

#ifdef _WIN32
#include <windows.h>
#include <commctrl.h>

#include "ui/win32/FormWindow.h"
#endif

namespace quorvane::testing {
namespace {

class SliderBackgroundConformance : public ::testing::Test {
 protected:
  void SetUp() override { Forget(); }
  void TearDown() override { Forget(); }
  // The module's globals start and end empty in every case.
  static void Forget() {
    gSliderBrush = 0;
    gSliderOldProc = 0;
    gSliderHwnd = 0;
  }
};

TEST_F(SliderBackgroundConformance, ABrushIsDeletedOnce) {
  auto& backgrounds = platform::Use<platform::PageBackgrounds>();
  const platform::GdiHandle brush = backgrounds.CreateSolidBrush(0xFFFFFF);
  ASSERT_NE(brush, 0u);
  EXPECT_NE(backgrounds.DeleteObject(brush), 0);
  EXPECT_EQ(backgrounds.DeleteObject(brush), 0);
}

TEST_F(SliderBackgroundConformance, NoWindowHasNoProcedureToReplace) {
  auto& backgrounds = platform::Use<platform::PageBackgrounds>();
  const std::intptr_t procedure = backgrounds.ProcedureAddress(&SliderParentProc);
  EXPECT_NE(procedure, 0);
  EXPECT_EQ(backgrounds.ProcedureAddress(&SliderParentProc), procedure) << "one value each";
  EXPECT_EQ(backgrounds.SetWindowLongPtrA(0, platform::window_long::kWndProc, procedure), 0);
  std::uint32_t none = 0;
  SubclassSliderParent(none);
  EXPECT_EQ(gSliderOldProc, 0) << "a failed subclassing leaves nothing to give back";
}

#ifdef _WIN32
HWND Native(std::uint32_t handle) {
  return reinterpret_cast<HWND>(static_cast<INT_PTR>(static_cast<int>(handle)));
}

// The screen's pixels over a window (0x00RRGGBB), row by row: what a person sees there.
std::vector<std::uint32_t> Capture(HWND window, int& width, int& height) {
  RECT area{};
  ::GetWindowRect(window, &area);
  width = area.right - area.left;
  height = area.bottom - area.top;
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) *
                                    static_cast<std::size_t>(height));
  HDC screen = ::GetDC(nullptr);
  HDC memory = ::CreateCompatibleDC(screen);
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  void* bits = nullptr;
  HBITMAP bitmap = ::CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  HGDIOBJ previous = ::SelectObject(memory, bitmap);
  ::BitBlt(memory, 0, 0, width, height, screen, area.left, area.top, SRCCOPY);
  ::GdiFlush();
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    pixels[i] = static_cast<const std::uint32_t*>(bits)[i] & 0xFFFFFFu;
  }
  ::SelectObject(memory, previous);
  ::DeleteObject(bitmap);
  ::DeleteDC(memory);
  ::ReleaseDC(nullptr, screen);
  return pixels;
}

// Lets the windows paint.
void Pump() {
  for (int i = 0; i < 20; ++i) {
    MSG message;
    while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
      ::TranslateMessage(&message);
      ::DispatchMessageA(&message);
    }
    ::Sleep(20);
  }
}

class SliderOnScreen : public SliderBackgroundConformance {
 protected:
  void SetUp() override {
    SliderBackgroundConformance::SetUp();
    if (!HasScreen()) FAIL() << "no screen to show the slider on: these cases run on a virtual one (scripts/gtest-on-screen.sh, settings_on_screen in make test)";
    window_.Create();
    // Only the appearance page is shown, in the middle of the window.
    for (ui::PictureBox* page : {&form_.PBPelmoraMain, &form_.PBFileSystem, &form_.PBWallpaper}) {
      page->Visible(false);
    }
    form_.PBAppearance.Visible(true);
    ::ShowWindow(window_.Handle(), SW_SHOWNORMAL);
    ::UpdateWindow(window_.Handle());
    Pump();
  }

  // The slider's share of pixels of `color` (0x00RRGGBB) on the screen, and its first row's.
  double Share(std::uint32_t color, bool& firstRow) {
    ::RedrawWindow(Native(form_.Slider.hWnd), nullptr, nullptr,
                   RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    Pump();
    int width = 0, height = 0;
    const std::vector<std::uint32_t> pixels = Capture(Native(form_.Slider.hWnd), width, height);
    std::size_t same = 0;
    for (std::uint32_t p : pixels) same += p == color ? 1 : 0;
    firstRow = width > 0;
    for (int x = 0; x < width; ++x) firstRow = firstRow && pixels[static_cast<std::size_t>(x)] == color;
    return pixels.empty() ? 0.0 : static_cast<double>(same) / static_cast<double>(pixels.size());
  }

  FrmMain form_;
  MainWindowScope installed_{form_};
  ui::win32::FormWindow window_{form_, ::GetModuleHandleA(nullptr)};
};

TEST_F(SliderOnScreen, TheRealTrackbarGetsTheBrushThroughPicture1sReplacedProcedure) {
  HWND picture1 = Native(form_.Picture1.hWnd);
  HWND slider = Native(form_.Slider.hWnd);
  ASSERT_NE(picture1, nullptr);
  ASSERT_NE(slider, nullptr);
  ASSERT_EQ(::GetParent(slider), picture1);
  char className[64] = {};
  ::GetClassNameA(slider, className, sizeof className);
  EXPECT_STREQ(className, TRACKBAR_CLASSA);
  const auto own = ::GetWindowLongPtrA(picture1, GWLP_WNDPROC);

  // A red brush first, so that what the screen shows can only be the brush.
  std::uint32_t red = 0x0000FF;
  bool recreate = false;
  CreateSliderBrush(red, recreate);
  gSliderHwnd = form_.Slider.hWnd;
  std::uint32_t parent = form_.Picture1.hWnd;
  SubclassSliderParent(parent);
  EXPECT_EQ(gSliderOldProc, own);
  EXPECT_NE(::GetWindowLongPtrA(picture1, GWLP_WNDPROC), own);
  HDC dc = ::GetDC(slider);
  EXPECT_EQ(::SendMessageA(picture1, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc),
                           reinterpret_cast<LPARAM>(slider)),
            static_cast<LRESULT>(static_cast<INT_PTR>(static_cast<int>(gSliderBrush))));
  ::ReleaseDC(slider, dc);
  bool firstRow = false;
  EXPECT_GT(Share(0xFF0000, firstRow), 0.6) << "the slider's background is the brush's red";
  EXPECT_TRUE(firstRow);

  // Another static child of Picture1 gets the answer of Picture1's own procedure.
  HWND other = ::CreateWindowExA(0, "STATIC", "", WS_CHILD, 0, 0, 10, 10, picture1, nullptr,
                                 ::GetModuleHandleA(nullptr), nullptr);
  ASSERT_NE(other, nullptr);
  HDC otherDc = ::GetDC(other);
  const LRESULT answer = ::SendMessageA(picture1, WM_CTLCOLORSTATIC,
                                        reinterpret_cast<WPARAM>(otherDc),
                                        reinterpret_cast<LPARAM>(other));
  const LRESULT expected = ::CallWindowProcA(reinterpret_cast<WNDPROC>(own), picture1,
                                             WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(otherDc),
                                             reinterpret_cast<LPARAM>(other));
  ::ReleaseDC(other, otherDc);
  ::DestroyWindow(other);
  EXPECT_EQ(answer, expected);
  EXPECT_NE(answer, static_cast<LRESULT>(static_cast<INT_PTR>(static_cast<int>(gSliderBrush))));

  // The white brush, as the load makes it: a second brush deletes the first.
  const platform::GdiHandle first = gSliderBrush;
  std::uint32_t white = 0xFFFFFF;
  recreate = true;
  CreateSliderBrush(white, recreate);
  EXPECT_EQ(::GetObjectType(Native(first)), 0u) << "the red brush is gone";
  EXPECT_GT(Share(0xFFFFFF, firstRow), 0.6) << "the slider's background reads back white";
  EXPECT_TRUE(firstRow);

  // Put back, twice: the second time does nothing.
  UnsubclassSliderParent(parent);
  EXPECT_EQ(::GetWindowLongPtrA(picture1, GWLP_WNDPROC), own);
  EXPECT_EQ(gSliderOldProc, 0);
  UnsubclassSliderParent(parent);
  EXPECT_EQ(::GetWindowLongPtrA(picture1, GWLP_WNDPROC), own);
  DeleteSliderBrush();
  DeleteSliderBrush();
  EXPECT_EQ(gSliderBrush, 0u);
}

TEST_F(SliderOnScreen, ThePreviewShowsTheDesktopsOwnColour) {
  HWND preview = Native(form_.PBDesktop.hWnd);
  ASSERT_NE(preview, nullptr);
  ::RedrawWindow(preview, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  Pump();
  int width = 0, height = 0;
  const std::vector<std::uint32_t> pixels = Capture(preview, width, height);
  ASSERT_FALSE(pixels.empty());
  const COLORREF desktop = ::GetSysColor(COLOR_BACKGROUND);
  const std::uint32_t expected = ((desktop & 0xFFu) << 16) | (desktop & 0xFF00u) |
                                 ((desktop >> 16) & 0xFFu);
  EXPECT_EQ(pixels[pixels.size() - 1], expected) << "the preview's bottom right corner";
  EXPECT_EQ(pixels[static_cast<std::size_t>(width) * 2 + 2], expected) << "its top left";
}

TEST_F(SliderOnScreen, Picture1sDestructionTakesTheBrushAndTheSubclassBack) {
  std::uint32_t white = 0xFFFFFF;
  bool recreate = false;
  CreateSliderBrush(white, recreate);
  const platform::GdiHandle brush = gSliderBrush;
  gSliderHwnd = form_.Slider.hWnd;
  std::uint32_t parent = form_.Picture1.hWnd;
  SubclassSliderParent(parent);
  ASSERT_NE(gSliderOldProc, 0);
  window_.Destroy();
  EXPECT_EQ(gSliderBrush, 0u);
  EXPECT_EQ(gSliderOldProc, 0);
  EXPECT_EQ(::GetObjectType(Native(brush)), 0u);
}
#endif

}  // namespace
}  // namespace quorvane::testing
