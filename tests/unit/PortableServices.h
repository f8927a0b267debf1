#pragma once
// Every portable service that the main window's routines reach, installed for the life of the
// object: the portable platform (the registry in memory, the host's files and profile files, the
// recording shell, application and wallpaper, the icons read from real files, collections packed
// with libgcab, pictures decoded from their files, and the rest) and, beside it, the forms
// acting out queued user actions. Tests of FrmMain hold one and read what it recorded; a test
// that wants a port of its own installs it over this one for its life.
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "platform/Service.h"
#include "platform/portable/PortableForms.h"
#include "platform/portable/PortablePlatform.h"
#include "stores/AdvRegistryAccess.h"
#include "platform/MemorySurface.h"

namespace quorvane::testing {

struct PortableServices {
  // Every portable adapter, installed for the life of this object.
  platform::portable::PortablePlatform adapters;
  // The forms port, installed beside the platform.
  platform::portable::PortableForms forms;

  // The adapters the tests read and steer, by the names the tests give them.
  platform::portable::MemoryRegistry& store = adapters.RegistryStore();
  platform::portable::PortableFileSystem& files = adapters.FileSystem();
  platform::portable::PortableEventLoop& events = adapters.EventLoop();
  platform::portable::PortableDeviceContexts& gdi = adapters.DeviceContexts();
  platform::portable::PortableIcons& icons = adapters.Icons();
  platform::portable::PortableSystemInfo& system = adapters.SystemInfo();
  platform::portable::PortableTray& tray = adapters.Tray();
  platform::portable::PortableMessageBoxes& boxes = adapters.MessageBoxes();
  platform::portable::PortableResourcePictures& pictures = adapters.ResourcePictures();
  platform::portable::PortableNotification& notification = adapters.Notification();
  platform::portable::PortableApplication& application = adapters.Application();
  platform::portable::RecordingShellRequests& shell = adapters.ShellRequests();
  platform::portable::PortableProfileFiles& profiles = adapters.ProfileFiles();
  platform::portable::GcabCollectionPackers& packers = adapters.CollectionPackers();
  platform::portable::DecodedPictures& decoded = adapters.Pictures();
  platform::portable::RecordingWallpaper& wallpaper = adapters.Wallpaper();
  platform::portable::PortableWindowActions& actions = adapters.WindowActions();
  platform::portable::PortableMenus& menus = adapters.Menus();

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
  platform::ScopedService<platform::Forms> formsInstalled_{forms};
};

// The main window's three icon previews drawn in memory, as its binding gives them surfaces.
inline void PreviewsInMemory(FrmMain& form) {
  for (ui::PictureBox* box : {&form.sIcon, &form.lIcon, &form.mIcon}) {
    box->UseSurface(std::make_shared<platform::MemorySurface>());
  }
}

}  // namespace quorvane::testing
