#pragma once
// Every portable service that the main window's routines reach, installed for the life of the
// object: the registry in memory, the host's files, the recording shell and application, the
// icons read from real files, and the rest. Tests of FrmMain hold one and read what it recorded.
#include "platform/Service.h"
#include "platform/portable/MemoryRegistry.h"
#include "platform/portable/PortableApplication.h"
#include "platform/portable/PortableDeviceContexts.h"
#include "platform/portable/PortableEventLoop.h"
#include "platform/portable/PortableFileSystem.h"
#include "platform/portable/PortableIcons.h"
#include "platform/portable/PortableMessageBoxes.h"
#include "platform/portable/PortableNotification.h"
#include "platform/portable/PortableResourcePictures.h"
#include "platform/portable/PortableSystemInfo.h"
#include "platform/portable/PortableTray.h"
#include "platform/portable/RecordingShellRequests.h"

namespace quorvane::testing {

struct PortableServices {
  platform::MemoryRegistry store;
  platform::PortableFileSystem files;
  platform::PortableEventLoop events;
  platform::portable::PortableDeviceContexts gdi;
  platform::portable::PortableIcons icons{gdi};
  platform::portable::PortableSystemInfo system;
  platform::portable::PortableTray tray;
  platform::portable::PortableMessageBoxes boxes;
  platform::PortableResourcePictures pictures;
  platform::portable::PortableNotification notification;
  platform::portable::PortableApplication application;
  platform::portable::RecordingShellRequests shell;

 private:
  platform::ScopedService<platform::RegistryStore> s1_{store};
  platform::ScopedService<platform::FileSystem> s2_{files};
  platform::ScopedService<platform::EventLoop> s3_{events};
  platform::ScopedService<platform::DeviceContexts> s4_{gdi};
  platform::ScopedService<platform::Icons> s5_{icons};
  platform::ScopedService<platform::SystemInfo> s6_{system};
  platform::ScopedService<platform::Tray> s7_{tray};
  platform::ScopedService<platform::MessageBoxes> s8_{boxes};
  platform::ScopedService<platform::ResourcePictures> s9_{pictures};
  platform::ScopedService<platform::Notification> s10_{notification};
  platform::ScopedService<platform::Application> s11_{application};
  platform::ScopedService<platform::ShellRequests> s12_{shell};
};

}  // namespace quorvane::testing
