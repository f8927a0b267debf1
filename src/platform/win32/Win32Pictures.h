#pragma once
// Pictures over the platform's OLE picture loader: the file's bytes go to OleLoadPicture through
// a stream in memory, and the picture it makes is copied, or drawn, into 32-bit pixels of its
// own size. An icon or cursor file with several images is cut down to its largest first, since
// the loader would pick one of its own. The loader decodes PNG only on some systems; where it
// refuses a PNG file, the Windows Imaging Component decodes it instead. Saving writes the same
// bitmap file as the build without Windows.
#include <cstdint>
#include <span>
#include <string>

#include "platform/Pictures.h"

namespace quorvane::platform::win32 {

class Win32Pictures final : public Pictures {
 public:
  Pixels LoadPicture(const std::string& path) override;
  void LoadPictureInto(const std::string& path, Pixels& picture) override;
  // An icon or cursor by its image nearest the system's large icon size.
  void LoadPictureSizedInto(const std::string& path, std::int32_t size, std::int32_t depth,
                            Pixels& picture) override;
  void SavePicture(const Pixels& picture, const std::string& path) override;

 private:
  // LoadPictureInto with an icon or cursor taken by its image nearest `iconSize` pixels, or by
  // its largest with 0.
  void LoadIconSized(const std::string& path, std::int32_t iconSize, Pixels& picture);
};

// The Windows Imaging Component's decoding of a picture in memory, as 32-bit pixels with alpha;
// throws InvalidPicture (481) when it can't. The PNG path of LoadPicture.
Pixels DecodeWithImagingComponent(std::span<const std::uint8_t> bytes);

}  // namespace quorvane::platform::win32
