// quorvane.exe: installs the Windows adapters, makes FrmMain and its windows, runs the entry, then
// keeps the process alive on the window's message loop for as long as the main window is loaded.
#include <windows.h>
#include <ole2.h>

#include <exception>

#include "app/MainWindow.h"
#include "app/Services.h"
#include "app/StartupBenchmark.h"
#include "app/DesignPictures.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "core/Regimes.h"
#include "platform/MessageBoxes.h"
#include "platform/Service.h"

int WINAPI WinMain(HINSTANCE instance, HINSTANCE /*previous*/, LPSTR /*commandLine*/,
                   int /*showCommand*/) {
  using namespace quorvane;
  app::InstallWin32Services();
  // Every event of every form meets the top-level report: a line in the log, a message box.
  core::InstallTopLevelReport();
  // COM for the platform's pictures and for the accessible names of the controls.
  const HRESULT ole = ::OleInitialize(nullptr);
#ifdef QUORVANE_STARTUP_BENCHMARK
  app::StartupBenchmark benchmark;
#endif
  FrmMain frmMain;
  MainWindowScope installedWindow(frmMain);
  app::LoadDesignPictures(frmMain);
  app::MainWindow mainWindow(instance, frmMain);
  platform::ScopedService<core::MainForm> installedForm(mainWindow);
  try {
    core::ShowMain();
  } catch (const std::exception& failure) {
    // A failure out of the entry is shown; a window that came up stays up.
    platform::Use<platform::MessageBoxes>().MsgBox(
        failure.what(), platform::msgbox::kOkOnly | platform::msgbox::kCritical);
  }
#ifdef QUORVANE_STARTUP_BENCHMARK
  if (benchmark.Active()) benchmark.Shown(mainWindow, frmMain);
#endif
  int exitCode = 0;
  if (mainWindow.IsLoaded()) exitCode = app::RunMessageLoop();
  if (SUCCEEDED(ole)) ::OleUninitialize();
  return exitCode;
}
