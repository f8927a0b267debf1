#include "app/Services.h"

#include "platform/Service.h"
#include "platform/win32/Win32Platform.h"
#include "ui/win32/Win32Forms.h"
#include "ui/win32/Win32Menus.h"

namespace quorvane::app {

void InstallWin32Services() {
  // Every adapter below the binding, installed for good.
  static platform::win32::Win32Platform platform;
  // The forms port: its Windows adapter is the binding's, so it is installed here, beside the
  // platform, on a line of its own.
  static platform::Installed<platform::Forms, ui::win32::Win32Forms> forms;
  // The pop-up menus, drawn by the binding.
  static platform::Installed<platform::Menus, ui::win32::Win32Menus> menus;
}

}  // namespace quorvane::app
