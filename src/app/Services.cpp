#include "app/Services.h"

#include "platform/Service.h"
#include "platform/win32/Win32Application.h"
#include "platform/win32/Win32Clipboard.h"
#include "platform/win32/Win32Clock.h"
#include "platform/win32/Win32CollectionPacker.h"
#include "platform/win32/Win32DeviceContexts.h"
#include "platform/win32/Win32EventLoop.h"
#include "platform/win32/Win32FileSystem.h"
#include "platform/win32/Win32Icons.h"
#include "platform/win32/Win32MessageBoxes.h"
#include "platform/win32/Win32Notification.h"
#include "platform/win32/Win32Pictures.h"
#include "platform/win32/Win32Process.h"
#include "platform/win32/Win32ProfileFiles.h"
#include "platform/win32/Win32Registry.h"
#include "platform/win32/Win32ResourcePictures.h"
#include "platform/win32/Win32ShellRequests.h"
#include "platform/win32/Win32WindowActions.h"
#include "platform/win32/Win32SystemInfo.h"
#include "platform/win32/Win32Tray.h"
#include "platform/win32/Win32Wallpaper.h"
#include "ui/win32/Win32Forms.h"

namespace quorvane::app {

namespace {

// Puts one adapter in place for the life of the process.
template <class Port, class Adapter>
void InstallForGood() {
  static Adapter adapter;
  platform::Install<Port>(&adapter);
}

}  // namespace

void InstallWin32Services() {
  InstallForGood<platform::Process, platform::Win32Process>();
  InstallForGood<platform::RegistryStore, platform::Win32Registry>();
  InstallForGood<platform::ResourcePictures, platform::Win32ResourcePictures>();
  InstallForGood<platform::WindowActions, platform::Win32WindowActions>();
  InstallForGood<platform::ProfileFiles, platform::Win32ProfileFiles>();
  InstallForGood<platform::FileSystem, platform::Win32FileSystem>();
  InstallForGood<platform::EventLoop, platform::Win32EventLoop>();
  InstallForGood<platform::DeviceContexts, platform::win32::Win32DeviceContexts>();
  InstallForGood<platform::Clipboard, platform::win32::Win32Clipboard>();
  InstallForGood<platform::Icons, platform::win32::Win32Icons>();
  InstallForGood<platform::MessageBoxes, platform::win32::Win32MessageBoxes>();
  InstallForGood<platform::Clock, platform::win32::Win32Clock>();
  InstallForGood<platform::SystemInfo, platform::win32::Win32SystemInfo>();
  InstallForGood<platform::Tray, platform::win32::Win32Tray>();
  InstallForGood<platform::Notification, platform::win32::Win32Notification>();
  InstallForGood<platform::Application, platform::win32::Win32Application>();
  InstallForGood<platform::CollectionPackers, platform::Win32CollectionPackers>();
  InstallForGood<platform::ShellRequests, platform::win32::Win32ShellRequests>();
  InstallForGood<platform::Pictures, platform::win32::Win32Pictures>();
  InstallForGood<platform::Wallpaper, platform::win32::Win32Wallpaper>();
  InstallForGood<platform::Forms, ui::win32::Win32Forms>();
}

}  // namespace quorvane::app
