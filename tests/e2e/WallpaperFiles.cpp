#include "WallpaperFiles.h"

#include <cstdio>
#include <cstdlib>

namespace quorvane::e2e {

std::vector<ManifestPicture> ReadManifest(const std::string& path) {
  std::vector<ManifestPicture> pictures;
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return pictures;
  char line[1024];
  while (std::fgets(line, sizeof line, file) != nullptr) {
    std::string text(line);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    std::vector<std::string> fields;
    std::size_t from = 0;
    for (;;) {
      const std::size_t tab = text.find('\t', from);
      fields.push_back(text.substr(from, tab == std::string::npos ? std::string::npos : tab - from));
      if (tab == std::string::npos) break;
      from = tab + 1;
    }
    if (fields.size() != 4) continue;
    pictures.push_back({fields[0], fields[1], std::atoi(fields[2].c_str()),
                        std::atoi(fields[3].c_str())});
  }
  std::fclose(file);
  return pictures;
}

BitmapFacts ReadBitmapFacts(const std::string& path) {
  BitmapFacts facts;
  WIN32_FILE_ATTRIBUTE_DATA attributes{};
  if (::GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &attributes) == 0) return facts;
  facts.actualSize =
      (static_cast<std::uint64_t>(attributes.nFileSizeHigh) << 32) | attributes.nFileSizeLow;
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return facts;
  unsigned char header[54] = {};
  const std::size_t got = std::fread(header, 1, sizeof header, file);
  std::fclose(file);
  if (got != sizeof header) return facts;
  const auto u16 = [&](int at) {
    return static_cast<std::uint16_t>(header[at] | (header[at + 1] << 8));
  };
  const auto u32 = [&](int at) {
    return static_cast<std::uint32_t>(header[at]) | (static_cast<std::uint32_t>(header[at + 1]) << 8) |
           (static_cast<std::uint32_t>(header[at + 2]) << 16) |
           (static_cast<std::uint32_t>(header[at + 3]) << 24);
  };
  facts.read = true;
  facts.signature = header[0] == 'B' && header[1] == 'M';
  facts.fileSize = u32(2);
  facts.offset = u32(10);
  facts.headerSize = u32(14);
  facts.width = static_cast<std::int32_t>(u32(18));
  facts.height = static_cast<std::int32_t>(u32(22));
  facts.planes = u16(26);
  facts.bits = u16(28);
  facts.compression = u32(30);
  return facts;
}

void CheckBitmapOf(Verdict& verdict, const BitmapFacts& facts, const ManifestPicture& picture) {
  const std::uint64_t row = (static_cast<std::uint64_t>(picture.width) * 3 + 3) / 4 * 4;
  const std::uint64_t wanted = 54 + row * static_cast<std::uint64_t>(picture.height);
  verdict.Check(facts.read && facts.signature, "WP.bmp has no bitmap header");
  verdict.Check(facts.bits == 24 && facts.compression == 0 && facts.planes == 1 &&
                    facts.headerSize == 40 && facts.offset == 54,
                "WP.bmp is not an uncompressed 24-bit bitmap: " + std::to_string(facts.bits) +
                    " bits, compression " + std::to_string(facts.compression));
  verdict.Check(facts.width == picture.width && std::abs(facts.height) == picture.height,
                "WP.bmp is " + std::to_string(facts.width) + "x" + std::to_string(facts.height) +
                    ", not " + std::to_string(picture.width) + "x" +
                    std::to_string(picture.height) + " like " + picture.file);
  verdict.Check(facts.actualSize == wanted && facts.fileSize == wanted,
                "WP.bmp has " + std::to_string(facts.actualSize) + " bytes (header says " +
                    std::to_string(facts.fileSize) + "), not " + std::to_string(wanted));
}

FILETIME WriteTimeOf(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA attributes{};
  if (::GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &attributes) == 0) {
    return FILETIME{};
  }
  return attributes.ftLastWriteTime;
}

bool SameText(const std::string& a, const std::string& b) {
  return a.size() == b.size() && ::CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, a.c_str(),
                                                  static_cast<int>(a.size()), b.c_str(),
                                                  static_cast<int>(b.size())) == CSTR_EQUAL;
}

std::string DeskWallpaper() {
  char path[MAX_PATH + 1] = {};
  if (::SystemParametersInfoA(SPI_GETDESKWALLPAPER, sizeof path, path, 0) == 0) return "";
  return path;
}

}  // namespace quorvane::e2e
