// Collection editor benchmark (not a test): the time from a press of the editor's OK to the
// dialog gone, with every listed picture packed into a new collection (validation, PackFile for
// each item, the packer's release, the folder's removal, the dialog's unloading), on the real
// dialog over the Windows adapters; and, apart, the time to list the pictures (each one's type
// name and size) as Add lists them.
//
//   win_editor RUNS RESULTFILE DATAFOLDER PICTUREFOLDER
//
// PICTUREFOLDER holds the pictures; DATAFOLDER is where the collection "Bench" is made, and its
// archive is removed before each run. Writes the median, mean, min and max of both times and the
// archive's size to RESULTFILE, then "done"; a failure's text, its bytes shown, instead of them.
// The dialog is shown modeless, so that the press of OK can be timed from here.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "WinTiming.h"
#include "core/MainModule.h"
#include "platform/Service.h"
#include "platform/win32/Win32Platform.h"
#include "ui/win32/Win32Forms.h"
#include "wallpaper/FrmWallpaperCreateCollection.h"

using namespace quorvane;

namespace {

void Figures(std::FILE* out, const char* name, const std::vector<double>& times) {
  std::fprintf(out, "%s: median %.1f ms, mean %.1f ms, min %.1f ms, max %.1f ms (%zu runs)\n",
               name, bench::Median(times), bench::Mean(times),
               *std::min_element(times.begin(), times.end()),
               *std::max_element(times.begin(), times.end()), times.size());
}

}  // namespace

int Run(int argc, char** argv, std::FILE* out);

int main(int argc, char** argv) {
  std::FILE* out = argc > 2 ? std::fopen(argv[2], "w") : stdout;
  if (out == nullptr) return 2;
  try {
    return Run(argc, argv, out);
  } catch (const std::exception& failure) {
    const std::string text = failure.what();
    std::fprintf(out, "failed (%zu): ", text.size());
    for (char c : text) std::fprintf(out, c >= 32 && c < 127 ? "%c" : "<%02x>", static_cast<unsigned char>(c));
    std::fprintf(out, "\ndone\n");
    std::fclose(out);
    return 1;
  }
}

int Run(int argc, char** argv, std::FILE* out) {
  const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
  if (argc < 5) return 2;
  std::string data = argv[3];
  if (data.back() != '\\') data += '\\';
  std::string pictures = argv[4];
  if (pictures.back() == '\\') pictures.pop_back();

  platform::win32::Win32Platform adapters;
  platform::Installed<platform::Forms, ui::win32::Win32Forms> forms;
  core::gDataFolder = data;
  std::vector<std::string> names;
  adapters.FileSystem().ListFiles(pictures, names);
  std::sort(names.begin(), names.end());
  const std::string archive = data + "Bench.RXS";

  // The dialogs stay until the end: a modeless form's binding lives on after its window went, and
  // the form must outlive it.
  std::vector<std::unique_ptr<FrmWallpaperCreateCollection>> dialogs;
  std::vector<double> listing;
  std::vector<double> packing;
  long long bytes = 0;
  for (int run = 0; run < runs; ++run) {
    adapters.FileSystem().RemoveFile(archive);
    dialogs.push_back(std::make_unique<FrmWallpaperCreateCollection>());
    FrmWallpaperCreateCollection& editor = *dialogs.back();
    editor.TxtCollectionName.Text("Bench");
    const double listed = bench::Now();
    for (const std::string& name : names) editor.AddListedFile(pictures + "\\" + name);
    listing.push_back(bench::Now() - listed);
    platform::Use<platform::Forms>().Show(editor, false, 0);
    HWND ok = reinterpret_cast<HWND>(static_cast<std::uintptr_t>(editor.CmdOK.hWnd));
    if (ok == nullptr) {
      std::fprintf(out, "the dialog has no OK button window\n");
      return 1;
    }
    MSG message;
    while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageA(&message);
    const double pressed = bench::Now();
    ::SendMessageA(ok, BM_CLICK, 0, 0);
    packing.push_back(bench::Now() - pressed);
    if (editor.Loaded()) {
      std::fprintf(out, "OK left the dialog open\n");
      return 1;
    }
    WIN32_FILE_ATTRIBUTE_DATA facts{};
    if (::GetFileAttributesExA(archive.c_str(), GetFileExInfoStandard, &facts) == 0) {
      std::fprintf(out, "OK made no archive\n");
      return 1;
    }
    bytes = (static_cast<long long>(facts.nFileSizeHigh) << 32) | facts.nFileSizeLow;
  }
  std::fprintf(out, "pictures: %zu, archive: %lld bytes\n", names.size(), bytes);
  Figures(out, "listing (type name and size of each)", listing);
  Figures(out, "OK to the dialog gone (packing included)", packing);
  std::fprintf(out, "median-ms %.3f\n", bench::Median(packing));
  std::fprintf(out, "done\n");
  std::fclose(out);
  adapters.FileSystem().RemoveFile(archive);
  return 0;
}
