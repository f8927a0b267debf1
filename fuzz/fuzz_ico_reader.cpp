// The portable icon file reader over arbitrary bytes: read for a large, a small and an odd size
// in memory, then as a file through the adapter, drawn on a context and destroyed. Nothing may
// read beyond the bytes, a picture must have the size asked for with a colour and a mask entry
// for each pixel, and every handle and drawing object must be given back.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "FuzzSeeds.h"
#include "FuzzSupport.h"
#include "conformance/IcoFiles.h"
#include "platform/Icons.h"
#include "platform/portable/PortableDeviceContexts.h"
#include "platform/portable/PortableIcons.h"

namespace {

using quorvane::fuzzing::Require;
using quorvane::fuzzing::ScratchFile;

using quorvane::platform::GdiHandle;
using quorvane::platform::portable::IconPicture;

void CheckPicture(const std::optional<IconPicture>& picture, std::int32_t size) {
  if (!picture) return;
  Require(picture->width == size && picture->height == size, "a picture of another size");
  const auto pixels = static_cast<std::size_t>(size) * static_cast<std::size_t>(size);
  Require(picture->colour.size() == pixels, "colours not one a pixel");
  Require(picture->mask.size() == pixels, "mask not one a pixel");
  for (std::uint8_t m : picture->mask) Require(m <= 1, "a mask entry other than 0 or 1");
}

}  // namespace

std::vector<std::string> QuorvaneFuzzSeeds() {
  using namespace quorvane::testing;
  IcoImage masked = SolidImage(16, 24, 0x123456);
  for (std::size_t i = 0; i < masked.mask.size(); i += 3) masked.mask[i] = 1;
  IcoImage alpha = SolidImage(8, 32, 0x80FF0000);
  IcoImage png;
  png.png = true;
  return {IcoBytes({SolidImage(4, 1, 1, {0, 0xFFFFFF})}),
          IcoBytes({SolidImage(5, 4, 3, {0, 0x111111, 0x222222, 0x333333})}),
          IcoBytes({SolidImage(3, 8, 2, {0x010203, 0x040506, 0x070809})}),
          IcoBytes({SolidImage(6, 16, 0x7FFF)}),
          IcoBytes({masked}),
          IcoBytes({alpha}),
          IcoBytes({png, SolidImage(2, 24, 0xABCDEF)}),
          IcoBytes({SolidImage(32, 4, 1, {0, 0xFF}), SolidImage(16, 8, 1, {0, 0xFF00}),
                    SolidImage(12, 32, 0xFF00FF00)})};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorvane::platform;
  const std::span<const std::uint8_t> bytes(data, size);
  const std::optional<IconPicture> large = portable::ReadIconPicture(bytes, 32);
  const std::optional<IconPicture> small = portable::ReadIconPicture(bytes, 16);
  const std::int32_t odd = size > 0 ? data[0] % 70 : 7;
  const std::optional<IconPicture> other = portable::ReadIconPicture(bytes, odd);
  CheckPicture(large, 32);
  CheckPicture(small, 16);
  CheckPicture(other, odd);
  Require(!large || portable::IsIconFile(bytes), "a picture from no icon file");
  Require(large.has_value() == small.has_value(), "one size decoded and not the other");

  static ScratchFile scratch(".ico");
  scratch.Fill(data, size);
  portable::PortableDeviceContexts gdi(48, 48);
  gdi.KeepJournal(false);
  portable::PortableIcons icons(gdi);
  GdiHandle largeIcon = 0;
  GdiHandle smallIcon = 0;
  const std::int32_t made = icons.ExtractIconExA(scratch.Path().c_str(), 0, &largeIcon, &smallIcon, 1);
  Require(made == (large ? 2 : (size == 0 ? -1 : 0)), "the handles made disagree with the reader");
  const GdiHandle screen = gdi.GetDC(0);
  const std::size_t contexts = gdi.LiveContexts();
  const std::size_t bitmaps = gdi.LiveBitmaps();
  const std::uint32_t flags = size > 1 ? data[1] % 4u : icons::kDiNormal;
  const std::int32_t x = size > 2 ? static_cast<std::int32_t>(data[2] % 64) - 24 : 0;
  const std::int32_t width = size > 3 ? static_cast<std::int32_t>(data[3] % 40) : 0;
  icons.DrawIconEx(screen, x, x, largeIcon, width, width, 0, 0, flags);
  icons.DrawIconEx(screen, 1, 1, smallIcon, 0, 0, 0, 0, icons::kDiNormal);
  Require(gdi.LiveContexts() == contexts && gdi.LiveBitmaps() == bitmaps,
          "drawing left objects behind");
  icons.DestroyIcon(largeIcon);
  icons.DestroyIcon(smallIcon);
  Require(icons.LiveIcons() == 0, "icons left alive");
  gdi.ReleaseDC(0, screen);
  return 0;
}
