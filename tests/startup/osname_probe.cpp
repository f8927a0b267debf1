// A small console program that tells what the start-up routines see in the process it runs in,
// for checks from a shell under Wine.
//
//   osname_probe
//       Prints the version name GetOSName gives, then "IsVista <flag>", one per line.
//   osname_probe resource <module file> <type> <name> <output file>
//       Writes the raw resource of that type and name carried by the module file to the output
//       file and prints its size; exits with 1 when the module carries none.
#include <cstdio>
#include <string>

#include "core/MainModule.h"
#include "platform/Service.h"
#include "platform/win32/Win32SystemInfo.h"

namespace {

int PrintVersion() {
  quorvane::platform::win32::Win32SystemInfo system;
  quorvane::platform::ScopedService<quorvane::platform::SystemInfo> installed(system);
  std::printf("%s\nIsVista %d\n", quorvane::core::GetOSName().c_str(),
              static_cast<int>(quorvane::core::IsVista()));
  return 0;
}

int WriteResource(const std::string& module, const std::string& type, const std::string& name,
                  const std::string& output) {
  quorvane::platform::win32::Win32SystemInfo system(module);
  const auto bytes = system.LoadResourceData(type, name);
  if (!bytes) {
    std::printf("no resource %s of type %s in %s\n", name.c_str(), type.c_str(), module.c_str());
    return 1;
  }
  std::FILE* f = std::fopen(output.c_str(), "wb");
  if (f == nullptr) return 2;
  const bool written = std::fwrite(bytes->data(), 1, bytes->size(), f) == bytes->size();
  if (std::fclose(f) != 0 || !written) return 2;
  std::printf("%zu\n", bytes->size());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 1) return PrintVersion();
  if (argc == 6 && std::string(argv[1]) == "resource") {
    return WriteResource(argv[2], argv[3], argv[4], argv[5]);
  }
  std::fprintf(stderr, "usage: osname_probe [resource <module> <type> <name> <output>]\n");
  return 2;
}
