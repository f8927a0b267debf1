#pragma once
// cDIBSection: one 24-bit device-independent bitmap together with a memory device context, so
// that its pixels can be drawn on with the platform's calls and also reached as bytes.
//
// The pixels are three bytes each, blue, green, red; each row holds BytesPerScanLine bytes
// (width times 3 rounded up to a multiple of 4); row 0 of the bytes is the bottom row of the
// picture, because the height is kept positive.
//
// The object owns its device context and its bitmap: either both are there, the bitmap selected
// into the context, or neither. ClearUp frees them, and it runs at the object's end too.
// Failures of the platform calls show only in the boolean results. Arithmetic beyond 32 bits is
// an overflow failure. RandomiseBits on an object with no bitmap fails, and so does a Resample
// that has to blend; a Resample to the size the object last had only copies, and gives black.
#include <cstdint>
#include <memory>

#include "base/Types.h"
#include "platform/DeviceContexts.h"

namespace quorvane {

class cDIBSection {
 public:
  using Handle = platform::GdiHandle;

  cDIBSection() = default;
  ~cDIBSection();
  cDIBSection(const cDIBSection&) = delete;
  cDIBSection& operator=(const cDIBSection&) = delete;

  // Puts a copy of the picture on the clipboard as a device bitmap. Asking for the
  // device-independent form only shows "Internal Error!" and gives false.
  Boolean CopyToClipboard(Boolean bAsDIB = kFalse);

  // Fills the header for a 24-bit bitmap of the size and makes the bitmap; the object's byte
  // pointer then leads to its pixels. True when the platform gave a bitmap.
  Boolean CreateDIB(Handle lhDC, std::int32_t lWidth, std::int32_t lHeight, Handle& hDib);

  // Takes the size of the picture's bitmap, makes a bitmap of that size and copies the picture
  // into it. A handle that is not a bitmap leaves the object as ClearUp leaves it.
  void CreateFromPicture(Handle picThis);
  // The same for a picture object, through its bitmap handle.
  template <class Picture>
    requires requires(const Picture& picture) { picture.Handle(); }
  void CreateFromPicture(const Picture& picThis) {
    CreateFromPicture(static_cast<Handle>(picThis.Handle()));
  }

  // Frees what the object holds and makes a new bitmap, black, in a new memory context.
  Boolean Create(std::int32_t lWidth, std::int32_t lHeight);

  std::int32_t BytesPerScanLine() const;
  std::int32_t Width() const { return biWidth_; }
  std::int32_t Height() const { return biHeight_; }

  // Copies from `lhDC` into this object at 0,0. A negative width or height is the object's own.
  void LoadPictureBlt(Handle lhDC, std::int32_t lSrcLeft = 0, std::int32_t lSrcTop = 0,
                      std::int32_t lSrcWidth = -1, std::int32_t lSrcHeight = -1,
                      std::uint32_t eRop = platform::gdi::kSrcCopy);
  // Copies from this object to `lhDC`, with the same rule for a negative size.
  void PaintPicture(Handle lhDC, std::int32_t lDestLeft = 0, std::int32_t lDestTop = 0,
                    std::int32_t lDestWidth = -1, std::int32_t lDestHeight = -1,
                    std::int32_t lSrcLeft = 0, std::int32_t lSrcTop = 0,
                    std::uint32_t eRop = platform::gdi::kSrcCopy);

  Handle hdc() const { return hdc_; }
  Handle hDib() const { return hDib_; }
  std::uint8_t* DIBSectionBitsPtr() const { return bitsPtr_; }

  // Fills the picture with noise: grey (the same random value in all three bytes of a pixel),
  // or green and red each random with blue always 0. The generator is seeded from the time of
  // day first.
  void RandomiseBits(Boolean bGray = kFalse);

  // Selects the old bitmap back, deletes the bitmap and the context, and zeroes the handles and
  // the byte pointer. The size fields keep their values.
  void ClearUp();

  // A new object of the size, its picture resampled bilinearly from this one; none when the new
  // bitmap can't be made. Note the order: height first. Blending needs a source of at least 2 by
  // 2 pixels and fails on a smaller one; a copy to the same size does not blend.
  std::unique_ptr<cDIBSection> Resample(std::int32_t lNewHeight, std::int32_t lNewWidth);

 private:
  // Resamples this object's picture into `target`'s own bytes. Its result is never set, so it
  // is always false; the caller does not look at it.
  Boolean ResampleInto(cDIBSection& target);

  // The width and height of a blit: a negative value stands for the object's own.
  std::int32_t OwnWidthIfNegative(std::int32_t width) const { return width < 0 ? biWidth_ : width; }
  std::int32_t OwnHeightIfNegative(std::int32_t height) const {
    return height < 0 ? biHeight_ : height;
  }

  Handle hDib_ = 0;
  Handle hBmpOld_ = 0;
  Handle hdc_ = 0;
  std::uint8_t* bitsPtr_ = nullptr;
  // The first fields of the bitmap's header, kept as the object last filled them.
  std::uint32_t biSize_ = 0;
  std::int32_t biWidth_ = 0;
  std::int32_t biHeight_ = 0;
  std::uint16_t biPlanes_ = 0;
  std::uint16_t biBitCount_ = 0;
  std::uint32_t biCompression_ = 0;
  std::int32_t biSizeImage_ = 0;
};

}  // namespace quorvane
