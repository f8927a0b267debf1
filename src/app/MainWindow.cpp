#include "app/MainWindow.h"

#include <cstdint>
#include <string>

#include "app/Resources.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "icons/modextracticon.h"
#include "platform/Application.h"
#include "platform/MessageBoxes.h"
#include "platform/Service.h"
#include "platform/win32/Win32Application.h"

namespace quorvane::app {

namespace {

HICON LoadProgramIcon(HINSTANCE instance, int widthMetric, int heightMetric) {
  return static_cast<HICON>(::LoadImageA(instance, MAKEINTRESOURCEA(QUORVANE_PROGRAM_ICON),
                                         IMAGE_ICON, ::GetSystemMetrics(widthMetric),
                                         ::GetSystemMetrics(heightMetric), LR_SHARED));
}

// The form's routines for its own surface, connected when the form has them.
template <class Form>
void ConnectFormSurface(Form& form, ui::win32::FormWindow& window) {
  using Button = std::int16_t;
  if constexpr (requires(Form& f, Button b, float x) { f.Form_MouseDown(b, b, x, x); }) {
    window.MouseDown = [&form](Button button, Button shift, float x, float y) {
      form.Form_MouseDown(button, shift, x, y);
    };
  }
  if constexpr (requires(Form& f, Button b, float x) { f.Form_MouseMove(b, b, x, x); }) {
    window.MouseMove = [&form](Button button, Button shift, float x, float y) {
      form.Form_MouseMove(button, shift, x, y);
    };
  }
}

// The application adapter acts on the main window once it knows its handle.
void ConnectApplication(std::uint32_t hWnd) {
  if (auto* application = dynamic_cast<platform::win32::Win32Application*>(
          &platform::Use<platform::Application>())) {
    application->SetMainWindow(hWnd);
  }
}

}  // namespace

MainWindow::MainWindow(HINSTANCE instance, FrmMain& form)
    : form_(form),
      icon_(LoadProgramIcon(instance, SM_CXICON, SM_CYICON)),
      smallIcon_(LoadProgramIcon(instance, SM_CXSMICON, SM_CYSMICON)),
      window_(form, instance, icon_, smallIcon_) {
  window_.QueryUnload = [this](std::int16_t unloadMode) {
    std::int16_t cancel = 0;
    form_.Form_QueryUnload(cancel, unloadMode);
    return cancel != 0;
  };
  window_.Unloaded = [] { ::PostQuitMessage(0); };
  // A failure that reaches the top of an event: the user is told, a line goes to the log in
  // the data folder, and the program goes on with the next event.
  window_.Failed = [](const std::exception& failure) {
    core::ReportError("FrmMain", "event");
    platform::Use<platform::MessageBoxes>().MsgBox(
        failure.what(), platform::msgbox::kOkOnly | platform::msgbox::kExclamation);
  };
  window_.OnRegisteredMessage(kExitMessage, [this] { form_.mnuExit_Click(); });
  window_.OnRegisteredMessage(kChangeWallpaperMessage,
                              [this] { form_.mnuChangeWallpaper_Click(); });
  ConnectFormSurface(form_, window_);
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
  form_.Form_Load();
  ::QueryPerformanceCounter(&ended);
  loadMilliseconds_ = static_cast<double>(ended.QuadPart - started.QuadPart) * 1000.0 /
                      static_cast<double>(frequency.QuadPart > 0 ? frequency.QuadPart : 1);
}

void MainWindow::Show() {
  Load();
  window_.Show();
}

int RunMessageLoop(MainWindow& mainWindow) {
  MSG message{};
  for (;;) {
    const BOOL result = ::GetMessageA(&message, nullptr, 0, 0);
    if (result == 0) return static_cast<int>(message.wParam);
    if (result == -1) return 1;
    ::TranslateMessage(&message);
    ::DispatchMessageA(&message);
    mainWindow.Window().ApplyFormVisible();
  }
}

}  // namespace quorvane::app
