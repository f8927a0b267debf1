// Imports one .reg file through AdvRegistryAccess into the real registry: one whole process, as
// the import benchmark times it against the platform's own importer.
//
//   win_import_reg FILE.reg
#include <windows.h>

#include <cstdio>

#include "platform/Service.h"
#include "platform/win32/Win32EventLoop.h"
#include "platform/win32/Win32FileSystem.h"
#include "platform/win32/Win32Registry.h"
#include "stores/AdvRegistryAccess.h"

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: win_import_reg FILE.reg\n");
    return 2;
  }
  quorvane::platform::win32::Win32Registry registry;
  quorvane::platform::win32::Win32FileSystem files;
  quorvane::platform::win32::Win32EventLoop events;
  quorvane::platform::Install<quorvane::platform::RegistryStore>(&registry);
  quorvane::platform::Install<quorvane::platform::FileSystem>(&files);
  quorvane::platform::Install<quorvane::platform::EventLoop>(&events);

  LARGE_INTEGER frequency, start, end;
  ::QueryPerformanceFrequency(&frequency);
  ::QueryPerformanceCounter(&start);
  quorvane::AdvRegistryAccess reg;
  const auto result = reg.ImportFromReg(argv[1]);
  ::QueryPerformanceCounter(&end);
  std::printf("ImportFromReg=%d in %.1f ms\n", static_cast<int>(result),
              1000.0 * static_cast<double>(end.QuadPart - start.QuadPart) /
                  static_cast<double>(frequency.QuadPart));
  return result == 1 ? 0 : 1;
}
