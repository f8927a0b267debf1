#pragma once
// Pictures over the platform's two decoders. JPEG files, bitmaps, and GIF files without a
// transparent colour are decoded by the Windows Imaging Component straight into the caller's
// pixels: the OLE picture loader gives the same pixels, but copies them once or twice more, each
// time into fresh memory. Everything else goes to the OLE picture loader: the file's bytes go to
// OleLoadPicture through a stream in memory, and the picture it makes is copied, or drawn, into
// 32-bit pixels of its own size. Whatever the imaging component can't decode goes to the OLE
// loader too, so the files accepted and refused are the OLE loader's. An icon or cursor file with
// several images is cut down to its largest first, since the loader would pick one of its own.
// The loader decodes PNG only on some systems; where it refuses a PNG file, the imaging component
// decodes it instead. Saving writes the same bitmap file as the build without Windows.
#include <cstdint>
#include <span>
#include <string>

#include "platform/Pictures.h"

namespace quorvane::platform::win32 {

// Which decoder takes the kinds of picture both decoders read alike.
enum class PictureDecoding {
  Fastest,  // the imaging component, into the caller's memory
  OleOnly,  // the OLE loader for every kind, the imaging component only for PNG it refuses
};

class Win32Pictures final : public Pictures {
 public:
  Win32Pictures() = default;
  explicit Win32Pictures(PictureDecoding decoding) : decoding_(decoding) {}

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

  PictureDecoding decoding_ = PictureDecoding::Fastest;
};

// The Windows Imaging Component's decoding of a picture in memory, as 32-bit pixels with alpha;
// throws InvalidPicture (481) when it can't. The PNG path of LoadPicture.
Pixels DecodeWithImagingComponent(std::span<const std::uint8_t> bytes);

// The path of LoadPictureInto for JPEG files, bitmaps and GIF files without a transparent
// colour: the imaging component's decoding of the bytes, opaque, straight into `picture`, whose
// memory is kept where the new picture fits. False when the bytes are of another kind, or the
// component can't decode them or decodes them with transparent pixels; `picture` is then as it
// was, or empty when the component failed after it had begun on it.
bool DecodeStraightInto(std::span<const std::uint8_t> bytes, Pixels& picture);

}  // namespace quorvane::platform::win32
