#include "app/MainWindow.h"

#include <cstdint>
#include <string>

#include "app/Resources.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "icons/modextracticon.h"
#include "platform/Application.h"
#include "platform/Service.h"
#include "platform/win32/Win32Application.h"

namespace quorvane::app {

namespace {

HICON LoadProgramIcon(HINSTANCE instance, int widthMetric, int heightMetric) {
  return static_cast<HICON>(::LoadImageA(instance, MAKEINTRESOURCEA(QUORVANE_PROGRAM_ICON),
                                         IMAGE_ICON, ::GetSystemMetrics(widthMetric),
                                         ::GetSystemMetrics(heightMetric), LR_SHARED));
}

// The application adapter acts on the main window once it knows its handle.
void ConnectApplication(std::uint32_t hWnd) {
  if (auto* application = dynamic_cast<platform::win32::Win32Application*>(
          &platform::Use<platform::Application>())) {
    application->SetMainWindow(hWnd);
  }
}

}  // namespace

// The main window's extras: the program's icon, the end of the message loop with the window,
// the application's pointer, and the registered messages by which programs outside drive it.
MainWindow::MainWindow(HINSTANCE instance, FrmMain& form)
    : form_(form),
      window_(form, instance,
              {.icon = LoadProgramIcon(instance, SM_CXICON, SM_CYICON),
               .smallIcon = LoadProgramIcon(instance, SM_CXSMICON, SM_CYSMICON),
               .quitWhenGone = true,
               .followsApplicationPointer = true}) {
  window_.OnRegisteredMessage(kExitMessage, [this] { form_.mnuExit_Click(); });
  window_.OnRegisteredMessage(kChangeWallpaperMessage,
                              [this] { form_.mnuChangeWallpaper_Click(); });
}

MainWindow::~MainWindow() = default;

void MainWindow::Load() {
  if (loaded_) return;
  loaded_ = true;
  window_.Create();
  ConnectApplication(form_.hWnd);
  // The shell's icon picker is a modal dialog of the main window.
  SetIconPickerOwner(form_.hWnd);
  LARGE_INTEGER frequency{};
  LARGE_INTEGER started{};
  LARGE_INTEGER ended{};
  ::QueryPerformanceFrequency(&frequency);
  ::QueryPerformanceCounter(&started);
  form_.Load();
  ::QueryPerformanceCounter(&ended);
  loadMilliseconds_ = static_cast<double>(ended.QuadPart - started.QuadPart) * 1000.0 /
                      static_cast<double>(frequency.QuadPart > 0 ? frequency.QuadPart : 1);
}

void MainWindow::Show() {
  Load();
  window_.Show();
}

int RunMessageLoop() {
  MSG message{};
  for (;;) {
    const BOOL result = ::GetMessageA(&message, nullptr, 0, 0);
    if (result == 0) return static_cast<int>(message.wParam);
    if (result == -1) return 1;
    ::TranslateMessage(&message);
    ::DispatchMessageA(&message);
  }
}

}  // namespace quorvane::app
