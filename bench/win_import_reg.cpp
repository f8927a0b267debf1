// Imports one .reg file through AdvRegistryAccess into the real registry: one whole process, as
// the import benchmark times it against the platform's own importer.
//
//   win_import_reg FILE.reg
#include <windows.h>

#include <cstdio>

#include "platform/Service.h"
#include "platform/win32/Win32Platform.h"
#include "stores/AdvRegistryAccess.h"

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: win_import_reg FILE.reg\n");
    return 2;
  }
  quorvane::platform::win32::Win32Platform platform;

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
