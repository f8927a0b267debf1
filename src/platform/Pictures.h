#pragma once
// Picture files: decoding one into pixels, and saving pixels as a Windows bitmap file.
#include <string>

#include "base/Pixels.h"

namespace quorvane::platform {

// The size and colour depth an icon or cursor is loaded at: the large shell icon size, and the
// display's depth.
inline constexpr std::int32_t kLargeShellSize = 3;
inline constexpr std::int32_t kDefaultDepth = 0;

class Pictures {
 public:
  virtual ~Pictures() = default;

  // Decodes the picture file at `path` into top-down pixels of the picture's own size. The kind
  // of picture is told by the file's content, never by its name: Windows bitmaps (also the .dib
  // and run-length .rle kinds), GIF (its first frame), JPEG, icons and cursors (the largest image
  // of the file), PNG, and on Windows metafiles too. Opaque pictures come with alpha 0xFF; icons
  // and pictures with a transparent colour have alpha 0 where they are transparent.
  // Throws a Failure: FileNotFound (53) when there is no such file, PathFileAccessError (75) when
  // it can't be read, InvalidPicture (481) when the content is no picture this decoder knows, or
  // is damaged or cut short.
  virtual Pixels LoadPicture(const std::string& path) = 0;

  // LoadPicture into `picture`, whose memory the new picture takes over where it fits: a decoded
  // wallpaper is tens of megabytes, and fresh memory costs its first touch on every change.
  // Throws as LoadPicture does, and then leaves `picture` as it was; only a failure of the
  // platform after the decoding has begun leaves it empty.
  virtual void LoadPictureInto(const std::string& path, Pixels& picture) {
    picture = LoadPicture(path);
  }

  // LoadPictureInto, with an icon or cursor taken at the size and colour depth asked for
  // (kLargeShellSize, kDefaultDepth); any other picture is loaded as it is. An adapter that
  // can't choose among an icon's images gives the one LoadPicture gives.
  virtual void LoadPictureSizedInto(const std::string& path, std::int32_t /*size*/,
                                    std::int32_t /*depth*/, Pixels& picture) {
    LoadPictureInto(path, picture);
  }

  // Writes `picture` as an uncompressed bitmap of 24 bits a pixel (alpha is dropped) into the file
  // at `path`, which it replaces. The bytes go into a new file beside it, which then takes its
  // place in one step, so that a failure leaves the previous file whole and no new one behind.
  // Throws a Failure: InvalidProcedureCall (5) for an empty picture or one whose pixels don't
  // match its size, PathNotFound (76) when the folder doesn't exist, PathFileAccessError (75) when
  // the file can't be written.
  virtual void SavePicture(const Pixels& picture, const std::string& path) = 0;
};

}  // namespace quorvane::platform
