// Automatic wallpaper change benchmark (not a test): the time of one change as the minute tick
// makes it (the entry unpacked from its collection, the style values written, the picture moved
// to Temp.<EXT>, decoded, saved as WP.bmp and set as the wallpaper), through the program's own
// routine over the Windows adapters.
//
//   win_wallpaper RUNS RESULTFILE DATAFOLDER
//
// DATAFOLDER holds Bench.RXS, a collection whose entries are the pictures p01.jpg, p02.jpg, ...
// The program writes Files.ini for them, takes one change per run in sequential order (every
// run a different entry, until the list wraps), and writes the median, mean, min and max to
// RESULTFILE, then "done". The desktop's style values and wallpaper are put back afterwards.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "WinTiming.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "platform/Service.h"
#include "platform/win32/Win32Platform.h"
#include "stores/AdvRegistryAccess.h"
#include "stores/iniReadWrite.h"
#include "wallpaper/MWallpaper.h"

using namespace quorvane;

namespace {

constexpr char kDesktop[] = "HKEY_CURRENT_USER\\Control Panel\\Desktop";

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
  std::FILE* out = argc > 2 ? std::fopen(argv[2], "w") : stdout;
  if (out == nullptr || argc < 4) return 2;
  std::string data = argv[3];
  if (data.back() != '\\') data += '\\';

  platform::win32::Win32Platform adapters;
  auto& files = adapters.FileSystem();
  auto& packers = adapters.CollectionPackers();
  auto& pictures = adapters.Pictures();
  auto& wallpaper = adapters.Wallpaper();

  core::gDataFolder = data;
  // The list of the collection's pictures, as the settings dialog's save builds it.
  std::vector<std::string> entries;
  files.ListFiles(data + "Bench", entries);
  if (entries.empty()) {
    // Not unpacked: the names come from the archive itself.
    auto packer = packers.Create();
    packer->UnpackFiles(data + "Bench.RXS", data + "Bench", "");
    packer->Release();
    files.ListFiles(data + "Bench", entries);
  }
  std::sort(entries.begin(), entries.end());
  DeleteFolderIfPresent(data + "Bench");
  files.RemoveFile(data + "Files.ini");
  for (std::size_t i = 0; i < entries.size(); ++i) {
    WriteIniValue("Files", std::to_string(i + 1), "Bench\\" + entries[i], data + "Files.ini");
  }
  WriteIniValue("Count", "Total", std::to_string(entries.size()), data + "Files.ini");

  AdvRegistryAccess reg;
  const std::string tile = reg.ReadString(kDesktop, "TileWallpaper", "");
  const std::string style = reg.ReadString(kDesktop, "WallpaperStyle", "");
  char previous[MAX_PATH] = {};
  ::SystemParametersInfoA(SPI_GETDESKWALLPAPER, MAX_PATH, previous, 0);

  FrmMain form;
  gWallpaperEnable = kTrue;
  gWallpaperInterval = 0;
  gWallpaperOrder = 1;
  gWallpaperPosition = 3;
  std::vector<double> ms;
  std::string failure;
  for (int run = 0; run < runs; ++run) {
    const double started = bench::Now();
    try {
      form.Timer1_Timer();
    } catch (const std::exception& e) {
      failure = e.what();
      break;
    }
    ms.push_back(bench::Now() - started);
  }

  // Where the time goes: the same steps one by one over the platform's services.
  std::vector<double> unpackMs, loadMs, saveMs, setMs;
  ui::Pixels picture;  // held from one change to the next, as the hidden picture box holds it
  for (int run = 0; run < runs && failure.empty(); ++run) {
    const std::string entry = entries[static_cast<std::size_t>(run) % entries.size()];
    double t = bench::Now();
    {
      auto packer = packers.Create();
      packer->UnpackFiles(data + "Bench.RXS", data, entry);
      packer->Release();
    }
    unpackMs.push_back(bench::Now() - t);
    MoveFileOver(data + entry, data + "Temp.JPG");
    t = bench::Now();
    pictures.LoadPictureInto(data + "Temp.JPG", picture);
    loadMs.push_back(bench::Now() - t);
    t = bench::Now();
    pictures.SavePicture(picture, data + "WP.bmp");
    saveMs.push_back(bench::Now() - t);
    t = bench::Now();
    wallpaper.SystemParametersInfoA(SPI_SETDESKWALLPAPER, 0, data + "WP.bmp", SPIF_UPDATEINIFILE);
    setMs.push_back(bench::Now() - t);
  }

  reg.WriteString(kDesktop, "TileWallpaper", tile.c_str());
  reg.WriteString(kDesktop, "WallpaperStyle", style.c_str());
  ::SystemParametersInfoA(SPI_SETDESKWALLPAPER, 0, previous, SPIF_UPDATEINIFILE);

  std::fprintf(out, "one automatic change from a collection of %zu pictures (%s):\n",
               entries.size(), entries.empty() ? "none" : entries.front().c_str());
  if (!failure.empty()) std::fprintf(out, "failed: %s\n", failure.c_str());
  if (!ms.empty()) {
    std::fprintf(out,
                 "quorvane tick                  median %7.1f ms  mean %7.1f ms  min %7.1f ms  "
                 "max %7.1f ms  (%zu runs)\n",
                 bench::Median(ms), bench::Mean(ms), *std::min_element(ms.begin(), ms.end()),
                 *std::max_element(ms.begin(), ms.end()), ms.size());
  }
  if (!loadMs.empty()) {
    std::fprintf(out,
                 "  of which, medians: unpack %.1f ms, decode %.1f ms, save WP.bmp %.1f ms, "
                 "set %.1f ms\n",
                 bench::Median(unpackMs), bench::Median(loadMs), bench::Median(saveMs),
                 bench::Median(setMs));
  }
  std::fprintf(out, "done\n");
  if (out != stdout) std::fclose(out);
  return ms.size() == static_cast<std::size_t>(runs) ? 0 : 1;
}
