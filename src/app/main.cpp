// quorvane.exe: installs the Windows adapters, runs the entry, then keeps the process alive on
// the window's message loop for as long as the main window is loaded.
#include <windows.h>

#include <exception>

#include "app/MainWindow.h"
#include "app/Services.h"
#include "core/MainModule.h"
#include "platform/Service.h"

int WINAPI WinMain(HINSTANCE instance, HINSTANCE /*previous*/, LPSTR /*commandLine*/,
                   int /*showCommand*/) {
  using namespace quorvane;
  app::InstallWin32Services();
  app::MainWindow frmMain(instance);
  platform::ScopedService<core::MainForm> installedForm(frmMain);
  try {
    core::ShowMain();
  } catch (const std::exception& failure) {
    ::MessageBoxA(nullptr, failure.what(), app::kMainWindowText, MB_OK | MB_ICONERROR);
    return 1;
  }
  if (!frmMain.IsLoaded()) {
    return 0;
  }
  return app::RunMessageLoop();
}
