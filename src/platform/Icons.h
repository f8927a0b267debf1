#pragma once
// Icons as the system reads and draws them: extraction from a file of icons, drawing an icon on
// a device context, the shell's record of a file's icon and its system image lists, and the
// shell's icon picker. Arguments, results and status values are the platform's. Handles are the
// 32-bit values the system keeps (icons, device contexts, brushes, image lists, windows); 0 is
// none.
#include <cstdint>

#include "platform/DeviceContexts.h"

namespace quorvane::platform {

namespace icons {
// DrawIconEx: what is drawn.
inline constexpr std::uint32_t kDiMask = 0x0001;
inline constexpr std::uint32_t kDiImage = 0x0002;
inline constexpr std::uint32_t kDiNormal = 0x0003;

// SHGetFileInfoA: what is asked for.
inline constexpr std::uint32_t kShgfiLargeIcon = 0x0000;
inline constexpr std::uint32_t kShgfiSmallIcon = 0x0001;
inline constexpr std::uint32_t kShgfiOpenIcon = 0x0002;
inline constexpr std::uint32_t kShgfiShellIconSize = 0x0004;
inline constexpr std::uint32_t kShgfiIcon = 0x0100;
inline constexpr std::uint32_t kShgfiDisplayName = 0x0200;
inline constexpr std::uint32_t kShgfiTypeName = 0x0400;
inline constexpr std::uint32_t kShgfiExeType = 0x2000;
inline constexpr std::uint32_t kShgfiSysIconIndex = 0x4000;

// The size of the shell's file record on this interface, in bytes.
inline constexpr std::uint32_t kShFileInfoSize = 352;

// ImageList_Draw: drawn with the list's mask.
inline constexpr std::uint32_t kIldNormal = 0x0000;
inline constexpr std::uint32_t kIldTransparent = 0x0001;

// The picker's buffer, in characters.
inline constexpr std::uint32_t kMaxPath = 260;
}  // namespace icons

// The shell's record of one file's icon, names and attributes, field for field.
struct ShFileInfo {
  GdiHandle hIcon = 0;
  std::int32_t iIcon = 0;
  std::uint32_t dwAttributes = 0;
  char szDisplayName[260] = {};
  char szTypeName[80] = {};
};

class Icons {
 public:
  virtual ~Icons() = default;

  // Up to `count` icons from icon number `index` of `file` (a negative index names a resource
  // identifier), large ones into `large[]` and small ones into `small[]`; either may be null.
  // The number of handles made; 0 when the file has no such icon, and -1 when the file can't be
  // read at all. With index -1 nothing is made and the result is the number of icons in the
  // file. Where nothing is made, `large` and `small` are left as they were. The caller destroys
  // every handle made.
  virtual std::int32_t ExtractIconExA(const char* file, std::int32_t index, GdiHandle* large,
                                      GdiHandle* small, std::uint32_t count) = 0;
  // Draws an icon on a device context at (x, y), at `width` by `height` or, where these are 0,
  // at the icon's own size, through its mask or alpha as `flags` says. Non-zero on success; a
  // null or destroyed icon, or a context that is none, gives 0 and draws nothing.
  virtual std::int32_t DrawIconEx(GdiHandle dc, std::int32_t x, std::int32_t y, GdiHandle icon,
                                  std::int32_t width, std::int32_t height, std::uint32_t step,
                                  GdiHandle brush, std::uint32_t flags) = 0;
  // Frees an icon. Non-zero on success; a null handle, or one already freed, gives 0 and does
  // no harm.
  virtual std::int32_t DestroyIcon(GdiHandle icon) = 0;
  // Fills `info` (of `size` bytes on the system's side) with what `flags` asks about `path`.
  // With kShgfiSysIconIndex the result is the handle of the system image list that holds the
  // icon, whatever else the flags ask for; otherwise non-zero on success (with kShgfiExeType
  // alone: the type of an executable, 0 for any other file). 0 when the path can't be
  // resolved.
  virtual std::uint32_t SHGetFileInfoA(const char* path, std::uint32_t attributes,
                                       ShFileInfo& info, std::uint32_t size,
                                       std::uint32_t flags) = 0;
  // Draws image `index` of an image list at (x, y). Non-zero on success.
  virtual std::int32_t ImageList_Draw(GdiHandle list, std::int32_t index, GdiHandle dc,
                                      std::int32_t x, std::int32_t y, std::uint32_t flags) = 0;
  // The size of the images of a list. Non-zero on success; on failure the sizes are untouched.
  virtual std::int32_t ImageList_GetIconSize(GdiHandle list, std::int32_t& width,
                                             std::int32_t& height) = 0;
  // The shell's icon picker (shell32's export 62), modal to `owner`: `path` is a buffer of
  // `size` wide characters holding the file shown first, terminated by a NUL, and `index` the
  // icon selected first. When the user confirms, the chosen file and icon number come back in
  // both and the result is 1; otherwise both are left as they were.
  virtual std::int32_t PickIconDlg(GdiHandle owner, char16_t* path, std::uint32_t size,
                                   std::int32_t& index) = 0;
};

}  // namespace quorvane::platform
