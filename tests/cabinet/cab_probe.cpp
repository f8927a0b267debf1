// A command-line front to the collection packer of this build, for the checks that run it beside
// other cabinet tools and across the two builds, and that stop it half-way:
//
//   cab_probe pack ARCHIVE FILE...            adds the files in one packer and releases it
//   cab_probe unpack ARCHIVE FOLDER [ENTRY]   unpacks every entry, or the one named
//
// A failure prints its description and ends with status 1.
#include <cstdio>
#include <string>

#include "base/Failure.h"
#include "platform/CollectionPacker.h"
#include "platform/Service.h"
#ifdef _WIN32
#include "platform/win32/Win32CollectionPacker.h"
using Packers = quorvane::platform::win32::Win32CollectionPackers;
#else
#include "platform/portable/GcabCollectionPacker.h"
using Packers = quorvane::platform::portable::GcabCollectionPackers;
#endif

int main(int argc, char** argv) {
  using namespace quorvane;
  Packers packers;
  platform::ScopedService<platform::CollectionPackers> installed(packers);
  const std::string mode = argc > 1 ? argv[1] : "";
  try {
    auto packer = platform::Use<platform::CollectionPackers>().Create();
    if (mode == "pack" && argc >= 4) {
      for (int i = 3; i < argc; ++i) packer->PackFile(argv[i], argv[2], 0, "", true);
      std::printf("packing\n");
      std::fflush(stdout);
      packer->Release();
    } else if (mode == "unpack" && (argc == 4 || argc == 5)) {
      packer->UnpackFiles(argv[2], argv[3], argc == 5 ? argv[4] : "");
    } else {
      std::fprintf(stderr, "usage: cab_probe pack ARCHIVE FILE... | unpack ARCHIVE FOLDER [ENTRY]\n");
      return 2;
    }
  } catch (const Failure& failure) {
    std::printf("failure %d: %s\n", static_cast<int>(failure.Number()), failure.what());
    return 1;
  }
  std::printf("done\n");
  return 0;
}
