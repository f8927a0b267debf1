#pragma once
// Pictures for the build without Windows. The kind of a file is told by its first bytes; JPEG
// goes to libjpeg-turbo (its TurboJPEG interface, which stops at the first warning, so that a
// damaged or cut-short file is refused, not shown half grey), PNG to libpng's lower-level reader
// (samples as they stand, whatever gamma the file declares, as the platform reads them), GIF to
// giflib, and bitmaps, icons and cursors to the program's own bitmap reader. Metafiles,
// which only the platform draws, are refused like any other content it doesn't know.
#include <cstdint>
#include <span>
#include <string>

#include "platform/Pictures.h"

namespace quorvane::platform::portable {

// Decodes a picture held in memory; throws InvalidPicture (481) for anything it can't decode.
Pixels DecodePicture(std::span<const std::uint8_t> bytes);

class DecodedPictures final : public Pictures {
 public:
  Pixels LoadPicture(const std::string& path) override;
  // An icon or cursor by its image nearest the large shell icon size, 32 pixels here.
  void LoadPictureSizedInto(const std::string& path, std::int32_t size, std::int32_t depth,
                            Pixels& picture) override;
  void SavePicture(const Pixels& picture, const std::string& path) override;
};

}  // namespace quorvane::platform::portable
