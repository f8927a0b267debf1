#include "drawing/cDIBSection.h"

#include <cmath>
#include <cstdint>

#include "base/Failure.h"
#include "base/Random.h"
#include "base/ByteView.h"
#include "drawing/BilinearRows.h"
#include "core/Regimes.h"
#include "platform/Clipboard.h"
#include "platform/Clock.h"
#include "platform/MessageBoxes.h"
#include "platform/Service.h"

namespace quorvane {
namespace {

platform::DeviceContexts& Gdi() { return platform::Use<platform::DeviceContexts>(); }

// 32-bit arithmetic of the class: a result beyond 32 bits is an overflow failure.
std::int32_t Checked32(std::int64_t value) {
  if (value < INT32_MIN || value > INT32_MAX) RaiseOverflow();
  return static_cast<std::int32_t>(value);
}

// A value of 0 up to 255.5 rounded to a whole number by the processor's rule (a half goes to
// the even neighbour, as text::RoundHalfEven), as a byte: adding 2^23 leaves no bits below the
// units, so the sum is rounded there, and taking 2^23 away again is exact. Blends of bytes and
// noise of 0 to 255 always lie in that range.
inline std::uint8_t RoundToByte(float value) {
  constexpr float kUnitsOnly = 8388608.0f;
  const float rounded = (value + kUnitsOnly) - kUnitsOnly;
  return static_cast<std::uint8_t>(static_cast<int>(rounded));
}

// One random value of 0 to 255.
std::uint8_t RandomByte() { return RoundToByte(random::Rnd() * 255.0f); }

}  // namespace

cDIBSection::~cDIBSection() {
  // The object's end frees what it holds; a failure here has nowhere to go.
  core::ResumeEach(core::kAnything, [&] { ClearUp(); });
}

Boolean cDIBSection::CopyToClipboard(Boolean bAsDIB) {
  platform::DeviceContexts& gdi = Gdi();
  const Handle desktopDc = gdi.GetDC(gdi.GetDesktopWindow());
  if (desktopDc == 0) return kFalse;
  const Handle tempDc = gdi.CreateCompatibleDC(desktopDc);
  if (tempDc == 0) {
    gdi.DeleteDC(desktopDc);
    return kFalse;
  }

  Boolean result = kFalse;
  if (bAsDIB != kFalse) {
    // Only the device bitmap is put on the clipboard; this form was never done.
    platform::Use<platform::MessageBoxes>().MsgBox("Internal Error!");
  } else {
    const Handle bitmap = gdi.CreateCompatibleBitmap(desktopDc, biWidth_, biHeight_);
    const Handle oldBitmap = gdi.SelectObject(tempDc, bitmap);
    PaintPicture(tempDc, 0, 0, -1, -1, 0, 0, platform::gdi::kSrcCopy);
    gdi.SelectObject(tempDc, oldBitmap);

    platform::Clipboard& clipboard = platform::Use<platform::Clipboard>();
    clipboard.OpenClipboard(0);
    clipboard.EmptyClipboard();
    result = ToBoolean(clipboard.SetClipboardData(platform::clipboard::kBitmap, bitmap) != 0);
    clipboard.CloseClipboard();
    // The bitmap now belongs to the clipboard.
  }

  gdi.DeleteDC(tempDc);
  // The desktop's context goes to DeleteDC too.
  gdi.DeleteDC(desktopDc);
  return result;
}

Boolean cDIBSection::CreateDIB(Handle lhDC, std::int32_t lWidth, std::int32_t lHeight,
                               Handle& hDib) {
  biSize_ = 40;
  biWidth_ = lWidth;
  biHeight_ = lHeight;
  biPlanes_ = 1;
  biBitCount_ = 24;
  biCompression_ = platform::gdi::kBiRgb;
  biSizeImage_ = Checked32(static_cast<std::int64_t>(BytesPerScanLine()) * lHeight);

  platform::BitmapInfoHeader header;
  header.biSize = biSize_;
  header.biWidth = biWidth_;
  header.biHeight = biHeight_;
  header.biPlanes = biPlanes_;
  header.biBitCount = biBitCount_;
  header.biCompression = biCompression_;
  header.biSizeImage = biSizeImage_;
  hDib = Gdi().CreateDIBSection(lhDC, header, platform::gdi::kDibRgbColors, &bitsPtr_, 0, 0);
  return ToBoolean(hDib != 0);
}

void cDIBSection::CreateFromPicture(Handle picThis) {
  platform::DeviceContexts& gdi = Gdi();
  platform::BitmapObject picture;
  // Not a bitmap: the size stays 0 by 0, which no bitmap can have.
  gdi.GetObjectA(picThis, picture);
  if (Create(picture.bmWidth, picture.bmHeight) == kFalse) return;

  const Handle desktop = gdi.GetDesktopWindow();
  const Handle desktopDc = gdi.GetDC(desktop);
  const Handle tempDc = gdi.CreateCompatibleDC(desktopDc);
  const Handle oldBitmap = gdi.SelectObject(tempDc, picThis);
  LoadPictureBlt(tempDc, 0, 0, -1, -1, platform::gdi::kSrcCopy);
  gdi.SelectObject(tempDc, oldBitmap);
  gdi.DeleteDC(tempDc);
  // The desktop's context was only needed for the format; it goes back where it came from.
  gdi.ReleaseDC(desktop, desktopDc);
}

Boolean cDIBSection::Create(std::int32_t lWidth, std::int32_t lHeight) {
  ClearUp();
  platform::DeviceContexts& gdi = Gdi();
  hdc_ = gdi.CreateCompatibleDC(0);
  // Without a context there is nothing to hold the bitmap.
  if (hdc_ == 0) return kFalse;

  bool made = false;
  try {
    made = CreateDIB(hdc_, lWidth, lHeight, hDib_) != kFalse;
  } catch (...) {
    // A size beyond 32-bit arithmetic: no bitmap was asked for; the context goes, and the
    // failure goes up.
    gdi.DeleteDC(hdc_);
    hdc_ = 0;
    throw;
  }
  if (!made) {
    gdi.DeleteDC(hdc_);
    hdc_ = 0;
    hDib_ = 0;
    bitsPtr_ = nullptr;
    return kFalse;
  }
  hBmpOld_ = gdi.SelectObject(hdc_, hDib_);
  return kTrue;
}

std::int32_t cDIBSection::BytesPerScanLine() const {
  const std::int32_t triple = Checked32(static_cast<std::int64_t>(biWidth_) * 3);
  const std::int32_t padded = Checked32(static_cast<std::int64_t>(triple) + 3);
  // The two low bits cleared, as a 32-bit pattern.
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(padded) & 0xFFFFFFFCu);
}

