#pragma once
// The portable build's platform: one adapter of every port, each installed for the life of this
// object and put back as it was afterwards. This is the one list of the portable adapters; tests,
// benchmarks and fuzzers hold one and reach a concrete adapter through the accessor named after
// its port (the message boxes' queue, the recording shell, the registry in memory...).
//
// The forms port is not among them: the forms adapter is installed beside this object by whoever
// shows forms, on its own line.
#include <cstdint>

#include "platform/Application.h"
#include "platform/Clipboard.h"
#include "platform/Clock.h"
#include "platform/CodePages.h"
#include "platform/CollectionPacker.h"
#include "platform/DeviceContexts.h"
#include "platform/Drives.h"
#include "platform/EventLoop.h"
#include "platform/FileDialogs.h"
#include "platform/FileSystem.h"
#include "platform/FileTypes.h"
#include "platform/Icons.h"
#include "platform/Menus.h"
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
#include "platform/portable/DecodedPictures.h"
#include "platform/portable/GcabCollectionPacker.h"
#include "platform/portable/MemoryRegistry.h"
#include "platform/portable/PortableApplication.h"
#include "platform/portable/PortableClipboard.h"
#include "platform/portable/PortableClock.h"
#include "platform/portable/PortableCodePages.h"
#include "platform/portable/PortableDeviceContexts.h"
#include "platform/portable/PortableDrives.h"
#include "platform/portable/PortableEventLoop.h"
#include "platform/portable/PortableFileDialogs.h"
#include "platform/portable/PortableFileSystem.h"
#include "platform/portable/PortableFileTypes.h"
#include "platform/portable/PortableIcons.h"
#include "platform/portable/PortableMenus.h"
#include "platform/portable/PortableMessageBoxes.h"
#include "platform/portable/PortableNotification.h"
#include "platform/portable/PortablePageBackgrounds.h"
#include "platform/portable/PortableProcess.h"
#include "platform/portable/PortableProfileFiles.h"
#include "platform/portable/PortableResourcePictures.h"
#include "platform/portable/PortableSystemInfo.h"
#include "platform/portable/PortableTray.h"
#include "platform/portable/PortableWindowActions.h"
#include "platform/portable/RecordingShellRequests.h"
#include "platform/portable/RecordingWallpaper.h"

namespace quorvane::platform::portable {

class PortablePlatform {
 public:
  // The screen the device contexts draw on: black, of this size.
  struct Screen {
    std::int32_t width = 1024;
    std::int32_t height = 768;
  };

  PortablePlatform() : PortablePlatform(Screen{}) {}
  explicit PortablePlatform(Screen screen);
  PortablePlatform(const PortablePlatform&) = delete;
  PortablePlatform& operator=(const PortablePlatform&) = delete;

  PortableProcess& Process() { return process_.Get(); }
  MemoryRegistry& RegistryStore() { return registryStore_.Get(); }
  PortableFileSystem& FileSystem() { return fileSystem_.Get(); }
  PortableProfileFiles& ProfileFiles() { return profileFiles_.Get(); }
  PortableEventLoop& EventLoop() { return eventLoop_.Get(); }
  PortableDeviceContexts& DeviceContexts() { return deviceContexts_.Get(); }
  PortableClipboard& Clipboard() { return clipboard_.Get(); }
  PortableIcons& Icons() { return icons_.Get(); }
  PortableMessageBoxes& MessageBoxes() { return messageBoxes_.Get(); }
  PortableClock& Clock() { return clock_.Get(); }
  PortableSystemInfo& SystemInfo() { return systemInfo_.Get(); }
  PortableTray& Tray() { return tray_.Get(); }
  PortableNotification& Notification() { return notification_.Get(); }
  PortableApplication& Application() { return application_.Get(); }
  PortableResourcePictures& ResourcePictures() { return resourcePictures_.Get(); }
  RecordingShellRequests& ShellRequests() { return shellRequests_.Get(); }
  GcabCollectionPackers& CollectionPackers() { return collectionPackers_.Get(); }
  DecodedPictures& Pictures() { return pictures_.Get(); }
  RecordingWallpaper& Wallpaper() { return wallpaper_.Get(); }
  PortableWindowActions& WindowActions() { return windowActions_.Get(); }
  PortableMenus& Menus() { return menus_.Get(); }
  PortableCodePages& CodePages() { return codePages_.Get(); }
  PortablePageBackgrounds& PageBackgrounds() { return pageBackgrounds_.Get(); }
  PortableDrives& Drives() { return drives_.Get(); }
  PortableFileDialogs& FileDialogs() { return fileDialogs_.Get(); }
  PortableFileTypes& FileTypes() { return fileTypes_.Get(); }

 private:
  // In this order: the clipboard and the icons draw through the device contexts made before.
  Installed<platform::Process, PortableProcess> process_;
  Installed<platform::RegistryStore, MemoryRegistry> registryStore_;
  Installed<platform::FileSystem, PortableFileSystem> fileSystem_;
  Installed<platform::ProfileFiles, PortableProfileFiles> profileFiles_;
  Installed<platform::EventLoop, PortableEventLoop> eventLoop_;
  Installed<platform::DeviceContexts, PortableDeviceContexts> deviceContexts_;
  Installed<platform::Clipboard, PortableClipboard> clipboard_;
  Installed<platform::Icons, PortableIcons> icons_;
  Installed<platform::MessageBoxes, PortableMessageBoxes> messageBoxes_;
  Installed<platform::Clock, PortableClock> clock_;
  Installed<platform::SystemInfo, PortableSystemInfo> systemInfo_;
  Installed<platform::Tray, PortableTray> tray_;
  Installed<platform::Notification, PortableNotification> notification_;
  Installed<platform::Application, PortableApplication> application_;
  Installed<platform::ResourcePictures, PortableResourcePictures> resourcePictures_;
  Installed<platform::ShellRequests, RecordingShellRequests> shellRequests_;
  Installed<platform::CollectionPackers, GcabCollectionPackers> collectionPackers_;
  Installed<platform::Pictures, DecodedPictures> pictures_;
  Installed<platform::Wallpaper, RecordingWallpaper> wallpaper_;
  Installed<platform::WindowActions, PortableWindowActions> windowActions_;
  Installed<platform::Menus, PortableMenus> menus_;
  Installed<platform::CodePages, PortableCodePages> codePages_;
  Installed<platform::PageBackgrounds, PortablePageBackgrounds> pageBackgrounds_;
  Installed<platform::Drives, PortableDrives> drives_;
  Installed<platform::FileDialogs, PortableFileDialogs> fileDialogs_;
  Installed<platform::FileTypes, PortableFileTypes> fileTypes_;
};

}  // namespace quorvane::platform::portable
