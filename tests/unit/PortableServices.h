#pragma once
// Every portable service that the main window's routines reach, installed for the life of the
// object: the registry in memory, the host's files and profile files, the recording shell,
// application and wallpaper, the icons read from real files, collections packed with libgcab,
// pictures decoded from their files, the forms acting out queued user actions, and the
// rest. Tests of FrmMain hold one and read what it recorded; a test that wants a port of its own
// installs it over this one for its life.
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "platform/Service.h"
#include "platform/portable/DecodedPictures.h"
#include "platform/portable/GcabCollectionPacker.h"
#include "platform/portable/MemoryRegistry.h"
#include "platform/portable/PortableApplication.h"
#include "platform/portable/PortableDeviceContexts.h"
#include "platform/portable/PortableEventLoop.h"
#include "platform/portable/PortableFileSystem.h"
#include "platform/portable/PortableIcons.h"
#include "platform/portable/PortableMessageBoxes.h"
#include "platform/portable/PortableForms.h"
#include "platform/portable/PortableNotification.h"
#include "platform/portable/PortableProfileFiles.h"
#include "platform/portable/PortableResourcePictures.h"
#include "platform/portable/PortableSystemInfo.h"
#include "platform/portable/PortableTray.h"
#include "platform/portable/PortableWindowActions.h"
#include "platform/portable/RecordingShellRequests.h"
#include "platform/portable/RecordingWallpaper.h"
#include "stores/AdvRegistryAccess.h"
#include "ui/MemorySurface.h"

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
  platform::PortableProfileFiles profiles;
  platform::GcabCollectionPackers packers;
  platform::portable::DecodedPictures decoded;
  platform::portable::RecordingWallpaper wallpaper;
  platform::PortableWindowActions actions;
  platform::portable::PortableForms forms;

  // A machine for the main window's load routine: the application data folder and the program's
  // folder under `root`, and My Computer's stock icon, which the catalogue reads first.
  void PrepareLoad(const std::filesystem::path& root) {
    std::filesystem::create_directories(root / "appdata");
    system.SetFolder(0x1A, (root / "appdata").string());
    system.SetExecutableFolder((root / "program").string());
    AdvRegistryAccess(store).WriteString(
        "HKEY_CLASSES_ROOT\\CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\DefaultIcon", "",
        "Explorer.exe,0");
  }

  // Packs a collection "<name>.RXS" in the data folder, one PackFile a file, from files made
  // under sources\<name> with the content contentOf gives for each file's name.
  void PackCollection(const std::filesystem::path& sources, const std::string& name,
                      const std::vector<std::string>& names,
                      const std::function<std::string(const std::string& file)>& contentOf) {
    auto packer = packers.Create();
    for (const std::string& file : names) {
      const std::filesystem::path source = sources / name / file;
      std::filesystem::create_directories(source.parent_path());
      std::ofstream(source, std::ios::binary) << contentOf(file);
      packer->PackFile(source.string(), core::gDataFolder + name + ".RXS", 0, "", true);
    }
    packer->Release();
  }

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
  platform::ScopedService<platform::ProfileFiles> s13_{profiles};
  platform::ScopedService<platform::CollectionPackers> s14_{packers};
  platform::ScopedService<platform::Pictures> s15_{decoded};
  platform::ScopedService<platform::Wallpaper> s16_{wallpaper};
  platform::ScopedService<platform::WindowActions> s17_{actions};
  platform::ScopedService<platform::Forms> s18_{forms};
};

// The main window's three icon previews drawn in memory, as its binding gives them surfaces.
inline void PreviewsInMemory(FrmMain& form) {
  for (ui::PictureBox* box : {&form.sIcon, &form.lIcon, &form.mIcon}) {
    box->UseSurface(std::make_shared<ui::MemorySurface>());
  }
}

}  // namespace quorvane::testing