void cDIBSection::LoadPictureBlt(Handle lhDC, std::int32_t lSrcLeft, std::int32_t lSrcTop,
                                 std::int32_t lSrcWidth, std::int32_t lSrcHeight,
                                 std::uint32_t eRop) {
  Gdi().BitBlt(hdc_, 0, 0, OwnWidthIfNegative(lSrcWidth), OwnHeightIfNegative(lSrcHeight), lhDC,
               lSrcLeft, lSrcTop, eRop);
}

void cDIBSection::PaintPicture(Handle lhDC, std::int32_t lDestLeft, std::int32_t lDestTop,
                               std::int32_t lDestWidth, std::int32_t lDestHeight,
                               std::int32_t lSrcLeft, std::int32_t lSrcTop, std::uint32_t eRop) {
  Gdi().BitBlt(lhDC, lDestLeft, lDestTop, OwnWidthIfNegative(lDestWidth),
               OwnHeightIfNegative(lDestHeight), hdc_, lSrcLeft, lSrcTop, eRop);
}

void cDIBSection::RandomiseBits(Boolean bGray) {
  // The view lives for this call only and is gone when it returns.
  const ByteView bytes(bitsPtr_, BytesPerScanLine(), biHeight_);

  random::Randomize(platform::Use<platform::Clock>().SecondsSinceMidnight());

  if (bGray != kFalse) {
    for (std::int64_t y = 0; y < biHeight_; ++y) {
      for (std::int64_t x = 0; x < biWidth_; ++x) {
        const std::uint8_t grey = RandomByte();
        bytes(y, x * 3) = grey;
        bytes(y, x * 3 + 1) = grey;
        bytes(y, x * 3 + 2) = grey;
      }
    }
  } else {
    // Column by column; blue is always 0.
    for (std::int64_t x = 0; x < biWidth_; ++x) {
      for (std::int64_t y = 0; y < biHeight_; ++y) {
        bytes(y, x * 3) = 0;
        bytes(y, x * 3 + 1) = RandomByte();
        bytes(y, x * 3 + 2) = RandomByte();
      }
    }
  }
}

void cDIBSection::ClearUp() {
  if (hdc_ != 0 || hDib_ != 0) {
    platform::DeviceContexts& gdi = Gdi();
    if (hdc_ != 0) gdi.SelectObject(hdc_, hBmpOld_);
    if (hDib_ != 0) gdi.DeleteObject(hDib_);
    if (hdc_ != 0) gdi.DeleteDC(hdc_);
  }
  hDib_ = 0;
  hBmpOld_ = 0;
  hdc_ = 0;
  bitsPtr_ = nullptr;
}

std::unique_ptr<cDIBSection> cDIBSection::Resample(std::int32_t lNewHeight,
                                                   std::int32_t lNewWidth) {
  auto resampled = std::make_unique<cDIBSection>();
  if (resampled->Create(lNewWidth, lNewHeight) == kFalse) return nullptr;

  if (lNewWidth == biWidth_ && lNewHeight == biHeight_) {
    resampled->LoadPictureBlt(hdc_, 0, 0, -1, -1, platform::gdi::kSrcCopy);
  } else {
    ResampleInto(*resampled);
  }
  return resampled;
}

Boolean cDIBSection::ResampleInto(cDIBSection& target) {
  const ByteView source(bitsPtr_, BytesPerScanLine(), biHeight_);
  const ByteView destination(target.bitsPtr_, target.BytesPerScanLine(), target.biHeight_);

  // The columns' sources and weights once for the whole picture; then a row at a time, across
  // first in each of two source rows, then down between them.
  const drawing::BilinearColumns columns = drawing::ColumnsFor(biWidth_, target.biWidth_);
  const float yStep = drawing::StepFor(biHeight_, target.biHeight_);
  if (target.biHeight_ <= 0 || columns.left.empty()) return kFalse;

  // The last row and column read and write furthest: once they are inside both bitmaps, every
  // other is. A source of one pixel across or down is not, and fails here.
  const drawing::BilinearRow last = drawing::RowFor(yStep, target.biHeight_ - 1);
  source.Span(last.upper + 1, columns.left.back(), 6);
  destination.Span(target.biHeight_ - 1, (std::int64_t{target.biWidth_} - 1) * 3, 3);

  for (std::int64_t y = 0; y < target.biHeight_; ++y) {
    const drawing::BilinearRow row = drawing::RowFor(yStep, y);
    drawing::BlendRow(source.Span(row.upper, 0, 0), source.Span(row.upper + 1, 0, 0), row, columns,
                      destination.Span(y, 0, 0));
  }
  return kFalse;
}

}  // namespace quorvane
