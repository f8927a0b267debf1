// Fuzz harness: bitmaps of any small size and content, resampled to any size, copied, painted
// and filled with noise. Nothing may read or write beyond a bitmap, whatever the sizes: a
// source too small fails as the system's failure, and a size that can't be made gives none.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "FuzzSeeds.h"
#include "base/Failure.h"
#include "drawing/cDIBSection.h"
#include "platform/Service.h"
#include "platform/portable/PortableClipboard.h"
#include "platform/portable/PortableClock.h"
#include "platform/portable/PortableDeviceContexts.h"
#include "platform/portable/PortableMessageBoxes.h"

namespace {

// A signed size of -4 to 27 from one byte.
std::int32_t SizeOf(std::uint8_t byte) { return static_cast<std::int32_t>(byte % 32) - 4; }

}  // namespace

std::vector<std::string> QuorvaneFuzzSeeds() {
  return {std::string("\x06\x06\x08\x08\x00", 5), std::string("\x05\x05\x05\x05\x01", 5),
          std::string("\x05\x05\x1b\x06\x02\x80\x40\xff", 8),
          std::string("\x24\x06\x05\x24\x03\x10\x20\x30\x40", 9)};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 5) return 0;
  using namespace quorvane;
  platform::portable::PortableDeviceContexts gdi(64, 64);
  gdi.KeepJournal(false);
  platform::portable::PortableClipboard clipboard(gdi);
  platform::portable::PortableMessageBoxes boxes;
  platform::portable::PortableClock clock;
  clock.Stop(static_cast<double>(data[4]) * 337.0);
  platform::ScopedService<platform::DeviceContexts> a(gdi);
  platform::ScopedService<platform::Clipboard> b(clipboard);
  platform::ScopedService<platform::MessageBoxes> c(boxes);
  platform::ScopedService<platform::Clock> d(clock);

  const std::int32_t width = SizeOf(data[0]);
  const std::int32_t height = SizeOf(data[1]);
  const std::int32_t newWidth = SizeOf(data[2]);
  const std::int32_t newHeight = SizeOf(data[3]);
  const std::uint8_t action = data[4];

  cDIBSection source;
  const bool made = source.Create(width, height) != kFalse;
  if (made) {
    // A negative height is a top-down bitmap of that many rows.
    const std::int32_t rows = source.Height() < 0 ? -source.Height() : source.Height();
    const auto bytes = static_cast<std::size_t>(source.BytesPerScanLine()) *
                       static_cast<std::size_t>(rows);
    std::memcpy(source.DIBSectionBitsPtr(), data + 5, std::min(bytes, size - 5));
  }
  try {
    switch (action % 4) {
      case 0: {
        const auto resampled = source.Resample(newHeight, newWidth);
        if (resampled && resampled->Width() != newWidth) __builtin_trap();
        break;
      }
      case 1:
        source.RandomiseBits(static_cast<Boolean>((action & 4) != 0 ? kTrue : kFalse));
        break;
      case 2: {
        cDIBSection target;
        target.Create(newWidth, newHeight);
        source.PaintPicture(target.hdc(), SizeOf(data[2]), SizeOf(data[3]), SizeOf(data[0]),
                            SizeOf(data[1]), SizeOf(data[3]), SizeOf(data[2]));
        target.LoadPictureBlt(source.hdc(), SizeOf(data[1]), SizeOf(data[0]));
        break;
      }
      default:
        source.CopyToClipboard(static_cast<Boolean>((action & 4) != 0 ? kTrue : kFalse));
        source.CreateFromPicture(source.hDib());
        break;
    }
  } catch (const Failure&) {
    // A source smaller than 2 by 2, or no bitmap at all: the system's failure, as it should be.
  }
  return 0;
}
