// The main window's ways to hide, show, close and end: its own close and minimise pictures, the
// close request of the system, and the tray menu's "Show/Hide" and "Exit".
#include <cstdint>

#include "appearance/ChangeSliderBG.h"
#include "core/FrmMain.h"
#include "core/mdlTray.h"
#include "platform/Application.h"
#include "platform/EventLoop.h"
#include "platform/Notification.h"
#include "platform/Service.h"

namespace quorvane {

namespace {

// An unload from code.
constexpr std::int16_t kUnloadFromCode = 1;

const char kStillRunning[] =
    "Quorvane is still running, right click on the tray icon to see more options.";

// Yields, removes the tray icon and yields again, twice over: the icon is gone before the
// process ends whatever the shell was busy with.
void RemoveTrayIconTwice() {
  platform::EventLoop& events = platform::Use<platform::EventLoop>();
  for (int i = 0; i < 2; ++i) {
    events.DoEvents();
    core::RemoveFromTray();
    events.DoEvents();
  }
}

void SetShown(FrmMain& form, bool visible) {
  form.Visible(visible);
  platform::Use<platform::Application>().SetMainWindowVisible(visible);
}

}  // namespace

void FrmMain::Form_QueryUnload(std::int16_t& Cancel, std::int16_t UnloadMode) {
  if (UnloadMode == 0) {
    // The close from the system menu or the keyboard: refused, nothing happens.
    Cancel = kTrue;
    return;
  }
  // From code, a log-off or shutdown, the task manager: hidden, and the unload goes on.
  SetShown(*this, false);
}

void FrmMain::PicClose_Click() {
  RemoveTrayIconTwice();
  // The slider's subclass and brush are given back; each step is safe when there is none.
  std::uint32_t picture1 = Picture1.hWnd;
  UnsubclassSliderParent(picture1);
  DeleteSliderBrush();
  platform::Application& application = platform::Use<platform::Application>();
  std::int16_t cancel = 0;
  Form_QueryUnload(cancel, kUnloadFromCode);
  if (cancel == 0) application.UnloadMainWindow();
  application.EndProcess();
}

void FrmMain::PicMin_Click() {
  SetShown(*this, false);
  platform::Notification& popup = platform::Use<platform::Notification>();
  popup.SetText(kStillRunning);
  popup.SetPicture(ui::Pixels{});
  popup.Show();
}

void FrmMain::mnuShowHide_Click() {
  if (!Visible()) {
    SetShown(*this, true);
    platform::Use<platform::Application>().FocusMainWindow();
  } else {
    SetShown(*this, false);
  }
}

void FrmMain::mnuExit_Click() {
  RemoveTrayIconTwice();
  // Nothing is unloaded: the subclass of the slider stays until the process is gone.
  platform::Use<platform::Application>().EndProcess();
}

}  // namespace quorvane
