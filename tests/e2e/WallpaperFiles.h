#pragma once
// What the wallpaper cases read and check of a change: the manifest of the pictures packed into
// collections before a run, the headers of the bitmap WP.bmp, a file's write time, and the
// system's wallpaper.
#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Driving.h"

namespace quorvane::e2e {

// How long one automatic change is given: unpacking, decoding and saving a photograph of several
// million pixels under Wine.
inline constexpr DWORD kWallpaperTimeout = 90000;

// A picture packed into a collection in the data folder before the run, and its size as
// ImageMagick reads it.
struct ManifestPicture {
  std::string collection;
  std::string file;
  int width = 0;
  int height = 0;
};

// The pictures of a manifest: one line "<collection>\t<file>\t<width>\t<height>" each; other
// lines are passed over. Empty when the file can't be read.
std::vector<ManifestPicture> ReadManifest(const std::string& path);

// The facts of a bitmap file's headers.
struct BitmapFacts {
  bool read = false;
  bool signature = false;
  std::uint32_t fileSize = 0;
  std::uint32_t offset = 0;
  std::uint32_t headerSize = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::uint16_t planes = 0;
  std::uint16_t bits = 0;
  std::uint32_t compression = 0;
  std::uint64_t actualSize = 0;
};

BitmapFacts ReadBitmapFacts(const std::string& path);

// The checks of a wallpaper bitmap made from `picture`: an uncompressed 24-bit bitmap of the
// picture's size, whose length is what its rows take.
void CheckBitmapOf(Verdict& verdict, const BitmapFacts& facts, const ManifestPicture& picture);

// When a file was last written; zero when it is not there.
FILETIME WriteTimeOf(const std::string& path);

// Whether two paths are the same text, letter case aside, as the system compares them.
bool SameText(const std::string& a, const std::string& b);

// The system's wallpaper as this process's user32 tells it. Wine keeps the answer of a first
// query for the life of the process and does not hear of another process's change, so the
// driver asks only once the change has been made.
std::string DeskWallpaper();

}  // namespace quorvane::e2e
