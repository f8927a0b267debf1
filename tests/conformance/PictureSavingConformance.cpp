// Saving a picture of wallpaper proportions: the file is made and written a piece at a time, and
// what lands on disk is the whole bitmap, whichever piece boundaries fell inside its rows.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "Support.h"
#include "codecs/BitmapFile.h"
#include "platform/Pictures.h"
#include "platform/Service.h"

namespace quorvane::testing {
namespace {

using platform::Pictures;
using platform::Use;

std::vector<std::uint8_t> ReadFileBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::vector<std::uint8_t>(std::istreambuf_iterator<char>(file),
                                   std::istreambuf_iterator<char>());
}

std::vector<std::string> Names(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

// Opaque, every pixel its own colour, and an odd width so that each row ends in padding.
Pixels LargePicture(std::int32_t width, std::int32_t height) {
  Pixels p;
  p.width = width;
  p.height = height;
  p.bgra.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (std::size_t i = 0; i < p.bgra.size(); ++i) {
    p.bgra[i] = 0xFF000000u | ((static_cast<std::uint32_t>(i) * 2654435761u) & 0xFFFFFFu);
  }
  return p;
}

TEST(PictureSavingConformance, ALargePictureSavesWholeAndLoadsBackTheSame) {
  const std::string folder = FreshTempFolder();
  const std::string saved = folder + "WP.bmp";
  const Pixels picture = LargePicture(1001, 701);  // a file of about 2 MB
  Use<Pictures>().SavePicture(picture, saved);
  const std::vector<std::uint8_t> bytes = ReadFileBytes(saved);
  ASSERT_EQ(bytes.size(), 54u + 701u * codecs::BitmapRowBytes(1001));
  EXPECT_TRUE(bytes == codecs::BitmapFileBytes(picture));
  EXPECT_TRUE(Use<Pictures>().LoadPicture(saved) == picture);
  EXPECT_EQ(Names(folder), std::vector<std::string>{"WP.bmp"});
}

TEST(PictureSavingConformance, SavingAgainOverALargerFileLeavesOnlyTheNewOne) {
  const std::string folder = FreshTempFolder();
  const std::string saved = folder + "WP.bmp";
  Use<Pictures>().SavePicture(LargePicture(1001, 701), saved);
  const Pixels small = LargePicture(3, 2);
  Use<Pictures>().SavePicture(small, saved);
  EXPECT_TRUE(ReadFileBytes(saved) == codecs::BitmapFileBytes(small));
  EXPECT_EQ(Names(folder), std::vector<std::string>{"WP.bmp"});
}

}  // namespace
}  // namespace quorvane::testing
