#pragma once
// The Windows build's platform: one adapter of every port over the real Windows API, each
// installed for the life of this object and put back as it was afterwards. This is the one list
// of the Windows adapters; the program, the conformance suite and the benchmarks hold one, and
// reach a concrete adapter through the accessor named after its port (the application, whose
// main window the binding sets...).
//
// The forms port is not among them: its Windows adapter belongs to the binding, above the
// adapters, and is installed beside this object by whoever shows forms, on its own line.
#include "platform/Application.h"
#include "platform/Clipboard.h"
#include "platform/Clock.h"
#include "platform/CodePages.h"
#include "platform/CollectionPacker.h"
#include "platform/DeviceContexts.h"
#include "platform/EventLoop.h"
#include "platform/FileDialogs.h"
#include "platform/FileSystem.h"
#include "platform/Drives.h"
#include "platform/FileTypes.h"
#include "platform/Icons.h"
#include "platform/MessageBoxes.h"
#include "platform/Notification.h"
#include "platform/PageBackgrounds.h"
#include "platform/Pictures.h"
#include "platform/Process.h"
#include "platform/ProfileFiles.h"
#include "platform/RegistryStore.h"
#include "platform/ResourcePictures.h"
#include "platform/Service.h"
#include "platform/ShellRequests.h"
#include "platform/SystemInfo.h"
#include "platform/Tray.h"
#include "platform/Wallpaper.h"
#include "platform/WindowActions.h"
#include "platform/win32/Win32Application.h"
#include "platform/win32/Win32Clipboard.h"
#include "platform/win32/Win32Clock.h"
#include "platform/win32/Win32CodePages.h"
#include "platform/win32/Win32CollectionPacker.h"
#include "platform/win32/Win32DeviceContexts.h"
#include "platform/win32/Win32EventLoop.h"
#include "platform/win32/Win32FileDialogs.h"
#include "platform/win32/Win32FileSystem.h"
#include "platform/win32/Win32Drives.h"
#include "platform/win32/Win32FileTypes.h"
#include "platform/win32/Win32Icons.h"
#include "platform/win32/Win32MessageBoxes.h"
#include "platform/win32/Win32Notification.h"
#include "platform/win32/Win32PageBackgrounds.h"
#include "platform/win32/Win32Pictures.h"
#include "platform/win32/Win32Process.h"
#include "platform/win32/Win32ProfileFiles.h"
#include "platform/win32/Win32Registry.h"
#include "platform/win32/Win32ResourcePictures.h"
#include "platform/win32/Win32ShellRequests.h"
#include "platform/win32/Win32SystemInfo.h"
#include "platform/win32/Win32Tray.h"
#include "platform/win32/Win32Wallpaper.h"
#include "platform/win32/Win32WindowActions.h"

namespace quorvane::platform::win32 {

class Win32Platform {
 public:
  Win32Platform() = default;
  Win32Platform(const Win32Platform&) = delete;
  Win32Platform& operator=(const Win32Platform&) = delete;

  Win32Process& Process() { return process_.Get(); }
  Win32Registry& RegistryStore() { return registryStore_.Get(); }
  Win32FileSystem& FileSystem() { return fileSystem_.Get(); }
  Win32ProfileFiles& ProfileFiles() { return profileFiles_.Get(); }
  Win32EventLoop& EventLoop() { return eventLoop_.Get(); }
  Win32DeviceContexts& DeviceContexts() { return deviceContexts_.Get(); }
  Win32Clipboard& Clipboard() { return clipboard_.Get(); }
  Win32Icons& Icons() { return icons_.Get(); }
  Win32MessageBoxes& MessageBoxes() { return messageBoxes_.Get(); }
  Win32Clock& Clock() { return clock_.Get(); }
  Win32SystemInfo& SystemInfo() { return systemInfo_.Get(); }
  Win32Tray& Tray() { return tray_.Get(); }
  Win32Notification& Notification() { return notification_.Get(); }
  Win32Application& Application() { return application_.Get(); }
  Win32ResourcePictures& ResourcePictures() { return resourcePictures_.Get(); }
  Win32ShellRequests& ShellRequests() { return shellRequests_.Get(); }
  Win32CollectionPackers& CollectionPackers() { return collectionPackers_.Get(); }
  Win32Pictures& Pictures() { return pictures_.Get(); }
  Win32Wallpaper& Wallpaper() { return wallpaper_.Get(); }
  Win32WindowActions& WindowActions() { return windowActions_.Get(); }
  Win32CodePages& CodePages() { return codePages_.Get(); }
  Win32PageBackgrounds& PageBackgrounds() { return pageBackgrounds_.Get(); }
  Win32Drives& Drives() { return drives_.Get(); }
  Win32FileDialogs& FileDialogs() { return fileDialogs_.Get(); }
  Win32FileTypes& FileTypes() { return fileTypes_.Get(); }

 private:
  Installed<platform::Process, Win32Process> process_;
  Installed<platform::RegistryStore, Win32Registry> registryStore_;
  Installed<platform::FileSystem, Win32FileSystem> fileSystem_;
  Installed<platform::ProfileFiles, Win32ProfileFiles> profileFiles_;
  Installed<platform::EventLoop, Win32EventLoop> eventLoop_;
  Installed<platform::DeviceContexts, Win32DeviceContexts> deviceContexts_;
  Installed<platform::Clipboard, Win32Clipboard> clipboard_;
  Installed<platform::Icons, Win32Icons> icons_;
  Installed<platform::MessageBoxes, Win32MessageBoxes> messageBoxes_;
  Installed<platform::Clock, Win32Clock> clock_;
  Installed<platform::SystemInfo, Win32SystemInfo> systemInfo_;
  Installed<platform::Tray, Win32Tray> tray_;
  Installed<platform::Notification, Win32Notification> notification_;
  Installed<platform::Application, Win32Application> application_;
  Installed<platform::ResourcePictures, Win32ResourcePictures> resourcePictures_;
  Installed<platform::ShellRequests, Win32ShellRequests> shellRequests_;
  Installed<platform::CollectionPackers, Win32CollectionPackers> collectionPackers_;
  Installed<platform::Pictures, Win32Pictures> pictures_;
  Installed<platform::Wallpaper, Win32Wallpaper> wallpaper_;
  Installed<platform::WindowActions, Win32WindowActions> windowActions_;
  Installed<platform::CodePages, Win32CodePages> codePages_;
  Installed<platform::PageBackgrounds, Win32PageBackgrounds> pageBackgrounds_;
  Installed<platform::Drives, Win32Drives> drives_;
  Installed<platform::FileDialogs, Win32FileDialogs> fileDialogs_;
  Installed<platform::FileTypes, Win32FileTypes> fileTypes_;
};

}  // namespace quorvane::platform::win32
