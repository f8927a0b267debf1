#pragma once
// Icons without the shell. Icons are read from icon files (.ico), whatever the file's name: the
// directory is parsed and, for a large (32 by 32) and a small (16 by 16) icon, the entry nearest
// in size is taken, of the highest colour depth among those, and scaled to the size. Entries are
// device-independent bitmaps of 1, 4, 8, 16, 24 or 32 bits a pixel with their AND mask; PNG
// entries, and any entry that can't be decoded, are passed over. A file of icons holds one icon:
// number 0, which a negative number (a resource identifier) also finds. Any other file gives no
// icon, and a file that can't be read gives -1, as the platform's extraction does.
//
// Icons are drawn on the contexts of a DeviceContexts port through its own operations: the
// rectangle is read into a bitmap of this adapter's, combined there with the mask (AND, then
// XOR with the colours) or blended through the alpha channel exactly as the platform rounds,
// and copied back.
//
// The system image list holds three icons drawn by this adapter: a document (number 0), a
// folder (3) and an open folder (4), at 16 and at 32 pixels in a small and a large list.
// SHGetFileInfoA resolves a path that exists on the host to one of them; any other path
// resolves to nothing. The icon picker answers from a queue that tests fill, and every call is
// written down.
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/DeviceContexts.h"
#include "platform/Icons.h"

namespace quorvane::platform::portable {

// One picture of an icon: colours and mask, both top-down, one entry a pixel.
struct IconPicture {
  std::int32_t width = 0;
  std::int32_t height = 0;
  // 0xAARRGGBB; the alpha byte is 0 but for 32-bit entries.
  std::vector<std::uint32_t> colour;
  // 1 where the AND mask is set: there the background shows (through the XOR colour).
  std::vector<std::uint8_t> mask;
  // A 32-bit entry with any alpha at all is blended through its alpha, and its mask is unused.
  bool alpha = false;

  bool operator==(const IconPicture&) const = default;
};

// Whether the bytes begin with the directory of an icon file.
bool IsIconFile(std::span<const std::uint8_t> bytes);
// The picture the platform makes of an icon file for an icon of `size` by `size` pixels; none
// when the bytes are no icon file or no entry of it can be decoded.
std::optional<IconPicture> ReadIconPicture(std::span<const std::uint8_t> bytes,
                                           std::int32_t size);
// Icon `index` of the system image list (0 a document, 3 a folder, 4 an open folder) at `size`.
IconPicture SystemIconPicture(std::int32_t index, std::int32_t size);
// A picture at another size, each pixel taken from the source pixel it falls on.
IconPicture ScalePicture(const IconPicture& picture, std::int32_t width, std::int32_t height);

class PortableIcons final : public Icons {
 public:
  // Draws on the contexts of `gdi`.
  explicit PortableIcons(DeviceContexts& gdi);

  std::int32_t ExtractIconExA(const char* file, std::int32_t index, GdiHandle* large,
                              GdiHandle* small, std::uint32_t count) override;
  std::int32_t DrawIconEx(GdiHandle dc, std::int32_t x, std::int32_t y, GdiHandle icon,
                          std::int32_t width, std::int32_t height, std::uint32_t step,
                          GdiHandle brush, std::uint32_t flags) override;
  std::int32_t DestroyIcon(GdiHandle icon) override;
  std::uint32_t SHGetFileInfoA(const char* path, std::uint32_t attributes, ShFileInfo& info,
                               std::uint32_t size, std::uint32_t flags) override;
  std::int32_t ImageList_Draw(GdiHandle list, std::int32_t index, GdiHandle dc, std::int32_t x,
                              std::int32_t y, std::uint32_t flags) override;
  std::int32_t ImageList_GetIconSize(GdiHandle list, std::int32_t& width,
                                     std::int32_t& height) override;
  std::int32_t PickIconDlg(GdiHandle owner, char16_t* path, std::uint32_t size,
                           std::int32_t& index) override;

  // --- for tests ------------------------------------------------------------------------------
  // Icons made and not yet destroyed.
  std::size_t LiveIcons() const { return icons_.size(); }
  // The picture of a live icon; null for any other handle.
  const IconPicture* PictureOf(GdiHandle icon) const;

  struct ShellQuery {
    std::string path;
    std::uint32_t flags = 0;
  };
  // Every SHGetFileInfoA call so far, in order.
  const std::vector<ShellQuery>& ShellQueries() const { return shellQueries_; }

  struct PickerCall {
    GdiHandle owner = 0;
    std::u16string path;  // the buffer up to its first NUL
    std::uint32_t size = 0;
    std::int32_t index = 0;
  };
  // The user's answer to the next picker: the file and icon number confirmed.
  void AnswerPicker(const std::u16string& path, std::int32_t index);
  // The user cancels the next picker. A picker with no answer queued is cancelled too.
  void CancelPicker();
  // Every picker shown so far, in order, as it was called.
  const std::vector<PickerCall>& PickerCalls() const { return pickerCalls_; }

 private:
  struct Answer {
    bool confirmed = false;
    std::u16string path;
    std::int32_t index = 0;
  };

  GdiHandle NewIcon(IconPicture picture);

  DeviceContexts& gdi_;
  GdiHandle nextIcon_ = 0x00700000;
  std::unordered_map<GdiHandle, IconPicture> icons_;
  std::vector<ShellQuery> shellQueries_;
  std::deque<Answer> answers_;
  std::vector<PickerCall> pickerCalls_;
};

}  // namespace quorvane::platform::portable
